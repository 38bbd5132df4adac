// The certificate: everything that folding relies on is checked by code that did not make it.
//
// A composition knows types and bytes of submodels, and bindings: shared variable number k of join j stands
// for variable v of submodel s. A permutation of the partitions is a symmetry of it if it keeps types and
// bytes and carries every binding (j, k, s, v) to a binding (image of j, k, image of s, v). Whatever the
// submodels do inside, such a permutation carries their common behaviour onto itself.
//
// While the graph is at hand, the composition is read from it, and every permutation of the tables must be
// such a symmetry, whatever has made it. That alone makes folding by them sound. The generators are checked
// too: one that no move of whole partitions expresses (it exchanges two variables inside a join) becomes a
// permutation of the table that is sound, but other than what the table stands for.
//
// Tables of a permutation file have no graph. There the permutations must be bijections between partitions of
// equal size, so that labels are at least rearrangements of their states.

#include <algorithm>
#include <string_view>
#include <unordered_map>
#include <utility>

#include "detector/partitions/composition.h"
#include "detector/symmetry_detection.h"

namespace symfold {
namespace {

using detail::Binding;
using detail::Composition;

std::size_t index(int i) { return static_cast<std::size_t>(i); }

std::string bytes_text(int bytes) { return " (" + std::to_string(bytes) + " bytes)"; }

// Checks permutations of partitions, which are numbered by their places in the state vector.
class PermutationCheck {
 public:
  PermutationCheck(const std::vector<int>& sizes, const std::vector<std::string>& order)
      : sizes_(sizes), order_(order), has_names_(order.size() == sizes.size()) {}

  // Takes the places of the composition's partitions.
  void set_composition(const Composition& composition, const std::vector<int>& places);

  std::string name_of(int partition) const;

  // Both say, as the end of a sentence, what is wrong with the permutation. The second is about the one that
  // the first found to be in order last, and returns an empty text without a composition.
  std::string find_size_fault(const Permutation& permutation);
  std::string find_binding_fault(const Permutation& permutation);

 private:
  struct Part {
    int kind;                       // equal for submodels of one type, and for joins of as many variables
    std::vector<Binding> bindings;  // of a submodel, ascending
    std::vector<int> submodels;     // of a join
  };

  bool carries_bindings(const Permutation& permutation, const Part& from, const Part& to);

