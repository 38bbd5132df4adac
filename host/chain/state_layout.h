// Where the variables of a composed model stand in its state vector.

#ifndef SYMFOLD_HOST_CHAIN_STATE_LAYOUT_H
#define SYMFOLD_HOST_CHAIN_STATE_LAYOUT_H

#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "host/chain/markov_chain.h"
#include "host/model/composed_model.h"

namespace symfold {

// A state is a slot of 16 bits for each variable. Read as bytes, little endian, it is the state vector that
// the detector labels: a partition of private variables for each submodel, one of a single variable for each
// join.
class StateLayout {
 public:
  // Submodels, then joins, in the model's order.
  explicit StateLayout(const ComposedModel& model);

  // Partitions in the order of these names, which are those of all submodels and joins: a detector's SSOrder.
  StateLayout(const ComposedModel& model, const std::vector<std::string>& order);

  std::size_t slot_count() const { return variables_.size(); }

  // The slots of a submodel's variables, in the order of TypeDecl::variables. Those of shared variables that
  // one join binds are equal.
  const std::uint32_t* slots_of(std::size_t submodel) const { return slots_.data() + first_slots_[submodel]; }

  // By slot.
  const std::vector<ChainVariable>& variables() const { return variables_; }
  const std::vector<std::int16_t>& initial_state() const { return initial_state_; }

 private:
  struct Partition {
    bool is_join;
    std::size_t index;  // into the model's submodels or joins
  };

  void place(const ComposedModel& model, const std::vector<Partition>& partitions);
  std::uint32_t add_variable(std::string name, const ValueSet& values, int initial);

  std::vector<ChainVariable> variables_;
  std::vector<std::int16_t> initial_state_;
  std::vector<std::uint32_t> slots_;
  std::vector<std::size_t> first_slots_;  // by submodel, into slots_
};

}  // namespace symfold

#endif  // SYMFOLD_HOST_CHAIN_STATE_LAYOUT_H
