#include "host/language/evaluator.h"

#include <algorithm>
#include <cmath>
#include <optional>
#include <stdexcept>

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

// Nothing if the result is no 64-bit integer.
std::optional<std::int64_t> add(std::int64_t a, std::int64_t b) {
  std::int64_t result = 0;
  if (__builtin_add_overflow(a, b, &result)) return std::nullopt;
  return result;
}

std::optional<std::int64_t> subtract(std::int64_t a, std::int64_t b) {
  std::int64_t result = 0;
  if (__builtin_sub_overflow(a, b, &result)) return std::nullopt;
  return result;
}

std::optional<std::int64_t> multiply(std::int64_t a, std::int64_t b) {
  std::int64_t result = 0;
  if (__builtin_mul_overflow(a, b, &result)) return std::nullopt;
  return result;
}

// Here and below b is not 0. A b of -1 is treated apart, since the smallest integer by -1 overflows.
std::optional<std::int64_t> divide_down(std::int64_t a, std::int64_t b) {
  if (b == -1) return subtract(0, a);
  const std::int64_t quotient = a / b;
  return a % b != 0 && (a < 0) != (b < 0) ? quotient - 1 : quotient;
}

std::int64_t remainder_of_divide_down(std::int64_t a, std::int64_t b) {
  if (b == -1) return 0;
  const std::int64_t remainder = a % b;
  return remainder != 0 && (remainder < 0) != (b < 0) ? remainder + b : remainder;
}

class Evaluation {
 public:
  Evaluation(const ModelDescription& model, const Environment& environment, Budget& budget)
      : model_(model), environment_(environment), budget_(budget) {}

  Value value_of(ExprId id) const;
  Value value_of_link(const Expr& expr, const Value& first) const;

 private:
  Value operand(const Expr& expr, std::size_t i) const { return value_of(expr.operands[i]); }
  Value reference(const Expr& expr) const;
  Value value_of_run(ExprId id) const;
  Value arithmetic(const Expr& expr, const Value& first) const;
  Value unary(const Expr& expr) const;
  Value comparison(const Expr& expr) const;

  const ModelDescription& model_;
  const Environment& environment_;
  Budget& budget_;
};

Value Evaluation::value_of(ExprId id) const {
  budget_.spend(1);
  const Expr& expr = model_.expr(id);
  switch (expr.op) {
    case Op::kValue:
      return expr.value;
    case Op::kName:
      return reference(expr);
    case Op::kConditional: {
      const Value chosen = operand(expr, operand(expr, 0).is_true() ? 1 : 2);
      return expr.type.scalar == Scalar::kReal ? Value::of_real(chosen.as_real()) : chosen;
    }
    case Op::kNot:
    case Op::kNegate:
    case Op::kAbs:
      return unary(expr);
    case Op::kEqual:
    case Op::kNotEqual:
    case Op::kLess:
    case Op::kLessEqual:
    case Op::kGreater:
    case Op::kGreaterEqual:
      return comparison(expr);
    default:
      return value_of_run(id);
  }
}

Value Evaluation::value_of_run(ExprId id) const {
  ExprId link = model_.expr(id).innermost;
  Value value = value_of_link(model_.expr(link), operand(model_.expr(link), 0));
  while (link != id) {
    budget_.spend(1);
    link = model_.expr(link).outer;
    value = value_of_link(model_.expr(link), value);
  }
  return value;
}

Value Evaluation::value_of_link(const Expr& expr, const Value& first) const {
  if (expr.op == Op::kOr) return Value::of_bool(first.is_true() || operand(expr, 1).is_true());
  if (expr.op == Op::kAnd) return Value::of_bool(first.is_true() && operand(expr, 1).is_true());
  return arithmetic(expr, first);
}

Value Evaluation::reference(const Expr& expr) const {
  const auto index = static_cast<std::size_t>(expr.index);
  if (expr.reference == Reference::kParameter) return environment_.parameters[index];
  if (expr.reference == Reference::kIndex) return Value::of_int(environment_.indices[index]);
  throw std::logic_error("a variable in a constant expression");
}

Value Evaluation::unary(const Expr& expr) const {
  const Value value = operand(expr, 0);
  if (expr.op == Op::kNot) return Value::of_bool(!value.is_true());
  if (value.scalar == Scalar::kReal) return Value::of_real(apply(expr.op, value.real, expr.operator_offset));
  return Value::of_int(apply(expr.op, value.integer, expr.operator_offset));
}

Value Evaluation::comparison(const Expr& expr) const {
  const Value a = operand(expr, 0);
  const Value b = operand(expr, 1);
  const bool has_real = a.scalar == Scalar::kReal || b.scalar == Scalar::kReal;
  return Value::of_bool(has_real ? compare(expr.op, a.as_real(), b.as_real())
                                 : compare(expr.op, a.integer, b.integer));
}

Value Evaluation::arithmetic(const Expr& expr, const Value& first) const {
  const Value b = operand(expr, 1);
  if (expr.type.scalar == Scalar::kReal) {
    return Value::of_real(apply(expr.op, first.as_real(), b.as_real(), expr.operator_offset));
  }
  return Value::of_int(apply(expr.op, first.integer, b.integer, expr.operator_offset));
}

}  // namespace

std::int64_t apply(Op op, std::int64_t a, std::int64_t b, Offset offset) {
  const bool divides = op == Op::kDivideDown || op == Op::kRemainder;
  if (divides && b == 0) throw EvaluationError{offset, "division by zero"};
  switch (op) {
    case Op::kAdd:
      return checked(add(a, b), offset);
    case Op::kSubtract:
      return checked(subtract(a, b), offset);
    case Op::kMultiply:
      return checked(multiply(a, b), offset);
    case Op::kDivideDown:
      return checked(divide_down(a, b), offset);
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
  return op == Op::kAbs && a >= 0 ? a : checked(subtract(0, a), offset);
}

double apply(Op op, double a, Offset) { return op == Op::kNegate ? -a : std::abs(a); }

Value evaluate(const ModelDescription& model, ExprId id, const Environment& environment, Budget& budget) {
  return Evaluation(model, environment, budget).value_of(id);
}

Value evaluate_link(const ModelDescription& model, ExprId id, const Value& first,
                    const Environment& environment, Budget& budget) {
  return Evaluation(model, environment, budget).value_of_link(model.expr(id), first);
}

}  // namespace symfold
