// What a composed model does: the actions that are enabled in a state, with their rates and writes.

#ifndef SYMFOLD_HOST_CHAIN_TRANSITION_SYSTEM_H
#define SYMFOLD_HOST_CHAIN_TRANSITION_SYSTEM_H

#include <cmath>
#include <cstdint>
#include <span>
#include <vector>

#include "host/chain/local_states.h"
#include "host/chain/program_compiler.h"
#include "host/chain/state_layout.h"
#include "host/model/composed_model.h"

namespace symfold {

// A new value for a variable of the submodel that acts.
struct Write {
  std::uint32_t variable;  // in the order of declaration
  std::int16_t value;
};

// Actions are compiled once for each type instance. The first time that a submodel is seen in a local state,
// the actions enabled there are evaluated, and remembered for all submodels of the instance. From then on a
// submodel costs the numbering of its local state and one look-up. Submodels whose local states are not
// numbered are evaluated anew each time.
//
// An action's writes are made in the order of its text: if one join binds two of the variables, the value of
// the later one stays.
class TransitionSystem {
 public:
  // Keeps references to all three. Throws ModelError if the compiled actions are too large.
  TransitionSystem(const ComposedModel& model, const StateLayout& layout, const LocalStates& local_states);

  std::size_t submodel_count() const { return model_.submodels.size(); }

  // Bytes of the events and writes that are remembered, which grow with the local states seen.
  std::size_t memory() const {
    return events_.capacity() * sizeof(Event) + writes_.capacity() * sizeof(Write);
  }

  // Calls visit(rate, writes, slots) for every enabled action of positive rate; each write goes to the slot
  // slots[write.variable]. Submodels come in the model's order, the actions of each in that of its type.
  // `local` is what LocalStates::locate says of the state. Throws ModelError if a rate is negative or
  // infinite, a value is outside its variable's set, an expression has no value or, after all visits, the
  // rates have no finite sum. Allocates nothing for a local state seen before.
  template <class Visit>
  void for_each_action(const std::int16_t* state, const std::uint32_t* local, Visit visit) {
    double exit_rate = 0;
    for (std::size_t s = 0; s < submodel_count(); ++s) {
      const Range events = events_of(s, state, local[s]);
      for (std::uint32_t e = events.begin; e < events.end; ++e) {
        const Event& event = events_[e];
        exit_rate += event.rate;
        visit(event.rate, std::span(writes_.data() + event.writes.begin, writes_.data() + event.writes.end),
              layout_.slots_of(s));
      }
    }
    if (!std::isfinite(exit_rate)) fail_exit_rate(state);
  }

  struct EnabledAction {
    std::size_t submodel;
    const ActionDecl* declaration;
  };

  // The actions that for_each_action visits, in the same order, for whoever wants to name them. All guards
  // and rates are evaluated anew.
  std::vector<EnabledAction> enabled_actions(const std::int16_t* state) const;

 private:
  struct Range {
    std::uint32_t begin;
    std::uint32_t end;
  };
  struct Event {
    double rate;
    Range writes;
  };
  struct CompiledWrite {
    std::uint32_t variable;
    ValueSet values;
    Offset offset;
    Program value;
  };
  struct CompiledAction {
    const ActionDecl* declaration;
    Offset rate_offset;
    Program guard;
    Program rate;
    std::vector<CompiledWrite> writes;
  };

  static constexpr std::uint32_t kUnknown = UINT32_MAX;

  CompiledAction compile(ProgramCompiler& compiler, const ActionDecl& action, const TypeInstance& instance);
  Range events_of(std::size_t submodel, const std::int16_t* state, std::uint32_t local) {
    if (local != LocalStates::kNone && known_[local].begin != kUnknown) return known_[local];
    return evaluate_events(submodel, state, local);
  }
  Range evaluate_events(std::size_t submodel, const std::int16_t* state, std::uint32_t local);
  void evaluate_action(const CompiledAction& action, Frames& frames);
  static double rate_of(const CompiledAction& action, Frames& frames);
  [[noreturn]] void fail_exit_rate(const std::int16_t* state) const;

  const ComposedModel& model_;
  const StateLayout& layout_;
  std::vector<std::vector<CompiledAction>> actions_;  // by instance
  std::vector<Range> known_;                          // by local state, into events_
  std::vector<Event> events_;
  std::vector<Write> writes_;
  // From these positions on they belong to a local state that is not remembered.
  std::uint32_t remembered_events_ = 0;
  std::uint32_t remembered_writes_ = 0;
};

}  // namespace symfold

#endif  // SYMFOLD_HOST_CHAIN_TRANSITION_SYSTEM_H
