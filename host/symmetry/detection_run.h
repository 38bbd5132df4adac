// The whole detection of a composed model, in a directory of its own.

#ifndef SYMFOLD_HOST_SYMMETRY_DETECTION_RUN_H
#define SYMFOLD_HOST_SYMMETRY_DETECTION_RUN_H

#include <iosfwd>
#include <stdexcept>
#include <string>
#include <vector>

#include "detector/symmetry_detection.h"
#include "host/model/composed_model.h"
#include "host/symmetry/wrapper_model.h"

namespace symfold {

// Partitions are numbered by 16-bit numbers.
inline constexpr std::size_t kMaxPartitions = 32767;

// Throws ModelError where there are more partitions than the detector can number.
void require_countable_partitions(const ComposedModel& model);

// The list of submodels that the detector reads: their number, then a name and a type instance per line.
void write_types(const ComposedModel& model, std::ostream& out);

struct DetectionPhase {
  std::string name;
  double seconds;
};

// The symmetry group could not be listed, or its tables are too large; the detector has reported which.
class GroupLimitError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

// The symmetries found cannot be trusted for folding.
class UnsoundSymmetryError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

// Runs detection and leaves the files types, model_comp_graph, mcg.viz, permutations and, if wanted,
// detection.log. States are laid out in graph-node order, so that base order and byte order agree. The
// process works in the run directory while the constructor runs.
class DetectionRun {
 public:
  // Throws ModelError for a model of too many partitions, std::runtime_error where the directory or a file in
  // it cannot be written.
  DetectionRun(const ComposedModel& model, const std::string& directory, bool writes_log);

  // The detector with its final tables; the search buffers are not allocated yet.
  SymmetryDetection& detector() { return detector_; }
  const SymmetryDetection& detector() const { return detector_; }

  // Whether the tables can be trusted for folding, and if not, why. The permutation file is written only if
  // so.
  bool is_sound() const { return unsound_reason_.empty(); }
  const std::string& unsound_reason() const { return unsound_reason_; }

  // Throws UnsoundSymmetryError with the reason.
  void require_sound() const;

  const std::vector<DetectionPhase>& phases() const { return phases_; }

 private:
  void make_tables(const ComposedModel& model);
  template <class Step>
  void timed(const char* name, Step step);

  WrapperModel records_;
  SymmetryDetection detector_;
  std::string unsound_reason_;
  std::vector<DetectionPhase> phases_;
};

}  // namespace symfold

#endif  // SYMFOLD_HOST_SYMMETRY_DETECTION_RUN_H
