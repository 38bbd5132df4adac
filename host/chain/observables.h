// The observables and rewards of a model, evaluated on its states.

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

// A quantifier is a loop over the submodels that it ranges over. If its body looks at that submodel alone,
// the body's value is remembered for each local state; a body with quantifiers inside is evaluated anew each
// time. The loop never stops early, and numbers are summed in ascending order. So states that differ by a
// symmetry have the same value to the last bit, or none of them has a value.
class Observables : private QuantifierValues {
 public:
  // Keeps references to all three. Throws ModelError if a quantifier's arguments have no value.
  Observables(const ComposedModel& model, const StateLayout& layout, const LocalStates& local_states);
  Observables(const Observables&) = delete;
  Observables& operator=(const Observables&) = delete;

  // In the model's order.
  const std::vector<std::string>& observable_names() const { return observables_.names; }
  const std::vector<std::string>& reward_names() const { return rewards_.names; }

  // The value in a state of one of them, numbered as its name is. `local` is what LocalStates::locate says of
  // the state. Both throw ModelError if the expression has no value.
  bool holds(std::size_t index, const std::int16_t* state, const std::uint32_t* local) {
    return value_in(observables_, index, state, local).integer != 0;
  }
  double reward(std::size_t index, const std::int16_t* state, const std::uint32_t* local) {
    return value_in(rewards_, index, state, local).real;
  }

 private:
  struct NamedPrograms {
    std::vector<std::string> names;
    std::vector<Program> programs;
  };
  struct QuantifierLoop {
    Op op;
    bool is_real;       // of a sum
    std::size_t frame;  // of its submodel
    Offset offset;
    std::vector<std::uint32_t> submodels;
    Program body;
    bool is_remembered;
    std::vector<Number> known;   // by local state
    std::vector<bool> is_known;  // by local state
    std::vector<Number> summands;
  };

  void compile(const ObservableDecl& declaration);
  std::uint32_t add_quantifier(ExprId id, std::vector<int> around);
  std::vector<std::uint32_t> range_of(const Quantifier& quantifier) const;
  Number value_in(const NamedPrograms& of, std::size_t index, const std::int16_t* state,
                  const std::uint32_t* local);
  Number value_of(std::uint32_t quantifier, Frames& frames) override;
  Number sum(QuantifierLoop& loop, Frames& frames);
  Number body_value(QuantifierLoop& loop, std::uint32_t submodel, Frames& frames);

  const ComposedModel& model_;
  const StateLayout& layout_;
  const LocalStates& local_states_;
  ProgramCompiler compiler_;
  NamedPrograms observables_;
  NamedPrograms rewards_;
  std::vector<QuantifierLoop> quantifiers_;
  const std::uint32_t* local_ = nullptr;  // of the state under evaluation
};

}  // namespace symfold

#endif  // SYMFOLD_HOST_CHAIN_OBSERVABLES_H
