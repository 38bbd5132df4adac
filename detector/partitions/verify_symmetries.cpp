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
#include <cstdint>
#include <numeric>
#include <span>
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
      : sizes_(sizes),
        order_(order),
        has_names_(order.size() == sizes.size()),
        seen_at_(sizes.size(), 0),
        places_(sizes.size()) {
    std::iota(places_.begin(), places_.end(), 0);
  }

  // Takes the places of the composition's partitions.
  void set_composition(const Composition& composition, const std::vector<int>& places);

  std::string name_of(int partition) const;

  // Both say, as the end of a sentence, what is wrong with the permutation. The second is about the one that
  // the first found to be in order last, and returns an empty text without a composition.
  std::string find_size_fault(const Permutation& permutation);
  std::string find_binding_fault();

 private:
  bool is_submodel(int partition) const { return kinds_[index(partition)] >= 0; }
  void touch(int submodel);
  void touch_all();
  void touch_neighbours();
  bool carries_bindings(int from, int to);
  int image(int partition) const { return places_[index(partition)]; }

  const std::vector<int>& sizes_;
  const std::vector<std::string>& order_;
  bool has_names_;
  std::vector<int> kinds_;              // equal for submodels of one type, and for joins of as many variables
  detail::Lists<Binding> bindings_;     // of submodels, ascending
  detail::Lists<int> bound_submodels_;  // of joins
  std::vector<std::uint32_t> seen_at_;  // by partition: the latest round in which it was met
  std::uint32_t round_ = 0;
  std::vector<int> moved_;   // by the latest permutation, ascending
  std::vector<int> places_;  // by partition: its image under the latest permutation
  std::vector<int> touched_;
  std::vector<Binding> images_;
};

void PermutationCheck::set_composition(const Composition& composition, const std::vector<int>& places) {
  const std::size_t count = places.size();
  kinds_.resize(count);
  for (int i = 0; index(i) < count; ++i) {
    const std::span<const int> nodes = composition.nodes[i];
    kinds_[index(places[index(i)])] = composition.partitions[index(i)].is_join
                                          ? -static_cast<int>(nodes.size())
                                          : composition.types[index(nodes[0])];
  }
  std::vector<std::pair<int, Binding>> bindings;
  std::vector<std::pair<int, int>> bound_submodels;
  for (const auto& [submodel, binding] : composition.bindings) {
    const int place = places[index(submodel)];
    const int join = places[index(binding.join)];
    bindings.push_back({place, {binding.type, binding.number, join}});
    bound_submodels.emplace_back(join, place);
  }
  bindings_ = {count, bindings};
  bound_submodels_ = {count, bound_submodels};
  for (int i = 0; index(i) < count; ++i) {
    const std::span<Binding> list = bindings_[i];
    std::sort(list.begin(), list.end());
  }
}

std::string PermutationCheck::name_of(int partition) const {
  const bool is_named = has_names_ && partition >= 0 && index(partition) < order_.size();
  return is_named ? order_[index(partition)] : "partition " + std::to_string(partition);
}

// Distinct images that are moved themselves are the moved partitions in another order.
std::string PermutationCheck::find_size_fault(const Permutation& permutation) {
  const int n = static_cast<int>(sizes_.size());
  const auto no_permutation = [n] { return "is no permutation of the " + std::to_string(n) + " partitions"; };
  for (const int c : moved_) places_[index(c)] = c;
  moved_.clear();
  if (permutation.GetN() != n || (n > 0 && permutation[n - 1] < 0)) return no_permutation();
  ++round_;
  bool is_injective = true;
  permutation.VisitMoves([&](int c, int d) {
    const bool is_new = d >= 0 && d < n && std::exchange(seen_at_[index(d)], round_) != round_;
    is_injective = is_injective && is_new;
    moved_.push_back(c);
    places_[index(c)] = d;
  });
  const auto stays = [this](int c) { return image(image(c)) == image(c); };
  if (!is_injective || std::ranges::any_of(moved_, stays)) return no_permutation();
  const auto misfits = [this](int c) { return sizes_[index(c)] != sizes_[index(image(c))]; };
  const auto misfit = std::ranges::find_if(moved_, misfits);
  if (misfit == moved_.end()) return "";
  return "moves " + name_of(*misfit) + bytes_text(sizes_[index(*misfit)]) + " to " + name_of(image(*misfit)) +
         bytes_text(sizes_[index(image(*misfit))]);
}

