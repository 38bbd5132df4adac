// Rings and lines of every length in a picture: no two nodes lie on each other, and neighbours lie together.

#include "host/pictures/line_layout.h"

#include <gtest/gtest.h>

#include <cmath>

namespace symfold {
namespace {

// Submodels and joins by turns. With `carries`, every second join carries one more submodel.
DrawnGraph line_graph(std::size_t submodels, bool is_ring, bool carries) {
  DrawnGraph graph;
  graph.orbits = {{false, {}}, {true, {}}};
  const std::size_t boxes = carries ? submodels + submodels / 2 : submodels;
  const std::size_t joins = is_ring ? submodels : submodels - 1;
  for (std::size_t i = 0; i < boxes + joins; ++i) graph.nodes.push_back({"", "", "", i < boxes ? 0U : 1U});
  for (std::size_t i = 0; i < joins; ++i) {
    graph.edges.push_back({i, boxes + i, "", ""});
    graph.edges.push_back({(i + 1) % submodels, boxes + i, "", ""});
    if (carries && i % 2 == 0 && submodels + i / 2 < boxes) {
      graph.edges.push_back({submodels + i / 2, boxes + i, "", ""});
    }
  }
  return graph;
}

TEST(LineLayout, KeepsNodesApartAndNeighboursTogether) {
  const double box = 0.5;
  const double dot = 0.14;
  for (std::size_t submodels = 3; submodels <= 300; submodels += 1 + submodels / 8) {
    for (const auto& [is_ring, carries] : {std::pair{true, false}, {true, true}, {false, false}}) {
      const DrawnGraph graph = line_graph(submodels, is_ring, carries);
      const std::vector<Position> places = line_positions(graph, box, dot);
      ASSERT_EQ(places.size(), graph.nodes.size()) << submodels;
      const auto distance = [&places](std::size_t a, std::size_t b) {
        return std::hypot(places[a].x - places[b].x, places[a].y - places[b].y);
      };
      for (std::size_t a = 0; a < places.size(); ++a) {
        for (std::size_t b = 0; b < a; ++b) {
          const double needed = graph.is_join(a) && graph.is_join(b) ? dot : (box + dot) / 2;
          EXPECT_GT(distance(a, b), needed) << submodels << " carries " << carries;
        }
      }
      for (const DrawnEdge& edge : graph.edges)
        EXPECT_LT(distance(edge.submodel, edge.join), 6 * box) << submodels;
    }
  }
  DrawnGraph star = line_graph(5, false, false);
  star.edges.push_back({0, 6, "", ""});
  star.edges.push_back({2, 8, "", ""});
  EXPECT_TRUE(line_positions(star, box, dot).empty());
}

}  // namespace
}  // namespace symfold
