// The composition that a graph stands for, read back from its nodes and edges by code of its own, so that
// what detection makes of the graph can be checked against it.

#ifndef SYMFOLD_DETECTOR_PARTITIONS_COMPOSITION_H
#define SYMFOLD_DETECTOR_PARTITIONS_COMPOSITION_H

#include <cstddef>
#include <span>
#include <string>
#include <string_view>
#include <tuple>
#include <utility>
#include <vector>

#include "components/model_comp_graph.h"
#include "components/permutation.h"

namespace symfold::detail {

// A list of items for each of the numbers 0, 1, ..., all in one piece.
template <class T>
class Lists {
 public:
  Lists() = default;
  // Each item goes to the list of its number, which is below `count`, behind those before it.
  Lists(std::size_t count, const std::vector<std::pair<int, T>>& numbered);

  std::span<T> operator[](int i) { return std::span(items_).subspan(first(i), first(i + 1) - first(i)); }
  std::span<const T> operator[](int i) const {
    return std::span(items_).subspan(first(i), first(i + 1) - first(i));
  }

 private:
  std::size_t first(int i) const { return first_[static_cast<std::size_t>(i)]; }

  std::vector<std::size_t> first_;
  std::vector<T> items_;
};

template <class T>
Lists<T>::Lists(std::size_t count, const std::vector<std::pair<int, T>>& numbered)
    : first_(count + 1, 0), items_(numbered.size()) {
  for (const auto& [number, item] : numbered) ++first_[static_cast<std::size_t>(number) + 1];
  for (std::size_t i = 0; i < count; ++i) first_[i + 1] += first_[i];
  std::vector<std::size_t> end(first_.begin(), first_.end() - 1);
  for (const auto& [number, item] : numbered) items_[end[static_cast<std::size_t>(number)]++] = item;
}

// A shared variable of a join stands for a variable of a submodel.
struct Binding {
  int type;    // of the submodel's variable: equal numbers stand for equal texts
  int number;  // of the shared variable in its join
  int join;    // a partition

  bool operator==(const Binding&) const = default;
  bool operator<(const Binding& other) const {
    return std::tie(type, number, join) < std::tie(other.type, other.number, other.join);
  }
};

// Partitions are numbered in the order of the graph's nodes.
struct Composition {
  struct Partition {
    std::string_view name;
    bool is_join;
  };

  std::vector<int> types;         // by node: equal numbers stand for equal texts
  std::vector<int> partition_of;  // by node; -1 for a submodel's variable
  std::vector<Partition> partitions;
  Lists<int> nodes;       // by partition: that of the submodel, or those of the join's variables, in order
  Lists<int> neighbours;  // by node; of a submodel's variable alone
  std::vector<std::pair<int, Binding>> bindings;  // with the submodel's partition
};

// Reads the graph, whose names must outlive the composition. Returns an empty text, or in names why the graph
// is that of no composition: a name that two nodes have, an edge to a node that does not exist, a submodel of
// the joins' type. Linear in the graph.
std::string read_composition(const std::vector<ModelCompGraphNode>& nodes,
                             const std::vector<ModelCompGraphEdge>& edges, Composition& composition);

// Tells whether generators are symmetries of a composition: they keep types, bytes and edges, each as often
// as it is there, and carry the variables of each join, in order, onto those of one join.
class GeneratorCheck {
 public:
  // The composition was read from the nodes. Both must outlive the check.
  GeneratorCheck(const std::vector<ModelCompGraphNode>& nodes, const Composition& composition);

  // Says, as the end of a sentence about the generator, why it is no symmetry; empty if it is one. Cost:
  // near-linear in the nodes that it moves and their neighbours. For what lies elsewhere stays as it is.
  std::string find_fault(const Permutation& generator);

 private:
  std::string find_fault() const;
  std::string find_type_fault() const;
  int find_broken_join() const;
  int find_broken_variable() const;
  bool is_broken_join(int join) const;
  bool is_broken_variable(int local) const;
  int image(int node) const { return images_[static_cast<std::size_t>(node)]; }

  const std::vector<ModelCompGraphNode>& nodes_;
  const Composition& composition_;
  Lists<int> locals_;        // by node; of a submodel or join: the variables that have an edge to it
  std::vector<int> images_;  // by node; the identity between calls
  std::vector<int> moved_;   // nodes, ascending
};

}  // namespace symfold::detail

#endif  // SYMFOLD_DETECTOR_PARTITIONS_COMPOSITION_H
