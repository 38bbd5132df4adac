// Canonical labels of random states, by the detector and by the literal search of tests/oracles/.

#include <benchmark/benchmark.h>

#include <random>

#include "bench/example_run.h"
#include "host/detection_log.h"
#include "tests/oracles/literal_labeller.h"

namespace symfold {
namespace {

const std::vector<Family> kFamilies = {
    {"star", {"N=20"}},           {"star", {"N=100"}},
    {"philosophers", {"N=12"}},   {"philosophers", {"N=100"}},
    {"arms", {"N=20"}},           {"torus", {"W=10", "H=10"}},
    {"wreath", {"M=10", "K=10"}}, {"hypercube", {"d=6"}},
    {"complete", {"K=8"}},        {"clients_servers", {"K=5", "M=5"}},
};

// A thousand states whose variables hold one of `values` values.
std::vector<std::string> random_states(const SymmetryDetection& detector, unsigned values) {
  std::mt19937 random(1);
  std::vector<std::string> states(1000);
  for (std::string& state : states) {
    state.resize(static_cast<std::size_t>(detector.TotalStateSize));
    for (std::size_t i = 0; i < state.size(); i += 2) state[i] = static_cast<char>(random() % values);
  }
  return states;
}

void detector_label(benchmark::State& state, const Family& family) {
  ExampleRun example(family);
  SymmetryDetection& detector = example.run().detector();
  {
    const DetectionLog silent("");
    detector.num_partitions = static_cast<int>(detector.PartitionInfo.size());
    detector.Initialize();
    detector.ConvertSTLToStatic();
  }
  std::vector<std::string> states = random_states(detector, 4);
  std::string label(states[0].size(), '\0');
  std::size_t next = 0;
  for (auto _ : state) {
    detector.FindCanonicalLabel(states[next++ % states.size()].data(), label.data(), nullptr);
    benchmark::DoNotOptimize(label.data());
  }
  state.counters["bytes"] = detector.TotalStateSize;
  detector.Cleanup();
  detector.CleanStaticMembers();
}

void literal_labels(benchmark::State& state, const Family& family) {
  ExampleRun example(family);
  SymmetryDetection& detector = example.run().detector();
  detector.DetermineTotalStateSize();
  LabelTables tables{detector.PartitionInfo, {}};
  for (const int base : detector.Bases) tables.records.emplace_back(base, detector.VPerms[base]);
  const std::vector<std::string> states = random_states(detector, 4);
  std::size_t next = 0;
  for (auto _ : state)
    benchmark::DoNotOptimize(literal_label(tables, states[next++ % states.size()]).state.data());
}

const bool kRegistered = [] {
  for (const Family& family : kFamilies) {
    const std::string title = family.title();
    benchmark::RegisterBenchmark(("detector/" + title).c_str(), detector_label, family)
        ->Unit(benchmark::kMicrosecond);
    benchmark::RegisterBenchmark(("literal/" + title).c_str(), literal_labels, family)
        ->Unit(benchmark::kMicrosecond);
  }
  return true;
}();

}  // namespace
}  // namespace symfold
