// Points in an ordered list of cells, for colour refinement.

#ifndef SYMFOLD_ENGINES_BASE_POINT_CELLS_H
#define SYMFOLD_ENGINES_BASE_POINT_CELLS_H

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <utility>
#include <vector>

namespace symfold::detail {

// A cell is named by the place of its first point. Cells split and never join. When one splits, its first
// part keeps the name, so the points of the others are those whose cell has changed. Assignment between lists
// of equally many points allocates nothing.
class PointCells {
 public:
  // Cells of the points 0 .. n-1 in their order. `begins` holds the first point of each cell and, at the end,
  // the number of points.
  explicit PointCells(const std::vector<std::uint32_t>& begins);

  std::size_t point_count() const { return order_.size(); }
  std::size_t cell_count() const { return cell_count_; }
  bool are_single() const { return cell_count_ == order_.size(); }

  // The points, cell after cell.
  const std::vector<std::uint32_t>& order() const { return order_; }
  std::uint32_t cell_of(std::uint32_t point) const { return cell_of_[point]; }
  std::uint32_t end_of(std::uint32_t cell) const { return end_of_[cell]; }
  std::uint32_t size_of(std::uint32_t cell) const { return end_of_[cell] - cell; }

  // Calls visit(cell) for each cell of several points, in their order.
  template <class Visit>
  void visit_open(const Visit& visit) const {
    for (std::uint32_t cell = 0, end = 0; cell < order_.size(); cell = end) {
      end = end_of_[cell];
      if (end - cell > 1) visit(cell);
    }
  }

  // The points whose cells have another name since the last call of clear_changed().
  const std::vector<std::uint32_t>& changed() const { return changed_; }
  void clear_changed() { changed_.clear(); }
  void mark_all_changed() { changed_ = order_; }

  // Splits each cell by the keys of its points, into cells in an order that the keys decide; points with key
  // 0 come first. Returns true if any cell split.
  bool split(const std::vector<std::uint64_t>& keys);

  // Makes a cell of the chosen points, at least one but not all of the cell, behind what is left of it.
  template <class IsChosen>
  void split_off(std::uint32_t cell, const IsChosen& is_chosen) {
    const auto chosen = std::partition(order_.begin() + cell, order_.begin() + end_of_[cell],
                                       [&](std::uint32_t point) { return !is_chosen(point); }) -
                        order_.begin();
    set_cell(static_cast<std::uint32_t>(chosen), end_of_[cell]);
    end_of_[cell] = static_cast<std::uint32_t>(chosen);
    ++cell_count_;
  }

 private:
  void set_cell(std::uint32_t begin, std::uint32_t end) {
    end_of_[begin] = end;
    for (std::uint32_t i = begin; i < end; ++i) {
      cell_of_[order_[i]] = begin;
      changed_.push_back(order_[i]);
    }
  }
  void sort(std::uint32_t begin, std::uint32_t end, const std::vector<std::uint64_t>& keys);

  std::vector<std::uint32_t> order_;
  std::vector<std::uint32_t> cell_of_;  // by point
  std::vector<std::uint32_t> end_of_;   // by cell
  std::size_t cell_count_ = 0;
  std::vector<std::uint32_t> changed_;
  std::vector<std::pair<std::uint64_t, std::uint32_t>> hashed_, sorted_;
  std::vector<std::uint32_t> bucket_ends_;
};

}  // namespace symfold::detail

#endif  // SYMFOLD_ENGINES_BASE_POINT_CELLS_H
