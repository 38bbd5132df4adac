// What is unsound among the generators goes, so that the rest can be folded by.
//
// The graph does not tie the variables of one join together. So an automorphism may exchange two of them,
// which no move of whole partitions expresses, or carry a variable of a join of two onto the only one of
// another join. A generator that does so is left out. The others are symmetries of the composition, and so
// are all their products: the group that they generate is sound. It may lack sound symmetries, products of
// generators that are not sound by themselves, so it is not called the whole group.

#include <algorithm>

#include "detector/graph/graph_names.h"
#include "detector/partitions/composition.h"
#include "detector/symmetry_detection.h"

namespace symfold {
namespace {

constexpr std::size_t kToldNames = 6;   // of a cycle
constexpr std::size_t kToldCycles = 6;  // of a generator

}  // namespace

void SymmetryDetection::KeepSoundGenerators() {
  const auto is_identity = [](const Permutation& generator) { return generator.IsIdentity(); };
  if (std::ranges::all_of(OrigPermutations, is_identity)) return;
  detail::Composition composition;
  if (!detail::read_composition(GraphNodes, GraphEdges, composition).empty()) return;
  const auto name_of = [](const ModelCompGraphNode& node) { return node.Name; };
  const auto is_unsound = [&](const Permutation& generator) {
    const std::string fault = detail::find_generator_fault(GraphNodes, composition, generator);
    if (fault.empty()) return false;
    const bool has_cycles =
        generator.IsPermutation() && generator.GetN() == static_cast<int>(GraphNodes.size());
    const std::string cycles =
        has_cycles ? " " + detail::named_cycles(GraphNodes, generator, name_of, kToldNames, kToldCycles) : "";
    Refuse("the generator" + cycles + " is left out: it " + fault);
    return true;
  };
  if (std::erase_if(OrigPermutations, is_unsound) == 0) return;
  HasWholeGroup = false;
  SGS.clear();
  SGSBase.clear();
  SGSOrbitLengths.clear();
  Bases.clear();
  VPerms.clear();
  FindMCG_FindSS();
  FindMCG_FindST();
}

}  // namespace symfold
