// A continuous-time Markov chain with what a model says about its states.

#ifndef SYMFOLD_HOST_CHAIN_MARKOV_CHAIN_H
#define SYMFOLD_HOST_CHAIN_MARKOV_CHAIN_H

#include <cstddef>
#include <cstdint>
#include <functional>
#include <span>
#include <string>
#include <vector>

#include "host/model/composed_model.h"

namespace symfold {

// States are numbered from 0.
using StateId = std::uint32_t;

// The rate matrix by rows, in 8 bytes a state and 12 bytes an entry. Row s consists of the entries from
// row_starts[s] up to, but not including, row_starts[s + 1]. In a row the targets ascend, each occurs once,
// and the rates are positive and finite. A deadlock has an empty row; a state that an action leaves as it is
// has itself as a target. The functions of one state require that it is less than state_count().
struct RateMatrix {
  std::vector<std::uint64_t> row_starts{0};
  std::vector<StateId> targets;
  std::vector<double> rates;

  std::size_t state_count() const { return row_starts.size() - 1; }
  std::size_t entry_count() const { return targets.size(); }
  bool is_deadlock(StateId state) const { return row_starts[state] == row_starts[state + 1]; }

  std::span<const StateId> targets_of(StateId state) const {
    return {targets.data() + row_starts[state], row_length(state)};
  }
  std::span<const double> rates_of(StateId state) const {
    return {rates.data() + row_starts[state], row_length(state)};
  }

 private:
  std::size_t row_length(StateId state) const { return row_starts[state + 1] - row_starts[state]; }
};

// A variable of the state: "phil_0.phase" of a submodel, "fork_0" of a join.
struct ChainVariable {
  std::string name;
  ValueSet values;
};

// A named predicate on states; `label` in the model language.
struct ChainObservable {
  std::string name;
  std::vector<bool> holds;  // by state
};

struct ChainReward {
  std::string name;
  std::vector<double> values;  // by state, per unit of time
};

// The chain of a model, or of the labels of its states. State 0 is the initial one.
//
// A chain that an exploration has made reads its states from that exploration, which must outlive it. Then
// read_values works in one thread at a time and takes time in the number of variables; the other members are
// plain values, which any number of threads may read.
struct MarkovChain {
  RateMatrix matrix;
  std::vector<ChainVariable> variables;
  // Writes the values of all variables in a state, in their order, as numbers of ValueSet. The span is as
  // long as `variables`.
  std::function<void(StateId, std::span<std::int16_t>)> read_values;
  std::vector<ChainObservable> observables;  // in the model's order
  std::vector<ChainReward> rewards;          // in the model's order
};

}  // namespace symfold

#endif  // SYMFOLD_HOST_CHAIN_MARKOV_CHAIN_H
