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
  explicit UnionFind(int n) : points_(n) {
    for (int x = 0; x < n; ++x) points_[x] = {x, x, 1, -1};
  }

  int find(int x) {
    while (points_[x].parent != x) {
      points_[x].parent = points_[points_[x].parent].parent;
      x = points_[x].parent;
    }
    return x;
  }

  void unite(int x, int y) {
    if (points_[x].parent == points_[y].parent) return;
    x = find(x);
    y = find(y);
    if (x == y) return;
    if (points_[x].size < points_[y].size) std::swap(x, y);
    Point& above = points_[x];
    Point& below = points_[y];
    below.parent = x;
    above.size += below.size;
    above.largest = std::max(above.largest, below.largest);
    above.mark = std::max(above.mark, below.mark);
  }

  int size_of_class(int x) { return points_[find(x)].size; }
  int largest_of_class(int x) { return points_[find(x)].largest; }

  // The largest mark, at least 0, that a member of x's class was given; -1 for none.
  int mark_of_class(int x) { return points_[find(x)].mark; }
  void mark_class(int x, int mark) {
    Point& root = points_[find(x)];
    root.mark = std::max(root.mark, mark);
  }

 private:
  struct Point {
    int parent;
    int largest;  // of the class; valid at roots, as the next two
    int size;
    int mark;
  };

  PointVector<Point> points_;
};

}  // namespace symfold

#endif  // SYMFOLD_ENGINES_UNION_FIND_H
