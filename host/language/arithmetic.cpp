#include "host/language/arithmetic.h"

#include <algorithm>
#include <cmath>
#include <optional>

namespace symfold {
namespace {

std::int64_t checked(std::optional<std::int64_t> result, Offset offset) {
  if (!result) throw EvaluationError{offset, "expected a result in the range of a 64-bit int"};
  return *result;
}

double checked(double result, Offset offset) {
  if (!std::isfinite(result)) throw EvaluationError{offset, "expected a result in the range of a real"};
  return result;
}

}  // namespace

std::int64_t apply(Op op, std::int64_t a, std::int64_t b, Offset offset) {
  const bool divides = op == Op::kDivideDown || op == Op::kRemainder;
  if (divides && b == 0) throw EvaluationError{offset, "division by zero"};
  switch (op) {
    case Op::kAdd:
      return checked(checked_add(a, b), offset);
    case Op::kSubtract:
      return checked(checked_subtract(a, b), offset);
    case Op::kMultiply:
      return checked(checked_multiply(a, b), offset);
    case Op::kDivideDown:
      return checked(checked_divide_down(a, b), offset);
    case Op::kRemainder:
      return remainder_of_divide_down(a, b);
    case Op::kMin:
      return std::min(a, b);
    default:
      return std::max(a, b);
  }
}

double apply(Op op, double a, double b, Offset offset) {
  switch (op) {
    case Op::kAdd:
      return checked(a + b, offset);
    case Op::kSubtract:
      return checked(a - b, offset);
    case Op::kMultiply:
      return checked(a * b, offset);
    case Op::kDivide:
      if (b == 0) throw EvaluationError{offset, "division by zero"};
      return checked(a / b, offset);
    case Op::kMin:
      return std::min(a, b);
    default:
      return std::max(a, b);
  }
}

std::int64_t apply(Op op, std::int64_t a, Offset offset) {
  return op == Op::kAbs && a >= 0 ? a : checked(checked_subtract(0, a), offset);
}

double apply(Op op, double a, Offset) { return op == Op::kNegate ? -a : std::abs(a); }

}  // namespace symfold
