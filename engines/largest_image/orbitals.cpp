#include "engines/largest_image/orbitals.h"

#include <algorithm>
#include <map>
#include <optional>
#include <utility>

#include "engines/base/images.h"

namespace symfold::detail {
namespace {

using Points = std::vector<std::uint32_t>;

// From each point so many arcs, and those of the first orbital in any case if they are at most
// kMaxFirstArcs. More arcs tell more, but each costs an addition a round.
constexpr std::size_t kMaxArcs = 8;
constexpr std::size_t kMaxFirstArcs = 128;

class OrbitalFinder {
 public:
  explicit OrbitalFinder(const StabiliserTrees& trees)
      : trees_(trees),
        tree_(static_cast<int>(trees.degree())),
        orbit_length_(trees.degree()),
        leader_(identity_images<Points>(trees.degree())) {
    for (const SparsePermutation& moves : trees.generators()) {
      Images& images = generators_.emplace_back(identity_images<Images>(trees.degree()));
      for (const auto& [point, image] : moves)
        images[static_cast<std::size_t>(point)] = static_cast<std::uint32_t>(image);
    }
  }

  Points leaders() {
    std::vector<bool> is_known(trees_.degree(), false);
    for (std::uint32_t x = 0; x < trees_.degree(); ++x) {
      if (is_known[x]) continue;
      roots_.push_back(x);
      trees_.grow_tree(x, tree_);
      for (const int point : tree_.points()) {
        is_known[static_cast<std::size_t>(point)] = true;
        orbit_length_[static_cast<std::size_t>(point)] = static_cast<std::size_t>(tree_.size());
      }
    }
    for (const std::uint32_t root : roots_) {
      if (leader_[root] == root) add_followers(root);
    }
    return leader_;
  }

  Orbitals orbitals() {
    leaders();
    for (const std::uint32_t root : roots_) {
      if (leader_[root] == root && orbit_length_[root] > 1) add_orbitals(root);
    }
    return lists();
  }

 private:
  using EndsByPoint = std::vector<Points>;  // ascending

  // A point of another orbit that the root's stabiliser fixes, in an orbit of the same length, has the same
  // stabiliser. Wrong guesses are repeated with more random elements.
  void add_followers(std::uint32_t root) {
    trees_.grow_tree(root, tree_);
    for (int elements = 32;; elements *= 2) {
      const std::map<std::uint32_t, Points> parts = suborbits(root, elements);
      bool is_proved = true;
      for (const auto& [first, points] : parts) {
        if (points.size() > 1 || leader_[first] != first || orbit_length_[first] != orbit_length_[root] ||
            tree_.contains(static_cast<int>(first))) {
          continue;
        }
        const EndsByPoint relation = relation_of(root, points);
        is_proved = is_proved && is_invariant(relation);
        if (!is_proved) break;
        for (std::uint32_t x = 0; x < relation.size(); ++x) {
          for (const std::uint32_t end : relation[x]) leader_[end] = x;
        }
      }
      if (is_proved) return;
    }
  }

  void add_orbitals(std::uint32_t root) {
    trees_.grow_tree(root, tree_);
    for (int elements = 32;; elements *= 2) {
      std::vector<EndsByPoint> found;
      const std::vector<Points> chosen = sparse_suborbits(root, elements);
      for (const Points& suborbit : chosen) {
        EndsByPoint relation = relation_of(root, suborbit);
        if (is_invariant(relation)) found.push_back(std::move(relation));
      }
      if (found.size() < chosen.size()) continue;
      for (EndsByPoint& relation : found) add(std::move(relation));
      return;
    }
  }

  // Returns the orbits of the root's stabiliser on the leaders of other points.
  std::map<std::uint32_t, Points> suborbits(std::uint32_t root, int elements) const {
    const Points first_of = guess_stabiliser_orbits(trees_, root, elements);
    std::map<std::uint32_t, Points> parts;
    for (std::uint32_t x = 0; x < first_of.size(); ++x) {
      if (x != root && leader_[x] == x) parts[first_of[x]].push_back(x);
    }
    return parts;
  }

