#include "tests/oracles/naive_chain.h"

#include <algorithm>
#include <cmath>

#include "host/language/evaluator.h"
#include "host/model/model_error.h"

namespace symfold::oracle {
namespace {

template <class Index>
std::size_t index(Index i) {
  return static_cast<std::size_t>(i);
}

// What the language means, by recursion over the tree.
class Interpreter {
 public:
  // What an expression reads: the state, the submodel that acts, and the submodel of each quantifier around
  // it.
  struct Scope {
    const State& state;
    std::size_t submodel = 0;
    std::map<int, std::size_t> quantified = {};
  };

  explicit Interpreter(const ComposedModel& composed) : model(composed), places_(composed.submodels.size()) {
    for (std::size_t s = 0; s < model.submodels.size(); ++s) {
      for (const VariableDecl& variable : type_of(s).variables) {
        places_[s].push_back(names.size());
        if (variable.is_shared) continue;
        add(model.submodels[s].name + '.' + std::string(variable.name.text),
            values_of(instance_of(s), variable), model.submodels[s].initial[index(variable.slot)]);
      }
    }
    for (const Join& join : model.joins) {
      for (const JoinMember& member : join.members) {
        const std::vector<VariableDecl>& variables = type_of(index(member.submodel)).variables;
        for (std::size_t v = 0; v < variables.size(); ++v) {
          const bool is_bound = variables[v].is_shared && variables[v].slot == member.variable;
          if (is_bound) places_[index(member.submodel)][v] = names.size();
        }
      }
      add(join.name, join.values, join.initial);
    }
  }

  const ModelDescription& tree() const { return *model.description; }
  const TypeInstance& instance_of(std::size_t s) const { return model.instance_of(model.submodels[s]); }
  const TypeDecl& type_of(std::size_t s) const { return tree().type(instance_of(s).type); }

  Value value(ExprId id, const Scope& scope) const {
    const Expr& expr = tree().expr(id);
    const auto operand = [&](std::size_t i) { return value(expr.operands[i], scope); };
    switch (expr.op) {
      case Op::kValue:
        return expr.value;
      case Op::kName:
        if (expr.reference == Reference::kVariable) return variable(expr, scope.submodel, scope.state);
        return instance_of(scope.submodel).arguments[index(expr.index)];
      case Op::kMember:
        return variable(expr, scope.quantified.at(expr.quantifier), scope.state);
      case Op::kConditional: {
        const Value chosen = operand(operand(0).is_true() ? 1 : 2);
        return expr.type == kRealType ? Value::of_real(chosen.as_real()) : chosen;
      }
      case Op::kOr:
        return operand(0).is_true() ? Value::of_bool(true) : operand(1);
      case Op::kAnd:
        return operand(0).is_true() ? operand(1) : Value::of_bool(false);
      case Op::kNot:
        return Value::of_bool(!operand(0).is_true());
      case Op::kNegate:
      case Op::kAbs:
        return expr.type == kRealType
                   ? Value::of_real(apply(expr.op, operand(0).as_real(), 0))
                   : Value::of_int(apply(expr.op, operand(0).integer, expr.operator_offset));
      case Op::kExists:
      case Op::kForAll:
      case Op::kSum:
      case Op::kCount:
        return quantified(expr, scope);
      default:
        const Value first = operand(0);
        return combined(expr.op, first, operand(1), expr.type, expr.operator_offset);
    }
  }

  // The state after the submodel's action, and the rate, which is 0 if the action does not happen.
  std::pair<State, double> outcome(const State& state, std::size_t submodel, const ActionDecl& action) const {
    const Scope scope{state, submodel};
    if (!value(action.guard, scope).is_true()) return {state, 0};
    const Value rate = Value::of_real(value(action.rate, scope).as_real());
    if (rate.real < 0) {
      throw EvaluationError{tree().expr(action.rate).offset,
                            "expected a rate of at least 0, got " + to_string(rate)};
    }
    State successor = state;
    for (std::size_t i = 0; rate.real > 0 && i < action.assignments.size(); ++i) {
      const ExprId right = action.assignments[i].value;
      const std::int64_t next = value(right, scope).integer;
      const std::size_t place = places_[submodel][index(action.assignments[i].variable_index)];
      if (!sets_[place].contains(next)) {
        throw EvaluationError{tree().expr(right).offset, "expected a value of " + to_string(sets_[place]) +
                                                             ", got " + std::to_string(next)};
      }
      successor[place] = static_cast<int>(next);
    }
    return {successor, rate.real};
  }

  std::string text(const State& state) const {
    std::string text = "where ";
    for (std::size_t i = 0; i < state.size(); ++i) {
      text += (i == 0 ? "" : ", ") + names[i] + " = " + value_text(sets_[i], state[i]);
    }
    return text;
  }

  const ComposedModel& model;
  std::vector<std::string> names;  // of the state's variables
  State initial;

 private:
  void add(const std::string& name, const ValueSet& values, int first) {
    names.push_back(name);
    sets_.push_back(values);
    initial.push_back(first);
  }

  Value variable(const Expr& expr, std::size_t submodel, const State& state) const {
    Value value = Value::of_int(state[places_[submodel][index(expr.index)]]);
    value.scalar = expr.type.scalar;
    return value;
  }

