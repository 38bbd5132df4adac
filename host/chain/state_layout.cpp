#include "host/chain/state_layout.h"

#include <algorithm>
#include <bit>
#include <unordered_map>
#include <utility>

#include "host/language/evaluator.h"
#include "host/language/model_description.h"
#include "host/model/model_error.h"

namespace symfold {
namespace {

constexpr std::size_t kMaxVariablesShown = 40;

}  // namespace

// The detector gets the slots as the bytes that they are in memory.
static_assert(std::endian::native == std::endian::little);

StateLayout::StateLayout(const ComposedModel& model, const std::vector<std::string>& order) {
  std::vector<Cell> cells;
  std::unordered_map<std::string_view, Cell> named;
  const auto add = [&](const std::string& name, const Cell& cell) {
    if (order.empty()) cells.push_back(cell);
    named.emplace(name, cell);
  };
  for (std::size_t i = 0; i < model.submodels.size(); ++i) add(model.submodels[i].name, {false, i});
  for (std::size_t i = 0; i < model.joins.size(); ++i) add(model.joins[i].name, {true, i});
  for (const std::string& name : order) cells.push_back(named.at(name));
  place(model, cells);
}

std::uint32_t StateLayout::add_variable(std::string name, const ValueSet& values, int initial) {
  variables_.push_back({std::move(name), values});
  initial_state_.push_back(static_cast<std::int16_t>(initial));
  return static_cast<std::uint32_t>(variables_.size() - 1);
}

void StateLayout::place(const ComposedModel& model, const std::vector<Cell>& cells) {
  std::vector<std::uint32_t> first_private(model.submodels.size());
  std::vector<std::vector<std::uint32_t>> shared(model.submodels.size());
  for (std::size_t i = 0; i < model.submodels.size(); ++i) {
    shared[i].resize(model.instance_of(model.submodels[i]).shared_variables.size());
  }
  for (const Cell& cell : cells) {
    if (cell.is_join) {
      const Join& join = model.joins[cell.index];
      const std::uint32_t slot = add_variable(join.name, join.values, join.initial);
      for (const JoinMember& member : join.members) {
        shared[static_cast<std::size_t>(member.submodel)][static_cast<std::size_t>(member.variable)] = slot;
      }
      continue;
    }
    const Submodel& submodel = model.submodels[cell.index];
    const std::vector<Variable>& variables = model.instance_of(submodel).private_variables;
    first_private[cell.index] = static_cast<std::uint32_t>(variables_.size());
    for (std::size_t v = 0; v < variables.size(); ++v) {
      add_variable(submodel.name + '.' + variables[v].name, variables[v].values, submodel.initial[v]);
    }
  }
  for (std::size_t i = 0; i < model.submodels.size(); ++i) {
    first_slots_.push_back(slots_.size());
    const TypeDecl& type = model.description->type(model.instance_of(model.submodels[i]).type);
    for (const VariableDecl& variable : type.variables) {
      const auto position = static_cast<std::size_t>(variable.slot);
      slots_.push_back(variable.is_shared ? shared[i][position]
                                          : first_private[i] + static_cast<std::uint32_t>(position));
    }
  }
}

std::string state_text(const StateLayout& layout, const std::int16_t* state) {
  std::string text;
  for (std::size_t i = 0; i < std::min(layout.slot_count(), kMaxVariablesShown); ++i) {
    const ChainVariable& variable = layout.variables()[i];
    text += (i == 0 ? "" : ", ") + variable.name + " = " + value_text(variable.values, state[i]);
  }
  if (layout.slot_count() > kMaxVariablesShown) text += ", ...";
  return text;
}

void fail_in_state(const ComposedModel& model, const StateLayout& layout, const EvaluationError& error,
                   const std::string& where, const std::int16_t* state) {
  throw ModelError({model.description->source->diagnostic_at(
      error.offset, error.message + " (in " + where + ", where " + state_text(layout, state) + ")")});
}

}  // namespace symfold
