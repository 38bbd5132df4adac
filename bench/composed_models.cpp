#include "bench/composed_models.h"

#include <algorithm>
#include <functional>
#include <numeric>
#include <random>
#include <tuple>

#include "bench/composition_builder.h"

namespace symfold {
namespace {

using Joins = std::vector<int>;

std::string sized(const std::string& name, const std::vector<int>& sizes) {
  std::string text = name;
  for (const int size : sizes) text += (text == name ? " " : "x") + std::to_string(size);
  return text;
}

// Joins that each have a part of the type.
Joins add_objects(CompositionBuilder& composition, int count, int type) {
  Joins objects;
  for (int i = 0; i < count; ++i) {
    objects.push_back(composition.add_join());
    composition.add_part(type, {objects.back()});
  }
  return objects;
}

template <class T>
T& at(std::vector<T>& list, int i) {
  return list[static_cast<std::size_t>(i)];
}

// `visit` gets all lists of k different members, ascending if they are sets.
void for_each_tuple(const Joins& members, int k, bool is_set,
                    const std::function<void(const Joins&)>& visit) {
  Joins chosen;
  const std::function<void(std::size_t)> extend = [&](std::size_t first) {
    if (static_cast<int>(chosen.size()) == k) return visit(chosen);
    for (std::size_t i = is_set ? first : 0; i < members.size(); ++i) {
      if (std::find(chosen.begin(), chosen.end(), members[i]) != chosen.end()) continue;
      chosen.push_back(members[i]);
      extend(i + 1);
      chosen.pop_back();
    }
  };
  extend(0);
}

// Ties each member to the next one, the last one to the first.
void add_ring(CompositionBuilder& composition, const Joins& members, int type, bool has_direction) {
  for (std::size_t i = 0; i < members.size(); ++i) {
    const Joins ends{members[i], members[(i + 1) % members.size()]};
    if (has_direction) {
      composition.add_part(type, ends);
    } else {
      composition.add_set(type, ends);
    }
  }
}

// A part for each choice of a member from each list.
void add_product(CompositionBuilder& composition, const std::vector<Joins>& lists, int type) {
  Joins chosen;
  const std::function<void()> extend = [&] {
    if (chosen.size() == lists.size()) {
      composition.add_part(type, chosen);
      return;
    }
    for (const int member : lists[chosen.size()]) {
      chosen.push_back(member);
      extend();
      chosen.pop_back();
    }
  };
  extend();
}

NamedModel product(int n) {
  CompositionBuilder composition;
  std::vector<Joins> lists;
  for (int side = 0; side < 3; ++side) lists.push_back(add_objects(composition, n, side));
  add_product(composition, lists, 3);
  return {sized("product S_n^3", {n}), composition.finish()};
}

NamedModel tuples(int n, int k, bool is_set) {
  CompositionBuilder composition;
  const Joins objects = add_objects(composition, n, 0);
  for_each_tuple(objects, k, is_set, [&](const Joins& chosen) {
    if (is_set) {
      composition.add_set(1, chosen);
    } else {
      composition.add_part(1, chosen);
    }
  });
  return {sized(std::to_string(k) + (is_set ? "-subsets" : "-tuples"), {n}), composition.finish()};
}

NamedModel net(int n) {
  CompositionBuilder composition;
  const Joins objects = add_objects(composition, n, 0);
  for (const int object : objects) {
    composition.add_part(1, {object});
    composition.add_part(2, {object, composition.add_join()});
  }
  for (const int kind : {3, 4}) {
    for_each_tuple(objects, 2, false, [&](const Joins& pair) { composition.add_part(kind, pair); });
  }
  for_each_tuple(objects, 2, true, [&](const Joins& pair) { composition.add_set(5, pair); });
  return {sized("net", {n}), composition.finish()};
}

// Every team against every other one; with rounds, in the order of the circle method.
NamedModel round_robin(int n, bool has_rounds) {
  CompositionBuilder composition;
  Joins teams = add_objects(composition, n, 0);
  Joins rounds = has_rounds ? add_objects(composition, n - 1, 1) : Joins{};
  for (int i = 0; i < n; ++i) {
    for (int j = i + 1; j < n; ++j) {
      const int match = composition.add_set(2, {at(teams, i), at(teams, j)});
      const int round = j == n - 1 ? 2 * i % (n - 1) : (i + j) % (n - 1);
      if (has_rounds) composition.add_part(3, {match, at(rounds, round)});
    }
  }
  return {sized(has_rounds ? "roundrobin rounds" : "roundrobin", {n}), composition.finish()};
}

NamedModel chords(int n, int step) {
  CompositionBuilder composition;
  Joins objects = add_objects(composition, n, 0);
  add_ring(composition, objects, 1, false);
  for (int i = 0; i < (2 * step == n ? step : n); ++i)
    composition.add_set(2, {at(objects, i), at(objects, (i + step) % n)});
  return {sized("chords", {n, step}), composition.finish()};
}

using Square = std::vector<std::vector<int>>;

Square cyclic_square(int n) {
  Square square(static_cast<std::size_t>(n), std::vector<int>(static_cast<std::size_t>(n)));
  for (int i = 0; i < n; ++i) {
    for (int j = 0; j < n; ++j) at(at(square, i), j) = (i + j) % n;
  }
  return square;
}

// The first one that trying symbols in random order finds.
Square random_square(int n, unsigned seed) {
  std::mt19937 random(seed);
  Square square(static_cast<std::size_t>(n), std::vector<int>(static_cast<std::size_t>(n), -1));
  const std::function<bool(int)> fill = [&](int cell) {
    if (cell == n * n) return true;
    const int i = cell / n;
    const int j = cell % n;
    std::vector<int> symbols(static_cast<std::size_t>(n));
    std::iota(symbols.begin(), symbols.end(), 0);
    std::shuffle(symbols.begin(), symbols.end(), random);
    for (const int symbol : symbols) {
      bool is_free = true;
      for (int k = 0; k < n; ++k) {
        is_free = is_free && (k >= j || at(at(square, i), k) != symbol) &&
                  (k >= i || at(at(square, k), j) != symbol);
      }
      if (!is_free) continue;
      at(at(square, i), j) = symbol;
      if (fill(cell + 1)) return true;
    }
    at(at(square, i), j) = -1;
    return false;
  };
  fill(0);
  return square;
}

NamedModel latin(const std::string& name, Square square, int copies) {
  CompositionBuilder composition;
  const int n = static_cast<int>(square.size());
  for (int copy = 0; copy < copies; ++copy) {
    std::vector<Joins> lists;
    for (int side = 0; side < 3; ++side) lists.push_back(add_objects(composition, n, side));
    for (int i = 0; i < n; ++i) {
      for (int j = 0; j < n; ++j)
        composition.add_part(3, {at(lists[0], i), at(lists[1], j), at(lists[2], at(at(square, i), j))});
    }
  }
  return {sized(name, {n, copies}), composition.finish()};
}

NamedModel ring_product(const std::vector<int>& lengths, bool has_direction) {
  CompositionBuilder composition;
  std::vector<Joins> lists;
  int type = 0;
  for (const int length : lengths) {
    lists.push_back(add_objects(composition, length, type++));
    add_ring(composition, lists.back(), type++, has_direction);
  }
  add_product(composition, lists, type);
  return {sized(has_direction ? "cyclic rings" : "rings", lengths), composition.finish()};
}

// The cells of a box whose coordinates and their values are alike: S_q wr S_d in its product action.
NamedModel hamming(int d, int q) {
  CompositionBuilder composition;
  int count = 1;
  for (int i = 0; i < d; ++i) count *= q;
  Joins cells = add_objects(composition, count, 0);
  for (int step = 1; step < count; step *= q) {
    for (int i = 0; i < count; ++i) {
      if (i / step % q != 0) continue;
      const int line = composition.add_join();
      for (int k = 0; k < q; ++k) composition.add_part(1, {line, at(cells, i + k * step)}, false);
    }
  }
  return {sized("hamming", {d, q}), composition.finish()};
}

// The points and lines of the projective plane over the integers modulo the prime q.
NamedModel plane(int q) {
  std::vector<std::vector<int>> points;
  for (int x = 0; x < q * q * q; ++x) {
    const std::vector<int> point{x / q / q, x / q % q, x % q};
    const auto first = std::find_if(point.begin(), point.end(), [](int c) { return c != 0; });
    if (first != point.end() && *first == 1) points.push_back(point);
  }
  CompositionBuilder composition;
  const int count = static_cast<int>(points.size());
  Joins on = add_objects(composition, count, 0);
  Joins lines = add_objects(composition, count, 1);
  for (int i = 0; i < count; ++i) {
    for (int j = 0; j < count; ++j) {
      const auto& [p, l] = std::tie(at(points, i), at(points, j));
      if ((p[0] * l[0] + p[1] * l[1] + p[2] * l[2]) % q == 0)
        composition.add_part(2, {at(on, i), at(lines, j)}, false);
    }
  }
  return {sized("plane", {q}), composition.finish()};
}

// Two of the numbers modulo the prime q are tied if they differ by a square; q leaves 1 modulo 4.
NamedModel paley(int q) {
  CompositionBuilder composition;
  Joins objects = add_objects(composition, q, 0);
  for (int i = 0; i < q; ++i) {
    for (int j = i + 1; j < q; ++j) {
      bool is_square = false;
      for (int k = 1; k < q; ++k) is_square = is_square || k * k % q == j - i;
      if (is_square) composition.add_set(1, {at(objects, i), at(objects, j)});
    }
  }
  return {sized("paley", {q}), composition.finish()};
}

// Processors on a bus, with a flag each and a memory for every ordered pair of them.
NamedModel shared_memory(int n) {
  CompositionBuilder composition;
  const int bus = composition.add_join();
  const Joins flags = add_objects(composition, n, 0);
  Joins processors;
  for (const int flag : flags) {
    processors.push_back(composition.add_join());
    composition.add_part(1, {flag, processors.back(), bus});
  }
  for_each_tuple(processors, 2, false, [&](const Joins& pair) {
    const int access = composition.add_join();
    composition.add_part(2, {pair[0], pair[1], access});
    composition.add_part(3, {access, bus});
  });
  return {sized("shared memory", {n}), composition.finish()};
}

// Managers that exclude each other, and four kinds of messages for every ordered pair of them.
NamedModel database(int n) {
  CompositionBuilder composition;
  const int mutex = composition.add_join();
  const Joins managers = add_objects(composition, n, 0);
  for (const int manager : managers) {
    for (const int kind : {1, 2, 3}) composition.add_part(kind, {manager, mutex});
  }
  for_each_tuple(managers, 2, false, [&](const Joins& pair) {
    for (const int kind : {4, 5, 6, 7}) composition.add_part(kind, pair);
  });
  return {sized("database", {n}), composition.finish()};
}

// Blocks in blocks. A block is made from a seed, so that a copy of it is made from the same seed.
class RandomBlocks {
 public:
  explicit RandomBlocks(CompositionBuilder& composition) : composition_(composition) {}

