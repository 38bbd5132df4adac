#include "engines/largest_image/chain_search.h"

#include <algorithm>
#include <stdexcept>
#include <utility>

#include "engines/base/images.h"
#include "engines/base/mix.h"

namespace symfold::detail {

ChainSearch::ChainSearch(const PermutationGroup& group, const std::vector<bool>& has_value,
                         std::size_t max_nodes, std::size_t max_entries)
    : ChainSearch(make_plan(group, has_value, max_entries), has_value, max_nodes) {}

ChainSearch::ChainSearch(std::shared_ptr<const Plan> plan, const std::vector<bool>& has_value,
                         std::size_t max_nodes)
    : RefiningSearch(cells_of(*plan), has_value, max_nodes),
      plan_(std::move(plan)),
      point_keys_(plan_->orbitals.leaders.size()),
      counts_(point_keys_.size()) {}

std::shared_ptr<const ChainSearch::Plan> ChainSearch::make_plan(const PermutationGroup& group,
                                                                const std::vector<bool>& has_value,
                                                                std::size_t max_entries) {
  if (group.base().size() > max_entries / std::max(has_value.size(), std::size_t{1}))
    throw std::length_error("the symmetry group is too large for exact labels");
  StabiliserTrees trees(group);
  Orbitals orbitals = sparse_orbitals(trees);
  std::vector<Stabiliser> stabilisers;
  for (std::size_t level = 0; level < trees.levels().size(); ++level)
    stabilisers.push_back(make_stabiliser(trees, level, has_value));
  return std::make_shared<const Plan>(Plan{std::move(trees), std::move(orbitals), std::move(stabilisers)});
}

ChainSearch::Stabiliser ChainSearch::make_stabiliser(const StabiliserTrees& trees, std::size_t level,
                                                     const std::vector<bool>& has_value) {
  Stabiliser stabiliser;
  stabiliser.generators = trees.generators_of(level);
  UnionFind orbits(static_cast<int>(trees.degree()));
  for (const std::uint32_t g : stabiliser.generators) {
    for (const auto& [point, image] : trees.generators()[g]) orbits.unite(point, image);
  }
  Points smallest(trees.degree(), kNone);
  for (std::uint32_t x = 0; x < trees.degree(); ++x) {
    std::uint32_t& first = smallest[static_cast<std::size_t>(orbits.find(static_cast<int>(x)))];
    if (first == kNone) first = x;
    stabiliser.orbit_of.push_back(first);
    if (first == x || !has_value[x]) continue;
    stabiliser.moved.push_back(x);
    stabiliser.smallest.push_back(first);
  }
  return stabiliser;
}

PointCells ChainSearch::cells_of(const Plan& plan) {
  PointCells cells({0, static_cast<std::uint32_t>(plan.orbitals.leaders.size())});
  std::vector<std::uint64_t> keys;
  for (const std::uint32_t leader : plan.orbitals.leaders)
    keys.push_back(plan.stabilisers[0].orbit_of[leader]);
  cells.split(keys);
  return cells;
}

void ChainSearch::start() {
  level_ = 0;
  knows_orbits_ = true;
  source_.resize(plan_->trees.degree());
  std::iota(source_.begin(), source_.end(), 0U);
  std::fill(point_keys_.begin(), point_keys_.end(), 0);
  const std::vector<std::uint64_t>& orbit_of = plan_->stabilisers[0].orbit_of;
  for (const std::uint32_t position : positions_with_values())
    point_keys_[point_at(position)] += mix(mix(value(position)) + orbit_of[position]);
  cells_.split(point_keys_);
}

// The inverses of all relations are relations too, so that points tell those that they lead to.
void ChainSearch::add_keys(std::vector<std::uint64_t>& keys) {
  const Orbitals& orbitals = plan_->orbitals;
  for (const std::uint32_t x : cells_.changed()) {
    const std::uint64_t colour = mix(cells_.cell_of(x));
    for (std::uint32_t f = orbitals.begins[x]; f < orbitals.begins[x + 1]; ++f) {
      const Fan& fan = orbitals.fans[f];
      const std::uint64_t key = mix(colour + fan.relation);
      for (std::uint32_t e = fan.begin; e < fan.end; ++e) keys[orbitals.ends[e]] += key;
    }
  }
}

std::uint32_t ChainSearch::settle() {
  for (;;) {
    if (level_ == plan_->stabilisers.size()) return kNone;
    const std::uint32_t cell = smallest_cell();
    if (cell != kNone) {
      if (!knows_orbits_) {
        knows_orbits_ = true;
        const std::vector<std::uint64_t>& orbit_of = plan_->stabilisers[level_].orbit_of;
        for (const std::uint32_t c : plan_->orbitals.leaders) point_keys_[point_at(c)] = orbit_of[c];
        if (refine_by(point_keys_)) continue;
      }
      return is_final() ? kNone : cell;
    }
  }
}

// Looks for the cell with the fewest positions that can come to the base point; of several the first. If it
// has one only, brings it there and returns kNone.
std::uint32_t ChainSearch::smallest_cell() {
  const Points& orbit = plan_->trees.levels()[level_].orbit;
  for (const std::uint32_t c : orbit) ++counts_[cells_.cell_of(point_at(c))];
  std::pair<std::uint32_t, std::uint32_t> smallest{kNone, kNone};
  std::uint32_t place = 0;
  for (const std::uint32_t c : orbit) {
    const std::uint32_t cell = cells_.cell_of(point_at(c));
    const std::pair own{counts_[cell], cell};
    if (own >= smallest) continue;
    smallest = own;
    place = c;
  }
  for (const std::uint32_t c : orbit) counts_[cells_.cell_of(point_at(c))] = 0;
  if (smallest.first > 1) return smallest.second;
  descend(place);
  return kNone;
}

void ChainSearch::descend(std::uint32_t place) {
  plan_->trees.apply(level_, place, source_, scratch_);
  ++level_;
  knows_orbits_ = false;
}

// True if the stabiliser cannot change the image.
bool ChainSearch::is_final() const {
  const Stabiliser& stabiliser = plan_->stabilisers[level_];
  for (std::size_t i = 0; i < stabiliser.moved.size(); ++i) {
    if (value(source_[stabiliser.moved[i]]) != value(source_[stabiliser.smallest[i]])) return false;
  }
  return true;
}

void ChainSearch::single_out(std::uint32_t point) {
  cells_.split_off(cells_.cell_of(point), [&](std::uint32_t other) { return other == point; });
  const Points& orbit = plan_->trees.levels()[level_].orbit;
  descend(*std::ranges::find_if(orbit, [&](std::uint32_t c) { return point_at(c) == point; }));
}

// Generators of the stabiliser that leave the image as it is are symmetries of it.
void ChainSearch::unite_known(UnionFind& orbits) const {
  for (const std::uint32_t g : plan_->stabilisers[level_].generators) {
    const SparsePermutation& moves = plan_->trees.generators()[g];
    const auto source = [&](int c) { return source_[static_cast<std::size_t>(c)]; };
    const bool is_symmetry = std::ranges::all_of(
        moves, [&](const PointMove& move) { return value(source(move.point)) == value(source(move.image)); });
    if (!is_symmetry) continue;
    for (const PointMove& move : moves) {
      orbits.unite(static_cast<int>(point_at(static_cast<std::size_t>(move.point))),
                   static_cast<int>(point_at(static_cast<std::size_t>(move.image))));
    }
  }
}

void ChainSearch::make_source(Points& source) {
  source = source_;
  order_.clear();
  for (const std::uint32_t c : plan_->orbitals.leaders) order_.push_back(point_at(c));
}

void ChainSearch::save(std::size_t depth) {
  if (saved_.size() == depth) saved_.emplace_back();
  saved_[depth].source = source_;
  saved_[depth].level = level_;
}

void ChainSearch::restore(std::size_t depth) {
  source_ = saved_[depth].source;
  level_ = saved_[depth].level;
}

}  // namespace symfold::detail
