#include "engines/largest_image/recognition.h"

#include <algorithm>
#include <span>
#include <stdexcept>
#include <utility>

#include "engines/base/union_find.h"
#include "engines/group/support_factors.h"
#include "engines/largest_image/block_recognition.h"
#include "engines/largest_image/block_search.h"
#include "engines/largest_image/chain_search.h"
#include "engines/largest_image/element_list.h"
#include "engines/largest_image/list_search.h"
#include "engines/largest_image/object_recognition.h"
#include "engines/largest_image/object_search.h"
#include "engines/largest_image/product_search.h"
#include "engines/largest_image/ring_search.h"
#include "engines/largest_image/tuft_search.h"

namespace symfold::detail {
namespace {

// Returns the entries of these points.
std::vector<bool> at(std::span<const int> points, const std::vector<bool>& has_value) {
  std::vector<bool> entries;
  for (const int point : points) entries.push_back(has_value[static_cast<std::size_t>(point)]);
  return entries;
}

// Blocks and objects are cheap to look for in orbits up to this length.
constexpr int kMaxShortOrbit = 16;

// Lists of so many elements are quicker than a search for objects: half of its time for the 36 elements of
// three clients and three servers.
constexpr std::size_t kMaxShortList = 64;

// Of the list of a ring, 4 bytes each.
constexpr std::size_t kMaxQuickEntries = std::size_t{1} << 20;

std::unique_ptr<ImageSearch> make_block_search(const RecognisedBlocks& found,
                                               const std::vector<bool>& has_value,
                                               const SearchBounds& bounds) {
  const std::vector<bool> inside = at(found.blocks.block(0), has_value);
  return std::make_unique<BlockSearch>(found.blocks, recognise(found.inner, inside, bounds));
}

// A direct factor with canonical generators, on its positions, which are numbered in their order.
class FactorRecognition {
 public:
  // The same group with other generators, if they are known, may have shorter paths from point to point:
  // those of a ring's rotation, when the canonical generators are mirrors.
  FactorRecognition(PermutationGroup group, PermutationGroup as_given, std::vector<bool> has_value,
                    const SearchBounds& bounds)
      : group_(std::move(group)),
        as_given_(std::move(as_given)),
        has_value_(std::move(has_value)),
        bounds_(bounds),
        max_elements_(
            std::min(bounds.max_elements, bounds.max_images / static_cast<std::size_t>(group_.degree()))) {}

  std::unique_ptr<ImageSearch> run() const;

 private:
  std::unique_ptr<ImageSearch> list(std::size_t max_elements) const;
  std::unique_ptr<ImageSearch> parts_or_chain() const;
  int longest_orbit() const;

  PermutationGroup group_;
  PermutationGroup as_given_;
  std::vector<bool> has_value_;
  const SearchBounds& bounds_;
  std::size_t max_elements_;  // of a list
};

// Rings, grids and the like have few more elements than points in an orbit. They are turned or listed before
// blocks and objects are looked for in vain. A ring is turned if its list would not fit into a processor's
// caches: one of 5,000 philosophers would take 200 MB.
std::unique_ptr<ImageSearch> FactorRecognition::run() const {
  if (const int longest = longest_orbit(); longest > kMaxShortOrbit) {
    const std::size_t max_quick =
        std::min(max_elements_, kMaxQuickEntries / static_cast<std::size_t>(group_.degree()));
    if (order_of(group_, max_quick) > max_quick) {
      if (auto search = recognise_ring(as_given_, bounds_.max_images)) return search;
    }
    if (auto search = list(2 * static_cast<std::size_t>(longest))) return search;
  }
  if (const auto blocks = recognise_blocks(group_, bounds_.max_images)) {
    return make_block_search(*blocks, has_value_, bounds_);
  }
  return parts_or_chain();
}

int FactorRecognition::longest_orbit() const {
  UnionFind orbits(group_.degree());
  for (std::size_t g = 0; g < group_.generators().size(); ++g) {
    for (const auto& [point, image] : group_.generators()[g]) orbits.unite(point, image);
  }
  int longest = 0;
  for (int x = 0; x < group_.degree(); ++x) longest = std::max(longest, orbits.size_of_class(x));
  return longest;
}

std::unique_ptr<ImageSearch> FactorRecognition::list(std::size_t max_elements) const {
  max_elements = std::min(max_elements, max_elements_);
  if (order_of(group_, max_elements) > max_elements) return nullptr;
  return std::make_unique<ListSearch>(list_elements(group_), has_value_);
}

// A list of more elements is read as a whole when values tie, which takes longer than refinement.
std::unique_ptr<ImageSearch> FactorRecognition::parts_or_chain() const {
  if (auto search = list(kMaxShortList)) return search;
  if (auto tufts = recognise_tufts(group_, has_value_, bounds_.max_images)) {
    auto smaller = recognise(tufts->smaller, tufts->has_value, bounds_);
    return std::make_unique<TuftSearch>(*std::move(tufts), std::move(smaller));
  }
  if (auto objects = recognise_objects(group_, bounds_.max_images)) {
    return std::make_unique<ObjectSearch>(std::move(*objects), has_value_, bounds_.max_candidates);
  }
  if (auto search = list(2 * static_cast<std::size_t>(longest_orbit()))) return search;
  return std::make_unique<ChainSearch>(group_, has_value_, bounds_.max_candidates, bounds_.max_images);
}

}  // namespace

// Factors by the generators as they are come first, so that the canonical generators, which split them
// further, are made of small groups. A factor that exchanges show to be a wreath product on three or more
// blocks has one partition into blocks and no finer factors, whatever its generators are: it needs no
// canonical ones.
std::unique_ptr<ImageSearch> recognise(const PermutationGroup& group, const std::vector<bool>& has_value,
                                       const SearchBounds& bounds) {
  if (bounds.max_candidates == 0) throw std::invalid_argument("expected at least one candidate");
  std::vector<Factor> factors;
  for (SupportFactor& coarse : support_factors(group.degree(), group.generators())) {
    const std::vector<bool> coarse_values = at(coarse.points, has_value);
    if (std::ranges::find(coarse_values, true) == coarse_values.end()) continue;
    const auto coarse_group =
        PermutationGroup::from_strong_generators(coarse.degree(), std::move(coarse.generators));
    if (const auto blocks = recognise_exchanged_blocks(coarse_group, 3)) {
      factors.push_back(
          {{coarse.points.begin(), coarse.points.end()}, make_block_search(*blocks, coarse_values, bounds)});
      continue;
    }
    const PermutationGroup canonical = coarse_group.with_canonical_generators();
    for (SupportFactor& fine : support_factors(canonical.degree(), canonical.generators())) {
      std::vector<bool> fine_values = at(fine.points, coarse_values);
      if (std::ranges::find(fine_values, true) == fine_values.end()) continue;
      const auto fine_group =
          PermutationGroup::from_strong_generators(fine.degree(), std::move(fine.generators));
      std::vector<std::uint32_t> positions;
      for (const int point : fine.points) {
        positions.push_back(static_cast<std::uint32_t>(coarse.points[static_cast<std::size_t>(point)]));
      }
      const PermutationGroup& as_given = fine.degree() == coarse.degree() ? coarse_group : fine_group;
      FactorRecognition recognition(fine_group, as_given, std::move(fine_values), bounds);
      factors.push_back({std::move(positions), recognition.run()});
    }
  }
  if (factors.empty()) return nullptr;
  const bool is_one = factors[0].positions.size() == static_cast<std::size_t>(group.degree());
  return is_one ? std::move(factors[0].search) : std::make_unique<ProductSearch>(std::move(factors));
}

}  // namespace symfold::detail
