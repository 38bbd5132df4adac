#include "host/symmetry/detection_run.h"

#include <chrono>
#include <filesystem>
#include <fstream>
#include <ostream>
#include <unordered_map>

#include "host/language/model_description.h"
#include "host/model/model_error.h"
#include "host/symmetry/detection_log.h"

namespace symfold {

void require_countable_partitions(const ComposedModel& model) {
  if (model.partition_count() <= kMaxPartitions) return;
  throw ModelError(model.description->source->name(),
                   "expected at most " + std::to_string(kMaxPartitions) +
                       " submodels and joins together, got " + std::to_string(model.submodels.size()) +
                       " submodels and " + std::to_string(model.joins.size()) + " joins");
}

void write_types(const ComposedModel& model, std::ostream& out) {
  out << model.submodels.size() << '\n';
  for (const Submodel& submodel : model.submodels) {
    out << submodel.name << ' ' << model.instance_of(submodel).token << '\n';
  }
}

namespace {

namespace fs = std::filesystem;

// The detector's files have fixed names in the current directory.
class WorkingDirectory {
 public:
  explicit WorkingDirectory(const std::string& directory) : before_(fs::current_path()) {
    std::error_code error;
    fs::create_directories(directory, error);
    if (!error) fs::current_path(directory, error);
    if (error) throw std::runtime_error(directory + ": error: no run directory: " + error.message());
  }
  ~WorkingDirectory() {
    std::error_code error;
    fs::current_path(before_, error);
  }
  WorkingDirectory(const WorkingDirectory&) = delete;
  WorkingDirectory& operator=(const WorkingDirectory&) = delete;

 private:
  fs::path before_;
};

// Files of an earlier run must not be taken for this one's.
void remove_old_files(const std::string& directory) {
  for (const char* name : {"types", "model_comp_graph", "mcg.viz", "detection.log", "permutations"}) {
    std::error_code error;
    fs::remove(name, error);
    if (error)
      throw std::runtime_error(directory + "/" + name + ": error: cannot be replaced: " + error.message());
  }
}

}  // namespace

template <class Step>
void DetectionRun::timed(const char* name, Step step) {
  const auto start = std::chrono::steady_clock::now();
  step();
  phases_.push_back({name, std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count()});
}

DetectionRun::DetectionRun(const ComposedModel& model, const std::string& directory, bool writes_log)
    : records_(model), detector_(records_.wrapper()) {
  require_countable_partitions(model);
  const WorkingDirectory here(directory);
  remove_old_files(directory);
  std::ofstream types("types");
  write_types(model, types);
  types.close();
  if (!types) throw std::runtime_error(directory + "/types: error: cannot be written");
  const DetectionLog log(writes_log ? "detection.log" : "");
  timed("graph and group", [&] { detector_.FindMCG(); });
  if (!detector_.HasWholeGroup) {
    throw GroupLimitError(
        "error: the symmetry group could not be listed or tabulated, as the line above says");
  }
  timed("tables", [&] { make_tables(model); });
  timed("check", [&] { detector_.VerifySymmetries(unsound_reason_); });
  if (!is_sound()) return;
  std::string name = "permutations";
  timed("save", [&] { detector_.WritePermFile(name); });
  if (!detector_.PermFileError.empty()) throw std::runtime_error(directory + "/" + detector_.PermFileError);
}

void DetectionRun::require_sound() const {
  if (!is_sound()) throw UnsoundSymmetryError("error: the symmetries found do not hold: " + unsound_reason_);
}

void DetectionRun::make_tables(const ComposedModel& model) {
  std::unordered_map<std::string, int> bytes;
  for (const Submodel& submodel : model.submodels) {
    bytes[submodel.name] = model.instance_of(submodel).byte_size();
  }
  for (ModelCompGraphNode& node : detector_.GraphNodes) {
    if (const auto found = bytes.find(node.Name); found != bytes.end()) node.StateSize = found->second;
  }
  detector_.CreatePartitionInfo();
  detector_.SSOrder = detector_.GNOrder;
  detector_.ShrinkPermutations();
  detector_.AdjustPermutations();
  detector_.AdjustPartitionInfo();
  detector_.TrimPermutations();
}

}  // namespace symfold
