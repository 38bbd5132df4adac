// The type instances of a model: a type with values for its parameters, its value sets and initial values
// computed once.

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

  // The index of the type's instance with these arguments, made when new. Nothing where a value set or
  // initial value is wrong; the error is in the list.
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

// The value in the set, or an EvaluationError at the offset.
int value_in(const ValueSet& set, const Value& value, Offset offset);

}  // namespace symfold

#endif  // SYMFOLD_HOST_LANGUAGE_INSTANCE_TABLE_H
