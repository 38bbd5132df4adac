// Makes a composed model from parts that are tied by joins.

#ifndef SYMFOLD_BENCH_COMPOSITION_BUILDER_H
#define SYMFOLD_BENCH_COMPOSITION_BUILDER_H

#include <cstddef>
#include <vector>

#include "host/model/composed_model.h"

namespace symfold {

// Parts of one type number have the same type if they also bind equally many variables. Every join is a cell.
class CompositionBuilder {
 public:
  int add_join();

  // A part that binds its variables 0, 1, .. to the joins, in this order.
  void add_part(int type, const std::vector<int>& joins, bool is_cell = true);

  // A join for the joins as a set: a part that is no cell ties it to each of them, all in the same way.
  int add_set(int type, const std::vector<int>& joins);

  std::size_t cell_count() const { return cells_; }

  ComposedModel finish() const;

 private:
  struct Part {
    int type;
    bool is_cell;
    std::vector<int> joins;
  };

  std::vector<Part> parts_;
  int join_count_ = 0;
  std::size_t cells_ = 0;
};

}  // namespace symfold

#endif  // SYMFOLD_BENCH_COMPOSITION_BUILDER_H
