// Finds the types of expressions and the meanings of the names in them.
//
// Types flow upwards, except for enumerations: a literal such as `left` may belong to several of them, so a
// wanted type (that of an assignment's target, or of the other operand) flows down and decides. Without a
// wanted type, the literal must have the same position in all enumerations of its type that have it.

#ifndef SYMFOLD_HOST_LANGUAGE_EXPRESSION_CHECKER_H
#define SYMFOLD_HOST_LANGUAGE_EXPRESSION_CHECKER_H

#include <string>
#include <vector>

#include "host/language/error_list.h"
#include "host/language/model_description.h"
#include "host/language/scope.h"

namespace symfold {

// What an expression may contain besides exact operators.
struct Usage {
  bool division = false;     // `/`, which divides reals
  bool quantifiers = false;  // as in labels and rewards
};

inline constexpr Usage kExactUsage{false, false};
inline constexpr Usage kRealUsage{true, false};
inline constexpr Usage kLabelUsage{false, true};
inline constexpr Usage kRewardUsage{true, true};

class ExpressionChecker {
 public:
  ExpressionChecker(ModelDescription& model, const TypeTable& types, ErrorList& errors)
      : model_(model), types_(types), errors_(errors) {}

  // Completes the expression. Its type is then `wanted`, or an int if a real is wanted; otherwise the type is
  // unknown and an error is in the list.
  void check(ExprId id, const StaticType& wanted, const Scope& scope, Usage usage = kExactUsage);

  // The same for a number of either kind.
  void check_number(ExprId id, const Scope& scope, Usage usage);

  // Returns true if the name stands for nothing in the scope; otherwise puts an error into the list.
  bool is_new_name(const Name& name, const Scope& scope);

  // Checks the arguments behind a type's name against its parameters.
  void check_arguments(const Name& type, int type_index, const std::vector<ExprId>& arguments,
                       const Scope& scope);

  // "bool", "int", "real" or the literals in braces.
  std::string describe(const StaticType& type) const;

 private:
  struct Context {
    const Scope& scope;
    Usage usage;
  };

  StaticType type_of(ExprId id, const Context& context, const StaticType& hint);
  StaticType type_of_name(Expr& expr, const Context& context, const StaticType& hint);
  StaticType type_of_literal(Expr& expr, const Context& context, const StaticType& hint);
  StaticType type_of_member(Expr& expr, const Context& context);
  StaticType type_of_conditional(const Expr& expr, const Context& context, const StaticType& hint);
  StaticType type_of_comparison(const Expr& expr, const Context& context);
  void check_run(ExprId id, const Context& context);
  bool is_refused(const Expr& expr, const Context& context) const;
  StaticType type_of_operator(const Expr& expr, const Context& context);
  StaticType type_of_operand(const Expr& expr, ExprId operand, const Context& context,
                             const StaticType& hint);
  StaticType type_of_arithmetic(const Expr& expr, const Context& context);
  StaticType type_of_logic(const Expr& expr, const Context& context);
  StaticType type_of_quantifier(const Expr& expr, const Context& context);
  void check_quantified_type(Quantifier& quantifier, const Context& context);

  struct TypePair {
    StaticType first;
    StaticType second;
  };
  TypePair types_of_pair(ExprId first, ExprId second, const Context& context, const StaticType& hint);
  StaticType common_type(const TypePair& types, ExprId second);
  bool needs_hint(ExprId id, const Scope& scope) const;
  bool is_number(ExprId id, const StaticType& type);
  void mismatch(ExprId id, const std::string& expected, const StaticType& got);

  ModelDescription& model_;
  const TypeTable& types_;
  ErrorList& errors_;
};

}  // namespace symfold

#endif  // SYMFOLD_HOST_LANGUAGE_EXPRESSION_CHECKER_H
