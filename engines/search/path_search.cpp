#include "engines/search/path_search.h"

#include <algorithm>
#include <limits>
#include <optional>
#include <span>
#include <tuple>
#include <utility>

#include "engines/base/images.h"
#include "engines/base/union_find.h"
#include "engines/graph/automorphism_check.h"
#include "engines/search/ball_hashes.h"
#include "engines/search/hashed_refinement.h"
#include "engines/search/ordered_partition.h"
#include "engines/search/paired_descent.h"
#include "engines/search/partial_image.h"
#include "engines/search/refinement.h"
#include "engines/search/subtree_match.h"
#include "engines/search/work_budget.h"

namespace symfold::detail {
namespace {

// Clues that did not help may cost about as much as a quarter of the refinements.
constexpr std::size_t kSearchEdgesPerDenseClue = 4;

struct Level {
  int vertex;  // v(i), individualised by the first path
  int cell;    // its cell before that
  int length;  // of this cell
  int splits;  // in effect before v(i) was individualised
  std::size_t trace_begin;
  int orbit_length = 1;  // of v(i) under the stabiliser of v(0) .. v(i-1), once the level is explored

  // Valid below the first level of the path being followed.
  int preferred = -1;  // the candidate taken first
  int tries = 0;       // candidates taken so far
  int latest = -1;     // the latest one after the first; they are taken in ascending order
};

// The orbits of the generators found so far, with what the search knows about each.
class SearchOrbits {
 public:
  explicit SearchOrbits(int n) : classes_(n), largest_(identity_images(n)), mark_(n, -1) {}

  void unite(int x, int y) {
    x = classes_.find(x);
    y = classes_.find(y);
    if (!classes_.unite(x, y)) return;
    // One of the two is the root of the joint class.
    largest_[x] = largest_[y] = std::max(largest_[x], largest_[y]);
    mark_[x] = mark_[y] = std::max(mark_[x], mark_[y]);
  }

  bool are_together(int x, int y) { return classes_.find(x) == classes_.find(y); }
  int size(int x) { return classes_.size_of_class(x); }
  int largest(int x) { return largest_[classes_.find(x)]; }

  // Returns the largest mark, at least 0, that a point of x's orbit was given; -1 for none.
  int mark(int x) { return mark_[classes_.find(x)]; }
  void set_mark(int x, int mark) { mark_[classes_.find(x)] = mark; }

 private:
  UnionFind classes_;
  PointVector<int> largest_;  // valid at roots, as are the marks
  PointVector<int> mark_;
};

class PathSearch {
 public:
  // The references must outlive this. `keys` tell at least the colours apart.
  PathSearch(const ColouredGraph& graph, BallHashes& balls, PointVector<std::uint64_t>& keys,
             const SearchLimits& limits, WorkBudget& budget)
      : balls_(balls),
        keys_(keys),
        budget_(budget),
        partition_(graph.vertex_count()),
        refiner_(graph, partition_, budget),
        end_(follow_first_path()),
        descent_(graph, end_, partition_, refiner_, budget),
        subtrees_(graph, partition_, refiner_, group_.generators, budget),
        partial_image_(graph),
        check_(graph),
        orbits_(graph.vertex_count()),
        limits_(limits),
        max_descent_failures_(limits.max_descent_failures) {}

  // Returns nothing if so much failed that the keys have been made finer: a new search has to begin with
  // them.
  std::optional<AutomorphismGroup> run() {
    if (budget_.is_spent()) end_search(SearchEnd::kWorkBudget);
    for (int i = levels_.size() - 1; i >= 0 && group_.is_complete; --i) {
      if (!explore_level(i)) return std::nullopt;
      if (levels_[i].orbit_length == 1) continue;
      group_.base.push_back(levels_[i].vertex);
      group_.orbit_lengths.push_back(levels_[i].orbit_length);
    }
    std::reverse(group_.base.begin(), group_.base.end());
    std::reverse(group_.orbit_lengths.begin(), group_.orbit_lengths.end());
    return std::move(group_);
  }

 private:
  void end_search(SearchEnd end) {
    group_.is_complete = false;
    group_.end = end;
  }

