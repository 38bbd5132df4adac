#include "engines/largest_image/subgroup.h"

#include <algorithm>
#include <numeric>
#include <utility>

namespace symfold::detail {

namespace {
constexpr std::size_t kMoreInSample = 8;
}  // namespace

Classes::Classes(std::size_t count) : parent_(count) { std::iota(parent_.begin(), parent_.end(), 0U); }

std::uint32_t Classes::find(std::uint32_t x) {
  while (parent_[x] != x) {
    parent_[x] = parent_[parent_[x]];
    x = parent_[x];
  }
  return x;
}

bool Classes::unite(std::uint32_t x, std::uint32_t y) {
  x = find(x);
  y = find(y);
  parent_[std::max(x, y)] = std::min(x, y);
  return x != y;
}

std::size_t Classes::unite_invariantly(std::uint32_t x, std::uint32_t y,
                                       const std::vector<const Images*>& permutations) {
  std::vector<std::pair<std::uint32_t, std::uint32_t>> united;
  if (unite(x, y)) united.emplace_back(x, y);
  for (std::size_t i = 0; i < united.size(); ++i) {
    const auto [a, b] = united[i];
    for (const Images* permutation : permutations) {
      if (unite((*permutation)[a], (*permutation)[b]))
        united.emplace_back((*permutation)[a], (*permutation)[b]);
    }
  }
  return united.size();
}

std::vector<std::vector<std::uint32_t>> Classes::lists() {
  std::vector<std::vector<std::uint32_t>> lists;
  std::vector<std::size_t> list_of(parent_.size());
  for (std::uint32_t x = 0; x < parent_.size(); ++x) {
    const std::uint32_t first = find(x);
    if (first == x) {
      list_of[x] = lists.size();
      lists.emplace_back();
    }
    lists[list_of[first]].push_back(x);
  }
  return lists;
}

std::vector<const Images*> sample_of(const std::vector<Images>& permutations) {
  std::vector<const Images*> chosen;
  if (permutations.empty()) return chosen;
  Classes classes(permutations[0].size());
  const std::size_t stride = std::max<std::size_t>(permutations.size() / kMoreInSample, 1);
  for (std::size_t i = 0; i < permutations.size(); ++i) {
    bool joins = false;
    for (std::uint32_t x = 0; x < permutations[i].size(); ++x)
      joins = classes.unite(x, permutations[i][x]) || joins;
    if (joins || i % stride == 0) chosen.push_back(&permutations[i]);
  }
  return chosen;
}

std::vector<std::uint32_t> Subgroup::positions_with_values() const {
  std::vector<std::uint32_t> positions;
  for (std::uint32_t i = 0; i < size(); ++i) {
    if (whole_.has_value(points_[i])) positions.push_back(i);
  }
  return positions;
}

bool Subgroup::contains(const Images& local) const {
  Images images(whole_.point_count());
  std::iota(images.begin(), images.end(), 0U);
  for (std::size_t i = 0; i < local.size(); ++i) images[points_[i]] = points_[local[i]];
  return whole_.contains(std::move(images));
}

Subgroup Subgroup::on(const std::vector<std::uint32_t>& positions, std::vector<Images> generators) const {
  std::vector<std::uint32_t> points;
  points.reserve(positions.size());
  for (const std::uint32_t position : positions) points.push_back(points_[position]);
  return {whole_, std::move(points), std::move(generators)};
}

std::vector<std::vector<std::uint32_t>> Subgroup::orbits() const {
  Classes classes(size());
  for (const Images& generator : generators_) {
    for (std::uint32_t x = 0; x < size(); ++x) classes.unite(x, generator[x]);
  }
  std::vector<std::vector<std::uint32_t>> orbits = classes.lists();
  std::erase_if(orbits, [](const auto& orbit) { return orbit.size() == 1; });
  std::stable_sort(orbits.begin(), orbits.end(),
                   [](const auto& a, const auto& b) { return a.size() < b.size(); });
  return orbits;
}

}  // namespace symfold::detail
