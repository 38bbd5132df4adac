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
  explicit UnionFind(int n) : parent_(identity_images(n)), classes_(n) {
    for (int x = 0; x < n; ++x) classes_[x].largest = x;
  }

  int find(int x) {
    while (parent_[x] != x) {
      parent_[x] = parent_[parent_[x]];
      x = parent_[x];
    }
    return x;
  }

  void unite(int x, int y) {
    if (parent_[x] == parent_[y]) return;
    x = find(x);
    y = find(y);
    if (x == y) return;
    if (classes_[x].size < classes_[y].size) std::swap(x, y);
    parent_[y] = x;
    Class& all = classes_[x];
    const Class& added = classes_[y];
    all = {all.size + added.size, std::max(all.largest, added.largest), std::max(all.mark, added.mark)};
  }

  int size_of_class(int x) { return classes_[find(x)].size; }
  int largest_of_class(int x) { return classes_[find(x)].largest; }

  // The largest mark, at least 0, that a member of x's class was given; -1 for none.
  int mark_of_class(int x) { return classes_[find(x)].mark; }
  void mark_class(int x, int mark) {
    Class& root = classes_[find(x)];
    root.mark = std::max(root.mark, mark);
  }

 private:
  struct Class {
    int size = 1;
    int largest = 0;
    int mark = -1;
  };

  PointVector<int> parent_;
  PointVector<Class> classes_;  // valid at roots
};

}  // namespace symfold

#endif  // SYMFOLD_ENGINES_UNION_FIND_H
