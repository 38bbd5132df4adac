#include "bench/combinatorial_graphs.h"

#include <random>
#include <string>
#include <utility>

#include "bench/incidence_structures.h"

namespace symfold::detail {
namespace {

using Structures = std::vector<IncidenceStructure>;

void add_geometries(Structures& structures) {
  std::mt19937 random(1);
  for (const int q : {5, 11, 17, 29}) structures.push_back(projective_plane(q));
  for (const int q : {5, 11, 17}) structures.push_back(affine_plane(q));
  for (const int t : {2, 5, 10}) structures.push_back(bose_triples(t));
  for (const int n : {15, 33, 63}) structures.push_back(random_triples(n, random));
  for (const int k : {3, 4, 5}) structures.push_back(sylvester_hadamard(k));
  for (const int q : {11, 19, 31, 43}) structures.push_back(paley_hadamard(q));
  for (const int n : {7, 12, 16}) {
    for (const IncidenceStructure& square : {cyclic_latin_square(n), random_latin_square(n, random)}) {
      structures.push_back(square);
      structures.push_back(collinearity_graph(square));
    }
  }
}

void add_graphs(Structures& structures) {
  std::mt19937 random(2);
  for (const int n : {10, 20}) structures.push_back(rook_graph(n));
  for (const auto& [n, k] : {std::pair(12, 2), {24, 2}, {9, 3}, {10, 4}}) {
    structures.push_back(johnson_graph(n, k));
    if (n < 20) structures.push_back(kneser_graph(n, k));
  }
  for (const int q : {37, 101, 197}) structures.push_back(paley_graph(q));
  for (const int n : {100, 1000}) {
    structures.push_back(circulant(n, {1, 7}));
    structures.push_back(circulant(n, {1, n / 3, n / 2 - 1}));
  }
  for (const auto& widths : std::vector<std::vector<int>>{{30, 30}, {20, 45}, {10, 10, 10}, {5, 10, 20}}) {
    for (const bool is_torus : {false, true}) structures.push_back(grid(widths, is_torus));
  }
  for (const int n : {50, 500}) structures.push_back(dihedral_cayley_graph(n, 2, random));
  for (const int n : {5, 6}) structures.push_back(symmetric_cayley_graph(n, 2, random));
  for (const int n : {20, 50, 200}) {
    const IncidenceStructure base = random_regular(n, 3, random);
    for (const bool is_twisted : {false, true}) structures.push_back(cfi_graph(base, is_twisted));
  }
  structures.push_back(cfi_graph(grid({6, 6}, true), false));
  for (const int pairs : {10, 40}) structures.push_back(cfi_ring(pairs));
}

void add_unions_and_random_blocks(Structures& structures) {
  std::mt19937 random(3);
  structures.push_back(copies(projective_plane(7), 8));
  structures.push_back(copies(random_latin_square(7, random), 10));
  structures.push_back(copies(cfi_graph(random_regular(10, 3, random), false), 10));
  structures.push_back(copies(random_regular(50, 3, random), 20));
  structures.push_back(copies(paley_graph(37), 10));
  for (const int points : {100, 1000}) {
    for (const int arity : {3, 5}) {
      for (const double blocks_per_point : {0.3, 1.0, 3.0})
        structures.push_back(
            random_blocks(points, arity, static_cast<int>(points * blocks_per_point), random));
    }
  }
}

// A session for each client, server and channel, with a join for all sessions of each of these.
NamedGraph sessions(int clients, int servers, int channels) {
  const std::vector<int> counts{clients, servers, channels};
  Composition composition;
  std::vector<int> first;
  for (std::size_t kind = 0; kind < counts.size(); ++kind)
    first.push_back(composition.add_submodels(counts[kind], static_cast<int>(kind)));
  const int session = composition.add_submodels(clients * servers * channels, 3);
  int stride = 1;
  for (std::size_t kind = 0; kind < counts.size(); ++kind) {
    for (int i = 0; i < counts[kind]; ++i) {
      const int join = composition.add_join();
      composition.bind(join, first[kind] + i);
      for (int s = 0; s < clients * servers * channels; ++s) {
        if (s / stride % counts[kind] == i) composition.bind(join, session + s, static_cast<int>(kind));
      }
    }
    stride *= counts[kind];
  }
  return {
      "sessions " + std::to_string(clients) + "x" + std::to_string(servers) + "x" + std::to_string(channels),
      std::move(composition).finish()};
}

}  // namespace

std::vector<NamedGraph> combinatorial_families() {
  Structures structures;
  add_geometries(structures);
  add_graphs(structures);
  add_unions_and_random_blocks(structures);
  std::vector<NamedGraph> graphs;
  for (const IncidenceStructure& structure : structures) {
    graphs.push_back(bare_graph(structure));
    graphs.push_back(composition_graph(structure));
  }
  for (const int n : {4, 7, 12}) graphs.push_back(sessions(n, n, n));
  graphs.push_back(sessions(4, 8, 16));
  return graphs;
}

}  // namespace symfold::detail
