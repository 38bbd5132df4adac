// A detector's tables, ready to label states.

#ifndef SYMFOLD_HOST_LABEL_SEARCH_H
#define SYMFOLD_HOST_LABEL_SEARCH_H

#include "detector/symmetry_detection.h"

namespace symfold {

// Allocates the search buffers of a detector that has its final tables, and releases them. Labels of the
// detector's state size in bytes; nothing is allocated per state; one search serves one thread.
class LabelSearch {
 public:
  // The detector must outlive the search.
  explicit LabelSearch(SymmetryDetection& detector);
  ~LabelSearch();
  LabelSearch(const LabelSearch&) = delete;
  LabelSearch& operator=(const LabelSearch&) = delete;

  // Writes the canonical label of `state` to `label`, which may be the same.
  void find(const void* state, void* label) {
    detector_.FindCanonicalLabel(const_cast<void*>(state), label, nullptr);
  }

 private:
  SymmetryDetection& detector_;
};

}  // namespace symfold

#endif  // SYMFOLD_HOST_LABEL_SEARCH_H
