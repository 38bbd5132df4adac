// The orbits of a growing set of generators: a disjoint-set forest (union by size, path halving) that knows
// the largest point of each class and carries a mark from both sides of a union. Amortised cost per call:
// almost constant (R. E. Tarjan, Efficiency of a good but not linear set union algorithm, J. ACM 22, 1975).

#ifndef SYMFOLD_ENGINES_UNION_FIND_H
#define SYMFOLD_ENGINES_UNION_FIND_H

#include <algorithm>
#include <utility>

#include "engines/point_vector.h"

namespace symfold {

class UnionFind {
 public:
  explicit UnionFind(int n) : parent_(identity_images(n)), largest_(parent_), size_(n, 1), mark_(n, -1) {}

  int find(int x) {
    while (parent_[x] != x) {
      parent_[x] = parent_[parent_[x]];
      x = parent_[x];
    }
    return x;
  }

  void unite(int x, int y) {
    x = find(x);
    y = find(y);
    if (x == y) return;
    if (size_[x] < size_[y]) std::swap(x, y);
    parent_[y] = x;
    size_[x] += size_[y];
    largest_[x] = std::max(largest_[x], largest_[y]);
    mark_[x] = std::max(mark_[x], mark_[y]);
  }

  int size_of_class(int x) { return size_[find(x)]; }
  int largest_of_class(int x) { return largest_[find(x)]; }

  // The largest mark, at least 0, that a member of x's class was given; -1 for none.
  int mark_of_class(int x) { return mark_[find(x)]; }
  void mark_class(int x, int mark) {
    const int root = find(x);
    mark_[root] = std::max(mark_[root], mark);
  }

 private:
  PointVector<int> parent_;
  PointVector<int> largest_;  // valid at roots, as the next two
  PointVector<int> size_;
  PointVector<int> mark_;
};

}  // namespace symfold

#endif  // SYMFOLD_ENGINES_UNION_FIND_H
