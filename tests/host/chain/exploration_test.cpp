// Whole explorations against the interpreter of the checked tree, and where they stop.

#include "host/chain/exploration.h"

#include <gtest/gtest.h>

#include <map>

#include "tests/oracles/naive_chain.h"
#include "tests/support/exploration_support.h"
#include "tests/support/model_support.h"
#include "tests/support/random_model.h"
#include "tests/support/seeds.h"

namespace symfold {
namespace {

// Expects the figures to be those of the first states of this chain.
void expect_counted(const ExplorationFigures& figures, const Explored& whole) {
  std::size_t transitions = 0;
  std::size_t deadlocks = 0;
  std::size_t self_loops = 0;
  std::vector<std::size_t> observable_counts(whole.chain.observables.size());
  for (StateId s = 0; s < figures.expanded; ++s) {
    const auto targets = whole.chain.matrix.targets_of(s);
    transitions += std::max<std::size_t>(targets.size(), 1);
    deadlocks += targets.empty() ? 1 : 0;
    self_loops += std::binary_search(targets.begin(), targets.end(), s) ? 1 : 0;
    for (std::size_t i = 0; i < observable_counts.size(); ++i) {
      observable_counts[i] += whole.chain.observables[i].holds[s] ? 1 : 0;
    }
  }
  EXPECT_EQ(figures.transitions, transitions);
  EXPECT_EQ(figures.deadlocks, deadlocks);
  EXPECT_EQ(figures.self_loops, self_loops);
  EXPECT_EQ(figures.observable_counts, observable_counts);
  EXPECT_EQ(figures.frontier(), figures.states - figures.expanded);
}

std::size_t depth_of(const std::vector<std::map<std::size_t, double>>& rows) {
  std::vector<std::size_t> distance(rows.size(), rows.size());
  distance[0] = 0;
  for (std::size_t s = 0; s < rows.size(); ++s) {
    for (const auto& [target, rate] : rows[s]) distance[target] = std::min(distance[target], distance[s] + 1);
  }
  return distance.back();
}

// Explores the model in both ways. Returns true if the chain is complete.
bool expect_naive_chain(const ComposedModel& model) {
  constexpr std::size_t kMaxStates = 1000;
  const oracle::NaiveChain naive = oracle::naive_chain(model, kMaxStates);
  const Explored fast = explored(model, {}, nullptr, {.states = kMaxStates});
  EXPECT_EQ(fast.error, naive.error);
  EXPECT_EQ(fast.ending == Ending::kComplete, naive.is_complete);
  if (!naive.is_complete || fast.ending != Ending::kComplete) return false;
  for (std::size_t v = 0; v < naive.variables.size(); ++v) {
    EXPECT_EQ(fast.chain.variables[v].name, naive.variables[v]);
  }
  EXPECT_EQ(fast.states.size(), naive.states.size());
  for (StateId s = 0; s < std::min(fast.states.size(), naive.states.size()); ++s) {
    EXPECT_EQ(oracle::State(fast.states[s].begin(), fast.states[s].end()), naive.states[s]);
    std::map<std::size_t, double> row;
    for (std::size_t i = 0; i < fast.chain.matrix.targets_of(s).size(); ++i) {
      row.emplace(fast.chain.matrix.targets_of(s)[i], fast.chain.matrix.rates_of(s)[i]);
    }
    EXPECT_EQ(row, naive.rows[s]) << "of state " << s;
  }
  for (std::size_t i = 0; i < naive.labels.size(); ++i) {
    const std::vector<bool>& holds = fast.chain.observables[i].holds;
    EXPECT_EQ(std::vector<double>(holds.begin(), holds.end()), naive.labels[i]);
  }
  for (std::size_t i = 0; i < naive.rewards.size(); ++i) {
    EXPECT_EQ(fast.chain.rewards[i].values, naive.rewards[i]);
  }
  expect_counted(fast.figures, fast);
  EXPECT_EQ(fast.figures.depth, depth_of(naive.rows));
  EXPECT_EQ(fast.figures.folded_self_loops, 0U);
  return true;
}

TEST(Exploration, FindsTheChainOfEveryExample) {
  for (const std::string& name : example_names()) {
    SCOPED_TRACE(name);
    EXPECT_TRUE(expect_naive_chain(small_example(name)));
  }
}

TEST(Exploration, FindsTheChainOrTheErrorOfRandomModels) {
  const Seeds seeds(400);
  unsigned complete = 0;
  for (unsigned seed = seeds.first; seed < seeds.end; ++seed) {
    const std::string text = random_model(seed);
    SCOPED_TRACE("seed " + std::to_string(seed) + "\n" + text);
    if (expect_naive_chain(read_model_text("m.sym", text))) ++complete;
    if (HasFailure()) return;
  }
  EXPECT_GT(complete, seeds.size() / 5 * 2);
  EXPECT_LT(complete, seeds.size() / 4 * 3);
}

// Two submodels that each move in 6,000 ways: more successors than a batch of 64 KiB holds.
std::string parallel_text() {
  std::string text = "type T {\n  private x : [0..2] = 0;\n";
  for (int i = 0; i < 6'000; ++i) {
    text += "  [a] true -> " + std::to_string(i % 7 + 1) + ".0 / 11 : x = (x + " + std::to_string(i % 3) +
            ") % 3;\n";
  }
  return text + "}\nsystem S { t[i : 0..1] : T; }\n";
}

TEST(Exploration, SumsRatesInTheirOrderAcrossBatches) {
  const ComposedModel model = read_model_text("m.sym", parallel_text());
  EXPECT_TRUE(expect_naive_chain(model));
  const Explored whole = explored(model);
  EXPECT_EQ(whole.figures.successors, 9U * 12'000U);
  for (std::size_t limit = 1; limit < 9; ++limit) {
    const Explored part = explored(model, {}, nullptr, {.states = limit});
    EXPECT_EQ(part.figures.states, limit);
    expect_counted(part.figures, whole);
  }
}

std::string repeated(const std::string& text, int count) {
  std::string result;
  for (int i = 0; i < count; ++i) result += text;
  return result;
}

// Runs of operators are no depth: neither the reader nor what compiles and evaluates may recurse along them.
TEST(Exploration, TakesRunsOfAnyLength) {
  const auto explored_dividing_by = [](const std::string& divisor) {
    const std::string text =
        "const int N = 0" + repeated(" + 1", 100'000) + ";\nconst bool b = true" +
        repeated(" && N > 1", 50'000) +
        ";\ntype T(real r) {\n  private x : bool = false;\n  private y : [1..2] = 1;\n  [a] b" +
        repeated(" && (x || y == 1)", 40'000) + " -> N" + repeated(" + r", 50'000) +
        repeated(" * 1.0", 50'000) + " - min(y" + repeated(", 7", 50'000) + ") : x = !x, y = 1 div " +
        divisor + repeated(" + 1", 50'000) + " == 0 ? 2 : 1;\n}\nsystem S { t : T(0.5); }\n";
    return explored(read_model_text("m.sym", text));
  };
  const Explored exploration = explored_dividing_by("1");
  ASSERT_EQ(exploration.ending, Ending::kComplete) << exploration.error.substr(0, 200);
  EXPECT_EQ(exploration.chain.matrix.rates, std::vector<double>(2, 124'999));
  EXPECT_NE(explored_dividing_by("0").error.find("error: division by zero"), std::string::npos);
}

// A state is expanded when all its successors have found room.
TEST(Exploration, StopsAtEveryLimitOfStates) {
  const ComposedModel model = small_example("philosophers");
  const Explored whole = explored(model);
  for (std::size_t limit = 0; limit <= whole.states.size(); ++limit) {
    const Explored part = explored(model, {}, nullptr, {.states = limit});
    EXPECT_EQ(part.ending, limit < whole.states.size() ? Ending::kStateLimit : Ending::kComplete);
    EXPECT_EQ(part.figures.states, limit);
    StateId expanded = 0;
    const auto finds_room = [&](StateId s) {
      const auto targets = whole.chain.matrix.targets_of(s);
      return targets.empty() || targets.back() < limit;
    };
    while (expanded < limit && finds_room(expanded)) ++expanded;
    EXPECT_EQ(part.figures.expanded, expanded);
    expect_counted(part.figures, whole);
  }
}

TEST(Exploration, StopsAtEveryLimitOfMemory) {
  const ComposedModel model = read_model_text("m.sym", star_text(4, 4));
  const Explored whole = explored(model);
  std::size_t stopped = 0;
  for (std::size_t limit = 1'000; limit < 60'000; limit += 111) {
    const Explored part = explored(model, {}, nullptr, {.bytes = limit});
    if (part.ending != Ending::kComplete) {
      EXPECT_EQ(part.ending, Ending::kMemoryLimit);
      ++stopped;
    }
    EXPECT_LE(part.figures.memory, limit);
    expect_counted(part.figures, whole);
  }
  EXPECT_GT(stopped, 100U);
  EXPECT_LT(stopped, 500U);
}

TEST(Exploration, StopsWhenTimeIsOverOrProgressSaysSo) {
  const ComposedModel model = small_example("philosophers");
  const Explored whole = explored(model);
  EXPECT_EQ(explored(model, {}, nullptr, {.seconds = 0}).ending, Ending::kTimeLimit);
  Exploration exploration(model, {}, nullptr, false);
  std::vector<std::size_t> calls;
  const Ending ending = exploration.run({}, [&](const ExplorationFigures& figures) {
    calls.push_back(figures.states);
    return false;
  });
  EXPECT_EQ(ending, Ending::kInterrupted);
  const ExplorationFigures& figures = exploration.figures();
  EXPECT_EQ(calls, std::vector<std::size_t>(2, figures.states));
  EXPECT_GT(figures.frontier(), 0U);
  expect_counted(figures, whole);
}

}  // namespace
}  // namespace symfold
