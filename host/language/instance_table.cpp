#include "host/language/instance_table.h"

#include <utility>

namespace symfold {
namespace {

// Variables have 16 bits.
constexpr std::int64_t kMinValue = -32768;
constexpr std::int64_t kMaxValue = 32767;
constexpr int kStepsPerVariable = 16;

std::string token_of(const TypeDecl& type, const std::vector<Value>& arguments) {
  std::string token(type.name.text);
  for (std::size_t i = 0; i < arguments.size(); ++i) token += (i == 0 ? '(' : ',') + to_string(arguments[i]);
  return arguments.empty() ? token : token + ')';
}

// The value as one of the parameter's type. -0 becomes 0, so that both make the same instance.
Value converted(const Value& value, const StaticType& type) {
  if (type != kRealType) return value;
  const double real = value.as_real();
  return Value::of_real(real == 0 ? 0 : real);
}

std::string shown(const ValueSet& set, const Value& value) {
  return set.kind == ValueSet::Kind::kRange ? std::to_string(value.integer)
                                            : value_text(set, static_cast<int>(value.integer));
}

}  // namespace

int value_in(const ValueSet& set, const Value& value, Offset offset) {
  if (!set.contains(value.integer)) {
    throw EvaluationError{offset, "expected a value of " + to_string(set) + ", got " + shown(set, value)};
  }
  return static_cast<int>(value.integer);
}

std::optional<int> InstanceTable::find_or_add(int type, std::vector<Value> arguments) {
  const TypeDecl& declaration = model_.type(type);
  for (std::size_t i = 0; i < arguments.size(); ++i) {
    arguments[i] = converted(arguments[i], declaration.parameters[i].type);
  }
  const auto [entry, is_new] = known_.emplace(token_of(declaration, arguments), std::nullopt);
  if (!is_new) return entry->second;
  TypeInstance instance;
  instance.token = entry->first;
  instance.type = type;
  instance.arguments = std::move(arguments);
  if (!add_variables(instance)) return std::nullopt;
  entry->second = static_cast<int>(instances_.size());
  instances_.push_back(std::move(instance));
  return entry->second;
}

bool InstanceTable::add_variables(TypeInstance& instance) {
  bool is_good = true;
  for (const VariableDecl& declaration : model_.type(instance.type).variables) {
    budget_.spend(kStepsPerVariable);
    try {
      auto& variables = declaration.is_shared ? instance.shared_variables : instance.private_variables;
      variables.push_back(make_variable(declaration, instance));
    } catch (const EvaluationError& error) {
      errors_.add_once(error.offset, error.offset, error.message + " (in " + instance.token + ")");
      is_good = false;
    }
  }
  return is_good;
}

Variable InstanceTable::make_variable(const VariableDecl& declaration, const TypeInstance& instance) {
  const Environment environment{instance.arguments, {}};
  Variable variable;
  variable.name = declaration.name.text;
  if (declaration.type == kIntType) {
    set_range(variable, declaration, environment);
  } else if (declaration.type != kBoolType) {
    variable.values.kind = ValueSet::Kind::kEnumeration;
    variable.values.literals = model_.enumeration(declaration.type).literals;
    variable.values.high = static_cast<int>(variable.values.literals->size()) - 1;
  }
  variable.initial = variable.values.low;
  if (declaration.initial != kNoExpr) {
    const Value value = evaluate(model_, declaration.initial, environment, budget_);
    variable.initial = value_in(variable.values, value, model_.expr(declaration.initial).offset);
  }
  return variable;
}

void InstanceTable::set_range(Variable& variable, const VariableDecl& declaration,
                              const Environment& environment) {
  const std::int64_t low = evaluate(model_, declaration.low, environment, budget_).integer;
  const std::int64_t high = evaluate(model_, declaration.high, environment, budget_).integer;
  if (low < kMinValue || high > kMaxValue || low > high) {
    throw EvaluationError{model_.expr(declaration.low).offset,
                          "expected a range inside [" + std::to_string(kMinValue) + ".." +
                              std::to_string(kMaxValue) + "], lower end first, got [" + std::to_string(low) +
                              ".." + std::to_string(high) + "]"};
  }
  variable.values = {ValueSet::Kind::kRange, static_cast<int>(low), static_cast<int>(high), nullptr};
}

}  // namespace symfold
