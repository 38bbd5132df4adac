// Recognises groups that permute blocks of positions in every way: symmetric groups and wreath products with
// one.

#ifndef SYMFOLD_ENGINES_LARGEST_IMAGE_BLOCK_RECOGNITION_H
#define SYMFOLD_ENGINES_LARGEST_IMAGE_BLOCK_RECOGNITION_H

#include <cstddef>
#include <optional>

#include "engines/group/aligned_blocks.h"
#include "engines/group/permutation_group.h"

namespace symfold::detail {

// The first block has the smallest position, and its positions ascend. The others follow by their smallest
// positions. Each is aligned by the lexicographically smallest of the maps by which the group carries the
// first block onto it. So the alignment depends on the group and on the partition into blocks alone.
//
// If the ascending map is one of these maps, it is the smallest one: it brings the smallest image that is
// left to each position in turn. So if the blocks are interleaved in one pattern (block_search.h) and the
// group has the exchanges by position in it, the blocks are aligned by this pattern.
struct RecognisedBlocks {
  AlignedBlocks blocks;
  PermutationGroup inner;  // on the places of a block
};

// Returns blocks, at least so many, that exchanges among the generators show; nothing if there are none. The
// group moves every position. What is returned is proved: neighbouring blocks can be exchanged, every
// generator carries blocks onto blocks, and what it does inside a block is in the group with the other blocks
// fixed. So the group is a wreath product K wr Sym(M) of the inner group K, which is proved to be whole.
// Cost: near-linear in the supports of the generators.
//
// From three blocks on, they depend on the group alone: no other partition makes it a wreath product like
// this. Let P and Q be two, at first of one orbit. K is transitive on the orbit's positions in a block,
// because the elements that keep the block in its place are. Neither is coarser than the other, because
// Sym(M) is primitive on the blocks. So each block of Q meets several blocks of P. An element of K on one
// block of P fixes positions in each block of Q, and so keeps it in its place; but then a block of P lies in
// one block of Q. With several orbits, P is unique on each, and their blocks are joined in one way, because
// no permutation of three or more commutes with all of them.
std::optional<RecognisedBlocks> recognise_exchanged_blocks(const PermutationGroup& group, int min_blocks);

// The same for any blocks, two or more, of a group with canonical generators. What is returned depends on the
// group alone. Three or more blocks are always found if there are any: coarser and coarser partitions of an
// orbit end with them, since a partition that joins positions of two blocks joins all. Generators with more
// than `max_images` images in all are only looked through for exchanges.
//
// Cost: unless the order of the group excludes blocks or exchanges show them, for each length of a block that
// is tried, the images of the generators times the orbits of a position's stabiliser.
std::optional<RecognisedBlocks> recognise_blocks(const PermutationGroup& group, std::size_t max_images);

}  // namespace symfold::detail

#endif  // SYMFOLD_ENGINES_LARGEST_IMAGE_BLOCK_RECOGNITION_H
