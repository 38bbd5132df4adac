#include "engines/largest_image/block_recognition.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <utility>
#include <vector>

#include "engines/base/images.h"
#include "engines/base/union_find.h"
#include "engines/largest_image/block_system.h"
#include "engines/largest_image/subgroup.h"

namespace symfold::detail {
namespace {

// Orbits that are tried as the beginning of blocks.
constexpr std::size_t kMaxOrbits = 4;

using Positions = std::vector<std::uint32_t>;

// Proves that blocks are what they seem. They come in the order of their smallest positions, the first one
// ascending, aligned by exchanges that the group is known to have, or each ascending and not aligned yet.
class BlockProof {
 public:
  BlockProof(const PermutationGroup& group, AlignedBlocks blocks)
      : group_(group), blocks_(std::move(blocks)) {}

  std::optional<RecognisedBlocks> run(bool are_aligned);

 private:
  bool align(int b);
  std::optional<PermutationList> inner_generators() const;
  PermutationGroup inner_group(const PermutationList& generators) const;
  void take_smallest_maps(const PermutationGroup& inner);

  const PermutationGroup& group_;
  AlignedBlocks blocks_;
};

std::optional<RecognisedBlocks> BlockProof::run(bool are_aligned) {
  for (int b = 1; b < blocks_.count() && !are_aligned; ++b) {
    if (!align(b)) return std::nullopt;
  }
  const std::optional<PermutationList> generators = inner_generators();
  if (!generators) return std::nullopt;
  PermutationGroup inner = inner_group(*generators);
  if (!inner.is_whole()) return std::nullopt;
  take_smallest_maps(inner);
  return RecognisedBlocks{std::move(blocks_), std::move(inner)};
}

// Aligns a block by the ascending map, or by some map onto it, and proves that it can be exchanged with the
// one before. Then it can be exchanged with the first by its own map.
bool BlockProof::align(int b) {
  if (group_.contains(blocks_.exchange(b - 1, b))) return true;
  const std::span<const int> block = blocks_.block(b);
  const std::span<const int> first = blocks_.block(0);
  SparsePermutation carrier;
  for (std::size_t i = 0; i < block.size() && carrier.empty(); ++i) {
    carrier = group_.smallest_carrier(first[0], block[i]);
  }
  std::vector<int> images;
  for (const int point : first) {
    const auto move = std::ranges::lower_bound(carrier, point, {}, &PointMove::point);
    if (move == carrier.end() || move->point != point) return false;
    images.push_back(move->image);
  }
  if (!std::ranges::is_permutation(images, block)) return false;
  std::ranges::copy(images, blocks_.points.begin() + std::ptrdiff_t{b} * blocks_.length);
  return group_.contains(blocks_.exchange(b - 1, b));
}

// The maps onto a block are the one by which it is aligned after the elements of the inner group. At each
// base point of that group the smallest image is taken that is left; the places between have no choice. An
// ascending map is the smallest one.
void BlockProof::take_smallest_maps(const PermutationGroup& inner) {
  for (int b = 1; b < blocks_.count() && !inner.is_trivial(); ++b) {
    const auto map = blocks_.points.begin() + std::ptrdiff_t{b} * blocks_.length;
    if (std::ranges::is_sorted(blocks_.block(b))) continue;
    for (const int base_point : inner.base()) {
      int best = base_point;
      for (int place = base_point + 1; place < blocks_.length; ++place) {
        if (map[place] < map[best] && inner.reaches(base_point, place)) best = place;
      }
      if (best == base_point) continue;
      std::vector<int> moved;
      const SparsePermutation carrier = inner.smallest_carrier(base_point, best);
      for (const PointMove move : carrier) moved.push_back(map[move.image]);
      for (std::size_t i = 0; i < carrier.size(); ++i) map[carrier[i].point] = moved[i];
    }
  }
}

// Returns what the generators do inside blocks, on the places; nothing if a generator carries a block to no
// block, or if the group lacks one of the permutations inside the first block. A generator that does
// something inside one block alone needs no look: the exchanges are proved.
std::optional<PermutationList> BlockProof::inner_generators() const {
  std::vector<SparsePermutation> inner;
  BlockAction action(blocks_);
  for (std::size_t g = 0; g < group_.generators().size(); ++g) {
    if (!action.split(group_.generators()[g])) return std::nullopt;
    for (const SparsePermutation& moves : action.inner()) {
      if (action.inner().size() > 1 && !group_.contains(blocks_.inside(0, moves))) return std::nullopt;
      inner.push_back(moves);
    }
  }
  const auto is_less = [](const SparsePermutation& a, const SparsePermutation& b) {
    return std::ranges::lexicographical_compare(a, b, [](PointMove x, PointMove y) {
      return std::pair(x.point, x.image) < std::pair(y.point, y.image);
    });
  };
  std::ranges::sort(inner, is_less);
  inner.erase(std::unique(inner.begin(), inner.end()), inner.end());
  PermutationList list;
  for (const SparsePermutation& moves : inner) list.push_back(moves);
  return list;
}

// The stabiliser of all points below the last block's smallest one keeps every block in its place, and is the
// product of what is left inside the other blocks and of the inner group on the last one. So if the last
// block is ascending, the strong generators of this stabiliser are, inside the last block, strong ones of the
// inner group.
PermutationGroup BlockProof::inner_group(const PermutationList& generators) const {
  const std::span<const int> last = blocks_.block(blocks_.count() - 1);
  if (!std::ranges::is_sorted(last)) return PermutationGroup::generated_by(blocks_.length, generators);
  const auto place_of = [&last](int point) {
    return static_cast<int>(std::ranges::lower_bound(last, point) - last.begin());
  };
  PermutationList strong;
  for (std::size_t g = 0; g < group_.generators().size(); ++g) {
    const auto moves = group_.generators()[g];
    if (moves.front().point < last.front()) continue;
    SparsePermutation on_places;
    for (const auto& [point, image] : moves) {
      if (std::ranges::binary_search(last, point)) on_places.push_back({place_of(point), place_of(image)});
    }
    if (!on_places.empty()) strong.push_back(on_places);
  }
  return PermutationGroup::from_strong_generators(blocks_.length, std::move(strong));
}

// Aligns ascending blocks, in the order of their first positions.
std::optional<RecognisedBlocks> prove(const PermutationGroup& group,
                                      const std::vector<Positions>& partition) {
  AlignedBlocks blocks{static_cast<int>(partition[0].size()), {}};
  for (const Positions& block : partition) {
    if (block.size() != partition[0].size()) return std::nullopt;
    blocks.points.insert(blocks.points.end(), block.begin(), block.end());
  }
  return BlockProof(group, std::move(blocks)).run(false);
}

// Looks for partitions that all generators leave invariant, the finest first.
class PartitionSearch {
 public:
  explicit PartitionSearch(const PermutationGroup& group);

