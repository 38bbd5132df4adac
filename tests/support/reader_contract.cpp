#include "tests/support/reader_contract.h"

#include <algorithm>
#include <set>
#include <utility>

#include "host/language/model_reader.h"

namespace symfold {
namespace {

template <class Index, class Elements>
bool is_index(Index index, const Elements& elements) {
  return index >= 0 && static_cast<std::size_t>(index) < elements.size();
}

std::string breach_of_submodels(const ComposedModel& model) {
  if (model.submodels.empty()) return "a model without submodels";
  for (const Submodel& submodel : model.submodels) {
    if (!is_index(submodel.instance, model.instances)) return "no type of " + submodel.name;
    const std::vector<Variable>& variables = model.instance_of(submodel).private_variables;
    const bool fits =
        std::equal(variables.begin(), variables.end(), submodel.initial.begin(), submodel.initial.end(),
                   [](const Variable& variable, int initial) { return variable.values.contains(initial); });
    if (!fits) return "wrong initial values of " + submodel.name;
  }
  return "";
}

std::string breach_of_joins(const ComposedModel& model) {
  std::set<std::pair<int, int>> bound;
  for (const Join& join : model.joins) {
    if (join.members.empty()) return "no members of " + join.name;
    if (!join.values.contains(join.initial)) return "wrong initial value of " + join.name;
    for (const JoinMember& member : join.members) {
      if (!is_index(member.submodel, model.submodels)) return "no submodel of a member of " + join.name;
      if (!is_index(member.variable, model.instance_of(member).shared_variables))
        return "no variable of a member of " + join.name;
      if (!(model.variable_of(member).values == join.values)) return "other values in " + join.name;
      if (!bound.emplace(member.submodel, member.variable).second)
        return "a variable bound twice in " + join.name;
    }
  }
  std::size_t shared = 0;
  for (const Submodel& submodel : model.submodels)
    shared += model.instance_of(submodel).shared_variables.size();
  return shared == bound.size() ? "" : "a shared variable outside all joins";
}

std::string breach_of_names(const ComposedModel& model) {
  std::set<std::string> names;
  for (const Submodel& submodel : model.submodels) names.insert(submodel.name);
  for (const Join& join : model.joins) names.insert(join.name);
  return names.size() == model.cell_count() ? "" : "a name that two parts have";
}

std::string breach_of_errors(const ModelError& error) {
  if (error.diagnostics().empty() || error.diagnostics().size() > 10) return "too many errors, or none";
  const std::string text = error.what();
  for (std::size_t i = 0; i < text.size(); ++i) {
    const unsigned char c = static_cast<unsigned char>(text[i]);
    const bool is_c1 = c == 0xC2 && static_cast<unsigned char>(text[i + 1]) < 0xA0;
    if ((c < ' ' && c != '\n' && c != '\t') || c == 0x7F || is_c1) return "a control character in an error";
  }
  for (const Diagnostic& diagnostic : error.diagnostics()) {
    if (diagnostic.line < 1 || diagnostic.column < 1) return "an error without a place";
    if (diagnostic.caret < 0 || diagnostic.caret > static_cast<int>(diagnostic.source_line.size()))
      return "a caret outside its line";
  }
  return "";
}

}  // namespace

Reading read_by_contract(const std::string& text) {
  try {
    const ComposedModel model = read_model_text("m.sym", text);
    for (const auto check : {breach_of_submodels, breach_of_joins, breach_of_names}) {
      if (const std::string breach = check(model); !breach.empty()) return {true, breach};
    }
    return {true, ""};
  } catch (const ModelError& error) {
    return {false, breach_of_errors(error)};
  }
}

}  // namespace symfold
