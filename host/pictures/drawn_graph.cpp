#include "host/pictures/drawn_graph.h"

#include <algorithm>
#include <map>
#include <tuple>
#include <unordered_map>

namespace symfold {
namespace {

constexpr std::size_t kMaxFullNames = 40;
constexpr std::size_t kMaxPorts = 40;

// Where the indices of an array's element start: at the first underscore of "_1_2" in "grid_1_2".
std::size_t end_of_stem(const std::string& name) {
  std::size_t end = name.size();
  for (std::size_t i = name.size(); i > 0; --i) {
    const char c = name[i - 1];
    const bool is_index = i < end && c == '_';
    if (is_index) end = i - 1;
    if (!is_index && (c < '0' || c > '9')) break;
  }
  return end == 0 ? name.size() : end;
}

std::string indices_or_name(const std::string& name) {
  const std::size_t end = end_of_stem(name);
  if (end == name.size()) return name;
  std::string indices = name.substr(end + 1);
  std::replace(indices.begin(), indices.end(), '_', ',');
  return indices;
}

std::string counted_times(const std::string& what, std::size_t count) {
  return count == 1 ? what : what + " \u00D7" + std::to_string(count);
}

std::string text_of(const DrawnOrbit& orbit) {
  if (orbit.names.size() == 1) return orbit.names[0];
  const auto stem = [](const std::string& name) { return name.substr(0, end_of_stem(name)); };
  const std::string first = stem(orbit.names[0]);
  const bool is_one_array = std::all_of(orbit.names.begin(), orbit.names.end(),
                                        [&](const std::string& name) { return stem(name) == first; });
  return counted_times(is_one_array ? first : first + " ...", orbit.names.size());
}

DrawnGraph graph_of(const NamedOrbits& orbits) {
  DrawnGraph graph;
  for (const auto& names : orbits.submodels) graph.orbits.push_back({false, names});
  for (const auto& names : orbits.joins) graph.orbits.push_back({true, names});
  return graph;
}

std::unordered_map<std::string, std::size_t> orbits_by_name(const DrawnGraph& graph) {
  std::unordered_map<std::string, std::size_t> result;
  for (std::size_t i = 0; i < graph.orbits.size(); ++i) {
    for (const std::string& name : graph.orbits[i].names) result.emplace(name, i);
  }
  return result;
}

// Calls visit(submodel, join, variable) for all members of joins.
template <class Visit>
void for_each_member(const ComposedModel& model, Visit visit) {
  for (std::size_t join = 0; join < model.joins.size(); ++join) {
    for (const JoinMember& member : model.joins[join].members) {
      visit(static_cast<std::size_t>(member.submodel), join, model.variable_of(member).name);
    }
  }
}

}  // namespace

DrawnGraph drawn_parts(const ComposedModel& model, const NamedOrbits& orbits) {
  DrawnGraph graph = graph_of(orbits);
  const auto orbit_of = orbits_by_name(graph);
  const bool is_small = model.cell_count() <= kMaxFullNames;
  for (const Submodel& submodel : model.submodels) {
    graph.nodes.push_back({submodel.name, is_small ? submodel.name : indices_or_name(submodel.name),
                           submodel.name + " : " + model.instance_of(submodel).token,
                           orbit_of.at(submodel.name)});
  }
  for (const Join& join : model.joins) {
    graph.nodes.push_back({join.name, is_small ? join.name : "", join.name + " : " + to_string(join.values),
                           orbit_of.at(join.name)});
  }
  std::size_t members = 0;
  for (const Join& join : model.joins) members += join.members.size();
  const bool has_ports = is_small && members <= kMaxPorts;
  for_each_member(model, [&](std::size_t submodel, std::size_t join, const std::string& variable) {
    graph.edges.push_back(
        {submodel, model.submodels.size() + join, has_ports ? variable : "",
         model.submodels[submodel].name + "." + variable + " in " + model.joins[join].name});
  });
  return graph;
}

DrawnGraph drawn_orbits(const ComposedModel& model, const NamedOrbits& orbits) {
  DrawnGraph graph = graph_of(orbits);
  graph.is_collapsed = true;
  for (std::size_t i = 0; i < graph.orbits.size(); ++i) {
    const std::vector<std::string>& names = graph.orbits[i].names;
    graph.nodes.push_back({names[0], text_of(graph.orbits[i]),
                           names.size() == 1 ? names[0] : names[0] + " ... " + names.back(), i});
  }
  const auto orbit_of = orbits_by_name(graph);
  std::map<std::tuple<std::size_t, std::size_t, std::string>, std::size_t> counts;
  for_each_member(model, [&](std::size_t submodel, std::size_t join, const std::string& variable) {
    ++counts[{orbit_of.at(model.submodels[submodel].name), orbit_of.at(model.joins[join].name), variable}];
  });
  for (const auto& [edge, count] : counts) {
    const auto& [submodels, joins, variable] = edge;
    const std::string text = counted_times(variable, count);
    graph.edges.push_back({submodels, joins, text, text});
  }
  return graph;
}

}  // namespace symfold
