// Expressions, by recursive descent over levels of precedence.
//
// From loosest to tightest: ?: (groups to the right), ||, &&, !, comparisons (at most one), + -, * / div %,
// unary minus. The binary levels share one function that takes the level as its argument. A quantifier's body
// reaches as far to the right as it can. Both the recursion and the height of the tree are bounded by
// kMaxExpressionDepth, so that later walks may recurse.

#ifndef SYMFOLD_HOST_LANGUAGE_EXPRESSION_PARSER_H
#define SYMFOLD_HOST_LANGUAGE_EXPRESSION_PARSER_H

#include <initializer_list>
#include <string>

#include "host/language/token_stream.h"

namespace symfold {

class ExpressionParser {
 public:
  ExpressionParser(TokenStream& tokens, ModelDescription& model) : tokens_(tokens), model_(model) {}

  ExprId parse();

  // `(` expressions `)` or `[` expressions `]`, after the opening bracket; at least one when `allow_none` is
  // false.
  std::vector<ExprId> parse_list(std::string_view closing, bool allow_none);

 private:
  void check_depth();
  ExprId parse_binary(int level);
  ExprId parse_operand();
  ExprId parse_primary();
  ExprId parse_number();
  ExprId parse_name();
  ExprId parse_call(Op op);
  ExprId parse_quantifier(Op op);

  ExprId add(Expr expr);
  ExprId add_operator(Op op, Offset operator_offset, std::initializer_list<ExprId> operands);

  TokenStream& tokens_;
  ModelDescription& model_;
  int depth_ = 0;
  int quantifier_depth_ = 0;
};

}  // namespace symfold

#endif  // SYMFOLD_HOST_LANGUAGE_EXPRESSION_PARSER_H
