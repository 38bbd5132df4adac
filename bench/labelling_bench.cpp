// Canonical labels of random states, by the detector, by the greedy labeller and by the literal search of
// tests/oracles/, and exact labels.

#include <benchmark/benchmark.h>

#include <random>

#include "bench/example_family.h"
#include "detector/exact_labeller.h"
#include "detector/greedy_labeller.h"
#include "host/symmetry/detection.h"
#include "tests/oracles/literal_labeller.h"

namespace symfold {
namespace {

const std::vector<Family> kFamilies = {
    {"star", {"N=5"}},
    {"star", {"N=20"}},
    {"star", {"N=100"}},
    {"philosophers", {"N=12"}},
    {"philosophers", {"N=100"}},
    {"arms", {"N=4"}},
    {"arms", {"N=20"}},
    {"routers", {"W=4", "H=4"}},
    {"routers", {"W=10", "H=10"}},
    {"wreath", {"M=3", "K=4"}},
    {"wreath", {"M=10", "K=10"}},
    {"hypercube", {"d=3"}},
    {"hypercube", {"d=6"}},
    {"complete", {"K=4"}},
    {"complete", {"K=8"}},
    {"clients_servers", {"K=3", "M=3"}},
    {"clients_servers", {"K=5", "M=5"}},
    {"clients_servers", {"K=10", "M=10"}},
};

// A family's detector, ready to label, and a thousand states whose variables hold one of `values` values.
class Workload {
 public:
  Workload(const Family& family, unsigned values)
      : detection_(read_example(family), nullptr, false), states_(1000) {
    detector().num_partitions = static_cast<int>(detector().PartitionInfo.size());
    detector().Initialize();
    detector().ConvertSTLToStatic();
    std::mt19937 random(1);
    for (std::string& state : states_) {
      state.resize(static_cast<std::size_t>(detector().TotalStateSize));
      for (std::size_t i = 0; i < state.size(); i += 2) state[i] = static_cast<char>(random() % values);
    }
  }
  ~Workload() {
    detector().Cleanup();
    detector().CleanStaticMembers();
  }
  Workload(const Workload&) = delete;
  Workload& operator=(const Workload&) = delete;

  SymmetryDetection& detector() { return detection_.detector(); }
  std::string& next_state() { return states_[next_++ % states_.size()]; }

 private:
  Detection detection_;
  std::vector<std::string> states_;
  std::size_t next_ = 0;
};

// With the permutation, which the literal search makes too, or without.
template <bool has_permutation>
void detector_labels(benchmark::State& state, const Family& family, unsigned values) {
  Workload workload(family, values);
  SymmetryDetection& detector = workload.detector();
  std::string label(static_cast<std::size_t>(detector.TotalStateSize), '\0');
  std::vector<short> permutation(detector.PartitionInfo.size());
  for (auto _ : state) {
    detector.FindCanonicalLabel(workload.next_state().data(), label.data(),
                                has_permutation ? permutation.data() : nullptr);
    benchmark::DoNotOptimize(label.data());
  }
  state.counters["partitions"] = detector.num_partitions;
}

// What folding uses: the same labels, and no members of a detector to fill.
void greedy_labels(benchmark::State& state, const Family& family, unsigned values) {
  Workload workload(family, values);
  const GreedyGroup group(workload.detector());
  GreedyLabeller labeller(group);
  std::string label(static_cast<std::size_t>(workload.detector().TotalStateSize), '\0');
  for (auto _ : state) benchmark::DoNotOptimize(labeller.find(workload.next_state().data(), label.data()));
}

void literal_labels(benchmark::State& state, const Family& family, unsigned values) {
  Workload workload(family, values);
  SymmetryDetection& detector = workload.detector();
  LabelTables tables{detector.PartitionInfo, {}};
  for (const int base : detector.Bases) tables.records.emplace_back(base, detector.VPerms[base]);
  for (auto _ : state) benchmark::DoNotOptimize(literal_label(tables, workload.next_state()).state.data());
}

void exact_labels(benchmark::State& state, const Family& family, unsigned values) {
  Workload workload(family, values);
  const ExactGroup group(workload.detector());
  ExactLabeller labeller(group);
  std::string label(static_cast<std::size_t>(workload.detector().TotalStateSize), '\0');
  for (auto _ : state) benchmark::DoNotOptimize(labeller.find(workload.next_state().data(), label.data()));
}

const bool kRegistered = [] {
  for (const Family& family : kFamilies) {
    for (const unsigned values : {1U, 2U, 4U}) {
      const std::string title =
          family.title() + "/" + std::to_string(values) + (values == 1 ? " value" : " values");
      const auto add = [&](const std::string& kind, auto labels) {
        benchmark::RegisterBenchmark((kind + title).c_str(), labels, family, values)
            ->Unit(benchmark::kMicrosecond);
      };
      add("detector/", detector_labels<false>);
      add("detector with permutation/", detector_labels<true>);
      add("greedy/", greedy_labels);
      add("literal/", literal_labels);
      add("exact/", exact_labels);
    }
  }
  return true;
}();

}  // namespace
}  // namespace symfold
