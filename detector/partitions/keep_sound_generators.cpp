// What is unsound among the generators goes, so that the rest can be folded by.
//
// The graph does not tie the variables of one join together. So an automorphism may exchange two of them,
// which no move of whole partitions expresses, or carry a variable of a join of two onto the only one of
// another join. A generator that does so is left out. The others are symmetries of the composition, and so
// are all their products: the group that they generate is sound. It may lack sound symmetries, products of
// generators that are not sound by themselves, so it is not called the whole group.

#include <algorithm>
#include <functional>
#include <utility>

#include "detector/graph/graph_names.h"
#include "detector/partitions/composition.h"
#include "detector/symmetry_detection.h"
#include "engines/base/union_find.h"

namespace symfold {
namespace {

constexpr std::size_t kToldNames = 6;   // of a cycle
constexpr std::size_t kToldCycles = 6;  // of a generator

// Returns the smallest point that the permutation moves.
int first_moved(const Permutation& permutation) {
  int first = permutation.GetN();
  permutation.VisitMoves([&first](int point, int) { first = std::min(first, point); });
  return first;
}

void unite_orbits(const Permutation& permutation, int n, detail::UnionFind& orbits) {
  if (permutation.GetN() != n || !permutation.IsPermutation()) return;
  permutation.VisitMoves([&orbits](int point, int image) { orbits.unite(point, image); });
}

// Bounds the orbit lengths of the base of the group H that the sound generators generate, a subgroup of the
// group G that `strong` and `base` belong to. What H does with a point b while it fixes all points below b, G
// can do, too; and it stays in b's orbit under H. So b's orbit is no longer than what these two orbits share,
// and points at which that is b alone are no base points of H. If the generators of H reach all these lengths
// as they are, as they do if those left out move other points, they are strong, and Schreier-Sims has nothing
// to prove. That takes seconds for 200 interchangeable submodels.
std::vector<int> bound_orbit_lengths(const std::vector<Permutation>& strong, std::vector<int> base,
                                     const std::vector<Permutation>& sound, int n) {
  detail::UnionFind under_h(n);
  for (const Permutation& generator : sound) unite_orbits(generator, n, under_h);
  std::vector<std::pair<int, const Permutation*>> by_first;
  by_first.reserve(strong.size());
  for (const Permutation& generator : strong) by_first.emplace_back(first_moved(generator), &generator);
  std::sort(by_first.begin(), by_first.end(), std::greater<>());
  std::sort(base.begin(), base.end(), std::greater<>());
  detail::UnionFind under_g(n);  // under those that fix all points below the base point
  std::vector<int> lengths;
  const std::vector<std::vector<int>> orbits_of_h = under_h.lists<int>();
  std::vector<std::size_t> orbit_of(static_cast<std::size_t>(n));
  for (std::size_t i = 0; i < orbits_of_h.size(); ++i) {
    for (const int point : orbits_of_h[i]) orbit_of[static_cast<std::size_t>(point)] = i;
  }
  auto next = by_first.begin();
  for (const int b : base) {
    if (b < 0 || b >= n) continue;
    for (; next != by_first.end() && next->first >= b; ++next) unite_orbits(*next->second, n, under_g);
    int length = 0;
    for (const int point : orbits_of_h[orbit_of[static_cast<std::size_t>(b)]]) {
      length += under_g.find(point) == under_g.find(b) ? 1 : 0;
    }
    if (length > 1) lengths.push_back(length);
  }
  std::reverse(lengths.begin(), lengths.end());
  return lengths;
}

}  // namespace

void SymmetryDetection::KeepSoundGenerators() {
  const auto is_identity = [](const Permutation& generator) { return generator.IsIdentity(); };
  if (std::ranges::all_of(OrigPermutations, is_identity)) return;
  detail::Composition composition;
  if (!detail::read_composition(GraphNodes, GraphEdges, composition).empty()) return;
  const auto name_of = [](const ModelCompGraphNode& node) { return node.Name; };
  detail::GeneratorCheck check(GraphNodes, composition);
  const auto is_unsound = [&](const Permutation& generator) {
    const std::string fault = check.find_fault(generator);
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
  SGSOrbitLengths = bound_orbit_lengths(SGS, SGSBase, OrigPermutations, static_cast<int>(GraphNodes.size()));
  SGS.clear();
  SGSBase.clear();
  Bases.clear();
  VPerms.clear();
  MakeTables();
}

}  // namespace symfold
