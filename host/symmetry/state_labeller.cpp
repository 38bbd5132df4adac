#include "host/symmetry/state_labeller.h"

#include <algorithm>
#include <iostream>
#include <sstream>
#include <stdexcept>

#include "host/symmetry/detection_log.h"
#include "host/symmetry/label_search.h"

namespace symfold {
namespace {

// The detector reports a refused file on standard error too; here the exception carries the line.
class QuietErrors {
 public:
  QuietErrors() : before_(std::cerr.rdbuf(dropped_.rdbuf())) {}
  ~QuietErrors() { std::cerr.rdbuf(before_); }
  QuietErrors(const QuietErrors&) = delete;
  QuietErrors& operator=(const QuietErrors&) = delete;

 private:
  std::ostringstream dropped_;
  std::streambuf* before_;
};

}  // namespace

StateLabeller::StateLabeller(const std::string& perm_file, bool is_exact) {
  const DetectionLog silent("");
  std::string name = perm_file;
  {
    const QuietErrors quiet;
    detector_.ReadPermFile(name);
  }
  if (!detector_.PermFileError.empty()) throw std::runtime_error(detector_.PermFileError);
  std::string report;
  if (!detector_.VerifySymmetries(report)) throw std::runtime_error(name + ": error: " + report);
  detector_.DetermineTotalStateSize();
  detector_.num_partitions = static_cast<int>(detector_.PartitionInfo.size());
  if (is_exact) {
    labeller_ = std::make_unique<ExactLabelSearch>(detector_);
  } else {
    labeller_ = std::make_unique<LabelSearch>(detector_);
  }
  image_.resize(static_cast<std::size_t>(state_size()));
  witness_.resize(static_cast<std::size_t>(partition_count()));
}

const std::vector<short>& StateLabeller::checked_witness(const unsigned char* state,
                                                         const unsigned char* label) {
  labeller_->find_witness(witness_.data());
  for (std::size_t c = 0; c < witness_.size(); ++c) {
    const auto d = static_cast<std::size_t>(witness_[c]);
    std::copy_n(state + detector_.CumPartitionInfo[c], detector_.PartitionInfo[c],
                image_.begin() + detector_.CumPartitionInfo[d]);
  }
  if (!std::equal(image_.begin(), image_.end(), label)) {
    throw std::logic_error("the permutation found does not carry the state onto its label");
  }
  return witness_;
}

}  // namespace symfold
