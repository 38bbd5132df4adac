// Foldings and labellers on several threads at a time.

#include <gtest/gtest.h>

#include <filesystem>
#include <iostream>
#include <random>
#include <thread>

#include "host/symmetry/folding.h"
#include "tests/support/model_support.h"
#include "tests/support/temp_dir.h"

namespace symfold {
namespace {

constexpr int kThreads = 4;

using State = std::vector<unsigned char>;

std::vector<State> random_states(const Folding& folding) {
  std::mt19937 random(7);
  std::vector<State> states(50, State(folding.state_size()));
  for (State& state : states) {
    for (std::size_t i = 0; i < state.size(); i += 2) state[i] = static_cast<unsigned char>(random() % 3);
  }
  return states;
}

// The labels with their witnesses.
std::vector<State> labels_of(const Folding& folding, const std::vector<State>& states) {
  const std::unique_ptr<Labeller> labeller = folding.make_labeller();
  std::vector<State> labels;
  std::vector<short> witness(folding.cell_sizes().size());
  for (const State& state : states) {
    labeller->find(state.data(), labels.emplace_back(state.size()).data());
    labeller->find_witness(witness.data());
    for (const short image : witness) labels.back().push_back(static_cast<unsigned char>(image));
  }
  return labels;
}

template <class Work>
void on_threads(Work work) {
  std::vector<std::thread> threads;
  for (int i = 0; i < kThreads; ++i) threads.emplace_back(work, i);
  for (std::thread& thread : threads) thread.join();
}

struct Case {
  std::string example;
  std::vector<ConstOverride> constants;
};

const std::vector<Case> kCases = {
    {"star", {{"N", "7"}}},  {"star", {{"N", "5"}}},         {"wreath", {}},
    {"clients_servers", {}}, {"philosophers", {{"N", "9"}}}, {"hypercube", {{"d", "3"}}}};

// Every thread makes foldings of its own, of the cases in another order, while the others do the same.
TEST(FoldingThreads, MakeFoldingsSideBySide) {
  const TempDir directory;
  std::streambuf* const output = std::cout.rdbuf();
  std::streambuf* const errors = std::cerr.rdbuf();
  for (const Symmetry symmetry : {Symmetry::kFast, Symmetry::kExact}) {
    std::vector<std::vector<State>> states;
    std::vector<std::vector<State>> expected;
    for (const Case& each : kCases) {
      const Folding folding(read_model(example_path(each.example), each.constants), symmetry);
      states.push_back(random_states(folding));
      expected.push_back(labels_of(folding, states.back()));
    }
    on_threads([&](int thread) {
      for (std::size_t i = 0; i < kCases.size(); ++i) {
        const std::size_t at = (i + static_cast<std::size_t>(thread)) % kCases.size();
        const Folding folding(read_model(example_path(kCases[at].example), kCases[at].constants), symmetry);
        EXPECT_EQ(labels_of(folding, states[at]), expected[at]) << kCases[at].example;
      }
    });
  }
  EXPECT_EQ(std::cout.rdbuf(), output);
  EXPECT_EQ(std::cerr.rdbuf(), errors);
  EXPECT_TRUE(std::filesystem::is_empty("."));
}

// One folding, of a model or of its permutation file, whose labellers the threads make and use at once.
TEST(FoldingThreads, ShareOneFolding) {
  const TempDir directory;
  for (const Symmetry symmetry : {Symmetry::kFast, Symmetry::kExact}) {
    for (const Case& each : kCases) {
      const ComposedModel model = read_model(example_path(each.example), each.constants);
      const Folding detected(model, symmetry, {"run"});
      const Folding loaded("run/permutations", symmetry);
      const std::vector<State> states = random_states(detected);
      std::vector<std::vector<State>> labels(kThreads);
      on_threads([&](int thread) {
        labels[static_cast<std::size_t>(thread)] = labels_of(thread % 2 == 0 ? detected : loaded, states);
      });
      for (const std::vector<State>& found : labels) EXPECT_EQ(found, labels[0]) << each.example;
    }
  }
}

}  // namespace
}  // namespace symfold
