// Exact labels: the largest image of a state under the whole symmetry group.
//
// Two states have the same exact label if and only if a symmetry carries one onto the other. The label does
// not depend on the generators, on the machine or on the version.

#ifndef SYMFOLD_DETECTOR_EXACT_LABELLER_H
#define SYMFOLD_DETECTOR_EXACT_LABELLER_H

#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

#include "detector/symmetry_detection.h"
#include "engines/largest_image/image_search.h"
#include "engines/largest_image/recognition.h"

namespace symfold {

// The group of a detector's tables and how its largest images are found. Only read once it is made: any
// number of labellers, each on a thread of its own, share it.
class ExactGroup {
 public:
  // Of a detector after TrimPermutations or ReadPermFile; keeps no reference to it. Cost: that of recognise,
  // recognition.h. Throws std::invalid_argument where an entry of the tables is no permutation
  // that keeps the partitions' sizes, std::length_error where no way is known that fits the bounds.
  explicit ExactGroup(const SymmetryDetection& detector, const detail::SearchBounds& bounds = {});

 private:
  friend class ExactLabeller;

  struct Partition {
    std::size_t offset;  // bytes
    std::size_t size;
  };

  std::vector<Partition> partitions_;
  std::size_t state_size_ = 0;
  std::unique_ptr<const detail::ImageSearch> search_;  // null for the trivial group
};

class ExactLabeller {
 public:
  // The group must outlive the labeller.
  explicit ExactLabeller(const ExactGroup& group);

  std::size_t state_size() const { return group_.state_size_; }  // bytes

  // Writes the label of `state` to `label`, which may be the same: of all images of the state under the group
  // the largest, bytes in memcmp order. False where a bound on the work was exceeded: then the label is an
  // image of the state, but a larger one may exist. Allocates nothing but for growing work space.
  bool find(const void* state, void* label);

  // Writes a permutation of the partitions that carries the state labelled last onto its label, the identity
  // before any is: the bytes of partition c go to the place of partition witness[c].
  void find_witness(short* witness) const;

  // Labels found so far, and those that are not known to be exact.
  std::size_t label_count() const { return label_count_; }
  std::size_t inexact_count() const { return inexact_count_; }

 private:
  void load(const unsigned char* state);
  void rank_long_partitions(const unsigned char* state);

  const ExactGroup& group_;
  std::unique_ptr<detail::ImageSearch> search_;
  std::vector<detail::Placed> word_;
  std::vector<unsigned char> image_;
  std::vector<std::uint32_t> long_partitions_;  // of more than 8 bytes
  std::size_t label_count_ = 0;
  std::size_t inexact_count_ = 0;
};

}  // namespace symfold

#endif  // SYMFOLD_DETECTOR_EXACT_LABELLER_H
