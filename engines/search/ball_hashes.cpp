#include "engines/search/ball_hashes.h"

#include <utility>

#include "engines/base/mix.h"

namespace symfold::detail {
namespace {

constexpr int kMaxRadius = 6;

// An edge costs the search about so many times what it costs a ball.
constexpr std::size_t kPrice = 8;

}  // namespace

BallHashes::BallHashes(const ColouredGraph& graph) : graph_(graph), centre_of_(graph.vertex_count(), -1) {
  for (int v = 0; v < graph.vertex_count(); ++v) {
    const std::size_t degree = graph.neighbours(v).size();
    due_ += (degree + degree * degree) / kPrice;
  }
}

bool BallHashes::split(const OrderedPartition& cells, std::size_t work, PointVector<std::uint64_t>& keys) {
  due_ = 2 * work;
  for (edges_ = 0; radius_ <= kMaxRadius; ++radius_) {
    PointVector<std::uint64_t> hashes(cells.vertex_count());
    if (!hash_all(cells, work * kPrice, hashes)) return false;
    for (int v = 0; v < hashes.size(); ++v) {
      if (hashes[v] == hashes[cells.vertex_at(cells.cell_of(v))]) continue;
      keys = std::move(hashes);
      return true;
    }
  }
  return false;
}

// False where that takes more edges than the budget.
bool BallHashes::hash_all(const OrderedPartition& cells, std::size_t budget,
                          PointVector<std::uint64_t>& keys) {
  centre_of_.assign(centre_of_.size(), -1);
  for (int v = 0; v < keys.size() && edges_ <= budget; ++v) {
    const int cell = cells.cell_of(v);
    keys[v] = mix(cell, 0);
    if (cells.length(cell) > 1) keys[v] += hash_ball(cells, v);
  }
  return edges_ <= budget;
}

std::uint64_t BallHashes::hash_ball(const OrderedPartition& cells, int centre) {
  std::uint64_t hash = 0;
  members_.assign(1, centre);
  centre_of_[centre] = centre;
  std::size_t begin = 0;
  for (int distance = 1; distance <= radius_; ++distance) {
    for (const std::size_t end = members_.size(); begin < end; ++begin) {
      const auto neighbours = graph_.neighbours(members_[begin]);
      edges_ += neighbours.size();
      for (const int neighbour : neighbours) {
        if (std::exchange(centre_of_[neighbour], centre) == centre) continue;
        members_.push_back(neighbour);
        hash += mix(cells.cell_of(neighbour), distance);
      }
    }
  }
  return hash;
}

}  // namespace symfold::detail
