// A permutation group given by a table: for each base point, a permutation for each point of its orbit.

#ifndef SYMFOLD_ENGINES_LARGEST_IMAGE_TABLE_GROUP_H
#define SYMFOLD_ENGINES_LARGEST_IMAGE_TABLE_GROUP_H

#include <cstddef>
#include <cstdint>
#include <vector>

#include "engines/largest_image/image_search.h"

namespace symfold::detail {

// A permutation, and the point that it should carry to the base point of its level.
struct TableRecord {
  std::size_t value;
  Images images;
};

struct TableLevel {
  std::size_t base;
  std::vector<TableRecord> records;
};

class TableGroup {
 public:
  // The points are as many as has_value has entries; has_value[c] is false if nothing lies at point c. All
  // images are permutations of the points. Bases and values may be no points: contains() ignores them.
  TableGroup(std::vector<bool> has_value, std::vector<TableLevel> levels);

  std::size_t point_count() const { return has_value_.size(); }
  bool has_value(std::size_t point) const { return has_value_[point]; }

  // One permutation for each record, without identities. They generate the group.
  const std::vector<Images>& permutations() const { return permutations_; }

  // Returns true if the table's permutations, base after base, carry g to the identity. Then g is a member
  // for certain. For tables made by detection every member is accepted; other tables may reject members.
  // Cost: the number of bases times the number of points.
  bool contains(Images g) const;

 private:
  struct Level {
    std::size_t base;
    std::vector<std::int32_t> record_of;  // by point, into permutations_; -1 for none
  };

  std::vector<bool> has_value_;
  std::vector<Images> permutations_;
  std::vector<Level> levels_;
};

}  // namespace symfold::detail

#endif  // SYMFOLD_ENGINES_LARGEST_IMAGE_TABLE_GROUP_H
