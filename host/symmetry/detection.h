// The whole detection of a composed model, in memory.

#ifndef SYMFOLD_HOST_SYMMETRY_DETECTION_H
#define SYMFOLD_HOST_SYMMETRY_DETECTION_H

#include <cstdint>
#include <iosfwd>
#include <string>
#include <vector>

#include "detector/symmetry_detection.h"
#include "host/model/composed_model.h"
#include "host/symmetry/folding.h"
#include "host/symmetry/wrapper_model.h"

namespace symfold {

class RunDirectory;

// Throws ModelError if there are more partitions than the detector can number.
void require_countable_partitions(const ComposedModel& model);

// The list of submodels that the detector reads: their number, then a name and a type instance per line.
void write_types(const ComposedModel& model, std::ostream& out);

// What labels are made from: the group alone for exact ones, tables for greedy ones and permutation files.
enum class DetectionGoal : std::uint8_t { kGroup, kTables };

// Runs a detector over a model. States are laid out in graph-node order, so that base order and byte order
// agree. Reads and writes no file but those of the run directory, if there is one, and shares nothing with
// other detections.
class Detection {
 public:
  // Leaves the files types, model_comp_graph, mcg.viz, permutations and, if wanted, detection.log in the run
  // directory, if it is not null. permutations is left out if the symmetries are not sound.
  // Requires: the model has no more partitions than the detector can number. Throws GroupLimitError if the
  // tables are too large, and what RunDirectory throws. Unless it is thrown
  // while the files are published, an earlier set of files stays as it is. What the detector refuses goes to
  // `refusals`, if it is not null, even if an exception ends the detection.
  // Without tables, no permutations are saved, and time and memory are near-linear in the model and in what
  // the generators move.
  Detection(const ComposedModel& model, RunDirectory* files, bool keeps_log, std::ostream* refusals = nullptr,
            DetectionGoal goal = DetectionGoal::kTables);

  // The detector with its final tables, silent from now on; the search buffers are not allocated.
  const SymmetryDetection& detector() const { return detector_; }
  SymmetryDetection& detector() { return detector_; }

  // The moves of the cells by the detector's strong generators, those that move no cell left out. They are
  // strong, too, in the base order of the cells. Meaningful if is_sound().
  PermutationList cell_generators() const;

  // True if the tables can be trusted for folding. If not, the reason says why.
  bool is_sound() const { return unsound_reason_.empty(); }
  const std::string& unsound_reason() const { return unsound_reason_; }

  // What the detector has refused, a line each.
  const std::string& refusals() const { return refusals_; }

  const std::vector<DetectionPhase>& phases() const { return phases_; }

 private:
  void detect(const ComposedModel& model, RunDirectory* files, const std::ostringstream& refused);
  void make_partitions(const ComposedModel& model);
  void make_tables();
  void save(const std::string& types, RunDirectory& files);
  template <class Step>
  void timed(const char* name, Step step);

  WrapperModel records_;
  SymmetryDetection detector_;
  DetectionGoal goal_;
  std::string unsound_reason_;
  std::string refusals_;
  std::vector<DetectionPhase> phases_;
};

}  // namespace symfold

#endif  // SYMFOLD_HOST_SYMMETRY_DETECTION_H
