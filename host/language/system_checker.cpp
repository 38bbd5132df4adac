#include "host/language/system_checker.h"

#include <algorithm>
#include <array>
#include <map>
#include <string>

namespace symfold {
namespace {

// True for a word of the graph viewers' language, in any mixture of cases. It cannot be a submodel's name.
bool is_viewer_word(std::string_view name) {
  constexpr std::array<std::string_view, 6> kWords = {"node",    "edge",     "graph",
                                                      "digraph", "subgraph", "strict"};
  std::string lower(name);
  for (char& c : lower) {
    if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
  }
  return std::find(kWords.begin(), kWords.end(), lower) != kWords.end();
}

constexpr const char* kExpectedName = "a constant or an index";

}  // namespace

void SystemChecker::check() {
  SystemDecl& system = model_.system;
  for (std::size_t i = 0; i < system.submodels.size(); ++i) {
    declare(system.submodels[i].name);
    submodels_.emplace(system.submodels[i].name.text, static_cast<int>(i));
    check_submodel(system.submodels[i]);
  }
  for (JoinDecl& join : system.joins) {
    declare(join.name);
    check_join(join);
  }
}

void SystemChecker::declare(const Name& name) {
  const auto [earlier, is_new] = names_.emplace(name.text, name.offset);
  if (is_new) return;
  errors_.add(name.offset, "expected a new name, got '" + std::string(name.text) + "', declared at " +
                               errors_.place(earlier->second));
}

void SystemChecker::bind_ranges(const std::vector<IndexRange>& ranges, std::size_t first_index,
                                Scope& scope) {
  for (std::size_t i = 0; i < ranges.size(); ++i) {
    const IndexRange& range = ranges[i];
    expressions_.check(range.low, kIntType, scope);
    expressions_.check(range.high, kIntType, scope);
    if (!expressions_.is_new_name(range.name, scope)) continue;
    scope.bind(range.name.text,
               {BindingKind::kIndex, static_cast<int>(first_index + i), kIntType, range.name.offset});
  }
}

void SystemChecker::check_submodel(SubmodelDecl& submodel) {
  if (submodel.ranges.empty() && is_viewer_word(submodel.name.text)) {
    errors_.add(submodel.name.offset, "expected a name that graph viewers take, got '" +
                                          std::string(submodel.name.text) + "', a word of their language");
  }
  Scope scope(&constants_, kExpectedName);
  bind_ranges(submodel.ranges, 0, scope);
  if (submodel.condition != kNoExpr) expressions_.check(submodel.condition, kBoolType, scope);
  submodel.type_index = types_.find(submodel.type.text);
  if (submodel.type_index < 0) {
    errors_.add(submodel.type.offset,
                "expected a type's name, got '" + std::string(submodel.type.text) + "'");
    return;
  }
  expressions_.check_arguments(submodel.type, submodel.type_index, submodel.arguments, scope);
  std::map<std::string_view, Offset> given;
  for (Assignment& initial : submodel.initials) {
    check_initial(initial, submodel, scope);
    const auto [earlier, is_new] = given.emplace(initial.variable.text, initial.variable.offset);
    if (is_new) continue;
    errors_.add(initial.variable.offset,
                "expected one initial value of '" + std::string(initial.variable.text) +
                    "', got another; the first is at " + errors_.place(earlier->second));
  }
}

void SystemChecker::check_initial(Assignment& initial, const SubmodelDecl& submodel, const Scope& scope) {
  const TypeDecl& type = model_.type(submodel.type_index);
  const std::string expected =
      "expected a private variable of type '" + std::string(type.name.text) + "', got ";
  initial.variable_index = types_.find_variable(submodel.type_index, initial.variable.text);
  if (initial.variable_index < 0) {
    errors_.add(initial.variable.offset, expected + "'" + std::string(initial.variable.text) + "'");
    return;
  }
  const VariableDecl& variable = type.variables[static_cast<std::size_t>(initial.variable_index)];
  if (variable.is_shared) {
    errors_.add(initial.variable.offset, expected + "the shared variable '" +
                                             std::string(initial.variable.text) +
                                             "', which takes its initial value from its join");
  }
  expressions_.check(initial.value, variable.type, scope);
}

void SystemChecker::check_join(JoinDecl& join) {
  Scope scope(&constants_, kExpectedName);
  bind_ranges(join.ranges, 0, scope);
  if (join.condition != kNoExpr) expressions_.check(join.condition, kBoolType, scope);
  if (join.entries.empty()) {
    errors_.add(join.name.offset,
                "expected at least one entry of join '" + std::string(join.name.text) + "', got none");
  }
  StaticType type;
  for (JoinEntryDecl& entry : join.entries) {
    check_entry(entry, scope, join.ranges.size());
    if (!type.is_known()) type = type_of(entry);
  }
  if (join.initial != kNoExpr) expressions_.check(join.initial, type, scope);
}

StaticType SystemChecker::type_of(const JoinEntryDecl& entry) const {
  if (entry.variable_index < 0) return {};
  const int type = model_.system.submodels[static_cast<std::size_t>(entry.submodel_index)].type_index;
  return model_.type(type).variables[static_cast<std::size_t>(entry.variable_index)].type;
}

void SystemChecker::check_entry(JoinEntryDecl& entry, const Scope& join_scope, std::size_t join_indices) {
  Scope scope(&join_scope, kExpectedName);
  bind_ranges(entry.ranges, join_indices, scope);
  if (entry.condition != kNoExpr) expressions_.check(entry.condition, kBoolType, scope);
  for (const ExprId index : entry.indices) expressions_.check(index, kIntType, scope);
  resolve_entry(entry);
}

void SystemChecker::resolve_entry(JoinEntryDecl& entry) {
  const auto found = submodels_.find(entry.submodel.text);
  if (found == submodels_.end()) {
    errors_.add(entry.submodel.offset,
                "expected a submodel's name, got '" + std::string(entry.submodel.text) + "'");
    return;
  }
  entry.submodel_index = found->second;
  const SubmodelDecl& submodel = model_.system.submodels[static_cast<std::size_t>(found->second)];
  if (entry.indices.size() != submodel.ranges.size()) {
    errors_.add(entry.submodel.offset, "expected " + counted(submodel.ranges.size(), "index", "indices") +
                                           " of '" + std::string(submodel.name.text) + "' (declared at " +
                                           errors_.place(submodel.name.offset) + "), got " +
                                           std::to_string(entry.indices.size()));
  }
  if (submodel.type_index < 0) return;
  const TypeDecl& type = model_.type(submodel.type_index);
  const int variable = types_.find_variable(submodel.type_index, entry.variable.text);
  const std::string expected =
      "expected a shared variable of type '" + std::string(type.name.text) + "', got ";
  if (variable < 0) {
    errors_.add(entry.variable.offset, expected + "'" + std::string(entry.variable.text) + "'");
  } else if (!type.variables[static_cast<std::size_t>(variable)].is_shared) {
    errors_.add(entry.variable.offset,
                expected + "the private variable '" + std::string(entry.variable.text) + "', declared at " +
                    errors_.place(type.variables[static_cast<std::size_t>(variable)].name.offset));
  } else {
    entry.variable_index = variable;
  }
}

}  // namespace symfold