  std::optional<RecognisedBlocks> run();

 private:
  std::optional<RecognisedBlocks> complete(const Positions& orbit, BlockSystem classes);
  bool coarsen(const Positions& orbit, BlockSystem& classes);
  std::vector<Images> actions_on(const Positions& firsts, BlockSystem& classes) const;

  const PermutationGroup& group_;
  Subgroup dense_;
  std::vector<const Images*> generators_;
  std::vector<Positions> orbits_;
};

PartitionSearch::PartitionSearch(const PermutationGroup& group)
    : group_(group),
      dense_(group, std::vector<bool>(static_cast<std::size_t>(group.degree()))),
      orbits_(dense_.orbits()) {
  for (const Images& generator : dense_.generators()) generators_.push_back(&generator);
}

// Returns the first members of the classes on an orbit, ascending.
Positions first_members(const Positions& orbit, BlockSystem& classes) {
  Positions firsts;
  for (const std::uint32_t position : orbit) firsts.push_back(classes.first_member(position));
  std::sort(firsts.begin(), firsts.end());
  firsts.erase(std::unique(firsts.begin(), firsts.end()), firsts.end());
  return firsts;
}

// Starts with the single positions of an orbit and goes on to ever coarser classes of them.
std::optional<RecognisedBlocks> PartitionSearch::run() {
  for (std::size_t i = 0; i < std::min(orbits_.size(), kMaxOrbits); ++i) {
    BlockSystem classes(dense_.size());
    do {
      if (auto blocks = complete(orbits_[i], classes)) return blocks;
    } while (coarsen(orbits_[i], classes));
  }
  return std::nullopt;
}

// Adds the positions of the other orbits to the classes of this one.
std::optional<RecognisedBlocks> PartitionSearch::complete(const Positions& orbit, BlockSystem classes) {
  const Positions blocks = first_members(orbit, classes);
  if (blocks.size() < 2) return std::nullopt;
  for (const Positions& other : orbits_) {
    const Positions placed = first_members(orbit, classes);
    if (std::binary_search(placed.begin(), placed.end(), classes.first_member(other[0]))) continue;
    bool is_placed = false;
    for (std::size_t b = 0; b < blocks.size() && !is_placed; ++b) {
      BlockSystem trial = classes;
      trial.unite_invariantly(other[0], blocks[b], generators_);
      is_placed = first_members(orbit, trial).size() == blocks.size();
      if (is_placed) classes = std::move(trial);
    }
    if (!is_placed) return std::nullopt;
  }
  return prove(group_, classes.lists());
}

// Makes the classes on the orbit coarser by the smallest step. Returns false if only one class would be left.
// The steps are tried on the classes as points, which are fewer than the positions. Point 0 has its
// stabiliser among the generators, and a class stands for all that this carries to each other: joining one of
// them or another with the class of 0 makes partitions that the stabiliser carries to each other.
bool PartitionSearch::coarsen(const Positions& orbit, BlockSystem& classes) {
  const Positions firsts = first_members(orbit, classes);
  const std::vector<Images> actions = actions_on(firsts, classes);
  UnionFind alike(static_cast<int>(firsts.size()));
  std::vector<const Images*> generators;
  for (std::size_t g = 0; g < actions.size(); ++g) {
    generators.push_back(&actions[g]);
    if (orbit[0] == 0 && (*generators_[g])[0] == 0) unite_with_images(actions[g], alike);
  }
  std::vector<bool> is_tried(firsts.size());
  std::size_t finest = 0;
  std::size_t fewest_unions = firsts.size() - 1;
  for (std::uint32_t i = 1; i < firsts.size() && 2 * fewest_unions > firsts.size(); ++i) {
    const auto alike_to = static_cast<std::size_t>(alike.find(static_cast<int>(i)));
    if (is_tried[alike_to]) continue;
    is_tried[alike_to] = true;
    const std::size_t unions = BlockSystem(firsts.size()).unite_invariantly(0, i, generators);
    if (unions >= fewest_unions) continue;
    fewest_unions = unions;
    finest = i;
  }
  if (finest == 0) return false;
  classes.unite_invariantly(firsts[0], firsts[finest], generators_);
  return true;
}

// Returns what the generators do to the classes of these first members. The classes are invariant.
std::vector<Images> PartitionSearch::actions_on(const Positions& firsts, BlockSystem& classes) const {
  Positions number(dense_.size());
  for (std::uint32_t i = 0; i < firsts.size(); ++i) number[firsts[i]] = i;
  std::vector<Images> actions;
  for (const Images* generator : generators_) {
    Images& images = actions.emplace_back();
    for (const std::uint32_t first : firsts)
      images.push_back(number[classes.first_member((*generator)[first])]);
  }
  return actions;
}

// Returns false if the group is too small for blocks. With m blocks, of which each has l positions of the
// first orbit, it has at least m! elements for the blocks, times l for each block: the inner group carries
// each of the l positions to each other one. The slack is for rounding.
bool may_have_blocks(const PermutationGroup& group) {
  double log_order = 1e-6;
  for (const int length : group.orbit_lengths()) log_order += std::log(length);
  const int orbit = group.orbit_lengths().front();
  double log_factorial = 0;
  for (int blocks = 2; blocks <= orbit; ++blocks) {
    log_factorial += std::log(blocks);
    if (orbit % blocks == 0 && log_factorial + blocks * std::log(orbit / blocks) <= log_order) return true;
  }
  return false;
}

}  // namespace

std::optional<RecognisedBlocks> recognise_exchanged_blocks(const PermutationGroup& group, int min_blocks) {
  auto blocks = find_exchanged_blocks(group.degree(), group.generators());
  if (!blocks || blocks->count() < min_blocks) return std::nullopt;
  return BlockProof(group, *std::move(blocks)).run(true);
}

std::optional<RecognisedBlocks> recognise_blocks(const PermutationGroup& group, std::size_t max_images) {
  if (!may_have_blocks(group)) return std::nullopt;
  if (auto found = recognise_exchanged_blocks(group, 2)) return found;
  const std::size_t images = group.generators().size() * static_cast<std::size_t>(group.degree());
  return images <= max_images ? PartitionSearch(group).run() : std::nullopt;
}

}  // namespace symfold::detail
