// The check that permutations of cells are symmetries of a model's composition, straight from the definition
// and from the model itself: it shares nothing with the detection, its graph and its tables.

#ifndef SYMFOLD_HOST_SYMMETRY_COMPOSITION_CHECK_H
#define SYMFOLD_HOST_SYMMETRY_COMPOSITION_CHECK_H

#include <span>
#include <string>
#include <utility>
#include <vector>

#include "host/model/composed_model.h"

namespace symfold {

// A permutation of the cells is a symmetry of the composition if it carries submodels onto submodels of the
// same type instance, and the join with the members {(s, v), ...} onto the join with the members
// {(image of s, v), ...}.
//
// Why that is enough: what a submodel does depends on its instance and on its own and shared variables alone.
// A symmetry of the composition carries these onto those of its image, so it carries every transition of the
// whole model to a transition of the same rate.
class CompositionCheck {
 public:
  // `order` names all submodels and joins, each once, in the order of their cells in the state vector. Throws
  // std::out_of_range for an unknown name.
  CompositionCheck(const ComposedModel& model, const std::vector<std::string>& order);

  struct Cell {
    std::string name;
    int instance;  // of a submodel; -1 for a join
    int size;      // bytes
    // Of a join, sorted: a submodel's cell and the variable's position in its instance.
    std::vector<std::pair<int, int>> members;
  };

  // In the order of the state vector.
  const std::vector<Cell>& cells() const { return cells_; }

  // Returns what is wrong with a permutation that sends cell c to the place of cell images[c], in names; an
  // empty text for a symmetry of the composition. Cost: the joins' members are sorted.
  std::string find_fault(std::span<const int> images) const;

  // True if the permutation carries the first state onto the second one. Requires: find_fault has found none,
  // and the states have as many bytes as the cells together.
  bool carries(std::span<const int> images, const void* state, const void* image) const;

 private:
  const ComposedModel& model_;
  std::vector<Cell> cells_;
  std::vector<std::size_t> offsets_;  // by cell, in bytes
};

}  // namespace symfold

#endif  // SYMFOLD_HOST_SYMMETRY_COMPOSITION_CHECK_H
