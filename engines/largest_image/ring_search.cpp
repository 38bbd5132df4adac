#include "engines/largest_image/ring_search.h"

#include <utility>

#include "engines/base/images.h"
#include "engines/largest_image/element_list.h"

namespace symfold::detail {
namespace {

// Elements that keep position 0, and points to which a rotation may carry it. In a ring in both directions,
// numbered in its order, there are two, and the rotation by one carries 0 to 1.
constexpr std::size_t kMaxStabiliser = 8;
constexpr int kMaxRotations = 64;

// The cycles of a permutation without fixed points, each from its smallest position, in the order of these.
std::vector<Images> cycles_of(const Images& images) {
  std::vector<Images> cycles;
  std::vector<char> is_done(images.size(), 0);
  for (std::uint32_t x = 0; x < images.size(); ++x) {
    if (is_done[x] != 0) continue;
    Images& cycle = cycles.emplace_back();
    for (std::uint32_t y = x; is_done[y] == 0; y = images[y]) {
      is_done[y] = 1;
      cycle.push_back(y);
    }
  }
  return cycles;
}

bool is_rotation(const Images& images, std::size_t length) {
  const std::vector<Images> cycles = cycles_of(images);
  if (cycles[0].size() != length) return false;
  for (const Images& cycle : cycles) {
    if (length % cycle.size() != 0) return false;
  }
  return true;
}

}  // namespace

RingSearch::RingSearch(const Images& rotation, const std::vector<Images>& stabiliser) {
  const std::vector<Images> cycles = cycles_of(rotation);
  Plan plan{cycles[0].size(), cycles.size(), {}, {}};
  for (std::size_t i = 0; i < plan.length; ++i) {
    for (const Images& cycle : cycles) plan.positions.push_back(cycle[i % cycle.size()]);
  }
  for (const Images& element : stabiliser) {
    const Images back = inverse(element);
    std::vector<std::uint32_t>& sources = plan.sources.emplace_back();
    for (const std::uint32_t position : plan.positions) sources.push_back(back[position]);
  }
  sequence_.resize(plan.positions.size());
  best_.resize(plan.positions.size());
  plan_ = std::make_shared<const Plan>(std::move(plan));
}

// Compares two entries as tuples.
int RingSearch::compare(const std::vector<Placed>& a, std::size_t a_entry, const std::vector<Placed>& b,
                        std::size_t b_entry) const {
  const Placed* x = &a[a_entry * plan_->width];
  const Placed* y = &b[b_entry * plan_->width];
  for (std::size_t c = 0; c < plan_->width; ++c, ++x, ++y) {
    if (x->value != y->value) return x->value < y->value ? -1 : 1;
  }
  return 0;
}

// Two shifts a and b are compared from entry to entry. If b's entry is larger at distance d, then none of the
// shifts a .. a + d is the largest: each has a larger one among b .. b + d.
std::size_t RingSearch::largest_shift(const std::vector<Placed>& sequence) const {
  const std::size_t length = plan_->length;
  const auto entry = [length](std::size_t i) { return i < length ? i : i - length; };
  std::size_t a = 0;
  std::size_t b = 1;
  std::size_t distance = 0;
  while (a < length && b < length && distance < length) {
    const int order = compare(sequence, entry(a + distance), sequence, entry(b + distance));
    if (order == 0) {
      ++distance;
      continue;
    }
    (order < 0 ? a : b) += distance + 1;
    if (a == b) ++b;
    distance = 0;
  }
  return std::min(a, b);
}

bool RingSearch::maximise(Placed* values) {
  std::size_t best_shift = 0;
  for (std::size_t e = 0; e < plan_->sources.size(); ++e) {
    const std::vector<std::uint32_t>& sources = plan_->sources[e];
    for (std::size_t i = 0; i < sources.size(); ++i) sequence_[i] = values[sources[i]];
    const std::size_t shift = largest_shift(sequence_);
    int order = e == 0 ? 1 : 0;
    for (std::size_t i = 0; i < plan_->length && order == 0; ++i) {
      order = compare(sequence_, (shift + i) % plan_->length, best_, (best_shift + i) % plan_->length);
    }
    if (order <= 0) continue;
    std::swap(sequence_, best_);
    best_shift = shift;
  }
  for (std::size_t i = 0; i < plan_->length; ++i) {
    const std::size_t from = (best_shift + i) % plan_->length;
    for (std::size_t c = 0; c < plan_->width; ++c) {
      values[plan_->positions[i * plan_->width + c]] = best_[from * plan_->width + c];
    }
  }
  return true;
}

std::unique_ptr<ImageSearch> recognise_ring(const PermutationGroup& group, std::size_t max_images) {
  const auto degree = static_cast<std::size_t>(group.degree());
  const auto length = static_cast<std::size_t>(group.orbit_lengths().front());
  const PermutationGroup keeps_first = stabiliser_of_first(group);
  if (order_of(keeps_first, kMaxStabiliser) > kMaxStabiliser) return nullptr;
  const std::vector<Images> stabiliser = list_elements(keeps_first);
  int tried = 0;
  for (int point = 1; point < group.degree() && tried < kMaxRotations; ++point) {
    const SparsePermutation carrier = group.smallest_carrier(0, point);
    if (carrier.empty()) continue;
    ++tried;
    const Images carrier_images = images_of(carrier, degree);
    for (const Images& element : stabiliser) {
      const Images images = composed(carrier_images, element);
      if (!is_rotation(images, length)) continue;
      const std::size_t width = cycles_of(images).size();
      if ((stabiliser.size() + 1) * width * length > max_images) return nullptr;
      return std::make_unique<RingSearch>(images, stabiliser);
    }
  }
  return nullptr;
}

}  // namespace symfold::detail
