// From the text to the tree, by recursive descent; expressions have a parser of their own.

#include <utility>

#include "host/language/expression_parser.h"
#include "host/language/reading_steps.h"

namespace symfold {
namespace {

class Parser {
 public:
  Parser(std::shared_ptr<const SourceText> source, ErrorList& errors)
      : model_(source), errors_(errors), tokens_(*source, errors), expressions_(tokens_, model_) {}

  ModelDescription parse();

 private:
  void parse_declaration();
  void parse_constant();
  void parse_type();
  void parse_parameters(TypeDecl& type);
  void parse_variable(TypeDecl& type);
  void parse_value_set(VariableDecl& variable);
  void parse_literals(VariableDecl& variable);
  void parse_action(TypeDecl& type);
  void parse_system();
  void parse_system_item(SystemDecl& system);
  void parse_submodel(SystemDecl& system, ExprId condition);
  void parse_initials(SubmodelDecl& submodel);
  void parse_join(SystemDecl& system, ExprId condition);
  void parse_entry(JoinDecl& join);
  void parse_observable(bool is_reward);

  ExprId parse_condition();
  StaticType parse_scalar_type();
  Assignment parse_assignment(const std::string& what);
  void parse_range(std::vector<IndexRange>& ranges);
  std::vector<IndexRange> parse_array_ranges();
  std::vector<IndexRange> parse_for_ranges();

