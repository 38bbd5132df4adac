// Breadth-first exploration of a model's state space, as it is or folded by its symmetries.
//
// The states reached are expanded in the order of their numbers. A successor's place in the index is fetched
// while the other successors are computed. With a labeller every successor is replaced by its canonical
// label before it is looked up, so that the chain is that of the representatives: the rate from r to s is the
// sum over r's actions whose successor has the label s.
//
// Cost of a state: the numbering of its submodels' local states, and for each action a copy of the packed
// state, or with folding a label. Nothing is allocated but the store and, if kept, the rate matrix.

#ifndef SYMFOLD_HOST_CHAIN_EXPLORATION_H
#define SYMFOLD_HOST_CHAIN_EXPLORATION_H

#include <chrono>
#include <cstdint>
#include <functional>
#include <limits>
#include <vector>

#include "detector/labeller.h"
#include "host/chain/local_states.h"
#include "host/chain/markov_chain.h"
#include "host/chain/observables.h"
#include "host/chain/state_layout.h"
#include "host/chain/state_packing.h"
#include "host/chain/state_store.h"
#include "host/chain/transition_system.h"

namespace symfold {

struct ExplorationLimits {
  std::size_t states = std::numeric_limits<std::size_t>::max();
  std::size_t bytes = std::numeric_limits<std::size_t>::max();  // of states, index and rate matrix
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

// What an exploration has found so far. Everything but `states` is about the states expanded: all, in the
// end.
struct ExplorationFigures {
  std::size_t states = 0;
  std::size_t expanded = 0;
  std::size_t transitions = 0;  // distinct pairs of source and target; a deadlock counts as one, its own loop
  std::size_t deadlocks = 0;
  std::size_t self_loops = 0;         // states with an action that leads back to them
  std::size_t folded_self_loops = 0;  // those of which some action changed the state, but not its class
  std::size_t successors = 0;         // occurrences of actions
  std::size_t depth = 0;              // distance of the last states reached from the initial one
  std::vector<std::size_t> label_counts;
  double seconds = 0;
  std::size_t state_bytes = 0;  // of one packed state
  std::size_t memory = 0;       // of states, index and rate matrix

  std::size_t frontier() const { return states - expanded; }
};

class Exploration {
 public:
  // Called about ten times a second, and at the end; false interrupts.
  using Progress = std::function<bool(const ExplorationFigures&)>;

  // Explores the whole state space for `labeller` null, else that of the representatives; the layout is in
  // the order of the labelled state vector. Keeps references to all three.
  Exploration(const ComposedModel& model, const StateLayout& layout, Labeller* labeller, bool keeps_matrix);
  Exploration(const Exploration&) = delete;
  Exploration& operator=(const Exploration&) = delete;

  // To be called once. Throws ModelError where an action, label or reward has no value in a state reached.
  Ending run(const ExplorationLimits& limits, const Progress& progress);

  const ExplorationFigures& figures() const { return figures_; }
  const Observables& observables() const { return observables_; }

  // The chain of a complete exploration that kept its matrix, which moves into the chain. The chain reads its
  // states from this object, which must outlive it.
  MarkovChain take_chain();

 private:
  struct Successor {
    double rate;
    std::uint64_t hash;
    bool is_changed;
  };
  struct Entry {
    StateId target;
    std::uint32_t position;  // among the successors
    double rate;
  };

  void insert_initial_state();
  void load(StateId id);
  void expand(StateId id);
  void add_successor(double rate, std::span<const Write> writes, const std::uint32_t* slots);
  std::uint64_t* new_successor_words();
  bool insert_successors();
  void count_loops(StateId source);
  void merge_row();
  bool make_room();
  void append_row();
  std::size_t matrix_memory() const;
  void count(StateId source);
  void check_in(const Progress& progress);
  void update_figures();
  bool stop(Ending ending) {
    ending_ = ending;
    return false;
  }

  const StateLayout& layout_;
  Labeller* labeller_;
  bool keeps_matrix_;
  ExplorationLimits limits_;
  LocalStates local_states_;
  TransitionSystem system_;
  Observables observables_;
  StatePacking packing_;
  StateStore store_;
  RateMatrix matrix_;

  // The state under expansion: packed, its values, its submodels' local states.
  std::vector<std::uint64_t> words_;
  std::vector<std::int16_t> values_;
  std::vector<std::uint32_t> local_;
  // Its successors, packed one after the other, and its row of the matrix.
  std::vector<Successor> successors_;
  std::vector<std::uint64_t> successor_words_;
  std::vector<std::int16_t> image_;
  std::vector<Entry> row_;

  Ending ending_ = Ending::kUnderWay;
  ExplorationFigures figures_;
  std::size_t level_end_ = 1;
  std::size_t next_check_ = 0;  // in successors
  std::chrono::steady_clock::time_point start_{};
  double next_progress_ = 0;  // in seconds since the start
};

}  // namespace symfold

#endif  // SYMFOLD_HOST_CHAIN_EXPLORATION_H
