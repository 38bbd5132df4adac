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

TEST(DegreeReduction, AgreesWithAllPermutationsOnThinGraphs) {
  for (unsigned seed = 0; seed < 1500 && !HasFailure(); ++seed) {
    SCOPED_TRACE("seed " + std::to_string(seed));
    const oracle::Graph graph = random_thin_graph(seed, 4 + static_cast<int>(seed % 4));
    expect_sound(graph);
    expect_automorphisms(graph);
  }
}

TEST(DegreeReduction, AgreesWithTheSearchOnLargerThinGraphs) {
  for (unsigned seed = 0; seed < 5000 && !HasFailure(); ++seed) {
    const oracle::Graph graph =
        seed % 4 == 0 ? random_even_graph(seed) : random_thin_graph(seed, 8 + static_cast<int>(seed % 40));
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
