// A composed model: submodels, and joins by which they share variables. A model file becomes one when its
// arrays are expanded and its names are resolved.
//
// All of it is plain data. The maker of a model keeps the rules that stand at the types; its readers rely on
// them, in any number of threads at once.

#ifndef SYMFOLD_HOST_MODEL_COMPOSED_MODEL_H
#define SYMFOLD_HOST_MODEL_COMPOSED_MODEL_H

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "host/model/value.h"

namespace symfold {

struct ModelDescription;

// Every variable takes two bytes, little endian.
inline constexpr int kBytesPerVariable = 2;

struct Variable {
  std::string name;
  ValueSet values;
  int initial = 0;  // according to the type's declaration; in the value set
};

// A type with values for its parameters: submodels of one instance behave alike.
struct TypeInstance {
  std::string token;  // "Server(3,2.5)", or "Server" without parameters; no blanks
  int type = 0;       // index into ModelDescription::types
  std::vector<Value> arguments;
  std::vector<Variable> private_variables;  // in the order of their declaration
  std::vector<Variable> shared_variables;   // likewise

  int byte_size() const { return kBytesPerVariable * static_cast<int>(private_variables.size()); }
};

struct Submodel {
  std::string name;
  int instance = 0;                   // index into ComposedModel::instances
  std::vector<std::int16_t> initial;  // of the private variables
};

struct JoinMember {
  int submodel = 0;  // index into ComposedModel::submodels
  int variable = 0;  // index into the shared_variables of the submodel's instance
};

// One variable that several submodels share.
struct Join {
  std::string name;
  ValueSet values;  // also of each member's variable
  int initial = 0;
  std::vector<JoinMember> members;  // at least one
};

// No two submodels or joins have the same name; every shared variable is a member of exactly one join.
struct ComposedModel {
  std::string name;  // of the system
  std::vector<TypeInstance> instances;
  std::vector<Submodel> submodels;  // at least one
  std::vector<Join> joins;
  std::shared_ptr<const ModelDescription> description;  // the checked tree: actions and observables

  const TypeInstance& instance_of(const Submodel& submodel) const {
    return instances[static_cast<std::size_t>(submodel.instance)];
  }
  const TypeInstance& instance_of(const JoinMember& member) const {
    return instance_of(submodels[static_cast<std::size_t>(member.submodel)]);
  }
  const Variable& variable_of(const JoinMember& member) const {
    return instance_of(member).shared_variables[static_cast<std::size_t>(member.variable)];
  }

  // A cell is what moves as a whole: the private variables of a submodel, or the variable of a join.
  std::size_t cell_count() const { return submodels.size() + joins.size(); }
};

}  // namespace symfold

#endif  // SYMFOLD_HOST_MODEL_COMPOSED_MODEL_H
