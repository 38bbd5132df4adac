#include "host/chain/transition_system.h"

#include <string>

#include "host/model/model_error.h"

namespace symfold {
namespace {

// Events and writes of one model together, of 16 and 8 bytes each.
constexpr std::size_t kMaxRemembered = 4'000'000;

}  // namespace

TransitionSystem::TransitionSystem(const ComposedModel& model, const StateLayout& layout,
                                   const LocalStates& local_states)
    : model_(model), layout_(layout), known_(local_states.total(), Range{kUnknown, kUnknown}) {
  ProgramCompiler compiler(*model.description);
  for (const TypeInstance& instance : model.instances) {
    std::vector<CompiledAction>& actions = actions_.emplace_back();
    for (const ActionDecl& action : model.description->type(instance.type).actions) {
      actions.push_back(compile(compiler, action, instance));
    }
  }
}

TransitionSystem::CompiledAction TransitionSystem::compile(ProgramCompiler& compiler,
                                                           const ActionDecl& action,
                                                           const TypeInstance& instance) {
  const ModelDescription& description = *model_.description;
  const std::vector<VariableDecl>& variables = description.type(instance.type).variables;
  CompiledAction compiled{&action,
                          description.expr(action.rate).offset,
                          compiler.compile(action.guard, kBoolType, instance.arguments),
                          compiler.compile(action.rate, kRealType, instance.arguments),
                          {}};
  for (const Assignment& assignment : action.assignments) {
    const VariableDecl& variable = variables[static_cast<std::size_t>(assignment.variable_index)];
    compiled.writes.push_back({static_cast<std::uint32_t>(assignment.variable_index),
                               values_of(instance, variable), description.expr(assignment.value).offset,
                               compiler.compile(assignment.value, variable.type, instance.arguments)});
  }
  return compiled;
}

TransitionSystem::Range TransitionSystem::evaluate_events(std::size_t submodel, const std::int16_t* state,
                                                          std::uint32_t local) {
  events_.resize(remembered_events_);
  writes_.resize(remembered_writes_);
  Frames frames(state, nullptr);
  frames.set(0, layout_.slots_of(submodel));
  for (const CompiledAction& action :
       actions_[static_cast<std::size_t>(model_.submodels[submodel].instance)]) {
    try {
      evaluate_action(action, frames);
    } catch (const EvaluationError& error) {
      fail_in_state(
          model_, layout_, error,
          "action '" + std::string(action.declaration->name.text) + "' of " + model_.submodels[submodel].name,
          state);
    }
  }
  const Range range{remembered_events_, static_cast<std::uint32_t>(events_.size())};
  if (local != LocalStates::kNone && events_.size() + writes_.size() <= kMaxRemembered) {
    known_[local] = range;
    remembered_events_ = range.end;
    remembered_writes_ = static_cast<std::uint32_t>(writes_.size());
  }
  return range;
}

void TransitionSystem::fail_exit_rate(const std::int16_t* state) const {
  throw ModelError(model_.description->source->name(),
                   "expected actions whose rates have a finite sum, got infinity (where " +
                       state_text(layout_, state) + ")");
}

std::vector<TransitionSystem::EnabledAction> TransitionSystem::enabled_actions(
    const std::int16_t* state) const {
  std::vector<EnabledAction> enabled;
  Frames frames(state, nullptr);
  for (std::size_t s = 0; s < submodel_count(); ++s) {
    frames.set(0, layout_.slots_of(s));
    for (const CompiledAction& action : actions_[static_cast<std::size_t>(model_.submodels[s].instance)]) {
      if (rate_of(action, frames) != 0) enabled.push_back({s, action.declaration});
    }
  }
  return enabled;
}

// 0 for an action that is not enabled.
double TransitionSystem::rate_of(const CompiledAction& action, Frames& frames) {
  return evaluate(action.guard, frames).integer == 0 ? 0 : evaluate(action.rate, frames).real;
}

// Adds the action's event if it is enabled.
void TransitionSystem::evaluate_action(const CompiledAction& action, Frames& frames) {
  const double rate = rate_of(action, frames);
  if (rate == 0) return;
  if (rate < 0) {
    throw EvaluationError{action.rate_offset,
                          "expected a rate of at least 0, got " + to_string(Value::of_real(rate))};
  }
  const auto first_write = static_cast<std::uint32_t>(writes_.size());
  for (const CompiledWrite& write : action.writes) {
    const std::int64_t value = evaluate(write.value, frames).integer;
    if (!write.values.contains(value)) {
      throw EvaluationError{
          write.offset, "expected a value of " + to_string(write.values) + ", got " + std::to_string(value)};
    }
    writes_.push_back({write.variable, static_cast<std::int16_t>(value)});
  }
  events_.push_back({rate, {first_write, static_cast<std::uint32_t>(writes_.size())}});
}

}  // namespace symfold
