#include "detector/partitions/composition.h"

#include <algorithm>
#include <bit>
#include <functional>
#include <numeric>

namespace symfold::detail {
namespace {

constexpr std::string_view kArrow = "->";
constexpr std::string_view kJoinType = "join";

std::size_t index(int i) { return static_cast<std::size_t>(i); }

// Keeps a number for each of at most `capacity` texts, which must outlive it. Neighbouring nodes and edges
// often have the same text, so the latest one is kept at hand. Open addressing: no text costs an allocation.
class Numbering {
 public:
  explicit Numbering(std::size_t capacity) : slots_(std::bit_ceil(2 * capacity + 1)) {}

  // Returns the number of the text, which is `number` if the text is new, and whether it is.
  std::pair<int, bool> add(std::string_view text, int number) {
    Slot& slot = slot_of(text);
    const bool is_new = slot.number < 0;
    if (is_new) {
      slot = {text, number};
      ++size_;
    }
    return {slot.number, is_new};
  }

  // Returns -1 for a text that is not there.
  int find(std::string_view text) { return slot_of(text).number; }

  int size() const { return size_; }

 private:
  struct Slot {
    std::string_view text;
    int number = -1;  // of no text
  };

  Slot& slot_of(std::string_view text) {
    if (slots_[latest_].number >= 0 && slots_[latest_].text == text) return slots_[latest_];
    const std::size_t mask = slots_.size() - 1;
    latest_ = std::hash<std::string_view>()(text) & mask;
    while (slots_[latest_].number >= 0 && slots_[latest_].text != text) latest_ = (latest_ + 1) & mask;
    return slots_[latest_];
  }

  std::vector<Slot> slots_;
  std::size_t latest_ = 0;
  int size_ = 0;
};

// Each operation returns the first fault that it meets.
class Reader {
 public:
  Reader(const std::vector<ModelCompGraphNode>& nodes, Composition& composition)
      : nodes_(nodes),
        composition_(composition),
        first_(nodes.size()),
        partitions_(nodes.size()),
        numbers_(nodes.size(), 0),
        owners_(nodes.size(), -1) {}

  std::string read_nodes();
  std::string read_edges(const std::vector<ModelCompGraphEdge>& edges);
  std::string bind();

 private:
  std::string read_node(int i);
  std::string read_real_node(int i, bool is_join);
  std::string read_edge(const ModelCompGraphEdge& edge);
  bool is_real(int node) const { return composition_.partition_of[index(node)] >= 0; }
  bool is_join(int node) const {
    return is_real(node) && composition_.partitions[index(composition_.partition_of[index(node)])].is_join;
  }

