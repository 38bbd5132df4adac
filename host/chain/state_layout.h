// Where the variables of a composed model stand in its state vector, and states as text.

#ifndef SYMFOLD_HOST_CHAIN_STATE_LAYOUT_H
#define SYMFOLD_HOST_CHAIN_STATE_LAYOUT_H

#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "host/chain/markov_chain.h"
#include "host/model/composed_model.h"

namespace symfold {

struct EvaluationError;

// A state is a slot of 16 bits for each variable. The slots of a submodel's private variables are a cell, a
// piece of the state that symmetries move as a whole; so is the slot of each join. A cell is a partition of
// the state vector that the detector labels.
//
// The bytes of that state vector are the slots as they lie in memory, little endian: the low byte of each
// comes first. The labellers compare states byte by byte, as memcmp does. So the first variable that differs
// decides which of two images is larger, and its low byte counts before its high byte: 1 (bytes 1, 0) is
// larger than 256 (bytes 0, 1), and -1 (bytes 255, 255) is the largest value of all.
class StateLayout {
 public:
  // Cells in the order of these names, which are those of all submodels and joins, each once: a detector's
  // SSOrder. If there are no names, the submodels come first and then the joins, both in the model's order.
  // Throws std::out_of_range for an unknown name.
  explicit StateLayout(const ComposedModel& model, const std::vector<std::string>& order = {});

  std::size_t slot_count() const { return variables_.size(); }

  // The slots of a submodel's variables, in the order of TypeDecl::variables. Shared variables that one join
  // binds have the same slot.
  const std::uint32_t* slots_of(std::size_t submodel) const { return slots_.data() + first_slots_[submodel]; }

  // By slot.
  const std::vector<ChainVariable>& variables() const { return variables_; }
  const std::vector<std::int16_t>& initial_state() const { return initial_state_; }

 private:
  struct Cell {
    bool is_join;
    std::size_t index;  // into the model's submodels or joins
  };

  void place(const ComposedModel& model, const std::vector<Cell>& cells);
  std::uint32_t add_variable(std::string name, const ValueSet& values, int initial);

  std::vector<ChainVariable> variables_;
  std::vector<std::int16_t> initial_state_;
  std::vector<std::uint32_t> slots_;
  std::vector<std::size_t> first_slots_;  // by submodel, into slots_
};

// "phil_0.phase = left, fork_0 = false"; if there are many variables, the first ones.
std::string state_text(const StateLayout& layout, const std::int16_t* state);

// Throws ModelError with the error's message and its place in the model's text, with `where` it happened
// ("action 'takeL' of phil_0") and with the state.
[[noreturn]] void fail_in_state(const ComposedModel& model, const StateLayout& layout,
                                const EvaluationError& error, const std::string& where,
                                const std::int16_t* state);

}  // namespace symfold

#endif  // SYMFOLD_HOST_CHAIN_STATE_LAYOUT_H
