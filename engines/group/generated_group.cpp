#include "engines/group/generated_group.h"

#include <algorithm>
#include <functional>
#include <numeric>
#include <optional>
#include <set>
#include <utility>
#include <vector>

#include "engines/base/union_find.h"
#include "engines/group/aligned_blocks.h"
#include "engines/group/random_products.h"
#include "engines/group/relation_proof.h"
#include "engines/group/stabiliser_chain.h"
#include "engines/group/stabiliser_forest.h"
#include "engines/group/support_factors.h"

namespace symfold::detail {
namespace {

using Moves = std::span<const PointMove>;

struct LessMoves {
  bool operator()(const SparsePermutation& a, const SparsePermutation& b) const {
    return std::ranges::lexicographical_compare(a, b, [](PointMove x, PointMove y) {
      return x.point != y.point ? x.point < y.point : x.image < y.image;
    });
  }
};

// Returns true if the powers of a generator that move its smallest point are all but the identity: all cycle
// lengths divide that of the smallest point.
bool is_strong_alone(int degree, Moves generator) {
  PointVector<int> images = identity_images(degree);
  for (const auto& [point, image] : generator) images[point] = image;
  int first_length = 0;
  for (const PointMove move : generator) {
    int length = 0;
    for (int point = move.point; images[point] >= 0; ++length) {
      const int next = images[point];
      images[point] = -1;
      point = next;
    }
    if (length == 0) continue;
    if (first_length == 0) first_length = length;
    if (first_length % length != 0) return false;
  }
  return true;
}

// Symmetric groups of blocks and wreath products K wr Sym(M): M blocks, connected by exchanges among the
// generators, and generators of which each is a permutation of blocks and then moves places inside at most
// one block. What they do there generates K, because exchanges carry it to every other block.
//
// The result is strong relative to the base rule. Let b be a point. A block with a point below b is fixed as
// a whole by the stabiliser of the points below b, and all other blocks are free. So this stabiliser is the
// product of the stabilisers inside the former, which strong generators inside each block give, and of K wr
// Sym of the latter. These are the last ones in the order of smallest points; exchanges of neighbours
// generate all their permutations, and none of these moves a point below b.
std::optional<StrongGenerators> generate_by_exchanges(const SupportFactor& factor) {
  const std::optional<AlignedBlocks> blocks = find_exchanged_blocks(factor.degree(), factor.generators);
  if (!blocks) return std::nullopt;
  std::set<SparsePermutation, LessMoves> distinct;
  BlockAction action(*blocks);
  for (std::size_t g = 0; g < factor.generators.size(); ++g) {
    if (!action.split(factor.generators[g]) || action.inner().size() > 1) return std::nullopt;
    for (const SparsePermutation& moves : action.inner()) distinct.insert(moves);
  }
  StrongGenerators strong;
  for (int b = 1; b < blocks->count(); ++b) strong.list.push_back(blocks->exchange(b - 1, b));
  if (distinct.empty()) return strong;
  PermutationList on_places;
  for (const SparsePermutation& moves : distinct) on_places.push_back(moves);
  const StrongGenerators strong_on_places = generate_strongly(blocks->length, on_places);
  strong.are_proved = strong_on_places.are_proved;
  for (int b = 0; b < blocks->count(); ++b) {
    if (std::ranges::is_sorted(blocks->block(b))) {
      for (const SparsePermutation& moves : strong_on_places.list)
        strong.list.push_back(blocks->inside(b, moves));
    } else {
      PermutationList inside;
      for (const SparsePermutation& moves : on_places) inside.push_back(blocks->inside(b, moves));
      const StrongGenerators own = generate_strongly(factor.degree(), inside);
      for (const SparsePermutation& moves : own.list) strong.list.push_back(moves);
      strong.are_proved = strong.are_proved && own.are_proved;
    }
  }
  return strong;
}

bool has_all(const StabiliserForest& forest, int degree, const PermutationList& permutations) {
  WorkPermutation work(degree);
  for (std::size_t g = 0; g < permutations.size(); ++g) {
    work.then(permutations[g]);
    if (!forest.contains(work)) return false;
  }
  return true;
}

// Returns those that make the orbits whole: by base point, from the last one up, the first ones that do.
PermutationList enough_for_orbits(int degree, const PermutationList& generators) {
  std::vector<std::size_t> order(generators.size());
  std::iota(order.begin(), order.end(), std::size_t{0});
  std::ranges::stable_sort(order, std::greater<>(),
                           [&](std::size_t g) { return generators[g].front().point; });
  UnionFind orbits(degree);
  PermutationList enough;
  for (const std::size_t g : order) {
    bool joins_orbits = false;
    for (const auto& [point, image] : generators[g])
      joins_orbits = orbits.unite(point, image) || joins_orbits;
    if (joins_orbits) enough.push_back(generators[g]);
  }
  return enough;
}

// Adds what is left of random products after they are sifted, until 64 in a row leave nothing. If the result
// were not strong, at most half of all elements would leave nothing, because these are some of the cosets of
// a subgroup at a level. So for uniformly random elements it is not strong with probability 2^-64 at most.
// Tables hold thousands of generators, of which the orbits need few.
PermutationList complete_at_random(int degree, const PermutationList& all) {
  constexpr int kQuietElements = 64;
  RandomProducts random(degree, all);
  PermutationList generators = enough_for_orbits(degree, all);
  WorkPermutation work(degree);
  for (;;) {
    PermutationList added;
    const StabiliserForest forest(degree, generators);
    for (int i = 0; i < kQuietElements; ++i) {
      work.then(random.next());
      if (!forest.sift(work)) added.push_back(work.moves());
      work.set_identity();
    }
    if (added.size() == 0) return generators;
    for (const SparsePermutation& moves : added) generators.push_back(moves);
  }
}

// About the points that a proof by all Schreier generators looks at.
double proof_cost(int degree, std::size_t generators, const StabiliserForest& forest) {
  double cost = 0;
  const double path = std::max(forest.depth(), 1);
  for (const int length : forest.orbit_lengths()) {
    cost += static_cast<double>(length) * static_cast<double>(forest.base().size()) * degree * path *
            static_cast<double>(std::min(generators, forest.base().size() + 1));
  }
  return cost;
}

// Begins with few of the generators and adds those that their group leaves out, at most as many as there are,
// because tables hold a generator for each point of an orbit, of which few are needed.
StrongGenerators generate_by_schreier_sims(const SupportFactor& factor) {
  constexpr std::size_t kExtraAtFirst = 8;
  constexpr double kQuickProof = 3e7;  // quicker than one by relations
  constexpr double kMaxProof = 1e9;
  constexpr int kSmallDegree = 64;  // is always proved
  const int degree = factor.degree();
  const PermutationList& all = factor.generators;
  if (degree > kSmallDegree) {
    PermutationList likely = enough_for_orbits(degree, complete_at_random(degree, all));
    const StabiliserForest forest(degree, likely);
    const double cost = proof_cost(degree, likely.size(), forest);
    if (cost > kQuickProof && has_all(forest, degree, all) && are_proved_strong(degree, likely, forest)) {
      return {std::move(likely), true};
    }
    if (cost > kMaxProof) return {std::move(likely), false};
  }
  std::vector<SparsePermutation> used;
  UnionFind orbits(degree);
  const std::size_t stride = std::max<std::size_t>(all.size() / kExtraAtFirst, 1);
  for (std::size_t g = 0; g < all.size(); ++g) {
    bool joins_orbits = false;
    for (const auto& [point, image] : all[g]) joins_orbits = orbits.unite(point, image) || joins_orbits;
    if (joins_orbits || g % stride == 0) used.emplace_back(all[g].begin(), all[g].end());
  }
  WorkPermutation work(degree);
  for (;;) {
    PermutationList strong;
    for (const SparsePermutation& moves : strong_generators(degree, used, {})) strong.push_back(moves);
    const StabiliserForest forest(degree, strong);
    const std::size_t before = used.size();
    for (std::size_t g = 0; g < all.size() && used.size() < 2 * before; ++g) {
      work.then(all[g]);
      if (!forest.contains(work)) used.emplace_back(all[g].begin(), all[g].end());
    }
    if (used.size() == before) return {std::move(strong), true};
  }
}

StrongGenerators generate_factor(const SupportFactor& factor) {
  if (factor.generators.size() == 1 && is_strong_alone(factor.degree(), factor.generators[0])) {
    return {factor.generators, true};
  }
  if (auto strong = generate_by_exchanges(factor)) return *std::move(strong);
  return generate_by_schreier_sims(factor);
}

}  // namespace

bool PermutationCheck::is_permutation(Moves moves) {
  const auto in_range = [this](int x) { return x >= 0 && x < uses_.size(); };
  for (std::size_t i = 0; i < moves.size(); ++i) {
    const auto& [point, image] = moves[i];
    if (!in_range(point) || !in_range(image) || image == point) return false;
    if (i > 0 && moves[i - 1].point >= point) return false;
  }
  for (const PointMove move : moves) uses_[move.point] = 1;
  bool is_permutation = true;
  for (const PointMove move : moves) {
    is_permutation = is_permutation && uses_[move.image] == 1;
    uses_[move.image] = 0;
  }
  for (const PointMove move : moves) uses_[move.point] = 0;
  return is_permutation;
}

StrongGenerators generate_strongly(int degree, const PermutationList& generators) {
  StrongGenerators strong;
  for (const SupportFactor& factor : support_factors(degree, generators)) {
    const StrongGenerators on_factor = generate_factor(factor);
    strong.are_proved = strong.are_proved && on_factor.are_proved;
    for (std::size_t g = 0; g < on_factor.list.size(); ++g) {
      const std::span<PointMove> room = strong.list.add(on_factor.list[g].size());
      for (std::size_t i = 0; i < room.size(); ++i) {
        const auto& [point, image] = on_factor.list[g][i];
        room[i] = {factor.points[static_cast<std::size_t>(point)],
                   factor.points[static_cast<std::size_t>(image)]};
      }
    }
  }
  return strong;
}

}  // namespace symfold::detail
