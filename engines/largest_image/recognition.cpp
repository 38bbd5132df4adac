#include "engines/largest_image/recognition.h"

#include <algorithm>
#include <set>
#include <stdexcept>
#include <utility>

#include "engines/base/images.h"
#include "engines/base/union_find.h"
#include "engines/largest_image/block_recognition.h"
#include "engines/largest_image/block_search.h"
#include "engines/largest_image/chain_search.h"
#include "engines/largest_image/list_search.h"
#include "engines/largest_image/object_recognition.h"
#include "engines/largest_image/object_search.h"
#include "engines/largest_image/product_search.h"

namespace symfold::detail {
namespace {

using Positions = std::vector<std::uint32_t>;

std::unique_ptr<ImageSearch> make_search(const Subgroup& group, const SearchBounds& bounds);

// Blocks and objects are cheap to look for in orbits up to this length.
constexpr std::size_t kMaxShortOrbit = 16;

// Returns all elements, found by multiplying those known with as few generators as are needed; nothing if
// there are more than `max_elements`.
std::vector<Images> list_elements(const Subgroup& group, std::size_t max_elements) {
  std::set<Images> known{identity_images<Images>(group.size())};
  std::vector<const Images*> elements{&*known.begin()};
  std::vector<const Images*> used;
  for (const Images& generator : group.generators()) {
    if (known.contains(generator)) continue;
    used.push_back(&generator);
    for (std::size_t i = 0; i < elements.size(); ++i) {
      for (const Images* factor : used) {
        const auto [product, is_new] = known.insert(composed(*factor, *elements[i]));
        if (!is_new) continue;
        if (elements.size() >= max_elements) return {};
        elements.push_back(&*product);
      }
    }
  }
  std::vector<Images> all;
  while (!known.empty()) all.push_back(std::move(known.extract(known.begin()).value()));
  return all;
}

// For a group that moves every position and is no direct product. Rings, grids and the like have few more
// elements than points in an orbit. They are listed before blocks and objects are looked for in vain.
std::unique_ptr<ImageSearch> make_factor_search(const Subgroup& group, const SearchBounds& bounds) {
  const std::size_t max_elements = std::min(bounds.max_elements, bounds.max_images / group.size());
  const auto list = [&](std::size_t count) -> std::unique_ptr<ImageSearch> {
    std::vector<Images> elements = list_elements(group, std::min(count, max_elements));
    if (elements.empty()) return nullptr;
    return std::make_unique<ListSearch>(std::move(elements), group.positions_with_values());
  };
  if (const std::size_t longest = group.orbits().back().size(); longest > kMaxShortOrbit) {
    if (auto search = list(2 * longest)) return search;
  }
  if (auto found = recognise_blocks(group)) {
    auto inner = make_search(group.on(found->blocks[0], std::move(found->inner)), bounds);
    return std::make_unique<BlockSearch>(std::move(found->blocks), std::move(inner));
  }
  if (const auto objects = recognise_objects(group, bounds.max_images)) {
    return std::make_unique<ObjectSearch>(*objects, group.positions_with_values(), bounds.max_candidates);
  }
  if (auto search = list(max_elements)) return search;
  std::vector<StabiliserLevel> levels =
      make_stabiliser_levels(group.size(), group.generators(), bounds.max_images);
  if (levels.empty()) throw std::length_error("the symmetry group is too large for exact labels");
  return std::make_unique<ChainSearch>(group.size(), std::move(levels), bounds.max_candidates);
}

// Returns what the generators do to these positions, numbered in their order, without identities.
std::vector<Images> restricted(const std::vector<Images>& generators, const Positions& positions) {
  std::vector<Images> result;
  Images images(positions.size());
  for (const Images& generator : generators) {
    for (std::size_t i = 0; i < positions.size(); ++i) {
      const auto image = std::lower_bound(positions.begin(), positions.end(), generator[positions[i]]);
      images[i] = static_cast<std::uint32_t>(image - positions.begin());
    }
    if (!is_identity(images)) result.push_back(images);
  }
  return result;
}

std::unique_ptr<ImageSearch> make_search(const Subgroup& group, const SearchBounds& bounds) {
  UnionFind moved_together(static_cast<int>(group.size()));
  for (const Images& generator : group.generators()) {
    int first_moved = -1;
    for (int x = 0; x < static_cast<int>(group.size()); ++x) {
      if (static_cast<int>(generator[static_cast<std::size_t>(x)]) == x) continue;
      if (first_moved < 0) first_moved = x;
      moved_together.unite(first_moved, x);
    }
  }
  std::vector<Factor> factors;
  for (Positions& positions : moved_together.lists<std::uint32_t>()) {
    if (positions.size() == 1) continue;
    const Subgroup factor = group.on(positions, restricted(group.generators(), positions));
    if (factor.positions_with_values().empty()) continue;
    if (positions.size() == group.size()) return make_factor_search(factor, bounds);
    auto search = make_factor_search(factor, bounds);
    factors.push_back({std::move(positions), std::move(search)});
  }
  return factors.empty() ? nullptr : std::make_unique<ProductSearch>(std::move(factors));
}

}  // namespace

std::unique_ptr<ImageSearch> recognise(const TableGroup& group, const SearchBounds& bounds) {
  if (bounds.max_candidates == 0) throw std::invalid_argument("expected at least one candidate");
  auto points = identity_images<Positions>(group.point_count());
  return make_search(Subgroup(group, std::move(points), group.permutations()), bounds);
}

}  // namespace symfold::detail
