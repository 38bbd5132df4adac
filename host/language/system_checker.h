// Names and types of a model's system: submodels, joins and their entries.

#ifndef SYMFOLD_HOST_LANGUAGE_SYSTEM_CHECKER_H
#define SYMFOLD_HOST_LANGUAGE_SYSTEM_CHECKER_H

#include <cstddef>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "host/language/error_list.h"
#include "host/language/expression_checker.h"
#include "host/language/scope.h"

namespace symfold {

class SystemChecker {
 public:
  SystemChecker(ModelDescription& model, const TypeTable& types, ExpressionChecker& expressions,
                const Scope& constants, ErrorList& errors)
      : model_(model), types_(types), expressions_(expressions), constants_(constants), errors_(errors) {}

  // Requires: constants and types are checked.
  void check();

 private:
  void declare(const Name& name);
  void check_submodel(SubmodelDecl& submodel);
  void check_initial(Assignment& initial, const SubmodelDecl& submodel, const Scope& scope);
  void check_join(JoinDecl& join);
  void check_entry(JoinEntryDecl& entry, const Scope& join_scope, std::size_t join_indices);
  void resolve_entry(JoinEntryDecl& entry);
  void bind_ranges(const std::vector<IndexRange>& ranges, std::size_t first_index, Scope& scope);
  StaticType type_of(const JoinEntryDecl& entry) const;

  ModelDescription& model_;
  const TypeTable& types_;
  ExpressionChecker& expressions_;
  const Scope& constants_;
  ErrorList& errors_;
  std::unordered_map<std::string_view, Offset> names_;
  std::unordered_map<std::string_view, int> submodels_;
};

}  // namespace symfold

#endif  // SYMFOLD_HOST_LANGUAGE_SYSTEM_CHECKER_H
