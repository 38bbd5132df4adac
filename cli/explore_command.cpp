#include "cli/commands.h"

#include <algorithm>
#include <chrono>
#include <iostream>
#include <memory>
#include <new>
#include <nlohmann/json.hpp>
#include <optional>

#include "cli/exploration_report.h"
#include "cli/figures.h"
#include "cli/memory_cap.h"
#include "cli/model_input.h"
#include "cli/watch.h"
#include "host/export/chain_export.h"
#include "host/pictures/growth_plot.h"
#include "host/symmetry/certificate.h"
#include "host/symmetry/folding.h"

namespace symfold {
namespace {

class ExploreRun {
 public:
  ExploreRun(const ExploreOptions& options, const Streams& streams)
      : options_(options), streams_(streams), memory_(options.max_memory) {}

  int run();

 private:
  int explore_one();
  int explore_range(const ParameterRange& range);
  std::vector<ExplorationResult> explore_model(const ModelInput& input,
                                               const std::vector<Symmetry>& symmetries);
  ExplorationResult explore(const ComposedModel& model, Symmetry symmetry);
  ExplorationLimits limits() const;
  void export_chain(Exploration& exploration);
  void certify(Exploration& exploration, const ComposedModel& model, const Folding& folding,
               const ExplorationResult& result);
  void print_files();
  int report_endings(const std::vector<ExplorationResult>& results);