  const std::vector<ModelCompGraphNode>& nodes_;
  Composition& composition_;
  Numbering first_;                              // the first node of each name, which edges of this name mean
  Numbering partitions_;                         // by name
  std::vector<int> numbers_;                     // by node: of a join's variable
  std::vector<int> owners_;                      // by node: of a submodel's variable, the submodel's node
  std::vector<int> sizes_;                       // by partition: its nodes so far
  std::vector<std::pair<int, int>> real_nodes_;  // with their partitions
  std::vector<std::pair<int, int>> neighbours_;  // of submodels' variables
};

std::string Reader::read_nodes() {
  Numbering types(nodes_.size());
  for (const ModelCompGraphNode& node : nodes_) {
    const int i = static_cast<int>(composition_.types.size());
    composition_.types.push_back(types.add(node.Type, types.size()).first);
    composition_.partition_of.push_back(-1);
    if (std::string fault = read_node(i); !fault.empty()) return fault;
  }
  composition_.nodes = {composition_.partitions.size(), real_nodes_};
  return "";
}

// A variable that is bound twice has two nodes of its name, and all edges lead to the first. Nothing else may
// share a name.
std::string Reader::read_node(int i) {
  const ModelCompGraphNode& node = nodes_[index(i)];
  const bool has_arrow = node.Name.find(kArrow) != std::string::npos;
  const bool has_join_type = node.Type == kJoinType;
  const bool is_new = first_.add(node.Name, i).second;
  if (!node.PrivateOrJoin) {
    if (has_arrow && !has_join_type) return "";
    return node.Name + ", of type " + node.Type + ", has no partition and is no submodel's variable";
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
  const auto [partition, is_new] = partitions_.add(name, partitions_.size());
  if (is_new) {
    composition_.partitions.push_back({name, is_join});
    sizes_.push_back(0);
  }
  if (composition_.partitions[index(partition)].is_join != is_join) {
    return "a submodel and a join have one name, " + std::string(name);
  }
  numbers_[index(i)] = sizes_[index(partition)]++;
  real_nodes_.emplace_back(partition, i);
  composition_.partition_of.back() = partition;
  return "";
}

std::string Reader::read_edges(const std::vector<ModelCompGraphEdge>& edges) {
  neighbours_.reserve(edges.size());
  for (const ModelCompGraphEdge& edge : edges) {
    if (std::string fault = read_edge(edge); !fault.empty()) {
      return "the edge " + edge.From.Name + " -- " + edge.To.Name + " " + fault;
    }
  }
  composition_.neighbours = {nodes_.size(), neighbours_};
  return "";
}

std::string Reader::read_edge(const ModelCompGraphEdge& edge) {
  const int from = first_.find(edge.From.Name);
  const int to = first_.find(edge.To.Name);
  if (from < 0) return "has no node " + edge.From.Name;
  if (to < 0) return "has no node " + edge.To.Name;
  if (is_join(from) && !is_real(to)) {
    neighbours_.emplace_back(to, from);
    return "";
  }
  if (is_real(from) || !is_real(to) || is_join(to)) {
    return "is not one of a submodel's variable with its join or its submodel";
  }
  int& owner = owners_[index(from)];
  if (owner >= 0 && owner != to) return "gives the variable to a second submodel";
  owner = to;
  neighbours_.emplace_back(from, to);
  return "";
}

std::string Reader::bind() {
  for (const auto& [local, node] : neighbours_) {
    if (!is_join(node)) continue;
    if (owners_[index(local)] < 0)
      return "the variable " + nodes_[index(local)].Name + " belongs to no submodel";
    composition_.bindings.emplace_back(composition_.partition_of[index(owners_[index(local)])],
                                       Binding{composition_.types[index(local)], numbers_[index(node)],
                                               composition_.partition_of[index(node)]});
  }
  return "";
}

Lists<int> reversed(const Lists<int>& lists, std::size_t count) {
  std::vector<std::pair<int, int>> pairs;
  for (int i = 0; index(i) < count; ++i) {
    for (const int item : lists[i]) pairs.emplace_back(item, i);
  }
  return {count, pairs};
}

void sort_once(std::vector<int>& numbers) {
  std::sort(numbers.begin(), numbers.end());
  numbers.erase(std::unique(numbers.begin(), numbers.end()), numbers.end());
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

GeneratorCheck::GeneratorCheck(const std::vector<ModelCompGraphNode>& nodes, const Composition& composition)
    : nodes_(nodes),
      composition_(composition),
      locals_(reversed(composition.neighbours, nodes.size())),
      images_(nodes.size()) {
  std::iota(images_.begin(), images_.end(), 0);
}

std::string GeneratorCheck::find_fault(const Permutation& generator) {
  if (generator.GetN() != static_cast<int>(nodes_.size())) {
    return "moves " + std::to_string(generator.GetN()) + " points, expected " +
           std::to_string(nodes_.size()) + " graph nodes";
  }
  if (!generator.IsPermutation()) return "is no permutation of the graph nodes";
  moved_.clear();
  generator.VisitMoves([this](int node, int image) {
    moved_.push_back(node);
    images_[index(node)] = image;
  });
  std::string fault = find_fault();
  for (const int node : moved_) images_[index(node)] = node;
  return fault;
}

std::string GeneratorCheck::find_fault() const {
  if (std::string fault = find_type_fault(); !fault.empty()) return fault;
  if (const int node = find_broken_join(); node >= 0) {
    return "does not carry the variables of join " +
           std::string(composition_.partitions[index(composition_.partition_of[index(node)])].name) +
           ", in order, onto those of one join: it carries " + nodes_[index(node)].Name + " to " +
           nodes_[index(image(node))].Name;
  }
  if (const int local = find_broken_variable(); local >= 0) {
    return "does not carry the edges of " + nodes_[index(local)].Name + " onto those of " +
           nodes_[index(image(local))].Name;
  }
  return "";
}

std::string GeneratorCheck::find_type_fault() const {
  for (const int node : moved_) {
    const auto from = index(node);
    const auto to = index(image(node));
    const bool is_real = composition_.partition_of[from] >= 0;
    if (composition_.types[from] != composition_.types[to] ||
        is_real != (composition_.partition_of[to] >= 0)) {
      return "carries " + nodes_[from].Name + " to " + nodes_[to].Name + ", which has another type";
    }
    if (is_real && nodes_[from].StateSize != nodes_[to].StateSize) {
      return "carries " + nodes_[from].Name + " (" + std::to_string(nodes_[from].StateSize) + " bytes) to " +
             nodes_[to].Name + " (" + std::to_string(nodes_[to].StateSize) + " bytes)";
    }
  }
  return "";
}

// Returns the first node of the first join whose variables, in order, are not carried onto those of one join;
// -1 if there is none.
int GeneratorCheck::find_broken_join() const {
  std::vector<int> joins;
  for (const int node : moved_) {
    const int partition = composition_.partition_of[index(node)];
    if (partition >= 0 && composition_.partitions[index(partition)].is_join) joins.push_back(partition);
  }
  sort_once(joins);
  const auto broken = std::ranges::find_if(joins, [this](int join) { return is_broken_join(join); });
  return broken == joins.end() ? -1 : composition_.nodes[*broken][0];
}

bool GeneratorCheck::is_broken_join(int join) const {
  const std::span<const int> nodes = composition_.nodes[join];
  const std::span<const int> targets = composition_.nodes[composition_.partition_of[index(image(nodes[0]))]];
  return !std::ranges::equal(nodes, targets, {}, [this](int node) { return image(node); });
}

// Every edge has one submodel's variable. So it is enough that each of these keeps its neighbours. Those that
// stay and have no moved neighbour do.
int GeneratorCheck::find_broken_variable() const {
  std::vector<int> touched;
  for (const int node : moved_) {
    touched.push_back(node);
    for (const int local : locals_[node]) touched.push_back(local);
  }
  sort_once(touched);
  const auto broken = std::ranges::find_if(touched, [this](int local) { return is_broken_variable(local); });
  return broken == touched.end() ? -1 : *broken;
}

// False for the nodes of submodels and joins, which have empty lists of neighbours.
bool GeneratorCheck::is_broken_variable(int local) const {
  const std::span<const int> neighbours = composition_.neighbours[local];
  const std::span<const int> targets = composition_.neighbours[image(local)];
  if (std::ranges::equal(neighbours, targets, {}, [this](int node) { return image(node); })) return false;
  std::vector<int> found;
  for (const int node : neighbours) found.push_back(image(node));
  std::vector<int> expected(targets.begin(), targets.end());
  std::sort(found.begin(), found.end());
  std::sort(expected.begin(), expected.end());
  return found != expected;
}

}  // namespace symfold::detail
