#include "engines/refinement.h"

#include <gtest/gtest.h>

#include <map>
#include <random>
#include <set>

namespace symfold {
namespace {

ColouredGraph random_graph(std::mt19937& random, int n) {
  std::vector<Edge> edges;
  for (int e = n + static_cast<int>(random() % static_cast<unsigned>(n)); e > 0; --e) {
    edges.push_back({static_cast<int>(random() % static_cast<unsigned>(n)),
                     static_cast<int>(random() % static_cast<unsigned>(n))});
  }
  return {n, {n / 3, n / 2}, edges};
}

std::set<std::set<int>> cells_of(const OrderedPartition& partition) {
  std::set<std::set<int>> cells;
  for (int cell = 0; cell < partition.vertex_count(); cell += partition.length(cell)) {
    const auto members = partition.members(cell);
    cells.emplace(members.begin(), members.end());
  }
  return cells;
}

// The coarsest equitable partition the slow way: each vertex is told apart by its class and its neighbours'
// classes, until nothing changes.
std::set<std::set<int>> equitable_cells(const ColouredGraph& graph, const std::vector<int>& individualised) {
  std::map<int, int> class_of;
  for (int v = 0; v < graph.vertex_count(); ++v) class_of[v] = graph.colour(v);
  for (const int v : individualised) class_of[v] = -1 - v;
  for (std::size_t count = 0;;) {
    std::map<std::pair<std::pair<int, int>, std::multiset<int>>, std::set<int>> members;
    for (int v = 0; v < graph.vertex_count(); ++v) {
      std::multiset<int> neighbours;
      for (const int w : graph.neighbours(v)) neighbours.insert(class_of[w]);
      members[{{class_of[v], graph.loops(v)}, neighbours}].insert(v);
    }
    std::set<std::set<int>> cells;
    int number = 0;
    for (const auto& [key, cell] : members) {
      for (const int v : cell) class_of[v] = number;
      cells.insert(cell);
      ++number;
    }
    if (cells.size() == count) return cells;
    count = cells.size();
  }
}

// Individualises random vertices down to single cells, takes everything back and compares on the way.
TEST(Refinement, IsTheCoarsestEquitablePartitionAndCanBeUndone) {
  for (unsigned seed = 0; seed < 300 && !HasFailure(); ++seed) {
    SCOPED_TRACE("seed " + std::to_string(seed));
    std::mt19937 random(seed);
    const ColouredGraph graph = random_graph(random, 3 + static_cast<int>(seed % 12));
    OrderedPartition partition(graph.vertex_count());
    Refiner refiner(graph, partition);
    refiner.refine_by_colour();
    std::vector<int> individualised;
    std::vector<int> marks;
    std::vector<std::set<std::set<int>>> before;
    while (!partition.is_discrete()) {
      marks.push_back(partition.split_count());
      before.push_back(cells_of(partition));
      EXPECT_EQ(before.back(), equitable_cells(graph, individualised));
      int v = static_cast<int>(random() % static_cast<unsigned>(graph.vertex_count()));
      while (partition.length(partition.cell_of(v)) == 1) v = (v + 1) % graph.vertex_count();
      Trace trace;
      refiner.individualise_and_record(v, trace);
      const auto cells = cells_of(partition);
      partition.undo(marks.back());
      EXPECT_EQ(cells_of(partition), before.back());
      EXPECT_TRUE(refiner.individualise_and_compare(v, trace)) << "the same again";
      EXPECT_EQ(cells_of(partition), cells);
      partition.debug_check_invariants();
      individualised.push_back(v);
    }
    for (; !marks.empty(); marks.pop_back(), before.pop_back()) {
      partition.undo(marks.back());
      EXPECT_EQ(cells_of(partition), before.back());
    }
  }
}

// In the path 0-1-2-3 the two ends refine alike, an end and an inner vertex share no cell, and in 0-1 2-3-4-5
// the ends of different paths differ.
TEST(Refinement, ComparesWithTheTraceOfAnotherVertex) {
  const ColouredGraph graph(6, {}, {{0, 1}, {2, 3}, {3, 4}, {4, 5}, {1, 0}});
  OrderedPartition partition(6);
  Refiner refiner(graph, partition);
  refiner.refine_by_colour();
  EXPECT_NE(partition.cell_of(0), partition.cell_of(2)) << "a double edge is two edges";
  const int splits = partition.split_count();
  Trace trace;
  refiner.individualise_and_record(2, trace);
  const auto try_vertex = [&](int v) {
    partition.undo(splits);
    return refiner.individualise_and_compare(v, trace);
  };
  EXPECT_TRUE(try_vertex(5));
  EXPECT_FALSE(try_vertex(0));
  EXPECT_FALSE(try_vertex(3));
  EXPECT_TRUE(try_vertex(2)) << "failures leave nothing behind";
}

}  // namespace
}  // namespace symfold
