// Compositions that are not among the examples: families of known groups at several sizes, and random ones.

#ifndef SYMFOLD_BENCH_COMPOSED_MODELS_H
#define SYMFOLD_BENCH_COMPOSED_MODELS_H

#include <string>
#include <vector>

#include "host/model/composed_model.h"

namespace symfold {

struct NamedModel {
  std::string name;
  ComposedModel model;  // without a description: it can be detected, not explored
};

// Products, tuples and subsets of interchangeable objects, rings with chords, products of rings, Latin
// squares, finite geometries, memories and messages for every two processors. A family's models differ in
// size.
std::vector<NamedModel> composition_families();

// A random composition of 10 to 400 cells: blocks in blocks, as stars, rings, products, tuples and unions,
// here and there with something attached to one copy. The same seed makes the same composition on every
// machine. Its group may be trivial.
NamedModel random_composition(unsigned seed);

}  // namespace symfold

#endif  // SYMFOLD_BENCH_COMPOSED_MODELS_H
