#include "host/symmetry/symmetry_names.h"

#include <algorithm>
#include <set>
#include <string_view>

#include "detector/graph/node_names.h"

namespace symfold {
namespace {

std::string name_of(const ModelCompGraphNode& node) {
  return has_arrow(node.Name) ? std::string(join_name(node.Name)) : node.Name;
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

// Breadth-first from every vertex that no orbit has yet: one step per generator and vertex.
NamedOrbits find_orbits(const SymmetryDetection& detector) {
  NamedOrbits orbits;
  std::vector<bool> is_found(detector.GraphNodes.size(), false);
  for (std::size_t start = 0; start < is_found.size(); ++start) {
    if (is_found[start] || !detector.GraphNodes[start].PrivateOrJoin) continue;
    std::set<std::size_t> orbit = {start};
    std::vector<std::size_t> reached = {start};
    is_found[start] = true;
    for (std::size_t i = 0; i < reached.size(); ++i) {
      for (const Permutation& generator : detector.OrigPermutations) {
        const auto image = static_cast<std::size_t>(generator[static_cast<int>(reached[i])]);
        if (is_found[image]) continue;
        is_found[image] = true;
        orbit.insert(image);
        reached.push_back(image);
      }
    }
    auto& kind = has_arrow(detector.GraphNodes[start].Name) ? orbits.joins : orbits.submodels;
    kind.emplace_back();
    for (const std::size_t point : orbit) kind.back().push_back(name_of(detector.GraphNodes[point]));
  }
  return orbits;
}

std::size_t count_colours(const SymmetryDetection& detector) {
  std::set<std::string_view> colours;
  for (const ModelCompGraphNode& node : detector.GraphNodes) colours.insert(node.Type);
  return colours.size();
}

}  // namespace symfold
