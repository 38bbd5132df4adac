// A way to label states, ready for any number of them.

#ifndef SYMFOLD_HOST_SYMMETRY_LABELLING_H
#define SYMFOLD_HOST_SYMMETRY_LABELLING_H

#include <cstddef>

namespace symfold {

// Nothing is allocated per state; one object serves one thread.
class Labelling {
 public:
  virtual ~Labelling() = default;

  // Writes the label of `state` to `label`, which may be the same; both as long as the detector's states.
  virtual void find(const void* state, void* label) = 0;

  // Writes a permutation of the partitions that carries the state labelled last onto its label: the bytes of
  // partition c go to the place of partition witness[c].
  virtual void find_witness(short* witness) = 0;

  // Of a labelling that promises one label for each class: the labels so far for which that is not sure.
  virtual std::size_t inexact_count() const { return 0; }
};

}  // namespace symfold

#endif  // SYMFOLD_HOST_SYMMETRY_LABELLING_H
