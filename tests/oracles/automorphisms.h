// Groups in the slow, obvious way: every permutation is tried and every product is formed. For up to about 8
// points.

#ifndef SYMFOLD_TESTS_ORACLES_AUTOMORPHISMS_H
#define SYMFOLD_TESTS_ORACLES_AUTOMORPHISMS_H

#include <compare>
#include <cstddef>
#include <cstdint>
#include <set>
#include <string>
#include <utility>
#include <vector>

namespace symfold::oracle {

using Images = std::vector<int>;  // point i goes to images[i]
using Group = std::set<Images>;

// A coloured graph as in a graph file: the vertices of a colour are consecutive, parallel edges and loops
// count.
struct Graph {
  int n = 0;
  std::vector<int> boundaries;  // first vertex of every colour but the first
  std::vector<std::pair<int, int>> edges;

  struct Label {
    bool is_directed;
    std::uint64_t weight;

    auto operator<=>(const Label&) const = default;
  };
  std::vector<Label> labels{};  // by edge; empty for a graph without directions and weights

  // Returns the text of a graph file, to be read or to be shown when a test fails.
  std::string file_text() const;
};

// Tries all permutations of the vertices and returns those that keep colours and edge multiplicities, for
// each direction and weight.
Group all_automorphisms(const Graph& graph);

// Returns all products of the generators, and the identity of n points.
Group closure(int n, const std::vector<Images>& generators);

// The same, or nothing if there are more than `most` of them.
Group closure_up_to(std::size_t most, int n, const std::vector<Images>& generators);

// Returns the smallest point of each point's orbit under the group that the permutations generate.
std::vector<int> orbit_of_points(int n, const std::vector<Images>& generators);

// Returns the smallest point that some member moves; n for the trivial group.
int smallest_moved(int n, const Group& group);

// Returns the members that fix the point.
Group stabiliser(const Group& group, int point);

// Returns the images of the point, ascending.
std::set<int> orbit(const Group& group, int point);

}  // namespace symfold::oracle

#endif  // SYMFOLD_TESTS_ORACLES_AUTOMORPHISMS_H
