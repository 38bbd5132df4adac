#include "host/symmetry/symmetry_names.h"

#include <set>
#include <string_view>

#include "detector/graph/graph_names.h"
#include "engines/base/union_find.h"

namespace symfold {
namespace {

std::string name_of(const ModelCompGraphNode& node) {
  return detail::has_arrow(node.Name) ? std::string(detail::join_name(node.Name)) : node.Name;
}

}  // namespace

std::string named_cycles(const SymmetryDetection& detector, const Permutation& generator,
                         std::size_t max_names, std::size_t max_cycles) {
  return detail::named_cycles(detector.GraphNodes, generator, name_of, max_names, max_cycles);
}

NamedOrbits find_orbits(const SymmetryDetection& detector) {
  detail::UnionFind points(static_cast<int>(detector.GraphNodes.size()));
  for (const Permutation& generator : detector.OrigPermutations) {
    generator.VisitMoves([&points](int point, int image) { points.unite(point, image); });
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
