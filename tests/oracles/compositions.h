// Compositions of submodels and joins, and their symmetries in the slow, obvious way: every arrangement of
// the submodels and of the joins is tried.

#ifndef SYMFOLD_TESTS_ORACLES_COMPOSITIONS_H
#define SYMFOLD_TESTS_ORACLES_COMPOSITIONS_H

#include <compare>
#include <vector>

#include "tests/oracles/automorphisms.h"

namespace symfold::oracle {

// Shared variable `number` of a join stands for a variable of a submodel.
struct Binding {
  int join, number, submodel, variable;
  auto operator<=>(const Binding&) const = default;
};

struct Composition {
  std::vector<int> types;      // by submodel
  std::vector<int> bytes;      // by submodel
  std::vector<int> variables;  // by join: how many it shares
  std::vector<Binding> bindings;
};

// Returns all permutations of the submodels and, numbered behind them, the joins that keep types, bytes,
// numbers of variables and bindings. For up to about 5 of each.
Group all_symmetries(const Composition& composition);

}  // namespace symfold::oracle

#endif  // SYMFOLD_TESTS_ORACLES_COMPOSITIONS_H
