// What expressions evaluate to: the operators on plain numbers, and the values of constant expressions.
//
// Integers are exact 64-bit numbers: a result outside is an error and never wraps. `div` rounds down and `%`
// takes the sign of the divisor, so that (i - 1) % N steps back around a ring: -1 div 5 = -1, -1 % 5 = 4.
// Reals are IEEE doubles; a result that is not finite is an error. A bool counts as 0 or 1, a literal as its
// position.

#ifndef SYMFOLD_HOST_LANGUAGE_EVALUATOR_H
#define SYMFOLD_HOST_LANGUAGE_EVALUATOR_H

#include <cstdint>
#include <span>
#include <string>

#include "host/language/model_description.h"

namespace symfold {

// An expression has no value: the place in the text, and the reason.
struct EvaluationError {
  Offset offset = 0;
  std::string message;
};

// True for == != < <= > >=.
constexpr bool is_comparison(Op op) { return op >= Op::kEqual && op <= Op::kGreaterEqual; }

template <typename Number>
constexpr bool compare(Op op, Number a, Number b) {
  switch (op) {
    case Op::kEqual:
      return a == b;
    case Op::kNotEqual:
      return a != b;
    case Op::kLess:
      return a < b;
    case Op::kLessEqual:
      return a <= b;
    case Op::kGreater:
      return a > b;
    default:
      return a >= b;
  }
}

// + - * / div % min max of two operands, - and abs of one. Throw EvaluationError with the offset if there is
// no such number.
std::int64_t apply(Op op, std::int64_t a, std::int64_t b, Offset offset);
double apply(Op op, double a, double b, Offset offset);
std::int64_t apply(Op op, std::int64_t a, Offset offset);
double apply(Op op, double a, Offset offset);

// The steps of work that one model may ask for, so that no text keeps the reader busy for ever.
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

// Requires: the expression is checked and reads no variables. ?:, || and && do not evaluate the operands that
// do not matter. Throws EvaluationError. Cost: at most the size of the expression, which `budget` pays.
Value evaluate(const ModelDescription& model, ExprId id, const Environment& environment, Budget& budget);

// The same of an operator in a run (see is_link) whose first operand has the value `first`.
Value evaluate_link(const ModelDescription& model, ExprId id, const Value& first,
                    const Environment& environment, Budget& budget);

}  // namespace symfold

#endif  // SYMFOLD_HOST_LANGUAGE_EVALUATOR_H
