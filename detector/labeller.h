// A way to label states, ready for any number of them.

#ifndef SYMFOLD_DETECTOR_LABELLER_H
#define SYMFOLD_DETECTOR_LABELLER_H

#include <cstddef>

namespace symfold {

// Nothing is allocated per state; one object serves one thread.
class Labeller {
 public:
  virtual ~Labeller() = default;

  // Writes the label of `state` to `label`, which may be the same; both as long as the detector's states.
  virtual void find(const void* state, void* label) = 0;

  // Writes a permutation of the partitions that carries the state labelled last onto its label: the bytes of
  // partition c go to the place of partition witness[c].
  virtual void find_witness(short* witness) = 0;

  // Of a labeller that promises one label for each class: the labels so far for which that is not sure.
  virtual std::size_t inexact_count() const { return 0; }
};

}  // namespace symfold

#endif  // SYMFOLD_DETECTOR_LABELLER_H