  // Individualises vertices in ascending order. No vertex before v shares its cell, since a vertex alone in
  // its cell stays alone.
  const OrderedPartition& follow_first_path() {
    refiner_.refine_by(keys_);
    for (int v = 0; !partition_.is_discrete() && !budget_.is_spent(); ++v) {
      const int cell = partition_.cell_of(v);
      if (partition_.length(cell) == 1) continue;
      levels_.push_back({v, cell, partition_.length(cell), partition_.split_count(), trace_.size()});
      refiner_.individualise_and_record(v, trace_);
    }
    partition_.debug_check_invariants();
    return partition_;
  }

  // Finds the orbit of v(i). The members of its cell are read off the first path's final order, in which
  // later splits have only permuted them inside the cell. They are read from the back: v(i) stands there,
  // then come the parts that refinement told apart from the rest, and the largest part is last, so that a
  // level whose cell is mostly one orbit ends early. Returns false if the keys have been made finer.
  bool explore_level(int i) {
    Level& level = levels_[i];
    // Marks the failed orbits of this level; greater than all marks of earlier levels.
    const int failed = levels_.size() - i;
    descent_.set_level(level.splits, level.vertex);
    subtrees_.set_level(end_, level.splits, level.vertex);
    for (int position = level.cell + level.length - 1; position >= level.cell; --position) {
      if (orbits_.size(level.vertex) == level.length) break;
      const int v = end_.vertex_at(position);
      if (orbits_.are_together(v, level.vertex) || orbits_.mark(v) == failed) continue;
      const std::size_t work = refiner_.work();
      const bool is_found = find_image(i, orbits_.largest(v));
      if (budget_.is_spent()) {
        end_search(SearchEnd::kWorkBudget);
        break;
      }
      if (!is_found) {
        orbits_.set_mark(v, failed);
        failed_work_ += refiner_.work() - work;
        if (make_finer_keys()) return false;
      }
      if (group_.generators.move_count() > limits_.max_moves) {
        end_search(SearchEnd::kMoveLimit);
        break;
      }
    }
    level.orbit_length = orbits_.size(level.vertex);
    return true;
  }

  // Returns true if it was worth a try and the keys are finer now.
  bool make_finer_keys() {
    if (!balls_.is_worthwhile(failed_work_)) return false;
    OrderedPartition cells = end_;
    cells.undo(levels_[0].splits);
    return balls_.split(cells, failed_work_, keys_);
  }

  // Records an automorphism that fixes the vertices of the levels before `top` and carries that of `top` to
  // w. Returns false if there is none.
  bool find_image(int top, int w) {
    next_attempt_ = 0;
    partition_.undo(levels_[top].splits);
    if (!individualise(top, w)) return false;
    if (attempt_generator(end_, top, true)) return true;
    if (levels_.size() == top + 1) return false;
    const auto attempt = [this, top](bool is_last) {
      return attempt_generator(descent_.left(), top, is_last);
    };
    switch (descent_.run(levels_[top].splits, max_descent_failures_, attempt)) {
      case PairedDescent::Answer::kFound:
        return true;
      case PairedDescent::Answer::kNone:
        return false;
      case PairedDescent::Answer::kOpen:
        break;
    }
    if (!limits_.matches_subtrees) return follow_levels(top, w);
    // One question of this kind is rarely the only one. A single failure is allowed to the others, because a
    // descent that finds its automorphism at once is cheaper where parts of a large graph are exchanged.
    max_descent_failures_ = std::min(max_descent_failures_, 1);
    partition_.undo(levels_[top].splits);
    individualise(top, w);
    const auto last_attempt = [this, top](const OrderedPartition& left) {
      return attempt_generator(left, top, true);
    };
    switch (subtrees_.run(levels_[top].splits, last_attempt)) {
      case SubtreeMatch::Answer::kFound:
        return true;
      case SubtreeMatch::Answer::kNone:
        return false;
      case SubtreeMatch::Answer::kOpen:
        break;
    }
    return follow_levels(top, w);
  }

