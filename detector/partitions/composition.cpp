#include "detector/partitions/composition.h"

#include <algorithm>
#include <unordered_map>

namespace symfold::detail {
namespace {

constexpr std::string_view kArrow = "->";
constexpr std::string_view kJoinType = "join";

std::size_t index(int i) { return static_cast<std::size_t>(i); }

// Each operation returns the first fault that it meets.
class Reader {
 public:
  Reader(const std::vector<ModelCompGraphNode>& nodes, Composition& composition)
      : nodes_(nodes), composition_(composition), numbers_(nodes.size(), 0), owners_(nodes.size(), -1) {}

  std::string read_nodes();
  std::string read_edges(const std::vector<ModelCompGraphEdge>& edges);
  std::string bind();

 private:
  using Numbers = std::unordered_map<std::string_view, int>;

  std::string read_node(int i);
  std::string read_real_node(int i, bool is_join);
  std::string read_edge(const ModelCompGraphEdge& edge);
  int find(const std::string& name) const {
    const auto found = first_.find(name);
    return found == first_.end() ? -1 : found->second;
  }
  bool is_real(int node) const { return composition_.partition_of[index(node)] >= 0; }
  bool is_join(int node) const {
    return is_real(node) && composition_.partitions[index(composition_.partition_of[index(node)])].is_join;
  }

