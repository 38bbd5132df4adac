// Whether a group permutes blocks of positions in every way: a symmetric group, or a wreath product with one.

#ifndef SYMFOLD_DETECTOR_LABELLING_EXACT_BLOCK_RECOGNITION_H
#define SYMFOLD_DETECTOR_LABELLING_EXACT_BLOCK_RECOGNITION_H

#include <optional>
#include <vector>

#include "detector/labelling/exact/subgroup.h"

namespace symfold {

struct RecognisedBlocks {
  std::vector<std::vector<std::uint32_t>> blocks;  // as BlockSort takes them
  std::vector<Images> inner;                       // generators of the group inside a block
};

// Proved: neighbouring blocks can be exchanged, every generator carries blocks onto blocks, and what it does
// inside them, brought to the first block, is in the group with the other blocks fixed. Nothing where no such
// blocks are found.
std::optional<RecognisedBlocks> recognise_blocks(const Subgroup& group);

}  // namespace symfold

#endif  // SYMFOLD_DETECTOR_LABELLING_EXACT_BLOCK_RECOGNITION_H
