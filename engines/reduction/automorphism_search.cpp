#include "engines/reduction/automorphism_search.h"

#include <algorithm>
#include <bit>
#include <cstdint>
#include <optional>
#include <span>
#include <utility>

#include "engines/base/base_points.h"
#include "engines/graph/automorphism_check.h"
#include "engines/reduction/degree_reduction.h"
#include "engines/search/path_search.h"

namespace symfold::detail {
namespace {

// Sorts moves by their points.
class MoveSorter {
 public:
  explicit MoveSorter(int n) : image_(n), is_moved_(n / kBits + 1, 0) {}

  void write(std::span<const PointMove> moves, std::span<PointMove> sorted) {
    const auto count = static_cast<int>(moves.size());
    if (count <= 8) {
      write_few(moves, sorted);
    } else if (count < 16 + is_moved_.size() / 8) {
      std::ranges::copy(moves, sorted.begin());
      std::ranges::sort(sorted, {}, &PointMove::point);
    } else {
      write_many(moves, sorted);
    }
  }

 private:
  // Writes each move at its rank. Nothing branches on the points, whose order cannot be predicted.
  static void write_few(std::span<const PointMove> moves, std::span<PointMove> sorted) {
    for (const PointMove& move : moves) {
      std::size_t rank = 0;
      for (const PointMove& other : moves) rank += other.point < move.point ? 1 : 0;
      sorted[rank] = move;
    }
  }

  // Sets a bit for each moved point and reads the bits in order.
  void write_many(std::span<const PointMove> moves, std::span<PointMove> sorted) {
    for (const auto& [point, image] : moves) {
      image_[point] = image;
      is_moved_[point / kBits] |= std::uint64_t{1} << (point % kBits);
    }
    auto move = sorted.begin();
    for (int word = 0; word < is_moved_.size(); ++word) {
      for (std::uint64_t bits = std::exchange(is_moved_[word], 0); bits != 0; bits &= bits - 1) {
        const int point = word * kBits + std::countr_zero(bits);
        *move++ = {point, image_[point]};
      }
    }
  }

  static constexpr int kBits = 64;

  PointVector<int> image_;
  PointVector<std::uint64_t> is_moved_;  // 0 between calls
};

// Collects generators, up to a limit.
class GeneratorCollector {
 public:
  GeneratorCollector(int vertex_count, std::size_t max_moves) : sorter_(vertex_count), max_moves_(max_moves) {
    list_.reserve(2 * static_cast<std::size_t>(vertex_count));  // enough for exchanges of leaves
  }

  // Takes the moves of an automorphism in any order. Returns false if there are too many.
  bool add(std::span<const PointMove> moves) {
    if (moves.empty()) return true;
    if (is_over_limit()) return false;
    sorter_.write(moves, list_.add(moves.size()));
    return true;
  }

  bool is_over_limit() const { return list_.move_count() > max_moves_; }
  PermutationList release() { return std::move(list_); }

 private:
  MoveSorter sorter_;
  std::size_t max_moves_;
  PermutationList list_;
};

// Returns generators without a base, or nothing if a lift fails the check.
std::optional<AutomorphismGroup> reduced_generators(const ColouredGraph& graph, const SearchLimits& limits) {
  DegreeReduction reduction(graph);
  GeneratorCollector generators(graph.vertex_count(), limits.max_moves);
  const auto add = [&generators](const SparsePermutation& moves) { return generators.add(moves); };
  SearchEnd end = SearchEnd::kComplete;
  bool is_sound = reduction.for_each_fibre_symmetry(add);
  if (is_sound && reduction.reduced().vertex_count() > 0) {
    const AutomorphismGroup core = search_paths(reduction.reduced(), limits);
    end = core.end;
    AutomorphismCheck check(graph);
    SparsePermutation lifted;
    for (std::size_t g = 0; is_sound && g < core.generators.size(); ++g) {
      is_sound = reduction.lift(core.generators[g], lifted) && check.is_automorphism(lifted) &&
                 generators.add(lifted);
    }
  }
  if (!is_sound && !generators.is_over_limit()) return std::nullopt;
  if (generators.is_over_limit()) end = SearchEnd::kMoveLimit;
  return AutomorphismGroup{generators.release(), {}, {}, end == SearchEnd::kComplete, end};
}

// Reads the base once the reduction's memory is free again.
std::optional<AutomorphismGroup> search_reduced(const ColouredGraph& graph, const SearchLimits& limits) {
  std::optional<AutomorphismGroup> group = reduced_generators(graph, limits);
  if (group.has_value())
    read_base(graph.vertex_count(), group->generators, group->base, group->orbit_lengths);
  return group;
}

}  // namespace

AutomorphismGroup find_automorphisms(const ColouredGraph& graph, const SearchLimits& limits) {
  if (DegreeReduction::is_worthwhile(graph)) {
    if (auto group = search_reduced(graph, limits)) return *std::move(group);
  }
  return search_paths(graph, limits);
}

}  // namespace symfold::detail
