// The label search over a table of moves: which image of the current state is the largest, base by base,
// without making the images.
//
// A plan is made once from tables whose permutations are bijections between partitions of equal size, and
// then labels any number of states. It gives the same states and the same choices as the search step by step.

#ifndef SYMFOLD_DETECTOR_LABELLING_MOVE_PLAN_H
#define SYMFOLD_DETECTOR_LABELLING_MOVE_PLAN_H

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <vector>

#include "components/permutation.h"

namespace symfold {

class MovePlan {
 public:
  // The plan for the records of each base, in base order, and partitions of these sizes and offsets in bytes.
  // None where the partitions do not follow each other without gaps, where a permutation is no bijection
  // between partitions of equal size, where a state has more than 128 MiB or the plan would take more than
  // 1 GiB. Linear in the tables, but for the sorting of each base's values.
  static std::unique_ptr<MovePlan> make(const std::vector<std::span<const ValPerms>>& records_of_base,
                                        std::span<const int> sizes, std::span<const int> offsets);

  int state_size() const { return state_size_; }  // bytes
  int partition_count() const { return partition_count_; }

  // Makes `state` the current state.
  void start(const unsigned char* state);

  // Replaces the current state by its largest image under the moves of base `step`, and returns the index of
  // the first record that gives it; -1 where no image is larger. Allocates nothing.
  int advance(std::size_t step);

  // state_size() bytes, valid until the next call.
  const unsigned char* current() const { return current_; }

 private:
  // Up to byte `end` of the image, byte b comes from byte b + shift.
  struct Piece {
    int end;
    int shift;
  };
  // One image of the state. Its bytes before `first_byte` are the state's. Its head is the next 64 -
  // `head_surplus` bits: `first_mask` from `first_shift` further, the others from `second_shift` further.
  struct Move {
    std::uint64_t first_mask;
    int first_byte;
    int first_shift;
    int second_shift;
    int head_surplus;
    std::uint32_t first_piece;
    int record;
  };

  MovePlan(int state_size, int partition_count);
  bool add_step(std::span<const ValPerms> records, std::span<const int> sizes, std::span<const int> offsets);
  void add_move(int record, const std::vector<int>& sources, std::span<const int> sizes,
                std::span<const int> offsets);
  std::uint64_t head_of(const Move& move) const;
  bool beats(const Move& move, std::uint64_t head, const Move& best, std::uint64_t best_head) const;
  bool is_larger(const Move& move, const Move& best, int position) const;
  void apply(const Move& move);

  int state_size_;
  int partition_count_;
  Move staying_;                            // moves nothing
  std::vector<Piece> pieces_;               // move after move, each up to the end of the state
  std::vector<Move> moves_;                 // base after base
  std::vector<std::size_t> first_of_step_;  // per base, its first move; at the end their number
  std::vector<unsigned char> buffers_;      // the current state and the next one, with room around each
  unsigned char* current_;
  unsigned char* next_;
};

}  // namespace symfold

#endif  // SYMFOLD_DETECTOR_LABELLING_MOVE_PLAN_H
