#include "host/language/evaluator.h"

#include <algorithm>
#include <cmath>
#include <optional>
#include <stdexcept>

namespace symfold {
namespace {

class Evaluation {
 public:
  Evaluation(const ModelDescription& model, const Environment& environment, Budget& budget)
      : model_(model), environment_(environment), budget_(budget) {}

  Value value_of(ExprId id) const;

 private:
  Value operand(const Expr& expr, std::size_t i) const { return value_of(expr.operands[i]); }
  Value reference(const Expr& expr) const;
  Value integer_operation(const Expr& expr, std::int64_t a, std::int64_t b) const;
  Value real_operation(const Expr& expr, double a, double b) const;
  Value arithmetic(const Expr& expr) const;
  Value unary(const Expr& expr) const;
  Value comparison(const Expr& expr) const;

  const ModelDescription& model_;
  const Environment& environment_;
  Budget& budget_;
};

Value checked(const Expr& expr, std::optional<std::int64_t> result) {
  if (!result) throw EvaluationError{expr.operator_offset, "expected a result in the range of a 64-bit int"};
  return Value::of_int(*result);
}

Value checked(const Expr& expr, double result) {
  if (!std::isfinite(result))
    throw EvaluationError{expr.operator_offset, "expected a result in the range of a real"};
  return Value::of_real(result);
}

template <typename Number>
bool compare(Op op, Number a, Number b) {
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
    case Op::kOr:
      return Value::of_bool(operand(expr, 0).is_true() || operand(expr, 1).is_true());
    case Op::kAnd:
      return Value::of_bool(operand(expr, 0).is_true() && operand(expr, 1).is_true());
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
      return arithmetic(expr);
  }
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
  if (value.scalar == Scalar::kReal)
    return Value::of_real(expr.op == Op::kNegate ? -value.real : std::abs(value.real));
  if (expr.op == Op::kAbs && value.integer >= 0) return value;
  return checked(expr, checked_subtract(0, value.integer));
}

Value Evaluation::comparison(const Expr& expr) const {
  const Value a = operand(expr, 0);
  const Value b = operand(expr, 1);
  const bool has_real = a.scalar == Scalar::kReal || b.scalar == Scalar::kReal;
  return Value::of_bool(has_real ? compare(expr.op, a.as_real(), b.as_real())
                                 : compare(expr.op, a.integer, b.integer));
}

Value Evaluation::arithmetic(const Expr& expr) const {
  const Value a = operand(expr, 0);
  const Value b = operand(expr, 1);
  if (expr.type.scalar == Scalar::kReal) return real_operation(expr, a.as_real(), b.as_real());
  return integer_operation(expr, a.integer, b.integer);
}

Value Evaluation::real_operation(const Expr& expr, double a, double b) const {
  switch (expr.op) {
    case Op::kAdd:
      return checked(expr, a + b);
    case Op::kSubtract:
      return checked(expr, a - b);
    case Op::kMultiply:
      return checked(expr, a * b);
    case Op::kDivide:
      if (b == 0) throw EvaluationError{expr.operator_offset, "division by zero"};
      return checked(expr, a / b);
    case Op::kMin:
      return Value::of_real(std::min(a, b));
    default:
      return Value::of_real(std::max(a, b));
  }
}

Value Evaluation::integer_operation(const Expr& expr, std::int64_t a, std::int64_t b) const {
  const bool divides = expr.op == Op::kDivideDown || expr.op == Op::kRemainder;
  if (divides && b == 0) throw EvaluationError{expr.operator_offset, "division by zero"};
  switch (expr.op) {
    case Op::kAdd:
      return checked(expr, checked_add(a, b));
    case Op::kSubtract:
      return checked(expr, checked_subtract(a, b));
    case Op::kMultiply:
      return checked(expr, checked_multiply(a, b));
    case Op::kDivideDown:
      return checked(expr, checked_divide_down(a, b));
    case Op::kRemainder:
      return Value::of_int(remainder_of_divide_down(a, b));
    case Op::kMin:
      return Value::of_int(std::min(a, b));
    default:
      return Value::of_int(std::max(a, b));
  }
}

}  // namespace

Value evaluate(const ModelDescription& model, ExprId id, const Environment& environment, Budget& budget) {
  return Evaluation(model, environment, budget).value_of(id);
}

}  // namespace symfold
