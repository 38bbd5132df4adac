// The permutations that a greedy search has chosen, composed at the cost of the partitions that they move.
//
// A chosen permutation of a large model often exchanges a few partitions of thousands. Composing over all
// partitions for every base costs (partitions x bases); over the moved ones it costs what the moves cost.

#ifndef SYMFOLD_DETECTOR_LABELLING_CHOSEN_MOVES_H
#define SYMFOLD_DETECTOR_LABELLING_CHOSEN_MOVES_H

#include <cstddef>
#include <span>
#include <vector>

#include "components/permutation.h"

namespace symfold::detail {

// Made once from tables of permutations of the partitions, of which a short can number each. Then only read,
// by any number of threads. A choice is a base and the index of one of its records; it stands for all records
// of the same value.
class ChosenMoves {
 public:
  // Views the records, which must outlive it unchanged. Holds 4 bytes for each partition that a permutation
  // moves if it moves at most a quarter of them; otherwise the permutation itself is read when it is chosen.
  ChosenMoves(std::vector<std::span<const ValPerms>> records_of_base, std::size_t partition_count);

  // composed := composed after P, where P is the last permutation of the choice. Overwrites `scratch`. Both
  // hold an entry for each partition.
  void compose_last(std::size_t base, int record, short* composed, short* scratch) const;

  // Makes the identity `images` the inverse of the last permutation of the choice.
  void invert_last(std::size_t base, int record, short* images) const;

  // Writes to `witness` the permutation that applies all permutations of all choices, one for each base and
  // -1 for none, in order. Overwrites the two work arrays, which hold an entry for each partition too.
  void find_witness(std::span<const int> choices, short* witness, short* inverse, short* scratch) const;

 private:
  struct Move {
    short point;
    short image;
  };

  void add(const Permutation& permutation);
  std::span<const Move> moves_of(std::size_t base, int record) const;
  const Permutation& last_of(std::size_t base, int record) const;

  std::vector<std::span<const ValPerms>> records_of_base_;
  std::size_t partition_count_;
  std::vector<Move> moves_;
  std::vector<std::size_t> ends_{0};  // by record, those of all bases in order; their moves' ends
  std::vector<std::size_t> first_record_of_base_;
};

}  // namespace symfold::detail

#endif  // SYMFOLD_DETECTOR_LABELLING_CHOSEN_MOVES_H
