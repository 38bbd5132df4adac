#include "engines/largest_image/object_search.h"

#include <algorithm>
#include <numeric>
#include <utility>

#include "engines/base/mix.h"

namespace symfold::detail {
namespace {

constexpr std::uint64_t kOdd = 0x9e3779b97f4a7c15;  // so that sums of values and colours rarely agree

}  // namespace

ObjectSearch::ObjectSearch(ObjectPositions positions, const std::vector<bool>& has_value,
                           std::size_t max_nodes)
    : ObjectSearch(make_plan(std::move(positions), has_value), has_value, max_nodes) {}

ObjectSearch::ObjectSearch(std::shared_ptr<const Plan> plan, const std::vector<bool>& has_value,
                           std::size_t max_nodes)
    : RefiningSearch(PointCells(plan->positions.class_begins()), has_value, max_nodes),
      plan_(std::move(plan)),
      seat_colours_(plan_->positions.seats().size()),
      sums_(seat_colours_.size()),
      place_keys_(seat_colours_.size()),
      twin_of_(plan_->positions.object_count()),
      twin_counts_(twin_of_.size()) {
  std::size_t read_count = 0;
  for (const Bundle& bundle : plan_->read) read_count += bundle.positions.size();
  value_keys_.resize(read_count);
}

std::shared_ptr<const ObjectSearch::Plan> ObjectSearch::make_plan(ObjectPositions positions,
                                                                  const std::vector<bool>& has_value) {
  Points all(positions.position_count());
  std::iota(all.begin(), all.end(), 0U);
  Points read = all;
  std::erase_if(read, [&](std::uint32_t p) { return !has_value[p]; });
  std::vector<Points> read_by_object(positions.object_count());
  for (const std::uint32_t p : read) {
    for (const std::uint32_t seat : positions.seats_of(p))
      read_by_object[positions.seats()[seat].object].push_back(p);
  }
  auto read_bundles = make_bundles(positions, read);
  auto all_bundles = make_bundles(positions, all);
  return std::make_shared<const Plan>(
      Plan{std::move(positions), std::move(read_bundles), std::move(all_bundles), std::move(read_by_object)});
}

std::vector<ObjectSearch::Bundle> ObjectSearch::make_bundles(const ObjectPositions& positions,
                                                             const Points& chosen) {
  std::vector<Bundle> bundles;
  for (const std::uint32_t p : chosen) {
    const auto seats = positions.seats_of(p);
    auto bundle =
        std::ranges::find_if(bundles, [&](const Bundle& known) { return known.arity == seats.size(); });
    if (bundle == bundles.end()) bundle = bundles.insert(bundle, {seats.size(), {}, {}});
    bundle->positions.push_back(p);
    bundle->seats.insert(bundle->seats.end(), seats.begin(), seats.end());
  }
  std::ranges::sort(bundles, {}, &Bundle::arity);
  return bundles;
}

void ObjectSearch::start() {
  is_first_round_ = true;
  has_twins_ = false;
  std::uint64_t* key = value_keys_.data();
  for (const Bundle& bundle : plan_->read) {
    for (const std::uint32_t p : bundle.positions) *key++ = value(p) * kOdd;
  }
}

// Positions of one object tell all that they know in the first round.
void ObjectSearch::add_keys(std::vector<std::uint64_t>& keys) {
  const std::vector<ObjectPositions::Seat>& seats = plan_->positions.seats();
  for (std::size_t s = 0; s < seats.size(); ++s)
    seat_colours_[s] =
        mix(static_cast<int>(seats[s].role), static_cast<int>(cells_.cell_of(seats[s].object)));
  std::fill(sums_.begin(), sums_.end(), 0);
  const std::uint64_t* value_keys = value_keys_.data();
  for (const Bundle& bundle : plan_->read) {
    if (bundle.arity == 1) {
      if (is_first_round_) add_sums<1>(bundle, value_keys);
    } else if (bundle.arity == 2) {
      add_sums<2>(bundle, value_keys);
    } else if (bundle.arity == 3) {
      add_sums<3>(bundle, value_keys);
    } else {
      add_sums<0>(bundle, value_keys);
    }
    value_keys += bundle.positions.size();
  }
  is_first_round_ = false;
  for (std::size_t s = 0; s < seats.size(); ++s) keys[seats[s].object] += mix(sums_[s] + seats[s].role);
}

// kArity is 0 for a number of seats that is not known when this is compiled.
template <std::size_t kArity>
void ObjectSearch::add_sums(const Bundle& bundle, const std::uint64_t* value_keys) {
  const std::size_t arity = kArity == 0 ? bundle.arity : kArity;
  const std::uint32_t* seats = bundle.seats.data();
  for (std::size_t i = 0; i < bundle.positions.size(); ++i, seats += arity) {
    std::uint64_t sum = value_keys[i];
    for (std::size_t k = 0; k < arity; ++k) sum += seat_colours_[seats[k]];
    sum = mix(sum);
    for (std::size_t k = 0; k < arity; ++k) sums_[seats[k]] += sum;
  }
}

// Returns the cell with the fewest classes of twins, at least two. All classes of a cell are of one size.
std::uint32_t ObjectSearch::settle() {
  if (cells_.are_single()) return kNone;
  if (!has_twins_) {
    find_twins();
    refine_by(twin_counts_);
  }
  if (cells_.cell_count() == twin_classes_) return kNone;
  std::uint32_t chosen = kNone;
  std::size_t fewest = SIZE_MAX;
  cells_.visit_open([&](std::uint32_t cell) {
    const std::size_t classes = cells_.size_of(cell) / twin_counts_[cells_.order()[cell]];
    if (classes == 1 || classes >= fewest) return;
    fewest = classes;
    chosen = cell;
  });
  return chosen;
}

void ObjectSearch::find_twins() {
  has_twins_ = true;
  twin_classes_ = twin_of_.size();
  std::iota(twin_of_.begin(), twin_of_.end(), 0U);
  std::fill(twin_counts_.begin(), twin_counts_.end(), 1);
  cells_.visit_open([&](std::uint32_t cell) {
    firsts_.clear();
    for (std::uint32_t i = cell; i < cells_.end_of(cell); ++i) {
      const std::uint32_t object = cells_.order()[i];
      const auto twin =
          std::ranges::find_if(firsts_, [&](std::uint32_t first) { return are_twins(first, object); });
      if (twin == firsts_.end()) {
        firsts_.push_back(object);
        continue;
      }
      twin_of_[object] = *twin;
      ++twin_counts_[*twin];
      --twin_classes_;
    }
  });
  for (std::size_t object = 0; object < twin_of_.size(); ++object)
    twin_counts_[object] = twin_counts_[twin_of_[object]];
}

bool ObjectSearch::are_twins(std::uint32_t a, std::uint32_t b) const {
  return std::ranges::all_of(plan_->read_by_object[a], [&](std::uint32_t position) {
    return value(position) == value(plan_->positions.position_with(exchanged_key(position, a, b)));
  });
}

// The key of the position onto which the exchange of a and b carries this one.
std::uint64_t ObjectSearch::exchanged_key(std::uint32_t position, std::uint32_t a, std::uint32_t b) const {
  const ObjectPositions& positions = plan_->positions;
  std::uint64_t key = 0;
  for (std::uint32_t seat : positions.seats_of(position)) {
    const std::uint32_t object = positions.seats()[seat].object;
    if (object == a) {
      seat = positions.seat_with(seat, b);
    } else if (object == b) {
      seat = positions.seat_with(seat, a);
    }
    key += positions.key_of_seat(seat);
  }
  return key;
}

void ObjectSearch::single_out(std::uint32_t object) {
  cells_.split_off(cells_.cell_of(object),
                   [&](std::uint32_t other) { return twin_of_[other] == twin_of_[object]; });
}

void ObjectSearch::unite_known(UnionFind& orbits) const {
  for (std::size_t object = 0; object < twin_of_.size(); ++object)
    orbits.unite(static_cast<int>(object), static_cast<int>(twin_of_[object]));
}

void ObjectSearch::make_source(Points& source) {
  const ObjectPositions& positions = plan_->positions;
  for (std::uint32_t s = 0; s < place_keys_.size(); ++s) {
    const std::uint32_t object = cells_.order()[positions.seats()[s].object];
    place_keys_[s] = positions.key_of_seat(positions.seat_with(s, object));
  }
  for (const Bundle& bundle : plan_->all) {
    if (bundle.arity == 1) {
      find_sources<1>(bundle, source);
    } else if (bundle.arity == 2) {
      find_sources<2>(bundle, source);
    } else if (bundle.arity == 3) {
      find_sources<3>(bundle, source);
    } else {
      find_sources<0>(bundle, source);
    }
  }
}

template <std::size_t kArity>
void ObjectSearch::find_sources(const Bundle& bundle, Points& source) const {
  const std::size_t arity = kArity == 0 ? bundle.arity : kArity;
  const std::uint32_t* seats = bundle.seats.data();
  for (const std::uint32_t position : bundle.positions) {
    std::uint64_t key = 0;
    for (std::size_t k = 0; k < arity; ++k) key += place_keys_[seats[k]];
    source[position] = plan_->positions.position_with(key);
    seats += arity;
  }
}

}  // namespace symfold::detail
