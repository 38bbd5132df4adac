#include "components/schreier_tree.h"

#include <algorithm>
#include <deque>
#include <iostream>
#include <utility>

namespace symfold {
namespace {

std::size_t index(int i) { return static_cast<std::size_t>(i); }

bool is_permutation_of(const Permutation& permutation, int n) {
  if (permutation.GetN() != n) return false;
  std::vector<char> is_image(index(n), 0);
  for (int i = 0; i < n; ++i) {
    const int image = permutation[i];
    if (image < 0 || image >= n || is_image[index(image)] != 0) return false;
    is_image[index(image)] = 1;
  }
  return true;
}

}  // namespace

void SchreierTree::SetPerms(std::vector<Permutation> perms) {
  n = std::max(n, 0);
  std::erase_if(perms, [this](const Permutation& permutation) { return !is_permutation_of(permutation, n); });
  perms_ = std::move(perms);
  smallest_moved_.clear();
  first_mover_.assign(index(n) + 1, 0);
  for (const Permutation& permutation : perms_) {
    int smallest = n;
    for (int i = n - 1; i >= 0; --i) {
      if (permutation[i] == i) continue;
      smallest = i;
      ++first_mover_[index(i)];
    }
    smallest_moved_.push_back(smallest);
  }
  // Running sums make each entry the end of its point's stretch; filling backwards leaves it at the
  // beginning.
  std::size_t total = 0;
  for (std::size_t& entry : first_mover_) entry = total += entry;
  movers_.resize(total);
  for (int g = static_cast<int>(perms_.size()) - 1; g >= 0; --g) {
    for (int i = 0; i < n; ++i) {
      if (perms_[index(g)][i] != i) movers_[--first_mover_[index(i)]] = g;
    }
  }
  SetRootValue(-1);
}

void SchreierTree::PrintPerms() { PrintPerms(std::cout); }

void SchreierTree::PrintPerms(std::ostream& out) {
  for (const Permutation& permutation : perms_) out << permutation << std::endl;
}

void SchreierTree::SetRootValue(int r) {
  root_ = r;
  found_.clear();
}

void SchreierTree::CreateTree(int r) {
  SetRootValue(r);
  const int points = static_cast<int>(first_mover_.size()) - 1;
  if (r < 0 || r >= points) return;
  parent_.assign(index(points), -1);
  via_.assign(index(points), -1);
  depth_.assign(index(points), -1);
  found_.push_back(r);
  depth_[index(r)] = 0;
  grow(r);
  grow(0);
}

// Extends the tree by the generators that move no point below smallest_allowed. The points known at the start
// and the new ones are both in order of depth; taking the shallower head each time merges them in that order.
void SchreierTree::grow(int smallest_allowed) {
  const std::vector<int> known = std::exchange(found_, {});
  std::deque<int> fresh;
  for (auto next = known.begin(); next != known.end() || !fresh.empty();) {
    int point = -1;
    if (fresh.empty() || (next != known.end() && depth_[index(*next)] <= depth_[index(fresh.front())])) {
      point = *next++;
    } else {
      point = fresh.front();
      fresh.pop_front();
    }
    found_.push_back(point);
    for (std::size_t i = first_mover_[index(point)]; i < first_mover_[index(point) + 1]; ++i) {
      const int g = movers_[i];
      const int image = perms_[index(g)][point];
      if (smallest_moved_[index(g)] < smallest_allowed || depth_[index(image)] >= 0) continue;
      parent_[index(image)] = point;
      via_[index(image)] = g;
      depth_[index(image)] = depth_[index(point)] + 1;
      fresh.push_back(image);
    }
  }
}

std::size_t SchreierTree::CountPathPermutations() const {
  std::size_t count = 0;
  for (const int point : found_) count += index(depth_[index(point)]);
  return count;
}

std::vector<ValPerms> SchreierTree::GetAllPermutationsToRoot() {
  std::vector<ValPerms> records;
  for (const int value : found_) {
    if (value == root_) continue;
    ValPerms& record = records.emplace_back();
    record.Value = value;
    std::vector<int> path;
    for (int point = value; point != root_; point = parent_[index(point)]) path.push_back(via_[index(point)]);
    record.Perms.reserve(path.size());
    for (auto g = path.rbegin(); g != path.rend(); ++g) record.Perms.push_back(perms_[index(*g)]);
  }
  return records;
}

}  // namespace symfold
