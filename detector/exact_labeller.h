// Exact labels: the largest image of a state under the whole symmetry group.
//
// Two states have the same exact label if and only if a symmetry carries one onto the other. The label does
// not depend on the generators, on the machine or on the version. States are compared byte by byte, as memcmp
// does. So in a variable of two bytes, little endian, the low byte counts first: 256 is less than 1.
//
// Tables of which detection has refused a part generate a smaller group. Labels are then the largest images
// under that one, and none is called exact.

#ifndef SYMFOLD_DETECTOR_EXACT_LABELLER_H
#define SYMFOLD_DETECTOR_EXACT_LABELLER_H

#include <cstddef>
#include <memory>
#include <vector>

#include "detector/labeller.h"
#include "detector/labelling_tables.h"

namespace symfold {

namespace detail {
class ImageSearch;
struct Placed;
struct SearchBounds;
}  // namespace detail

// The group of a detector's tables and how its largest images are found. Only read once it is made: any
// number of labellers, each on a thread of its own, share it.
class ExactGroup {
 public:
  // Keeps no reference to the tables. Cost: groups that are listed, a composition for each element; others a
  // few times the square of an orbit's length, and the number of partitions for each record; groups of no
  // recognised kind, besides, a Schreier-Sims run. Throws std::invalid_argument if an entry of the tables is
  // no permutation that keeps the partitions' sizes, std::length_error if no way is known that fits into
  // 256 MiB of tables.
  explicit ExactGroup(const LabellingTables& tables);
  ExactGroup(const LabellingTables& tables, const detail::SearchBounds& bounds);
  ~ExactGroup();

 private:
  friend class ExactLabeller;

  struct Partition {
    std::size_t offset;  // bytes
    std::size_t size;
  };

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

  // Returns false if a bound on the work was exceeded, or if the tables are not those of the whole group:
  // then the label is an image of the state, but a larger one may exist.
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