  // Searches completely: follows the first path's levels with w in the place of the vertex of `top`, and with
  // every choice of vertices below that can matter.
  bool follow_levels(int top, int w) {
    next_attempt_ = 0;
    partition_.undo(levels_[top].splits);
    for (int i = top, candidate = w; i >= top;) {
      if (individualise(i, candidate)) {
        const bool is_leaf = i + 1 == levels_.size();
        if (attempt_generator(end_, top, is_leaf)) return true;
        if (!is_leaf) {
          candidate = first_candidate(++i);
          continue;
        }
      }
      std::tie(i, candidate) = backtrack(i, top);
    }
    return false;
  }

  // Individualises the candidate in the place of v(i). Returns true if refinement runs as it did for v(i).
  bool individualise(int i, int candidate) {
    const std::size_t begin = levels_[i].trace_begin;
    const std::size_t end = i + 1 < levels_.size() ? levels_[i + 1].trace_begin : trace_.size();
    return refiner_.individualise_and_compare(candidate, std::span(trace_).subspan(begin, end - begin));
  }

  // Tries to record an automorphism that the two sides show. After a failed attempt, the next one waits until
  // twice as many splits have been made, so that attempts cost no more than the refinements.
  bool attempt_generator(const OrderedPartition& left, int top, bool is_last) {
    const int splits = partition_.split_count() - levels_[top].splits;
    if (splits < next_attempt_ && !is_last) return false;
    next_attempt_ = 2 * splits;
    partial_image_.allow_dense_clues(refiner_.work() / kSearchEdgesPerDenseClue);
    if (!partial_image_.read(left, partition_, levels_[top].splits, moves_) ||
        !check_.is_automorphism(moves_)) {
      return false;
    }
    partial_image_.note_success();
    for (const auto& [point, image] : moves_) orbits_.unite(point, image);
    group_.generators.push_back(moves_);
    return true;
  }

  // Returns the choice that moves the fewest vertices: v(i) itself, or else the end of the run of pairs that
  // leads to v(i).
  int first_candidate(int i) {
    Level& level = levels_[i];
    const int v = end_of_run(end_, partition_, level.vertex);
    level.preferred = partition_.cell_of(v) == level.cell ? v : partition_.vertex_at(level.cell);
    level.tries = 1;
    level.latest = -1;
    return level.preferred;
  }

  // Returns the deepest level with a candidate left, from level i up to the one below `top`, and this
  // candidate; -1 for none. A node that an automorphism carries to the first path's node at the same level
  // has as many good candidates as v(i)'s orbit is long, so one of any (cell length - orbit length + 1) is
  // good.
  std::pair<int, int> backtrack(int i, int top) {
    for (; i > top; --i) {
      Level& level = levels_[i];
      partition_.undo(level.splits);
      if (budget_.is_spent()) break;
      budget_.spend(static_cast<std::size_t>(level.length));
      if (level.tries > level.length - level.orbit_length) continue;
      ++level.tries;
      level.latest = partition_.next_member(level.cell, level.latest, level.preferred);
      if (level.latest >= 0) return {i, level.latest};
    }
    return {-1, -1};
  }

  BallHashes& balls_;
  PointVector<std::uint64_t>& keys_;
  WorkBudget& budget_;
  AutomorphismGroup group_;
  PointVector<Level> levels_;
  Trace trace_;                 // of the first path
  OrderedPartition partition_;  // the right side
  Refiner refiner_;
  OrderedPartition end_;  // of the first path
  PairedDescent descent_;
  SubtreeMatch subtrees_;
  PartialImage partial_image_;
  AutomorphismCheck check_;
  SearchOrbits orbits_;
  SearchLimits limits_;
  int max_descent_failures_;  // 1 at most once a descent has had more
  SparsePermutation moves_;   // the current guess
  int next_attempt_ = 0;      // the number of splits that it needs
  std::size_t failed_work_ = 0;
};

}  // namespace

AutomorphismGroup search_paths(const ColouredGraph& graph, const SearchLimits& limits) {
  if (is_rigid_by_hashes(graph)) return {};
  BallHashes balls(graph);
  PointVector<std::uint64_t> keys = colour_keys(graph);
  WorkBudget budget(limits.max_work);
  for (;;) {
    if (auto group = PathSearch(graph, balls, keys, limits, budget).run()) return *std::move(group);
  }
}

}  // namespace symfold::detail
