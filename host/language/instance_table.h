// The type instances of a model: each is a type with values for its parameters. Value sets and initial values
// are computed once for each instance.

#ifndef SYMFOLD_HOST_LANGUAGE_INSTANCE_TABLE_H
#define SYMFOLD_HOST_LANGUAGE_INSTANCE_TABLE_H

#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

#include "host/language/error_list.h"
#include "host/language/evaluator.h"
#include "host/model/composed_model.h"

namespace symfold {

class InstanceTable {
 public:
  InstanceTable(const ModelDescription& model, std::vector<TypeInstance>& instances, Budget& budget,
                ErrorList& errors)
      : model_(model), instances_(instances), budget_(budget), errors_(errors) {}

  // Returns the index of the type's instance with these arguments, which it makes if there is none yet.
  // Returns nothing if a value set or an initial value is wrong; the error is in the list.
  std::optional<int> find_or_add(int type, std::vector<Value> arguments);

 private:
  bool add_variables(TypeInstance& instance);
  Variable make_variable(const VariableDecl& declaration, const TypeInstance& instance);
  void set_range(Variable& variable, const VariableDecl& declaration, const Environment& environment);

  const ModelDescription& model_;
  std::vector<TypeInstance>& instances_;
  Budget& budget_;
  ErrorList& errors_;
  std::unordered_map<std::string, std::optional<int>> known_;  // by token
};

// Returns the value. Throws EvaluationError, at the offset, if it is not in the set.
int value_in(const ValueSet& set, const Value& value, Offset offset);

}  // namespace symfold

#endif  // SYMFOLD_HOST_LANGUAGE_INSTANCE_TABLE_H
