#include "bench/incidence_structures.h"

#include <algorithm>
#include <array>
#include <map>
#include <numeric>
#include <optional>
#include <utility>

namespace symfold::detail {
namespace {

using Block = std::vector<int>;

int below(std::mt19937& random, int bound) {
  return static_cast<int>(random() % static_cast<unsigned>(bound));
}

std::string numbered(const char* name, int value) { return name + std::to_string(value); }

// By residue modulo q: 1 for a nonzero square, -1 for another nonzero residue, 0 for 0.
std::vector<int> quadratic_characters(int q) {
  std::vector<int> character(static_cast<std::size_t>(q), -1);
  for (int x = 1; x < q; ++x) character[static_cast<std::size_t>(static_cast<long>(x) * x % q)] = 1;
  character[0] = 0;
  return character;
}

// The 2n columns with sign are points, the 2n rows with sign blocks.
template <class Entry>
IncidenceStructure signed_matrix(std::string name, int n, Entry entry) {
  IncidenceStructure structure{std::move(name), 2 * n, {}};
  for (int row = 0; row < n; ++row) {
    for (const int sign : {1, -1}) {
      Block& block = structure.blocks.emplace_back();
      for (int column = 0; column < n; ++column)
        block.push_back(2 * column + (sign * entry(row, column) > 0 ? 0 : 1));
    }
  }
  return structure;
}

template <class Symbol>
IncidenceStructure latin_square(std::string name, int n, Symbol symbol) {
  IncidenceStructure structure{std::move(name), n * n, std::vector<Block>(static_cast<std::size_t>(3 * n))};
  for (int cell = 0; cell < n * n; ++cell) {
    for (const int block : {cell / n, n + cell % n, 2 * n + symbol(cell / n, cell % n)})
      structure.blocks[static_cast<std::size_t>(block)].push_back(cell);
  }
  return structure;
}

// The subsets of size k of 0 .. n-1, as bits, in ascending order.
std::vector<unsigned> subsets(int n, int k) {
  std::vector<unsigned> sets;
  for (unsigned set = 0; set < 1U << n; ++set) {
    if (__builtin_popcount(set) == k) sets.push_back(set);
  }
  return sets;
}

template <class Adjacent>
IncidenceStructure graph_on(std::string name, int n, Adjacent adjacent) {
  IncidenceStructure graph{std::move(name), n, {}};
  for (int a = 0; a < n; ++a) {
    for (int b = a + 1; b < n; ++b) {
      if (adjacent(a, b)) graph.blocks.push_back({a, b});
    }
  }
  return graph;
}

IncidenceStructure subset_graph(const char* name, int n, int k, int common) {
  const std::vector<unsigned> sets = subsets(n, k);
  return graph_on(
      name + std::to_string(n) + "," + std::to_string(k), static_cast<int>(sets.size()), [&](int a, int b) {
        return __builtin_popcount(sets[static_cast<std::size_t>(a)] & sets[static_cast<std::size_t>(b)]) ==
               common;
      });
}

void make_edges_unique(IncidenceStructure& graph) {
  for (Block& edge : graph.blocks) std::sort(edge.begin(), edge.end());
  std::sort(graph.blocks.begin(), graph.blocks.end());
  graph.blocks.erase(std::unique(graph.blocks.begin(), graph.blocks.end()), graph.blocks.end());
}

}  // namespace

// Points are triples of residues up to a factor, whose first number other than 0 is 1; so are lines.
IncidenceStructure projective_plane(int q) {
  std::vector<std::array<int, 3>> triples;
  for (int x = 0; x < q; ++x) {
    for (int y = 0; y < q; ++y) triples.push_back({1, x, y});
    triples.push_back({0, 1, x});
  }
  triples.push_back({0, 0, 1});
  IncidenceStructure plane{numbered("projective plane q=", q), static_cast<int>(triples.size()), {}};
  for (const auto& line : triples) {
    Block& block = plane.blocks.emplace_back();
    for (int point = 0; point < plane.points; ++point) {
      const auto& p = triples[static_cast<std::size_t>(point)];
      if ((line[0] * p[0] + line[1] * p[1] + line[2] * p[2]) % q == 0) block.push_back(point);
    }
  }
  return plane;
}

IncidenceStructure affine_plane(int q) {
  IncidenceStructure plane{numbered("affine plane q=", q), q * q, {}};
  for (int shift = 0; shift < q; ++shift) {
    Block& vertical = plane.blocks.emplace_back();
    for (int y = 0; y < q; ++y) vertical.push_back(shift * q + y);
    for (int slope = 0; slope < q; ++slope) {
      Block& line = plane.blocks.emplace_back();
      for (int x = 0; x < q; ++x) line.push_back(x * q + (slope * x + shift) % q);
    }
  }
  return plane;
}

// Points (x, i), x modulo 2t+1, i modulo 3. The mean of two residues is their sum times t+1.
IncidenceStructure bose_triples(int t) {
  const int n = 2 * t + 1;
  IncidenceStructure system{numbered("Bose triples n=", 3 * n), 3 * n, {}};
  for (int x = 0; x < n; ++x) {
    system.blocks.push_back({x, n + x, 2 * n + x});
    for (int y = x + 1; y < n; ++y) {
      for (int i = 0; i < 3; ++i)
        system.blocks.push_back({i * n + x, i * n + y, (i + 1) % 3 * n + (x + y) * (t + 1) % n});
    }
  }
  return system;
}

// Hill climbing: takes a random point with two partners that it has not met; if these have met each other,
// their block goes (D. R. Stinson, Hill-climbing algorithms for the construction of combinatorial designs,
// 1985).
IncidenceStructure random_triples(int points, std::mt19937& random) {
  std::map<std::pair<int, int>, int> third;  // by pair of points that share a block
  const auto set = [&](int a, int b, int c, bool is_block) {
    for (const auto& [x, y, z] : {std::array{a, b, c}, std::array{b, c, a}, std::array{c, a, b}}) {
      for (const auto& pair : {std::pair(x, y), std::pair(y, x)}) {
        if (is_block) third[pair] = z;
        if (!is_block) third.erase(pair);
      }
    }
  };
  const auto pairs = static_cast<std::size_t>(points) * static_cast<std::size_t>(points - 1);
  while (third.size() < pairs) {
    const int a = below(random, points);
    const int b = below(random, points);
    const int c = below(random, points);
    if (a == b || a == c || b == c || third.count({a, b}) != 0 || third.count({a, c}) != 0) continue;
    if (const auto old = third.find({b, c}); old != third.end()) set(b, c, int{old->second}, false);
    set(a, b, c, true);
  }
  IncidenceStructure system{numbered("random triples n=", points), points, {}};
  for (const auto& [pair, c] : third) {
    if (pair.first < pair.second && pair.second < c) system.blocks.push_back({pair.first, pair.second, c});
  }
  return system;
}

IncidenceStructure sylvester_hadamard(int k) {
  return signed_matrix(numbered("Sylvester-Hadamard n=", 1 << k), 1 << k,
                       [](int row, int column) { return __builtin_parity(unsigned(row & column)) ? -1 : 1; });
}

IncidenceStructure paley_hadamard(int q) {
  const std::vector<int> character = quadratic_characters(q);
  return signed_matrix(numbered("Paley-Hadamard n=", q + 1), q + 1, [&](int row, int column) {
    if (row == 0 || column == 0) return column == 0 && row != 0 ? -1 : 1;
    return row == column ? 1 : character[static_cast<std::size_t>((row - column + q) % q)];
  });
}

IncidenceStructure cyclic_latin_square(int n) {
  return latin_square(numbered("cyclic Latin square n=", n), n,
                      [n](int row, int column) { return (row + column) % n; });
}

// Row by row: each is a matching of the columns and the symbols that they lack, found by augmenting paths
// that try symbols in random order.
IncidenceStructure random_latin_square(int n, std::mt19937& random) {
  const auto size = static_cast<std::size_t>(n);
  std::vector<std::vector<int>> symbols(size), is_used(size, std::vector<int>(size, 0));
  for (auto& row : symbols) {
    std::vector<int> column_of(size, -1);
    std::vector<char> is_seen;
    const auto place = [&](const auto& self, int column) -> bool {
      std::vector<int> order(size);
      std::iota(order.begin(), order.end(), 0);
      std::shuffle(order.begin(), order.end(), random);
      for (const int symbol : order) {
        const auto s = static_cast<std::size_t>(symbol);
        if (is_used[static_cast<std::size_t>(column)][s] != 0 || is_seen[s] != 0) continue;
        is_seen[s] = 1;
        if (column_of[s] >= 0 && !self(self, column_of[s])) continue;
        column_of[s] = column;
        return true;
      }
      return false;
    };
    for (int column = 0; column < n; ++column) {
      is_seen.assign(size, 0);
      place(place, column);
    }
    row.resize(size);
    for (std::size_t s = 0; s < size; ++s) {
      row[static_cast<std::size_t>(column_of[s])] = static_cast<int>(s);
      is_used[static_cast<std::size_t>(column_of[s])][s] = 1;
    }
  }
  return latin_square(numbered("random Latin square n=", n), n, [&](int row, int column) {
    return symbols[static_cast<std::size_t>(row)][static_cast<std::size_t>(column)];
  });
}

IncidenceStructure rook_graph(int n) {
  return graph_on(numbered("rook n=", n), n * n,
                  [n](int a, int b) { return a / n == b / n || a % n == b % n; });
}

IncidenceStructure johnson_graph(int n, int k) { return subset_graph("Johnson ", n, k, k - 1); }
IncidenceStructure kneser_graph(int n, int k) { return subset_graph("Kneser ", n, k, 0); }

IncidenceStructure paley_graph(int q) {
  return graph_on(numbered("Paley q=", q), q, [character = quadratic_characters(q)](int a, int b) {
    return character[static_cast<std::size_t>(b - a)] == 1;
  });
}

IncidenceStructure circulant(int n, const std::vector<int>& steps) {
  IncidenceStructure graph{"circulant n=" + std::to_string(n), n, {}};
  for (const int step : steps) {
    graph.name += "+" + std::to_string(step);
    for (int v = 0; v < n; ++v) graph.blocks.push_back({v, (v + step) % n});
  }
  return graph;
}

IncidenceStructure grid(const std::vector<int>& widths, bool is_torus) {
  IncidenceStructure graph{is_torus ? "torus" : "grid", 1, {}};
  for (const int width : widths) {
    graph.name += (graph.points == 1 ? " " : "x") + std::to_string(width);
    graph.points *= width;
  }
  int stride = 1;
  for (const int width : widths) {
    for (int v = 0; v < graph.points; ++v) {
      const bool is_last = v / stride % width == width - 1;
      if (!is_last) graph.blocks.push_back({v, v + stride});
      if (is_last && is_torus) graph.blocks.push_back({v, v - (width - 1) * stride});
    }
    stride *= width;
  }
  return graph;
}

// Half edges paired at random; a pair that makes a loop or a parallel edge is exchanged with a random other
// one.
IncidenceStructure random_regular(int n, int degree, std::mt19937& random) {
  std::vector<int> ends;
  for (int i = 0; i < n * degree; ++i) ends.push_back(i / degree);
  std::shuffle(ends.begin(), ends.end(), random);
  for (bool is_simple = false; !is_simple;) {
    is_simple = true;
    std::vector<std::pair<std::pair<int, int>, std::size_t>> places;
    for (std::size_t i = 0; i < ends.size(); i += 2) places.push_back({std::minmax(ends[i], ends[i + 1]), i});
    std::sort(places.begin(), places.end());
    for (std::size_t i = 0; i < places.size(); ++i) {
      const auto& [pair, place] = places[i];
      if (pair.first != pair.second && (i == 0 || pair != places[i - 1].first)) continue;
      std::swap(ends[place], ends[random() % ends.size()]);
      is_simple = false;
    }
  }
  IncidenceStructure graph{"random " + std::to_string(degree) + "-regular n=" + std::to_string(n), n, {}};
  for (std::size_t i = 0; i < ends.size(); i += 2) graph.blocks.push_back({ends[i], ends[i + 1]});
  return graph;
}

// Element r^i s^j of the dihedral group is number 2i+j; s r = r^-1 s.
IncidenceStructure dihedral_cayley_graph(int n, int generators, std::mt19937& random) {
  IncidenceStructure graph{"dihedral Cayley n=" + std::to_string(2 * n), 2 * n, {}};
  const auto product = [n](int a, int b) {
    const int i = a % 2 == 0 ? a / 2 + b / 2 : a / 2 - b / 2 + n;
    return 2 * (i % n) + (a + b) % 2;
  };
  for (int k = 0; k < generators; ++k) {
    const int generator = 1 + below(random, 2 * n - 1);
    for (int v = 0; v < 2 * n; ++v) graph.blocks.push_back({v, product(v, generator)});
  }
  make_edges_unique(graph);
  return graph;
}

IncidenceStructure symmetric_cayley_graph(int n, int generators, std::mt19937& random) {
  std::vector<std::vector<int>> elements(1, std::vector<int>(static_cast<std::size_t>(n)));
  std::iota(elements[0].begin(), elements[0].end(), 0);
  while (true) {
    std::vector<int> next = elements.back();
    if (!std::next_permutation(next.begin(), next.end())) break;
    elements.push_back(std::move(next));
  }
  IncidenceStructure graph{
      "symmetric Cayley n=" + std::to_string(n) + "!", static_cast<int>(elements.size()), {}};
  for (int k = 0; k < generators; ++k) {
    const std::vector<int>& generator = elements[1 + random() % (elements.size() - 1)];
    for (int v = 0; v < graph.points; ++v) {
      std::vector<int> product;
      for (const int image : generator)
        product.push_back(elements[static_cast<std::size_t>(v)][static_cast<std::size_t>(image)]);
      const auto found = std::lower_bound(elements.begin(), elements.end(), product);
      graph.blocks.push_back({v, static_cast<int>(found - elements.begin())});
    }
  }
  make_edges_unique(graph);
  return graph;
}

IncidenceStructure collinearity_graph(const IncidenceStructure& structure) {
  IncidenceStructure graph{structure.name + " collinearity", structure.points, {}};
  for (const Block& block : structure.blocks) {
    for (const int a : block) {
      for (const int b : block) {
        if (a < b) graph.blocks.push_back({a, b});
      }
    }
  }
  make_edges_unique(graph);
  return graph;
}

IncidenceStructure cfi_graph(const IncidenceStructure& base, bool is_twisted) {
  IncidenceStructure graph{(is_twisted ? "twisted CFI over " : "CFI over ") + base.name,
                           2 * static_cast<int>(base.blocks.size()),
                           {}};
  std::vector<std::vector<int>> edges_at(static_cast<std::size_t>(base.points));
  for (std::size_t e = 0; e < base.blocks.size(); ++e) {
    for (const int v : base.blocks[e]) edges_at[static_cast<std::size_t>(v)].push_back(static_cast<int>(e));
  }
  for (std::size_t v = 0; v < edges_at.size(); ++v) {
    for (unsigned choice = 0; choice < 1U << edges_at[v].size(); ++choice) {
      if ((__builtin_parity(choice) == 1) != (is_twisted && v == 0)) continue;
      Block& block = graph.blocks.emplace_back();
      for (std::size_t i = 0; i < edges_at[v].size(); ++i)
        block.push_back(2 * edges_at[v][i] + static_cast<int>(choice >> i & 1));
    }
  }
  return graph;
}

IncidenceStructure cfi_ring(int pairs) {
  IncidenceStructure base{numbered("ring of pairs n=", pairs), 2 * pairs, {}};
  for (int i = 0; i < pairs; ++i) {
    for (int parallel = 0; parallel < 2; ++parallel) base.blocks.push_back({2 * i, 2 * i + 1});
    base.blocks.push_back({2 * i + 1, (2 * i + 2) % (2 * pairs)});
  }
  return cfi_graph(base, false);
}

IncidenceStructure random_blocks(int points, int arity, int count, std::mt19937& random) {
  IncidenceStructure structure{
      "random blocks " + std::to_string(points) + "," + std::to_string(arity) + "," + std::to_string(count),
      points,
      {}};
  for (int i = 0; i < count; ++i) {
    Block& block = structure.blocks.emplace_back();
    while (static_cast<int>(block.size()) < arity) {
      const int point = below(random, points);
      if (std::find(block.begin(), block.end(), point) == block.end()) block.push_back(point);
    }
  }
  return structure;
}

IncidenceStructure copies(const IncidenceStructure& structure, int count) {
  IncidenceStructure all{std::to_string(count) + " x " + structure.name, count * structure.points, {}};
  for (int copy = 0; copy < count; ++copy) {
    for (Block block : structure.blocks) {
      for (int& point : block) point += copy * structure.points;
      all.blocks.push_back(std::move(block));
    }
  }
  return all;
}

NamedGraph bare_graph(const IncidenceStructure& structure) {
  GraphParts parts{structure.points, {}, {}};
  const bool is_graph = std::all_of(structure.blocks.begin(), structure.blocks.end(),
                                    [](auto& block) { return block.size() == 2; });
  for (const Block& block : structure.blocks) {
    if (is_graph) parts.edges.push_back({block[0], block[1]});
    if (is_graph) continue;
    for (const int point : block) parts.edges.push_back({point, parts.n});
    ++parts.n;
  }
  return {structure.name, std::move(parts), GraphKind::kBare};
}

NamedGraph composition_graph(const IncidenceStructure& structure) {
  Composition composition;
  composition.add_submodels(structure.points);
  for (const Block& block : structure.blocks) {
    const int join = composition.add_join();
    for (const int point : block) composition.bind(join, point);
  }
  return {"composed " + structure.name, std::move(composition).finish()};
}

}  // namespace symfold::detail
