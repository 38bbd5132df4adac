// The group that a detector's tables generate, as permutations of the partitions.

#ifndef SYMFOLD_ENGINES_LARGEST_IMAGE_TABLE_GROUP_H
#define SYMFOLD_ENGINES_LARGEST_IMAGE_TABLE_GROUP_H

#include <cstdint>
#include <map>
#include <vector>

#include "components/permutation.h"
#include "engines/largest_image/image_search.h"

namespace symfold::detail {

// a after b: point c goes to a[b[c]].
Images composed(const Images& a, const Images& b);
Images inverse(const Images& a);
bool is_identity(const Images& a);

class TableGroup {
 public:
  // Takes the table of Bases and VPerms, on as many points as `has_value` has, which says of each whether
  // anything lies there: a partition may have no bytes. The permutations of a record are applied in their
  // order. Throws std::invalid_argument where one is no permutation of the points.
  TableGroup(std::vector<bool> has_value, const std::vector<int>& bases,
             const std::map<int, std::vector<ValPerms>>& records);

  std::size_t point_count() const { return has_value_.size(); }
  bool has_value(std::size_t point) const { return has_value_[point]; }

  // One for each record, identities left out: they generate the group.
  const std::vector<Images>& permutations() const { return permutations_; }

  // Whether the table's permutations, base after base, carry g to the identity. Then g is a member for
  // certain. Of a table that detection made, the answer is no for none of the members; of others it may be.
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
