#include "bench/composition_graphs.h"

#include <algorithm>
#include <cmath>
#include <numeric>
#include <random>
#include <utility>

#include "bench/incidence_structures.h"

namespace symfold::detail {
namespace {

int root(double x) { return static_cast<int>(std::lround(std::sqrt(x))); }

NamedGraph star(int size) {
  const int clients = size / 2;
  Composition composition;
  composition.add_submodels(clients);
  const int bus = composition.add_join();
  for (int i = 0; i < clients; ++i) composition.bind(bus, i);
  return {"star N=" + std::to_string(clients), std::move(composition).finish()};
}

NamedGraph philosophers(int size) {
  const int count = size / 4;
  Composition composition;
  composition.add_submodels(count);
  for (int i = 0; i < count; ++i) composition.link(i, (i + 1) % count, 0, 1);
  return {"philosophers N=" + std::to_string(count), std::move(composition).finish()};
}

NamedGraph arms(int size) {
  const int count = size / 10;
  Composition composition;
  composition.add_submodels(count);
  const int arm = composition.add_submodels(2 * count, 1);
  for (int i = 0; i < count; ++i) {
    const int shoulders = composition.add_join();
    composition.bind(shoulders, i);
    for (int side = 0; side < 2; ++side) composition.bind(shoulders, arm + 2 * i + side, 1);
    composition.link(arm + 2 * i + 1, arm + 2 * ((i + 1) % count));
  }
  return {"arms N=" + std::to_string(count), std::move(composition).finish()};
}

// `visit` gets every site of a square grid whose edges are glued together, its right and its lower neighbour.
template <class Visit>
void for_each_site(int width, Visit visit) {
  for (int i = 0; i < width; ++i) {
    for (int j = 0; j < width; ++j)
      visit(i * width + j, (i + 1) % width * width + j, i * width + (j + 1) % width);
  }
}

NamedGraph routers(int size) {
  const int width = root(size / 7.0);
  Composition composition;
  composition.add_submodels(width * width);
  for_each_site(width, [&](int site, int right, int down) {
    composition.link(site, right, 0, 1);
    composition.link(site, down, 2, 3);
  });
  return {"routers W=H=" + std::to_string(width), std::move(composition).finish()};
}

NamedGraph torus(int size) {
  const int width = root(size / 15.0);
  const int sites = width * width;
  Composition composition;
  composition.add_submodels(sites);
  const int contact = composition.add_submodels(4 * sites, 1);
  std::vector<int> health;
  for (int site = 0; site < sites; ++site) {
    health.push_back(composition.add_join());
    composition.bind(health.back(), site);
  }
  int next = contact;
  const auto touch = [&](int from, int to) {
    composition.bind(health[static_cast<std::size_t>(from)], next, 0);
    composition.bind(health[static_cast<std::size_t>(to)], next++, 1);
  };
  for_each_site(width, [&](int site, int right, int down) {
    for (const int neighbour : {right, down}) {
      touch(site, neighbour);
      touch(neighbour, site);
    }
  });
  return {"torus W=H=" + std::to_string(width), std::move(composition).finish()};
}

NamedGraph wreath(int size) {
  const int racks = root(size / 2.0);
  Composition composition;
  composition.add_submodels(racks);
  const int server = composition.add_submodels(racks * racks, 1);
  const int backbone = composition.add_join();
  for (int m = 0; m < racks; ++m) {
    const int bus = composition.add_join();
    composition.bind(bus, m);
    for (int k = 0; k < racks; ++k) composition.bind(bus, server + m * racks + k);
    composition.bind(backbone, m, 1);
  }
  return {"wreath M=K=" + std::to_string(racks), std::move(composition).finish()};
}

// The largest whose graph is not above the size.
int hypercube_dimension(int size) {
  int dimension = 1;
  while ((2 << dimension) * (5 + 3 * dimension) / 2 <= size) ++dimension;
  return dimension;
}

GraphParts hypercube_graph(int dimension, bool has_named_dimensions) {
  Composition composition;
  composition.add_submodels(1 << dimension);
  for (int k = 0; k < dimension; ++k) {
    for (int node = 0; node < 1 << dimension; ++node) {
      const int variable = has_named_dimensions ? k : 0;
      if ((node >> k & 1) == 0) composition.link(node, node + (1 << k), variable, variable);
    }
  }
  return std::move(composition).finish();
}

NamedGraph hypercube(int size) {
  const int dimension = hypercube_dimension(size);
  return {"hypercube d=" + std::to_string(dimension), hypercube_graph(dimension, true)};
}

NamedGraph even_hypercube(int size) {
  const int dimension = hypercube_dimension(size);
  return {"even hypercube d=" + std::to_string(dimension), hypercube_graph(dimension, false)};
}

NamedGraph complete(int size) {
  const int hubs = root(size / 3.0);
  Composition composition;
  composition.add_submodels(hubs);
  const int channel = composition.add_submodels(hubs * (hubs - 1), 1);
  std::vector<std::pair<int, int>> ends;
  for (int i = 0; i < hubs; ++i) {
    for (int j = 0; j < hubs; ++j) {
      if (i != j) ends.emplace_back(i, j);
    }
  }
  for (int side = 0; side < 2; ++side) {
    for (int hub = 0; hub < hubs; ++hub) {
      const int join = composition.add_join();
      composition.bind(join, hub, side);
      for (int c = 0; c < hubs * (hubs - 1); ++c) {
        const auto& [from, to] = ends[static_cast<std::size_t>(c)];
        if ((side == 0 ? from : to) == hub) composition.bind(join, channel + c, side);
      }
    }
  }
  return {"complete K=" + std::to_string(hubs), std::move(composition).finish()};
}

NamedGraph clients_servers(int size) {
  const int count = root(size / 3.0);
  Composition composition;
  composition.add_submodels(count);
  const int server = composition.add_submodels(count, 1);
  const int session = composition.add_submodels(count * count, 2);
  for (int side = 0; side < 2; ++side) {
    for (int i = 0; i < count; ++i) {
      const int join = composition.add_join();
      composition.bind(join, side == 0 ? i : server + i);
      for (int j = 0; j < count; ++j) {
        composition.bind(join, session + (side == 0 ? i * count + j : j * count + i), side);
      }
    }
  }
  return {"clients_servers K=M=" + std::to_string(count), std::move(composition).finish()};
}

NamedGraph pairs(int size) {
  const int count = size / 5;
  Composition composition;
  composition.add_submodels(2 * count);
  for (int i = 0; i < count; ++i) composition.link(2 * i, 2 * i + 1);
  return {"pairs N=" + std::to_string(count), std::move(composition).finish()};
}

NamedGraph every_two(int size) {
  const int count = root(size / 1.5);
  Composition composition;
  composition.add_submodels(count);
  for (int i = 0; i < count; ++i) {
    for (int j = 0; j < i; ++j) composition.link(i, j);
  }
  return {"every two N=" + std::to_string(count), std::move(composition).finish()};
}

NamedGraph random_tree(int size) {
  std::mt19937 random(1);
  GraphParts parts{size, {}, {}};
  for (int v = 1; v < size; ++v)
    parts.edges.push_back({v, static_cast<int>(random() % static_cast<unsigned>(v))});
  return {"random tree n=" + std::to_string(size), std::move(parts), GraphKind::kBare};
}

// A cycle through all vertices and random edges, `per_vertex` for each.
NamedGraph random_sparse(int size, int per_vertex) {
  std::mt19937 random(2);
  const auto vertex = [&] { return static_cast<int>(random() % static_cast<unsigned>(size)); };
  std::vector<std::pair<int, int>> ends;
  for (int v = 0; v < size; ++v) ends.emplace_back(std::minmax(v, (v + 1) % size));
  for (int i = 0; i < size * per_vertex; ++i) ends.emplace_back(std::minmax({vertex(), vertex()}));
  std::sort(ends.begin(), ends.end());
  ends.erase(std::unique(ends.begin(), ends.end()), ends.end());
  GraphParts parts{size, {}, {}};
  for (const auto& [a, b] : ends) {
    if (a != b) parts.edges.push_back({a, b});
  }
  return {"random degree " + std::to_string(2 + 2 * per_vertex) + " n=" + std::to_string(size),
          std::move(parts), GraphKind::kBare};
}

}  // namespace

std::vector<NamedGraph> graph_families(const std::vector<int>& sizes) {
  std::vector<NamedGraph> graphs;
  for (const auto family : {star, philosophers, arms, routers, torus, wreath, hypercube, even_hypercube,
                            complete, clients_servers, pairs, every_two, random_tree}) {
    for (const int size : sizes) graphs.push_back(family(size));
  }
  for (const int per_vertex : {1, 3}) {
    for (const int size : sizes) graphs.push_back(random_sparse(size, per_vertex));
  }
  for (const int degree : {3, 6}) {
    for (const int size : sizes) {
      std::mt19937 random(3);
      graphs.push_back(bare_graph(random_regular(size, degree, random)));
    }
  }
  return graphs;
}

GraphParts shuffled(GraphParts parts, unsigned seed) {
  std::mt19937 random(seed);
  std::vector<int> number(static_cast<std::size_t>(parts.n));
  std::iota(number.begin(), number.end(), 0);
  auto colour_begin = number.begin();
  for (const int boundary : parts.boundaries) {
    std::shuffle(colour_begin, number.begin() + boundary, random);
    colour_begin = number.begin() + boundary;
  }
  std::shuffle(colour_begin, number.end(), random);
  for (Edge& edge : parts.edges) {
    edge = {number[static_cast<std::size_t>(edge.from)], number[static_cast<std::size_t>(edge.to)]};
  }
  std::shuffle(parts.edges.begin(), parts.edges.end(), random);
  return parts;
}

}  // namespace symfold::detail
