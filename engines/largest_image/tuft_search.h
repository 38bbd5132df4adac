// Interchangeable parts that hang on a structure: a ring of routers, each with clients of its own.
//
// The clients of one router are a *tuft*: its blocks of positions, here one client each, may be permuted in
// every way while all else stays. The other elements of the group move tufts as wholes: each carries the k-th
// position of a block to the k-th position of another. So each state has the same canonical image as the one
// in which the blocks of each tuft are sorted, and the tufts can be taken for single positions: the value of
// one is the rank of its sorted contents among those of the state. What is left is a smaller group, which has
// a search of its own.
//
// Why this is right. Let N be the group of all permutations of blocks inside tufts. Every element is one of N
// after one that keeps the order of blocks from tuft to tuft, so the latter is in the group too, and the
// image is one under the group. Equivalent states have the same contents of tufts, so ranks say the same in
// both, and equivalent smaller states; these have the same canonical image, which is filled with the same
// contents.
//
// Cost: sorting the blocks, then the tufts, and the smaller search.

#ifndef SYMFOLD_ENGINES_LARGEST_IMAGE_TUFT_SEARCH_H
#define SYMFOLD_ENGINES_LARGEST_IMAGE_TUFT_SEARCH_H

#include <memory>
#include <optional>
#include <vector>

#include "engines/group/permutation_group.h"
#include "engines/largest_image/image_search.h"

namespace symfold::detail {

// Tufts that the group carries onto each other: block_count blocks of block_length positions each.
struct Tufts {
  std::size_t block_count;
  std::size_t block_length;
  std::vector<std::uint32_t> positions;  // tuft after tuft, block after block
  std::vector<std::uint32_t> items;      // by tuft

  std::size_t size() const { return block_count * block_length; }  // positions of a tuft
};

// The points of the smaller group, its items, are the tufts and the other positions in the order of their
// smallest positions.
struct RecognisedTufts {
  std::vector<Tufts> kinds;
  std::vector<std::uint32_t> others;       // positions in no tuft
  std::vector<std::uint32_t> other_items;  // of these
  PermutationGroup smaller;
  std::vector<bool> has_value;  // by item
};

// Returns nothing if there are no tufts, or if tables would have more than max_entries entries. What is
// returned is proved: exchanges of blocks of a tuft are in the group, and each generator carries tufts to
// tufts, positions of a block in their order. They depend on the group alone.
std::optional<RecognisedTufts> recognise_tufts(const PermutationGroup& group,
                                               const std::vector<bool>& has_value, std::size_t max_entries);

class TuftSearch : public ImageSearch {
 public:
  // `smaller` is the search for the smaller group, null if that is trivial.
  TuftSearch(RecognisedTufts tufts, std::unique_ptr<ImageSearch> smaller);
  TuftSearch(const TuftSearch& other);
  std::unique_ptr<ImageSearch> clone() const override { return std::make_unique<TuftSearch>(*this); }
  bool maximise(Placed* values) override;

 private:
  struct Plan {
    std::vector<Tufts> kinds;
    std::vector<std::uint32_t> others;
    std::vector<std::uint32_t> other_items;
    std::vector<std::uint32_t> place_of_item;  // the position, or the tuft's place in its kind
  };

  static void fill_contents(const Tufts& tufts, const Placed* values, Placed* contents);
  void rank_tufts(const Tufts& tufts, const Placed* contents);

  std::shared_ptr<const Plan> plan_;
  std::unique_ptr<ImageSearch> smaller_;
  std::vector<Placed> smaller_values_;  // by item: the value, or the rank of the tuft
  std::vector<Placed> contents_;        // of the tufts, kind after kind, blocks sorted
  std::vector<std::uint32_t> order_;    // of tufts
  std::vector<Placed> image_;
};

}  // namespace symfold::detail

#endif  // SYMFOLD_ENGINES_LARGEST_IMAGE_TUFT_SEARCH_H
