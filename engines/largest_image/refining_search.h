// The search tree that finds a canonical image by individualisation and refinement.
//
// The points of a structure (objects, or the positions themselves) are coloured by what the values show:
// points of different colours are in different cells. A round of refinement gives each point a key made of
// its neighbours' colours and splits the cells by these keys, until no cell splits. If a choice is still
// open, each point of one cell is singled out in turn, and refinement goes on from there. A node of this tree
// without an open choice is a leaf: it says from which position each position of an image gets its value.
//
// Why labels are canonical. Whatever splits or chooses a cell is a function of the group, the colours and the
// values that does not depend on how points are numbered: if a group element carries one state to another, it
// carries the cells of each node of the first tree to those of a node of the second. So both trees have
// equivalent leaves, which make the same images. Each node has a trace, a number that is such a function too.
// The label is the image of the leaf that comes last by its nodes' traces, then by its values. It is an image
// because every leaf is a group element. Keys and traces are hashes: if two agree by chance, cells stay
// coarser than they might be, in equivalent trees alike; images are compared value by value.
//
// Why branches may be left out. A node whose trace is below the best leaf's at the same depth leads to no
// better leaf. Two leaves with the same image make a symmetry of the state. The subtrees of two points that
// are one orbit of the symmetries that fix all points singled out before have the same images, so one of them
// is enough; at such a leaf the search goes back to the node where the two paths parted.
//
// See B. D. McKay, A. Piperno, Practical graph isomorphism II, J. Symb. Comput. 60, 2014; J. S. Leon,
// Permutation group algorithms based on partitions I, J. Symb. Comput. 12, 1991; S. Linton, Finding the
// smallest image of a set, ISSAC 2004; C. Jefferson, E. Jonauskyte, M. Pfeiffer, R. Waldecker, Minimal and
// canonical images, J. Algebra 521, 2019.

#ifndef SYMFOLD_ENGINES_LARGEST_IMAGE_REFINING_SEARCH_H
#define SYMFOLD_ENGINES_LARGEST_IMAGE_REFINING_SEARCH_H

#include <cstddef>
#include <cstdint>
#include <vector>

#include "engines/base/point_cells.h"
#include "engines/base/union_find.h"
#include "engines/largest_image/image_search.h"

namespace symfold::detail {

class RefiningSearch : public ImageSearch {
 public:
  // The image is a canonical one, in general not the largest. Returns false if the tree had more than
  // `max_nodes` nodes: then it is an image that may not be canonical.
  bool maximise(Placed* values) final;

 protected:
  using Points = std::vector<std::uint32_t>;
  static constexpr std::uint32_t kNone = UINT32_MAX;

  // Only positions with values are compared.
  RefiningSearch(PointCells initial_cells, const std::vector<bool>& has_value, std::size_t max_nodes);

  // Splits the initial cells by what the values show at once.
  virtual void start() = 0;
  // Adds to the keys of the points, which are 0, what the colours around them show. Points of one cell have
  // had equal keys before, so it is enough to add for points around them whose cell has changed.
  virtual void add_keys(std::vector<std::uint64_t>& keys) = 0;
  // Goes on as long as no choice is open. Returns the cell of which points must be singled out, kNone for a
  // leaf.
  virtual std::uint32_t settle() = 0;
  // Singles out a point of the cell that settle() returned.
  virtual void single_out(std::uint32_t point) = 0;
  // Unites points in orbits of symmetries of the state that fix all points singled out.
  virtual void unite_known(UnionFind& orbits) const = 0;
  // Points that are singled out together have one name.
  virtual std::uint32_t name_of(std::uint32_t point) const = 0;
  // Keeps what a node needs besides the cells, and goes back to it.
  virtual void save(std::size_t depth) = 0;
  virtual void restore(std::size_t depth) = 0;
  // Fills in where the image at a leaf gets its values from.
  virtual void make_source(Points& source) = 0;
  // The points of a leaf in an order such that two leaves with the same image differ by a symmetry.
  virtual const Points& leaf_order() const = 0;

  // Refines until no cell splits.
  void refine();
  // Splits by keys that settle() has, and refines. Returns true if any cell split.
  bool refine_by(const std::vector<std::uint64_t>& keys);

  std::uint64_t value(std::size_t position) const { return values_[position].value; }
  const Points& positions_with_values() const { return positions_with_values_; }

  PointCells cells_;

 private:
  // A node on the current path.
  struct Node {
    PointCells cells;
    Points members;  // of the cell whose points are singled out
    Points tried;
    UnionFind orbits;
  };

  void open_node(std::size_t depth, std::uint32_t cell);
  static void unite_members(Node& node, const Points& symmetry);
  bool was_tried(Node& node, std::uint32_t point) const;
  std::size_t explore(std::size_t depth);
  bool keep(std::size_t depth, bool is_leaf);
  std::size_t reach_leaf(std::size_t depth);
  int compare_with_best() const;
  bool add_symmetry(std::size_t parting);
  bool fixes_path(const Points& symmetry, std::size_t depth) const;

  PointCells initial_cells_;
  Points positions_with_values_;
  std::size_t max_nodes_;

  const Placed* values_ = nullptr;
  std::size_t node_count_ = 0;
  std::uint64_t trace_ = 0;  // of the current node
  std::vector<std::uint64_t> keys_;
  std::vector<Node> nodes_;            // by depth
  Points path_;                        // the points singled out, by depth
  std::vector<std::uint64_t> traces_;  // of the best leaf's nodes
  bool has_leaf_ = false;
  Points best_path_;
  Points best_order_;
  Points best_source_;
  Points source_;
  std::vector<Points> symmetries_;  // the latest ones
  std::size_t symmetry_count_ = 0;
  std::vector<Placed> image_;
};

}  // namespace symfold::detail

#endif  // SYMFOLD_ENGINES_LARGEST_IMAGE_REFINING_SEARCH_H
