// From checked expressions to programs.

#ifndef SYMFOLD_HOST_CHAIN_PROGRAM_COMPILER_H
#define SYMFOLD_HOST_CHAIN_PROGRAM_COMPILER_H

#include <functional>
#include <span>
#include <vector>

#include "host/chain/program.h"

namespace symfold {

// Compiles the expressions of one model.
class ProgramCompiler {
 public:
  explicit ProgramCompiler(const ModelDescription& model);

  // An expression of a type whose parameters have these values. Throws ModelError where the programs of a
  // model, with all its type instances, become too many instructions to hold.
  Program compile(ExprId id, const StaticType& wanted, std::span<const Value> parameters);

  // An expression of a label or reward inside the quantifiers `around`, outermost first. Quantifiers are not
  // compiled in: `number_of` gives the argument for kQuantify.
  using QuantifierNumber = std::function<std::uint32_t(ExprId)>;
  Program compile(ExprId id, const StaticType& wanted, std::span<const int> around,
                  const QuantifierNumber& number_of);

 private:
  class Writer;

  const ModelDescription& model_;
  std::vector<bool> looks_at_state_;  // by expression
  std::size_t instructions_left_ = 50'000'000;
};

}  // namespace symfold

#endif  // SYMFOLD_HOST_CHAIN_PROGRAM_COMPILER_H
