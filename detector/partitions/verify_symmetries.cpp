// The check that the tables can be trusted, by code that did not make them.
//
// Two faults of a model pass through detection unseen. The graph does not tie the variables of one join
// together, so an automorphism may exchange one variable of a join of two with the only variable of another
// join: a 4-byte partition then goes to a 2-byte one. And it may exchange two variables inside one join,
// which no move of whole partitions expresses, so that equivalent states get different labels. The first
// shows in the permutations, the second only in the generators, and only while the graph is at hand.

#include <optional>
#include <utility>

#include "detector/graph/graph_names.h"
#include "detector/symmetry_detection.h"

namespace symfold {
namespace {

// The variables of a join are its nodes, which stand together from `first` on.
struct JoinNodes {
  std::string name;
  int first;
  int count;
};

std::vector<JoinNodes> find_joins(const std::vector<ModelCompGraphNode>& nodes) {
  std::vector<JoinNodes> joins;
  for (std::size_t i = 0; i < nodes.size(); ++i) {
    if (!nodes[i].PrivateOrJoin || !detail::has_arrow(nodes[i].Name)) continue;
    std::string name(detail::join_name(nodes[i].Name));
    if (!joins.empty() && joins.back().name == name &&
        joins.back().first + joins.back().count == static_cast<int>(i)) {
      ++joins.back().count;
    } else {
      joins.push_back({std::move(name), static_cast<int>(i), 1});
    }
  }
  return joins;
}

// Returns the join whose variables, in order, are not carried onto those of one join; none for a sound
// generator.
const JoinNodes* find_broken_join(const Permutation& generator, const std::vector<JoinNodes>& joins,
                                  const std::vector<const JoinNodes*>& join_at) {
  for (const JoinNodes& join : joins) {
    const int first = generator[join.first];
    const JoinNodes* target = first >= 0 && static_cast<std::size_t>(first) < join_at.size()
                                  ? join_at[static_cast<std::size_t>(first)]
                                  : nullptr;
    if (target == nullptr || target->first != first || target->count != join.count) return &join;
    for (int k = 1; k < join.count; ++k) {
      if (generator[join.first + k] != first + k) return &join;
    }
  }
  return nullptr;
}

std::optional<std::string> find_generator_fault(const std::vector<ModelCompGraphNode>& nodes,
                                                const std::vector<Permutation>& generators) {
  const std::vector<JoinNodes> joins = find_joins(nodes);
  std::vector<const JoinNodes*> join_at(nodes.size(), nullptr);
  for (const JoinNodes& join : joins) join_at[static_cast<std::size_t>(join.first)] = &join;
  for (const Permutation& generator : generators) {
    if (generator.GetN() != static_cast<int>(nodes.size())) {
      return "a generator moves " + std::to_string(generator.GetN()) + " points, expected " +
             std::to_string(nodes.size()) + " graph nodes";
    }
    if (const JoinNodes* join = find_broken_join(generator, joins, join_at)) {
      const int image = generator[join->first];
      return "a generator does not carry the variables of join " + join->name +
             ", in order, onto those of one join: it carries " +
             nodes[static_cast<std::size_t>(join->first)].Name + " to " +
             (image < 0 ? "nothing" : nodes[static_cast<std::size_t>(image)].Name);
    }
  }
  return std::nullopt;
}

}  // namespace

bool SymmetryDetection::VerifySymmetries(std::string& report) {
  const bool has_names = SSOrder.size() == PartitionInfo.size();
  const auto name_of = [&](int partition) {
    const bool is_named = has_names && partition >= 0 && static_cast<std::size_t>(partition) < SSOrder.size();
    return is_named ? SSOrder[static_cast<std::size_t>(partition)] : "partition " + std::to_string(partition);
  };
  const auto find_fault = [&](const Permutation& permutation) -> std::optional<std::string> {
    if (permutation.GetN() != static_cast<int>(PartitionInfo.size()) || !permutation.IsPermutation()) {
      return "is no permutation of the " + std::to_string(PartitionInfo.size()) + " partitions";
    }
    for (int c = 0; c < permutation.GetN(); ++c) {
      const int d = permutation[c];
      const int from = PartitionInfo[static_cast<std::size_t>(c)];
      const int to = PartitionInfo[static_cast<std::size_t>(d)];
      if (from == to) continue;
      return "moves " + name_of(c) + " (" + std::to_string(from) + " bytes) to " + name_of(d) + " (" +
             std::to_string(to) + " bytes)";
    }
    return std::nullopt;
  };
  for (const int base : Bases) {
    for (const ValPerms& record : VPerms[base]) {
      for (const Permutation& permutation : record.Perms) {
        if (const auto fault = find_fault(permutation)) {
          report =
              "the permutation of base " + name_of(base) + ", value " + name_of(record.Value) + ", " + *fault;
          return false;
        }
      }
    }
  }
  const auto fault = find_generator_fault(GraphNodes, OrigPermutations);
  report = fault.value_or("");
  return !fault;
}

}  // namespace symfold
