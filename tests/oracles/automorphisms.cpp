#include "tests/oracles/automorphisms.h"

#include <algorithm>
#include <numeric>
#include <sstream>

namespace symfold::oracle {
namespace {

std::size_t index(int i) { return static_cast<std::size_t>(i); }

Images identity(int n) {
  Images images(index(n));
  std::iota(images.begin(), images.end(), 0);
  return images;
}

}  // namespace

std::string Graph::file_text() const {
  std::ostringstream text;
  text << n << ' ' << edges.size() << ' ' << (n == 0 ? 0 : boundaries.size() + 1);
  for (const int boundary : boundaries) text << ' ' << boundary;
  text << '\n';
  for (const auto& [a, b] : edges) text << a << ' ' << b << '\n';
  return text.str();
}

Group all_automorphisms(const Graph& graph) {
  const std::size_t n = index(graph.n);
  std::vector<Images> multiplicity(n, Images(n, 0));
  for (const auto& [a, b] : graph.edges) {
    ++multiplicity[index(a)][index(b)];
    if (a != b) ++multiplicity[index(b)][index(a)];
  }
  Images colour(n, 0);
  for (const int boundary : graph.boundaries) {
    for (std::size_t v = index(boundary); v < n; ++v) ++colour[v];
  }
  const auto is_automorphism = [&](const Images& images) {
    for (std::size_t v = 0; v < n; ++v) {
      if (colour[index(images[v])] != colour[v]) return false;
      for (std::size_t w = 0; w <= v; ++w) {
        if (multiplicity[index(images[v])][index(images[w])] != multiplicity[v][w]) return false;
      }
    }
    return true;
  };
  Group group;
  Images images = identity(graph.n);
  do {
    if (is_automorphism(images)) group.insert(images);
  } while (std::next_permutation(images.begin(), images.end()));
  return group;
}

Group closure(int n, const std::vector<Images>& generators) {
  Group group{identity(n)};
  std::vector<Images> pending{identity(n)};
  while (!pending.empty()) {
    const Images images = pending.back();
    pending.pop_back();
    for (const Images& generator : generators) {
      Images product;
      for (const int image : images) product.push_back(generator[index(image)]);
      if (group.insert(product).second) pending.push_back(product);
    }
  }
  return group;
}

int smallest_moved(int n, const Group& group) {
  for (int point = 0; point < n; ++point) {
    if (orbit(group, point).size() > 1) return point;
  }
  return n;
}

Group stabiliser(const Group& group, int point) {
  Group fixing;
  for (const Images& images : group) {
    if (images[index(point)] == point) fixing.insert(images);
  }
  return fixing;
}

std::set<int> orbit(const Group& group, int point) {
  std::set<int> points;
  for (const Images& images : group) points.insert(images[index(point)]);
  return points;
}

}  // namespace symfold::oracle