// The permutation is a bijection, so if each submodel's bindings become those of its image, all bindings
// together become all bindings.
std::string PermutationCheck::find_binding_fault() {
  if (kinds_.empty()) return "";
  for (const int c : moved_) {
    if (kinds_[index(c)] == kinds_[index(image(c))]) continue;
    return "carries " + name_of(c) + " to " + name_of(image(c)) + ", which has another type";
  }
  touched_.clear();
  if (moved_.size() > kinds_.size() / 2) {
    touch_all();
  } else {
    touch_neighbours();
  }
  for (const int submodel : touched_) {
    if (carries_bindings(submodel, image(submodel))) continue;
    return "does not carry the joins of " + name_of(submodel) + " onto those of " + name_of(image(submodel));
  }
  return "";
}

void PermutationCheck::touch_all() {
  for (int c = 0; index(c) < kinds_.size(); ++c) {
    if (is_submodel(c)) touched_.push_back(c);
  }
}

// The submodels whose bindings may change are those that are moved, and those that a moved join binds. All
// others and their joins stay.
void PermutationCheck::touch_neighbours() {
  ++round_;
  for (const int c : moved_) {
    if (is_submodel(c)) touch(c);
    for (const int submodel : std::as_const(bound_submodels_)[c]) touch(submodel);
  }
}

void PermutationCheck::touch(int submodel) {
  if (std::exchange(seen_at_[index(submodel)], round_) != round_) touched_.push_back(submodel);
}

// Bindings come by the submodel's variable. If each is bound once, those of two submodels of one type stand
// in one order.
bool PermutationCheck::carries_bindings(int from, int to) {
  const std::span<const Binding> bindings = std::as_const(bindings_)[from];
  const std::span<const Binding> expected = std::as_const(bindings_)[to];
  const auto is_carried = [this](const Binding& binding, const Binding& other) {
    return binding.type == other.type && binding.number == other.number && image(binding.join) == other.join;
  };
  if (std::equal(bindings.begin(), bindings.end(), expected.begin(), expected.end(), is_carried)) return true;
  images_.assign(bindings.begin(), bindings.end());
  for (Binding& binding : images_) binding.join = image(binding.join);
  std::sort(images_.begin(), images_.end());
  return std::equal(images_.begin(), images_.end(), expected.begin(), expected.end());
}

// Finds the place in the state vector of each partition. Returns why there is none: SSOrder must name all of
// them, each once.
std::string find_places(const std::vector<std::string>& order, const Composition& composition,
                        std::vector<int>& places) {
  places.resize(composition.partitions.size());
  std::iota(places.begin(), places.end(), 0);
  const auto has_name = [](const std::string& name, const Composition::Partition& partition) {
    return name == partition.name;
  };
  if (std::equal(order.begin(), order.end(), composition.partitions.begin(), composition.partitions.end(),
                 has_name)) {
    return "";
  }
  std::unordered_map<std::string_view, int> place_of;
  for (const std::string& name : order) {
    if (!place_of.try_emplace(name, static_cast<int>(place_of.size())).second) {
      return "SSOrder names " + name + " twice";
    }
  }
  for (std::size_t i = 0; i < places.size(); ++i) {
    const auto found = place_of.find(composition.partitions[i].name);
    if (found == place_of.end())
      return "SSOrder does not name " + std::string(composition.partitions[i].name);
    places[i] = found->second;
  }
  return "";
}

// Says why the layout is not that of the composition: as many partitions, with the bytes of their nodes, and
// without gaps.
std::string find_layout_fault(const SymmetryDetection& detector, const Composition& composition,
                              const std::vector<int>& places) {
  const std::size_t count = places.size();
  if (detector.SSOrder.size() != count || detector.GNOrder.size() != count ||
      detector.PartitionInfo.size() != count || detector.CumPartitionInfo.size() != count) {
    return "expected " + std::to_string(count) + " partitions, got " +
           std::to_string(detector.SSOrder.size()) + " in SSOrder, " +
           std::to_string(detector.GNOrder.size()) + " in GNOrder, " +
           std::to_string(detector.PartitionInfo.size()) + " in PartitionInfo and " +
           std::to_string(detector.CumPartitionInfo.size()) + " in CumPartitionInfo";
  }
  for (int i = 0; index(i) < count; ++i) {
    long long bytes = 0;
    for (const int node : composition.nodes[i]) bytes += detector.GraphNodes[index(node)].StateSize;
    if (const int got = detector.PartitionInfo[index(places[index(i)])]; got != bytes) {
      return std::string(composition.partitions[index(i)].name) + " has " + std::to_string(got) +
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
  detail::GeneratorCheck check(detector.GraphNodes, composition);
  for (const Permutation& generator : detector.OrigPermutations) {
    const std::string fault = check.find_fault(generator);
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
    if (fault.empty()) fault = find_places(detector.SSOrder, composition, places);
    if (fault.empty()) fault = find_layout_fault(detector, composition, places);
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
        if (binding_fault.empty()) fault = check.find_binding_fault();
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
