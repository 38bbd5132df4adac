#include "host/language/expression_checker.h"

namespace symfold {
namespace {

constexpr StaticType kNoType;

bool fits(const StaticType& type, const StaticType& wanted) {
  return type == wanted || (wanted.scalar == Scalar::kReal && type.scalar == Scalar::kInt);
}

}  // namespace

std::string ExpressionChecker::describe(const StaticType& type) const {
  switch (type.scalar) {
    case Scalar::kBool:
      return "bool";
    case Scalar::kInt:
      return "int";
    case Scalar::kReal:
      return "real";
    default:
      return literals_text(*model_.enumeration(type).literals);
  }
}

bool ExpressionChecker::is_new_name(const Name& name, const Scope& scope) {
  const Binding* const binding = scope.find(name.text);
  if (binding == nullptr) return true;
  errors_.add(name.offset, "expected a new name, got '" + std::string(name.text) + "', declared at " +
                               errors_.place(binding->declared));
  return false;
}

void ExpressionChecker::mismatch(ExprId id, const std::string& expected, const StaticType& got) {
  errors_.add(model_.expr(id).offset, "expected " + expected + ", got " + describe(got));
}

bool ExpressionChecker::is_number(ExprId id, const StaticType& type) {
  if (type.is_known() && !type.is_number()) mismatch(id, "int or real", type);
  return type.is_number();
}

void ExpressionChecker::check(ExprId id, const StaticType& wanted, const Scope& scope, Usage usage) {
  const StaticType type = type_of(id, {scope, usage}, wanted);
  if (!type.is_known() || !wanted.is_known() || fits(type, wanted)) return;
  mismatch(id, describe(wanted), type);
  model_.expr(id).type = kNoType;
}

void ExpressionChecker::check_number(ExprId id, const Scope& scope, Usage usage) {
  const StaticType type = type_of(id, {scope, usage}, kNoType);
  if (!is_number(id, type)) model_.expr(id).type = kNoType;
}

StaticType ExpressionChecker::type_of(ExprId id, const Context& context, const StaticType& hint) {
  Expr& expr = model_.expr(id);
  switch (expr.op) {
    case Op::kValue:
      break;
    case Op::kName:
      expr.type = type_of_name(expr, context, hint);
      break;
    case Op::kMember:
      expr.type = type_of_member(expr, context);
      break;
    case Op::kConditional:
      expr.type = type_of_conditional(expr, context, hint);
      break;
    case Op::kNot:
    case Op::kNegate:
    case Op::kAbs:
      expr.type = type_of_operator(expr, context);
      break;
    case Op::kEqual:
    case Op::kNotEqual:
    case Op::kLess:
    case Op::kLessEqual:
    case Op::kGreater:
    case Op::kGreaterEqual:
      expr.type = type_of_comparison(expr, context);
      break;
    case Op::kExists:
    case Op::kForAll:
    case Op::kSum:
    case Op::kCount:
      expr.type = type_of_quantifier(expr, context);
      break;
    default:
      check_run(id, context);
  }
  return expr.type;
}

// The operands of a refused division stay unchecked, and with them the run up to it.
void ExpressionChecker::check_run(ExprId id, const Context& context) {
  ExprId link = model_.expr(id).innermost;
  ExprId start = link;
  for (; link != id; link = model_.expr(link).outer) {
    if (is_refused(model_.expr(link), context)) start = link;
  }
  if (is_refused(model_.expr(id), context)) start = id;
  for (link = start; link != kNoExpr; link = link == id ? kNoExpr : model_.expr(link).outer) {
    Expr& expr = model_.expr(link);
    expr.type = type_of_operator(expr, context);
  }
}

bool ExpressionChecker::is_refused(const Expr& expr, const Context& context) const {
  return expr.op == Op::kDivide && !context.usage.division;
}

StaticType ExpressionChecker::type_of_operator(const Expr& expr, const Context& context) {
  const bool is_logic = expr.op == Op::kOr || expr.op == Op::kAnd || expr.op == Op::kNot;
  return is_logic ? type_of_logic(expr, context) : type_of_arithmetic(expr, context);
}

// The type of an operand of a run is that of the run so far if it is the first one.
StaticType ExpressionChecker::type_of_operand(const Expr& expr, ExprId operand, const Context& context,
                                              const StaticType& hint) {
  const bool is_checked = is_link(expr.op) && operand == expr.operands[0] && is_link(model_.expr(operand).op);
  return is_checked ? model_.expr(operand).type : type_of(operand, context, hint);
}

StaticType ExpressionChecker::type_of_name(Expr& expr, const Context& context, const StaticType& hint) {
  const Binding* const binding = context.scope.find(expr.name);
  if (binding == nullptr) return type_of_literal(expr, context, hint);
  expr.index = binding->index;
  switch (binding->kind) {
    case BindingKind::kConstant:
      expr.value = model_.constants[static_cast<std::size_t>(binding->index)].evaluated;
      if (binding->type.is_known() && expr.value.scalar == Scalar::kUnknown) {
        errors_.add(expr.offset, "expected a constant that is declared before, got '" +
                                     std::string(expr.name) + "', declared at " +
                                     errors_.place(binding->declared));
        return kNoType;
      }
      expr.op = Op::kValue;
      break;
    case BindingKind::kParameter:
      expr.reference = Reference::kParameter;
      break;
    case BindingKind::kIndex:
      expr.reference = Reference::kIndex;
      break;
    case BindingKind::kVariable:
      expr.reference = Reference::kVariable;
      break;
    case BindingKind::kQuantified:
      errors_.add(expr.offset, "expected '.' and a variable behind '" + std::string(expr.name) + "'");
      return kNoType;
  }
  return binding->type;
}

StaticType ExpressionChecker::type_of_literal(Expr& expr, const Context& context, const StaticType& hint) {
  const bool wants_literal = hint.scalar == Scalar::kEnum;
  if (wants_literal) {
    const auto& ordinals = model_.enumeration(hint).ordinals;
    if (const auto found = ordinals.find(expr.name); found != ordinals.end()) {
      expr.op = Op::kValue;
      expr.value = Value::of_literal(found->second);
      return hint;
    }
  }
  const LiteralMeaning* const meaning = context.scope.find_literal(expr.name);
  if (meaning == nullptr) {
    const std::string expected = wants_literal ? "one of " + describe(hint) : context.scope.expected();
    errors_.add(expr.offset,
                "expected " + expected + ", got the name '" + std::string(expr.name) + "', unknown here");
    return kNoType;
  }
  const StaticType type{Scalar::kEnum, meaning->first.enumeration};
  if (meaning->conflicting && !wants_literal) {
    const auto& other = *meaning->conflicting;
    errors_.add(expr.offset, "expected an operand that decides between '" + std::string(expr.name) + "' of " +
                                 describe(type) + " at " + errors_.place(meaning->first.declared) +
                                 " and of " + describe({Scalar::kEnum, other.enumeration}) + " at " +
                                 errors_.place(other.declared) + ", got none");
    return kNoType;
  }
  expr.op = Op::kValue;
  expr.value = Value::of_literal(meaning->first.ordinal);
  return type;
}

StaticType ExpressionChecker::type_of_member(Expr& expr, const Context& context) {
  const Binding* const binding = context.scope.find(expr.name);
  if (binding == nullptr || binding->kind != BindingKind::kQuantified) {
    errors_.add(expr.offset, "expected a name that a quantifier introduces before '.', got '" +
                                 std::string(expr.name) + "'");
    return kNoType;
  }
  const Quantifier& quantifier = model_.quantifiers[static_cast<std::size_t>(binding->index)];
  if (quantifier.type_index < 0) return kNoType;
  expr.quantifier = binding->index;
  expr.reference = Reference::kVariable;
  expr.index = types_.find_variable(quantifier.type_index, expr.member);
  if (expr.index < 0) {
    errors_.add(expr.operator_offset, "expected a variable of type '" + std::string(quantifier.type.text) +
                                          "', got '" + std::string(expr.member) + "'");
    return kNoType;
  }
  return model_.type(quantifier.type_index).variables[static_cast<std::size_t>(expr.index)].type;
}

// True if only the surroundings can tell which enumeration is meant.
bool ExpressionChecker::needs_hint(ExprId id, const Scope& scope) const {
  const Expr& expr = model_.expr(id);
  if (expr.op == Op::kName) return scope.find(expr.name) == nullptr;
  if (expr.op != Op::kConditional) return false;
  return needs_hint(expr.operands[1], scope) || needs_hint(expr.operands[2], scope);
}

ExpressionChecker::TypePair ExpressionChecker::types_of_pair(ExprId first, ExprId second,
                                                             const Context& context, const StaticType& hint) {
  TypePair types;
  if (hint.scalar != Scalar::kEnum && needs_hint(first, context.scope)) {
    types.second = type_of(second, context, hint);
    if (!types.second.is_known()) return types;
    types.first = type_of(first, context, types.second);
  } else {
    types.first = type_of(first, context, hint);
    types.second = type_of(second, context, hint.scalar == Scalar::kEnum ? hint : types.first);
  }
  return types;
}

// The type to which values of both belong.
StaticType ExpressionChecker::common_type(const TypePair& types, ExprId second) {
  if (!types.first.is_known() || !types.second.is_known()) return kNoType;
  if (fits(types.first, types.second)) return types.second;
  if (fits(types.second, types.first)) return types.first;
  mismatch(second, types.first.is_number() ? "int or real" : describe(types.first), types.second);
  return kNoType;
}

StaticType ExpressionChecker::type_of_conditional(const Expr& expr, const Context& context,
                                                  const StaticType& hint) {
  const auto [condition, then, otherwise] = expr.operands;
  const StaticType type = type_of(condition, context, kBoolType);
  if (type.is_known() && type != kBoolType) mismatch(condition, "bool", type);
  const StaticType common = common_type(types_of_pair(then, otherwise, context, hint), otherwise);
  return type == kBoolType ? common : kNoType;
}

StaticType ExpressionChecker::type_of_logic(const Expr& expr, const Context& context) {
  bool is_known = true;
  for (const ExprId operand : expr.operands) {
    if (operand == kNoExpr) break;
    const StaticType type = type_of_operand(expr, operand, context, kBoolType);
    if (type.is_known() && type != kBoolType) mismatch(operand, "bool", type);
    is_known = is_known && type == kBoolType;
  }
  return is_known ? kBoolType : kNoType;
}

StaticType ExpressionChecker::type_of_comparison(const Expr& expr, const Context& context) {
  const auto [first, second, none] = expr.operands;
  const StaticType common = common_type(types_of_pair(first, second, context, kNoType), second);
  if (!common.is_known()) return kNoType;
  const bool orders = expr.op != Op::kEqual && expr.op != Op::kNotEqual;
  if (orders && common == kBoolType) {
    mismatch(first, "int, real or an enumeration's value", common);
    return kNoType;
  }
  return kBoolType;
}

StaticType ExpressionChecker::type_of_arithmetic(const Expr& expr, const Context& context) {
  if (is_refused(expr, context)) {
    errors_.add(expr.operator_offset, "expected 'div', got '/', which is real and for rates only");
    return kNoType;
  }
  const bool needs_int = expr.op == Op::kDivideDown || expr.op == Op::kRemainder;
  StaticType result = expr.op == Op::kDivide ? kRealType : kIntType;
  bool is_known = true;
  for (const ExprId operand : expr.operands) {
    if (operand == kNoExpr) break;
    const StaticType type = type_of_operand(expr, operand, context, kNoType);
    if (needs_int && type.is_known() && type != kIntType) {
      mismatch(operand, "int", type);
      is_known = false;
    } else {
      is_known = is_number(operand, type) && is_known;
    }
    if (type == kRealType) result = kRealType;
  }
  return is_known ? result : kNoType;
}

void ExpressionChecker::check_quantified_type(Quantifier& quantifier, const Context& context) {
  quantifier.type_index = types_.find(quantifier.type.text);
  if (quantifier.type_index < 0) {
    errors_.add(quantifier.type.offset,
                "expected a type's name, got '" + std::string(quantifier.type.text) + "'");
    return;
  }
  if (!quantifier.has_arguments) return;
  check_arguments(quantifier.type, quantifier.type_index, quantifier.arguments, context.scope.outermost());
}

void ExpressionChecker::check_arguments(const Name& type, int type_index,
                                        const std::vector<ExprId>& arguments, const Scope& scope) {
  const std::vector<ParameterDecl>& parameters = model_.type(type_index).parameters;
  if (arguments.size() != parameters.size()) {
    errors_.add(type.offset, "expected " + counted(parameters.size(), "argument", "arguments") + " of '" +
                                 std::string(type.text) + "' (declared at " +
                                 errors_.place(model_.type(type_index).name.offset) + "), got " +
                                 std::to_string(arguments.size()));
    return;
  }
  for (std::size_t i = 0; i < arguments.size(); ++i) {
    check(arguments[i], parameters[i].type, scope, kRealUsage);
  }
}

StaticType ExpressionChecker::type_of_quantifier(const Expr& expr, const Context& context) {
  Quantifier& quantifier = model_.quantifiers[static_cast<std::size_t>(expr.quantifier)];
  if (!context.usage.quantifiers) {
    errors_.add(expr.offset,
                "expected " + context.scope.expected() + ", got a quantifier, which labels and rewards have");
    return kNoType;
  }
  check_quantified_type(quantifier, context);
  if (!is_new_name(quantifier.variable, context.scope)) return kNoType;
  const bool has_type = quantifier.type_index >= 0;
  Scope scope(&context.scope, "a constant or a quantified submodel's variable",
              has_type ? &types_.names[static_cast<std::size_t>(quantifier.type_index)] : nullptr);
  scope.bind(quantifier.variable.text,
             {BindingKind::kQuantified, expr.quantifier, kNoType, quantifier.variable.offset});
  const ExprId body = expr.operands[0];
  const Context inner{scope, context.usage};
  if (expr.op == Op::kSum) {
    const StaticType type = type_of(body, inner, kNoType);
    return is_number(body, type) ? type : kNoType;
  }
  const StaticType type = type_of(body, inner, kBoolType);
  if (type.is_known() && type != kBoolType) mismatch(body, "bool", type);
  if (type != kBoolType) return kNoType;
  return expr.op == Op::kCount ? kIntType : kBoolType;
}

}  // namespace symfold