  ModelDescription model_;
  ErrorList& errors_;
  TokenStream tokens_;
  ExpressionParser expressions_;
  bool has_system_ = false;
};

ModelDescription Parser::parse() {
  while (!tokens_.at_end()) {
    try {
      parse_declaration();
    } catch (const SyntaxError&) {
      tokens_.skip_to_declaration();
    }
  }
  if (!has_system_ && errors_.is_empty()) {
    errors_.add(tokens_.current().offset, "expected a system, got the end of the file");
  }
  return std::move(model_);
}

void Parser::parse_declaration() {
  if (tokens_.accept("const")) return parse_constant();
  if (tokens_.accept("type")) return parse_type();
  if (tokens_.current().is("system")) return parse_system();
  if (tokens_.accept("label")) return parse_observable(false);
  if (tokens_.accept("reward")) return parse_observable(true);
  tokens_.fail("'const', 'type', 'system', 'label' or 'reward'");
}

StaticType Parser::parse_scalar_type() {
  if (tokens_.accept("int")) return kIntType;
  if (tokens_.accept("real")) return kRealType;
  if (tokens_.accept("bool")) return kBoolType;
  tokens_.fail("'int', 'real' or 'bool'");
}

void Parser::parse_constant() {
  ConstantDecl constant;
  constant.type = parse_scalar_type();
  constant.name = tokens_.expect_name("a name");
  tokens_.expect("=");
  constant.value = expressions_.parse();
  tokens_.expect(";");
  model_.constants.push_back(constant);
}

void Parser::parse_type() {
  TypeDecl type;
  type.name = tokens_.expect_name("a name");
  if (tokens_.accept("(")) parse_parameters(type);
  tokens_.expect("{");
  tokens_.take_statements("'private', 'shared', '['", [this, &type] {
    const Token& token = tokens_.current();
    if (token.is("private") || token.is("shared")) return parse_variable(type);
    if (token.is("[")) return parse_action(type);
    tokens_.fail("'private', 'shared', '[' or '}'");
  });
  model_.types.push_back(std::move(type));
}

void Parser::parse_parameters(TypeDecl& type) {
  if (tokens_.accept(")")) return;
  do {
    if (type.parameters.size() == kMaxIndices)
      tokens_.fail("at most " + std::to_string(kMaxIndices) + " parameters");
    ParameterDecl parameter;
    parameter.type = parse_scalar_type();
    parameter.name = tokens_.expect_name("a name");
    type.parameters.push_back(parameter);
  } while (tokens_.accept(","));
  tokens_.expect(")");
}

void Parser::parse_variable(TypeDecl& type) {
  VariableDecl variable;
  variable.is_shared = tokens_.take().is("shared");
  variable.name = tokens_.expect_name("a name");
  tokens_.expect(":");
  parse_value_set(variable);
  if (tokens_.accept("=")) variable.initial = expressions_.parse();
  tokens_.expect(";");
  type.variables.push_back(std::move(variable));
}

void Parser::parse_value_set(VariableDecl& variable) {
  if (tokens_.accept("bool")) {
    variable.type = kBoolType;
  } else if (tokens_.accept("[")) {
    variable.type = kIntType;
    variable.low = expressions_.parse();
    tokens_.expect("..");
    variable.high = expressions_.parse();
    tokens_.expect("]");
  } else if (tokens_.accept("{")) {
    variable.type.scalar = Scalar::kEnum;
    parse_literals(variable);
  } else {
    tokens_.fail("'bool', '[' or '{'");
  }
}

// After a wrong literal, also the brace that closes the list is skipped: the end of a statement is searched
// next, and this brace would look like the end of the block.
void Parser::parse_literals(VariableDecl& variable) {
  try {
    do {
      variable.literals.push_back(tokens_.expect_name("a literal's name"));
    } while (tokens_.accept(","));
    tokens_.expect("}");
  } catch (const SyntaxError&) {
    const auto is_outside = [](const Token& token) {
      return token.is(";") || token.kind == TokenKind::kKeyword || token.kind == TokenKind::kEnd;
    };
    while (!is_outside(tokens_.current()) && !tokens_.accept("}")) tokens_.take();
    throw;
  }
}

Assignment Parser::parse_assignment(const std::string& what) {
  Assignment assignment;
  assignment.variable = tokens_.expect_name(what);
  tokens_.expect("=");
  assignment.value = expressions_.parse();
  return assignment;
}

void Parser::parse_action(TypeDecl& type) {
  ActionDecl action;
  tokens_.expect("[");
  action.name = tokens_.expect_name("an action's name");
  tokens_.expect("]");
  action.guard = expressions_.parse();
  tokens_.expect("->");
  action.rate = expressions_.parse();
  tokens_.expect(":");
  do {
    action.assignments.push_back(parse_assignment("a variable's name"));
  } while (tokens_.accept(","));
  tokens_.expect(";");
  type.actions.push_back(std::move(action));
}

void Parser::parse_system() {
  const Offset offset = tokens_.take().offset;
  if (has_system_) {
    tokens_.fail_at(offset, "expected one system, got a second; the first, '" +
                                std::string(model_.system.name.text) + "', is at " +
                                errors_.place(model_.system.name.offset));
  }
  has_system_ = true;
  model_.system.name = tokens_.expect_name("a name");
  tokens_.expect("{");
  tokens_.take_statements("a submodel, 'join', 'if'", [this] { parse_system_item(model_.system); });
}

ExprId Parser::parse_condition() {
  if (!tokens_.accept("if")) return kNoExpr;
  tokens_.expect("(");
  const ExprId condition = expressions_.parse();
  tokens_.expect(")");
  return condition;
}

void Parser::parse_system_item(SystemDecl& system) {
  const ExprId condition = parse_condition();
  if (tokens_.accept("join")) return parse_join(system, condition);
  if (tokens_.current().kind == TokenKind::kName) return parse_submodel(system, condition);
  tokens_.fail(condition == kNoExpr ? "a submodel, 'join', 'if' or '}'" : "a submodel or 'join'");
}

void Parser::parse_range(std::vector<IndexRange>& ranges) {
  if (ranges.size() == kMaxIndices) tokens_.fail("at most " + std::to_string(kMaxIndices) + " indices");
  IndexRange range;
  range.name = tokens_.expect_name("an index's name");
  tokens_.expect(":");
  range.low = expressions_.parse();
  tokens_.expect("..");
  range.high = expressions_.parse();
  ranges.push_back(range);
}

std::vector<IndexRange> Parser::parse_array_ranges() {
  std::vector<IndexRange> ranges;
  if (!tokens_.accept("[")) return ranges;
  do {
    parse_range(ranges);
  } while (tokens_.accept(","));
  tokens_.expect("]");
  return ranges;
}

std::vector<IndexRange> Parser::parse_for_ranges() {
  std::vector<IndexRange> ranges;
  if (!tokens_.accept("for")) return ranges;
  do {
    parse_range(ranges);
  } while (tokens_.accept(","));
  return ranges;
}

void Parser::parse_submodel(SystemDecl& system, ExprId condition) {
  SubmodelDecl submodel;
  submodel.condition = condition;
  submodel.name = tokens_.expect_name("a name");
  submodel.ranges = parse_array_ranges();
  tokens_.expect(":");
  submodel.type = tokens_.expect_name("a type's name");
  if (tokens_.accept("(")) submodel.arguments = expressions_.parse_list(")", true);
  if (tokens_.accept("{")) {
    parse_initials(submodel);
  } else {
    tokens_.expect(";");
  }
  system.submodels.push_back(std::move(submodel));
}

void Parser::parse_initials(SubmodelDecl& submodel) {
  tokens_.take_statements("a private variable's name", [this, &submodel] {
    submodel.initials.push_back(parse_assignment("a private variable's name or '}'"));
    tokens_.expect(";");
  });
}

void Parser::parse_join(SystemDecl& system, ExprId condition) {
  JoinDecl join;
  join.condition = condition;
  join.name = tokens_.expect_name("a name");
  join.ranges = parse_array_ranges();
  if (tokens_.accept("=")) join.initial = expressions_.parse();
  tokens_.expect("{");
  tokens_.take_statements("a submodel's name, 'if'", [this, &join] { parse_entry(join); });
  system.joins.push_back(std::move(join));
}

void Parser::parse_entry(JoinDecl& join) {
  JoinEntryDecl entry;
  entry.condition = parse_condition();
  entry.submodel = tokens_.expect_name("a submodel's name or '}'");
  if (tokens_.accept("[")) entry.indices = expressions_.parse_list("]", false);
  tokens_.expect(".");
  entry.variable = tokens_.expect_name("a shared variable's name");
  entry.ranges = parse_for_ranges();
  tokens_.expect(";");
  join.entries.push_back(std::move(entry));
}

void Parser::parse_observable(bool is_reward) {
  ObservableDecl observable;
  observable.is_reward = is_reward;
  if (tokens_.current().kind != TokenKind::kString) tokens_.fail("a name in quotes");
  const Token name = tokens_.take();
  observable.name = {name.text.substr(1, name.text.size() - 2), name.offset};
  tokens_.expect("=");
  observable.value = expressions_.parse();
  tokens_.expect(";");
  model_.observables.push_back(observable);
}

}  // namespace

ModelDescription parse_model(std::shared_ptr<const SourceText> source, ErrorList& errors) {
  return Parser(std::move(source), errors).parse();
}

}  // namespace symfold
