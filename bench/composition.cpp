#include "bench/composition.h"

#include <algorithm>
#include <numeric>
#include <utility>

namespace symfold::detail {

int Composition::add_submodels(int count, int type) {
  const int first = vertex_count();
  for (int i = 0; i < count; ++i) add_submodel(type);
  return first;
}

void Composition::bind(int join, int submodel, int variable) {
  const int type = colours_[static_cast<std::size_t>(submodel)];
  const int local = add(kMaxTypes + 1 + type * kMaxTypes + variable);
  edges_.push_back({join, local});
  edges_.push_back({local, submodel});
}

void Composition::link(int a, int b, int a_variable, int b_variable) {
  const int join = add_join();
  bind(join, a, a_variable);
  bind(join, b, b_variable);
}

GraphParts Composition::finish() && {
  std::vector<int> order(colours_.size());
  std::iota(order.begin(), order.end(), 0);
  const auto colour = [this](int part) { return colours_[static_cast<std::size_t>(part)]; };
  std::stable_sort(order.begin(), order.end(), [&](int a, int b) { return colour(a) < colour(b); });
  GraphParts parts{static_cast<int>(order.size()), {}, std::move(edges_)};
  std::vector<int> number(order.size());
  for (int v = 0; v < parts.n; ++v) {
    const int part = order[static_cast<std::size_t>(v)];
    number[static_cast<std::size_t>(part)] = v;
    if (v > 0 && colour(part) != colour(order[static_cast<std::size_t>(v) - 1]))
      parts.boundaries.push_back(v);
  }
  for (Edge& edge : parts.edges) {
    edge = {number[static_cast<std::size_t>(edge.from)], number[static_cast<std::size_t>(edge.to)]};
  }
  return parts;
}

}  // namespace symfold::detail
