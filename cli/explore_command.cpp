#include "cli/explore_command.h"

#include <algorithm>
#include <chrono>
#include <iostream>
#include <memory>
#include <nlohmann/json.hpp>
#include <optional>

#include "cli/exit_codes.h"
#include "cli/exploration_report.h"
#include "cli/figures.h"
#include "cli/interrupt.h"
#include "cli/parameter_range.h"
#include "cli/progress_line.h"
#include "host/export/chain_export.h"
#include "host/pictures/growth_plot.h"
#include "host/symmetry/detection_run.h"
#include "host/symmetry/label_search.h"

namespace symfold {
namespace {

// A model's symmetries, ready for folding.
class Folding {
 public:
  Folding(const ComposedModel& model, const std::string& directory, const std::string& symmetry)
      : run_(model, directory, false) {
    run_.require_sound();
    if (symmetry == "exact") {
      labeller_ = std::make_unique<ExactLabelSearch>(run_.detector());
    } else {
      labeller_ = std::make_unique<LabelSearch>(run_.detector());
    }
  }

  const SymmetryDetection& detector() const { return run_.detector(); }
  Labeller& labeller() { return *labeller_; }

 private:
  DetectionRun run_;
  std::unique_ptr<Labeller> labeller_;
};

class ExploreRun {
 public:
  ExploreRun(const ExploreOptions& options, const Streams& streams) : options_(options), streams_(streams) {}

  int run();

 private:
  int explore_one();
  int explore_range(const ParameterRange& range);
  std::vector<ExplorationResult> explore_model(const ModelInput& input,
                                               const std::vector<std::string>& symmetries);
  ExplorationResult explore(const ComposedModel& model, const std::string& symmetry);
  ExplorationLimits limits() const;
  void export_chain(Exploration& exploration);
  void print_files();
  int report_endings(const std::vector<ExplorationResult>& results);

