// Random states of the examples, their parts in any order of the state vector: labels against the literal
// search, and exact labels against those of symmetric states.
//
// SYMFOLD_SWEEP_STATES in the environment sets the number of states, 50,000 without it.

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <functional>
#include <random>

#include "detector/exact_labeller.h"
#include "host/language/model_reader.h"
#include "host/symmetry/detection.h"
#include "tests/support/detector_support.h"

namespace symfold {
namespace {

struct Example {
  const char* name;
  std::vector<ConstOverride> constants;
  bool is_large = false;  // then only in the layout of the graph nodes
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

const std::vector<Example> kLargeExamples = {
    {"star", {{"N", "100"}}, true},
    {"philosophers", {{"N", "100"}}, true},
    {"arms", {{"N", "60"}}, true},
    {"wreath", {{"M", "8"}, {"K", "8"}}, true},
    {"complete", {{"K", "12"}}, true},
    {"hypercube", {{"d", "6"}}, true},
    {"clients_servers", {{"K", "7"}, {"M", "7"}}, true},
};

unsigned values_of(long state) {
  return std::vector<unsigned>{2, 3, 4, 256}[static_cast<std::size_t>(state) % 4];
}

long states_wanted() {
  const char* wanted = std::getenv("SYMFOLD_SWEEP_STATES");
  return wanted == nullptr ? 50'000 : std::strtol(wanted, nullptr, 10);
}

// In one layout: for many states not all time goes into detection.
long states_per_layout() { return std::max(states_wanted() / 1000, 100L); }

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

// Calls check(detector, layout, random) for one example after the other in a layout of its own, every fourth
// time that of the graph nodes, until the states wanted are done.
void sweep(const std::vector<Example>& examples,
           const std::function<void(SymmetryDetection&, std::size_t, std::mt19937&)>& check) {
  std::mt19937 random(1);
  for (long done = 0; done < states_wanted(); done += states_per_layout()) {
    const auto layout = static_cast<std::size_t>(done / states_per_layout());
    const Example& example = examples[layout % examples.size()];
    const std::string path = std::string(SYMFOLD_EXAMPLES_DIR "/") + example.name + ".sym";
    Detection run(read_model(path, example.constants), nullptr, false);
    SymmetryDetection& detector = run.detector();
    if (layout % 4 != 0 && !example.is_large) shuffle_layout(detector, random);
    std::string report;
    ASSERT_TRUE(detector.VerifySymmetries(report)) << report;
    SCOPED_TRACE(example.name + (", layout " + std::to_string(layout)));
    check(detector, layout, random);
    if (testing::Test::HasFatalFailure()) return;
  }
}

TEST(LabelSweep, EqualsTheLiteralSearchOnExamplesInAnyLayout) {
  sweep(kExamples, [](SymmetryDetection& detector, std::size_t layout, std::mt19937& random) {
    start_labelling(detector);
    LabelTables tables{detector.PartitionInfo, {}};
    for (const int base : detector.Bases) tables.records.emplace_back(base, detector.VPerms[base]);
    for (long i = 0; i < states_per_layout(); ++i) {
      const std::string state = random_state(detector.TotalStateSize, values_of(i), random);
      ASSERT_NO_FATAL_FAILURE(expect_literal_label(detector, tables, state)) << layout << ", state " << i;
    }
    stop_labelling(detector);
  });
}

TEST(LabelSweep, GivesSymmetricStatesOneExactLabel) {
  std::vector<Example> examples = kExamples;
  examples.insert(examples.end(), kLargeExamples.begin(), kLargeExamples.end());
  sweep(examples, [](SymmetryDetection& detector, std::size_t, std::mt19937& random) {
    const ExactGroup group(detector);
    ExactLabeller labeller(group);
    std::vector<const Permutation*> elements;
    for (const auto& [base, records] : detector.VPerms) {
      for (const ValPerms& record : records) elements.push_back(&record.Perms[0]);
    }
    for (long i = 0; i < states_per_layout() && !elements.empty(); ++i) {
      std::string state = random_state(static_cast<int>(labeller.state_size()), values_of(i), random);
      std::string label(state.size(), '\0');
      ASSERT_TRUE(labeller.find(state.data(), label.data()));
      for (int step = 0; step < 8; ++step) {
        const Permutation& element = *elements[random() % elements.size()];
        state = moved(detector.PartitionInfo, {element.GetP(), element.GetP() + element.GetN()}, state);
      }
      std::string label_of_image(state.size(), '\0');
      ASSERT_TRUE(labeller.find(state.data(), label_of_image.data()));
      ASSERT_EQ(label, label_of_image) << "state " << i;
    }
  });
}

}  // namespace
}  // namespace symfold
