// Schreier trees: the orbit of a point as a rooted tree whose edges are generators.
//
// The product of the generators on the path from the root to a point carries the root to this point, so the
// tree holds a coset representative of the root's stabiliser for every point of the orbit, in the room of
// three numbers per point (C. C. Sims, Computational methods in the study of permutation groups, 1970).
//
// Example: with the generators a = (0 1) and b = (0 2)(1 3), the tree of root 0 has the points 0, 1, 2, 3 in
// this order. 1 is reached from 0 by a, 2 from 0 by b and 3 from 1 by b.

#ifndef SYMFOLD_ENGINES_GROUP_ORBIT_TREE_H
#define SYMFOLD_ENGINES_GROUP_ORBIT_TREE_H

#include <cassert>
#include <utility>

#include "engines/base/point_vector.h"

namespace symfold::detail {

// The caller numbers the generators. A tree is sized once and used for one root after the other.
class OrbitTree {
 public:
  OrbitTree() = default;  // no points
  explicit OrbitTree(int point_count)
      : depth_(point_count, -1), parent_(point_count), generator_(point_count) {}

  // Drops all points. Cost: the number of points in the tree.
  void clear() {
    for (const int point : points_) depth_[point] = -1;
    points_.clear();
  }

  // Drops all points but the new root.
  void set_root(int root) {
    clear();
    points_.push_back(root);
    depth_[root] = 0;
  }

  // Adds a new point, to which the generator carries the parent.
  void add(int point, int parent, int generator) {
    assert(contains(parent) && !contains(point));
    place(point, parent, generator);
    points_.push_back(point);
  }

  // Extends the tree, whose points are in order of depth, breadth-first until no step leads out of it, and
  // leaves the points in order of depth. visit_steps(point, step) calls step(generator, image) for each
  // generator that may be used at the point, in the order in which they are tried. Cost: the steps.
  template <class VisitSteps>
  void grow(const VisitSteps& visit_steps);

  bool empty() const { return points_.empty(); }
  bool contains(int point) const { return depth_[point] >= 0; }
  int size() const { return points_.size(); }

  // In the order found, the root first.
  const PointVector<int>& points() const { return points_; }

  // For a point in the tree: its distance from the root, and, unless it is the root, how it is reached.
  int depth(int point) const { return depth_[point]; }
  int parent(int point) const { return parent_[point]; }
  int generator(int point) const { return generator_[point]; }

  // Calls visit(generator) for each edge of the path from the point, which is in the tree, back to the root.
  template <class Visit>
  void walk_to_root(int point, const Visit& visit) const {
    for (; depth_[point] > 0; point = parent_[point]) visit(generator_[point]);
  }

 private:
  void place(int point, int parent, int generator) {
    depth_[point] = depth_[parent] + 1;
    parent_[point] = parent;
    generator_[point] = generator;
  }

  PointVector<int> points_;
  PointVector<int> depth_;  // by point, as the next two; -1 outside the tree
  PointVector<int> parent_;
  PointVector<int> generator_;
};

// The points known at the start and the new ones are both in order of depth; taking the shallower head each
// time merges them in that order.
template <class VisitSteps>
void OrbitTree::grow(const VisitSteps& visit_steps) {
  const PointVector<int> known = std::exchange(points_, {});
  PointVector<int> fresh;
  for (int next_known = 0, next_fresh = 0; next_known < known.size() || next_fresh < fresh.size();) {
    const bool takes_known =
        next_fresh == fresh.size() ||
        (next_known < known.size() && depth_[known[next_known]] <= depth_[fresh[next_fresh]]);
    const int point = takes_known ? known[next_known++] : fresh[next_fresh++];
    points_.push_back(point);
    visit_steps(point, [&](int generator, int image) {
      if (contains(image)) return;
      place(image, point, generator);
      fresh.push_back(image);
    });
  }
}

}  // namespace symfold::detail

#endif  // SYMFOLD_ENGINES_GROUP_ORBIT_TREE_H