  static Value combined(Op op, Value a, Value b, const StaticType& type, Offset offset) {
    const bool has_real = a.scalar == Scalar::kReal || b.scalar == Scalar::kReal;
    if (is_comparison(op)) {
      return Value::of_bool(has_real ? compare(op, a.as_real(), b.as_real())
                                     : compare(op, a.integer, b.integer));
    }
    return type == kRealType ? Value::of_real(apply(op, a.as_real(), b.as_real(), offset))
                             : Value::of_int(apply(op, a.integer, b.integer, offset));
  }

  // The body needs a value for every submodel of the range. Numbers are added in ascending order.
  Value quantified(const Expr& expr, const Scope& scope) const {
    const Quantifier& quantifier = tree().quantifiers[index(expr.quantifier)];
    std::vector<Value> values;
    for (std::size_t s = 0; s < model.submodels.size(); ++s) {
      bool is_in_range = instance_of(s).type == quantifier.type_index;
      for (std::size_t i = 0; is_in_range && i < quantifier.arguments.size(); ++i) {
        is_in_range =
            value(quantifier.arguments[i], scope).as_real() == instance_of(s).arguments[i].as_real();
      }
      if (!is_in_range) continue;
      Scope inner = scope;
      inner.quantified[expr.quantifier] = s;
      values.push_back(value(expr.operands[0], inner));
    }
    const auto is_true = [](const Value& value) { return value.is_true(); };
    if (expr.op == Op::kExists) return Value::of_bool(std::any_of(values.begin(), values.end(), is_true));
    if (expr.op == Op::kForAll) return Value::of_bool(std::all_of(values.begin(), values.end(), is_true));
    if (expr.op == Op::kCount) return Value::of_int(std::count_if(values.begin(), values.end(), is_true));
    std::sort(values.begin(), values.end(), [&](const Value& a, const Value& b) {
      return combined(Op::kLess, a, b, expr.type, 0).is_true();
    });
    Value sum = expr.type == kRealType ? Value::of_real(0) : Value::of_int(0);
    for (const Value& value : values) sum = combined(Op::kAdd, sum, value, expr.type, expr.offset);
    return sum;
  }

  std::vector<ValueSet> sets_;
  std::vector<std::vector<std::size_t>> places_;  // of each submodel's variables in the state
};

[[noreturn]] void fail(const Interpreter& interpreter, const EvaluationError& error, const std::string& where,
                       const State& state) {
  throw ModelError({interpreter.tree().source->diagnostic_at(
      error.offset, error.message + " (in " + where + ", " + interpreter.text(state) + ")")});
}

void expand(const Interpreter& interpreter, std::size_t source, std::map<State, std::size_t>& numbers,
            NaiveChain& chain) {
  const State state = chain.states[source];
  std::map<std::size_t, double>& row = chain.rows.emplace_back();
  double exit_rate = 0;
  for (std::size_t s = 0; s < interpreter.model.submodels.size(); ++s) {
    for (const ActionDecl& action : interpreter.type_of(s).actions) {
      try {
        const auto [successor, rate] = interpreter.outcome(state, s, action);
        if (rate == 0) continue;
        const auto [found, is_new] = numbers.emplace(successor, chain.states.size());
        if (is_new) chain.states.push_back(successor);
        row[found->second] += rate;
        exit_rate += rate;
      } catch (const EvaluationError& error) {
        const std::string name(action.name.text);
        fail(interpreter, error, "action '" + name + "' of " + interpreter.model.submodels[s].name, state);
      }
    }
  }
  if (!std::isfinite(exit_rate)) {
    throw ModelError(
        interpreter.tree().source->name(),
        "expected actions whose rates have a finite sum, got infinity (" + interpreter.text(state) + ")");
  }
}

void observe(const Interpreter& interpreter, bool rewards, const State& state,
             std::vector<std::vector<double>>& values) {
  std::size_t number = 0;
  for (const ObservableDecl& observable : interpreter.tree().observables) {
    if (observable.is_reward != rewards) continue;
    values.resize(std::max(values.size(), number + 1));
    try {
      values[number++].push_back(interpreter.value(observable.value, {state}).as_real());
    } catch (const EvaluationError& error) {
      fail(interpreter, error, '"' + std::string(observable.name.text) + '"', state);
    }
  }
}

}  // namespace

NaiveChain naive_chain(const ComposedModel& model, std::size_t max_states) {
  const Interpreter interpreter(model);
  NaiveChain chain{interpreter.names, {interpreter.initial}, {}, {}, {}, "", false};
  std::map<State, std::size_t> numbers{{interpreter.initial, 0}};
  try {
    for (std::size_t s = 0; s < chain.states.size(); ++s) {
      expand(interpreter, s, numbers, chain);
      if (chain.states.size() > max_states) return chain;
      observe(interpreter, false, chain.states[s], chain.labels);
    }
    for (const State& state : chain.states) observe(interpreter, true, state, chain.rewards);
    chain.is_complete = true;
  } catch (const ModelError& error) {
    chain.error = error.what();
  }
  return chain;
}

}  // namespace symfold::oracle
