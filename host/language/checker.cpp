// Names and types of a whole model, and the values of its constants. Expressions and the system have files of
// their own.

#include <map>
#include <set>
#include <utility>

#include "host/language/evaluator.h"
#include "host/language/expression_checker.h"
#include "host/language/reading_steps.h"
#include "host/language/scope.h"
#include "host/language/system_checker.h"

namespace symfold {
namespace {

constexpr std::size_t kMaxLiterals = 32768;

class Checker {
 public:
  Checker(ModelDescription& model, ErrorList& errors)
      : model_(model),
        errors_(errors),
        expressions_(model, types_, errors),
        constants_(nullptr, "a constant") {}

  void check_constants(const ConstantValues& overrides);
  void check_types();
  void check_system() { SystemChecker(model_, types_, expressions_, constants_, errors_).check(); }
  void check_observables();

 private:
  void declare_global_names();
  void declare_literals(VariableDecl& variable, TypeNames& names, const Scope& scope);
  int intern(const std::vector<Name>& literals);
  void check_type(TypeDecl& type, std::size_t index);
  void declare_variables(TypeDecl& type, TypeNames& names, Scope& scope);
  void check_variable(const VariableDecl& variable, const Scope& scope);
  void check_action(ActionDecl& action, const TypeDecl& type, const TypeNames& names, const Scope& scope);
  Value evaluate_constant(const ConstantDecl& constant);

