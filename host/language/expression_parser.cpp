#include "host/language/expression_parser.h"

#include <algorithm>
#include <array>
#include <optional>
#include <utility>

namespace symfold {
namespace {

constexpr int kLoosestLevel = 0;
constexpr int kNotLevel = 2;
constexpr int kComparisonLevel = 3;
constexpr int kOperandLevel = 6;

struct BinaryOperator {
  std::string_view text;
  Op op;
  int level;
};

constexpr std::array<BinaryOperator, 14> kBinaryOperators = {{{"||", Op::kOr, 0},
                                                              {"&&", Op::kAnd, 1},
                                                              {"==", Op::kEqual, kComparisonLevel},
                                                              {"!=", Op::kNotEqual, kComparisonLevel},
                                                              {"<", Op::kLess, kComparisonLevel},
                                                              {"<=", Op::kLessEqual, kComparisonLevel},
                                                              {">", Op::kGreater, kComparisonLevel},
                                                              {">=", Op::kGreaterEqual, kComparisonLevel},
                                                              {"+", Op::kAdd, 4},
                                                              {"-", Op::kSubtract, 4},
                                                              {"*", Op::kMultiply, 5},
                                                              {"/", Op::kDivide, 5},
                                                              {"div", Op::kDivideDown, 5},
                                                              {"%", Op::kRemainder, 5}}};

struct NamedOperator {
  std::string_view text;
  Op op;
};

// These words are names unless the token after them makes them operators.
constexpr std::array<NamedOperator, 3> kFunctions = {
    {{"min", Op::kMin}, {"max", Op::kMax}, {"abs", Op::kAbs}}};
constexpr std::array<NamedOperator, 4> kQuantifiers = {
    {{"exists", Op::kExists}, {"forall", Op::kForAll}, {"sum", Op::kSum}, {"count", Op::kCount}}};

template <typename Table>
std::optional<Op> find_operator(const Table& table, std::string_view text) {
  const auto found =
      std::find_if(table.begin(), table.end(), [text](const auto& entry) { return entry.text == text; });
  if (found == table.end()) return std::nullopt;
  return found->op;
}

const BinaryOperator* binary_operator_at(const Token& token, int level) {
  if (token.kind != TokenKind::kSymbol && token.kind != TokenKind::kKeyword) return nullptr;
  for (const BinaryOperator& candidate : kBinaryOperators) {
    if (candidate.text == token.text && candidate.level == level) return &candidate;
  }
  return nullptr;
}

std::string too_deep() {
  return "expected expressions nested at most " + std::to_string(kMaxExpressionDepth) +
         " deep, got a deeper one";
}

// One level deeper for its lifetime.
class Nesting {
 public:
  explicit Nesting(int& depth) : depth_(depth) { ++depth_; }
  ~Nesting() { --depth_; }
  Nesting(const Nesting&) = delete;
  Nesting& operator=(const Nesting&) = delete;

