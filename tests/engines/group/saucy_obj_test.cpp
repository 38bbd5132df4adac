#include "components/saucy_obj.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <random>
#include <sstream>

#include "tests/oracles/automorphisms.h"

namespace symfold {
namespace {

// All that a search reports, messages first; the file is read if there is one.
std::string run(const oracle::Graph& graph, std::string file_name) {
  std::ostringstream text;
  saucy_obj engine;
  engine.errors = &text;
  saucy_struct* state = file_name.empty()
                            ? engine.saucy_begin_graph(graph.n, graph.boundaries, graph.edges, "values")
                            : engine.saucy_begin2(file_name.data());
  text << (state == nullptr ? "null" : "a graph");
  engine.saucy_init(state);
  engine.saucy_search(state);
  engine.saucy_end(state);
  for (const Permutation& generator : engine.generators) text << ' ' << generator;
  for (const int point : engine.base) text << " base " << point;
  for (const int length : engine.orbit_lengths) text << " length " << length;
  return text.str();
}

TEST(SaucyObj, FindsTheSameFromValuesAsFromTheFile) {
  const std::string path = testing::TempDir() + "symfold_saucy_obj_test";
  for (unsigned seed = 0; seed < 100; ++seed) {
    std::mt19937 random(seed);
    oracle::Graph graph{static_cast<int>(random() % 7), {}, {}};
    for (int v = 1; v < graph.n; ++v) {
      if (random() % 3 == 0) graph.boundaries.push_back(v);
      for (auto count = random() % 3; count > 0; --count)
        graph.edges.emplace_back(v, random() % static_cast<unsigned>(graph.n));
    }
    std::ofstream(path) << graph.file_text();
    ASSERT_EQ(run(graph, ""), run(graph, path)) << graph.file_text();
  }
  std::filesystem::remove(path);
}

TEST(SaucyObj, RefusesValuesThatAreNoGraphInOneLine) {
  EXPECT_EQ(run({-1, {}, {}}, ""),
            "values: error: expected the number of vertices (0 to 16777216), got -1\nnull");
  EXPECT_EQ(run({0, {}, {{0, 0}}}, ""), "values: error: expected the number of edges (0), got 1\nnull");
  EXPECT_EQ(run({0, {1}, {}}, ""), "values: error: expected the number of colours (0), got 2\nnull");
  EXPECT_EQ(run({2, {1, 2}, {}}, ""), "values: error: expected the number of colours (1 to 2), got 3\nnull");
  EXPECT_EQ(run({4, {2, 2}, {}}, ""),
            "values: error: expected the first vertex of a colour (3), got 2\nnull");
  EXPECT_EQ(run({4, {3, 4}, {}}, ""),
            "values: error: expected the first vertex of a colour (1 to 2), got 3\nnull");
  EXPECT_EQ(run({3, {}, {{3, 0}}}, ""), "values: error: expected an edge's vertex (0 to 2), got 3\nnull");
  EXPECT_EQ(run({3, {}, {{0, -1}}}, ""),
            "values: error: expected an edge's other vertex (0 to 2), got -1\nnull");
}

}  // namespace
}  // namespace symfold
