#include "host/symmetry/symmetry_names.h"

#include <algorithm>
#include <set>
#include <string_view>

#include "detector/graph/graph_names.h"
#include "engines/base/union_find.h"

namespace symfold {
namespace {

std::string name_of(const ModelCompGraphNode& node) {
  return detail::has_arrow(node.Name) ? std::string(detail::join_name(node.Name)) : node.Name;
}

// Calls `visit` with every cycle of the points that `is_wanted`, fixed points included, smallest point first.
template <class IsWanted, class Visit>
void walk_cycles(const Permutation& permutation, IsWanted is_wanted, Visit visit) {
  std::vector<bool> is_done(static_cast<std::size_t>(permutation.GetN()), false);
  std::vector<int> cycle;
  for (int start = 0; start < permutation.GetN(); ++start) {
    cycle.clear();
    for (int point = start; !is_done[static_cast<std::size_t>(point)] && is_wanted(point);
         point = permutation[point]) {
      is_done[static_cast<std::size_t>(point)] = true;
      cycle.push_back(point);
    }
    if (!cycle.empty()) visit(cycle);
  }
}

}  // namespace

std::string named_cycles(const SymmetryDetection& detector, const Permutation& generator,
                         std::size_t max_names, std::size_t max_cycles) {
  std::string text;
  std::size_t count = 0;
  const auto node = [&](int point) -> const ModelCompGraphNode& {
    return detector.GraphNodes[static_cast<std::size_t>(point)];
  };
  walk_cycles(
      generator, [&](int point) { return node(point).PrivateOrJoin; },
      [&](const std::vector<int>& cycle) {
        if (cycle.size() == 1 || ++count > max_cycles) return;
        for (std::size_t i = 0; i < std::min(cycle.size(), max_names); ++i) {
          text += (i == 0 ? "(" : " ") + name_of(node(cycle[i]));
        }
        text += cycle.size() > max_names ? " ... " + std::to_string(cycle.size()) + ")" : ")";
      });
  if (count > max_cycles) text += " ... " + std::to_string(count) + " cycles";
  return text.empty() ? "()" : text;
}

NamedOrbits find_orbits(const SymmetryDetection& detector) {
  detail::UnionFind points(static_cast<int>(detector.GraphNodes.size()));
  for (const Permutation& generator : detector.OrigPermutations) {
    for (int point = 0; point < generator.GetN(); ++point) points.unite(point, generator[point]);
  }
  NamedOrbits orbits;
  for (const std::vector<std::size_t>& orbit : points.lists<std::size_t>()) {
    const ModelCompGraphNode& first = detector.GraphNodes[orbit.front()];
    if (!first.PrivateOrJoin) continue;
    auto& names = (detail::has_arrow(first.Name) ? orbits.joins : orbits.submodels).emplace_back();
    for (const std::size_t point : orbit) names.push_back(name_of(detector.GraphNodes[point]));
  }
  return orbits;
}

std::size_t count_colours(const SymmetryDetection& detector) {
  std::set<std::string_view> colours;
  for (const ModelCompGraphNode& node : detector.GraphNodes) colours.insert(node.Type);
  return colours.size();
}

}  // namespace symfold
