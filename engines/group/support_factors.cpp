#include "engines/group/support_factors.h"

#include "engines/base/union_find.h"

namespace symfold::detail {

std::vector<SupportFactor> support_factors(int degree, const PermutationList& generators) {
  UnionFind moved_together(degree);
  for (std::size_t g = 0; g < generators.size(); ++g) {
    for (const PointMove move : generators[g]) moved_together.unite(generators[g].front().point, move.point);
  }
  std::vector<SupportFactor> factors;
  PointVector<int> factor_of(degree, -1);  // by root
  PointVector<int> number(degree, 0);
  for (int x = 0; x < degree; ++x) {
    const int root = moved_together.find(x);
    if (moved_together.size_of_class(x) == 1) continue;
    if (factor_of[root] < 0) {
      factor_of[root] = static_cast<int>(factors.size());
      factors.emplace_back();
    }
    std::vector<int>& points = factors[static_cast<std::size_t>(factor_of[root])].points;
    number[x] = static_cast<int>(points.size());
    points.push_back(x);
  }
  for (std::size_t g = 0; g < generators.size(); ++g) {
    const int root = moved_together.find(generators[g].front().point);
    PermutationList& list = factors[static_cast<std::size_t>(factor_of[root])].generators;
    const std::span<PointMove> room = list.add(generators[g].size());
    for (std::size_t i = 0; i < room.size(); ++i) {
      room[i] = {number[generators[g][i].point], number[generators[g][i].image]};
    }
  }
  return factors;
}

}  // namespace symfold::detail