  const ExploreOptions& options_;
  const Streams& streams_;
  MemoryCap memory_;
  InterruptWatch interrupts_;
  const char* step_ = "";
  std::vector<std::string> files_;  // written
  bool needs_ctmc_switch_ = false;
  bool is_export_cut_ = false;  // a format could not show the chain
  std::optional<std::size_t> certified_transitions_;
};

GrowthPoint growth_point(const ParameterRange& range, std::size_t index,
                         const std::vector<ExplorationResult>& results) {
  GrowthPoint point{range.units(index), range.text(index), {}, {}};
  for (const ExplorationResult& result : results) {
    if (result.is_complete()) (result.is_folded() ? point.folded : point.full) = result.figures.states;
  }
  return point;
}

// A JSON number.
nlohmann::ordered_json json_number(const ParameterRange& range, std::size_t index) {
  if (range.decimals == 0) return range.units(index);
  return nlohmann::ordered_json::parse(range.text(index));
}

// The length of the longest value.
std::size_t width_of(const ParameterRange& range) {
  return std::max(range.text(0).size(), range.text(range.count - 1).size());
}

double seconds_since(std::chrono::steady_clock::time_point start) {
  return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

ExplorationLimits ExploreRun::limits() const {
  ExplorationLimits limits;
  limits.states = options_.max_states;
  limits.bytes = memory_.bytes_left();
  limits.seconds = options_.max_seconds;
  return limits;
}

ExplorationResult ExploreRun::explore(const ComposedModel& model, Symmetry symmetry) {
  const auto start = std::chrono::steady_clock::now();
  step_ = "finding symmetries";
  const Folding folding(model, symmetry, {options_.directory}, &streams_.err);
  const std::unique_ptr<Labeller> labeller = folding.make_labeller();
  const bool is_exported = !options_.exports.empty() && symmetry == options_.symmetry;
  ExplorationResult result;
  result.symmetry = symmetry;
  if (labeller) {
    result.group_order = group_order(folding.orbit_lengths());
    result.refused = lines_of(folding.refusals());
    result.group_order_text = group_order_text(folding.orbit_lengths());
    result.detection_seconds = seconds_since(start);
  }
  step_ = "exploring";
  Exploration exploration(model, folding.order(), labeller.get(), is_exported);
  {
    ProgressLine line(streams_, std::string("symmetry ") + to_string(symmetry), options_.quiet);
    result.ending = exploration.run(limits(), [&](const ExplorationFigures& figures) {
      line.show(figures);
      return !interrupts_.is_interrupted();
    });
  }
  result.figures = exploration.figures();
  if (labeller) result.inexact_labels = labeller->inexact_count();
  result.peak_memory = peak_memory();
  result.observables = exploration.observable_names();
  if (is_exported && result.is_complete()) export_chain(exploration);
  if (options_.check && symmetry == options_.symmetry && result.figures.expanded > 0) {
    certify(exploration, model, folding, result);
  }
  return result;
}

// After a limit those transitions are certified that were explored.
void ExploreRun::certify(Exploration& exploration, const ComposedModel& model, const Folding& folding,
                         const ExplorationResult& result) {
  const std::string file =
      options_.certificate.empty() ? options_.input.stem() + ".certificate" : options_.certificate;
  Certificate certificate(model, folding,
                          {file, result.group_order, options_.check_sample, result.inexact_labels > 0});
  if (!exploration.certify(certificate, [this] { return !interrupts_.is_interrupted(); })) return;
  certified_transitions_ = certificate.transition_count();
  files_.push_back(file);
}

void ExploreRun::export_chain(Exploration& exploration) {
  step_ = "exporting the chain";
  const MarkovChain chain = exploration.take_chain();
  needs_ctmc_switch_ = needs_ctmc_switch(chain);
  WrittenChain written = write_chain_set(chain, options_.exports);
  files_.insert(files_.end(), written.files.begin(), written.files.end());
  for (const std::string& refusal : written.refusals) streams_.err << "symfold: " << refusal << "\n";
  is_export_cut_ = !written.refusals.empty();
}

// The most folded state space first: it is the smallest one, and the peak of memory only rises.
std::vector<ExplorationResult> ExploreRun::explore_model(const ModelInput& input,
                                                         const std::vector<Symmetry>& symmetries) {
  step_ = "reading the model";
  const ComposedModel model = read_input(input, streams_);
  std::vector<ExplorationResult> results;
  for (auto symmetry = symmetries.rbegin(); symmetry != symmetries.rend(); ++symmetry) {
    if (!interrupts_.is_interrupted()) results.insert(results.begin(), explore(model, *symmetry));
  }
  return results;
}

// Says what was not completed. Returns the exit code.
int ExploreRun::report_endings(const std::vector<ExplorationResult>& results) {
  int code = is_export_cut_ ? kCheckFailed : kOk;
  for (const ExplorationResult& result : results) {
    if (result.is_complete()) continue;
    streams_.err << "symfold: " << ending_text(result) << "\n";
    if (result.ending == Ending::kMemoryLimit) RefusalWatch::note_told();
    code = std::max<int>(code, result.ending == Ending::kInterrupted ? kInterrupted : kLimitReached);
  }
  return code;
}

void ExploreRun::print_files() {
  for (const std::string& file : files_) streams_.out << "file  " << file << "\n";
  const bool has_matrix = std::any_of(files_.begin(), files_.end(),
                                      [](const std::string& file) { return file.ends_with(".tra"); });
  if (has_matrix && needs_ctmc_switch_) {
    streams_.out << "none of the first rates exceeds 1: open the .tra file with prism -ctmc, or it is taken "
                    "for a DTMC\n";
  }
}

int ExploreRun::explore_one() {
  const std::vector<ExplorationResult> results = explore_model(options_.input, options_.symmetries());
  int code = report_endings(results);
  if (options_.check && !certified_transitions_) {
    streams_.err << "symfold: no certificate is written\n";
    if (interrupts_.is_interrupted()) code = kInterrupted;
  }
  if (options_.json) {
    nlohmann::ordered_json json = {{"model", options_.input.model}};
    json.update(results_json(results));
    json["files"] = files_;
    if (certified_transitions_) json["certified_transitions"] = *certified_transitions_;
    streams_.out << json.dump(2) << "\n";
  } else {
    streams_.out << options_.input.model << "\n";
    print_results(streams_.out, results);
    print_files();
    if (certified_transitions_) {
      streams_.out << "check  passed: " << grouped(*certified_transitions_)
                   << " transitions, each carried onto its label by a symmetry of the composition\n";
    }
  }
  return code;
}

// Once a run hits a limit, larger values of the parameter are not tried with its symmetry: they take more.
int ExploreRun::explore_range(const ParameterRange& range) {
  std::vector<Symmetry> symmetries = options_.symmetries();
  int code = kOk;
  GrowthPlot plot{options_.input.stem(), range.name, {}};
  nlohmann::ordered_json json = {{"model", options_.input.model}, {"parameter", range.name}};
  nlohmann::ordered_json points = nlohmann::ordered_json::array();
  std::optional<RangeTable> table;
  if (!options_.json) table.emplace(streams_.out, range.name, width_of(range), options_.symmetries());
  for (std::size_t i = 0; i < range.count && !symmetries.empty() && streams_.out; ++i) {
    const std::vector<ExplorationResult> results = explore_model(options_.input.at(i), symmetries);
    if (options_.json) {
      points.push_back({{range.name, json_number(range, i)}});
      points.back().update(results_json(results));
    } else {
      table->print_row(range.text(i), results);
    }
    plot.points.push_back(growth_point(range, i, results));
    code = std::max(code, report_endings(results));
    if (code == kInterrupted) break;
    for (const ExplorationResult& result : results) {
      if (!result.is_complete()) std::erase(symmetries, result.symmetry);
    }
  }
  if (!streams_.out) return code;  // cut short: whoever runs the command says why
  if (!options_.plot.empty()) {
    write_growth_plot(plot, options_.plot);
    files_.push_back(options_.plot);
  }
  json["points"] = std::move(points);
  json["files"] = files_;
  if (options_.json) {
    streams_.out << json.dump(2) << "\n";
  } else {
    print_files();
  }
  return code;
}

int ExploreRun::run() {
  try {
    return options_.input.range ? explore_range(*options_.input.range) : explore_one();
  } catch (const std::bad_alloc&) {
    if (options_.max_memory == MemoryCap::kNone) throw;
    streams_.err << "symfold: error: memory limit of " << options_.max_memory << " bytes reached while "
                 << step_ << "\n";
    RefusalWatch::note_told();
    return kLimitReached;
  }
}

}  // namespace

std::vector<Symmetry> ExploreOptions::symmetries() const {
  if (compare) return {std::begin(kSymmetries), std::end(kSymmetries)};
  return {symmetry};
}

std::string option_error(const ExploreOptions& options) {
  const bool has_range = options.input.range.has_value();
  if (has_range && options.input.model == "-")
    return "a range of a constant's values needs a model in a file";
  if (has_range && !options.exports.empty()) return "--export is for one chain, not for a range of them";
  if (!has_range && !options.plot.empty())
    return "--plot needs a range of a constant's values, --const N=3..10";
  if (has_range && options.check) return "--check is for one exploration, not for a range of them";
  if (options.check && options.symmetry == Symmetry::kOff)
    return "--check needs labels, and --symmetry off makes none";
  for (const std::string& name : options.exports) {
    if (!is_export_format(name))
      return "--export " + name + ": expected one of the endings " + export_endings();
  }
  return "";
}

int run_explore(const ExploreOptions& options, const Streams& streams) {
  return ExploreRun(options, streams).run();
}

}  // namespace symfold