  const std::vector<ModelCompGraphNode>& nodes_;
  Composition& composition_;
  Numbers first_;             // the first node of each name, which edges of this name mean
  Numbers partitions_;        // by name
  std::vector<int> numbers_;  // by node: of a join's variable
  std::vector<int> owners_;   // by node: of a submodel's variable, the submodel's node
};

std::string Reader::read_nodes() {
  Numbers types;
  for (const ModelCompGraphNode& node : nodes_) {
    const int i = static_cast<int>(composition_.types.size());
    composition_.types.push_back(types.try_emplace(node.Type, static_cast<int>(types.size())).first->second);
    composition_.partition_of.push_back(-1);
    if (std::string fault = read_node(i); !fault.empty()) return fault;
  }
  composition_.neighbours.resize(nodes_.size());
  return "";
}

// A variable that is bound twice has two nodes of its name, and all edges lead to the first. Nothing else may
// share a name.
std::string Reader::read_node(int i) {
  const ModelCompGraphNode& node = nodes_[index(i)];
  const bool has_arrow = node.Name.find(kArrow) != std::string::npos;
  const bool has_join_type = node.Type == kJoinType;
  const bool is_new = first_.try_emplace(node.Name, i).second;
  if (!node.PrivateOrJoin) {
    return has_arrow && !has_join_type
               ? ""
               : node.Name + ", of type " + node.Type + ", has no partition and is no submodel's variable";
  }
  if (!is_new) {
    return has_arrow ? "two joins share a variable under one name, " + node.Name
                     : "two submodels have one name, " + node.Name;
  }
  if (has_arrow && !has_join_type) {
    return node.Name + ", of type " + node.Type + ", has a partition and the name of a variable";
  }
  if (has_join_type && !has_arrow) return "submodel " + node.Name + " has the type of the joins, join";
  return read_real_node(i, has_join_type);
}

std::string Reader::read_real_node(int i, bool is_join) {
  std::string_view name = nodes_[index(i)].Name;
  if (is_join) name = name.substr(0, name.find(kArrow));
  const auto [found, is_new] = partitions_.try_emplace(name, static_cast<int>(partitions_.size()));
  if (is_new) composition_.partitions.push_back({name, is_join, {}, {}, {}});
  Composition::Partition& partition = composition_.partitions[index(found->second)];
  if (partition.is_join != is_join) return "a submodel and a join have one name, " + std::string(name);
  numbers_[index(i)] = static_cast<int>(partition.nodes.size());
  partition.nodes.push_back(i);
  composition_.partition_of.back() = found->second;
  return "";
}

std::string Reader::read_edges(const std::vector<ModelCompGraphEdge>& edges) {
  for (const ModelCompGraphEdge& edge : edges) {
    if (std::string fault = read_edge(edge); !fault.empty()) {
      return "the edge " + edge.From.Name + " -- " + edge.To.Name + " " + fault;
    }
  }
  return "";
}

std::string Reader::read_edge(const ModelCompGraphEdge& edge) {
  const int from = find(edge.From.Name);
  const int to = find(edge.To.Name);
  if (from < 0) return "has no node " + edge.From.Name;
  if (to < 0) return "has no node " + edge.To.Name;
  if (is_join(from) && !is_real(to)) {
    composition_.neighbours[index(to)].push_back(from);
    return "";
  }
  if (is_real(from) || !is_real(to) || is_join(to)) {
    return "is not one of a submodel's variable with its join or its submodel";
  }
  int& owner = owners_[index(from)];
  if (owner >= 0 && owner != to) return "gives the variable to a second submodel";
  owner = to;
  composition_.neighbours[index(from)].push_back(to);
  return "";
}

std::string Reader::bind() {
  for (std::size_t local = 0; local < nodes_.size(); ++local) {
    for (const int node : composition_.neighbours[local]) {
      if (!is_join(node)) continue;
      if (owners_[local] < 0) return "the variable " + nodes_[local].Name + " belongs to no submodel";
      const int join = composition_.partition_of[index(node)];
      const int submodel = composition_.partition_of[index(owners_[local])];
      composition_.partitions[index(submodel)].bindings.push_back(
          {composition_.types[local], numbers_[index(node)], join});
      composition_.partitions[index(join)].submodels.push_back(submodel);
    }
  }
  return "";
}

bool is_bijection(const Permutation& permutation) {
  std::vector<bool> is_image(index(permutation.GetN()), false);
  for (int i = 0; i < permutation.GetN(); ++i) {
    const int image = permutation[i];
    if (image < 0 || image >= permutation.GetN() || is_image[index(image)]) return false;
    is_image[index(image)] = true;
  }
  return true;
}

// Returns a join whose variables, in order, are not carried onto those of one join; null if there is none.
const Composition::Partition* find_broken_join(const Composition& composition, const Permutation& generator) {
  for (const Composition::Partition& join : composition.partitions) {
    if (!join.is_join) continue;
    const int target = composition.partition_of[index(generator[join.nodes[0]])];
    const std::vector<int>& expected = composition.partitions[index(target)].nodes;
    if (!std::equal(join.nodes.begin(), join.nodes.end(), expected.begin(), expected.end(),
                    [&](int node, int image) { return generator[node] == image; })) {
      return &join;
    }
  }
  return nullptr;
}

// Every edge has one submodel's variable. So it is enough that each of these keeps its neighbours.
int find_broken_variable(const Composition& composition, const Permutation& generator) {
  std::vector<int> images, expected;
  for (int local = 0; local < generator.GetN(); ++local) {
    const std::vector<int>& neighbours = composition.neighbours[index(local)];
    const std::vector<int>& targets = composition.neighbours[index(generator[local])];
    const auto is_carried = [&](int node, int image) { return generator[node] == image; };
    if (std::equal(neighbours.begin(), neighbours.end(), targets.begin(), targets.end(), is_carried))
      continue;
    images.clear();
    for (const int node : neighbours) images.push_back(generator[node]);
    expected = targets;
    std::sort(images.begin(), images.end());
    std::sort(expected.begin(), expected.end());
    if (images != expected) return local;
  }
  return -1;
}

}  // namespace

std::string read_composition(const std::vector<ModelCompGraphNode>& nodes,
                             const std::vector<ModelCompGraphEdge>& edges, Composition& composition) {
  Reader reader(nodes, composition);
  std::string fault = reader.read_nodes();
  if (fault.empty()) fault = reader.read_edges(edges);
  if (fault.empty()) fault = reader.bind();
  return fault;
}

std::string find_generator_fault(const std::vector<ModelCompGraphNode>& nodes, const Composition& composition,
                                 const Permutation& generator) {
  if (generator.GetN() != static_cast<int>(nodes.size())) {
    return "moves " + std::to_string(generator.GetN()) + " points, expected " + std::to_string(nodes.size()) +
           " graph nodes";
  }
  if (!is_bijection(generator)) return "is no permutation of the graph nodes";
  const auto name_of = [&](int node) { return nodes[index(node)].Name; };
  for (int node = 0; node < generator.GetN(); ++node) {
    const int image = generator[node];
    const bool is_real = composition.partition_of[index(node)] >= 0;
    if (composition.types[index(node)] != composition.types[index(image)] ||
        is_real != (composition.partition_of[index(image)] >= 0)) {
      return "carries " + name_of(node) + " to " + name_of(image) + ", which has another type";
    }
    if (is_real && nodes[index(node)].StateSize != nodes[index(image)].StateSize) {
      return "carries " + name_of(node) + " (" + std::to_string(nodes[index(node)].StateSize) +
             " bytes) to " + name_of(image) + " (" + std::to_string(nodes[index(image)].StateSize) +
             " bytes)";
    }
  }
  if (const Composition::Partition* join = find_broken_join(composition, generator)) {
    return "does not carry the variables of join " + std::string(join->name) +
           ", in order, onto those of one join: it carries " + name_of(join->nodes[0]) + " to " +
           name_of(generator[join->nodes[0]]);
  }
  if (const int local = find_broken_variable(composition, generator); local >= 0) {
    return "does not carry the edges of " + name_of(local) + " onto those of " + name_of(generator[local]);
  }
  return "";
}

}  // namespace symfold::detail
