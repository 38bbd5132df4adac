#include "host/chain/observables.h"

#include <algorithm>

#include "host/model/model_error.h"

namespace symfold {
namespace {

// Entries of all quantifiers' tables together, 8 bytes each.
constexpr std::size_t kMaxRemembered = std::size_t{1} << 23;

bool equal(const Value& a, const Value& b) {
  return a.scalar == Scalar::kReal || b.scalar == Scalar::kReal ? a.as_real() == b.as_real()
                                                                : a.integer == b.integer;
}

// `kind` is the member that the summands hold.
template <class Type>
Type ordered_sum(std::vector<Number>& summands, Type Number::*kind, Offset offset) {
  std::sort(summands.begin(), summands.end(),
            [&](const Number& a, const Number& b) { return a.*kind < b.*kind; });
  Type sum = 0;
  for (const Number& summand : summands) sum = apply(Op::kAdd, sum, summand.*kind, offset);
  return sum;
}

}  // namespace

Observables::Observables(const ComposedModel& model, const StateLayout& layout,
                         const LocalStates& local_states)
    : model_(model), layout_(layout), local_states_(local_states), compiler_(*model.description) {
  for (const ObservableDecl& declaration : model.description->observables) {
    compile(declaration);
  }
}

void Observables::compile(const ObservableDecl& declaration) {
  const std::string name(declaration.name.text);
  try {
    Program program = compiler_.compile(declaration.value, declaration.is_reward ? kRealType : kBoolType, {},
                                        [this](ExprId quantifier) { return add_quantifier(quantifier, {}); });
    NamedPrograms& kind = declaration.is_reward ? rewards_ : observables_;
    kind.names.push_back(name);
    kind.programs.push_back(std::move(program));
  } catch (const EvaluationError& error) {
    throw ModelError(
        {model_.description->source->diagnostic_at(error.offset, error.message + " (in \"" + name + "\")")});
  }
}

// Compiles a quantifier that stands inside those `around` it.
std::uint32_t Observables::add_quantifier(ExprId id, std::vector<int> around) {
  const Expr& expr = model_.description->expr(id);
  const ExprId body = expr.operands[0];
  const StaticType& type = model_.description->expr(body).type;
  QuantifierLoop loop{expr.op,
                      type == kRealType,
                      around.size(),
                      expr.offset,
                      range_of(model_.description->quantifiers[static_cast<std::size_t>(expr.quantifier)]),
                      {},
                      around.empty(),
                      {},
                      {},
                      {}};
  around.push_back(expr.quantifier);
  loop.body = compiler_.compile(body, type, around, [&](ExprId inner) {
    loop.is_remembered = false;
    return add_quantifier(inner, around);
  });
  if (local_states_.total() * (quantifiers_.size() + 1) > kMaxRemembered) loop.is_remembered = false;
  if (loop.is_remembered) {
    loop.known.resize(local_states_.total());
    loop.is_known.resize(local_states_.total());
  }
  quantifiers_.push_back(std::move(loop));
  return static_cast<std::uint32_t>(quantifiers_.size() - 1);
}

std::vector<std::uint32_t> Observables::range_of(const Quantifier& quantifier) const {
  std::vector<Value> arguments;
  Budget budget(kMaxExpressions);
  for (const ExprId argument : quantifier.arguments) {
    arguments.push_back(evaluate(*model_.description, argument, {}, budget));
  }
  std::vector<bool> is_in_range;
  for (const TypeInstance& instance : model_.instances) {
    is_in_range.push_back(instance.type == quantifier.type_index &&
                          (!quantifier.has_arguments || std::equal(arguments.begin(), arguments.end(),
                                                                   instance.arguments.begin(), equal)));
  }
  std::vector<std::uint32_t> submodels;
  for (std::size_t s = 0; s < model_.submodels.size(); ++s) {
    if (is_in_range[static_cast<std::size_t>(model_.submodels[s].instance)]) {
      submodels.push_back(static_cast<std::uint32_t>(s));
    }
  }
  return submodels;
}

Number Observables::value_in(const NamedPrograms& of, std::size_t index, const std::int16_t* state,
                             const std::uint32_t* local) {
  local_ = local;
  Frames frames(state, this);
  try {
    return evaluate(of.programs[index], frames);
  } catch (const EvaluationError& error) {
    fail_in_state(model_, layout_, error, '"' + of.names[index] + '"', state);
  }
}

Number Observables::value_of(std::uint32_t quantifier, Frames& frames) {
  QuantifierLoop& loop = quantifiers_[quantifier];
  if (loop.op == Op::kSum) return sum(loop, frames);
  std::size_t count = 0;
  for (const std::uint32_t submodel : loop.submodels) {
    count += static_cast<std::size_t>(body_value(loop, submodel, frames).integer);
  }
  if (loop.op == Op::kExists) return Number{.integer = count > 0};
  if (loop.op == Op::kForAll) return Number{.integer = count == loop.submodels.size()};
  return Number{.integer = static_cast<std::int64_t>(count)};
}

Number Observables::sum(QuantifierLoop& loop, Frames& frames) {
  loop.summands.clear();
  for (const std::uint32_t submodel : loop.submodels) {
    loop.summands.push_back(body_value(loop, submodel, frames));
  }
  if (loop.is_real) return Number{.real = ordered_sum(loop.summands, &Number::real, loop.offset)};
  return Number{.integer = ordered_sum(loop.summands, &Number::integer, loop.offset)};
}

Number Observables::body_value(QuantifierLoop& loop, std::uint32_t submodel, Frames& frames) {
  const std::uint32_t local = loop.is_remembered ? local_[submodel] : LocalStates::kNone;
  if (local != LocalStates::kNone && loop.is_known[local]) return loop.known[local];
  frames.set(loop.frame, layout_.slots_of(submodel));
  const Number value = evaluate(loop.body, frames);
  if (local != LocalStates::kNone) {
    loop.known[local] = value;
    loop.is_known[local] = true;
  }
  return value;
}

}  // namespace symfold
