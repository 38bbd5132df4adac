// A detector loaded from a permutation file, ready to label states.

#ifndef SYMFOLD_HOST_SYMMETRY_STATE_LABELLER_H
#define SYMFOLD_HOST_SYMMETRY_STATE_LABELLER_H

#include <memory>
#include <string>
#include <vector>

#include "detector/labeller.h"
#include "detector/symmetry_detection.h"

namespace symfold {

// Labels states of state_size() bytes each. Allocates nothing per state; one object serves one thread.
class StateLabeller {
 public:
  // Reads and checks the file. Labels are exact ones or those of the greedy search. Throws std::runtime_error
  // with one line that says what is wrong and where, GroupLimitError where the group is too large for exact
  // labels.
  StateLabeller(const std::string& perm_file, bool is_exact);

  int state_size() const { return detector_.TotalStateSize; }
  int partition_count() const { return detector_.num_partitions; }
  const SymmetryDetection& detector() const { return detector_; }

  // Writes the canonical label of `state` to `label`, state_size() bytes each.
  void label(const unsigned char* state, unsigned char* label) { labeller_->find(state, label); }

  // The labels so far of which it is not sure that they are exact.
  std::size_t inexact_count() const { return labeller_->inexact_count(); }

  // The permutation of the partitions that carries the state labelled last onto its label. Applies it to
  // `state` and compares with `label`; throws std::logic_error where they differ.
  const std::vector<short>& checked_witness(const unsigned char* state, const unsigned char* label);

 private:
  SymmetryDetection detector_;
  std::unique_ptr<Labeller> labeller_;
  std::vector<unsigned char> image_;
  std::vector<short> witness_;
};

}  // namespace symfold

#endif  // SYMFOLD_HOST_SYMMETRY_STATE_LABELLER_H