  const ExploreOptions& options_;
  const Streams& streams_;
  InterruptWatch interrupts_;
  std::vector<std::string> files_;  // written
  bool needs_ctmc_switch_ = false;
};

GrowthPoint growth_point(long value, const std::vector<ExplorationResult>& results) {
  GrowthPoint point{value, {}, {}};
  for (const ExplorationResult& result : results) {
    if (result.is_complete()) (result.is_folded() ? point.folded : point.full) = result.figures.states;
  }
  return point;
}

double seconds_since(std::chrono::steady_clock::time_point start) {
  return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

ExplorationLimits ExploreRun::limits() const {
  const std::size_t held = current_memory();
  ExplorationLimits limits;
  limits.states = options_.max_states;
  limits.bytes = options_.max_memory - std::min(options_.max_memory, held);
  limits.seconds = options_.max_seconds;
  return limits;
}

ExplorationResult ExploreRun::explore(const ComposedModel& model, const std::string& symmetry) {
  const auto start = std::chrono::steady_clock::now();
  std::optional<Folding> folding;
  if (symmetry != "off") {
    folding.emplace(model,
                    options_.directory.empty() ? options_.input.stem() + ".symfold" : options_.directory,
                    symmetry);
  }
  const StateLayout layout = folding ? StateLayout(model, folding->detector().SSOrder) : StateLayout(model);
  const bool is_exported = !options_.exports.empty() && symmetry == options_.symmetry;
  ExplorationResult result;
  result.symmetry = symmetry;
  if (folding) result.group_order = group_order(folding->detector().SGSOrbitLengths);
  result.detection_seconds = folding ? seconds_since(start) : 0;
  Exploration exploration(model, layout, folding ? &folding->labeller() : nullptr, is_exported);
  {
    ProgressLine line(streams_, "symmetry " + symmetry, options_.quiet);
    result.ending = exploration.run(limits(), [&](const ExplorationFigures& figures) {
      line.show(figures);
      return !interrupts_.is_interrupted();
    });
  }
  result.figures = exploration.figures();
  if (folding) result.inexact_labels = folding->labeller().inexact_count();
  result.peak_memory = peak_memory();
  for (std::size_t i = 0; i < exploration.observables().label_count(); ++i) {
    result.labels.push_back(exploration.observables().label_name(i));
  }
  if (is_exported && result.is_complete()) export_chain(exploration);
  return result;
}

void ExploreRun::export_chain(Exploration& exploration) {
  const MarkovChain chain = exploration.take_chain();
  needs_ctmc_switch_ = needs_ctmc_switch(chain);
  for (const std::string& name : options_.exports) {
    for (std::string& file : write_chain(chain, name)) files_.push_back(std::move(file));
  }
}

// The most folded state space first: it is the smallest one, and the peak of memory only rises.
std::vector<ExplorationResult> ExploreRun::explore_model(const ModelInput& input,
                                                         const std::vector<std::string>& symmetries) {
  const ComposedModel model = read_input(input, streams_);
  std::vector<ExplorationResult> results;
  for (auto symmetry = symmetries.rbegin(); symmetry != symmetries.rend(); ++symmetry) {
    if (!interrupts_.is_interrupted()) results.insert(results.begin(), explore(model, *symmetry));
  }
  return results;
}

// Says what was not completed; the exit code.
int ExploreRun::report_endings(const std::vector<ExplorationResult>& results) {
  int code = kOk;
  for (const ExplorationResult& result : results) {
    if (result.is_complete()) continue;
    streams_.err << "symfold: " << ending_text(result) << "\n";
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
  if (options_.json) {
    nlohmann::ordered_json json = {{"model", options_.input.model}};
    json.update(results_json(results));
    json["files"] = files_;
    streams_.out << json.dump(2) << "\n";
  } else {
    streams_.out << options_.input.model << "\n";
    print_results(streams_.out, results);
    print_files();
  }
  return report_endings(results);
}

// A symmetry whose exploration was not complete is left out from then on: larger models take more.
int ExploreRun::explore_range(const ParameterRange& range) {
  const std::vector<std::string> columns = options_.symmetries();
  std::vector<std::string> symmetries = columns;
  int code = kOk;
  GrowthPlot plot{options_.input.stem(), range.name, {}};
  nlohmann::ordered_json json = {{"model", options_.input.model}, {"parameter", range.name}};
  if (!options_.json) print_range_head(streams_.out, range.name, columns);
  for (long value = range.low; value <= range.high && !symmetries.empty(); ++value) {
    const std::vector<ExplorationResult> results = explore_model(range.at(options_.input, value), symmetries);
    if (options_.json) {
      json["points"].push_back({{range.name, value}});
      json["points"].back().update(results_json(results));
    } else {
      print_range_row(streams_.out, value, columns, results);
    }
    plot.points.push_back(growth_point(value, results));
    code = std::max(code, report_endings(results));
    if (code == kInterrupted) break;
    for (const ExplorationResult& result : results) {
      if (!result.is_complete()) std::erase(symmetries, result.symmetry);
    }
  }
  if (!options_.plot.empty()) {
    write_growth_plot(plot, options_.plot);
    files_.push_back(options_.plot);
  }
  json["files"] = files_;
  if (options_.json) {
    streams_.out << json.dump(2) << "\n";
  } else {
    print_files();
  }
  return code;
}

int ExploreRun::run() {
  const std::vector<ParameterRange> ranges = find_ranges(options_.input);
  return ranges.empty() ? explore_one() : explore_range(ranges[0]);
}

}  // namespace

std::vector<std::string> ExploreOptions::symmetries() const {
  if (compare) return {"off", "fast", "exact"};
  return {symmetry};
}

std::string conflict_in(const ExploreOptions& options) {
  const std::size_t ranges = find_ranges(options.input).size();
  if (ranges > 1) return "expected one range of a constant's values, got " + std::to_string(ranges);
  if (ranges == 1 && options.input.model == "-")
    return "a range of a constant's values needs a model in a file";
  if (ranges == 1 && !options.exports.empty()) return "--export is for one chain, not for a range of them";
  if (ranges == 0 && !options.plot.empty())
    return "--plot needs a range of a constant's values, --const N=3..10";
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
