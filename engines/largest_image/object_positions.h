// Positions that belong to objects: clients and servers, and a link for each of both.
//
//     positions  h0 h1 h2 | l01 l02 l12        objects 0, 1, 2; l12 belongs to the pair of 1 and 2
//
// The objects of a position each have a role. Objects of one position are in one role together if they are
// unordered there: a link between equals has two in one role, a link from one to another has two roles, and
// (client, server, channel) has three. An object in a role is a *seat*, and a position is the set of its
// seats: l12 is the set of "1 as an end" and "2 as an end".

#ifndef SYMFOLD_ENGINES_LARGEST_IMAGE_OBJECT_POSITIONS_H
#define SYMFOLD_ENGINES_LARGEST_IMAGE_OBJECT_POSITIONS_H

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace symfold::detail {

// Objects are numbered class after class.
class ObjectPositions {
 public:
  using Numbers = std::vector<std::uint32_t>;
  static constexpr std::uint32_t kNone = UINT32_MAX;

  // An object, and the role in which it is.
  struct Seat {
    std::uint32_t role;
    std::uint32_t object;
  };

  // `class_begins` holds the first object of each class and, at the end, the number of objects. All objects
  // of class class_of_role[r] can be in role r. seats[p] are those of position p.
  ObjectPositions(Numbers class_begins, const Numbers& class_of_role,
                  const std::vector<std::vector<Seat>>& seats);

  // True if no two positions have the same seats.
  bool are_distinct() const { return are_distinct_; }

  std::size_t object_count() const { return class_begins_.back(); }
  std::size_t position_count() const { return begins_.size() - 1; }
  const Numbers& class_begins() const { return class_begins_; }

  // The seats are numbered role after role, in a role by object.
  const std::vector<Seat>& seats() const { return seats_; }
  std::span<const std::uint32_t> seats_of(std::size_t position) const {
    return std::span(seat_numbers_).subspan(begins_[position], begins_[position + 1] - begins_[position]);
  }
  // The seat of this object in the role of that seat.
  std::uint32_t seat_with(std::uint32_t seat, std::uint32_t object) const {
    return seat + object - seats_[seat].object;
  }

  // A position's key is the sum of its seats' keys. Returns the position with this key; if there is none,
  // kNone. For distinct positions, this is exact: no two have the same key.
  std::uint64_t key_of_seat(std::uint32_t seat) const { return keys_[seat]; }
  std::uint32_t position_with(std::uint64_t key) const {
    std::size_t i = key >> shift_;
    while (table_[i].key != key && table_[i].position != kNone) i = (i + 1) & (table_.size() - 1);
    return table_[i].position;
  }

  // Returns what a permutation of the objects does to the positions. Empty if it carries the seats of a
  // position to those of none.
  Numbers images_of(const Numbers& objects) const;

 private:
  struct Entry {
    std::uint64_t key = 0;
    std::uint32_t position = kNone;
  };

  bool fill_table();

  Numbers class_begins_;
  std::vector<Seat> seats_;
  std::vector<std::uint64_t> keys_;  // by seat
  Numbers begins_;                   // by position, into the next
  Numbers seat_numbers_;             // of a position ascending
  std::vector<Entry> table_;
  int shift_ = 0;
  bool are_distinct_;
};

}  // namespace symfold::detail

#endif  // SYMFOLD_ENGINES_LARGEST_IMAGE_OBJECT_POSITIONS_H
