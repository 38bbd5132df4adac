// Moves of bytes in place of permutations of partitions.
//
// Idea. An image is the state read in another order. A move writes that order down as pieces: up to byte
// `end` of the image, byte b is byte b + shift of the state. Neighbours with one shift are one piece, so a
// rotation has two pieces, however many partitions it turns, and an exchange of two partitions at most five.
// Four partitions of 2 bytes:
//
//   state  aa bb cc dd      rotated by one     bb cc dd aa   pieces (6, +2) (8, -6)
//                           first two swapped  bb aa cc dd   pieces (2, +2) (4, -2) (8, 0)
//
// To find the larger of two images, walk their pieces side by side: bytes that both take from the same place
// are equal unread, the others are compared eight at a time, up to the first difference. Only the largest
// image of a step is made, when the step is over.
//
// Most images lose at once: a move's head, the image's bytes from the first moved one on, as far as two
// pieces reach but at most eight, is one number put together from two loads. It is compared with the head of
// the best image so far if that begins at the same byte, or else with the state, which the best image
// equals before its own first byte. Only equal heads make the walk necessary, from their end on.
//
// Loads and stores take whole words. If they read or write past a piece, the surplus is masked or
// overwritten by the next piece, and past the state it falls into the room around the buffers.
//
// Cost per state: a few nanoseconds per move, more if images tie for long, and one copy of the state per
// base that changes it. Memory: 8 bytes per piece and 32 per move.
//
// Tried and dropped: making the best image whenever it changes and comparing with its bytes. That walks one
// list of pieces in place of two, but reads all that both leave in place: star N=100 on two values took 243
// us for 83, and every improvement in a ring costs a copy. One head position per base, the first byte that
// any of its moves moves: for base points that move earlier ones too, nearly all heads were then equal. Heads
// of four pieces: fewer walks, dearer heads, nothing gained.

#include "detector/labelling/move_plan.h"

#include <algorithm>
#include <bit>
#include <cstring>
#include <map>
#include <numeric>
#include <utility>

namespace symfold::detail {
namespace {

constexpr int kWord = 8;           // bytes compared at once
constexpr std::size_t kRoom = 16;  // bytes copied at once

// Eight bytes as a number that is ordered as memcmp orders them.
std::uint64_t load_word(const unsigned char* bytes) {
  const auto at = [bytes](int i) { return std::uint64_t{bytes[i]} << 8 * (kWord - 1 - i); };
  return at(0) | at(1) | at(2) | at(3) | at(4) | at(5) | at(6) | at(7);
}

// The mask of the first `bytes` bytes of a word, one at least.
std::uint64_t leading(int bytes) { return ~std::uint64_t{0} << 8 * (kWord - bytes); }

}  // namespace

bool is_tiling(std::span<const int> sizes, std::span<const int> offsets) {
  std::int64_t end = 0;
  if (offsets.size() < sizes.size()) return false;
  for (std::size_t c = 0; c < sizes.size(); ++c) {
    if (sizes[c] < 0 || offsets[c] != end) return false;
    end += sizes[c];
    if (end > MovePlan::kMaxStateBytes) return false;
  }
  return true;
}

bool keeps_sizes(const Permutation& permutation, std::span<const int> sizes) {
  if (permutation.GetN() != static_cast<int>(sizes.size()) || !permutation.IsPermutation()) return false;
  bool keeps = true;
  permutation.VisitMoves([&](int c, int image) {
    keeps = keeps && sizes[static_cast<std::size_t>(c)] == sizes[static_cast<std::size_t>(image)];
  });
  return keeps;
}

std::unique_ptr<MovePlan> MovePlan::make(const std::vector<std::span<const ValPerms>>& records_of_base,
                                         std::span<const int> sizes, std::span<const int> offsets,
                                         std::size_t max_bytes) {
  if (!is_tiling(sizes, offsets)) return nullptr;
  std::unique_ptr<MovePlan> plan(
      new MovePlan(std::accumulate(sizes.begin(), sizes.end(), 0), static_cast<int>(sizes.size())));
  for (const std::span<const ValPerms> records : records_of_base) {
    if (!plan->add_step(records, sizes, offsets, max_bytes)) return nullptr;
  }
  plan->pieces_.shrink_to_fit();
  return plan;
}

MovePlan::MovePlan(int state_size, int partition_count)
    : state_size_(state_size), partition_count_(partition_count) {
  first_of_step_.push_back(0);
  pieces_.push_back({state_size, 0});
  staying_ = {0, state_size, 0, 0, 0, 0, -1};
}

// Composes the permutations of one move after the other, at the cost of what they move.
class MovePlan::Composer {
 public:
  explicit Composer(std::size_t partition_count) : sources_(partition_count) {
    std::iota(sources_.begin(), sources_.end(), 0);
  }