  // Makes a block and returns the join by which others may tie themselves to it.
  int add(unsigned seed, int depth) {
    std::mt19937 random(seed);
    if (composition_.cell_count() > kMaxCells) return composition_.add_join();
    const auto kind = static_cast<unsigned>(depth == 0 ? 0 : random() % 9);
    const int type = static_cast<int>(random() % 4);
    const unsigned inner = static_cast<unsigned>(random());
    const int count = static_cast<int>(2 + random() % (depth > 1 ? 5 : 9));
    const int port = composition_.add_join();
    if (kind == 0) {
      for (unsigned i = 0; i < 1 + random() % 2; ++i) composition_.add_part(type, {port}, random() % 4 != 0);
      return port;
    }
    Joins copies = add_copies(inner, depth - 1, count);
    if (kind != 8) tie_all(copies, port, random() % 2 == 0);
    switch (kind) {
      case 1:  // a star
        break;
      case 2:
      case 3:
        add_ring(composition_, copies, kRing + type, kind == 2);
        break;
      case 4:  // pairs with a direction, and perhaps ones without
        for_each_tuple(copies, 2, false,
                       [&](const Joins& pair) { composition_.add_part(kTuple + type, pair); });
        if (random() % 2 == 0) break;
        [[fallthrough]];
      case 5:
        for_each_tuple(copies, 2, true, [&](const Joins& pair) { composition_.add_set(kSet + type, pair); });
        break;
      case 6:
        if (copies.size() > 6) copies.resize(6);
        for_each_tuple(copies, 3, random() % 2 == 0,
                       [&](const Joins& triple) { composition_.add_part(kTuple + type, triple); });
        break;
      case 7: {  // a product with other copies, perhaps in rings
        const Joins others =
            add_copies(static_cast<unsigned>(random()), depth - 1, 2 + static_cast<int>(random() % 4));
        if (random() % 3 == 0) add_ring(composition_, copies, kRing, random() % 2 == 0);
        if (random() % 3 == 0) add_ring(composition_, others, kRing + 1, random() % 2 == 0);
        tie_all(others, port, true);
        add_product(composition_, {copies, others}, kProduct + type);
        break;
      }
      default: {  // a union of two kinds
        tie_all(copies, port, true);
        tie_all(add_copies(static_cast<unsigned>(random()), depth - 1, 1 + static_cast<int>(random() % 4)),
                port, true);
        break;
      }
    }
    if (random() % 8 == 0) composition_.add_part(kMark, {at(copies, 0)});
    return port;
  }

