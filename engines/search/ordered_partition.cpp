#include "engines/search/ordered_partition.h"

#include <cassert>

#include "engines/base/images.h"

namespace symfold::detail {

OrderedPartition::OrderedPartition(int n)
    : vertices_(identity_images(n)),
      positions_(vertices_),
      cell_of_(n, 0),
      length_(n, 0),
      cell_count_(n > 0) {
  if (n > 0) length_[0] = n;
}

int OrderedPartition::next_member(int cell, int above, int except) const {
  int next = -1;
  for (const int v : members(cell)) {
    if (v > above && v != except && (next < 0 || v < next)) next = v;
  }
  return next;
}

void OrderedPartition::move_within_cell(int v, int position) {
  const int other = vertices_[position];
  assert(cell_of_[other] == cell_of_[v]);
  place(other, positions_[v]);
  place(v, position);
}

void OrderedPartition::split(int cell, int start) {
  const int end = cell + length_[cell];
  assert(cell < start && start < end);
  length_[cell] = start - cell;
  length_[start] = end - start;
  for (int position = start; position < end; ++position) cell_of_[vertices_[position]] = start;
  trail_.push_back({start, cell});
  ++cell_count_;
}

void OrderedPartition::undo(int count) {
  while (trail_.size() > count) {
    const CellSplit split = trail_.back();
    trail_.pop_back();
    assert(split.parent + length_[split.parent] == split.start);
    for (const int v : members(split.start)) cell_of_[v] = split.parent;
    length_[split.parent] += length_[split.start];
    --cell_count_;
  }
}

void OrderedPartition::debug_check_invariants() const {
#ifndef NDEBUG
  int cells = 0;
  for (int cell = 0; cell < vertex_count(); cell += length_[cell], ++cells) {
    assert(length_[cell] > 0);
    for (const int v : members(cell)) assert(cell_of_[v] == cell && vertices_[positions_[v]] == v);
  }
  assert(cells == cell_count_);
#endif
}

}  // namespace symfold::detail
