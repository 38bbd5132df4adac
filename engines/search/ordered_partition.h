// An ordered partition of the vertices into cells, with splits that can be taken back.
//
// The cells are consecutive stretches of one array of vertices, and a cell is named by the position where its
// stretch starts. A split cuts a stretch in two: the front keeps its name, the back becomes a new cell.
// Example:
//
//     position   0 1 2 3 4              0 1 2 3 4
//     vertex    [4 1 3 0][2]   split   [4 1 3][0][2]     cells 0 and 4, then 0, 3 and 4
//
// Splits are kept on a trail and undone from the latest to the first. Undoing a split merges the back into
// the front again. The order of the vertices inside a cell is arbitrary and is not restored. A split and its
// undoing each cost the length of the back, so a caller keeps the largest part in front.

#ifndef SYMFOLD_ENGINES_SEARCH_ORDERED_PARTITION_H
#define SYMFOLD_ENGINES_SEARCH_ORDERED_PARTITION_H

#include <span>

#include "engines/base/point_vector.h"

namespace symfold::detail {

struct CellSplit {
  int start;   // of the new cell
  int parent;  // start of the cell from which it was cut off
};

class OrderedPartition {
 public:
  // Makes one cell of all n vertices, in ascending order; no cell if n = 0.
  explicit OrderedPartition(int n);

  int vertex_count() const { return vertices_.size(); }
  bool is_discrete() const { return cell_count_ == vertex_count(); }

  int vertex_at(int position) const { return vertices_[position]; }
  int position_of(int v) const { return positions_[v]; }
  int cell_of(int v) const { return cell_of_[v]; }
  int length(int cell) const { return length_[cell]; }
  std::span<const int> members(int cell) const {
    return {&vertices_[cell], static_cast<std::size_t>(length_[cell])};
  }

  // Returns the smallest member of the cell that is greater than `above` and not `except`; -1 for none. Cost:
  // the cell's length.
  int next_member(int cell, int above, int except) const;

  // Exchanges v with the vertex at a position of the same cell.
  void move_within_cell(int v, int position);

  // Puts v, a member of the cell that covers the position, at this position. The caller has to fill the
  // cell's other positions, too.
  void place(int v, int position) {
    vertices_[position] = v;
    positions_[v] = position;
  }

  // Cuts `cell` before `start`, a position inside it that is not its first one.
  void split(int cell, int start);

  // The splits in effect, the latest last. undo() takes back all but the first `count`.
  int split_count() const { return trail_.size(); }
  CellSplit split_at(int i) const { return trail_[i]; }
  void undo(int count);

  void debug_check_invariants() const;

 private:
  PointVector<int> vertices_;
  PointVector<int> positions_;  // the inverse of vertices_
  PointVector<int> cell_of_;
  PointVector<int> length_;  // valid at starts of cells
  PointVector<CellSplit> trail_;
  int cell_count_;
};

}  // namespace symfold::detail

#endif  // SYMFOLD_ENGINES_SEARCH_ORDERED_PARTITION_H
