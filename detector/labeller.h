// What labels states: the one interface behind which greedy and exact labels stand.

#ifndef SYMFOLD_DETECTOR_LABELLER_H
#define SYMFOLD_DETECTOR_LABELLER_H

#include <cstddef>

namespace symfold {

// Labels any number of states. Allocates nothing per state, but for work space that grows with the first
// ones.
//
// Threads: one labeller serves one thread. Labellers of one group, each on a thread of its own, share it.
class Labeller {
 public:
  virtual ~Labeller() = default;

  // Writes the label of `state` to `label`, which may be the same. Both have as many bytes as the tables'
  // partitions together. The label is an image of the state under the symmetry group, so it is a state of the
  // same class. Returns false if the label is not known to be all that this kind of labeller promises.
  virtual bool find(const void* state, void* label) = 0;

  // Writes a permutation of the partitions that carries the state labelled last onto its label, the identity
  // before any is: the bytes of partition c go to the place of partition witness[c]. Needs room for an entry
  // for each partition.
  virtual void find_witness(short* witness) = 0;

  // The number of labels so far for which find returned false.
  virtual std::size_t inexact_count() const = 0;
};

}  // namespace symfold

#endif  // SYMFOLD_DETECTOR_LABELLER_H
