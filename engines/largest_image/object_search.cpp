#include "engines/largest_image/object_search.h"

#include <algorithm>
#include <numeric>

namespace symfold::detail {
namespace {

// Fewer candidates are cheaper to follow than to compare.
constexpr std::size_t kMinToMerge = 4;

// Returns true if `next` is the same as `pair` but for the free slot, which is one further.
bool continues(const ObjectPair& pair, const ObjectPair& next, bool first_is_free) {
  if (pair.kind != next.kind || pair.is_single() != next.is_single()) return false;
  if (pair.is_single()) return next.first == pair.first + 1;
  return first_is_free ? next.second == pair.second && next.first == pair.first + 1
                       : next.first == pair.first && next.second == pair.second + 1;
}

std::uint32_t run_from(const std::vector<ObjectPair>& pairs, std::size_t i, bool first_is_free) {
  std::size_t end = i + 1;
  while (end < pairs.size() && continues(pairs[end - 1], pairs[end], first_is_free)) ++end;
  return static_cast<std::uint32_t>(end - i);
}

Images all_positions(const ObjectPositions& positions) {
  Images all(positions.pairs().size());
  std::iota(all.begin(), all.end(), 0U);
  return all;
}

}  // namespace

ObjectPositions::ObjectPositions(std::vector<std::uint32_t> class_begins, std::vector<ObjectPair> pairs,
                                 const std::vector<bool>& is_unordered)
    : class_begins_(std::move(class_begins)), pairs_(std::move(pairs)) {
  table_.assign(is_unordered.size() * object_count() * object_count(), kNone);
  for (std::uint32_t position = 0; position < pairs_.size(); ++position) {
    const ObjectPair& pair = pairs_[position];
    table_[table_of(pair.kind) + pair.first * object_count() + pair.second] = position;
    if (is_unordered[pair.kind]) {
      table_[table_of(pair.kind) + pair.second * object_count() + pair.first] = position;
    }
  }
}

Images ObjectPositions::images_of(const std::vector<std::uint32_t>& objects) const {
  Images images;
  for (const ObjectPair& pair : pairs_) {
    const std::uint32_t image =
        table_[table_of(pair.kind) + objects[pair.first] * object_count() + objects[pair.second]];
    if (image == kNone) return {};
    images.push_back(image);
  }
  return images;
}

ObjectSearch::ObjectSearch(const ObjectPositions& positions,
                           const std::vector<std::uint32_t>& positions_with_values,
                           std::size_t max_candidates)
    : plan_(std::make_shared<const Plan>(
          Plan{make_steps(positions, all_positions(positions)), make_steps(positions, positions_with_values),
               positions.table(), positions.class_begins(), positions.object_count(), max_candidates})),
      cell_begins_(plan_->object_count),
      cell_ends_(plan_->object_count),
      image_(plan_->steps.size()) {}

std::vector<ObjectSearch::Step> ObjectSearch::make_steps(const ObjectPositions& positions,
                                                         const std::vector<std::uint32_t>& read) {
  const std::size_t count = positions.object_count();
  std::vector<ObjectPair> pairs;
  pairs.reserve(read.size());
  for (const std::uint32_t position : read) pairs.push_back(positions.pairs()[position]);
  std::vector<Step> steps;
  for (std::size_t i = 0; i < pairs.size(); ++i) {
    const ObjectPair& pair = pairs[i];
    const std::size_t base = positions.table_of(pair.kind);
    const std::uint32_t second_run = run_from(pairs, i, false);
    const std::uint32_t first_run = run_from(pairs, i, true);
    if (pair.is_single()) {
      steps.push_back({base, 0, count + 1, pair.first, pair.first, second_run});
    } else if (first_run > second_run) {
      steps.push_back({base, 1, count, pair.second, pair.first, first_run});
    } else {
      steps.push_back({base, count, 1, pair.first, pair.second, second_run});
    }
  }
  return steps;
}

bool ObjectSearch::maximise(Placed* values) {
  start();
  for (std::size_t next = 0; next < plan_->reading.size();) {
    if (open_slots_ == 0 && candidate_count_ == 1) break;
    next = advance(next, values);
  }
  const Object* const objects = candidate(0);
  for (std::size_t p = 0; p < image_.size(); ++p) {
    const Step& step = plan_->steps[p];
    image_[p] = values[source(step, objects, objects[step.free_slot])];
  }
  std::copy(image_.begin(), image_.end(), values);
  return is_exact_;
}

void ObjectSearch::start() {
  is_exact_ = true;
  open_slots_ = 0;
  for (std::size_t c = 0; c + 1 < plan_->class_begins.size(); ++c) {
    const std::uint32_t begin = plan_->class_begins[c];
    const std::uint32_t end = plan_->class_begins[c + 1];
    std::fill(cell_begins_.begin() + begin, cell_begins_.begin() + end, begin);
    std::fill(cell_ends_.begin() + begin, cell_ends_.begin() + end, end);
    if (end - begin > 1) open_slots_ += end - begin;
  }
  candidate_count_ = 1;
  objects_.resize(std::max(objects_.size(), plan_->object_count));
  std::iota(objects_.begin(), objects_.begin() + static_cast<std::ptrdiff_t>(plan_->object_count), Object{0});
}

// Reads one position, or the run of a cell. Returns what to read next.
std::size_t ObjectSearch::advance(std::size_t next, const Placed* values) {
  const Step& step = plan_->reading[next];
  const std::size_t before = candidate_count_;
  if (step.fixed_stride != 0) close(step.fixed_slot);
  while (cell_begins_[step.free_slot] != step.free_slot) branch(cell_begins_[step.free_slot]);
  std::uint32_t length = cell_ends_[step.free_slot] - step.free_slot;
  if (length > step.run) {
    branch(step.free_slot);
    length = 1;
  }
  read(step, length, values);
  if (length > 1) split(step.free_slot, length);
  next += length;
  if (candidate_count_ > before && candidate_count_ >= kMinToMerge) merge_equal(next, values);
  return next;
}

// Tries all objects for the slots of a cell up to this one.
void ObjectSearch::close(std::uint32_t slot) {
  while (is_open(slot)) branch(cell_begins_[slot]);
}

// Tries all objects of a cell for its first slot; the others keep their order.
void ObjectSearch::branch(std::uint32_t slot) {
  const std::size_t count = plan_->object_count;
  const std::uint32_t end = cell_ends_[slot];
  std::size_t made = 0;
  const std::size_t wanted = candidate_count_ * (end - slot);
  branched_.resize(std::max(branched_.size(), std::min(wanted, plan_->max_candidates) * count));
  for (std::size_t i = 0; i < candidate_count_; ++i) {
    for (std::uint32_t chosen = slot; chosen < end && made < plan_->max_candidates; ++chosen, ++made) {
      Object* const objects = branched_.data() + made * count;
      std::copy_n(candidate(i), count, objects);
      std::rotate(objects + slot, objects + chosen, objects + chosen + 1);
    }
  }
  if (made < wanted) is_exact_ = false;
  std::swap(objects_, branched_);
  candidate_count_ = made;
  open_slots_ -= end - slot == 2 ? 2 : 1;
  cell_ends_[slot] = slot + 1;
  for (std::uint32_t other = slot + 1; other < end; ++other) cell_begins_[other] = slot + 1;
}

// Keeps the candidates whose values at the next `length` positions, sorted for more than one, are the
// largest.
void ObjectSearch::read(const Step& step, std::uint32_t length, const Placed* values) {
  std::size_t kept = 0;
  best_.clear();
  for (std::size_t i = 0; i < candidate_count_; ++i) {
    rank(step, length, values, candidate(i));
    const auto is_less = [](const Ranked& ranked, std::uint64_t value) { return ranked.value < value; };
    const auto [own, best] =
        std::mismatch(ranked_.begin(), ranked_.end(), best_.begin(), best_.end(),
                      [](const Ranked& ranked, std::uint64_t value) { return ranked.value == value; });
    if (best != best_.end() && is_less(*own, *best)) continue;
    if (own != ranked_.end()) {
      kept = 0;
      best_.clear();
      for (const Ranked& ranked : ranked_) best_.push_back(ranked.value);
    }
    keep(i, kept);
    Object* const objects = candidate(kept++);
    for (std::uint32_t k = 0; k < length; ++k) objects[step.free_slot + k] = ranked_[k].object;
  }
  candidate_count_ = kept;
}

// Cells of usual size are sorted by insertion. Objects of equal values stay in their order.
void ObjectSearch::rank(const Step& step, std::uint32_t length, const Placed* values, const Object* objects) {
  constexpr std::size_t kMaxInsertion = 24;
  ranked_.clear();
  for (std::uint32_t k = 0; k < length; ++k) {
    const Object object = objects[step.free_slot + k];
    ranked_.push_back({values[source(step, objects, object)].value, object});
    if (length > kMaxInsertion) continue;
    for (std::size_t j = k; j > 0 && ranked_[j - 1].value < ranked_[j].value; --j) {
      std::swap(ranked_[j - 1], ranked_[j]);
    }
  }
  if (length <= kMaxInsertion) return;
  std::sort(ranked_.begin(), ranked_.end(), [](const Ranked& a, const Ranked& b) {
    return a.value != b.value ? a.value > b.value : a.object < b.object;
  });
}

// Makes cells of equal values, after a read of the whole cell.
void ObjectSearch::split(std::uint32_t slot, std::uint32_t length) {
  open_slots_ -= length;
  for (std::uint32_t begin = 0; begin < length;) {
    std::uint32_t end = begin + 1;
    while (end < length && best_[end] == best_[begin]) ++end;
    for (std::uint32_t k = begin; k < end; ++k) {
      cell_begins_[slot + k] = slot + begin;
      cell_ends_[slot + k] = slot + end;
    }
    if (end - begin > 1) open_slots_ += end - begin;
    begin = end;
  }
}

std::uint64_t ObjectSearch::hash_from(std::size_t next, const Placed* values, const Object* objects) const {
  std::uint64_t hash = 0;
  for (std::size_t i = next; i < plan_->reading.size(); ++i) {
    const Step& step = plan_->reading[i];
    hash = (hash ^ values[source(step, objects, objects[step.free_slot])].value) * 0x9e3779b97f4a7c15;
    hash ^= hash >> 32;
  }
  return hash;
}

bool ObjectSearch::equal_from(std::size_t next, const Placed* values, const Object* a,
                              const Object* b) const {
  for (std::size_t i = next; i < plan_->reading.size(); ++i) {
    const Step& step = plan_->reading[i];
    if (values[source(step, a, a[step.free_slot])].value !=
        values[source(step, b, b[step.free_slot])].value) {
      return false;
    }
  }
  return true;
}

// Keeps the first candidate of each image. What was read before is equal in all.
void ObjectSearch::merge_equal(std::size_t next, const Placed* values) {
  hashes_.clear();
  for (std::uint32_t i = 0; i < candidate_count_; ++i) {
    hashes_.emplace_back(hash_from(next, values, candidate(i)), i);
  }
  std::sort(hashes_.begin(), hashes_.end());
  std::size_t kept = 0;
  for (std::size_t i = 0; i < hashes_.size(); ++i) {
    const bool is_repeated =
        kept > 0 && hashes_[kept - 1].first == hashes_[i].first &&
        equal_from(next, values, candidate(hashes_[kept - 1].second), candidate(hashes_[i].second));
    if (!is_repeated) hashes_[kept++] = hashes_[i];
  }
  hashes_.resize(kept);
  std::sort(hashes_.begin(), hashes_.end(), [](const auto& a, const auto& b) { return a.second < b.second; });
  for (std::size_t i = 0; i < kept; ++i) {
    keep(hashes_[i].second, i);
  }
  candidate_count_ = kept;
}

}  // namespace symfold::detail
