// The greedy label search over a table of moves: which image of the current state is the largest, base by
// base, without making the images.
//
// A plan is made once from tables whose permutations are bijections between partitions of equal size. Any
// number of searches then share it, each on a thread of its own. A search by the plan has the same states and
// the same choices as the search step by step.

#ifndef SYMFOLD_DETECTOR_LABELLING_MOVE_PLAN_H
#define SYMFOLD_DETECTOR_LABELLING_MOVE_PLAN_H

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <vector>

#include "components/permutation.h"

namespace symfold::detail {

// Returns true if the partitions follow each other without gaps from byte 0 on and make no state of more than
// MovePlan::kMaxStateBytes.
bool is_tiling(std::span<const int> sizes, std::span<const int> offsets);

// Returns true for a permutation of the partitions between partitions of equal size.
bool keeps_sizes(const Permutation& permutation, std::span<const int> sizes);

class MovePlan {
 public:
  static constexpr std::int64_t kMaxStateBytes = std::int64_t{1} << 27;

  // A plan for the records of each base, in base order, and partitions of these sizes and offsets in bytes.
  // Returns null if the partitions do not follow each other without gaps, if a permutation is no bijection
  // between partitions of equal size, if a state has more than 128 MiB or if the plan would take more than
  // `max_bytes`. Linear in the tables, but for the sorting of each base's values.
  static std::unique_ptr<MovePlan> make(const std::vector<std::span<const ValPerms>>& records_of_base,
                                        std::span<const int> sizes, std::span<const int> offsets,
                                        std::size_t max_bytes);

  int state_size() const { return state_size_; }  // bytes
  int partition_count() const { return partition_count_; }
  std::size_t step_count() const { return first_of_step_.size() - 1; }  // bases

  // An image that the search step by step makes: move `move` - 1 of base `step`, none if `move` is 0.
  struct Image {
    std::size_t step = static_cast<std::size_t>(-1);  // no base: there is no such image
    std::size_t move = 0;
  };

  // The last image that the search step by step makes, and the last one that a permutation makes.
  Image last_image() const { return last_image_; }
  Image last_moved_image() const { return last_moved_image_; }

 private:
  friend class MoveSearch;

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

  class Composer;

  MovePlan(int state_size, int partition_count);
  bool add_step(std::span<const ValPerms> records, std::span<const int> sizes, std::span<const int> offsets,
                std::size_t max_bytes);
  bool add_move(int record, Composer& composer, std::span<const int> sizes, std::span<const int> offsets);

  int state_size_;
  int partition_count_;
  Move staying_;                            // moves nothing
  std::vector<Piece> pieces_;               // move after move, each up to the end of the state
  std::vector<Move> moves_;                 // base after base
  std::vector<std::size_t> first_of_step_;  // for each base its first move; at the end their number
  Image last_image_;
  Image last_moved_image_;
};

// One search at a time.
class MoveSearch {
 public:
  // The plan must outlive the search.
  explicit MoveSearch(const MovePlan& plan);
  MoveSearch(const MoveSearch&) = delete;
  MoveSearch& operator=(const MoveSearch&) = delete;

  // Makes `state` the current state.
  void start(const unsigned char* state);

  // Replaces the current state by its largest image under the moves of base `step`. Returns the index of the
  // first record that makes it, or -1 if no image is larger. Allocates nothing.
  int advance(std::size_t step);

  // Makes an image of the current state, which stays what it is. state_size() bytes, valid until the next
  // call.
  const unsigned char* make_image(MovePlan::Image image);

  // state_size() bytes, valid until the next call.
  const unsigned char* current() const { return current_; }

 private:
  using Piece = MovePlan::Piece;
  using Move = MovePlan::Move;

  std::uint64_t head_of(const Move& move) const;
  bool beats(const Move& move, std::uint64_t head, const Move& best, std::uint64_t best_head) const;
  bool is_larger(const Move& move, const Move& best, int position) const;
  void make_next(const Move& move);

  // What the plan has, at hand.
  const int state_size_;
  const Move* const staying_;
  const Piece* const pieces_;
  const Move* const moves_;
  const std::size_t* const first_of_step_;
  std::vector<unsigned char> buffers_;  // the current state and the next one, with room around each
  unsigned char* current_;
  unsigned char* next_;
};

}  // namespace symfold::detail

#endif  // SYMFOLD_DETECTOR_LABELLING_MOVE_PLAN_H
