// Expands arrays, conditions and `for` entries.
//
// Every combination of an array's indices is visited once, the last index fastest. Each visit, and each
// operator evaluated on the way, is a step. The number of steps is bounded, so that ranges nested in ranges
// whose conditions are always false end in an error and not in the user's patience.

#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

#include "host/language/expansion.h"
#include "host/language/instance_table.h"
#include "host/language/reading_steps.h"

namespace symfold {
namespace {

constexpr std::size_t kMaxVariables = 2'000'000;  // of all submodels
constexpr int kStepsPerElement = 8;

class Composer {
 public:
  Composer(std::shared_ptr<const ModelDescription> model, ErrorList& errors)
      : description_(*model),
        errors_(errors),
        expansion_(*model, errors),
        instances_(*model, result_.instances, expansion_.budget(), errors) {
    result_.description = std::move(model);
  }

  ComposedModel compose();

 private:
  // The join that a submodel's shared variable belongs to.
  struct Bound {
    int join = -1;  // -1: none yet
    Offset entry = 0;
  };

  // What a name stands for.
  struct Named {
    Offset declared = 0;
    int submodel = -1;  // -1: no submodel
  };

  void register_names();
  void compose_submodels(const SubmodelDecl& declaration, int index);
  void add_submodel(const SubmodelDecl& declaration, int index, const std::string& name);
  void set_initials(Submodel& submodel, const SubmodelDecl& declaration);
  void compose_joins(const JoinDecl& declaration);
  void add_join(const JoinDecl& declaration, const std::string& name);
  void add_members(Join& join, const JoinDecl& declaration, const JoinEntryDecl& entry);
  void add_member(Join& join, const JoinDecl& declaration, const JoinEntryDecl& entry);
  void require_agreement(const Join& join, const JoinDecl& declaration, const JoinEntryDecl& entry,
                         const JoinMember& member);
  void set_initial(Join& join, const JoinDecl& declaration);
  void require_all_bound();

  void register_element(const Name& array, bool is_array, const std::string& name, int submodel);
  int find_submodel(const JoinEntryDecl& entry, std::string& name);
  std::string member_name(const JoinMember& member) const;
  Bound& bound(const JoinMember& member) {
    return bound_[first_bound_[static_cast<std::size_t>(member.submodel)] +
                  static_cast<std::size_t>(member.variable)];
  }

