// A model's chain, computed from the checked tree itself: the slow, obvious twin of programs, state store and
// explorer.

#ifndef SYMFOLD_TESTS_ORACLES_NAIVE_CHAIN_H
#define SYMFOLD_TESTS_ORACLES_NAIVE_CHAIN_H

#include <map>
#include <string>
#include <vector>

#include "host/model/composed_model.h"

namespace symfold::oracle {

// The values of all submodels' private variables, then those of the joins, in the model's order.
using State = std::vector<int>;

// States are numbered as they are found, breadth first and in the order of submodels and actions.
struct NaiveChain {
  std::vector<std::string> variables;
  std::vector<State> states;
  std::vector<std::map<std::size_t, double>> rows;  // rates by target
  std::vector<std::vector<double>> labels;          // by label and state: 1 or 0
  std::vector<std::vector<double>> rewards;         // by reward and state
  std::string error;                                // what() of the model's error, if it has one
  bool is_complete = false;                         // neither an error nor too many states
};

// Stops after more than `max_states` states.
NaiveChain naive_chain(const ComposedModel& model, std::size_t max_states);

}  // namespace symfold::oracle

#endif  // SYMFOLD_TESTS_ORACLES_NAIVE_CHAIN_H
