// The labels and rewards of a model, evaluated on its states.

#ifndef SYMFOLD_HOST_CHAIN_OBSERVABLES_H
#define SYMFOLD_HOST_CHAIN_OBSERVABLES_H

#include <cstdint>
#include <string>
#include <vector>

#include "host/chain/local_states.h"
#include "host/chain/program_compiler.h"
#include "host/chain/state_layout.h"
#include "host/model/composed_model.h"

namespace symfold {

// A quantifier is a loop over the submodels that it ranges over. Where its body looks at that submodel alone,
// the body's value is remembered for each local state; bodies with quantifiers inside are evaluated anew.
// It is evaluated for all submodels, and numbers are summed in ascending order, so that states that differ by
// a symmetry have the same value to the last bit, or all none.
class Observables : private QuantifierValues {
 public:
  // Keeps references to all three. Throws ModelError where a quantifier's arguments have no value.
  Observables(const ComposedModel& model, const StateLayout& layout, const LocalStates& local_states);
  Observables(const Observables&) = delete;
  Observables& operator=(const Observables&) = delete;

  // In the model's order.
  std::size_t label_count() const { return labels_.size(); }
  std::size_t reward_count() const { return rewards_.size(); }
  const std::string& label_name(std::size_t label) const { return labels_[label].name; }
  const std::string& reward_name(std::size_t reward) const { return rewards_[reward].name; }

  // `local` is what LocalStates::locate says of the state. Throw ModelError where the expression has no
  // value.
  bool holds(std::size_t label, const std::int16_t* state, const std::uint32_t* local) {
    return value_in(labels_[label], state, local).integer != 0;
  }
  double value(std::size_t reward, const std::int16_t* state, const std::uint32_t* local) {
    return value_in(rewards_[reward], state, local).real;
  }

 private:
  struct Observable {
    std::string name;
    Program value;
  };
  struct QuantifierLoop {
    Op op;
    bool is_real;       // of a sum
    std::size_t frame;  // of its submodel
    Offset offset;
    std::vector<std::uint32_t> submodels;
    Program body;
    bool is_remembered;
    std::vector<Cell> known;     // by local state
    std::vector<bool> is_known;  // by local state
    std::vector<Cell> summands;
  };

  void compile(const ObservableDecl& declaration);
  std::uint32_t add_quantifier(ExprId id, std::vector<int> around);
  std::vector<std::uint32_t> range_of(const Quantifier& quantifier) const;
  Cell value_in(const Observable& observable, const std::int16_t* state, const std::uint32_t* local);
  Cell value_of(std::uint32_t quantifier, Frames& frames) override;
  Cell sum(QuantifierLoop& loop, Frames& frames);
  Cell body_value(QuantifierLoop& loop, std::uint32_t submodel, Frames& frames);

  const ComposedModel& model_;
  const StateLayout& layout_;
  const LocalStates& local_states_;
  ProgramCompiler compiler_;
  std::vector<Observable> labels_;
  std::vector<Observable> rewards_;
  std::vector<QuantifierLoop> quantifiers_;
  const std::uint32_t* local_ = nullptr;  // of the state under evaluation
};

}  // namespace symfold

#endif  // SYMFOLD_HOST_CHAIN_OBSERVABLES_H
