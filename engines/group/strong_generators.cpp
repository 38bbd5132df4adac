// Strong generating sets from any generators. Random elements of the group fill the stabiliser chain quickly;
// then every Schreier generator is sifted, which proves it complete (stabiliser_chain_builder.h; random
// elements: F. Celler, C. R. Leedham-Green, S. H. Murray, A. C. Niemeyer and E. A. O'Brien, Generating random
// elements of a finite group, Communications in Algebra 23, 1995).
//
// Cost: mostly the verification. Meant for groups of moderate degree; large ones come with a known order.

#include <algorithm>
#include <cstdint>
#include <random>
#include <utility>

#include "engines/base/images.h"
#include "engines/base/point_vector.h"
#include "engines/group/stabiliser_chain.h"
#include "engines/group/stabiliser_chain_builder.h"

namespace symfold::detail {
namespace {

using Images = StabiliserChainBuilder::Images;

// So many random elements in a row that add nothing are taken as a sign that the stabiliser chain is
// complete.
constexpr int kQuietElements = 20;

// Product replacement: one of a list of generators at a time is multiplied by another, and the running
// product of the changed ones is nearly uniform after a while. The seed is fixed, so every run is the same.
class RandomElements {
 public:
  explicit RandomElements(const std::vector<Images>& generators) : product_(generators.front()) {
    for (std::size_t i = 0; i < std::max<std::size_t>(generators.size(), 10); ++i) {
      slots_.push_back(generators[i % generators.size()]);
    }
    for (std::size_t i = 0; i < 50 + 5 * slots_.size(); ++i) next();
  }

  const Images& next() {
    const std::size_t to = random_() % slots_.size();
    const std::size_t from = (to + 1 + random_() % (slots_.size() - 1)) % slots_.size();
    multiply(slots_[to], random_() % 2 == 0 ? slots_[from] : inverse(slots_[from]));
    multiply(product_, slots_[to]);
    return product_;
  }

 private:
  std::vector<Images> slots_;
  Images product_;
  std::mt19937_64 random_{2003};
};

void fill(StabiliserChainBuilder& chain, const std::vector<Images>& generators,
          const std::vector<int>& known_lengths) {
  RandomElements random(generators);
  for (int quiet = 0; quiet < kQuietElements; ++quiet) {
    if (!chain.absorb(random.next())) continue;
    quiet = -1;
    if (chain.orbit_lengths() == known_lengths) return;
  }
}

}  // namespace

// Works on the moved points alone, renumbered in their order, so that the degree is small.
std::vector<SparsePermutation> strong_generators(int n, const std::vector<SparsePermutation>& generators,
                                                 const std::vector<int>& known_lengths) {
  PointVector<int> number(n, 0);
  for (const SparsePermutation& moves : generators) {
    for (const PointMove move : moves) number[move.point] = 1;
  }
  PointVector<int> points;
  for (int x = 0; x < n; ++x) {
    if (number[x] == 0) continue;
    number[x] = points.size();
    points.push_back(x);
  }
  if (points.empty()) return {};

  std::vector<Images> dense;
  for (const SparsePermutation& moves : generators) {
    dense.push_back(identity_images(points.size()));
    for (const auto& [point, image] : moves) dense.back()[number[point]] = number[image];
  }
  StabiliserChainBuilder chain(points.size());
  for (const Images& images : dense) chain.absorb(images);
  if (chain.orbit_lengths() != known_lengths) fill(chain, dense, known_lengths);
  if (chain.orbit_lengths() != known_lengths) chain.verify();

  std::vector<SparsePermutation> strong;
  for (const Images& images : chain.essential_generators()) {
    SparsePermutation& moves = strong.emplace_back();
    for (int x = 0; x < images.size(); ++x) {
      if (images[x] != x) moves.push_back({points[x], points[images[x]]});
    }
  }
  return strong;
}

}  // namespace symfold::detail
