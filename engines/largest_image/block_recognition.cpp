#include "engines/largest_image/block_recognition.h"

#include <algorithm>
#include <set>

#include "engines/base/images.h"
#include "engines/largest_image/block_system.h"

namespace symfold::detail {
namespace {

// Orbits that are tried as the beginning of blocks.
constexpr std::size_t kMaxOrbits = 4;

using Positions = std::vector<std::uint32_t>;

class BlockRecognition {
 public:
  explicit BlockRecognition(const Subgroup& group)
      : group_(group), sample_(sample_of(group.generators())), orbits_(group.orbits()) {}

  std::optional<RecognisedBlocks> run();

 private:
  std::optional<RecognisedBlocks> complete(const Positions& orbit, BlockSystem classes);
  bool coarsen(const Positions& orbit, BlockSystem& classes) const;
  std::vector<Images> actions_on(const Positions& firsts, BlockSystem& classes) const;
  std::optional<RecognisedBlocks> prove(std::vector<Positions> blocks) const;
  bool has_neighbour_swaps(const std::vector<Positions>& blocks) const;

  const Subgroup& group_;
  std::vector<const Images*> sample_;
  std::vector<Positions> orbits_;
};

// Returns the first members of the classes on an orbit, ascending.
Positions first_members(const Positions& orbit, BlockSystem& classes) {
  Positions firsts;
  for (const std::uint32_t position : orbit) firsts.push_back(classes.first_member(position));
  std::sort(firsts.begin(), firsts.end());
  firsts.erase(std::unique(firsts.begin(), firsts.end()), firsts.end());
  return firsts;
}

// Returns true if all lengths are equal and, for every k, the k-th positions of the blocks ascend.
bool are_interleaved_in_one_pattern(const std::vector<Positions>& blocks) {
  for (std::size_t b = 1; b < blocks.size(); ++b) {
    if (blocks[b].size() != blocks[0].size()) return false;
    for (std::size_t k = 0; k < blocks[b].size(); ++k) {
      if (blocks[b - 1][k] >= blocks[b][k]) return false;
    }
  }
  return true;
}

// Starts with the single positions of an orbit and goes on to ever coarser classes of them.
std::optional<RecognisedBlocks> BlockRecognition::run() {
  for (std::size_t i = 0; i < std::min(orbits_.size(), kMaxOrbits); ++i) {
    BlockSystem classes(group_.size());
    do {
      if (auto blocks = complete(orbits_[i], classes)) return blocks;
    } while (coarsen(orbits_[i], classes));
  }
  return std::nullopt;
}

// Adds the positions of the other orbits to the classes of this one.
std::optional<RecognisedBlocks> BlockRecognition::complete(const Positions& orbit, BlockSystem classes) {
  const Positions blocks = first_members(orbit, classes);
  if (blocks.size() < 2) return std::nullopt;
  for (const Positions& other : orbits_) {
    const Positions placed = first_members(orbit, classes);
    if (std::binary_search(placed.begin(), placed.end(), classes.first_member(other[0]))) continue;
    bool is_placed = false;
    for (std::size_t b = 0; b < blocks.size() && !is_placed; ++b) {
      BlockSystem trial = classes;
      trial.unite_invariantly(other[0], blocks[b], sample_);
      is_placed = first_members(orbit, trial).size() == blocks.size();
      if (is_placed) classes = std::move(trial);
    }
    if (!is_placed) return std::nullopt;
  }
  return prove(classes.lists());
}

// Makes the classes on the orbit coarser by the smallest step. Returns false if only one class would be left.
// The steps are tried on the classes as points, which are fewer than the positions.
bool BlockRecognition::coarsen(const Positions& orbit, BlockSystem& classes) const {
  const Positions firsts = first_members(orbit, classes);
  const std::vector<Images> actions = actions_on(firsts, classes);
  std::vector<const Images*> generators;
  generators.reserve(actions.size());
  for (const Images& action : actions) generators.push_back(&action);
  std::size_t finest = 0;
  std::size_t fewest_unions = firsts.size() - 1;
  for (std::uint32_t i = 1; i < firsts.size() && 2 * fewest_unions > firsts.size(); ++i) {
    const std::size_t unions = BlockSystem(firsts.size()).unite_invariantly(0, i, generators);
    if (unions >= fewest_unions) continue;
    fewest_unions = unions;
    finest = i;
  }
  if (finest == 0) return false;
  classes.unite_invariantly(firsts[0], firsts[finest], sample_);
  return true;
}

// Returns what the sample does to the classes of these first members. The classes are invariant.
std::vector<Images> BlockRecognition::actions_on(const Positions& firsts, BlockSystem& classes) const {
  Positions number(group_.size());
  for (std::uint32_t i = 0; i < firsts.size(); ++i) number[firsts[i]] = i;
  std::vector<Images> actions;
  for (const Images* generator : sample_) {
    Images& images = actions.emplace_back();
    for (const std::uint32_t first : firsts)
      images.push_back(number[classes.first_member((*generator)[first])]);
  }
  return actions;
}

bool BlockRecognition::has_neighbour_swaps(const std::vector<Positions>& blocks) const {
  for (std::size_t b = 1; b < blocks.size(); ++b) {
    Images swap = identity_images<Images>(group_.size());
    for (std::size_t k = 0; k < blocks[b].size(); ++k) std::swap(swap[blocks[b - 1][k]], swap[blocks[b][k]]);
    if (!group_.contains(swap)) return false;
  }
  return true;
}

std::optional<RecognisedBlocks> BlockRecognition::prove(std::vector<Positions> blocks) const {
  if (!are_interleaved_in_one_pattern(blocks) || !has_neighbour_swaps(blocks)) return std::nullopt;
  const std::size_t length = blocks[0].size();
  Positions block_of(group_.size());
  Positions place_in_block(group_.size());
  for (std::uint32_t b = 0; b < blocks.size(); ++b) {
    for (std::uint32_t k = 0; k < length; ++k) {
      block_of[blocks[b][k]] = b;
      place_in_block[blocks[b][k]] = k;
    }
  }
  std::set<Images> inner;
  Images inside(length);
  for (const Images& generator : group_.generators()) {
    for (const Positions& block : blocks) {
      for (std::size_t k = 0; k < length; ++k) {
        if (block_of[generator[block[k]]] != block_of[generator[block[0]]]) return std::nullopt;
        inside[k] = place_in_block[generator[block[k]]];
      }
      if (!is_identity(inside)) inner.insert(inside);
    }
  }
  const Subgroup first_block = group_.on(blocks[0], {});
  for (const Images& images : inner) {
    if (!first_block.contains(images)) return std::nullopt;
  }
  return RecognisedBlocks{std::move(blocks), {inner.begin(), inner.end()}};
}

}  // namespace

std::optional<RecognisedBlocks> recognise_blocks(const Subgroup& group) {
  return BlockRecognition(group).run();
}

}  // namespace symfold::detail
