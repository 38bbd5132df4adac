// Errors that a model makes while it runs, with the place in its text and the state that shows them.

#ifndef SYMFOLD_HOST_CHAIN_STATE_TEXT_H
#define SYMFOLD_HOST_CHAIN_STATE_TEXT_H

#include <string>

#include "host/chain/state_layout.h"
#include "host/language/evaluator.h"

namespace symfold {

// "phil_0.phase = left, fork_0 = false"; of many variables the first ones.
std::string state_text(const StateLayout& layout, const std::int16_t* state);

// Throws ModelError: the error's message, what it happened in ("action 'takeL' of phil_0") and the state.
[[noreturn]] void fail_in_state(const ComposedModel& model, const StateLayout& layout,
                                const EvaluationError& error, const std::string& where,
                                const std::int16_t* state);

}  // namespace symfold

#endif  // SYMFOLD_HOST_CHAIN_STATE_TEXT_H
