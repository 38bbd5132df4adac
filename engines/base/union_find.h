// A disjoint-set forest with union by size and path halving, which keeps the orbits of a growing set of
// generators. The amortised cost of a call of `find` or `unite` is almost constant (R. E. Tarjan, Efficiency
// of a good but not linear set union algorithm, J. ACM 22, 1975).

#ifndef SYMFOLD_ENGINES_BASE_UNION_FIND_H
#define SYMFOLD_ENGINES_BASE_UNION_FIND_H

#include <algorithm>
#include <numeric>
#include <utility>
#include <vector>

#include "engines/base/images.h"
#include "engines/base/point_vector.h"

namespace symfold::detail {

class UnionFind {
 public:
  explicit UnionFind(int n) : parent_(identity_images(n)), size_(n, 1) {}

  // Makes every point a class of its own again.
  void clear() {
    std::iota(parent_.begin(), parent_.end(), 0);
    std::fill(size_.begin(), size_.end(), 1);
  }

  // Returns the root of x's class, which is the same member for the whole class. Takes two steps at a time
  // without a branch, because most classes are one or two steps deep, in no order that a processor could
  // predict.
  int find(int x) {
    do {
      parent_[x] = parent_[parent_[x]];
      x = parent_[x];
    } while (parent_[x] != x);
    return x;
  }

  // Joins the two classes. Returns true if they were different ones.
  bool unite(int x, int y) {
    x = find(x);
    y = find(y);
    if (x == y) return false;
    if (size_[x] < size_[y]) std::swap(x, y);
    parent_[y] = x;
    size_[x] += size_[y];
    return true;
  }

  int size_of_class(int x) { return size_[find(x)]; }

  // Returns the classes as ascending lists, in the order of their first members.
  template <class Point = int>
  std::vector<std::vector<Point>> lists() {
    std::vector<std::vector<Point>> lists;
    PointVector<int> list_of(parent_.size(), -1);  // by root
    for (int x = 0; x < parent_.size(); ++x) {
      const int root = find(x);
      if (list_of[root] < 0) {
        list_of[root] = static_cast<int>(lists.size());
        lists.emplace_back().reserve(static_cast<std::size_t>(size_[root]));
      }
      lists[static_cast<std::size_t>(list_of[root])].push_back(static_cast<Point>(x));
    }
    return lists;
  }

 private:
  PointVector<int> parent_;
  PointVector<int> size_;  // valid at roots
};

}  // namespace symfold::detail

#endif  // SYMFOLD_ENGINES_BASE_UNION_FIND_H
