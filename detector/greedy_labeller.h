// Greedy labels: base by base, the largest image of a state under the stored permutations of one orbit.
//
// States with the same greedy label are symmetric. For cyclic and symmetric groups whose states are laid out
// in graph-node order there is one label for each class; for other groups and orders a class may have
// several.

#ifndef SYMFOLD_DETECTOR_GREEDY_LABELLER_H
#define SYMFOLD_DETECTOR_GREEDY_LABELLER_H

#include <cstddef>
#include <memory>
#include <vector>

#include "detector/labeller.h"
#include "detector/labelling_tables.h"

namespace symfold {

namespace detail {
class ChosenMoves;
class MovePlan;
class MoveSearch;
}  // namespace detail

// A detector's tables, made ready for greedy labels. Only read once it is made: any number of labellers, each
// on a thread of its own, share it.
class GreedyGroup {
 public:
  // What the tables view must outlive the group, unchanged. Takes 32 bytes for each record, 8 for each
  // stretch of the state and 4 for each partition that it moves; the cost is linear in the tables. Throws
  // std::invalid_argument if the tables are not bijections between partitions of equal size that follow each
  // other without gaps, or if there are more than 32,767 partitions; std::length_error if a state has more
  // than 128 MiB, or the group would take more than 4 GiB.
  explicit GreedyGroup(const LabellingTables& tables);
  ~GreedyGroup();

 private:
  friend class GreedyLabeller;

  std::size_t partition_count_;
  std::unique_ptr<const detail::MovePlan> plan_;
  std::unique_ptr<const detail::ChosenMoves> moves_;
};

class GreedyLabeller final : public Labeller {
 public:
  // The group must outlive the labeller.
  explicit GreedyLabeller(const GreedyGroup& group);
  ~GreedyLabeller() override;

  // Returns true: every greedy label is all that it promises to be. The same labels and witnesses as of
  // SymmetryDetection::FindCanonicalLabel and FindWitness.
  bool find(const void* state, void* label) override;
  void find_witness(short* witness) override;
  std::size_t inexact_count() const override { return 0; }

 private:
  const GreedyGroup& group_;
  std::unique_ptr<detail::MoveSearch> search_;
  std::vector<int> choices_;    // for each base, the record that the last label chose, -1 for none
  std::vector<short> inverse_;  // work space for witnesses
  std::vector<short> scratch_;
};

}  // namespace symfold

#endif  // SYMFOLD_DETECTOR_GREEDY_LABELLER_H
