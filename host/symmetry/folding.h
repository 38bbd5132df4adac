// The main job: a model in; its symmetries, and labellers that fold its states by them, out.
//
//     const Folding folding(model, Symmetry::kExact);
//     const std::unique_ptr<Labeller> labeller = folding.make_labeller();
//     labeller->find(state, label);

#ifndef SYMFOLD_HOST_SYMMETRY_FOLDING_H
#define SYMFOLD_HOST_SYMMETRY_FOLDING_H

#include <cstddef>
#include <cstdint>
#include <iosfwd>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "detector/labeller.h"
#include "host/symmetry/symmetry_error.h"

namespace symfold {

struct ComposedModel;
class Detection;
class SymmetryDetection;
struct PermTable;

// How states are folded: not at all, by greedy labels, or by exact ones.
enum class Symmetry : std::uint8_t { kOff, kFast, kExact };

inline constexpr Symmetry kSymmetries[] = {Symmetry::kOff, Symmetry::kFast, Symmetry::kExact};

// "off", "fast", "exact"; and back, nothing for any other text.
const char* to_string(Symmetry symmetry);
std::optional<Symmetry> symmetry_named(std::string_view name);

struct DetectionPhase {
  std::string name;
  double seconds;
};

// Which files a folding leaves behind.
struct FoldingFiles {
  std::string directory;   // empty: none
  bool keeps_log = false;  // detection.log too
};

// Threads: foldings share nothing, so any number of them may be made and used side by side; neither the
// process's streams nor its working directory are touched. The const members of one folding may be called
// from any number of threads. A labeller serves one thread, and the folding must outlive it.
class Folding {
 public:
  // Finds the symmetries of the model; with Symmetry::kOff does nothing. Keeps no reference to the model.
  // Without a directory no file is read or written. With one, which is made if there is none, the set of
  // files is published at the end, in place of an earlier one (run_directory.h); if an exception ends the
  // detection before, the earlier set stays. Symmetries that are not sound are no error here. Throws
  // ModelError if the model has more than 32,767 submodels and joins, GroupLimitError if the group could not
  // be tabulated, std::runtime_error if the files cannot be written. What the detector refuses goes
  // to `refusals`, if it is not null, a line each, even if an exception ends the detection.
  Folding(const ComposedModel& model, Symmetry symmetry, const FoldingFiles& files = {},
          std::ostream* refusals = nullptr);

  // Takes the symmetries from a permutation file, and the file at its word that they are symmetries of the
  // model, and all of them. Checked are numbers, points and sizes (perm_table.h). Throws std::runtime_error
  // with one line that says what is wrong with the file and where.
  Folding(const std::string& perm_file, Symmetry symmetry);

  ~Folding();
  Folding(const Folding&) = delete;
  Folding& operator=(const Folding&) = delete;

  Symmetry symmetry() const { return symmetry_; }

  // True if the symmetries can be trusted. If not, the reason says why, and require_sound throws
  // UnsoundSymmetryError with it.
  bool is_sound() const { return unsound_reason().empty(); }
  const std::string& unsound_reason() const;
  void require_sound() const;

  // The names of all submodels and joins in the order of their cells in the state vector. Empty without
  // folding, which leaves the model's own order, and for a permutation file, which holds no names.
  const std::vector<std::string>& order() const;

  // The sizes of the cells in bytes, in the same order, and their sum.
  const std::vector<int>& cell_sizes() const;
  std::size_t state_size() const;

  // The orbit lengths of the group's base. Their product is the order of the group. Empty without folding and
  // for a permutation file.
  const std::vector<int>& orbit_lengths() const;

  // What the detector has refused, a line each. If there is any, symmetric states may keep labels of their
  // own, and no label is called exact.
  const std::string& refusals() const;

  // The detector with its final tables, for whoever wants to know more of the graph, the group and its
  // generators (symmetry_names.h tells them in names). Null without folding and for a permutation file.
  const SymmetryDetection* detector() const;

  // The steps of the detection, in their order; none without one.
  const std::vector<DetectionPhase>& phases() const;

  // A labeller of the folding's kind; null for Symmetry::kOff. The first call makes what all labellers share
  // (greedy_labeller.h, exact_labeller.h tell the cost). Throws UnsoundSymmetryError if the symmetries are
  // not sound, GroupLimitError if the group or a state is too large for this kind of labels.
  std::unique_ptr<Labeller> make_labeller() const;

 private:
  struct Group;

  void make_group() const;

  Symmetry symmetry_;
  std::unique_ptr<const Detection> detection_;
  std::unique_ptr<const PermTable> table_;
  std::unique_ptr<Group> group_;
};

}  // namespace symfold

#endif  // SYMFOLD_HOST_SYMMETRY_FOLDING_H
