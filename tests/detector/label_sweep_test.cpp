// Random states of the examples, their parts in any order of the state vector, against the literal search.
//
// SYMFOLD_SWEEP_STATES in the environment sets the number of states, 50,000 without it.

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <random>

#include "host/detection_run.h"
#include "host/model_reader.h"
#include "tests/detector/support.h"

namespace symfold {
namespace {

struct Example {
  const char* name;
  std::vector<ConstOverride> constants;
};

const std::vector<Example> kExamples = {
    {"star", {{"N", "4"}}},
    {"star", {{"N", "9"}}},
    {"philosophers", {{"N", "5"}}},
    {"philosophers", {{"N", "12"}}},
    {"arms", {{"N", "3"}}},
    {"arms", {{"N", "12"}}},
    {"routers", {{"W", "3"}, {"H", "3"}}},
    {"torus", {{"W", "3"}, {"H", "4"}}},
    {"peer2peer", {}},
    {"wreath", {{"M", "2"}, {"K", "3"}}},
    {"wreath", {{"M", "3"}, {"K", "2"}}},
    {"hypercube", {{"d", "3"}}},
    {"hypercube", {{"d", "4"}}},
    {"complete", {{"K", "4"}}},
    {"clients_servers", {{"K", "3"}, {"M", "2"}}},
    {"tandem", {}},
    {"two_speeds", {}},
};

long states_wanted() {
  const char* wanted = std::getenv("SYMFOLD_SWEEP_STATES");
  return wanted == nullptr ? 50'000 : std::strtol(wanted, nullptr, 10);
}

// Tables that detection leaves in graph-node order, carried into a random order.
void shuffle_layout(SymmetryDetection& detector, std::mt19937& random) {
  std::shuffle(detector.SSOrder.begin(), detector.SSOrder.end(), random);
  captured([&] {
    detector.AdjustPermutations();
    detector.AdjustPartitionInfo();
  });
}

std::string random_state(int size, unsigned values, std::mt19937& random) {
  std::string state(static_cast<std::size_t>(size), '\0');
  for (char& byte : state) byte = static_cast<char>(random() % values);
  return state;
}

TEST(LabelSweep, EqualsTheLiteralSearchOnExamplesInAnyLayout) {
  constexpr long kStatesPerLayout = 100;
  const TempDir directory;
  std::mt19937 random(1);
  for (long done = 0; done < states_wanted(); done += kStatesPerLayout) {
    const auto layout = static_cast<std::size_t>(done / kStatesPerLayout);
    const Example& example = kExamples[layout % kExamples.size()];
    const std::string path = std::string(SYMFOLD_EXAMPLES_DIR "/") + example.name + ".sym";
    DetectionRun run(read_model(path, example.constants), ".", false);
    SymmetryDetection& detector = run.detector();
    if (layout % 4 != 0) shuffle_layout(detector, random);
    std::string report;
    ASSERT_TRUE(detector.VerifySymmetries(report)) << report;
    start_labelling(detector);
    LabelTables tables{detector.PartitionInfo, {}};
    for (const int base : detector.Bases) tables.records.emplace_back(base, detector.VPerms[base]);
    for (long i = 0; i < kStatesPerLayout; ++i) {
      const unsigned values = std::vector<unsigned>{2, 3, 4, 256}[static_cast<std::size_t>(i) % 4];
      const std::string state = random_state(detector.TotalStateSize, values, random);
      ASSERT_NO_FATAL_FAILURE(expect_literal_label(detector, tables, state))
          << example.name << ", layout " << layout << ", state " << i;
    }
    stop_labelling(detector);
  }
}

}  // namespace
}  // namespace symfold
