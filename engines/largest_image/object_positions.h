// Positions that belong to objects and pairs of objects.

#ifndef SYMFOLD_ENGINES_LARGEST_IMAGE_OBJECT_POSITIONS_H
#define SYMFOLD_ENGINES_LARGEST_IMAGE_OBJECT_POSITIONS_H

#include <cstddef>
#include <cstdint>
#include <vector>

#include "engines/largest_image/image_search.h"

namespace symfold::detail {

// Where a position belongs: to one object, then both are the same, or to two. Positions of one kind are
// carried onto each other when the objects are permuted.
struct ObjectPair {
  std::uint32_t kind;
  std::uint32_t first;
  std::uint32_t second;

  bool is_single() const { return first == second; }
};

// Objects are numbered class after class.
class ObjectPositions {
 public:
  static constexpr std::uint32_t kNone = UINT32_MAX;

  // `class_begins` holds the first object of each class and, at the end, the number of objects. For a kind
  // with `is_unordered` a pair is the same in either order.
  ObjectPositions(std::vector<std::uint32_t> class_begins, std::vector<ObjectPair> pairs,
                  const std::vector<bool>& is_unordered);

  std::size_t object_count() const { return class_begins_.back(); }
  const std::vector<std::uint32_t>& class_begins() const { return class_begins_; }
  const std::vector<ObjectPair>& pairs() const { return pairs_; }

  // Where the entry of a kind for two objects is in table(): the objects times object_count() and 1, added.
  std::size_t table_of(std::uint32_t kind) const { return kind * object_count() * object_count(); }
  // The position of each kind, first and second object; kNone where there is none.
  const std::vector<std::uint32_t>& table() const { return table_; }

  // What a permutation of the objects does to the positions; empty where it would leave them.
  Images images_of(const std::vector<std::uint32_t>& objects) const;

 private:
  std::vector<std::uint32_t> class_begins_;
  std::vector<ObjectPair> pairs_;  // by position
  std::vector<std::uint32_t> table_;
};

}  // namespace symfold::detail

#endif  // SYMFOLD_ENGINES_LARGEST_IMAGE_OBJECT_POSITIONS_H
