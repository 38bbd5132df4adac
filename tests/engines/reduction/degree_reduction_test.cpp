#include "engines/reduction/degree_reduction.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <numeric>
#include <random>

#include "engines/graph/automorphism_check.h"
#include "engines/reduction/cyclic_sequence.h"
#include "engines/search/path_search.h"
#include "tests/support/group_checks.h"

namespace symfold::detail {
namespace {

// Adds a path with `inner` new inner vertices, which ends at `to`, or at its last inner vertex if `to` is -1.
void add_path(oracle::Graph& graph, int from, int to, int inner) {
  for (; inner > 0; --inner) {
    graph.edges.emplace_back(from, graph.n);
    from = graph.n++;
  }
  if (to >= 0) graph.edges.emplace_back(from, to);
}

int below(std::mt19937& random, int n) { return static_cast<int>(random() % static_cast<unsigned>(n)); }

void renumber(oracle::Graph& graph, std::mt19937& random) {
  std::vector<int> number(static_cast<std::size_t>(graph.n));
  std::iota(number.begin(), number.end(), 0);
  std::shuffle(number.begin(), number.end(), random);
  for (auto& [a, b] : graph.edges) {
    a = number[static_cast<std::size_t>(a)];
    b = number[static_cast<std::size_t>(b)];
  }
}

// A few roots with paths between them, paths back to the same root and paths that end nowhere, some double
// edges and some isolated vertices.
oracle::Graph random_thin_graph(unsigned seed, int size) {
  std::mt19937 random(seed);
  oracle::Graph graph{1 + below(random, 3), {}, {}};
  const int roots = graph.n;
  while (graph.n < size) {
    const int target = below(random, 4) == 0 ? -1 : below(random, roots);
    add_path(graph, below(random, graph.n), target, std::min(below(random, 4), size - graph.n));
    if (below(random, 6) == 0) ++graph.n;
    if (below(random, 8) == 0 && !graph.edges.empty()) graph.edges.push_back(graph.edges.back());
  }
  renumber(graph, random);
  if (seed % 2 == 0) graph.boundaries.push_back(1 + below(random, graph.n - 1));
  return graph;
}

// Two paths between every two of three or four roots, which can be reversible.
oracle::Graph random_even_graph(unsigned seed) {
  std::mt19937 random(seed);
  oracle::Graph graph{3 + below(random, 2), {}, {}};
  const int roots = graph.n;
  const int first = below(random, 4);
  const int second = below(random, 4);
  for (int a = 0; a < roots; ++a) {
    for (int b = 0; b < a; ++b) {
      add_path(graph, a, b, first);
      add_path(graph, b, a, second);
      if (below(random, 9) == 0) add_path(graph, a, b, 1);
    }
  }
  renumber(graph, random);
  return graph;
}

// Gives each edge one of a few labels, and turns some around.
void label_edges(oracle::Graph& graph, std::mt19937& random) {
  const int kinds = 1 + below(random, 4);
  for (auto& [a, b] : graph.edges) {
    const int kind = below(random, kinds);
    graph.labels.push_back({kind % 2 == 1, kind < 2 ? ~std::uint64_t{0} : 1});
    if (below(random, 4) == 0) std::swap(a, b);
  }
}

// Any edges, loops and parallel edges among few vertices, all labelled; the same label is likely.
oracle::Graph random_labelled_graph(unsigned seed) {
  std::mt19937 random(seed);
  oracle::Graph graph{2 + below(random, 5), {}, {}};
  for (int edges = below(random, 3 * graph.n); edges > 0; --edges) {
    graph.edges.emplace_back(below(random, graph.n), below(random, graph.n));
    if (below(random, 6) == 0) graph.edges.push_back(graph.edges.back());
  }
  label_edges(graph, random);
  if (seed % 3 == 0) graph.boundaries.push_back(1 + below(random, graph.n - 1));
  return graph;
}

// A ring of four to six vertices, labelled alike in every second or third edge, with or without chords.
oracle::Graph random_labelled_ring(unsigned seed) {
  std::mt19937 random(seed);
  oracle::Graph graph{4 + below(random, 3), {}, {}};
  const int period = 1 + below(random, 3);
  for (const int step : {1, 2}) {
    const bool has_alternating_direction = below(random, 2) == 0;
    for (int v = 0; v < graph.n && (step == 1 || seed % 2 == 0); ++v) {
      graph.edges.emplace_back(v, (v + step) % graph.n);
      if (has_alternating_direction && v % 2 == 1)
        std::swap(graph.edges.back().first, graph.edges.back().second);
      graph.labels.push_back({seed % 3 != 0, static_cast<std::uint64_t>(v % period)});
    }
  }
  renumber(graph, random);
  return graph;
}

// Expects the reduction to be sound by itself, without a second search of the graph as it is.
void expect_sound(const oracle::Graph& graph) {
  const ColouredGraph coloured = graph_of(graph);
  AutomorphismCheck check(coloured);
  DegreeReduction reduction(coloured);
  EXPECT_TRUE(reduction.for_each_fibre_symmetry(
      [&](const SparsePermutation& moves) { return !moves.empty() && check.is_automorphism(moves); }));
  SparsePermutation lifted;
  for (const SparsePermutation& moves : search_paths(reduction.reduced()).generators) {
    EXPECT_TRUE(reduction.lift(moves, lifted) && check.is_automorphism(lifted));
  }
}

// Expects the check to accept the automorphisms among all permutations, and nothing else.
void expect_exact_check(const oracle::Graph& graph) {
  const ColouredGraph coloured = graph_of(graph);
  AutomorphismCheck check(coloured);
  const oracle::Group group = oracle::all_automorphisms(graph);
  oracle::Images images(static_cast<std::size_t>(graph.n));
  std::iota(images.begin(), images.end(), 0);
  while (std::next_permutation(images.begin(), images.end())) {
    SparsePermutation moves;
    for (int v = 0; v < graph.n; ++v) {
      const int image = images[static_cast<std::size_t>(v)];
      if (image != v) moves.push_back({v, image});
    }
    EXPECT_EQ(check.is_automorphism(moves), group.contains(images));
  }
}

TEST(DegreeReduction, AgreesWithAllPermutationsOnThinGraphs) {
  for (unsigned seed = 0; seed < 1500 && !HasFailure(); ++seed) {
    SCOPED_TRACE("seed " + std::to_string(seed));
    const oracle::Graph graph = random_thin_graph(seed, 4 + static_cast<int>(seed % 4));
    expect_sound(graph);
    expect_automorphisms(graph);
  }
}

TEST(DegreeReduction, KeepsDirectionsAndWeights) {
  for (unsigned seed = 0; seed < 4000 && !HasFailure(); ++seed) {
    SCOPED_TRACE("seed " + std::to_string(seed));
    oracle::Graph graph = seed % 4 == 0   ? random_thin_graph(seed, 4 + static_cast<int>(seed % 3))
                          : seed % 4 == 1 ? random_labelled_ring(seed)
                                          : random_labelled_graph(seed);
    std::mt19937 random(seed);
    if (graph.labels.empty()) label_edges(graph, random);
    expect_sound(graph);
    expect_automorphisms(graph);
    if (graph.n < 6) expect_exact_check(graph);
  }
}

TEST(DegreeReduction, AgreesWithTheSearchOnLargerThinGraphs) {
  for (unsigned seed = 0; seed < 5000 && !HasFailure(); ++seed) {
    oracle::Graph graph =
        seed % 4 == 0 ? random_even_graph(seed) : random_thin_graph(seed, 8 + static_cast<int>(seed % 40));
    std::mt19937 random(seed);
    if (seed % 3 == 0) label_edges(graph, random);
    SCOPED_TRACE("seed " + std::to_string(seed) + ": " + graph.file_text());
    expect_sound(graph);
    const ColouredGraph coloured = graph_of(graph);
    const AutomorphismGroup found = find_automorphisms(coloured);
    const AutomorphismGroup expected = search_paths(coloured);
    EXPECT_EQ(found.base, expected.base);
    EXPECT_EQ(found.orbit_lengths, expected.orbit_lengths);
  }
}

TEST(CyclicSequence, RotatesToTheLeastAndFindsThePeriod) {
  for (unsigned code = 0; code < 19683; ++code) {
    const std::size_t length = 1 + code % 9;
    std::vector<std::uint64_t> entries;
    for (unsigned rest = code / 9; entries.size() < length; rest /= 3) entries.push_back(rest % 3);
    auto rotated = entries;
    std::vector<std::uint64_t> least = entries;
    std::size_t period = 0;
    for (std::size_t turn = 1; turn <= length; ++turn) {
      std::rotate(rotated.begin(), rotated.begin() + 1, rotated.end());
      least = std::min(least, rotated);
      if (period == 0 && rotated == entries) period = turn;
    }
    EXPECT_EQ(cyclic_period(entries), static_cast<int>(period));
    std::rotate(entries.begin(), entries.begin() + least_rotation(entries), entries.end());
    EXPECT_EQ(entries, least);
  }
}

}  // namespace
}  // namespace symfold::detail
