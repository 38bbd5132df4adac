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
#include "cli/progress_line.h"
#include "host/detection_run.h"

namespace symfold {
namespace {

// A model's symmetries, ready for folding.
class Folding {
 public:
  Folding(const ComposedModel& model, const std::string& directory) : run_(model, directory, false) {
    run_.require_sound();
    search_.emplace(run_.detector());
  }

  const SymmetryDetection& detector() const { return run_.detector(); }
  LabelSearch& search() { return *search_; }

 private:
  DetectionRun run_;
  std::optional<LabelSearch> search_;
};

// NAME=low..high
struct ParameterRange {
  std::string name;
  long low;
  long high;
};

// One value of the parameter, or the one model where there is no range.
struct Point {
  long value = 0;
  std::vector<ExplorationResult>
      results;  // of the full state space, of the folded one, or both in this order
};

class ExploreRun {
 public:
  ExploreRun(const ExploreOptions& options, const Streams& streams) : options_(options), streams_(streams) {}

  int run();

 private:
  std::vector<std::string> symmetries() const;
  Point explore_point(const ModelInput& input);
  ExplorationResult explore(const ComposedModel& model, const std::string& symmetry);
  ExplorationLimits limits() const;
  void export_chain(Exploration& exploration);

  const ExploreOptions& options_;
  const Streams& streams_;
  InterruptWatch interrupts_;
  std::vector<std::string> written_;
};

double seconds_since(std::chrono::steady_clock::time_point start) {
  return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

ExplorationLimits ExploreRun::limits() const {
  const std::size_t held = current_memory();
  ExplorationLimits limits;
  limits.states = options_.most_states;
  limits.bytes = options_.most_memory - std::min(options_.most_memory, held);
  limits.seconds = options_.most_seconds;
  return limits;
}

ExplorationResult ExploreRun::explore(const ComposedModel& model, const std::string& symmetry) {
  const auto start = std::chrono::steady_clock::now();
  std::optional<Folding> folding;
  if (symmetry != "off") {
    folding.emplace(model,
                    options_.directory.empty() ? options_.input.stem() + ".symfold" : options_.directory);
  }
  const StateLayout layout = folding ? StateLayout(model, folding->detector().SSOrder) : StateLayout(model);
  const bool is_exported = !options_.exports.empty() && (folding || !options_.compare);
  ExplorationResult result;
  result.symmetry = symmetry;
  if (folding) result.group_order = group_order(folding->detector().SGSOrbitLengths);
  result.detection_seconds = folding ? seconds_since(start) : 0;
  Exploration exploration(model, layout, folding ? &folding->search() : nullptr, is_exported);
  {
    ProgressLine line(streams_, folding ? "folded" : "full", options_.quiet);
    result.ending = exploration.run(limits(), [&](const ExplorationFigures& figures) {
      line.show(figures);
      return !interrupts_.is_interrupted();
    });
  }
  result.figures = exploration.figures();
  result.peak_memory = peak_memory();
  for (std::size_t i = 0; i < exploration.observables().label_count(); ++i) {
    result.labels.push_back(exploration.observables().label_name(i));
  }
  if (is_exported && result.is_complete()) export_chain(exploration);
  return result;
}

void ExploreRun::export_chain(Exploration&) {}

// The folded state space first: it is the smaller one, and the peak of memory only rises.
Point ExploreRun::explore_point(const ModelInput& input) {
  const ComposedModel model = read_input(input, streams_);
  Point point;
  if (options_.compare || options_.symmetry != "off") point.results.push_back(explore(model, "fast"));
  if ((options_.compare || options_.symmetry == "off") && !interrupts_.is_interrupted()) {
    point.results.insert(point.results.begin(), explore(model, "off"));
  }
  return point;
}

int ExploreRun::run() {
  const Point point = explore_point(options_.input);
  if (options_.json) {
    nlohmann::ordered_json json = {{"model", options_.input.model}};
    json.update(results_json(point.results));
    streams_.out << json.dump(2) << "\n";
  } else {
    print_results(streams_.out, point.results);
  }
  for (const ExplorationResult& result : point.results) {
    if (!result.is_complete()) streams_.err << "symfold: " << ending_text(result) << "\n";
  }
  return kOk;
}

}  // namespace

int run_explore(const ExploreOptions& options, const Streams& streams) {
  return ExploreRun(options, streams).run();
}

}  // namespace symfold
