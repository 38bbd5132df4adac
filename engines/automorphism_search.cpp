#include "engines/automorphism_search.h"

#include <algorithm>
#include <optional>
#include <utility>

#include "engines/automorphism_check.h"
#include "engines/degree_reduction.h"
#include "engines/path_search.h"
#include "engines/stabiliser_chain.h"

namespace symfold {
namespace {

// Generators that have passed the check, up to the limit.
class CheckedGenerators {
 public:
  CheckedGenerators(const ColouredGraph& graph, std::size_t most)
      : check_(graph), image_(graph.vertex_count(), -1), most_(most) {}

  // False where the moves are no automorphism, or too many have been given.
  bool add(SparsePermutation& moves) {
    if (list_.size() > most_ || !check_.is_automorphism(moves)) return false;
    sort(moves);
    list_.push_back(moves);
    return true;
  }

  bool is_over_limit() const { return list_.size() > most_; }
  std::vector<SparsePermutation> release() { return std::move(list_); }

 private:
  // By point. Many moves are read off an array of all images.
  void sort(SparsePermutation& moves) {
    if (moves.size() < static_cast<std::size_t>(image_.size()) / 16) {
      std::ranges::sort(moves, {}, &PointMove::point);
      return;
    }
    for (const auto& [point, image] : moves) image_[point] = image;
    moves.clear();
    for (int point = 0; point < image_.size(); ++point) {
      const int image = std::exchange(image_[point], -1);
      if (image >= 0) moves.push_back({point, image});
    }
  }

  AutomorphismCheck check_;
  PointVector<int> image_;  // -1 between calls
  std::size_t most_;
  std::vector<SparsePermutation> list_;
};

// Nothing where a generator fails the check.
std::optional<AutomorphismGroup> search_reduced(const ColouredGraph& graph, const SearchLimits& limits) {
  DegreeReduction reduction(graph);
  CheckedGenerators generators(graph, limits.generators);
  const auto add = [&generators](SparsePermutation& moves) { return generators.add(moves); };
  bool is_sound = reduction.for_each_own_symmetry(add);
  if (is_sound && reduction.reduced().vertex_count() > 0) {
    const AutomorphismGroup core = search_paths(reduction.reduced(), limits);
    SparsePermutation lifted;
    is_sound = std::ranges::all_of(core.generators, [&](const SparsePermutation& moves) {
      return reduction.lift(moves, lifted) && generators.add(lifted);
    });
  }
  if (!is_sound && !generators.is_over_limit()) return std::nullopt;
  const bool is_complete = !generators.is_over_limit();
  StabiliserChain chain = read_chain(graph.vertex_count(), generators.release());
  return AutomorphismGroup{std::move(chain.generators), std::move(chain.base), std::move(chain.orbit_lengths),
                           is_complete};
}

}  // namespace

AutomorphismGroup find_automorphisms(const ColouredGraph& graph, const SearchLimits& limits) {
  if (DegreeReduction::is_worthwhile(graph)) {
    if (auto group = search_reduced(graph, limits)) return *std::move(group);
  }
  return search_paths(graph, limits);
}

}  // namespace symfold
