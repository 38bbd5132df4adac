#include <algorithm>
#include <numeric>
#include <utility>

#include "engines/largest_image/orbitals.h"
#include "engines/largest_image/stabiliser_trees.h"
#include "engines/largest_image/tuft_search.h"

namespace symfold::detail {
namespace {

using Points = std::vector<std::uint32_t>;

// A block is a leader with its followers, in the order of their orbits.
class TuftRecognition {
 public:
  TuftRecognition(const PermutationGroup& group, const std::vector<bool>& has_value)
      : group_(group),
        has_value_(has_value),
        trees_(group),
        tree_(group.degree()),
        tuft_of_(trees_.degree(), StabiliserTrees::kNone),
        blocks_(trees_.degree()) {
    const Points leader_of = leaders_of(trees_);
    Points root_of(trees_.degree(), StabiliserTrees::kNone);
    for (std::uint32_t x = 0; x < trees_.degree(); ++x) {
      if (root_of[x] != StabiliserTrees::kNone) continue;
      trees_.grow_tree(x, tree_);
      for (const int point : tree_.points()) root_of[static_cast<std::size_t>(point)] = x;
      for (const int point : tree_.points()) {
        const auto p = static_cast<std::size_t>(point);
        blocks_[leader_of[p]].push_back(static_cast<std::uint32_t>(point));
      }
      if (leader_of[x] == x && tree_.size() > 1) roots_.push_back(x);
    }
  }

  std::optional<RecognisedTufts> run() {
    for (const std::uint32_t root : roots_) add_tufts(root);
    if (found_.kinds.empty()) return std::nullopt;
    make_smaller();
    return std::move(found_);
  }

 private:
  Points tuft_at(std::uint32_t root) const;
  SparsePermutation exchange(std::uint32_t a, std::uint32_t b) const;
  void add_tufts(std::uint32_t root);
  void make_smaller();

  const PermutationGroup& group_;
  const std::vector<bool>& has_value_;
  StabiliserTrees trees_;
  OrbitTree tree_;
  Points tuft_of_;              // by position: the number of its tuft
  std::vector<Points> blocks_;  // by leader
  Points roots_;                // the smallest leaders of the orbits
  std::uint32_t tuft_count_ = 0;
  RecognisedTufts found_;
};

SparsePermutation TuftRecognition::exchange(std::uint32_t a, std::uint32_t b) const {
  SparsePermutation moves;
  for (std::size_t k = 0; k < blocks_[a].size(); ++k) {
    const auto from = static_cast<int>(blocks_[a][k]);
    const auto to = static_cast<int>(blocks_[b][k]);
    moves.push_back({from, to});
    moves.push_back({to, from});
  }
  std::ranges::sort(moves, {}, &PointMove::point);
  return moves;
}

// Returns the leaders of the tuft of an orbit's smallest one, ascending.
Points TuftRecognition::tuft_at(std::uint32_t root) const {
  Points leaders{root};
  for (const int point : tree_.points()) {
    const auto leader = static_cast<std::uint32_t>(point);
    if (leader != root && group_.contains(exchange(root, leader))) leaders.push_back(leader);
  }
  std::ranges::sort(leaders);
  return leaders;
}

// The exchanges of the root's tuft generate all permutations of it. All other tufts of the orbit are its
// images. Each element carries a leader's followers to those of its image in the same orbits.
void TuftRecognition::add_tufts(std::uint32_t root) {
  trees_.grow_tree(root, tree_);
  const Points first = tuft_at(root);
  if (first.size() == 1) return;
  std::vector<Points> tufts;
  std::vector<bool> is_known(trees_.degree(), false);
  for (const int point : tree_.points()) {
    if (is_known[static_cast<std::size_t>(point)]) continue;
    Points& leaders = tufts.emplace_back(first);
    std::vector<int> path;
    tree_.walk_to_root(point, [&path](int g) { path.push_back(g); });
    for (auto g = path.rbegin(); g != path.rend(); ++g) {
      for (std::uint32_t& leader : leaders) leader = trees_.image_of(leader, static_cast<std::size_t>(*g));
    }
    std::ranges::sort(leaders);
    for (const std::uint32_t leader : leaders) is_known[leader] = true;
  }
  std::ranges::sort(tufts);
  Tufts& kind = found_.kinds.emplace_back(Tufts{first.size(), blocks_[root].size(), {}, {}});
  for (const Points& leaders : tufts) {
    for (const std::uint32_t leader : leaders) {
      kind.positions.insert(kind.positions.end(), blocks_[leader].begin(), blocks_[leader].end());
      for (const std::uint32_t position : blocks_[leader]) tuft_of_[position] = tuft_count_;
    }
    ++tuft_count_;
  }
}

// The images of strong generators are strong here too. Let b be an item and p its smallest position. An
// element that fixes all positions below p fixes one position of each tuft before b, so it carries these
// tufts to themselves. Conversely, let an element keep all items before b. What it does in each of their
// tufts is a permutation of blocks; undone by an element of N, it leaves an element that does the same to
// items and fixes all positions below p, because each of these is in an item before b. So the stabiliser of
// the items before b is the image of the stabiliser of the positions below p, which the strong generators in
// it generate.
void TuftRecognition::make_smaller() {
  Points item_of(trees_.degree());
  Points item_of_tuft(tuft_count_, StabiliserTrees::kNone);
  for (std::uint32_t p = 0; p < trees_.degree(); ++p) {
    const auto next = static_cast<std::uint32_t>(found_.has_value.size());
    const bool is_other = tuft_of_[p] == StabiliserTrees::kNone;
    if (is_other) {
      found_.others.push_back(p);
      found_.other_items.push_back(next);
    }
    std::uint32_t& item = is_other ? item_of[p] : item_of_tuft[tuft_of_[p]];
    if (is_other || item == StabiliserTrees::kNone) {
      item = next;
      found_.has_value.push_back(false);
    }
    item_of[p] = item;
    if (has_value_[p]) found_.has_value[item] = true;
  }
  auto item = item_of_tuft.begin();
  for (Tufts& kind : found_.kinds) {
    const auto count = static_cast<std::ptrdiff_t>(kind.positions.size() / kind.size());
    kind.items.assign(item, item + count);
    item += count;
  }
  PermutationList generators;
  for (std::size_t g = 0; g < group_.generators().size(); ++g) {
    SparsePermutation smaller;
    for (const auto& [point, image] : group_.generators()[g]) {
      const auto from = static_cast<int>(item_of[static_cast<std::size_t>(point)]);
      const auto to = static_cast<int>(item_of[static_cast<std::size_t>(image)]);
      if (from != to) smaller.push_back({from, to});
    }
    std::ranges::sort(smaller, {}, &PointMove::point);
    smaller.erase(std::unique(smaller.begin(), smaller.end()), smaller.end());
    if (!smaller.empty()) generators.push_back(smaller);
  }
  found_.smaller = PermutationGroup::from_strong_generators(static_cast<int>(found_.has_value.size()),
                                                            std::move(generators));
}

}  // namespace

std::optional<RecognisedTufts> recognise_tufts(const PermutationGroup& group,
                                               const std::vector<bool>& has_value, std::size_t max_entries) {
  const std::size_t tree_entries =
      std::accumulate(group.orbit_lengths().begin(), group.orbit_lengths().end(), std::size_t{0});
  const auto degree = static_cast<std::size_t>(group.degree());
  if (tree_entries > max_entries || group.generators().size() * degree > max_entries) return std::nullopt;
  return TuftRecognition(group, has_value).run();
}

}  // namespace symfold::detail
