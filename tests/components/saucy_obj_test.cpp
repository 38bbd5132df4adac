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

class SaucyObjFile : public testing::Test {
 protected:
  // Runs all four calls on a file of that name and returns what they wrote to standard error.
  std::string run(saucy_obj& engine, std::string name) {
    testing::internal::CaptureStderr();
    saucy_struct* state = engine.saucy_begin2(name.data());
    engine.saucy_init(state);
    engine.saucy_search(state);
    engine.saucy_end(state);
    return testing::internal::GetCapturedStderr();
  }

  std::string write(const std::string& text) {
    std::ofstream(path_) << text;
    return path_;
  }

  void TearDown() override { std::filesystem::remove(path_); }

  const std::string path_ = testing::TempDir() + "symfold_graph_file_test";
};

TEST_F(SaucyObjFile, ReturnsGeneratorsBaseAndOrbitLengthsOfTheFile) {
  saucy_obj engine;
  EXPECT_EQ(run(engine, write("7 6 5 2 3 4 6\n3 4\n4 0\n3 6\n6 2\n3 5\n5 1\n")), "");
  ASSERT_EQ(engine.generators.size(), 1U);
  std::ostringstream text;
  text << engine.generators.front();
  EXPECT_EQ(text.str(), "(0 1)(4 5)");
  EXPECT_EQ(engine.generators.front().GetN(), 7);
  EXPECT_EQ(engine.base, std::vector<int>{0});
  EXPECT_EQ(engine.orbit_lengths, std::vector<int>{2});
  EXPECT_TRUE(engine.is_complete);
}

TEST_F(SaucyObjFile, ReportsABadFileOnceAndForgetsEarlierResults) {
  saucy_obj engine;
  run(engine, write("3 0 1\n"));
  EXPECT_EQ(engine.generators.size(), 2U);
  EXPECT_EQ(run(engine, write("3 1 1\n0 x\n")),
            path_ + ":2: error: expected an edge's other vertex (0 to 2), got 'x'\n");
  EXPECT_TRUE(engine.generators.empty() && engine.base.empty() && engine.orbit_lengths.empty());
  EXPECT_EQ(run(engine, path_ + ".missing"), path_ + ".missing: error: cannot be opened for reading\n");
  EXPECT_EQ(run(engine, testing::TempDir()), testing::TempDir() + ": error: cannot be read\n");
  testing::internal::CaptureStderr();
  EXPECT_EQ(engine.saucy_begin2(nullptr), nullptr);
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "error: expected the name of a graph file, got none\n");
}

TEST_F(SaucyObjFile, HoldsExchangesOfManyVerticesSparsely) {
  saucy_obj engine;
  EXPECT_EQ(run(engine, write("40000 0 1\n")), "");
  EXPECT_TRUE(engine.is_complete);
  ASSERT_EQ(engine.generators.size(), 39'999U);
  for (const Permutation& generator : engine.generators) ASSERT_EQ(generator.CountMoves(), 2U);
}

}  // namespace
}  // namespace symfold
