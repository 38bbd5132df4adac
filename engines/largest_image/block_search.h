// Symmetric groups that permute blocks of positions, alone or over a group inside each block (a wreath
// product): a canonical image is found by sorting.
//
// Three racks with a fan and two servers each, racks interchangeable and servers within a rack: the positions
// (f0 s0 s1) (f1 s2 s3) (f2 s4 s5) are three blocks. First each block becomes its own largest image, here by
// sorting its servers; then the blocks are sorted as tuples, largest first.
//
// Any alignment of the blocks is right, that is, any places of the positions in their blocks by which the
// group exchanges blocks: states of one class have the same blocks in another order, up to the group inside,
// and so the same label, an image of them. It is the largest image if the inner searches find largest images
// and the blocks' positions are interleaved in one pattern: for every k, the k-th positions of the blocks
// ascend from block to block, and within each block the positions ascend. If two blocks were not in order,
// exchanging them would raise the value at the first position where they differ, which comes before all
// others that the exchange changes.
//
// Cost for M blocks of B positions: the inner searches, M log M comparisons of tuples and two copies. Blocks
// of one position with few different values are counted instead, in two passes.

#ifndef SYMFOLD_ENGINES_LARGEST_IMAGE_BLOCK_SEARCH_H
#define SYMFOLD_ENGINES_LARGEST_IMAGE_BLOCK_SEARCH_H

#include <vector>

#include "engines/group/aligned_blocks.h"
#include "engines/largest_image/image_search.h"

namespace symfold::detail {

class BlockSearch : public ImageSearch {
 public:
  // Every position is in one of the blocks. `inner` is the search for the group inside a block, on its
  // places; null if that is trivial.
  BlockSearch(const AlignedBlocks& blocks, std::unique_ptr<ImageSearch> inner);
  BlockSearch(const BlockSearch& other);
  std::unique_ptr<ImageSearch> clone() const override { return std::make_unique<BlockSearch>(*this); }
  bool maximise(Placed* values) override;

 private:
  bool order_by_counting();
  bool sorts_before(std::uint32_t a, std::uint32_t b) const;

  std::size_t block_length_;
  std::vector<std::uint32_t> positions_;  // block after block
  std::unique_ptr<ImageSearch> inner_;
  std::vector<Placed> tuples_;        // the blocks' contents, block after block
  std::vector<std::uint32_t> order_;  // of the blocks
};

}  // namespace symfold::detail

#endif  // SYMFOLD_ENGINES_LARGEST_IMAGE_BLOCK_SEARCH_H
