// Composition graphs of any size, as detection makes them of the models in examples/.

#ifndef SYMFOLD_BENCH_COMPOSITION_GRAPHS_H
#define SYMFOLD_BENCH_COMPOSITION_GRAPHS_H

#include <vector>

#include "bench/composition.h"

namespace symfold::detail {

// Every family at about each of the sizes, in vertices. Beside the examples: submodels joined in pairs, a
// join between every two submodels, hypercubes whose dimensions are alike, and graphs of other origin: random
// trees, random graphs of mean degree 4 and 8 on a cycle, random regular graphs.
std::vector<NamedGraph> graph_families(const std::vector<int>& sizes);

// Vertices exchanged at random inside their colours, edges in another order.
GraphParts shuffled(GraphParts parts, unsigned seed);

}  // namespace symfold::detail

#endif  // SYMFOLD_BENCH_COMPOSITION_GRAPHS_H
