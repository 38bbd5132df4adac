// Folded chains against the classes of the full chain, by enumerating orbits: what is computed on the
// representatives holds for all states.

#include <gtest/gtest.h>

#include <algorithm>
#include <bit>
#include <cmath>
#include <initializer_list>
#include <map>
#include <numeric>
#include <set>

#include "tests/oracles/transient.h"
#include "tests/support/exploration_support.h"
#include "tests/support/model_support.h"
#include "tests/support/random_model.h"
#include "tests/support/seeds.h"

namespace symfold {
namespace {

// A state as its class shows it: the rates into each class, and labels and rewards to the last bit.
struct Lump {
  std::map<int, double> rates;
  std::vector<std::uint64_t> observed;
};

Lump lump_of(const Explored& explored, StateId s, const int* class_of) {
  Lump lump;
  const RateMatrix& matrix = explored.chain.matrix;
  for (std::size_t i = 0; i < matrix.targets_of(s).size(); ++i) {
    lump.rates[class_of[matrix.targets_of(s)[i]]] += matrix.rates_of(s)[i];
  }
  for (const ChainObservable& label : explored.chain.observables)
    lump.observed.push_back(label.holds[s] ? 1 : 0);
  for (const ChainReward& reward : explored.chain.rewards) {
    lump.observed.push_back(std::bit_cast<std::uint64_t>(reward.values[s]));
  }
  return lump;
}

void expect_equal(const Lump& lump, const Lump& first) {
  EXPECT_EQ(lump.observed, first.observed);
  ASSERT_EQ(lump.rates.size(), first.rates.size());
  for (auto a = lump.rates.begin(), b = first.rates.begin(); a != lump.rates.end(); ++a, ++b) {
    EXPECT_EQ(a->first, b->first);
    EXPECT_NEAR(a->second, b->second, 1e-12 * b->second);
  }
}

// The states of both chains that are in one class are lumped alike, and both have all classes.
void expect_lumped(FoldedModel& folding, const Explored& full, const Explored& folded, bool is_exact) {
  std::vector<std::vector<std::int16_t>> states = full.states;
  states.insert(states.end(), folded.states.begin(), folded.states.end());
  const std::vector<int> class_of = folding.classes_of(states);
  const std::size_t n = full.states.size();
  std::map<int, Lump> first;
  std::set<int> loops;  // classes with an action that leads to another of their states
  for (StateId s = 0; s < n; ++s) {
    for (const StateId target : full.chain.matrix.targets_of(s)) {
      if (target != s && class_of[target] == class_of[s]) loops.insert(class_of[s]);
    }
    const Lump lump = lump_of(full, s, class_of.data());
    expect_equal(lump, first.try_emplace(class_of[s], lump).first->second);
  }
  std::vector<int> folded_classes(class_of.begin() + static_cast<std::ptrdiff_t>(n), class_of.end());
  for (StateId s = 0; s < folded.states.size(); ++s) {
    ASSERT_TRUE(first.contains(folded_classes[s]));
    expect_equal(lump_of(folded, s, folded_classes.data()), first.at(folded_classes[s]));
  }
  const std::size_t representatives = folded_classes.size();
  std::sort(folded_classes.begin(), folded_classes.end());
  folded_classes.erase(std::unique(folded_classes.begin(), folded_classes.end()), folded_classes.end());
  EXPECT_EQ(folded_classes.size(), first.size());
  if (!is_exact) return;
  EXPECT_EQ(representatives, first.size());
  EXPECT_EQ(folded.figures.folded_self_loops, loops.size());
}

// The mean of a quantity, and the mean of its absolute values, which bounds the rounding.
std::pair<double, double> mean(const std::vector<double>& probabilities, const auto& values) {
  double sum = 0;
  double bound = 0;
  for (std::size_t s = 0; s < probabilities.size(); ++s) {
    sum += probabilities[s] * values[s];
    bound += std::abs(probabilities[s] * values[s]);
  }
  return {sum, bound};
}

void expect_same_mean(std::pair<double, double> of_full, std::pair<double, double> of_folded) {
  if (!std::isfinite(of_full.second)) return;  // rewards that no double can sum
  EXPECT_NEAR(of_full.first, of_folded.first, 1e-10 * std::max(1.0, of_full.second));
}

void expect_same_means(const MarkovChain& full, const std::vector<double>& of_full, const MarkovChain& folded,
                       const std::vector<double>& of_folded) {
  for (std::size_t i = 0; i < full.observables.size(); ++i) {
    expect_same_mean(mean(of_full, full.observables[i].holds), mean(of_folded, folded.observables[i].holds));
  }
  for (std::size_t i = 0; i < full.rewards.size(); ++i) {
    expect_same_mean(mean(of_full, full.rewards[i].values), mean(of_folded, folded.rewards[i].values));
  }
}

// A rate at which no state of either chain is left.
double uniform_rate(const MarkovChain& full) {
  double rate = 0;
  for (StateId s = 0; s < full.matrix.state_count(); ++s) {
    const auto rates = full.matrix.rates_of(s);
    rate = std::max(rate, std::accumulate(rates.begin(), rates.end(), 0.0));
  }
  return 1.1 * rate;
}

// Compares what the chains say of times at which so many steps are expected, if doubles can hold such times.
void expect_same_transients(const MarkovChain& full, const MarkovChain& folded,
                            std::initializer_list<double> step_counts) {
  const double rate = uniform_rate(full);
  if (rate < 1e-300 || !std::isfinite(rate)) return;
  for (const double steps : step_counts) {
    expect_same_means(full, oracle::transient(full.matrix, rate, steps / rate), folded,
                      oracle::transient(folded.matrix, rate, steps / rate));
  }
}

// An error may show in another state of the class. True where folding makes the chain smaller.
bool expect_folds(const ComposedModel& model) {
  FoldedModel folding(model);
  const Explored full = folding.full({.states = 1000});
  if (full.ending == Ending::kStateLimit) return false;
  for (const bool is_exact : {false, true}) {
    const Explored folded = folding.folded(is_exact);
    EXPECT_EQ(folded.error.empty(), full.error.empty()) << folded.error << "\n" << full.error;
    if (!folded.error.empty() || !full.error.empty()) continue;
    expect_lumped(folding, full, folded, is_exact);
    expect_same_transients(full.chain, folded.chain, {0.5, 5});
  }
  return full.states.size() > folding.folded(true).states.size();
}

TEST(Folding, LumpsTheChainOfEveryExample) {
  for (const std::string& name : example_names()) {
    SCOPED_TRACE(name);
    EXPECT_EQ(expect_folds(small_example(name)), name != "tandem");
  }
  expect_folds(read_model_text("star.sym", star_text(4, 4)));
}

TEST(Folding, LumpsTheChainsOfRandomModels) {
  const Seeds seeds(400);
  unsigned folded = 0;
  for (unsigned seed = seeds.first; seed < seeds.end; ++seed) {
    const std::string text = random_model(seed);
    SCOPED_TRACE("seed " + std::to_string(seed) + "\n" + text);
    if (expect_folds(read_model_text("m.sym", text))) ++folded;
    if (HasFailure()) return;
  }
  EXPECT_GT(folded, seeds.size() / 10);
}

TEST(Folding, CountsPhilosophersAsKnown) {
  const std::vector<std::size_t> states = {45, 161, 573, 2041, 7269, 25889};
  const std::vector<std::size_t> classes = {17, 45, 117, 353, 1041, 3261};
  for (std::size_t i = 0; i < states.size(); ++i) {
    const ComposedModel model = read_model(example_path("philosophers"), {{"N", std::to_string(3 + i)}});
    FoldedModel folding(model);
    const Explored full = folding.full();
    EXPECT_EQ(full.figures.states, states[i]);
    for (const bool is_exact : {false, true}) {
      const Explored folded = folding.folded(is_exact);
      EXPECT_EQ(folded.figures.states, classes[i]);
      if (states[i] != 573) continue;
      EXPECT_EQ(full.figures.transitions, 2366U);
      EXPECT_EQ(full.figures.deadlocks, 1U);
      EXPECT_EQ(folded.figures.transitions, 461U);
      EXPECT_EQ(folded.figures.deadlocks, 1U);
    }
  }
}

// k^n states and multisets of n out of k.
TEST(Folding, CountsStarsByBinomials) {
  for (int k = 1; k <= 5; ++k) {
    std::size_t states = 1;
    std::size_t classes = 1;
    for (int n = 1; n <= 6; ++n) {
      states *= static_cast<std::size_t>(k);
      classes = classes * static_cast<std::size_t>(n + k - 1) / static_cast<std::size_t>(n);
      const ComposedModel model = read_model_text("star.sym", star_text(n, k));
      FoldedModel folding(model);
      EXPECT_EQ(folding.full().figures.states, states) << n << " of " << k;
      EXPECT_EQ(folding.folded(false).figures.states, classes) << n << " of " << k;
      EXPECT_EQ(folding.folded(true).figures.states, classes) << n << " of " << k;
    }
  }
}

TEST(Folding, KeepsAllProbabilitiesOfEveryExample) {
  for (const std::string& name : example_names()) {
    SCOPED_TRACE(name);
    const ComposedModel model = small_example(name);
    FoldedModel folding(model);
    const MarkovChain full = folding.full().chain;
    const MarkovChain folded = folding.folded(false).chain;
    const double rate = uniform_rate(full);
    expect_same_transients(full, folded, {0.05 * rate, 0.5 * rate, 500});
    expect_same_means(full, oracle::long_run(full.matrix, rate), folded,
                      oracle::long_run(folded.matrix, rate));
  }
}

}  // namespace
}  // namespace symfold
