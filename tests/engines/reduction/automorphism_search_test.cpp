#include "engines/reduction/automorphism_search.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <functional>
#include <numeric>
#include <random>

#include "engines/graph/automorphism_check.h"
#include "tests/support/group_checks.h"

namespace symfold::detail {
namespace {

using oracle::Graph;

// A new colour begins at vertex i + 1 if bit i of the mask is set.
std::vector<int> boundaries_of(int n, unsigned mask) {
  std::vector<int> boundaries;
  for (int v = 1; v < n; ++v) {
    if ((mask >> (v - 1) & 1U) != 0) boundaries.push_back(v);
  }
  return boundaries;
}

TEST(AutomorphismSearch, AgreesWithAllPermutationsOnEveryColouredGraphOfUpToFiveVertices) {
  for (int n = 0; n <= 5; ++n) {
    std::vector<std::pair<int, int>> pairs;
    for (int a = 0; a < n; ++a) {
      for (int b = 0; b < a; ++b) pairs.emplace_back(a, b);
    }
    for (unsigned colouring = 0; colouring < (n == 0 ? 1U : 1U << (n - 1)); ++colouring) {
      for (unsigned mask = 0; mask < 1U << pairs.size(); ++mask) {
        Graph graph{n, boundaries_of(n, colouring), {}};
        for (std::size_t i = 0; i < pairs.size(); ++i) {
          if ((mask >> i & 1U) != 0) graph.edges.push_back(pairs[i]);
        }
        expect_automorphisms(graph);
        if (HasFailure()) return;
      }
    }
  }
}

// Three vertices with up to two parallel edges between each two and up to one loop at each.
TEST(AutomorphismSearch, AgreesWithAllPermutationsOnSmallMultigraphs) {
  const std::vector<std::pair<int, int>> places{{0, 1}, {0, 1}, {1, 2}, {2, 1}, {0, 2},
                                                {0, 2}, {0, 0}, {1, 1}, {2, 2}};
  for (unsigned colouring = 0; colouring < 4; ++colouring) {
    for (unsigned mask = 0; mask < 1U << places.size(); ++mask) {
      Graph graph{3, boundaries_of(3, colouring), {}};
      for (std::size_t i = 0; i < places.size(); ++i) {
        if ((mask >> i & 1U) != 0) graph.edges.push_back(places[i]);
      }
      expect_automorphisms(graph);
      if (HasFailure()) return;
    }
  }
}

oracle::Images shuffled_inside_colours(const Graph& graph, std::mt19937& random) {
  oracle::Images images(static_cast<std::size_t>(graph.n));
  std::iota(images.begin(), images.end(), 0);
  auto colour_begin = images.begin();
  for (const int boundary : graph.boundaries) {
    std::shuffle(colour_begin, images.begin() + boundary, random);
    colour_begin = images.begin() + boundary;
  }
  std::shuffle(colour_begin, images.end(), random);
  return images;
}

// Has few colours, and edges that are added together with their images under a random permutation. Plain
// random graphs would mostly be asymmetric, which proves little.
Graph random_symmetric_graph(unsigned seed) {
  std::mt19937 random(seed);
  Graph graph;
  graph.n = 6 + static_cast<int>(random() % 3);
  const auto vertex = [&] { return static_cast<int>(random() % static_cast<unsigned>(graph.n)); };
  if (random() % 3 == 0) graph.boundaries.push_back(1 + static_cast<int>(random() % 5));
  const oracle::Images images = shuffled_inside_colours(graph, random);
  for (auto i = 1 + random() % 3; i > 0; --i) {
    const std::pair<int, int> first(vertex(), vertex());
    std::pair<int, int> edge = first;
    do {
      graph.edges.push_back(edge);
      edge = {images[static_cast<std::size_t>(edge.first)], images[static_cast<std::size_t>(edge.second)]};
    } while (edge != first && edge != std::pair(first.second, first.first));
  }
  return graph;
}

// Whatever the budget, generators, base and lengths must be those of a subgroup, and of the whole group if
// the search says so.
void expect_subgroups_for_little_work(const Graph& graph, const oracle::Group& whole) {
  const ColouredGraph coloured = graph_of(graph);
  for (const std::size_t work : std::initializer_list<std::size_t>{0, 1, 10, 30, 60, 100, 150, 200, 300}) {
    for (const auto search : {find_automorphisms, search_paths}) {
      const AutomorphismGroup found = search(coloured, {.max_work = work, .max_descent_failures = 0});
      std::vector<oracle::Images> generators;
      for (const SparsePermutation& moves : found.generators) {
        oracle::Images& images = generators.emplace_back(static_cast<std::size_t>(graph.n));
        std::iota(images.begin(), images.end(), 0);
        for (const auto& [point, image] : moves) images[static_cast<std::size_t>(point)] = image;
      }
      const oracle::Group subgroup = oracle::closure(graph.n, generators);
      EXPECT_TRUE(std::ranges::includes(whole, subgroup)) << work << ": " << graph.file_text();
      const auto order = std::accumulate(found.orbit_lengths.begin(), found.orbit_lengths.end(),
                                         std::size_t{1}, std::multiplies<>());
      EXPECT_EQ(order, subgroup.size()) << work << ": " << graph.file_text();
      EXPECT_EQ(found.is_complete, found.end == SearchEnd::kComplete);
      EXPECT_TRUE(!found.is_complete || order == whole.size()) << work << ": " << graph.file_text();
    }
  }
}

TEST(AutomorphismSearch, AgreesWithAllPermutationsOnRandomGraphsOfUpToEightVertices) {
  // One group in thirty is larger; closing those takes most of the time.
  constexpr std::size_t kMaxOrder = 1024;
  for (unsigned seed = 0; seed < 2000 && !HasFailure(); ++seed) {
    SCOPED_TRACE("seed " + std::to_string(seed));
    const Graph graph = random_symmetric_graph(seed);
    const oracle::Group group = oracle::all_automorphisms(graph);
    if (group.size() > kMaxOrder) continue;
    expect_automorphisms(graph);
    expect_subgroups_for_little_work(graph, group);
  }
}

// Certifies every generator and returns the product of the orbit lengths.
double group_order(const Graph& graph) {
  const ColouredGraph coloured = graph_of(graph);
  const AutomorphismGroup group = find_automorphisms(coloured);
  AutomorphismCheck check(coloured);
  for (const SparsePermutation& moves : group.generators) EXPECT_TRUE(check.is_automorphism(moves));
  for (const int failures : {0, 1}) {
    EXPECT_EQ(find_automorphisms(coloured, {.max_descent_failures = failures}).orbit_lengths,
              group.orbit_lengths);
  }
  EXPECT_EQ(
      find_automorphisms(coloured, {.max_descent_failures = 0, .matches_subtrees = false}).orbit_lengths,
      group.orbit_lengths);
  return std::accumulate(group.orbit_lengths.begin(), group.orbit_lengths.end(), 1.0, std::multiplies<>());
}

void add_cycle(Graph& graph, int length) {
  for (int i = 0; i < length; ++i) graph.edges.emplace_back(graph.n + i, graph.n + (i + 1) % length);
  graph.n += length;
}

// Adds a 4 by 4 torus of vertices, of which two are joined if `is_joined` is true of their differences
// modulo 4.
void add_differences(Graph& graph, bool (*is_joined)(int, int)) {
  for (int a = 0; a < 16; ++a) {
    for (int b = 0; b < a; ++b) {
      if (is_joined((a / 4 - b / 4 + 4) % 4, (a - b + 16) % 4))
        graph.edges.emplace_back(graph.n + a, graph.n + b);
    }
  }
  graph.n += 16;
}

// Returns the graph with its vertices renumbered at random inside their colours and its edges in another
// order.
Graph renumbered(Graph graph, unsigned seed) {
  std::mt19937 random(seed);
  const oracle::Images number = shuffled_inside_colours(graph, random);
  for (auto& [a, b] : graph.edges) {
    a = number[static_cast<std::size_t>(a)];
    b = number[static_cast<std::size_t>(b)];
  }
  std::shuffle(graph.edges.begin(), graph.edges.end(), random);
  return graph;
}

// Known orders: F. Harary, Graph Theory, 1969, ch. 14; A. E. Brouwer and H. Van Maldeghem, Strongly Regular
// Graphs, 2022.
TEST(AutomorphismSearch, FindsTheOrdersOfWellKnownGraphs) {
  Graph complete{5, {}, {}};
  for (int a = 0; a < 5; ++a) {
    for (int b = 0; b < a; ++b) complete.edges.emplace_back(a, b);
  }
  EXPECT_EQ(group_order(complete), 120);

  Graph petersen{10, {}, {}};
  for (int i = 0; i < 5; ++i) {
    petersen.edges.insert(petersen.edges.end(), {{i, (i + 1) % 5}, {i, i + 5}, {i + 5, (i + 2) % 5 + 5}});
  }
  EXPECT_EQ(group_order(petersen), 120);

  Graph hypercube{16, {}, {}};
  for (int v = 0; v < 16; ++v) {
    for (int bit = 1; bit < 16; bit *= 2) {
      if ((v & bit) == 0) hypercube.edges.emplace_back(v, v | bit);
    }
  }
  EXPECT_EQ(group_order(hypercube), 384);

  for (int length = 3; length < 40; ++length) {
    Graph cycle;
    add_cycle(cycle, length);
    EXPECT_EQ(group_order(cycle), 2 * length);
  }
}

// Degrees tell nothing apart here; only individualisation and backtracking can.
TEST(AutomorphismSearch, SeesWhatRefinementIsBlindTo) {
  Graph hexagon_and_triangles;
  for (const int length : {3, 6, 3, 6, 3, 3}) add_cycle(hexagon_and_triangles, length);
  EXPECT_EQ(group_order(hexagon_and_triangles), 12 * 12 * 2 * 6 * 6 * 6 * 6 * 24);

  const auto rook = [](int row, int column) { return (row == 0) != (column == 0); };
  const auto shrikhande = [](int row, int column) {
    return (row == 0 && column % 2 == 1) || (column == 0 && row % 2 == 1) || (row == column && row % 2 == 1);
  };
  Graph regular;
  add_differences(regular, shrikhande);
  EXPECT_EQ(group_order(regular), 192);
  add_differences(regular, rook);
  EXPECT_EQ(group_order(regular), 192 * 1152);
  add_differences(regular, shrikhande);
  for (unsigned seed = 0; seed < 20; ++seed) {
    EXPECT_EQ(group_order(renumbered(regular, seed)), 192.0 * 192 * 2 * 1152) << "seed " << seed;
  }
}

// The order of the plane's group is |PGL(3, q)|, doubled by the exchange of points and lines: P. Dembowski,
// Finite Geometries, 1968. Cells hold several orbits here if the first vertices lie on a line, and no cell
// tells a wrong choice.
TEST(AutomorphismSearch, FindsTheOrdersOfProjectivePlanes) {
  for (const int q : {2, 3, 5}) {
    std::vector<std::array<int, 3>> points{{0, 0, 1}};
    for (int b = 0; b < q; ++b) points.push_back({0, 1, b});
    for (int a = 0; a < q * q; ++a) points.push_back({1, a / q, a % q});
    const auto count = static_cast<int>(points.size());
    Graph plane{2 * count, {}, {}};
    for (int p = 0; p < count; ++p) {
      for (int line = 0; line < count; ++line) {
        const auto& a = points[static_cast<std::size_t>(p)];
        const auto& b = points[static_cast<std::size_t>(line)];
        if ((a[0] * b[0] + a[1] * b[1] + a[2] * b[2]) % q == 0) plane.edges.emplace_back(p, count + line);
      }
    }
    const double order = 2.0 * q * q * q * (q * q - 1) * (q * q * q - 1);
    for (unsigned seed = 0; seed < 5; ++seed) EXPECT_EQ(group_order(renumbered(plane, seed)), order) << q;
  }
}

// A cycle with chords, so that every vertex has three edges. Refinement sees no difference, short cycles make
// one.
TEST(AutomorphismSearch, FindsTwiceTheSquareOfTheOrderForTwoCopiesOfACubicGraph) {
  constexpr int kSize = 60;
  for (unsigned seed = 0; seed < 40; ++seed) {
    Graph cubic;
    add_cycle(cubic, kSize);
    std::vector<int> ends(kSize);
    std::iota(ends.begin(), ends.end(), 0);
    std::shuffle(ends.begin(), ends.end(), std::mt19937(seed));
    for (std::size_t i = 0; i < kSize; i += 2) cubic.edges.emplace_back(ends[i], ends[i + 1]);
    Graph copies = cubic;
    copies.n += kSize;
    for (const auto& [a, b] : cubic.edges) copies.edges.emplace_back(a + kSize, b + kSize);
    const double order = group_order(cubic);
    EXPECT_EQ(group_order(renumbered(copies, seed)), 2 * order * order) << "seed " << seed;
  }
}

// Two roots, each joined to a triangle and a square of its own. When the roots are exchanged, the first image
// tried for a vertex of the triangle may lie on the square. Then only another choice finds the automorphism.
TEST(AutomorphismSearch, GoesBackToOtherChoices) {
  Graph rooted{2, {2}, {}};
  for (const int root : {0, 1}) {
    for (int v = 0; v < 7; ++v) rooted.edges.emplace_back(root, rooted.n + v);
    for (const int length : {3, 4}) add_cycle(rooted, length);
  }
  for (unsigned seed = 0; seed < 300; ++seed) {
    const Graph graph = renumbered(rooted, seed);
    EXPECT_EQ(group_order(graph), 6 * 8 * 6 * 8 * 2) << graph.file_text();
  }
}

// The first path of a star has one level for each leaf. Every generator moves two leaves.
TEST(AutomorphismSearch, TakesOneGeneratorOfTwoLeavesForEveryLevelOfAStar) {
  constexpr int kLeaves = 50'000;
  std::vector<Edge> edges;
  for (int leaf = 0; leaf < kLeaves; ++leaf) edges.push_back({leaf, kLeaves});
  const AutomorphismGroup group = find_automorphisms(ColouredGraph(kLeaves + 1, {kLeaves}, edges));
  ASSERT_EQ(group.generators.size(), std::size_t{kLeaves - 1});
  for (const SparsePermutation& moves : group.generators) EXPECT_EQ(moves.size(), 2U);
  for (int i = 0; i + 1 < kLeaves; ++i) {
    EXPECT_EQ(group.base[static_cast<std::size_t>(i)], i);
    EXPECT_EQ(group.orbit_lengths[static_cast<std::size_t>(i)], kLeaves - i);
  }
  EXPECT_FALSE(
      find_automorphisms(ColouredGraph(kLeaves + 1, {kLeaves}, edges), {.max_moves = 20}).is_complete);
}

TEST(AutomorphismCheck, RefusesWhatBreaksColoursLoopsEdgesOrIsNoPermutation) {
  // A square 0-1-2-3 with a double edge 0-1, a loop at 3, and the vertex 4 of a colour of its own.
  const ColouredGraph graph(5, {4}, {{0, 1}, {1, 0}, {1, 2}, {2, 3}, {3, 0}, {3, 3}});
  AutomorphismCheck check(graph);
  EXPECT_TRUE(check.is_automorphism({}));
  EXPECT_FALSE(check.is_automorphism({{0, 1}, {1, 0}, {2, 3}, {3, 2}})) << "the loop";
  EXPECT_FALSE(check.is_automorphism({{0, 2}, {2, 0}})) << "the double edge";
  EXPECT_FALSE(check.is_automorphism({{3, 4}, {4, 3}})) << "the colour";
  EXPECT_FALSE(check.is_automorphism({{0, 2}})) << "no permutation";
  EXPECT_FALSE(check.is_automorphism({{0, 1}, {1, 2}, {2, 1}})) << "no permutation";
  const ColouredGraph square(4, {}, {{0, 1}, {1, 2}, {2, 3}, {3, 0}});
  EXPECT_TRUE(AutomorphismCheck(square).is_automorphism({{0, 1}, {1, 2}, {2, 3}, {3, 0}}));
}

}  // namespace
}  // namespace symfold::detail
