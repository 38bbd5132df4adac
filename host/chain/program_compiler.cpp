#include "host/chain/program_compiler.h"

#include <algorithm>
#include <limits>
#include <optional>
#include <utility>

#include "host/model/model_error.h"

namespace symfold {
namespace {

bool is_quantifier(Op op) {
  return op == Op::kExists || op == Op::kForAll || op == Op::kSum || op == Op::kCount;
}

bool is_real(const StaticType& type) { return type.scalar == Scalar::kReal; }

}  // namespace

// Writes one program. An expression leaves its value on top of the stack.
class ProgramCompiler::Writer {
 public:
  Writer(const ProgramCompiler& compiler, std::span<const Value> parameters, std::span<const int> around,
         const QuantifierNumber& number_of)
      : compiler_(compiler), parameters_(parameters), around_(around), number_of_(number_of) {}

  // Leaves a value of the wanted type, which is the expression's own type or, for an int, real.
  void write(ExprId id, const StaticType& wanted) {
    const Expr& expr = compiler_.model_.expr(id);
    if (const auto value = constant_value(id)) {
      program_.constants.push_back(is_real(wanted) ? Number{.real = value->as_real()}
                                                   : Number{.integer = value->integer});
      emit({Opcode::kConstant, Op::kValue, 0, static_cast<std::uint32_t>(program_.constants.size() - 1)},
           expr);
      return;
    }
    write_operation(id, expr);
    if (is_real(wanted) && !is_real(expr.type)) emit({Opcode::kToReal}, expr);
  }

  Program take() { return std::move(program_); }

 private:
  std::optional<Value> constant_value(ExprId id) const {
    if (compiler_.looks_at_state_[static_cast<std::size_t>(id)]) return std::nullopt;
    Budget budget(std::numeric_limits<std::int64_t>::max());
    try {
      return evaluate(compiler_.model_, id, Environment{parameters_, {}}, budget);
    } catch (const EvaluationError&) {
      return std::nullopt;
    }
  }

  void write_operation(ExprId id, const Expr& expr) {
    switch (expr.op) {
      case Op::kName:
        emit({Opcode::kLoad, Op::kValue, 0, static_cast<std::uint32_t>(expr.index)}, expr);
        return;
      case Op::kMember:
        emit({Opcode::kLoad, Op::kValue, frame_of(expr.quantifier), static_cast<std::uint32_t>(expr.index)},
             expr);
        return;
      case Op::kConditional:
        write_conditional(expr);
        return;
      case Op::kNot:
        write(expr.operands[0], kBoolType);
        emit({Opcode::kNot}, expr);
        return;
      case Op::kNegate:
      case Op::kAbs:
        write(expr.operands[0], expr.type);
        emit({is_real(expr.type) ? Opcode::kUnaryReal : Opcode::kUnaryInt, expr.op}, expr);
        return;
      default:
        if (is_quantifier(expr.op)) {
          emit({Opcode::kQuantify, Op::kValue, 0, number_of_(id)}, expr);
        } else if (is_link(expr.op)) {
          write_run(id);
        } else {
          write_comparison(expr);
        }
    }
  }

  void write_conditional(const Expr& expr) {
    write(expr.operands[0], kBoolType);
    const std::size_t to_otherwise = emit({Opcode::kJumpUnless}, expr);
    write(expr.operands[1], expr.type);
    const std::size_t to_end = emit({Opcode::kJump}, expr);
    land(to_otherwise);
    write(expr.operands[2], expr.type);
    land(to_end);
  }

  // The run up to the operator `id`, which has no constant value. The longest beginning that has one becomes
  // a constant.
  void write_run(ExprId id) {
    ExprId link = compiler_.model_.expr(id).innermost;
    ExprId first = compiler_.model_.expr(link).operands[0];
    for (auto value = constant_value(first); (value = constant_value_of_link(link, value));) {
      first = link;
      link = compiler_.model_.expr(link).outer;
    }
    write(first, wanted_of_operands(compiler_.model_.expr(link)));
    while (true) {
      const Expr& expr = compiler_.model_.expr(link);
      write_link(expr);
      if (link == id) return;
      link = expr.outer;
      if (is_real(wanted_of_operands(compiler_.model_.expr(link))) && !is_real(expr.type)) {
        emit({Opcode::kToReal}, expr);
      }
    }
  }

