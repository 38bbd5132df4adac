#include "host/chain/program.h"

namespace symfold {
namespace {

Number number(std::int64_t value) { return Number{.integer = value}; }
Number number(double value) { return Number{.real = value}; }

Number unary(const Instruction& instruction, Number a, Offset offset) {
  switch (instruction.opcode) {
    case Opcode::kToReal:
      return number(static_cast<double>(a.integer));
    case Opcode::kNot:
      return number(std::int64_t{a.integer == 0});
    case Opcode::kUnaryInt:
      return number(apply(instruction.op, a.integer, offset));
    default:
      return number(apply(instruction.op, a.real, offset));
  }
}

Number binary(const Instruction& instruction, Number a, Number b, Offset offset) {
  switch (instruction.opcode) {
    case Opcode::kBinaryInt:
      return number(apply(instruction.op, a.integer, b.integer, offset));
    case Opcode::kBinaryReal:
      return number(apply(instruction.op, a.real, b.real, offset));
    case Opcode::kCompareInt:
      return number(std::int64_t{compare(instruction.op, a.integer, b.integer)});
    default:
      return number(std::int64_t{compare(instruction.op, a.real, b.real)});
  }
}

// Returns true if a conditional jump is taken. Pops the condition unless a skip is taken, which leaves it as
// the value.
bool jumps(Opcode opcode, std::int64_t condition, std::size_t& depth) {
  const bool is_taken = (condition != 0) == (opcode == Opcode::kSkipIfTrue);
  if (!is_taken || opcode == Opcode::kJumpUnless) --depth;
  return is_taken;
}

}  // namespace

Number evaluate(const Program& program, Frames& frames) {
  std::array<Number, kMaxExpressionDepth + 1> stack;
  std::size_t depth = 0;
  for (std::size_t i = 0; i < program.instructions.size(); ++i) {
    const Instruction& instruction = program.instructions[i];
    switch (instruction.opcode) {
      case Opcode::kConstant:
        stack[depth++] = program.constants[instruction.argument];
        break;
      case Opcode::kLoad:
        stack[depth++] = number(frames.value(instruction.frame, instruction.argument));
        break;
      case Opcode::kQuantify:
        stack[depth++] = frames.quantifiers().value_of(instruction.argument, frames);
        break;
      case Opcode::kJump:
        i = instruction.argument - 1;
        break;
      case Opcode::kJumpUnless:
      case Opcode::kSkipIfFalse:
      case Opcode::kSkipIfTrue:
        if (jumps(instruction.opcode, stack[depth - 1].integer, depth)) i = instruction.argument - 1;
        break;
      case Opcode::kToReal:
      case Opcode::kNot:
      case Opcode::kUnaryInt:
      case Opcode::kUnaryReal:
        stack[depth - 1] = unary(instruction, stack[depth - 1], program.offsets[i]);
        break;
      case Opcode::kBinaryInt:
      case Opcode::kBinaryReal:
      case Opcode::kCompareInt:
      case Opcode::kCompareReal:
        --depth;
        stack[depth - 1] = binary(instruction, stack[depth - 1], stack[depth], program.offsets[i]);
    }
  }
  return stack[0];
}

}  // namespace symfold
