// Expressions, by recursive descent over levels of precedence.
//
// From loosest to tightest: ?: (groups to the right), ||, &&, !, comparisons (at most one), + -, * / div %,
// unary minus. The binary levels share one function that takes the level as its argument. A quantifier's body
// reaches as far to the right as it can. kMaxExpressionDepth bounds both the recursion and the height of the
// tree, so that later walks may recurse, except along a run of operators (see is_link).

#ifndef SYMFOLD_HOST_LANGUAGE_EXPRESSION_PARSER_H
#define SYMFOLD_HOST_LANGUAGE_EXPRESSION_PARSER_H

#include <initializer_list>
#include <string_view>
#include <vector>

#include "host/language/token_stream.h"

namespace symfold {

class ExpressionParser {
 public:
  ExpressionParser(TokenStream& tokens, ModelDescription& model) : tokens_(tokens), model_(model) {}

  ExprId parse();

  // Takes expressions and the closing bracket; the opening one is taken already. There must be at least one
  // expression unless `allow_none`.
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
