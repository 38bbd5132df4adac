// The greedy search of a detector by a plan (move_plan.h): the same labels, and the same contents of the
// detector's members afterwards, as the search step by step leaves.

#ifndef SYMFOLD_DETECTOR_LABELLING_PLANNED_SEARCH_H
#define SYMFOLD_DETECTOR_LABELLING_PLANNED_SEARCH_H

#include <memory>
#include <span>
#include <vector>

#include "detector/labelling/chosen_moves.h"
#include "detector/labelling/move_plan.h"
#include "detector/symmetry_detection.h"

namespace symfold::detail {

class PlannedSearch {
 public:
  // A search over the detector's static tables, which must stay as they are while it is in use. Returns null
  // if there is no plan for them.
  static std::unique_ptr<PlannedSearch> make(const SymmetryDetection& detector);

  // Returns true if the detector's members are still those that the plan was made for: Bases, num_partitions,
  // TotalStateSize, the arrays of the static tables, and what these arrays hold of bases, sizes and offsets.
  // The records behind static_vperms are not compared. A permutation that is to be composed must have entries
  // of 16 bits.
  bool applies(const SymmetryDetection& detector, bool composes) const;

  // Leaves the label in af_current_state and af_best_state, what was chosen in af_choice and, if it composes,
  // the composed permutation in af_best_perm, which must hold the identity.
  void run(SymmetryDetection& detector, const void* state, bool composes);

  // Writes the witness of the last search; see SymmetryDetection::FindWitness.
  void find_witness(std::span<const int> choices, short* witness);

 private:
  PlannedSearch(std::unique_ptr<const MovePlan> plan, std::vector<std::span<const ValPerms>> records_of_base,
                const SymmetryDetection& detector);

  void fill_orbits(std::span<const ValPerms> records);
  void fill_work_buffers(SymmetryDetection& detector, bool composes) const;

  std::unique_ptr<const MovePlan> plan_;
  MoveSearch search_;
  ChosenMoves moves_;
  // What the plan was made for.
  std::vector<int> bases_;
  std::vector<int> record_counts_;
  std::vector<const ValPerms*> records_;
  std::vector<int> sizes_;
  std::vector<int> offsets_;
  // What the search step by step leaves in the work buffers for every state.
  std::vector<int> orbits_;
  std::vector<short> last_perm_;
  std::vector<short> inverse_;  // work space for witnesses
  std::vector<short> scratch_;
};

}  // namespace symfold::detail

#endif  // SYMFOLD_DETECTOR_LABELLING_PLANNED_SEARCH_H
