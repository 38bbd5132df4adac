#include "engines/base/base_points.h"

#include <algorithm>
#include <utility>

#include "engines/base/union_find.h"

namespace symfold::detail {
namespace {

// Visits the points from the largest down. The generators whose smallest moved point is the current one join
// those of all larger points. A linked list for each point holds its generators in their order.
template <class Generators>
void read_base_of(int n, const Generators& generators, std::vector<int>& base,
                  std::vector<int>& orbit_lengths) {
  PointVector<int> first(n, -1);
  PointVector<int> next(static_cast<int>(generators.size()));
  for (int g = next.size() - 1; g >= 0; --g) {
    const int smallest = generators[static_cast<std::size_t>(g)].front().point;
    next[g] = std::exchange(first[smallest], g);
  }
  UnionFind orbits(n);
  for (int p = n - 1; p >= 0; --p) {
    if (first[p] < 0) continue;
    for (int g = first[p]; g >= 0; g = next[g]) {
      for (const auto& [point, image] : generators[static_cast<std::size_t>(g)]) orbits.unite(point, image);
    }
    base.push_back(p);
    orbit_lengths.push_back(orbits.size_of_class(p));
  }
  std::reverse(base.begin(), base.end());
  std::reverse(orbit_lengths.begin(), orbit_lengths.end());
}

}  // namespace

void read_base(int n, const PermutationList& generators, std::vector<int>& base,
               std::vector<int>& orbit_lengths) {
  read_base_of(n, generators, base, orbit_lengths);
}

void read_base(int n, const std::vector<SparsePermutation>& generators, std::vector<int>& base,
               std::vector<int>& orbit_lengths) {
  read_base_of(n, generators, base, orbit_lengths);
}

}  // namespace symfold::detail
