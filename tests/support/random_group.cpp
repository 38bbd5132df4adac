#include "tests/support/random_group.h"

#include <algorithm>
#include <map>
#include <numeric>
#include <optional>

namespace symfold {
namespace {

using oracle::Images;

struct Action {
  std::string name;
  int degree;
  std::vector<Images> generators;
};

int below(std::mt19937& random, int bound) {
  return static_cast<int>(random() % static_cast<unsigned>(bound));
}

int image(const Images& images, int point) { return images[static_cast<std::size_t>(point)]; }

Images identity(int n) {
  Images images(static_cast<std::size_t>(n));
  std::iota(images.begin(), images.end(), 0);
  return images;
}

// First b, then a.
Images product(const Images& a, Images b) {
  for (int& point : b) point = image(a, point);
  return b;
}

Images inverse(const Images& images) {
  Images result(images.size());
  for (std::size_t i = 0; i < images.size(); ++i)
    result[static_cast<std::size_t>(images[i])] = static_cast<int>(i);
  return result;
}

// The images of 0 .. n-1 under a map.
template <class Map>
Images mapped(int n, Map map) {
  Images images = identity(n);
  for (int& point : images) point = map(point);
  return images;
}

Images rotation(int n) {
  return mapped(n, [n](int i) { return (i + 1) % n; });
}

// Exchanges 0 with 1, or carries 0 to 1 to 2.
Images first_cycle(int n, int length) {
  return mapped(n, [length](int i) { return i < length ? (i + 1) % length : i; });
}

Action random_generators(std::mt19937& random) {
  const int n = 3 + below(random, 6);
  Action action{"random" + std::to_string(n), n, {}};
  for (int count = 1 + below(random, 3); count > 0; --count) {
    // Of even cycles, so that the group is not nearly always the symmetric one; or of any.
    Images order = identity(n);
    std::shuffle(order.begin(), order.end(), random);
    Images generator = identity(n);
    const int length = random() % 3 == 0 ? n : 2 + below(random, 2);
    for (int first = 0; first + length <= n; first += length) {
      for (int i = 0; i < length; ++i)
        generator[static_cast<std::size_t>(image(order, first + i))] = image(order, first + (i + 1) % length);
    }
    action.generators.push_back(std::move(generator));
  }
  return action;
}

Action named_action(std::mt19937& random) {
  const int n = 2 + below(random, 7);
  const std::string size = std::to_string(n);
  const auto modulo = [](int p, int factor) { return mapped(p, [=](int i) { return i * factor % p; }); };
  switch (random() % 10) {
    case 0:
    case 1:
      return {"S" + size, n, {rotation(n), first_cycle(n, 2)}};
    case 2: {
      Action action{"A" + size, n, {}};
      for (int i = 2; i < n; ++i) {
        Images cycle = identity(n);
        cycle[0] = 1;
        cycle[1] = i;
        cycle[static_cast<std::size_t>(i)] = 0;
        action.generators.push_back(std::move(cycle));
      }
      return action;
    }
    case 3:
      return {"D" + size, n, {rotation(n), mapped(n, [n](int i) { return n - 1 - i; })}};
    case 4:
      return {"C" + size, n, {rotation(n)}};
    case 5: {
      const int p = std::vector{3, 5, 7, 11}[random() % 4];
      return {"AGL(1," + std::to_string(p) + ")", p, {rotation(p), modulo(p, p == 7 ? 3 : 2)}};
    }
    case 6: {
      const auto shear = [](int i) { return i ^ ((i & 1) << 1); };
      const auto turn = [](int i) { return ((i << 1) | (i >> 2)) & 7; };
      if (random() % 2 == 0)
        return {"AGL(3,2)", 8, {mapped(8, shear), mapped(8, turn), mapped(8, [](int i) { return i ^ 1; })}};
      const auto nonzero = [](auto map) { return mapped(7, [map](int i) { return map(i + 1) - 1; }); };
      return {"GL(3,2)", 7, {nonzero(shear), nonzero(turn)}};
    }
    case 7: {  // on the line over the integers modulo 5, whose point 5 is infinite
      const Images negative_inverse{5, 4, 2, 3, 1, 0};
      return {"PGL(2,5)", 6, {{1, 2, 3, 4, 0, 5}, {0, 2, 4, 1, 3, 5}, negative_inverse}};
    }
    case 8:
      return {"M11", 11, {rotation(11), {0, 1, 6, 9, 5, 3, 10, 2, 8, 4, 7}}};
    default:
      return random_generators(random);
  }
}

// A list of sets, tuples and so on of points, moved point by point.
using Object = std::vector<std::vector<int>>;

// What the group does to the orbit of a random subset, tuple, or pair of disjoint sets that may change
// places; nothing if the orbit is too long, or a point.
std::optional<Action> induced(const Action& action, int max_degree, std::mt19937& random) {
  Images points = identity(action.degree);
  std::shuffle(points.begin(), points.end(), random);
  const bool is_tuple = random() % 3 == 0;
  const bool has_two_sets = !is_tuple && random() % 3 == 0 && action.degree >= 4;
  const int size = 2 + below(random, std::min(3, action.degree / (has_two_sets ? 2 : 1)) - 1);
  Object start{{points.begin(), points.begin() + size}};
  if (has_two_sets) start.push_back({points.begin() + size, points.begin() + 2 * size});
  const auto normal = [&](Object object) {
    for (auto& set : object) {
      if (!is_tuple) std::sort(set.begin(), set.end());
    }
    std::sort(object.begin(), object.end());
    return object;
  };
  std::map<Object, int> number{{normal(start), 0}};
  std::vector<Object> orbit{normal(start)};
  std::vector<Images> generators(action.generators.size());
  for (std::size_t i = 0; i < orbit.size(); ++i) {
    for (std::size_t g = 0; g < generators.size(); ++g) {
      Object moved = orbit[i];
      for (auto& set : moved) {
        for (int& point : set) point = image(action.generators[g], point);
      }
      const auto [found, is_new] = number.try_emplace(normal(moved), static_cast<int>(orbit.size()));
      if (is_new) orbit.push_back(found->first);
      generators[g].push_back(found->second);
    }
    if (static_cast<int>(orbit.size()) > max_degree) return std::nullopt;
  }
  if (orbit.size() == 1) return std::nullopt;
  const std::string kind = is_tuple ? "-tuples" : has_two_sets ? "-sets, in twos" : "-sets";
  return Action{action.name + " on " + std::to_string(size) + kind, static_cast<int>(orbit.size()),
                generators};
}

// Side by side: each for itself, or so that the generators act on both sides at once.
Action joined(const Action& a, const Action& b, bool is_direct) {
  Action result{a.name + (is_direct ? " x " : " with ") + b.name, a.degree + b.degree, {}};
  const auto add = [&](Images left, const Images& right) {
    for (const int point : right) left.push_back(a.degree + point);
    result.generators.push_back(std::move(left));
  };
  const std::size_t count = std::max(a.generators.size(), b.generators.size());
  for (std::size_t i = 0; i < count && !is_direct; ++i) {
    add(i < a.generators.size() ? a.generators[i] : identity(a.degree),
        i < b.generators.size() ? b.generators[i] : identity(b.degree));
  }
  for (std::size_t i = 0; is_direct && i < a.generators.size(); ++i) add(a.generators[i], identity(b.degree));
  for (std::size_t i = 0; is_direct && i < b.generators.size(); ++i) add(identity(a.degree), b.generators[i]);
  return result;
}

// On the pairs of a point of each.
Action on_grid(const Action& a, const Action& b) {
  const int n = a.degree * b.degree;
  Action result{a.name + " times " + b.name, n, {}};
  for (const Images& g : a.generators)
    result.generators.push_back(
        mapped(n, [&](int i) { return i / a.degree * a.degree + image(g, i % a.degree); }));
  for (const Images& g : b.generators)
    result.generators.push_back(
        mapped(n, [&](int i) { return image(g, i / a.degree) * a.degree + i % a.degree; }));
  return result;
}

// Copies of a that b exchanges.
Action wreath(const Action& a, const Action& b) {
  Action result = on_grid(a, b);
  result.name = a.name + " wr " + b.name;
  for (std::size_t g = 0; g < a.generators.size(); ++g) {
    for (int i = a.degree; i < result.degree; ++i) result.generators[g][static_cast<std::size_t>(i)] = i;
  }
  for (int copy = 1; copy < b.degree; ++copy) {  // b may be intransitive
    for (const Images& generator : a.generators) {
      result.generators.push_back(mapped(result.degree, [&](int i) {
        return i / a.degree == copy ? copy * a.degree + image(generator, i % a.degree) : i;
      }));
    }
  }
  return result;
}

// On the words of `length` points: each place for itself, and the places are interchangeable.
Action on_words(const Action& a, int length) {
  int n = 1;
  for (int i = 0; i < length; ++i) n *= a.degree;
  Action result{a.name + " on words of " + std::to_string(length), n, {}};
  for (const Images& g : a.generators)
    result.generators.push_back(
        mapped(n, [&](int i) { return i / a.degree * a.degree + image(g, i % a.degree); }));
  result.generators.push_back(mapped(n, [&](int i) { return i % a.degree * (n / a.degree) + i / a.degree; }));
  if (length > 2) {
    result.generators.push_back(mapped(n, [&](int i) {
      const int last = i % a.degree;
      const int before = i / a.degree % a.degree;
      return i + (last - before) * (a.degree - 1);
    }));
  }
  return result;
}

Action random_action(int max_degree, std::mt19937& random) {
  for (;;) {
    const auto part = [&](int bound) { return random_action(bound, random); };
    Action action = named_action(random);
    const unsigned kind = max_degree < 4 ? 0U : static_cast<unsigned>(random() % 8);
    if (kind == 1 || kind == 2) {
      if (auto found = action.degree < 3 ? std::nullopt : induced(action, max_degree, random))
        action = *std::move(found);
    } else if (kind == 3 || kind == 4) {
      const Action first = part(max_degree - 2);
      action = joined(first, part(max_degree - first.degree), kind == 3);
    } else if (kind == 5 || kind == 6) {
      const Action first = part(max_degree / 2);
      const Action second = part(max_degree / first.degree);
      action = kind == 5 ? wreath(first, second) : on_grid(first, second);
    } else if (kind == 7 && max_degree >= 9 && random() % 2 == 0) {
      action = random() % 2 == 0 ? on_words(part(3), 2) : on_words(part(2), 3);
    }
    if (action.degree <= max_degree) return action;
  }
}

}  // namespace

RandomGroup random_group(std::mt19937& random) {
  Action action = random_action(5 + below(random, kMaxGroupPoints - 4), random);
  const int fixed = std::min(kMaxGroupPoints - action.degree, random() % 3 == 0 ? 1 + below(random, 2) : 0);
  const int n = action.degree + fixed;
  Images to = identity(n);
  std::shuffle(to.begin(), to.end(), random);
  RandomGroup group{action.name, {}, {}};
  for (Images generator : action.generators) {
    for (int i = action.degree; i < n; ++i) generator.push_back(i);
    group.generators.push_back(product(to, product(generator, inverse(to))));
  }
  std::map<int, int> size_of;
  for (const int orbit : oracle::orbit_of_points(n, group.generators)) {
    group.sizes.push_back(
        size_of.try_emplace(orbit, std::vector{0, 1, 2, 2, 2, 2, 8, 10}[random() % 8]).first->second);
  }
  return group;
}

std::vector<Images> other_generators(std::vector<Images> generators, std::mt19937& random) {
  if (generators.empty()) return generators;
  const std::size_t count = generators.size();
  for (int i = 0; i < 10 && count > 1; ++i) {
    const std::size_t a = random() % count;
    const std::size_t b = random() % count;
    if (a != b) generators[a] = product(generators[b], generators[a]);
  }
  for (Images& generator : generators) {
    if (random() % 2 == 0) generator = inverse(generator);
  }
  generators.push_back(product(generators[random() % count], generators[random() % count]));
  std::shuffle(generators.begin(), generators.end(), random);
  return generators;
}

Images random_element(const RandomGroup& group, std::mt19937& random) {
  Images element = identity(static_cast<int>(group.sizes.size()));
  for (int i = 0; i < 20 && !group.generators.empty(); ++i)
    element = product(group.generators[random() % group.generators.size()], element);
  return element;
}

}  // namespace symfold
