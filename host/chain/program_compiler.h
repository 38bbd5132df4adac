// Turns checked expressions into programs.

#ifndef SYMFOLD_HOST_CHAIN_PROGRAM_COMPILER_H
#define SYMFOLD_HOST_CHAIN_PROGRAM_COMPILER_H

#include <functional>
#include <span>
#include <vector>

#include "host/chain/program.h"

namespace symfold {

// Compiles the expressions of one model, to which it keeps a reference.
class ProgramCompiler {
 public:
  static constexpr std::size_t kMaxInstructions = 50'000'000;

  explicit ProgramCompiler(const ModelDescription& model);

  // Compiles an expression of an action, for the type instance whose parameters have these values. Throws
  // ModelError if all programs compiled so take more instructions than kMaxInstructions.
  Program compile(ExprId id, const StaticType& wanted, std::span<const Value> parameters);

  // Compiles an expression of an observable or reward that stands inside the quantifiers `around`, outermost
  // first. Quantifiers are not compiled in: `number_of` returns the argument for kQuantify.
  using QuantifierNumber = std::function<std::uint32_t(ExprId)>;
  Program compile(ExprId id, const StaticType& wanted, std::span<const int> around,
                  const QuantifierNumber& number_of);

 private:
  class Writer;

  const ModelDescription& model_;
  std::vector<bool> looks_at_state_;  // by expression
  std::size_t instructions_left_ = kMaxInstructions;
};

}  // namespace symfold

#endif  // SYMFOLD_HOST_CHAIN_PROGRAM_COMPILER_H
