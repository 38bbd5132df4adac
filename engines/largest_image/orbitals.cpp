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
      : trees_(trees), tree_(static_cast<int>(trees.degree())) {
    for (const SparsePermutation& moves : trees.generators()) {
      Images& images = generators_.emplace_back(identity_images<Images>(trees.degree()));
      for (const auto& [point, image] : moves)
        images[static_cast<std::size_t>(point)] = static_cast<std::uint32_t>(image);
    }
  }

  std::vector<Relation> run() {
    std::vector<bool> is_known(trees_.degree(), false);
    for (std::uint32_t x = 0; x < trees_.degree(); ++x) {
      if (is_known[x]) continue;
      trees_.grow_tree(x, tree_);
      for (const int point : tree_.points()) is_known[static_cast<std::size_t>(point)] = true;
      if (tree_.size() > 1) add_orbitals(x);
    }
    return lists();
  }

 private:
  using EndsByPoint = std::vector<Points>;  // ascending

  // Guesses with more random elements until the orbitals are proved.
  void add_orbitals(std::uint32_t root) {
    for (int elements = 32;; elements *= 2) {
      std::vector<EndsByPoint> found;
      const std::vector<Points> suborbits = sparse_suborbits(root, elements);
      for (const Points& suborbit : suborbits) {
        EndsByPoint relation = relation_of(root, suborbit);
        if (is_invariant(relation)) found.push_back(std::move(relation));
      }
      if (found.size() < suborbits.size()) continue;
      for (EndsByPoint& relation : found) add(std::move(relation));
      return;
    }
  }

  // Returns the suborbits of the tree's root whose orbitals are sparse, the shortest first. One that holds
  // all other points of an orbit says nothing that is not known.
  std::vector<Points> sparse_suborbits(std::uint32_t root, int elements) const {
    const Points first_of = guess_stabiliser_orbits(trees_, root, elements);
    std::map<std::uint32_t, Points> parts;
    for (std::uint32_t x = 0; x < first_of.size(); ++x) {
      if (x != root) parts[first_of[x]].push_back(x);
    }
    std::vector<Points> suborbits;
    for (auto& [first, points] : parts) {
      if (!holds_all_others(points, root)) suborbits.push_back(std::move(points));
    }
    std::ranges::stable_sort(suborbits, {}, &Points::size);
    std::size_t arcs = 0;
    std::size_t count = 0;
    for (; count < suborbits.size(); ++count) {
      arcs += suborbits[count].size();
      if (arcs > (count == 0 ? kMaxFirstArcs : kMaxArcs)) break;
    }
    suborbits.resize(count);
    return suborbits;
  }

  bool holds_all_others(const Points& points, std::uint32_t root) const {
    OrbitTree orbit(static_cast<int>(trees_.degree()));
    trees_.grow_tree(points[0], orbit);
    const std::size_t others =
        static_cast<std::size_t>(orbit.size()) - (orbit.contains(static_cast<int>(root)) ? 1 : 0);
    return points.size() == others;
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

  std::vector<Relation> lists() const {
    std::vector<Relation> lists;
    for (const EndsByPoint& relation : relations_) {
      Relation& list = lists.emplace_back();
      for (std::uint32_t x = 0; x < relation.size(); ++x) {
        if (relation[x].empty()) continue;
        list.arity = relation[x].size();
        list.points.push_back(x);
        list.ends.insert(list.ends.end(), relation[x].begin(), relation[x].end());
      }
    }
    return lists;
  }

  const StabiliserTrees& trees_;
  OrbitTree tree_;  // of the latest orbit's smallest point
  std::vector<Images> generators_;
  std::vector<EndsByPoint> relations_;
};

}  // namespace

std::vector<Relation> sparse_orbitals(const StabiliserTrees& trees) { return OrbitalFinder(trees).run(); }

}  // namespace symfold::detail
