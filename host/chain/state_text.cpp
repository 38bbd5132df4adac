#include "host/chain/state_text.h"

#include <algorithm>

#include "host/model/model_error.h"

namespace symfold {

namespace {
constexpr std::size_t kVariablesShown = 40;
}  // namespace

std::string state_text(const StateLayout& layout, const std::int16_t* state) {
  std::string text;
  for (std::size_t i = 0; i < std::min(layout.slot_count(), kVariablesShown); ++i) {
    const ChainVariable& variable = layout.variables()[i];
    text += (i == 0 ? "" : ", ") + variable.name + " = " + value_text(variable.values, state[i]);
  }
  if (layout.slot_count() > kVariablesShown) text += ", ...";
  return text;
}

void fail_in_state(const ComposedModel& model, const StateLayout& layout, const EvaluationError& error,
                   const std::string& where, const std::int16_t* state) {
  throw ModelError({model.description->source->diagnostic_at(
      error.offset, error.message + " (in " + where + ", where " + state_text(layout, state) + ")")});
}

}  // namespace symfold