 private:
  int& depth_;
};

}  // namespace

void ExpressionParser::check_depth() {
  if (depth_ == kMaxExpressionDepth) tokens_.fail_at(tokens_.current().offset, too_deep());
}

ExprId ExpressionParser::parse() {
  check_depth();
  const Nesting nesting(depth_);
  const ExprId condition = parse_binary(kLoosestLevel);
  const Offset offset = tokens_.current().offset;
  if (!tokens_.accept("?")) return condition;
  const ExprId then = parse();
  tokens_.expect(":");
  const ExprId otherwise = parse();
  return add_operator(Op::kConditional, offset, {condition, then, otherwise});
}

ExprId ExpressionParser::parse_binary(int level) {
  if (level == kOperandLevel) return parse_operand();
  if (level == kNotLevel) {
    if (!tokens_.current().is("!")) return parse_binary(level + 1);
    check_depth();
    const Nesting nesting(depth_);
    const Offset offset = tokens_.take().offset;
    return add_operator(Op::kNot, offset, {parse_binary(level)});
  }
  ExprId left = parse_binary(level + 1);
  while (const BinaryOperator* const found = binary_operator_at(tokens_.current(), level)) {
    const Offset offset = tokens_.take().offset;
    left = add_operator(found->op, offset, {left, parse_binary(level + 1)});
    if (level == kComparisonLevel) break;
  }
  return left;
}

ExprId ExpressionParser::parse_operand() {
  if (!tokens_.current().is("-")) return parse_primary();
  check_depth();
  const Nesting nesting(depth_);
  const Offset offset = tokens_.take().offset;
  return add_operator(Op::kNegate, offset, {parse_operand()});
}

ExprId ExpressionParser::parse_primary() {
  const Token& token = tokens_.current();
  if (token.kind == TokenKind::kInteger || token.kind == TokenKind::kReal || token.is("true") ||
      token.is("false")) {
    return parse_number();
  }
  if (token.kind == TokenKind::kName) return parse_name();
  if (token.is("!")) tokens_.fail("an operand (a negation here needs parentheses)");
  if (!token.is("(")) tokens_.fail("an expression");
  tokens_.take();
  const ExprId inner = parse();
  tokens_.expect(")");
  return inner;
}

ExprId ExpressionParser::parse_number() {
  const Token token = tokens_.take();
  Expr expr;
  expr.offset = expr.operator_offset = token.offset;
  if (token.kind == TokenKind::kInteger) {
    expr.value = Value::of_int(token.integer);
  } else if (token.kind == TokenKind::kReal) {
    expr.value = Value::of_real(token.real);
  } else {
    expr.value = Value::of_bool(token.text == "true");
  }
  expr.type = {expr.value.scalar, -1};
  return add(expr);
}

ExprId ExpressionParser::parse_name() {
  const Token& following = tokens_.following();
  if (following.is("(")) {
    if (const auto op = find_operator(kFunctions, tokens_.current().text)) return parse_call(*op);
  } else if (following.kind == TokenKind::kName) {
    if (const auto op = find_operator(kQuantifiers, tokens_.current().text)) return parse_quantifier(*op);
  }
  const Token token = tokens_.take();
  Expr expr;
  expr.op = Op::kName;
  expr.offset = expr.operator_offset = token.offset;
  expr.name = token.text;
  if (tokens_.accept(".")) {
    expr.op = Op::kMember;
    const Name member = tokens_.expect_name("a variable of '" + std::string(token.text) + "'");
    expr.operator_offset = member.offset;
    expr.member = member.text;
  }
  return add(expr);
}

ExprId ExpressionParser::parse_call(Op op) {
  const Token name = tokens_.take();
  tokens_.expect("(");
  ExprId result = parse();
  if (op == Op::kAbs) {
    result = add_operator(op, name.offset, {result});
  } else {
    if (!tokens_.current().is(","))
      tokens_.fail("',' and a second argument of '" + std::string(name.text) + "'");
    while (tokens_.accept(",")) result = add_operator(op, name.offset, {result, parse()});
  }
  tokens_.expect(")");
  model_.expr(result).offset = name.offset;
  return result;
}

ExprId ExpressionParser::parse_quantifier(Op op) {
  if (quantifier_depth_ == kMaxQuantifierDepth) {
    tokens_.fail("at most " + std::to_string(kMaxQuantifierDepth) + " quantifiers inside one another");
  }
  const Token word = tokens_.take();
  Quantifier quantifier;
  quantifier.variable = tokens_.expect_name("a name");
  tokens_.expect(":");
  quantifier.type = tokens_.expect_name("a type's name");
  if (tokens_.accept("(")) {
    quantifier.has_arguments = true;
    quantifier.arguments = parse_list(")", true);
  }
  tokens_.expect(".");
  const Nesting nesting(quantifier_depth_);
  const ExprId body = parse();
  const ExprId result = add_operator(op, word.offset, {body});
  model_.expr(result).quantifier = static_cast<int>(model_.quantifiers.size());
  model_.quantifiers.push_back(std::move(quantifier));
  return result;
}

std::vector<ExprId> ExpressionParser::parse_list(std::string_view closing, bool allow_none) {
  std::vector<ExprId> list;
  if (allow_none && tokens_.accept(closing)) return list;
  do {
    if (list.size() == kMaxIndices)
      tokens_.fail("at most " + std::to_string(kMaxIndices) + " expressions here");
    list.push_back(parse());
  } while (tokens_.accept(","));
  tokens_.expect(closing);
  return list;
}

ExprId ExpressionParser::add(Expr expr) {
  if (model_.expressions.size() == kMaxExpressions) {
    tokens_.fail_at(expr.offset, "expected a model of at most " + std::to_string(kMaxExpressions) +
                                     " names, numbers and operators, got a larger one");
  }
  model_.expressions.push_back(expr);
  return static_cast<ExprId>(model_.expressions.size()) - 1;
}

ExprId ExpressionParser::add_operator(Op op, Offset operator_offset, std::initializer_list<ExprId> operands) {
  Expr expr;
  expr.op = op;
  expr.operator_offset = operator_offset;
  std::copy(operands.begin(), operands.end(), expr.operands.begin());
  const Expr& first = model_.expr(*operands.begin());
  expr.offset = std::min(operator_offset, first.offset);
  for (const ExprId operand : operands) expr.height = std::max(expr.height, model_.expr(operand).height + 1);
  const auto id = static_cast<ExprId>(model_.expressions.size());
  if (is_link(op)) {
    expr.innermost = is_link(first.op) ? first.innermost : id;
    const int height_of_others = model_.expr(operands.begin()[1]).height + 1;
    if (is_link(first.op)) expr.height = std::max(first.height, height_of_others);
  }
  if (expr.height > kMaxExpressionDepth) tokens_.fail_at(operator_offset, too_deep());
  add(expr);
  if (expr.innermost != kNoExpr && expr.innermost != id) model_.expr(expr.operands[0]).outer = id;
  return id;
}

}  // namespace symfold
