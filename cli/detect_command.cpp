#include "cli/commands.h"

#include <chrono>
#include <iomanip>
#include <iostream>
#include <limits>
#include <locale>
#include <nlohmann/json.hpp>
#include <span>
#include <sstream>
#include <utility>

#include "cli/figures.h"
#include "detector/symmetry_detection.h"
#include "host/chain/state_layout.h"
#include "host/symmetry/symmetry_names.h"

namespace symfold {
namespace {

constexpr std::size_t kPrintedGenerators = 20;
constexpr std::size_t kPrintedOrbits = 20;
constexpr std::size_t kPrintedNames = 12;
constexpr std::size_t kPrintedCycles = 12;
constexpr std::size_t kAll = std::numeric_limits<std::size_t>::max();

// The state's bytes.
std::string hexadecimal(const std::vector<std::int16_t>& state) {
  std::ostringstream text;
  text.imbue(std::locale::classic());
  text << std::hex << std::setfill('0');
  for (const std::byte byte : std::as_bytes(std::span(state))) {
    text << std::setw(2) << std::to_integer<int>(byte);
  }
  return text.str();
}

// What there is to tell about a run, in the order in which it is told.
struct Report {
  std::string model;
  std::string directory;
  std::size_t submodels, joins, nodes, edges, colours;
  std::size_t generator_count;
  std::vector<std::string> generators;  // the first ones
  std::string order;                    // in decimal
  std::string order_text;               // the same for people
  NamedOrbits orbits;
  std::size_t state_bytes, partitions;
  std::string initial_state, initial_label;  // hexadecimal
  std::string unsound_reason;
  std::vector<std::string> refused;  // lines
  std::vector<DetectionPhase> phases;
  std::size_t peak_bytes;
};

// Generators are told whole or, for a person, with at most kPrintedCycles cycles of kPrintedNames names.
Report make_report(const ComposedModel& model, const Folding& folding, bool is_whole) {
  const SymmetryDetection& detector = *folding.detector();
  Report report{};
  report.submodels = model.submodels.size();
  report.joins = model.joins.size();
  report.nodes = detector.GraphNodes.size();
  report.edges = detector.GraphEdges.size();
  report.colours = count_colours(detector);
  for (const Permutation& generator : detector.OrigPermutations) {
    if (generator.IsIdentity()) continue;
    if (report.generator_count++ < kPrintedGenerators) {
      report.generators.push_back(named_cycles(detector, generator, is_whole ? kAll : kPrintedNames,
                                               is_whole ? kAll : kPrintedCycles));
    }
  }
  report.order = group_order(folding.orbit_lengths());
  report.order_text = group_order_text(folding.orbit_lengths());
  report.orbits = find_orbits(detector);
  report.state_bytes = folding.state_size();
  report.partitions = folding.cell_sizes().size();
  report.unsound_reason = folding.unsound_reason();
  report.refused = lines_of(folding.refusals());
  if (folding.is_sound()) {
    std::vector<std::int16_t> state = StateLayout(model, folding.order()).initial_state();
    report.initial_state = hexadecimal(state);
    folding.make_labeller()->find(state.data(), state.data());
    report.initial_label = hexadecimal(state);
  }
  report.phases = folding.phases();
  report.peak_bytes = peak_memory();
  return report;
}

void print_orbits(std::ostream& out, const char* kind, const std::vector<std::vector<std::string>>& orbits) {
  out << "orbits of " << kind << "  " << orbits.size() << "\n";
  for (std::size_t i = 0; i < std::min(orbits.size(), kPrintedOrbits); ++i) {
    out << " ";
    for (std::size_t j = 0; j < std::min(orbits[i].size(), kPrintedNames); ++j) out << " " << orbits[i][j];
    if (orbits[i].size() > kPrintedNames) out << " ... " << orbits[i].size();
    out << "\n";
  }
  if (orbits.size() > kPrintedOrbits) out << "  ... and " << orbits.size() - kPrintedOrbits << " more\n";
}

void print_report(std::ostream& out, const Report& report) {
  out << report.model << ": " << counted(report.submodels, "submodel") << ", "
      << counted(report.joins, "join") << "\ngraph  " << counted(report.nodes, "node") << ", "
      << counted(report.edges, "edge") << ", " << counted(report.colours, "colour") << "\n"
      << "group order  " << report.order_text << "\n"
      << "generators  " << report.generator_count << "\n";
  for (const std::string& generator : report.generators) out << "  " << generator << "\n";
  if (report.generator_count > report.generators.size()) {
    out << "  ... and " << report.generator_count - report.generators.size() << " more\n";
  }
  print_orbits(out, "submodels", report.orbits.submodels);
  print_orbits(out, "joins", report.orbits.joins);
  out << "state  " << counted(report.state_bytes, "byte") << " in " << counted(report.partitions, "partition")
      << "\n";
  if (report.unsound_reason.empty()) {
    out << "  initial  " << report.initial_state << "\n"
        << "  label    " << report.initial_label << "\n"
        << "check  passed: every permutation keeps the partitions' sizes and the joins' variables\n";
  } else {
    out << "check  FAILED: " << report.unsound_reason << "\n";
  }
  for (const std::string& line : report.refused) out << "refused  " << line << "\n";
  out << "time ";
  for (const DetectionPhase& phase : report.phases)
    out << " " << phase.name << " " << duration(phase.seconds) << ",";
  out << " peak memory " << mebibytes(report.peak_bytes) << "\n"
      << "files  " << report.directory << "\n";
}

// A null value must not become an object by operator[]: its destructor would fail if memory is refused then.
void print_json(std::ostream& out, const Report& report) {
  nlohmann::ordered_json json = {{"model", report.model}};
  json["submodels"] = report.submodels;
  json["joins"] = report.joins;
  json["graph"] = {{"nodes", report.nodes}, {"edges", report.edges}, {"colours", report.colours}};
  json["group_order"] = report.order;
  json["generator_count"] = report.generator_count;
  json["generators"] = report.generators;
  json["orbits"] = {{"submodels", report.orbits.submodels}, {"joins", report.orbits.joins}};
  json["state_bytes"] = report.state_bytes;
  json["partitions"] = report.partitions;
  json["initial_state"] = report.initial_state;
  json["initial_label"] = report.initial_label;
  json["is_sound"] = report.unsound_reason.empty();
  json["unsound_reason"] = report.unsound_reason;
  if (!report.refused.empty()) json["refused"] = report.refused;
  nlohmann::ordered_json& seconds = json["seconds"] = nlohmann::ordered_json::object();
  for (const DetectionPhase& phase : report.phases) seconds[phase.name] = phase.seconds;
  json["peak_memory_bytes"] = report.peak_bytes;
  json["directory"] = report.directory;
  out << json.dump(2) << "\n";
}

}  // namespace

int run_detect(const DetectOptions& options, const Streams& streams) {
  const auto start = std::chrono::steady_clock::now();
  const ComposedModel model = read_input(options.input, streams);
  const std::chrono::duration<double> reading = std::chrono::steady_clock::now() - start;
  const std::string directory =
      options.directory.empty() ? options.input.stem() + ".symfold" : options.directory;
  const Folding folding(model, Symmetry::kFast, {directory, !options.no_log}, &streams.err);
  Report report = make_report(model, folding, options.json);
  report.model = options.input.model;
  report.directory = directory;
  report.phases.insert(report.phases.begin(), {"read", reading.count()});
  if (options.json) {
    print_json(streams.out, report);
  } else {
    print_report(streams.out, report);
  }
  return folding.is_sound() ? kOk : kCheckFailed;
}

}  // namespace symfold