  // Returns the suborbits of the tree's root whose orbitals are sparse, the shortest first. One that holds
  // all other points of an orbit says nothing that is not known.
  std::vector<Points> sparse_suborbits(std::uint32_t root, int elements) const {
    std::vector<Points> chosen;
    for (auto& [first, points] : suborbits(root, elements)) {
      const std::size_t others = orbit_length_[first] - (tree_.contains(static_cast<int>(first)) ? 1 : 0);
      if (points.size() < others) chosen.push_back(points);
    }
    std::ranges::stable_sort(chosen, {}, &Points::size);
    std::size_t arcs = 0;
    std::size_t count = 0;
    for (; count < chosen.size(); ++count) {
      arcs += chosen[count].size();
      if (arcs > (count == 0 ? kMaxFirstArcs : kMaxArcs)) break;
    }
    chosen.resize(count);
    return chosen;
  }

  EndsByPoint relation_of(std::uint32_t root, const Points& suborbit) const {
    EndsByPoint relation(trees_.degree());
    relation[root] = suborbit;
    for (const int point : tree_.points()) {
      if (tree_.depth(point) == 0) continue;
      const Images& generator = generators_[static_cast<std::size_t>(tree_.generator(point))];
      Points& ends = relation[static_cast<std::size_t>(point)];
      ends = relation[static_cast<std::size_t>(tree_.parent(point))];
      for (std::uint32_t& end : ends) end = generator[end];
      std::ranges::sort(ends);
    }
    return relation;
  }

  // If the suborbit was guessed too small, some generator carries an arc to none. So a relation that passes
  // is an orbital.
  bool is_invariant(const EndsByPoint& relation) const {
    Points image;
    for (const Images& generator : generators_) {
      for (std::size_t x = 0; x < relation.size(); ++x) {
        image.clear();
        for (const std::uint32_t end : relation[x]) image.push_back(generator[end]);
        std::ranges::sort(image);
        if (image != relation[generator[x]]) return false;
      }
    }
    return true;
  }

  // Adds a relation and its inverse, unless they are known.
  void add(EndsByPoint relation) {
    if (std::ranges::find(relations_, relation) != relations_.end()) return;
    EndsByPoint inverse(relation.size());
    for (std::uint32_t x = 0; x < relation.size(); ++x) {
      for (const std::uint32_t end : relation[x]) inverse[end].push_back(x);
    }
    const bool is_symmetric = inverse == relation;
    relations_.push_back(std::move(relation));
    if (!is_symmetric) relations_.push_back(std::move(inverse));
  }

  Orbitals lists() const {
    Orbitals orbitals;
    Points number(trees_.degree());
    for (std::uint32_t x = 0; x < trees_.degree(); ++x) {
      number[x] = static_cast<std::uint32_t>(orbitals.leaders.size());
      if (leader_[x] == x) orbitals.leaders.push_back(x);
    }
    for (const std::uint32_t leader : leader_) orbitals.leader_of.push_back(number[leader]);
    for (const std::uint32_t x : orbitals.leaders) {
      orbitals.begins.push_back(static_cast<std::uint32_t>(orbitals.fans.size()));
      for (std::uint32_t r = 0; r < relations_.size(); ++r) {
        if (relations_[r][x].empty()) continue;
        const auto begin = static_cast<std::uint32_t>(orbitals.ends.size());
        for (const std::uint32_t end : relations_[r][x]) orbitals.ends.push_back(number[end]);
        orbitals.fans.push_back({r, begin, static_cast<std::uint32_t>(orbitals.ends.size())});
      }
    }
    orbitals.begins.push_back(static_cast<std::uint32_t>(orbitals.fans.size()));
    return orbitals;
  }

  const StabiliserTrees& trees_;
  OrbitTree tree_;  // of the latest root
  Points roots_;    // the smallest points of the orbits
  std::vector<Images> generators_;
  std::vector<std::size_t> orbit_length_;  // by point
  Points leader_;                          // by point
  std::vector<EndsByPoint> relations_;
};

}  // namespace

std::vector<std::uint32_t> leaders_of(const StabiliserTrees& trees) { return OrbitalFinder(trees).leaders(); }

Orbitals sparse_orbitals(const StabiliserTrees& trees) { return OrbitalFinder(trees).orbitals(); }

}  // namespace symfold::detail
