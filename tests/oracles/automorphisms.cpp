#include "tests/oracles/automorphisms.h"

#include <algorithm>
#include <limits>
#include <map>
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

// Numbers the multisets of labels from one vertex to another; an undirected edge leads both ways.
std::vector<Images> numbered_labels(const Graph& graph) {
  const std::size_t n = index(graph.n);
  std::vector<std::vector<std::multiset<Graph::Label>>> labels(n,
                                                               std::vector<std::multiset<Graph::Label>>(n));
  for (std::size_t e = 0; e < graph.edges.size(); ++e) {
    const auto& [a, b] = graph.edges[e];
    const Graph::Label label = graph.labels.empty() ? Graph::Label{false, 0} : graph.labels[e];
    labels[index(a)][index(b)].insert(label);
    if (a != b && !label.is_directed) labels[index(b)][index(a)].insert(label);
  }
  std::map<std::multiset<Graph::Label>, int> number;
  std::vector<Images> numbers(n, Images(n, 0));
  for (std::size_t v = 0; v < n; ++v) {
    for (std::size_t w = 0; w < n; ++w)
      numbers[v][w] = number.try_emplace(labels[v][w], static_cast<int>(number.size())).first->second;
  }
  return numbers;
}

}  // namespace

std::string Graph::file_text() const {
  std::ostringstream text;
  text << (labels.empty() ? "" : "weighted ") << n << ' ' << edges.size() << ' '
       << (n == 0 ? 0 : boundaries.size() + 1);
  for (const int boundary : boundaries) text << ' ' << boundary;
  text << '\n';
  for (std::size_t e = 0; e < edges.size(); ++e) {
    const auto& [a, b] = edges[e];
    text << a;
    if (!labels.empty()) text << (labels[e].is_directed ? " >" : " -");
    text << ' ' << b;
    if (!labels.empty()) text << ' ' << labels[e].weight;
    text << '\n';
  }
  return text.str();
}

Group all_automorphisms(const Graph& graph) {
  const std::size_t n = index(graph.n);
  const std::vector<Images> edges = numbered_labels(graph);
  Images colour(n, 0);
  for (const int boundary : graph.boundaries) {
    for (std::size_t v = index(boundary); v < n; ++v) ++colour[v];
  }
  const auto is_automorphism = [&](const Images& images) {
    for (std::size_t v = 0; v < n; ++v) {
      if (colour[index(images[v])] != colour[v]) return false;
      for (std::size_t w = 0; w <= v; ++w) {
        if (edges[index(images[v])][index(images[w])] != edges[v][w]) return false;
        if (edges[index(images[w])][index(images[v])] != edges[w][v]) return false;
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
  return closure_up_to(std::numeric_limits<std::size_t>::max(), n, generators);
}

Group closure_up_to(std::size_t most, int n, const std::vector<Images>& generators) {
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
    if (group.size() > most) return {};
  }
  return group;
}

std::vector<int> orbit_of_points(int n, const std::vector<Images>& generators) {
  std::vector<int> orbit = identity(n);
  for (bool has_changed = true; has_changed;) {
    has_changed = false;
    for (const Images& generator : generators) {
      for (std::size_t i = 0; i < orbit.size(); ++i) {
        int& a = orbit[i];
        int& b = orbit[index(generator[i])];
        has_changed = has_changed || a != b;
        a = b = std::min(a, b);
      }
    }
  }
  return orbit;
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
