// The symmetries that a detector found, in the names of the model: generators as cycles, and orbits. The
// functions only read the detector, which still has its graph.

#ifndef SYMFOLD_HOST_SYMMETRY_SYMMETRY_NAMES_H
#define SYMFOLD_HOST_SYMMETRY_SYMMETRY_NAMES_H

#include <cstddef>
#include <string>
#include <vector>

#include "detector/symmetry_detection.h"

namespace symfold {

// A generator of the automorphism group in disjoint cycles of submodel and join names, in graph-node order:
// "(phil_0 phil_1 phil_2)(fork_0 fork_1 fork_2)". Each join has one node: one shared variable. A
// cycle of more than `max_names` names is cut, and "... N" tells their number; so are more than `max_cycles`
// cycles.
std::string named_cycles(const SymmetryDetection& detector, const Permutation& generator,
                         std::size_t max_names, std::size_t max_cycles);

// The orbits of the submodels and of the joins under the whole group, fixed ones included; in graph-node
// order.
struct NamedOrbits {
  std::vector<std::vector<std::string>> submodels;
  std::vector<std::vector<std::string>> joins;
};

NamedOrbits find_orbits(const SymmetryDetection& detector);

// The number of vertex colours of the graph.
std::size_t count_colours(const SymmetryDetection& detector);

}  // namespace symfold

#endif  // SYMFOLD_HOST_SYMMETRY_SYMMETRY_NAMES_H
