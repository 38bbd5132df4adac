// The values of constant expressions: those of literals, parameters and indices.

#ifndef SYMFOLD_HOST_LANGUAGE_EVALUATOR_H
#define SYMFOLD_HOST_LANGUAGE_EVALUATOR_H

#include <cstdint>
#include <span>

#include "host/language/arithmetic.h"
#include "host/language/model_description.h"

namespace symfold {

// The work that one model may ask for, so that no text of ours runs for ever.
class Budget {
 public:
  explicit Budget(std::int64_t steps) : steps_(steps) {}
  void spend(std::int64_t steps) { steps_ -= steps; }
  bool is_spent() const { return steps_ < 0; }

 private:
  std::int64_t steps_;
};

struct Environment {
  std::span<const Value> parameters;
  std::span<const std::int64_t> indices;
};

// Precondition: the expression is checked and looks at no variables. Conditions, || and && leave the operands
// that do not matter alone. Throws EvaluationError. Cost: the size of the expression, also spent from
// `budget`.
Value evaluate(const ModelDescription& model, ExprId id, const Environment& environment, Budget& budget);

}  // namespace symfold

#endif  // SYMFOLD_HOST_LANGUAGE_EVALUATOR_H
