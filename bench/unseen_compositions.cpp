#include "bench/unseen_compositions.h"

#include <algorithm>
#include <cmath>
#include <random>
#include <string>
#include <utility>

#include "bench/incidence_structures.h"

namespace symfold::detail {
namespace {

constexpr int kTypesPerPiece = 4;

// A prime of each residue modulo 4 is near every size; planes and Paley graphs need one.
int prime_near(double x, int residue, int modulus) {
  for (int q = std::max(3, static_cast<int>(x));; ++q) {
    bool is_prime = q % modulus == residue;
    for (int d = 2; d * d <= q && is_prime; ++d) is_prime = q % d != 0;
    if (is_prime) return q;
  }
}

class Generator {
 public:
  explicit Generator(std::seed_seq& seed) : random_(seed) {}

  NamedGraph make(std::string name) {
    name_ = std::move(name);
    const double size = 100 * std::pow(150.0, between(0, 1000) / 1000.0);
    const int pieces = between(1, 3);
    for (int i = 0; i < pieces; ++i) {
      next_type_ = i * kTypesPerPiece;
      name_ += i == 0 ? ": " : " + ";
      add_piece(size / pieces);
    }
    return {name_, std::move(composition_).finish()};
  }

 private:
  int between(int low, int high) {
    return low + static_cast<int>(random_() % static_cast<unsigned>(high - low + 1));
  }
  bool is_chosen(int of) { return between(1, of) == 1; }

  // Replicated or not; the copies stand alone, or each has a member in a common join, behind a hub or in a
  // ring.
  void add_piece(double size) {
    const int copies = is_chosen(2) ? 1 : between(2, std::clamp(static_cast<int>(size / 30), 2, 30));
    const double copy_size = size / copies;
    const std::mt19937 begin = random_;
    std::vector<int> members;
    const std::size_t name_length = name_.size();
    for (int copy = 0; copy < copies; ++copy) {
      random_ = begin;  // copies are equal
      name_.resize(name_length);
      if (copies > 1) name_ += std::to_string(copies) + " x ";
      members.push_back(add_copy(copy_size));
    }
    if (copies > 1) connect(members);
  }

  void connect(const std::vector<int>& members) {
    const int way = between(0, 3);
    const int hub = way == 1 ? composition_.add_submodel(next_type_ + kTypesPerPiece - 1) : 0;
    const int bus = way == 2 ? composition_.add_join() : 0;
    for (std::size_t i = 0; i < members.size(); ++i) {
      if (way == 1) composition_.link(hub, members[i], 7, 7);
      if (way == 2) composition_.bind(bus, members[i], 7);
      if (way == 3) composition_.link(members[i], members[(i + 1) % members.size()], 7, 8);
    }
    constexpr const char* kWays[] = {"", " behind a hub", " on a bus", " in a ring"};
    name_ += kWays[way];
  }

  // Returns the submodel by which the copy is connected.
  int add_copy(double size) {
    switch (between(0, 4)) {
      case 0:
        return add_structure(hard_structure(size));
      case 1:
        return add_structure(random_structure(size));
      case 2:
        return add_structure(common_structure(size));
      case 3:
        return add_nest(size);
      default:
        return add_join_tree(size);
    }
  }

  // A structure's incidence graph with a variable for each incidence has about `size` vertices.
  IncidenceStructure hard_structure(double size) {
    const double x = std::max(size, 60.0);
    switch (between(0, 8)) {
      case 0:
        return projective_plane(prime_near(std::cbrt(x) - 2, 1, 2));
      case 1:
        return affine_plane(prime_near(std::cbrt(x) - 2, 1, 2));
      case 2:
        return cyclic_latin_square(std::max(3, static_cast<int>(std::sqrt(x / 4))));
      case 3:
        return random_latin_square(std::max(3, static_cast<int>(std::sqrt(x / 4))), random_);
      case 4:
        return paley_hadamard(prime_near(std::sqrt(x / 3), 3, 4));
      case 5:
        return paley_graph(prime_near(std::sqrt(x * 2 / 3), 1, 4));
      case 6:
        return random_triples(6 * std::max(2, static_cast<int>(std::sqrt(x * 3 / 2) / 6)) + 1, random_);
      case 7:
        return bose_triples(std::max(1, static_cast<int>(std::sqrt(x * 3 / 2) / 6)));
      default:
        return cfi_graph(random_regular(2 * static_cast<int>(x / 38 + 2), 3, random_), is_chosen(2));
    }
  }