  const std::vector<int>& sizes_;
  const std::vector<std::string>& order_;
  bool has_names_;
  std::vector<Part> parts_;
  std::vector<int> moved_;            // by the latest permutation
  std::vector<std::size_t> seen_at_;  // by partition: the latest round in which it was met
  std::size_t round_ = 0;
  std::vector<int> touched_;
  std::vector<Binding> images_;
};

void PermutationCheck::set_composition(const Composition& composition, const std::vector<int>& places) {
  parts_.resize(composition.partitions.size());
  for (std::size_t i = 0; i < composition.partitions.size(); ++i) {
    const Composition::Partition& partition = composition.partitions[i];
    Part& part = parts_[index(places[i])];
    part.kind = partition.is_join ? -static_cast<int>(partition.nodes.size())
                                  : composition.types[index(partition.nodes[0])];
    for (const Binding& b : partition.bindings)
      part.bindings.push_back({b.type, b.number, places[index(b.join)]});
    std::sort(part.bindings.begin(), part.bindings.end());
    for (const int submodel : partition.submodels) part.submodels.push_back(places[index(submodel)]);
  }
}

std::string PermutationCheck::name_of(int partition) const {
  const bool is_named = has_names_ && partition >= 0 && index(partition) < order_.size();
  return is_named ? order_[index(partition)] : "partition " + std::to_string(partition);
}

std::string PermutationCheck::find_size_fault(const Permutation& permutation) {
  const int n = static_cast<int>(sizes_.size());
  const auto no_permutation = [n] { return "is no permutation of the " + std::to_string(n) + " partitions"; };
  if (permutation.GetN() != n) return no_permutation();
  moved_.clear();
  seen_at_.resize(sizes_.size(), 0);
  ++round_;
  std::string fault;
  for (int c = 0; c < n; ++c) {
    const int d = permutation[c];
    if (d < 0 || d >= n || seen_at_[index(d)] == round_) return no_permutation();
    seen_at_[index(d)] = round_;
    if (d == c) continue;
    moved_.push_back(c);
    const int from = sizes_[index(c)];
    const int to = sizes_[index(d)];
    if (from == to || !fault.empty()) continue;
    fault = "moves " + name_of(c) + bytes_text(from) + " to " + name_of(d) + bytes_text(to);
  }
  return fault;
}

// The submodels whose bindings may change are those that are moved, and those that a moved join binds. All
// others and their joins stay. The permutation is a bijection, so if each submodel's bindings become those of
// its image, all bindings together become all bindings.
std::string PermutationCheck::find_binding_fault(const Permutation& permutation) {
  if (parts_.empty()) return "";
  ++round_;
  touched_.clear();
  const auto touch = [&](int submodel) {
    if (std::exchange(seen_at_[index(submodel)], round_) != round_) touched_.push_back(submodel);
  };
  for (const int c : moved_) {
    const Part& part = parts_[index(c)];
    if (part.kind != parts_[index(permutation[c])].kind) {
      return "carries " + name_of(c) + " to " + name_of(permutation[c]) + ", which has another type";
    }
    if (part.kind >= 0) touch(c);
    for (const int submodel : part.submodels) touch(submodel);
  }
  for (const int submodel : touched_) {
    const int image = permutation[submodel];
    if (carries_bindings(permutation, parts_[index(submodel)], parts_[index(image)])) continue;
    return "does not carry the joins of " + name_of(submodel) + " onto those of " + name_of(image);
  }
  return "";
}

// Bindings come by the submodel's variable. If each is bound once, those of two submodels of one type stand
// in one order.
bool PermutationCheck::carries_bindings(const Permutation& permutation, const Part& from, const Part& to) {
  const auto is_carried = [&](const Binding& binding, const Binding& image) {
    return binding.type == image.type && binding.number == image.number &&
           permutation[binding.join] == image.join;
  };
  if (std::equal(from.bindings.begin(), from.bindings.end(), to.bindings.begin(), to.bindings.end(),
                 is_carried)) {
    return true;
  }
  images_ = from.bindings;
  for (Binding& binding : images_) binding.join = permutation[binding.join];
  std::sort(images_.begin(), images_.end());
  return images_ == to.bindings;
}

// Finds the place in the state vector of each partition of the composition. Returns why there is none: the
// layout must name all of them, each once, and have their sizes without gaps.
std::string find_places(const SymmetryDetection& detector, const Composition& composition,
                        std::vector<int>& places) {
  std::unordered_map<std::string_view, int> place_of;
  for (const std::string& name : detector.SSOrder) {
    if (!place_of.try_emplace(name, static_cast<int>(place_of.size())).second) {
      return "SSOrder names " + name + " twice";
    }
  }
  for (const Composition::Partition& partition : composition.partitions) {
    const auto found = place_of.find(partition.name);
    if (found == place_of.end()) return "SSOrder does not name " + std::string(partition.name);
    places.push_back(found->second);
  }
  const std::size_t count = places.size();
  if (detector.SSOrder.size() != count || detector.GNOrder.size() != count ||
      detector.PartitionInfo.size() != count || detector.CumPartitionInfo.size() != count) {
    return "expected " + std::to_string(count) + " partitions, got " +
           std::to_string(detector.SSOrder.size()) + " in SSOrder, " +
           std::to_string(detector.GNOrder.size()) + " in GNOrder, " +
           std::to_string(detector.PartitionInfo.size()) + " in PartitionInfo and " +
           std::to_string(detector.CumPartitionInfo.size()) + " in CumPartitionInfo";
  }
  for (std::size_t i = 0; i < count; ++i) {
    long long bytes = 0;
    for (const int node : composition.partitions[i].nodes)
      bytes += detector.GraphNodes[index(node)].StateSize;
    if (const int got = detector.PartitionInfo[index(places[i])]; got != bytes) {
      return std::string(composition.partitions[i].name) + " has " + std::to_string(got) +
             " bytes, expected " + std::to_string(bytes);
    }
  }
  long long offset = 0;
  for (std::size_t place = 0; place < count; ++place) {
    if (detector.CumPartitionInfo[place] != offset) {
      return detector.SSOrder[place] + " begins at byte " + std::to_string(detector.CumPartitionInfo[place]) +
             ", expected " + std::to_string(offset);
    }
    offset += detector.PartitionInfo[place];
  }
  return "";
}

std::string find_generators_fault(const SymmetryDetection& detector, const Composition& composition) {
  for (const Permutation& generator : detector.OrigPermutations) {
    const std::string fault = detail::find_generator_fault(detector.GraphNodes, composition, generator);
    if (!fault.empty()) return "a generator " + fault;
  }
  return "";
}

// The faults that any table can have, then those of the generators, and then what is left.
std::string find_fault(const SymmetryDetection& detector) {
  const bool has_graph = !detector.GraphNodes.empty() || !detector.OrigPermutations.empty();
  PermutationCheck check(detector.PartitionInfo, detector.SSOrder);
  Composition composition;
  if (has_graph) {
    std::string fault = detail::read_composition(detector.GraphNodes, detector.GraphEdges, composition);
    std::vector<int> places;
    if (fault.empty()) fault = find_places(detector, composition, places);
    if (!fault.empty()) return fault;
    check.set_composition(composition, places);
  }
  std::string binding_fault;
  for (const int base : detector.Bases) {
    const auto found = detector.VPerms.find(base);
    if (found == detector.VPerms.end()) continue;
    for (const ValPerms& record : found->second) {
      const auto told = [&](const std::string& fault) {
        return "the permutation of base " + check.name_of(base) + ", value " + check.name_of(record.Value) +
               ", " + fault;
      };
      for (const Permutation& permutation : record.Perms) {
        std::string fault = check.find_size_fault(permutation);
        if (!fault.empty()) return told(fault);
        if (binding_fault.empty()) fault = check.find_binding_fault(permutation);
        if (!fault.empty()) binding_fault = told(fault);
      }
    }
  }
  std::string fault = has_graph ? find_generators_fault(detector, composition) : "";
  return fault.empty() ? binding_fault : fault;
}

}  // namespace

bool SymmetryDetection::VerifySymmetries(std::string& report) {
  report = input_fault_.empty() ? find_fault(*this) : input_fault_;
  if (!report.empty()) HasWholeGroup = false;
  return report.empty();
}

}  // namespace symfold
