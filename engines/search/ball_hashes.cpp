#include "engines/search/ball_hashes.h"

#include <utility>

#include "engines/base/mix.h"

namespace symfold::detail {
namespace {

constexpr int kMaxRadius = 6;

// An edge costs the search about so many times what it costs a ball.
constexpr std::size_t kBallEdgesPerSearchEdge = 8;

}  // namespace

BallHashes::BallHashes(const ColouredGraph& graph) : graph_(graph), centre_of_(graph.vertex_count(), -1) {
  for (int v = 0; v < graph.vertex_count(); ++v) {
    const std::size_t degree = graph.neighbours(v).size();
    min_failed_work_ += (degree + degree * degree) / kBallEdgesPerSearchEdge;
  }
}

bool BallHashes::split(const OrderedPartition& cells, std::size_t failed_work,
                       PointVector<std::uint64_t>& keys) {
  min_failed_work_ = 2 * failed_work;
  for (examined_edges_ = 0; radius_ <= kMaxRadius; ++radius_) {
    PointVector<std::uint64_t> hashes(cells.vertex_count());
    if (!hash_all(cells, failed_work * kBallEdgesPerSearchEdge, hashes)) return false;
    for (int v = 0; v < hashes.size(); ++v) {
      if (hashes[v] == hashes[cells.vertex_at(cells.cell_of(v))]) continue;
      keys = std::move(hashes);
      return true;
    }
  }
  return false;
}

// Returns false if that takes more than max_edges.
bool BallHashes::hash_all(const OrderedPartition& cells, std::size_t max_edges,
                          PointVector<std::uint64_t>& keys) {
  centre_of_.assign(centre_of_.size(), -1);
  for (int v = 0; v < keys.size() && examined_edges_ <= max_edges; ++v) {
    const int cell = cells.cell_of(v);
    keys[v] = mix(cell, 0);
    if (cells.length(cell) > 1) keys[v] += hash_ball(cells, v);
  }
  return examined_edges_ <= max_edges;
}

std::uint64_t BallHashes::hash_ball(const OrderedPartition& cells, int centre) {
  std::uint64_t hash = 0;
  members_.assign(1, centre);
  centre_of_[centre] = centre;
  std::size_t begin = 0;
  for (int distance = 1; distance <= radius_; ++distance) {
    for (const std::size_t end = members_.size(); begin < end; ++begin) {
      const auto neighbours = graph_.neighbours(members_[begin]);
      examined_edges_ += neighbours.size();
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
