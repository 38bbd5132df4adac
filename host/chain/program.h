// Expressions of the model language compiled to bytecode for a stack machine.
//
// `phase == left && rfork` of a philosopher becomes
//
//     load 0; constant 2; equal; unless true skip to the end; load 2
//
// Types are resolved: an int, a literal and a bool are 64-bit integers, a real is a double, and every
// operator has an opcode for each. An expression that looks at no variable is folded to a constant,
// parameters included, unless it has no value (1 div 0): that is an error only if it is reached. Evaluation
// allocates nothing; its stack is at most as deep as the expression is high, see kMaxExpressionDepth.

#ifndef SYMFOLD_HOST_CHAIN_PROGRAM_H
#define SYMFOLD_HOST_CHAIN_PROGRAM_H

#include <array>
#include <cstdint>
#include <span>
#include <vector>

#include "host/language/evaluator.h"
#include "host/language/model_description.h"

namespace symfold {

// A value on the stack; the type of the expression says which.
union Number {
  std::int64_t integer;
  double real;
};

enum class Opcode : std::uint8_t {
  kConstant,  // push constant `argument`
  kLoad,      // push variable `argument` of the submodel in `frame`
  kQuantify,  // push the value of quantifier `argument`
  kToReal,
  kNot,
  kJump,         // to instruction `argument`
  kJumpUnless,   // pop; jump if it was false
  kSkipIfFalse,  // jump if the top is false, else pop it
  kSkipIfTrue,   // jump if the top is true, else pop it
  kUnaryInt,     // the operator `op`
  kUnaryReal,
  kBinaryInt,
  kBinaryReal,
  kCompareInt,
  kCompareReal
};

struct Instruction {
  Opcode opcode;
  Op op = Op::kValue;
  std::uint8_t frame = 0;
  std::uint32_t argument = 0;
};

struct Program {
  std::vector<Instruction> instructions;
  std::vector<Number> constants;
  std::vector<Offset> offsets;  // of each instruction's operator in the model's text
};

class Frames;

// Evaluates the quantifiers of observables and rewards.
class QuantifierValues {
 public:
  virtual ~QuantifierValues() = default;
  virtual Number value_of(std::uint32_t quantifier, Frames& frames) = 0;
};

// What a program looks at: a state and, for every quantifier around it, a frame: a submodel as the slots of
// its variables in the order of their declaration. An action has frame 0 alone.
class Frames {
 public:
  Frames(const std::int16_t* state, QuantifierValues* quantifiers)
      : state_(state), quantifiers_(quantifiers) {}

  void set(std::size_t frame, const std::uint32_t* slots) { slots_[frame] = slots; }
  std::int64_t value(std::size_t frame, std::uint32_t variable) const {
    return state_[slots_[frame][variable]];
  }
  const std::int16_t* state() const { return state_; }
  QuantifierValues& quantifiers() const { return *quantifiers_; }

 private:
  const std::int16_t* state_;
  QuantifierValues* quantifiers_;
  std::array<const std::uint32_t*, kMaxQuantifierDepth> slots_{};
};

// Throws EvaluationError if the expression has no value in the state.
Number evaluate(const Program& program, Frames& frames);

}  // namespace symfold

#endif  // SYMFOLD_HOST_CHAIN_PROGRAM_H
