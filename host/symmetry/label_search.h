// The two ways to label states by a detector's tables.

#ifndef SYMFOLD_HOST_SYMMETRY_LABEL_SEARCH_H
#define SYMFOLD_HOST_SYMMETRY_LABEL_SEARCH_H

#include "detector/exact_labeller.h"
#include "detector/labeller.h"
#include "detector/symmetry_detection.h"

namespace symfold {

// The detector's own greedy search. Allocates the search buffers of a detector that has its final tables, and
// releases them.
class LabelSearch : public Labeller {
 public:
  // The detector must outlive the search.
  explicit LabelSearch(SymmetryDetection& detector);
  ~LabelSearch() override;
  LabelSearch(const LabelSearch&) = delete;
  LabelSearch& operator=(const LabelSearch&) = delete;

  void find(const void* state, void* label) override {
    detector_.FindCanonicalLabel(const_cast<void*>(state), label, nullptr);
  }
  void find_witness(short* witness) override { detector_.FindWitness(witness); }

 private:
  SymmetryDetection& detector_;
};

// One label for each class: the largest image of a state.
class ExactLabelSearch : public Labeller {
 public:
  // Keeps no reference to the detector. Throws GroupLimitError where the group is too large for exact labels.
  explicit ExactLabelSearch(const SymmetryDetection& detector);

  void find(const void* state, void* label) override { labeller_.find(state, label); }
  void find_witness(short* witness) override { labeller_.find_witness(witness); }
  std::size_t inexact_count() const override { return labeller_.inexact_count(); }

 private:
  ExactGroup group_;
  ExactLabeller labeller_;
};

}  // namespace symfold

#endif  // SYMFOLD_HOST_SYMMETRY_LABEL_SEARCH_H
