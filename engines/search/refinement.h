// Refinement of an ordered partition until it is equitable: any two vertices of a cell have equally many
// edges into every cell. Vertices that such counts cannot tell apart stay together.
//
// A worklist holds the cells that may still tell vertices apart (splitters). For each, the edges into it are
// counted at its neighbours, and every cell whose members count differently is split. The largest part keeps
// the cell's place, and only the others join the worklist: counts into the largest follow from those into the
// whole (J. E. Hopcroft, An n log n algorithm for minimizing states in a finite automaton, 1971; for graphs:
// A. Cardon and M. Crochemore, Partitioning a graph in O(|A| log |V|), Theoretical Computer Science 19,
// 1982). Example: in the path a-b-c with one cell [a b c] as splitter, b counts 2 and a, c count 1: [a c][b].
// Cost: the edges of the splitters, plus sorting the touched vertices; never the untouched ones.
//
// Which cell is split at which position depends on lengths and counts only, never on vertex numbers. So two
// nodes of a search that an automorphism carries into each other are refined alike, event by event. The
// events of the first path are recorded in a trace. On other paths each event is compared as it happens, and
// the first difference ends the refinement (T. Junttila and P. Kaski, Engineering an efficient canonical
// labeling tool for large and sparse graphs, ALENEX 2007; B. D. McKay and A. Piperno, Practical graph
// isomorphism, II, J. Symbolic Computation 60, 2014).

#ifndef SYMFOLD_ENGINES_SEARCH_REFINEMENT_H
#define SYMFOLD_ENGINES_SEARCH_REFINEMENT_H

#include <cstddef>
#include <cstdint>
#include <span>
#include <utility>
#include <vector>

#include "engines/graph/coloured_graph.h"
#include "engines/search/ordered_partition.h"
#include "engines/search/work_budget.h"

namespace symfold::detail {

using Trace = std::vector<std::uint64_t>;

// Returns keys, by vertex, that tell vertices of different colours or loop counts apart.
PointVector<std::uint64_t> colour_keys(const ColouredGraph& graph);

class Refiner {
 public:
  // All must outlive the refiner. Once the budget is spent, every refinement ends: the partition is then not
  // equitable, comparing returns false, and what has been recorded is no trace.
  Refiner(const ColouredGraph& graph, OrderedPartition& partition, WorkBudget& budget);

  // Splits the one initial cell by the vertices' keys, in ascending order, and makes the partition equitable.
  void refine_by(const PointVector<std::uint64_t>& keys);

  // Cuts v, a member of a larger cell, off to the back of its cell, and makes the partition equitable again.
  // The events are appended to the trace.
  void individualise_and_record(int v, Trace& trace);

  // Does the same and compares the events with a trace. Returns false at the first difference; the partition
  // is then not equitable, and the caller has to undo the splits.
  bool individualise_and_compare(int v, std::span<const std::uint64_t> trace);

  // The number of edges examined so far.
  std::size_t work() const { return work_; }

 private:
  void individualise(int v);
  bool run();
  bool apply_splitter(int splitter);
  void count_edge_to(int v, std::uint64_t count);
  bool split_touched_cells();
  bool split_by_count(int cell);
  void gather_tail(int cell, int length);
  void sort_tail(std::uint64_t min_count, std::uint64_t max_count);
  bool arrange_groups(int cell, int untouched);
  bool record_or_compare(std::uint64_t event);
  void enqueue(int cell);
  void clear_work();

  const ColouredGraph& graph_;
  OrderedPartition& partition_;
  WorkBudget& budget_;

  Trace* recorded_ = nullptr;                // null while comparing
  std::span<const std::uint64_t> expected_;  // the rest of the trace to compare with

  std::size_t work_ = 0;
  std::vector<int> queue_;
  std::size_t queue_head_ = 0;
  PointVector<char> is_queued_;

  // The current splitter's work, all zero or empty between splitters.
  PointVector<std::uint64_t> count_;  // by vertex: edges into the splitter
  PointVector<int> touched_;          // by cell: members with a count; they stand at the cell's end
  std::vector<int> touched_cells_;    // cells of several members, some of them touched
  std::vector<int> splitter_members_;
  std::vector<std::size_t> ends_;  // of the groups of equal count
  std::vector<std::pair<std::uint64_t, int>> sorted_tail_;
  std::vector<std::pair<std::uint64_t, int>> tail_;  // (count, vertex) of the members being split
  std::vector<std::pair<int, int>> groups_;          // of equal count in tail_: begin and end
  std::uint64_t unsplit_hash_ = 0;  // commutative, over the touched cells and parts that keep their place
};

}  // namespace symfold::detail

#endif  // SYMFOLD_ENGINES_SEARCH_REFINEMENT_H