  IncidenceStructure random_structure(double size) {
    const int arity = between(2, 5);
    const int degree = between(3, 5);
    switch (between(0, 3)) {
      case 0: {
        const int points = static_cast<int>(size / 3) + arity;
        return random_blocks(points, arity, 2 * points / arity, random_);
      }
      case 1: {
        const int points = static_cast<int>(size / (1 + arity)) + 2 * arity;
        return random_blocks(points, arity, points, random_);
      }
      case 2:
        return random_regular(2 * static_cast<int>(size / (2 + 3 * degree)) + 2 * degree, degree, random_);
      default:
        return dihedral_cayley_graph(static_cast<int>(size / 16) + 5, 2, random_);
    }
  }

  IncidenceStructure common_structure(double size) {
    const int width = std::max(3, static_cast<int>(std::sqrt(size / 7)));
    const int depth = std::max(3, static_cast<int>(std::cbrt(size / 10)));
    const int cycle = static_cast<int>(size / 7) + 10;
    switch (between(0, 6)) {
      case 0:
        return circulant(static_cast<int>(size / 4) + 3, {1});
      case 1:
        return circulant(cycle, {1, between(2, 4)});
      case 2:
        return grid({width, width + between(0, 2)}, is_chosen(2));
      case 3:
        return grid({depth, depth, depth + between(0, 1)}, is_chosen(2));
      case 4:
        return circulant(5, {1, 2});
      case 5:
        return rook_graph(std::max(3, static_cast<int>(std::cbrt(size / 3))));
      default:
        return johnson_graph(std::clamp(static_cast<int>(std::cbrt(size / 1.5)), 4, 20), 2);
    }
  }

  // Points may have several types, variables may tell the places of a block apart, and each incidence may
  // pass through a row of joins.
  int add_structure(const IncidenceStructure& structure) {
    const int types = is_chosen(4) ? between(2, 3) : 1;
    const bool has_places = is_chosen(4);
    const int extra_links = is_chosen(5) ? between(1, 2) : 0;
    name_ += structure.name;
    if (types > 1) name_ += ", " + std::to_string(types) + " types";
    if (has_places) name_ += ", places";
    if (extra_links > 0) name_ += ", subdivided";
    const int first = composition_.vertex_count();
    for (int point = 0; point < structure.points; ++point)
      composition_.add_submodel(next_type_ + static_cast<int>(random_() % static_cast<unsigned>(types)));
    for (const std::vector<int>& block : structure.blocks) {
      const int join = composition_.add_join();
      for (std::size_t place = 0; place < block.size(); ++place) {
        int end = first + block[place];
        for (int i = 0; i < extra_links; ++i) {
          const int between_them = composition_.add_submodel(next_type_ + 3);
          composition_.link(end, between_them, 2, 0);
          end = between_them;
        }
        composition_.bind(join, end, has_places ? static_cast<int>(place % 2) : 1);
      }
    }
    return first;
  }

  // Groups of groups: a leader and a join for each.
  int add_nest(double size) {
    const int depth = between(1, 4);
    const int width = std::max(2, static_cast<int>(std::pow(size / 3, 1.0 / depth)));
    name_ += "nest " + std::to_string(width) + "^" + std::to_string(depth);
    return add_nest_level(depth, width);
  }

  int add_nest_level(int depth, int width) {
    const int leader = composition_.add_submodel(next_type_ + (depth == 0 ? 1 : 0));
    if (depth == 0) return leader;
    const int join = composition_.add_join();
    composition_.bind(join, leader);
    for (int i = 0; i < width; ++i) composition_.bind(join, add_nest_level(depth - 1, width), 1);
    return leader;
  }

  // Every join has an earlier submodel and some new ones.
  int add_join_tree(double size) {
    name_ += "tree of joins " + std::to_string(static_cast<int>(size));
    const int first = composition_.add_submodel(next_type_);
    std::vector<int> submodels{first};
    while (composition_.vertex_count() - first < static_cast<int>(size)) {
      const int join = composition_.add_join();
      composition_.bind(join, submodels[random_() % submodels.size()]);
      for (int arity = between(1, 3); arity > 0; --arity) {
        submodels.push_back(composition_.add_submodel(next_type_));
        composition_.bind(join, submodels.back(), 1);
      }
    }
    return first;
  }

  std::mt19937 random_;
  Composition composition_;
  std::string name_;
  int next_type_ = 0;
};

}  // namespace

std::vector<NamedGraph> unseen_compositions(unsigned seed, int count) {
  std::vector<NamedGraph> graphs;
  for (int i = 0; i < count; ++i) {
    std::seed_seq sequence{seed, static_cast<unsigned>(i)};
    graphs.push_back(Generator(sequence).make("unseen " + std::to_string(seed) + "." + std::to_string(i)));
  }
  return graphs;
}

}  // namespace symfold::detail
