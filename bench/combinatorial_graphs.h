// Graphs of combinatorial objects, bare and as compositions, with hundreds to thousands of vertices each.

#ifndef SYMFOLD_BENCH_COMBINATORIAL_GRAPHS_H
#define SYMFOLD_BENCH_COMBINATORIAL_GRAPHS_H

#include <vector>

#include "bench/composition.h"

namespace symfold::detail {

// Planes, designs, matrices, Latin squares, strongly regular graphs, Cayley graphs, CFI graphs, grids,
// disjoint unions, random blocks: each as a bare graph and as a composition. At the end sessions of clients,
// servers and channels. The random ones have fixed seeds.
std::vector<NamedGraph> combinatorial_families();

}  // namespace symfold::detail

#endif  // SYMFOLD_BENCH_COMBINATORIAL_GRAPHS_H
