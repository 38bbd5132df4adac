// Exact labels: a canonical image of a state under the whole symmetry group.
//
// Two states have the same exact label if and only if a symmetry carries one onto the other. The label
// depends on the group and the state alone: not on the generators, nor on the order in which they were found,
// nor on the machine.
//
// It is the largest image for groups with few elements, for direct products of such groups, and for
// interchangeable parts whose partitions are interleaved in one pattern and have such groups inside. States
// are compared byte by byte, as memcmp does. So in a variable of two bytes, little endian, the low byte
// counts first: 256 is less than 1. Other groups have another canonical image, in general not the largest;
// engines/largest_image/recognition.h says which search a group gets.
//
// A group that is only a part of all symmetries makes labels that are canonical under this part, and none is
// called exact.

#ifndef SYMFOLD_DETECTOR_EXACT_LABELLER_H
#define SYMFOLD_DETECTOR_EXACT_LABELLER_H

#include <cstddef>
#include <memory>
#include <span>
#include <vector>

#include "detector/labeller.h"
#include "detector/labelling_tables.h"
#include "engines/group/permutation_group.h"

namespace symfold {

namespace detail {
class ImageSearch;
struct Placed;
struct SearchBounds;
}  // namespace detail

// A group and how its canonical images are found. Only read once it is made: any
// number of labellers, each on a thread of its own, share it.
class ExactGroup {
 public:
  // A group of the partitions of a state, which follow each other and have so many bytes each. Keeps no
  // reference to them. Cost: near-linear in the supports of the group's generators for interchangeable parts,
  // rings and products of these; for groups that are listed, their elements times the partitions; for others
  // that of a search for their structure. Throws std::invalid_argument if the sizes are not one for each
  // point, none below 0, equal for partitions that the group carries onto each other; std::length_error if no
  // way is known that fits into 256 MiB of tables.
  ExactGroup(const PermutationGroup& group, std::span<const int> sizes);
  ExactGroup(const PermutationGroup& group, std::span<const int> sizes, const detail::SearchBounds& bounds);

  // The group that the tables' permutations generate; see PermutationGroup::generated_by for the cost of its
  // proof. Besides throws std::invalid_argument if an entry of the tables is no permutation or leaves a gap
  // between partitions.
  explicit ExactGroup(const LabellingTables& tables);
  ExactGroup(const LabellingTables& tables, const detail::SearchBounds& bounds);
  ~ExactGroup();

 private:
  friend class ExactLabeller;

  struct Partition {
    std::size_t offset;  // bytes
    std::size_t size;
  };

  ExactGroup(const std::vector<int>& sizes, const LabellingTables& tables,
             const detail::SearchBounds& bounds);

  std::vector<Partition> partitions_;
  std::size_t state_size_ = 0;
  bool is_whole_;
  std::unique_ptr<const detail::ImageSearch> search_;  // null for the trivial group
};

class ExactLabeller final : public Labeller {
 public:
  // The group must outlive the labeller.
  explicit ExactLabeller(const ExactGroup& group);
  ~ExactLabeller() override;

  std::size_t state_size() const { return group_.state_size_; }  // bytes

  // Returns false if a bound on the work was exceeded, or if the group is not the whole one: then the label
  // is an image of the state, but another state of its class may have another label.
  bool find(const void* state, void* label) override;
  void find_witness(short* witness) override;
  std::size_t inexact_count() const override { return inexact_count_; }

 private:
  struct WorkSpace;

  void load(const unsigned char* state);
  void rank_long_partitions(const unsigned char* state);

  const ExactGroup& group_;
  std::unique_ptr<WorkSpace> work_;
  // What group and work space have, at hand.
  const ExactGroup::Partition* partitions_;
  std::size_t partition_count_;
  detail::ImageSearch* search_;  // null for the trivial group
  detail::Placed* values_;       // by partition
  unsigned char* image_;
  std::size_t inexact_count_ = 0;
};

}  // namespace symfold

#endif  // SYMFOLD_DETECTOR_EXACT_LABELLER_H
