// Combinatorial objects whose symmetries are hard to find: points, and blocks of points. A graph is one whose
// blocks are pairs.

#ifndef SYMFOLD_BENCH_INCIDENCE_STRUCTURES_H
#define SYMFOLD_BENCH_INCIDENCE_STRUCTURES_H

#include <random>
#include <string>
#include <vector>

#include "bench/composition.h"

namespace symfold::detail {

struct IncidenceStructure {
  std::string name;
  int points = 0;
  std::vector<std::vector<int>> blocks;
};

// Geometries and designs. Precondition of both planes: q is prime.
IncidenceStructure projective_plane(int q);
IncidenceStructure affine_plane(int q);
IncidenceStructure bose_triples(int t);                        // Steiner triple system of 6t+3 points
IncidenceStructure random_triples(int points, std::mt19937&);  // Steiner; points = 1 or 3 modulo 6
IncidenceStructure sylvester_hadamard(int k);                  // matrix of order 2^k
IncidenceStructure paley_hadamard(int q);                      // order q+1; q prime, 3 modulo 4

// The cells of a Latin square; a block for each row, column and symbol.
IncidenceStructure cyclic_latin_square(int n);
IncidenceStructure random_latin_square(int n, std::mt19937&);

// Graphs.
IncidenceStructure rook_graph(int n);
IncidenceStructure johnson_graph(int n, int k);
IncidenceStructure kneser_graph(int n, int k);
IncidenceStructure paley_graph(int q);                                   // q prime, 1 modulo 4
IncidenceStructure circulant(int n, const std::vector<int>& steps);      // steps ascend within 1 .. (n-1)/2
IncidenceStructure grid(const std::vector<int>& widths, bool is_torus);  // a torus is at least 3 wide
IncidenceStructure random_regular(int n, int degree, std::mt19937&);     // n * degree is even
IncidenceStructure dihedral_cayley_graph(int n, int generators, std::mt19937&);
IncidenceStructure symmetric_cayley_graph(int n, int generators, std::mt19937&);  // n! vertices

// Two vertices are adjacent if a block has both.
IncidenceStructure collinearity_graph(const IncidenceStructure&);

// The graph of Cai, Fuerer and Immerman over a base graph, which may have parallel edges: two points for each
// base edge, and a block for each even choice among the edges at a base vertex. A twisted one has odd choices
// at base vertex 0. "Ring": over a ring of double and single edges in turn, after Miyazaki.
IncidenceStructure cfi_graph(const IncidenceStructure& base, bool is_twisted);
IncidenceStructure cfi_ring(int pairs);

// `count` blocks of `arity` different random points.
IncidenceStructure random_blocks(int points, int arity, int count, std::mt19937&);

IncidenceStructure copies(const IncidenceStructure&, int count);

// Without colours: the graph itself, or points and blocks joined where they are incident.
NamedGraph bare_graph(const IncidenceStructure&);

// A submodel for each point, a join for each block.
NamedGraph composition_graph(const IncidenceStructure&);

}  // namespace symfold::detail

#endif  // SYMFOLD_BENCH_INCIDENCE_STRUCTURES_H
