#include "engines/graph/graph_reader.h"

#include <gtest/gtest.h>

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
TEST(GraphFile, TakesAnyDamage) {
  const std::string good = "7 6 5 2 3 4 6\n3 4\n4 0\n3 6\n6 2\n3 5\n5 1\n";
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

}  // namespace
}  // namespace symfold::detail
