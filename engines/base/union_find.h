// The orbits of a growing set of generators: a disjoint-set forest (union by size, path halving). Amortised
// cost per call: almost constant (R. E. Tarjan, Efficiency of a good but not linear set union algorithm,
// J. ACM 22, 1975).

#ifndef SYMFOLD_ENGINES_BASE_UNION_FIND_H
#define SYMFOLD_ENGINES_BASE_UNION_FIND_H

#include <utility>

#include "engines/base/point_vector.h"

namespace symfold::detail {

class UnionFind {
 public:
  explicit UnionFind(int n) : parent_(identity_images(n)), size_(n, 1) {}

  // The same member for all of x's class, its root. Two steps at a time without a branch: most classes are
  // one or two steps deep, and which, nothing foretells.
  int find(int x) {
    do {
      parent_[x] = parent_[parent_[x]];
      x = parent_[x];
    } while (parent_[x] != x);
    return x;
  }

  // Gives the root of the joint class.
  int unite(int x, int y) {
    x = find(x);
    y = find(y);
    if (x == y) return x;
    if (size_[x] < size_[y]) std::swap(x, y);
    parent_[y] = x;
    size_[x] += size_[y];
    return x;
  }

  int size_of_class(int x) { return size_[find(x)]; }

 private:
  PointVector<int> parent_;
  PointVector<int> size_;  // valid at roots
};

}  // namespace symfold::detail

#endif  // SYMFOLD_ENGINES_BASE_UNION_FIND_H