  std::optional<Value> constant_value_of_link(ExprId id, const std::optional<Value>& first) const {
    if (!first || compiler_.looks_at_state_[static_cast<std::size_t>(id)]) return std::nullopt;
    Budget budget(std::numeric_limits<std::int64_t>::max());
    try {
      return evaluate_link(compiler_.model_, id, *first, Environment{parameters_, {}}, budget);
    } catch (const EvaluationError&) {
      return std::nullopt;
    }
  }

  // The type that an operator wants of both operands.
  StaticType wanted_of_operands(const Expr& expr) const {
    const StaticType& first = compiler_.model_.expr(expr.operands[0]).type;
    const StaticType& second = compiler_.model_.expr(expr.operands[1]).type;
    const bool has_reals = is_comparison(expr.op) ? is_real(first) || is_real(second) : is_real(expr.type);
    return has_reals ? kRealType : first;
  }

  // The operator, whose first operand is on the stack.
  void write_link(const Expr& expr) {
    if (expr.op == Op::kOr || expr.op == Op::kAnd) {
      const std::size_t skip = emit({expr.op == Op::kOr ? Opcode::kSkipIfTrue : Opcode::kSkipIfFalse}, expr);
      write(expr.operands[1], kBoolType);
      land(skip);
      return;
    }
    write(expr.operands[1], wanted_of_operands(expr));
    emit({is_real(expr.type) ? Opcode::kBinaryReal : Opcode::kBinaryInt, expr.op}, expr);
  }

  void write_comparison(const Expr& expr) {
    const StaticType wanted = wanted_of_operands(expr);
    write(expr.operands[0], wanted);
    write(expr.operands[1], wanted);
    emit({is_real(wanted) ? Opcode::kCompareReal : Opcode::kCompareInt, expr.op}, expr);
  }

  std::uint8_t frame_of(int quantifier) const {
    const auto found = std::find(around_.begin(), around_.end(), quantifier);
    return static_cast<std::uint8_t>(found - around_.begin());
  }

  std::size_t emit(const Instruction& instruction, const Expr& expr) {
    program_.instructions.push_back(instruction);
    program_.offsets.push_back(expr.operator_offset);
    return program_.instructions.size() - 1;
  }

  void land(std::size_t jump) {
    program_.instructions[jump].argument = static_cast<std::uint32_t>(program_.instructions.size());
  }

  const ProgramCompiler& compiler_;
  std::span<const Value> parameters_;
  std::span<const int> around_;
  const QuantifierNumber& number_of_;
  Program program_;
};

ProgramCompiler::ProgramCompiler(const ModelDescription& model)
    : model_(model), looks_at_state_(model.expressions.size()) {
  for (std::size_t i = 0; i < model.expressions.size(); ++i) {
    const Expr& expr = model.expressions[i];
    bool looks = expr.reference == Reference::kVariable || is_quantifier(expr.op);
    for (const ExprId operand : expr.operands) {
      if (operand != kNoExpr && looks_at_state_[static_cast<std::size_t>(operand)]) looks = true;
    }
    looks_at_state_[i] = looks;
  }
}

Program ProgramCompiler::compile(ExprId id, const StaticType& wanted, std::span<const Value> parameters) {
  Writer writer(*this, parameters, {}, nullptr);
  writer.write(id, wanted);
  Program program = writer.take();
  if (program.instructions.size() > instructions_left_) {
    throw ModelError(
        model_.source->name(),
        "expected fewer or shorter actions: those of all type instances are too many to compile");
  }
  instructions_left_ -= program.instructions.size();
  return program;
}

Program ProgramCompiler::compile(ExprId id, const StaticType& wanted, std::span<const int> around,
                                 const QuantifierNumber& number_of) {
  Writer writer(*this, {}, around, number_of);
  writer.write(id, wanted);
  return writer.take();
}

}  // namespace symfold
