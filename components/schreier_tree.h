// Schreier trees: the orbit of a point, each orbit point with the generators on its path from the root.

#ifndef SYMFOLD_COMPONENTS_SCHREIER_TREE_H
#define SYMFOLD_COMPONENTS_SCHREIER_TREE_H

#include <cstddef>
#include <iosfwd>
#include <memory>
#include <vector>

#include "components/permutation.h"

namespace symfold {

namespace detail {
class StabiliserFirstTree;
}  // namespace detail

class SchreierTree {
 public:
  SchreierTree();
  SchreierTree(const SchreierTree& other);
  SchreierTree(SchreierTree&& other) noexcept;
  SchreierTree& operator=(SchreierTree other) noexcept;
  ~SchreierTree();

  // The number of points. The caller writes it before anything else.
  int n = 0;

  // Sets the generators of all later trees. One that is no permutation of n points is left out.
  void SetPerms(std::vector<Permutation> perms);

  // Writes the generators, a line each, to standard output or to the stream.
  void PrintPerms();
  void PrintPerms(std::ostream& out);

  int GetN() const { return n; }

  // Announces the root of the next tree.
  void SetRootValue(int r);

  // Builds the tree of the root r, breadth-first: first with those generators that fix every point below r,
  // to closure, and only then with all of them. So the path of a point that the stabiliser of the points
  // below r reaches moves none of these. The tree of a root that is no point is empty. Cost: the number of
  // (orbit point, generator that moves it) pairs; no permutation is copied.
  void CreateTree(int r);

  // Returns the number of permutations in all records of the latest tree.
  std::size_t CountPathPermutations() const;

  // Returns the bytes that the records of the latest tree take. Each is counted with its path and with the
  // composite of its path on the first `point_count` points, which replaces the path in the end.
  std::size_t CountTableBytes(int point_count);

  // Returns the points of the latest tree without its root, breadth-first, each with its path: Perms[0],
  // applied first, moves the root, and the last one arrives at Value.
  std::vector<ValPerms> GetAllPermutationsToRoot();

 private:
  std::vector<Permutation> perms_;
  int root_ = -1;
  int counted_points_ = -1;                            // of CountTableBytes
  std::vector<std::size_t> move_counts_;               // by generator, among these points
  std::vector<std::size_t> path_moves_;                // by point, those of its path's generators
  std::unique_ptr<detail::StabiliserFirstTree> tree_;  // null while there are no generators
};

}  // namespace symfold

#endif  // SYMFOLD_COMPONENTS_SCHREIER_TREE_H