 private:
  static constexpr std::size_t kMaxCells = 400;
  enum : int { kTie = 10, kRing = 20, kTuple = 30, kSet = 40, kProduct = 50, kMark = 60 };

  Joins add_copies(unsigned seed, int depth, int count) {
    Joins copies;
    for (int i = 0; i < count; ++i) copies.push_back(add(seed, depth));
    return copies;
  }

  void tie_all(const Joins& copies, int port, bool is_cell) {
    for (const int copy : copies) composition_.add_part(kTie, {port, copy}, is_cell);
  }

  CompositionBuilder& composition_;
};

}  // namespace

std::vector<NamedModel> composition_families() {
  std::vector<NamedModel> models;
  const auto add = [&](NamedModel model) { models.push_back(std::move(model)); };
  for (const int n : {3, 4, 5, 6, 7, 8}) add(product(n));
  for (const int n : {6, 8, 10}) add(tuples(n, 3, false));
  for (const int n : {6, 8, 10}) add(tuples(n, 3, true));
  for (const int n : {6, 9, 15}) add(tuples(n, 2, true));
  for (const int n : {5, 6, 7, 8}) add(net(n));
  for (const int n : {6, 10}) add(round_robin(n, false));
  for (const int n : {6, 8, 10}) add(round_robin(n, true));
  for (const auto& [n, step] : {std::pair(12, 6), {20, 5}, {36, 7}, {60, 11}}) add(chords(n, step));
  for (const int n : {4, 5, 7, 9}) add(latin("latin cyclic", cyclic_square(n), 1));
  for (const int n : {4, 5, 6, 7}) add(latin("latin random", random_square(n, 3), 2));
  add(latin("latin cyclic", cyclic_square(5), 3));
  for (const bool has_direction : {true, false}) {
    for (const std::vector<int>& lengths : {std::vector{5, 7}, {8, 8}, {10, 12}, {4, 5, 6}, {7, 7, 7}})
      add(ring_product(lengths, has_direction));
  }
  for (const auto& [d, q] : {std::pair(2, 4), {2, 8}, {3, 3}, {3, 4}, {4, 3}, {5, 2}, {7, 2}})
    add(hamming(d, q));
  for (const int q : {2, 3, 5}) add(plane(q));
  for (const int q : {13, 29}) add(paley(q));
  for (const int n : {5, 6, 8}) add(shared_memory(n));
  for (const int n : {4, 6, 8}) add(database(n));
  return models;
}

NamedModel random_composition(unsigned seed) {
  for (std::mt19937 random(seed);;) {
    CompositionBuilder composition;
    RandomBlocks blocks(composition);
    const int outer = blocks.add(static_cast<unsigned>(random()), 1 + static_cast<int>(random() % 3));
    if (random() % 3 == 0) composition.add_part(0, {outer, blocks.add(static_cast<unsigned>(random()), 2)});
    if (composition.cell_count() >= 10 && composition.cell_count() <= 400)
      return {"unseen " + std::to_string(seed), composition.finish()};
  }
}

}  // namespace symfold