  const ModelDescription& description_;
  ErrorList& errors_;
  ComposedModel result_;
  Expansion expansion_;
  InstanceTable instances_;
  std::unordered_map<std::string, Named> names_;  // of declarations and elements
  std::vector<int> declarations_;                 // of the submodels
  std::vector<std::size_t> first_bound_;          // of the submodels, into bound_
  std::vector<Bound> bound_;
  std::size_t variable_count_ = 0;
};

ComposedModel Composer::compose() {
  const SystemDecl& system = description_.system;
  result_.name = system.name.text;
  register_names();
  for (std::size_t i = 0; i < system.submodels.size(); ++i) {
    expansion_.guarded("", [&] { compose_submodels(system.submodels[i], static_cast<int>(i)); });
  }
  errors_.throw_if_any();
  if (result_.submodels.empty()) errors_.fail(system.name.offset, "expected at least one submodel, got none");
  for (const JoinDecl& join : system.joins) {
    expansion_.guarded("", [&] { compose_joins(join); });
  }
  errors_.throw_if_any();
  require_all_bound();
  errors_.throw_if_any();
  return std::move(result_);
}

void Composer::register_names() {
  const SystemDecl& system = description_.system;
  for (const SubmodelDecl& submodel : system.submodels) {
    names_.emplace(submodel.name.text, Named{submodel.name.offset});
  }
  for (const JoinDecl& join : system.joins) names_.emplace(join.name.text, Named{join.name.offset});
}

// The names of what stands outside arrays are registered already.
void Composer::register_element(const Name& array, bool is_array, const std::string& name, int submodel) {
  const auto [entry, is_new] = names_.emplace(name, Named{array.offset});
  if (is_new || !is_array) {
    entry->second.submodel = submodel;
    return;
  }
  const Offset earlier = entry->second.declared;
  errors_.add_once(array.offset, earlier,
                   "expected names of elements that nothing else has, got '" + name +
                       "', which also comes from " + errors_.place(earlier));
}

void Composer::compose_submodels(const SubmodelDecl& declaration, int index) {
  expansion_.for_each(declaration.ranges, [&] {
    const std::string name = expansion_.element_name(declaration.name);
    expansion_.guarded(name, [&] { add_submodel(declaration, index, name); });
  });
}

void Composer::add_submodel(const SubmodelDecl& declaration, int index, const std::string& name) {
  if (expansion_.is_left_out(declaration.condition)) return;
  const Offset offset = declaration.name.offset;
  if (result_.submodels.size() == static_cast<std::size_t>(kMaxElements)) {
    errors_.fail(offset, "expected at most " + std::to_string(kMaxElements) + " submodels, got more");
  }
  variable_count_ += description_.type(declaration.type_index).variables.size();
  if (variable_count_ > kMaxVariables) {
    errors_.fail(offset, "expected at most " + std::to_string(kMaxVariables) + " variables in all, got more");
  }
  Submodel submodel;
  submodel.name = name;
  std::vector<Value> arguments;
  for (const ExprId argument : declaration.arguments) arguments.push_back(expansion_.value_of(argument));
  const auto instance = instances_.find_or_add(declaration.type_index, std::move(arguments));
  expansion_.spend(0, offset);
  if (!instance) return;
  submodel.instance = *instance;
  set_initials(submodel, declaration);
  register_element(declaration.name, !declaration.ranges.empty(), name,
                   static_cast<int>(result_.submodels.size()));
  declarations_.push_back(index);
  first_bound_.push_back(bound_.size());
  bound_.resize(bound_.size() + result_.instance_of(submodel).shared_variables.size());
  result_.submodels.push_back(std::move(submodel));
}

void Composer::set_initials(Submodel& submodel, const SubmodelDecl& declaration) {
  const std::vector<Variable>& variables = result_.instance_of(submodel).private_variables;
  for (const Variable& variable : variables) {
    submodel.initial.push_back(static_cast<std::int16_t>(variable.initial));
  }
  const std::vector<VariableDecl>& declared = description_.type(declaration.type_index).variables;
  for (const Assignment& initial : declaration.initials) {
    const auto slot =
        static_cast<std::size_t>(declared[static_cast<std::size_t>(initial.variable_index)].slot);
    const int value = value_in(variables[slot].values, expansion_.value_of(initial.value),
                               description_.expr(initial.value).offset);
    submodel.initial[slot] = static_cast<std::int16_t>(value);
  }
}

void Composer::compose_joins(const JoinDecl& declaration) {
  expansion_.for_each(declaration.ranges, [&] {
    const std::string name = expansion_.element_name(declaration.name);
    expansion_.guarded(name, [&] { add_join(declaration, name); });
  });
}

void Composer::add_join(const JoinDecl& declaration, const std::string& name) {
  if (expansion_.is_left_out(declaration.condition)) return;
  const Offset offset = declaration.name.offset;
  if (result_.joins.size() == static_cast<std::size_t>(kMaxElements)) {
    errors_.fail(offset, "expected at most " + std::to_string(kMaxElements) + " joins, got more");
  }
  Join join;
  join.name = name;
  register_element(declaration.name, !declaration.ranges.empty(), name, -1);
  bool is_complete = true;
  for (const JoinEntryDecl& entry : declaration.entries) {
    is_complete =
        expansion_.guarded(join.name, [&] { add_members(join, declaration, entry); }) && is_complete;
  }
  if (!is_complete) return;
  if (join.members.empty()) {
    errors_.add_once(offset, offset, "expected at least one member of join " + join.name + ", got none");
    return;
  }
  set_initial(join, declaration);
  result_.joins.push_back(std::move(join));
}

void Composer::add_members(Join& join, const JoinDecl& declaration, const JoinEntryDecl& entry) {
  expansion_.for_each(entry.ranges, [&] {
    if (!expansion_.is_left_out(entry.condition)) add_member(join, declaration, entry);
  });
}

// Returns the submodel that the entry names for the current indices, -1 if there is none; and its name.
int Composer::find_submodel(const JoinEntryDecl& entry, std::string& name) {
  name = entry.submodel.text;
  for (const ExprId id : entry.indices) {
    const std::int64_t index = expansion_.value_of(id).integer;
    if (index < 0) {
      throw EvaluationError{description_.expr(id).offset,
                            "expected an index of at least 0, got " + std::to_string(index)};
    }
    name += '_' + std::to_string(index);
  }
  const auto found = names_.find(name);
  if (found == names_.end() || found->second.submodel < 0) return -1;
  const int submodel = found->second.submodel;
  return declarations_[static_cast<std::size_t>(submodel)] == entry.submodel_index ? submodel : -1;
}

void Composer::add_member(Join& join, const JoinDecl& declaration, const JoinEntryDecl& entry) {
  expansion_.spend(kStepsPerElement, entry.submodel.offset);
  const SubmodelDecl& submodel =
      description_.system.submodels[static_cast<std::size_t>(entry.submodel_index)];
  std::string name;
  const int index = find_submodel(entry, name);
  if (index < 0) {
    throw EvaluationError{entry.submodel.offset, "expected a submodel that exists, got " + name + " ('" +
                                                     std::string(submodel.name.text) + "' is declared at " +
                                                     errors_.place(submodel.name.offset) + ")"};
  }
  const auto& variables = description_.type(submodel.type_index).variables;
  const JoinMember member{index, variables[static_cast<std::size_t>(entry.variable_index)].slot};
  Bound& binding = bound(member);
  if (binding.join >= 0) {
    const auto earlier = static_cast<std::size_t>(binding.join);
    const std::string& by = earlier < result_.joins.size() ? result_.joins[earlier].name : join.name;
    errors_.add_once(entry.submodel.offset, binding.entry,
                     "expected every shared variable in one join, got " + member_name(member) + " in " +
                         join.name + " and, at " + errors_.place(binding.entry) + ", in " + by);
    return;
  }
  binding = {static_cast<int>(result_.joins.size()), entry.submodel.offset};
  if (!join.members.empty()) require_agreement(join, declaration, entry, member);
  join.members.push_back(member);
}

std::string Composer::member_name(const JoinMember& member) const {
  return result_.submodels[static_cast<std::size_t>(member.submodel)].name + '.' +
         result_.variable_of(member).name;
}

// If the join itself has an initial value, then those of its members do not matter.
void Composer::require_agreement(const Join& join, const JoinDecl& declaration, const JoinEntryDecl& entry,
                                 const JoinMember& member) {
  const JoinMember& leader = join.members.front();
  const Variable& first = result_.variable_of(leader);
  const Variable& other = result_.variable_of(member);
  const auto describe = [this](const JoinMember& which, const std::string& what) {
    return what + " of " + member_name(which);
  };
  std::string message;
  if (!(first.values == other.values)) {
    message = "expected the value set " + describe(leader, to_string(first.values)) + " (at " +
              errors_.place(bound(leader).entry) + "), got " + describe(member, to_string(other.values));
  } else if (declaration.initial == kNoExpr && first.initial != other.initial) {
    message = "expected the initial value " + describe(leader, value_text(first.values, first.initial)) +
              " (at " + errors_.place(bound(leader).entry) + "), got " +
              describe(member, value_text(other.values, other.initial));
  }
  if (!message.empty()) errors_.add_once(entry.submodel.offset, bound(leader).entry, message);
}

void Composer::set_initial(Join& join, const JoinDecl& declaration) {
  const Variable& first = result_.variable_of(join.members.front());
  join.values = first.values;
  join.initial = first.initial;
  if (declaration.initial == kNoExpr) return;
  const Expr& expr = description_.expr(declaration.initial);
  const bool fits = (expr.type == kBoolType && join.values.kind == ValueSet::Kind::kBool) ||
                    (expr.type == kIntType && join.values.kind == ValueSet::Kind::kRange) ||
                    (expr.type.scalar == Scalar::kEnum && join.values.literals != nullptr &&
                     description_.enumeration(expr.type).literals == join.values.literals);
  if (!fits)
    throw EvaluationError{expr.offset,
                          "expected a value of " + to_string(join.values) + ", got another kind"};
  join.initial = value_in(join.values, expansion_.value_of(declaration.initial), expr.offset);
}

void Composer::require_all_bound() {
  for (std::size_t i = 0; i < result_.submodels.size(); ++i) {
    const Submodel& submodel = result_.submodels[i];
    const SubmodelDecl& declaration =
        description_.system.submodels[static_cast<std::size_t>(declarations_[i])];
    for (const VariableDecl& variable : description_.type(declaration.type_index).variables) {
      if (!variable.is_shared) continue;
      const JoinMember member{static_cast<int>(i), variable.slot};
      if (bound(member).join >= 0) continue;
      errors_.add_once(declaration.name.offset, variable.name.offset,
                       "expected a join of every shared variable, got none of " + submodel.name + '.' +
                           std::string(variable.name.text) + " (declared at " +
                           errors_.place(variable.name.offset) + ")");
    }
  }
}

}  // namespace

ComposedModel compose(std::shared_ptr<const ModelDescription> model, ErrorList& errors) {
  return Composer(std::move(model), errors).compose();
}

}  // namespace symfold
