// Breadth-first exploration of a model's state space, as it is or folded by its symmetries.
//
//     Exploration exploration(model, {}, nullptr, true);
//     if (exploration.run({}, [](const ExplorationFigures&) { return true; }) == Ending::kComplete) {
//       const MarkovChain chain = exploration.take_chain();
//       ...
//     }

#ifndef SYMFOLD_HOST_CHAIN_EXPLORATION_H
#define SYMFOLD_HOST_CHAIN_EXPLORATION_H

#include <cstddef>
#include <cstdint>
#include <functional>
#include <limits>
#include <memory>
#include <string>
#include <vector>

#include "host/chain/markov_chain.h"

namespace symfold {

struct ComposedModel;
class Certificate;
class Explorer;
class Labeller;

// An exploration that would go beyond a limit ends. It also ends with kMemoryLimit if the system refuses
// memory.
struct ExplorationLimits {
  std::size_t states = std::numeric_limits<std::size_t>::max();
  std::size_t bytes = std::numeric_limits<std::size_t>::max();  // of all that grows while it runs
  double seconds = std::numeric_limits<double>::infinity();
};

enum class Ending : std::uint8_t {
  kUnderWay,
  kComplete,
  kStateLimit,
  kMemoryLimit,
  kTimeLimit,
  kInterrupted
};

// "complete", "state limit".
const char* to_string(Ending ending);

// What an exploration has found so far. Everything but `states` is about the expanded states, which are all
// states when the exploration is complete.
struct ExplorationFigures {
  std::size_t states = 0;
  std::size_t expanded = 0;
  std::size_t transitions = 0;  // distinct pairs of source and target; a deadlock counts as one, its own loop
  std::size_t deadlocks = 0;
  std::size_t self_loops = 0;         // states with an action that leads back to them
  std::size_t folded_self_loops = 0;  // those of which some action changed the state, but not its class
  std::size_t successors = 0;         // occurrences of actions
  std::size_t depth = 0;              // distance of the last states reached from the initial one
  std::vector<std::size_t> observable_counts;  // by observable, the states in which it holds
  double seconds = 0;
  std::size_t state_bytes = 0;  // of one packed state
  std::size_t memory = 0;       // bytes of states, index and rate matrix

  std::size_t frontier() const { return states - expanded; }
};

// One exploration of one model, used by one thread at a time. Explorations of one model may run in several
// threads, each with a labeller of its own.
//
// Cost of a state: the numbering of its submodels' local states, and for each action a copy of the packed
// state or, with a labeller, one label. After the tables of local states are filled, memory is allocated for
// the states, their index and the rate matrix alone.
class Exploration {
 public:
  // Returns false to interrupt the exploration.
  using Progress = std::function<bool(const ExplorationFigures&)>;

  // Without a labeller (null) the whole state space is explored. With one, every state reached is replaced by
  // its label, so that the chain is that of the labels: the rate from r to s is the sum over r's actions
  // whose successor has the label s.
  //
  // `order` is the order of submodels and joins in the state vector that the labeller takes: the names of all
  // of them, each once, which is the detector's SSOrder. If it is empty, the submodels come first and then
  // the joins, both in the model's order. If `keeps_chain` is false, the rate matrix (8 bytes
  // a state and 12 bytes a transition) is not kept, and take_chain() must not be called.
  //
  // Model and labeller must outlive the exploration. Throws ModelError if the compiled actions are too large
  // or an observable has a quantifier with arguments that have no value, and std::out_of_range for an unknown
  // name in the order.
  Exploration(const ComposedModel& model, const std::vector<std::string>& order, Labeller* labeller,
              bool keeps_chain);
  ~Exploration();
  Exploration(const Exploration&) = delete;
  Exploration& operator=(const Exploration&) = delete;

  // Explores until all states are expanded or a limit is reached. To be called once. `progress` must not be
  // empty; it is called about ten times a second, and at the end. Throws ModelError if an action or an
  // observable has no value in a state reached.
  Ending run(const ExplorationLimits& limits, const Progress& progress);

  const ExplorationFigures& figures() const;

  // In the model's order, which is that of ExplorationFigures::observable_counts.
  const std::vector<std::string>& observable_names() const;

  // Writes a certificate of the folding. Walks through the expanded states of the sample once more; each of
  // their successors that differs from its source is computed and labelled anew, and its label must be among
  // the states of the exploration. Asks between states whether to go on; if not, returns false, and no file
  // is left. Requires a labeller and a run that has expanded a state. Throws what Certificate throws, and
  // UnsoundSymmetryError for a label that is not among the states.
  bool certify(Certificate& certificate, const std::function<bool()>& goes_on);

  // The chain. Requires keeps_chain and a run that was complete; to be called once. The chain reads its
  // states from this object, which must outlive it. Throws ModelError if a reward has no value in a state.
  MarkovChain take_chain();

 private:
  std::unique_ptr<Explorer> explorer_;
};

}  // namespace symfold

#endif  // SYMFOLD_HOST_CHAIN_EXPLORATION_H