  ModelDescription& model_;
  ErrorList& errors_;
  TypeTable types_;
  ExpressionChecker expressions_;
  Scope constants_;
  std::map<std::vector<std::string>, int> enumerations_;
};

// All constants are visible everywhere. A use of one that has no value yet is an error.
void Checker::declare_global_names() {
  for (std::size_t i = 0; i < model_.constants.size(); ++i) {
    const ConstantDecl& constant = model_.constants[i];
    if (!expressions_.is_new_name(constant.name, constants_)) continue;
    constants_.bind(constant.name.text,
                    {BindingKind::kConstant, static_cast<int>(i), constant.type, constant.name.offset});
  }
  for (std::size_t i = 0; i < model_.types.size(); ++i) {
    const Name& name = model_.types[i].name;
    const auto [entry, is_new] = types_.indices.emplace(name.text, static_cast<int>(i));
    if (!expressions_.is_new_name(name, constants_) || is_new) continue;
    errors_.add(name.offset, "expected a new name, got '" + std::string(name.text) + "', declared at " +
                                 errors_.place(model_.type(entry->second).name.offset));
  }
}

void Checker::check_constants(const ConstantValues& overrides) {
  declare_global_names();
  for (std::size_t i = 0; i < model_.constants.size(); ++i) {
    ConstantDecl& constant = model_.constants[i];
    const bool is_real = constant.type == kRealType;
    expressions_.check(constant.value, constant.type, constants_, is_real ? kRealUsage : kExactUsage);
    const auto found = overrides.find(i);
    constant.evaluated = found == overrides.end() ? evaluate_constant(constant) : found->second;
  }
}

// A constant with an error gets some value of its type, so that the error is reported only once.
Value Checker::evaluate_constant(const ConstantDecl& constant) {
  Value value = Value::of_int(0);
  if (model_.expr(constant.value).type.is_known()) {
    try {
      Budget budget(kMaxExpressions);
      value = evaluate(model_, constant.value, {}, budget);
    } catch (const EvaluationError& error) {
      errors_.add(error.offset, error.message);
    }
  }
  if (constant.type == kRealType) return Value::of_real(value.as_real());
  value.scalar = constant.type.scalar;
  return value;
}

void Checker::check_types() {
  types_.names.resize(model_.types.size());
  for (std::size_t i = 0; i < model_.types.size(); ++i) check_type(model_.types[i], i);
}

int Checker::intern(const std::vector<Name>& literals) {
  std::vector<std::string> texts;
  texts.reserve(literals.size());
  for (const Name& literal : literals) texts.emplace_back(literal.text);
  const auto [entry, is_new] =
      enumerations_.emplace(std::move(texts), static_cast<int>(model_.enumerations.size()));
  if (is_new) {
    Enumeration enumeration;
    enumeration.literals = std::make_shared<const std::vector<std::string>>(entry->first);
    for (std::size_t i = 0; i < literals.size(); ++i) {
      enumeration.ordinals.emplace(literals[i].text, static_cast<int>(i));
    }
    model_.enumerations.push_back(std::move(enumeration));
  }
  return entry->second;
}

void Checker::declare_literals(VariableDecl& variable, TypeNames& names, const Scope& scope) {
  if (variable.literals.size() > kMaxLiterals) {
    errors_.add(variable.name.offset, "expected at most " + std::to_string(kMaxLiterals) + " literals, got " +
                                          std::to_string(variable.literals.size()));
  }
  variable.type.enumeration = intern(variable.literals);
  std::set<std::string_view> own;
  for (std::size_t i = 0; i < variable.literals.size(); ++i) {
    const Name& literal = variable.literals[i];
    if (!expressions_.is_new_name(literal, scope)) continue;
    if (!own.insert(literal.text).second) {
      errors_.add(literal.offset, "expected a new literal, got '" + std::string(literal.text) + "' again");
      continue;
    }
    const LiteralMeaning::Place place{variable.type.enumeration, static_cast<int>(i), literal.offset};
    const auto [entry, is_new] = names.literals.emplace(literal.text, LiteralMeaning{place, std::nullopt});
    LiteralMeaning& meaning = entry->second;
    if (!is_new && !meaning.conflicting && meaning.first.ordinal != place.ordinal)
      meaning.conflicting = place;
  }
}

void Checker::check_type(TypeDecl& type, std::size_t index) {
  TypeNames& names = types_.names[index];
  Scope parameters(&constants_, "a constant or a parameter");
  for (std::size_t i = 0; i < type.parameters.size(); ++i) {
    const ParameterDecl& parameter = type.parameters[i];
    if (!expressions_.is_new_name(parameter.name, parameters)) continue;
    parameters.bind(parameter.name.text,
                    {BindingKind::kParameter, static_cast<int>(i), parameter.type, parameter.name.offset});
  }
  Scope variables(&parameters, "a constant, a parameter, a variable or a literal", &names);
  declare_variables(type, names, variables);
  for (const VariableDecl& variable : type.variables) check_variable(variable, parameters);
  for (ActionDecl& action : type.actions) check_action(action, type, names, variables);
}

// All variables come before the first literal, so that no literal takes the name of a later variable.
void Checker::declare_variables(TypeDecl& type, TypeNames& names, Scope& scope) {
  int position = 0;
  int shared_count = 0;
  for (VariableDecl& variable : type.variables) {
    variable.slot = variable.is_shared ? shared_count++ : position - shared_count;
    if (expressions_.is_new_name(variable.name, scope)) {
      names.variables.emplace(variable.name.text, position);
      scope.bind(variable.name.text, {BindingKind::kVariable, position, variable.type, variable.name.offset});
    }
    ++position;
  }
  for (VariableDecl& variable : type.variables) {
    if (variable.type.scalar != Scalar::kEnum) continue;
    declare_literals(variable, names, scope);
    scope.set_type(variable.name.text, variable.type);
  }
}

void Checker::check_variable(const VariableDecl& variable, const Scope& scope) {
  if (variable.low != kNoExpr) expressions_.check(variable.low, kIntType, scope);
  if (variable.high != kNoExpr) expressions_.check(variable.high, kIntType, scope);
  if (variable.initial != kNoExpr) expressions_.check(variable.initial, variable.type, scope);
}

void Checker::check_action(ActionDecl& action, const TypeDecl& type, const TypeNames& names,
                           const Scope& scope) {
  expressions_.check(action.guard, kBoolType, scope);
  expressions_.check_number(action.rate, scope, kRealUsage);
  std::map<std::string_view, Offset> assigned;
  for (Assignment& assignment : action.assignments) {
    const Name& target = assignment.variable;
    const auto found = names.variables.find(target.text);
    if (found == names.variables.end()) {
      errors_.add(target.offset, "expected a variable of type '" + std::string(type.name.text) + "', got '" +
                                     std::string(target.text) + "'");
      continue;
    }
    const auto [earlier, is_new] = assigned.emplace(target.text, target.offset);
    if (!is_new) {
      errors_.add(target.offset, "expected one assignment to '" + std::string(target.text) +
                                     "', got another; the first is at " + errors_.place(earlier->second));
    }
    assignment.variable_index = found->second;
    expressions_.check(assignment.value, type.variables[static_cast<std::size_t>(found->second)].type, scope);
  }
}

void Checker::check_observables() {
  std::map<std::pair<bool, std::string_view>, Offset> declared;
  const Scope scope(&constants_, "a constant or a quantified submodel's variable");
  for (const ObservableDecl& observable : model_.observables) {
    const auto [earlier, is_new] =
        declared.emplace(std::pair(observable.is_reward, observable.name.text), observable.name.offset);
    if (!is_new) {
      errors_.add(observable.name.offset, std::string("expected a new name of a ") +
                                              (observable.is_reward ? "reward" : "label") + ", got \"" +
                                              std::string(observable.name.text) + "\", declared at " +
                                              errors_.place(earlier->second));
    }
    if (observable.is_reward) {
      expressions_.check_number(observable.value, scope, kRewardUsage);
    } else {
      expressions_.check(observable.value, kBoolType, scope, kLabelUsage);
    }
  }
}

}  // namespace

void check_model(ModelDescription& model, const ConstantValues& overrides, ErrorList& errors) {
  Checker checker(model, errors);
  checker.check_constants(overrides);
  checker.check_types();
  checker.check_system();
  checker.check_observables();
}

}  // namespace symfold
