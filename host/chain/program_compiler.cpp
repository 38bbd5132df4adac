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
      case Op::kOr:
      case Op::kAnd:
        write_logic(expr);
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
        } else {
          write_binary(expr);
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

  void write_logic(const Expr& expr) {
    write(expr.operands[0], kBoolType);
    const std::size_t skip = emit({expr.op == Op::kOr ? Opcode::kSkipIfTrue : Opcode::kSkipIfFalse}, expr);
    write(expr.operands[1], kBoolType);
    land(skip);
  }

  void write_binary(const Expr& expr) {
    const StaticType& first = compiler_.model_.expr(expr.operands[0]).type;
    const StaticType& second = compiler_.model_.expr(expr.operands[1]).type;
    const bool compares = is_comparison(expr.op);
    const bool has_reals = compares ? is_real(first) || is_real(second) : is_real(expr.type);
    const StaticType wanted = has_reals ? kRealType : first;
    write(expr.operands[0], wanted);
    write(expr.operands[1], wanted);
    if (compares) {
      emit({has_reals ? Opcode::kCompareReal : Opcode::kCompareInt, expr.op}, expr);
    } else {
      emit({has_reals ? Opcode::kBinaryReal : Opcode::kBinaryInt, expr.op}, expr);
    }
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

// In the vector of expressions operands may come before their operators or after them: going down from every
// expression once settles both orders.
ProgramCompiler::ProgramCompiler(const ModelDescription& model)
    : model_(model), looks_at_state_(model.expressions.size()) {
  std::vector<bool> is_known(model.expressions.size());
  const std::function<bool(ExprId)> settle = [&](ExprId id) {
    const auto i = static_cast<std::size_t>(id);
    if (is_known[i]) return static_cast<bool>(looks_at_state_[i]);
    const Expr& expr = model.expr(id);
    bool looks = expr.reference == Reference::kVariable || is_quantifier(expr.op);
    for (const ExprId operand : expr.operands) {
      if (operand != kNoExpr && settle(operand)) looks = true;
    }
    is_known[i] = true;
    looks_at_state_[i] = looks;
    return looks;
  };
  for (std::size_t i = 0; i < model.expressions.size(); ++i) settle(static_cast<ExprId>(i));
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
