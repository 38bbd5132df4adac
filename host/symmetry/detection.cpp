#include "host/symmetry/detection.h"

#include <chrono>
#include <sstream>
#include <stdexcept>
#include <unordered_map>

#include "host/language/model_description.h"
#include "host/model/model_error.h"
#include "host/symmetry/run_directory.h"
#include "host/symmetry/symmetry_error.h"

namespace symfold {

void require_countable_partitions(const ComposedModel& model) {
  if (model.cell_count() <= std::size_t{kMaxPartitions}) return;
  throw ModelError(model.description->source->name(),
                   "expected at most " + std::to_string(kMaxPartitions) +
                       " submodels and joins together, got " + std::to_string(model.submodels.size()) +
                       " submodels and " + std::to_string(model.joins.size()) + " joins");
}

void write_types(const ComposedModel& model, std::ostream& out) {
  out << std::to_string(model.submodels.size()) << '\n';
  for (const Submodel& submodel : model.submodels) {
    out << submodel.name << ' ' << model.instance_of(submodel).token << '\n';
  }
}

template <class Step>
void Detection::timed(const char* name, Step step) {
  const auto start = std::chrono::steady_clock::now();
  step();
  phases_.push_back({name, std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count()});
}

Detection::Detection(const ComposedModel& model, RunDirectory* files, bool keeps_log, std::ostream* refusals,
                     DetectionGoal goal)
    : records_(model), detector_(records_.wrapper()), goal_(goal) {
  std::ostringstream refused;
  refused.exceptions(std::ios::badbit);  // a failed allocation would cut what it is given
  detector_.SetRefusals(&refused);
  detector_.SetDiagnostics(files != nullptr && keeps_log ? &files->open_log() : nullptr);
  try {
    detect(model, files, refused);
  } catch (...) {
    if (refusals != nullptr) *refusals << refused.view();
    throw;
  }
  if (refusals != nullptr) *refusals << refused.view();
  detector_.SetDiagnostics(nullptr);
  detector_.SetRefusals(nullptr);
  refusals_ = refused.str();
}

void Detection::detect(const ComposedModel& model, RunDirectory* files, const std::ostringstream& refused) {
  std::stringstream types;
  types.exceptions(std::ios::badbit);
  write_types(model, types);
  if (goal_ == DetectionGoal::kGroup) {
    timed("graph and group", [&] { detector_.FindMCGGroup(types); });
    timed("cells", [&] {
      make_partitions(model);
      detector_.AdjustPartitionInfo();
    });
  } else {
    timed("graph and group", [&] { detector_.FindMCG(types); });
    if (detector_.TableLimit.empty()) {
      timed("tables", [&] {
        make_partitions(model);
        make_tables();
      });
    }
    if (!detector_.TableLimit.empty()) {
      throw GroupLimitError("error: the symmetry group could not be tabulated, as the line above says",
                            refused.str());
    }
  }
  timed("check", [&] { detector_.VerifySymmetries(unsound_reason_); });
  if (files != nullptr && is_sound()) {
    timed("save", [&] { save(types.str(), *files); });
  } else if (files != nullptr) {
    save(types.str(), *files);
  }
}

void Detection::make_partitions(const ComposedModel& model) {
  std::unordered_map<std::string, int> bytes;
  for (const Submodel& submodel : model.submodels) {
    bytes[submodel.name] = model.instance_of(submodel).byte_size();
  }
  for (ModelCompGraphNode& node : detector_.GraphNodes) {
    if (const auto found = bytes.find(node.Name); found != bytes.end()) node.StateSize = found->second;
  }
  detector_.KeepSoundGenerators();
  detector_.CreatePartitionInfo();
  detector_.SSOrder = detector_.GNOrder;
}

void Detection::make_tables() {
  detector_.ShrinkPermutations();
  detector_.AdjustPermutations();
  detector_.AdjustPartitionInfo();
  detector_.TrimPermutations();
}

// Each cell has one real node, and these come first: cell c is node c (a join of the model has one variable).
// Two generators with equal moves of cells differ in what moves no state. Restricted to the real nodes, the
// generators that fix all points below a base point generate the restricted stabiliser, because these points
// are real nodes themselves: so they stay strong. A product of sound generators is sound.
PermutationList Detection::cell_generators() const {
  const auto cell_count = static_cast<int>(detector_.GNOrder.size());
  PermutationList generators;
  SparsePermutation moves;
  for (const Permutation& generator : detector_.SGS) {
    moves.clear();
    generator.VisitMoves([&](int node, int image) {
      if (node < cell_count) moves.push_back({node, image});
    });
    if (!moves.empty()) generators.push_back(moves);
  }
  return generators;
}

void Detection::save(const std::string& types, RunDirectory& files) {
  const bool has_tables = goal_ == DetectionGoal::kTables && is_sound();
  const std::string fault = has_tables ? detector_.FindTableFault() : "";
  if (!fault.empty()) throw std::runtime_error("permutations: error: not written: " + fault);
  files.write("types", [&](std::ostream& out) { out << types; });
  files.write("model_comp_graph", [&](std::ostream& out) { detector_.PrintMCG(out); });
  files.write("mcg.viz", [&](std::ostream& out) { detector_.WriteMCGViz(out); });
  if (has_tables) files.write("permutations", [&](std::ostream& out) { detector_.WriteTables(out); });
  files.publish();
}

}  // namespace symfold