  // The moves so far, then the permutation.
  void append(const Permutation& permutation) {
    arrivals_.clear();
    permutation.VisitMoves([this](int c, int image) { arrivals_.push_back({image, source(c)}); });
    for (const auto& [place, source_of_place] : arrivals_) {
      if (source(place) == place) touched_.push_back(place);
      source(place) = source_of_place;
    }
  }

  // Calls visit(place, source) for each place, ascending, at which another partition lands, and begins anew.
  template <class Visit>
  void take(const Visit& visit) {
    std::sort(touched_.begin(), touched_.end());
    for (const int place : touched_) {
      if (source(place) != place) visit(place, std::exchange(source(place), place));
    }
    touched_.clear();
  }

 private:
  int& source(int place) { return sources_[static_cast<std::size_t>(place)]; }

  std::vector<int> sources_;  // by place: the partition that lands there
  std::vector<int> touched_;  // all places with other partitions, and others
  SparsePermutation arrivals_;
};

// All records of a value act together, so only the first of them is a move of its own.
bool MovePlan::add_step(std::span<const ValPerms> records, std::span<const int> sizes,
                        std::span<const int> offsets, std::size_t max_bytes) {
  std::map<int, std::vector<std::size_t>> records_of_value;
  for (std::size_t j = 0; j < records.size(); ++j) records_of_value[records[j].Value].push_back(j);
  std::map<int, std::size_t> move_of_value;
  Composer composer(sizes.size());
  for (std::size_t j = 0; j < records.size(); ++j) {
    const std::vector<std::size_t>& together = records_of_value[records[j].Value];
    if (together.front() != j) continue;
    for (const std::size_t k : together) {
      for (const Permutation& permutation : records[k].Perms) {
        if (!keeps_sizes(permutation, sizes)) return false;
        composer.append(permutation);
      }
    }
    if (add_move(static_cast<int>(j), composer, sizes, offsets)) {
      move_of_value[records[j].Value] = moves_.size();
    }
    if (pieces_.size() * sizeof(Piece) + moves_.size() * sizeof(Move) > max_bytes) return false;
  }
  for (const ValPerms& record : records) {
    last_image_ = {step_count(), move_of_value[record.Value]};
    const auto& together = records_of_value[record.Value];
    if (std::any_of(together.begin(), together.end(),
                    [&](std::size_t k) { return !records[k].Perms.empty(); })) {
      last_moved_image_ = last_image_;
    }
  }
  first_of_step_.push_back(moves_.size());
  return true;
}

// Stretches that stay lie between the places that are moved. A move of one piece moves nothing, can never win
// and is not added.
bool MovePlan::add_move(int record, Composer& composer, std::span<const int> sizes,
                        std::span<const int> offsets) {
  const std::size_t first_piece = pieces_.size();
  const auto extend = [&](int end, int shift) {
    const bool is_new = pieces_.size() == first_piece || pieces_.back().shift != shift;
    const int begin = pieces_.size() == first_piece ? 0 : pieces_.back().end;
    if (end == begin) return;
    if (is_new) pieces_.push_back({0, shift});
    pieces_.back().end = end;
  };
  composer.take([&](int place, int source) {
    const auto d = static_cast<std::size_t>(place);
    extend(offsets[d], 0);
    extend(offsets[d] + sizes[d], offsets[static_cast<std::size_t>(source)] - offsets[d]);
  });
  extend(state_size_, 0);
  if (pieces_.size() <= first_piece + 1) {
    pieces_.resize(first_piece);
    return false;
  }
  const bool starts_later = pieces_[first_piece].shift == 0;
  const int first_byte = starts_later ? pieces_[first_piece].end : 0;
  const Piece* first = &pieces_[first_piece + (starts_later ? 1 : 0)];
  const Piece* second = first->end - first_byte < kWord ? first + 1 : first;
  const int first_length = std::min(kWord, first->end - first_byte);
  const int length = std::min(kWord, second->end - first_byte);
  moves_.push_back({leading(first_length), first_byte, first->shift, second->shift, 8 * (kWord - length),
                    static_cast<std::uint32_t>(first_piece), record});
  return true;
}

MoveSearch::MoveSearch(const MovePlan& plan)
    : state_size_(plan.state_size_),
      staying_(&plan.staying_),
      pieces_(plan.pieces_.data()),
      moves_(plan.moves_.data()),
      first_of_step_(plan.first_of_step_.data()) {
  const std::size_t stride = static_cast<std::size_t>(state_size_) + 2 * kRoom;
  buffers_.resize(2 * stride);
  current_ = buffers_.data() + kRoom;
  next_ = current_ + stride;
}

void MoveSearch::start(const unsigned char* state) { std::copy_n(state, state_size_, current_); }

inline std::uint64_t MoveSearch::head_of(const Move& move) const {
  const unsigned char* at = current_ + move.first_byte;
  const std::uint64_t first = load_word(at + move.first_shift) & move.first_mask;
  const std::uint64_t second = load_word(at + move.second_shift) & ~move.first_mask;
  return first | second;
}

int MoveSearch::advance(std::size_t step) {
  const Move* best = staying_;
  std::uint64_t best_head = 0;
  const Move* const end = moves_ + first_of_step_[step + 1];
  for (const Move* move = moves_ + first_of_step_[step]; move != end; ++move) {
    const std::uint64_t head = head_of(*move);
    if (!beats(*move, head, *best, best_head)) continue;
    best = move;
    best_head = head;
  }
  if (best != staying_) {
    make_next(*best);
    std::swap(current_, next_);
  }
  return best->record;
}

// Returns true if the image is larger than the best one so far. If the best begins earlier, heads say
// nothing.
inline bool MoveSearch::beats(const Move& move, std::uint64_t head, const Move& best,
                              std::uint64_t best_head) const {
  if (move.first_byte <= best.first_byte) {
    const int lead = best.first_byte - move.first_byte;
    const std::uint64_t rival = lead == 0 ? best_head : load_word(current_ + move.first_byte);
    const int surplus = std::max(move.head_surplus, lead == 0 ? best.head_surplus : 8 * (kWord - lead));
    if (((head ^ rival) >> surplus) != 0) return head > rival;
    return is_larger(move, best, move.first_byte + kWord - surplus / 8);
  }
  return is_larger(move, best, best.first_byte);
}

// Does the same for images that are equal before `position`.
bool MoveSearch::is_larger(const Move& move, const Move& best, int position) const {
  if (position == state_size_) return false;
  const Piece* a = &pieces_[move.first_piece];
  const Piece* b = &pieces_[best.first_piece];
  while (a->end <= position) ++a;
  while (b->end <= position) ++b;
  while (position < state_size_) {
    const int end = std::min(a->end, b->end);
    if (a->shift != b->shift) {
      for (; position < end; position += kWord) {
        const int surplus = 8 * std::max(0, kWord - (end - position));
        const std::uint64_t word_a = load_word(current_ + position + a->shift) >> surplus;
        const std::uint64_t word_b = load_word(current_ + position + b->shift) >> surplus;
        if (word_a != word_b) return word_a > word_b;
      }
    }
    position = end;
    a += a->end == end;
    b += b->end == end;
  }
  return false;
}

const unsigned char* MoveSearch::make_image(MovePlan::Image image) {
  make_next(image.move == 0 ? *staying_ : moves_[image.move - 1]);
  return next_;
}

void MoveSearch::make_next(const Move& move) {
  const Piece* piece = &pieces_[move.first_piece];
  for (int position = 0; position < state_size_; ++piece) {
    for (; position < piece->end; position += static_cast<int>(kRoom)) {
      std::memcpy(next_ + position, current_ + position + piece->shift, kRoom);
    }
    position = piece->end;
  }
}

}  // namespace symfold::detail
