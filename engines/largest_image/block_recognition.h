// Recognises groups that permute blocks of positions in every way: symmetric groups and wreath products with
// one.

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

// Returns nothing if no such blocks are found. What is returned is proved: neighbouring blocks can be
// exchanged, every generator carries blocks onto blocks, and what it does inside a block, brought to the
// first one, is in the group with the other blocks fixed.
std::optional<RecognisedBlocks> recognise_blocks(const Subgroup& group);

}  // namespace symfold::detail

#endif  // SYMFOLD_ENGINES_LARGEST_IMAGE_BLOCK_RECOGNITION_H
