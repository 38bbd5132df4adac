#include "engines/search/hashed_refinement.h"

#include <bit>
#include <cstdint>
#include <utility>
#include <vector>

#include "engines/base/mix.h"

namespace symfold::detail {
namespace {

using Hash = std::uint64_t;

constexpr int kMaxRounds = 12;
constexpr int kMaxRoundsAlike = 3;  // in which the same two vertices have equal hashes

PointVector<Hash> first_hashes(const ColouredGraph& graph) {
  PointVector<Hash> hashes(graph.vertex_count());
  for (int v = 0; v < hashes.size(); ++v)
    hashes[v] = mix(mix(graph.colour(v), graph.loops(v)) + graph.neighbours(v).size());
  return hashes;
}

void hash_again(const ColouredGraph& graph, const PointVector<Hash>& hashes, PointVector<Hash>& next) {
  for (int v = 0; v < hashes.size(); ++v) {
    Hash sum = 3 * hashes[v];
    const auto neighbours = graph.neighbours(v);
    const auto weights = graph.weights(v);
    if (weights.empty()) {
      for (const int neighbour : neighbours) sum += hashes[neighbour];
    } else {
      for (std::size_t i = 0; i < weights.size(); ++i) sum += hashes[neighbours[i]] * (2 * weights[i] + 1);
    }
    next[v] = mix(sum);
  }
}

// Finds vertices of equal hashes by open addressing.
class TwinFinder {
 public:
  explicit TwinFinder(int n) : slots_(std::bit_ceil(static_cast<std::size_t>(n) * 2 + 1), -1) {}

  // Returns the first vertex whose hash is that of a vertex before it, and that vertex; -1 for none.
  std::pair<int, int> find(const PointVector<Hash>& hashes) {
    for (int v = 0; v < hashes.size(); ++v) {
      std::size_t slot = slot_of(hashes[v]);
      for (; slots_[slot] >= 0; slot = next(slot)) {
        if (hashes[slots_[slot]] == hashes[v]) {
          const int twin = slots_[slot];
          empty_slots(hashes, v);
          return {v, twin};
        }
      }
      slots_[slot] = v;
    }
    return {-1, -1};
  }

 private:
  std::size_t slot_of(Hash hash) const { return hash & (slots_.size() - 1); }
  std::size_t next(std::size_t slot) const { return slot_of(slot + 1); }

  // Empties the slots of the vertices before `end`, which are runs of full slots that begin at their hashes.
  void empty_slots(const PointVector<Hash>& hashes, int end) {
    for (int v = 0; v < end; ++v) {
      for (std::size_t slot = slot_of(hashes[v]); slots_[slot] >= 0; slot = next(slot)) slots_[slot] = -1;
    }
  }

  std::vector<int> slots_;  // vertices; all -1 at the start and after a call that finds something
};

}  // namespace

bool is_rigid_by_hashes(const ColouredGraph& graph) {
  PointVector<Hash> hashes = first_hashes(graph);
  PointVector<Hash> next(hashes.size());
  TwinFinder finder(hashes.size());
  std::pair<int, int> twins = finder.find(hashes);
  for (int round = 0, rounds_left = kMaxRoundsAlike; twins.first >= 0; ++round) {
    if (round == kMaxRounds || rounds_left == 0) return false;
    hash_again(graph, hashes, next);
    std::swap(hashes, next);
    if (hashes[twins.first] == hashes[twins.second]) {
      --rounds_left;
    } else {
      twins = finder.find(hashes);
      rounds_left = kMaxRoundsAlike;
    }
  }
  return true;
}

}  // namespace symfold::detail
