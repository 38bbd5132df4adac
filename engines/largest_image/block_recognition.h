// Whether a group permutes blocks of positions in every way: a symmetric group, or a wreath product with one.

#ifndef SYMFOLD_ENGINES_LARGEST_IMAGE_BLOCK_RECOGNITION_H
#define SYMFOLD_ENGINES_LARGEST_IMAGE_BLOCK_RECOGNITION_H

#include <optional>
#include <vector>

#include "engines/largest_image/subgroup.h"

namespace symfold::detail {

struct RecognisedBlocks {
  std::vector<std::vector<std::uint32_t>> blocks;  // as BlockSearch takes them
  std::vector<Images> inner;                       // generators of the group inside a block
};

// Proved: neighbouring blocks can be exchanged, every generator carries blocks onto blocks, and what it does
// inside them, brought to the first block, is in the group with the other blocks fixed. Nothing where no such
// blocks are found.
std::optional<RecognisedBlocks> recognise_blocks(const Subgroup& group);

}  // namespace symfold::detail

#endif  // SYMFOLD_ENGINES_LARGEST_IMAGE_BLOCK_RECOGNITION_H
