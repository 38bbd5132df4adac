#include "components/schreier_tree.h"

#include <algorithm>
#include <iostream>
#include <span>
#include <utility>

#include "engines/group/stabiliser_first_tree.h"

namespace symfold {

SchreierTree::SchreierTree() = default;
SchreierTree::~SchreierTree() = default;
SchreierTree::SchreierTree(SchreierTree&& other) noexcept = default;

SchreierTree::SchreierTree(const SchreierTree& other)
    : n(other.n),
      perms_(other.perms_),
      root_(other.root_),
      counted_points_(other.counted_points_),
      move_counts_(other.move_counts_),
      tree_(other.tree_ ? std::make_unique<detail::StabiliserFirstTree>(*other.tree_) : nullptr) {}

SchreierTree& SchreierTree::operator=(SchreierTree other) noexcept {
  n = other.n;
  perms_.swap(other.perms_);
  root_ = other.root_;
  counted_points_ = other.counted_points_;
  move_counts_.swap(other.move_counts_);
  tree_.swap(other.tree_);
  return *this;
}

void SchreierTree::SetPerms(std::vector<Permutation> perms) {
  n = std::max(n, 0);
  std::erase_if(perms, [this](const Permutation& permutation) {
    return permutation.GetN() != n || !permutation.IsPermutation();
  });
  perms_ = std::move(perms);
  PermutationList moves;
  for (const Permutation& permutation : perms_) {
    auto room = moves.add(permutation.CountMoves()).begin();
    permutation.VisitMoves([&room](int point, int image) { *room++ = {point, image}; });
  }
  root_ = -1;
  counted_points_ = -1;
  tree_ = perms_.empty() ? nullptr : std::make_unique<detail::StabiliserFirstTree>(n, moves);
}

void SchreierTree::PrintPerms() { PrintPerms(std::cout); }

void SchreierTree::PrintPerms(std::ostream& out) {
  for (const Permutation& permutation : perms_) out << permutation << std::endl;
}

void SchreierTree::SetRootValue(int r) {
  root_ = r;
  if (tree_) tree_->clear();
}

void SchreierTree::CreateTree(int r) {
  SetRootValue(r);
  if (tree_ && r >= 0 && r < tree_->point_count()) tree_->build(r);
}

std::size_t SchreierTree::CountPathPermutations() const {
  if (!tree_) return 0;
  const detail::OrbitTree& tree = tree_->tree();
  std::size_t count = 0;
  for (const int point : tree.points()) count += static_cast<std::size_t>(tree.depth(point));
  return count;
}

// An allocation takes a word more than what it holds, and a permutation's images have a word on top.
std::size_t SchreierTree::CountTableBytes(int point_count) {
  if (!tree_) return 0;
  if (counted_points_ != point_count) {
    counted_points_ = point_count;
    move_counts_.assign(perms_.size(), 0);
    for (std::size_t g = 0; g < perms_.size(); ++g) {
      perms_[g].VisitMoves([&](int point, int) { move_counts_[g] += point < point_count ? 1 : 0; });
    }
  }
  constexpr std::size_t kWord = sizeof(void*);
  const std::size_t max_composite = static_cast<std::size_t>(std::max(point_count, 0)) * sizeof(int);
  const detail::OrbitTree& tree = tree_->tree();
  path_moves_.resize(static_cast<std::size_t>(n));
  std::size_t bytes = 0;
  for (const int point : tree.points()) {  // parents first
    const auto i = static_cast<std::size_t>(point);
    path_moves_[i] = 0;
    if (point == root_) continue;
    path_moves_[i] = path_moves_[static_cast<std::size_t>(tree.parent(point))] +
                     move_counts_[static_cast<std::size_t>(tree.generator(point))];
    const std::size_t path = static_cast<std::size_t>(tree.depth(point)) * sizeof(Permutation);
    const std::size_t composite = std::min(path_moves_[i] * sizeof(PointMove), max_composite);
    bytes += sizeof(ValPerms) + (kWord + path) + (2 * kWord + composite);
  }
  return bytes;
}

std::vector<ValPerms> SchreierTree::GetAllPermutationsToRoot() {
  if (!tree_) return {};
  const detail::OrbitTree& tree = tree_->tree();
  std::vector<ValPerms> records;
  for (const int value : tree.points()) {
    if (value == root_) continue;
    ValPerms& record = records.emplace_back();
    record.Value = value;
    std::vector<int> path;
    tree.walk_to_root(value, [&path](int generator) { path.push_back(generator); });
    record.Perms.reserve(path.size());
    for (auto g = path.rbegin(); g != path.rend(); ++g) {
      record.Perms.push_back(perms_[static_cast<std::size_t>(*g)]);
    }
  }
  return records;
}

}  // namespace symfold
