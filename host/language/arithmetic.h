// The operators of the model language on plain numbers. A bool counts as 0 or 1, a literal as its position.

#ifndef SYMFOLD_HOST_LANGUAGE_ARITHMETIC_H
#define SYMFOLD_HOST_LANGUAGE_ARITHMETIC_H

#include <cstdint>
#include <string>

#include "host/language/model_description.h"

namespace symfold {

// Where an expression has no value, and why.
struct EvaluationError {
  Offset offset = 0;
  std::string message;
};

// == to >=.
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

// + - * / div % min max, and - and abs of one operand. Throw EvaluationError with the offset where there is
// no such number.
std::int64_t apply(Op op, std::int64_t a, std::int64_t b, Offset offset);
double apply(Op op, double a, double b, Offset offset);
std::int64_t apply(Op op, std::int64_t a, Offset offset);
double apply(Op op, double a, Offset offset);

}  // namespace symfold

#endif  // SYMFOLD_HOST_LANGUAGE_ARITHMETIC_H
