// The inside of an Exploration.
//
// States are expanded in the order of their numbers. The place in the index of a successor is fetched while
// the other successors are computed, and the successors of a state are inserted together, in batches of at
// most 64 KiB of packed states. With a labeller every successor is replaced by its label before it is looked
// up. Nothing is allocated per state but what the store, the rate matrix, the longest row and the tables of
// local states need to grow. All of that is counted against the limit of memory before it is allocated,
// except for the tables, which are counted afterwards. Where the system refuses memory, the exploration ends
// in the same way.

#ifndef SYMFOLD_HOST_CHAIN_EXPLORER_H
#define SYMFOLD_HOST_CHAIN_EXPLORER_H

#include <chrono>
#include <cstdint>
#include <functional>
#include <span>
#include <string>
#include <vector>

#include "detector/labeller.h"
#include "host/chain/exploration.h"
#include "host/chain/local_states.h"
#include "host/chain/observables.h"
#include "host/chain/state_layout.h"
#include "host/chain/state_packing.h"
#include "host/chain/state_store.h"
#include "host/chain/transition_system.h"
#include "host/symmetry/certificate.h"

namespace symfold {

class Explorer {
 public:
  // The contracts are those of Exploration.
  Explorer(const ComposedModel& model, const std::vector<std::string>& order, Labeller* labeller,
           bool keeps_chain);
  Explorer(const Explorer&) = delete;
  Explorer& operator=(const Explorer&) = delete;

  Ending run(const ExplorationLimits& limits, const Exploration::Progress& progress);
  const ExplorationFigures& figures() const { return figures_; }
  const std::vector<std::string>& observable_names() const { return observables_.observable_names(); }
  bool certify(Certificate& certificate, const std::function<bool()>& goes_on);
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

  void explore();
  void insert_initial_state();
  void load(StateId id);
  void expand(StateId id);
  void add_successor(double rate, std::span<const Write> writes, const std::uint32_t* slots);
  std::uint64_t* new_successor_words();
  bool insert_full_batch();
  bool insert_successors();
  bool grow_row();
  void merge_row();
  bool make_room();
  void append_row();
  std::size_t matrix_memory() const;
  std::size_t side_memory() const;
  void recount_memory();
  bool has_room_for(std::size_t bytes) const;
  void count();
  void check_in();
  void update_figures();
  void certify_state(Certificate& certificate);
  LabelledState label_again(std::span<const std::int16_t> state);
  bool stop(Ending ending) {
    ending_ = ending;
    return false;
  }

  StateLayout layout_;
  Labeller* labeller_;
  bool keeps_matrix_;
  ExplorationLimits limits_;
  const Exploration::Progress* progress_ = nullptr;
  LocalStates local_states_;
  TransitionSystem system_;
  Observables observables_;
  StatePacking packing_;
  StateStore store_;
  RateMatrix matrix_;

  // The state under expansion: its number, packed, its values, its submodels' local states.
  StateId source_ = 0;
  std::vector<std::uint64_t> words_;
  std::vector<std::int16_t> values_;
  std::vector<std::uint32_t> local_;
  // A batch of its successors, packed one after the other.
  std::vector<Successor> successors_;
  std::vector<std::uint64_t> successor_words_;
  std::size_t batch_words_;  // of a full batch
  std::vector<std::int16_t> image_;
  // What all its batches have come to: its row of the matrix, and what is counted.
  std::vector<Entry> row_;
  std::uint32_t successor_count_ = 0;
  bool has_self_loop_ = false;
  bool has_folded_self_loop_ = false;

  std::vector<short> witness_;  // of a label that is certified

  Ending ending_ = Ending::kUnderWay;
  ExplorationFigures figures_;
  std::size_t side_memory_at_start_ = 0;
  std::size_t counted_side_memory_ = 0;  // beyond that at the start
  std::size_t level_end_ = 1;
  std::size_t next_check_ = 0;  // in successors
  std::chrono::steady_clock::time_point start_{};
  double next_progress_ = 0;  // in seconds since the start
};

}  // namespace symfold

#endif  // SYMFOLD_HOST_CHAIN_EXPLORER_H
