// A composed model: what is left of a model file when its arrays are expanded and its names resolved.

#ifndef SYMFOLD_HOST_MODEL_COMPOSED_MODEL_H
#define SYMFOLD_HOST_MODEL_COMPOSED_MODEL_H

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "host/model/value.h"

namespace symfold {

struct ModelDescription;

// Every variable takes two bytes, little endian.
inline constexpr int kBytesPerVariable = 2;

// The values low .. high; of a bool 0 and 1, of an enumeration the positions of its literals.
struct ValueSet {
  enum class Kind : std::uint8_t { kBool, kRange, kEnumeration };

  Kind kind = Kind::kBool;
  int low = 0;
  int high = 1;
  std::shared_ptr<const std::vector<std::string>> literals;  // of an enumeration only; equal ones are shared

  std::size_t size() const { return static_cast<std::size_t>(high - low) + 1; }
  bool contains(std::int64_t value) const { return value >= low && value <= high; }

  // Of sets of one model, in constant time.
  bool operator==(const ValueSet&) const = default;
};

// "bool", "[0..3]", "{idle, busy}".
std::string to_string(const ValueSet& set);

// A value of the set as the model language writes it.
std::string value_text(const ValueSet& set, int value);

struct Variable {
  std::string name;
  ValueSet values;
  int initial = 0;  // by the type's declaration
};

// A type with values for its parameters: submodels of one instance behave alike.
struct TypeInstance {
  std::string token;  // "Server(3,2.5)", or "Server" without parameters; no blanks
  int type = 0;       // index into ModelDescription::types
  std::vector<Value> arguments;
  std::vector<Variable> private_variables;  // in order of declaration, like VariableDecl::slot
  std::vector<Variable> shared_variables;

  int byte_size() const { return kBytesPerVariable * static_cast<int>(private_variables.size()); }
};

struct Submodel {
  std::string name;
  int instance = 0;                   // index into ComposedModel::instances
  std::vector<std::int16_t> initial;  // of the private variables
};

struct JoinMember {
  int submodel = 0;  // index into ComposedModel::submodels
  int variable = 0;  // index into its instance's shared_variables
};

// One variable that several submodels share.
struct Join {
  std::string name;
  ValueSet values;
  int initial = 0;
  std::vector<JoinMember> members;  // at least one
};

// No two submodels or joins have the same name; every shared variable is a member of exactly one join.
struct ComposedModel {
  std::string name;  // of the system
  std::vector<TypeInstance> instances;
  std::vector<Submodel> submodels;  // at least one
  std::vector<Join> joins;
  std::shared_ptr<const ModelDescription> description;  // the checked tree: actions, labels, rewards

  const TypeInstance& instance_of(const Submodel& submodel) const {
    return instances[static_cast<std::size_t>(submodel.instance)];
  }
  const TypeInstance& instance_of(const JoinMember& member) const {
    return instance_of(submodels[static_cast<std::size_t>(member.submodel)]);
  }
  const Variable& variable_of(const JoinMember& member) const {
    return instance_of(member).shared_variables[static_cast<std::size_t>(member.variable)];
  }

  // A partition per submodel and per join.
  std::size_t partition_count() const { return submodels.size() + joins.size(); }
};

}  // namespace symfold

#endif  // SYMFOLD_HOST_MODEL_COMPOSED_MODEL_H
