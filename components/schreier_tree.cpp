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
      tree_(other.tree_ ? std::make_unique<detail::StabiliserFirstTree>(*other.tree_) : nullptr) {}

SchreierTree& SchreierTree::operator=(SchreierTree other) noexcept {
  n = other.n;
  perms_.swap(other.perms_);
  root_ = other.root_;
  tree_.swap(other.tree_);
  return *this;
}

void SchreierTree::SetPerms(std::vector<Permutation> perms) {
  n = std::max(n, 0);
  std::erase_if(perms, [this](const Permutation& permutation) {
    return permutation.GetN() != n || !permutation.IsPermutation();
  });
  perms_ = std::move(perms);
  std::vector<std::span<const int>> images;
  images.reserve(perms_.size());
  for (const Permutation& permutation : perms_) {
    images.emplace_back(permutation.GetP(), static_cast<std::size_t>(n));
  }
  root_ = -1;
  tree_ = perms_.empty() ? nullptr : std::make_unique<detail::StabiliserFirstTree>(n, images);
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
