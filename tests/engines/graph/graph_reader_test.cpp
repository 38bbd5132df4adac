#include "engines/graph/graph_reader.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <sstream>

namespace symfold::detail {
namespace {

GraphFileResult read(const std::string& text) {
  std::istringstream in(text);
  return read_graph(in, "g");
}

TEST(GraphFile, ReadsVerticesColoursEdgesAndLoops) {
  const GraphFileResult result = read("5 6 3 2 3\n0 2\n\t2 0  0 1 3 3\r\n4 3 3 3");
  EXPECT_EQ(result.error, "");
  const ColouredGraph& graph = result.graph;
  ASSERT_EQ(graph.vertex_count(), 5);
  std::ostringstream text;
  for (int v = 0; v < 5; ++v) {
    text << graph.colour(v) << '/' << graph.loops(v) << ':';
    for (const int neighbour : graph.neighbours(v)) text << ' ' << neighbour;
    text << '\n';
  }
  EXPECT_EQ(text.str(), "0/0: 2 2 1\n0/0: 0\n1/0: 0 0\n2/2: 4\n2/0: 3\n");
  EXPECT_EQ(read("0 0 0\n").error, "");
  EXPECT_EQ(read("1 0 1").error, "");
  EXPECT_EQ(read("65537 0 1").error, "");
  EXPECT_EQ(read("65540 1 2 1\n65538 65539").error, "");
}

// Equal weights stand for equal multisets of directions and weights, whatever the order of the edges.
TEST(GraphFile, ReadsDirectionsAndWeights) {
  const GraphFileResult result = read(
      "weighted\n6 13 1\n0 - 1 5\n1 - 2 18446744073709551615\n2 - 3 5\n3 > 4 5\n5 > 4 5\n"
      "0 - 5 5  0 - 5 7\n1 - 3 7\n3 - 1 5\n4 - 4 5 5 > 5 5 0 - 0 5\n2 - 5 5\n");
  EXPECT_EQ(result.error, "");
  const ColouredGraph& graph = result.graph;
  ASSERT_TRUE(graph.has_weights());
  EXPECT_TRUE(std::ranges::equal(graph.neighbours(5), std::vector{0, 2, 4}));
  EXPECT_EQ(graph.weight(0, 1), graph.weight(3, 2));
  EXPECT_NE(graph.weight(0, 1), graph.weight(1, 2));
  EXPECT_EQ(graph.weight(4, 3), graph.weight(4, 5));
  EXPECT_NE(graph.weight(4, 3), graph.weight(3, 4));
  EXPECT_NE(graph.weight(3, 4), graph.weight(2, 3));
  EXPECT_EQ(graph.weight(5, 0), graph.weight(1, 3));
  EXPECT_NE(graph.weight(5, 0), graph.weight(5, 2));
  EXPECT_EQ(graph.loops(0), graph.loops(4));
  EXPECT_NE(graph.loops(0), graph.loops(5));
  EXPECT_EQ(graph.loops(1), 0);
  EXPECT_FALSE(read("weighted 3 2 1 0 - 1 9 2 - 1 9").graph.has_weights());
  EXPECT_EQ(read("weighted 0 0 0").error, "");
}

TEST(GraphFile, SaysWhereAndWhatWasExpected) {
  const std::vector<std::pair<std::string, std::string>> cases = {
      {"", "g:1: error: expected the number of vertices (0 to 16777216), got the end of the file"},
      {"\n\nx", "g:3: error: expected the number of vertices (0 to 16777216), got 'x'"},
      {"-1 0 1", "g:1: error: expected the number of vertices (0 to 16777216), got '-1'"},
      {"16777217 0 1", "g:1: error: expected the number of vertices (0 to 16777216), got '16777217'"},
      {"99999999999999999999999999999999999999999999 0 1",
       "g:1: error: expected the number of vertices (0 to 16777216), got '999999999999999999999999'"},
      // Its first 32 characters are a number, the rest another one.
      {"\n000000000000000000000000000000000 0",
       "g:2: error: expected the number of vertices (0 to 16777216), got '000000000000000000000000'"},
      {"3 2.5 1", "g:1: error: expected the number of edges (0 to 2147483647), got '2.5'"},
      {"3", "g:1: error: expected the number of edges (0 to 2147483647), got the end of the file"},
      {"0 1 0", "g:1: error: expected the number of edges (0), got '1'"},
      {"3 0 0", "g:1: error: expected the number of colours (1 to 3), got '0'"},
      {"3 0 4", "g:1: error: expected the number of colours (1 to 3), got '4'"},
      {"0 0 1", "g:1: error: expected the number of colours (0), got '1'"},
      {"3 0 2 0", "g:1: error: expected the first vertex of a colour (1 to 2), got '0'"},
      {"4 0 3 2 2", "g:1: error: expected the first vertex of a colour (3), got '2'"},
      {"4 0 3 3 4", "g:1: error: expected the first vertex of a colour (1 to 2), got '3'"},
      {"3 1 1\n0 3", "g:2: error: expected an edge's other vertex (0 to 2), got '3'"},
      {"3 2 1\n0 1\n-1 2\n", "g:3: error: expected an edge's vertex (0 to 2), got '-1'"},
      {"3 2147483647 1\n0 1\n", "g:3: error: expected an edge's vertex (0 to 2), got the end of the file"},
      {"3 1 1\n0 1\n2 \x01\n", "g:3: error: expected the end of the file, got '2'"},
      {"3 0 1\n\xff", "g:2: error: expected the end of the file, got '\\xff'"},
      {"Weighted 1 0 1", "g:1: error: expected the number of vertices (0 to 16777216), got 'Weighted'"},
      {"1 0 weighted", "g:1: error: expected the number of colours (1), got 'weighted'"},
      {"weighted\n", "g:2: error: expected the number of vertices (0 to 16777216), got the end of the file"},
      {"weighted 2 1 1\n0 1 1", "g:2: error: expected an edge's direction ('-' or '>'), got '1'"},
      {"weighted 2 1 1\n0 - 2 1", "g:2: error: expected an edge's other vertex (0 to 1), got '2'"},
      {"weighted 2 1 1\n0 > 1",
       "g:2: error: expected an edge's weight (0 to 18446744073709551615), got the end of the file"},
      {"weighted 2 1 1\n0 > 1 18446744073709551616",
       "g:2: error: expected an edge's weight (0 to 18446744073709551615), got '18446744073709551616'"},
      {"weighted 2 1 1\n0 - 1 -1",
       "g:2: error: expected an edge's weight (0 to 18446744073709551615), got '-1'"},
      {"weighted 2 1 1\n0 - 1 1 1", "g:2: error: expected the end of the file, got '1'"},
      {"2 1 1\n0 > 1 1", "g:2: error: expected an edge's other vertex (0 to 1), got '>'"},
      {"65538 0 1", "g:1: error: expected at most 65537 vertices for 0 edges and 1 colours, got '65538'"},
      {"16777216 2\n2 9",
       "g:2: error: expected at most 65542 vertices for 2 edges and 2 colours, got '16777216'"},
  };
  for (const auto& [text, error] : cases) {
    EXPECT_EQ(read(text).error, error) << text;
    EXPECT_EQ(read(text).graph.vertex_count(), 0) << text;
  }
}

// Every prefix of a good file, and the file with any byte replaced, is either read or refused in one line.
void expect_survival(const std::string& good) {
  EXPECT_EQ(read(good).error, "");
  for (std::size_t i = 0; i < good.size(); ++i) {
    read(good.substr(0, i));
    for (int byte = 0; byte < 256; ++byte) {
      std::string damaged = good;
      damaged[i] = static_cast<char>(byte);
      const std::string error = read(damaged).error;
      EXPECT_TRUE(error.empty() || (error.starts_with("g:") && error.find('\n') == std::string::npos))
          << damaged;
    }
  }
}

TEST(GraphFile, TakesAnyDamage) {
  const std::string plain = "7 6 5 2 3 4 6\n3 4\n4 0\n3 6\n6 2\n3 5\n5 1\n";
  const std::string weighted = "weighted 4 3 2 2\n3 - 2 18446744073709551615\n0 > 1 0\n1 > 1 23\n";
  for (const std::string& good : {plain, weighted}) expect_survival(good);
}

}  // namespace
}  // namespace symfold::detail
