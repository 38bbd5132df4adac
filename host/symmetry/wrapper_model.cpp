#include "host/symmetry/wrapper_model.h"

#include <algorithm>

namespace symfold {
namespace {

std::string shared_name(const ComposedModel& model, const Join& join) {
  const std::string& first = model.variable_of(join.members.front()).name;
  const bool all_agree = std::all_of(join.members.begin(), join.members.end(), [&](const JoinMember& member) {
    return model.variable_of(member).name == first;
  });
  return all_agree ? first : "value";
}

}  // namespace

WrapperModel::OneVariableJoin::OneVariableJoin(char* name, char* variable, SharedVarEntry* first)
    : variable_(variable), first_(first) {
  JoinName = name;
  NumSharedStateVars = 1;
  SharedStateVarNames = &variable_;
  SharedStateVars = &first_;
}

WrapperModel::WrapperModel(const ComposedModel& model) {
  for (const Submodel& submodel : model.submodels) submodels_.push_back({text(submodel.name)});
  for (const TypeInstance& instance : model.instances) {
    for (const Variable& variable : instance.shared_variables) {
      StateVariable& record = variables_[variable.name];
      if (record.VarName == nullptr) record.VarName = text(variable.name);
    }
  }
  for (const Join& join : model.joins) {
    char* const name = text(join.name);
    char* const variable = text(shared_name(model, join));
    joins_.emplace_back(name, variable, add_entries(model, join));
    join_pointers_.push_back(&joins_.back());
  }
  wrapper_.Joins = join_pointers_.data();
  wrapper_.NumJoins = static_cast<int>(join_pointers_.size());
}

char* WrapperModel::text(const std::string& content) { return texts_.emplace_back(content).data(); }

// The entries are linked in the order of the members.
SharedVarEntry* WrapperModel::add_entries(const ComposedModel& model, const Join& join) {
  SharedVarEntry* first = nullptr;
  SharedVarEntry** link = &first;
  for (const JoinMember& member : join.members) {
    StateVariable* const variable = &variables_[model.variable_of(member).name];
    AtomicModel* const submodel = &submodels_[static_cast<std::size_t>(member.submodel)];
    *link = &entries_.emplace_back(SharedVarEntry{variable, submodel, nullptr});
    link = &(*link)->Next;
  }
  return first;
}

}  // namespace symfold
