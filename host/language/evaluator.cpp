#include "host/language/evaluator.h"

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
  Value arithmetic(const Expr& expr) const;
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

Value Evaluation::arithmetic(const Expr& expr) const {
  const Value a = operand(expr, 0);
  const Value b = operand(expr, 1);
  if (expr.type.scalar == Scalar::kReal) {
    return Value::of_real(apply(expr.op, a.as_real(), b.as_real(), expr.operator_offset));
  }
  return Value::of_int(apply(expr.op, a.integer, b.integer, expr.operator_offset));
}

}  // namespace

Value evaluate(const ModelDescription& model, ExprId id, const Environment& environment, Budget& budget) {
  return Evaluation(model, environment, budget).value_of(id);
}

}  // namespace symfold
