// Groups the slow, obvious way: every permutation is tried, every product is formed. For up to 8 points or
// so.

#ifndef SYMFOLD_TESTS_ORACLES_AUTOMORPHISMS_H
#define SYMFOLD_TESTS_ORACLES_AUTOMORPHISMS_H

#include <set>
#include <string>
#include <utility>
#include <vector>

namespace symfold::oracle {

using Images = std::vector<int>;  // point i goes to images[i]
using Group = std::set<Images>;

// A coloured graph as a graph file has it: colours are stretches of vertices, parallel edges and loops count.
struct Graph {
  int n = 0;
  std::vector<int> boundaries;  // first vertex of every colour but the first
  std::vector<std::pair<int, int>> edges;

  // The text of a graph file, for reading it and for showing what failed.
  std::string file_text() const;
};

// All permutations of the vertices that keep colours and edge multiplicities, by trying all.
Group all_automorphisms(const Graph& graph);

// All products of the generators, with the identity of n points.
Group closure(int n, const std::vector<Images>& generators);

// The smallest point that some member moves; n for the identity alone.
int smallest_moved(int n, const Group& group);

// The members that fix the point.
Group stabiliser(const Group& group, int point);

// The images of the point, ascending.
std::set<int> orbit(const Group& group, int point);

}  // namespace symfold::oracle

#endif  // SYMFOLD_TESTS_ORACLES_AUTOMORPHISMS_H
