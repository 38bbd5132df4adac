// What names may stand for at one place of the model. Scopes lie inside one another.

#ifndef SYMFOLD_HOST_LANGUAGE_SCOPE_H
#define SYMFOLD_HOST_LANGUAGE_SCOPE_H

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

#include "host/language/model_description.h"

namespace symfold {

enum class BindingKind : std::uint8_t { kConstant, kParameter, kIndex, kVariable, kQuantified };

struct Binding {
  BindingKind kind = BindingKind::kConstant;
  int index = -1;  // among the bindings of its kind; of kQuantified: into ModelDescription::quantifiers
  StaticType type;
  Offset declared = 0;
};

// What a literal's name means in one type: the first enumeration that has it, and the first one that has it
// at another position.
struct LiteralMeaning {
  struct Place {
    int enumeration = -1;
    int ordinal = 0;
    Offset declared = 0;
  };
  Place first;
  std::optional<Place> conflicting;
};

// The names declared in a type.
struct TypeNames {
  std::unordered_map<std::string_view, int> variables;
  std::unordered_map<std::string_view, LiteralMeaning> literals;
};

// All types by name. The two functions return -1 if there is none.
struct TypeTable {
  std::unordered_map<std::string_view, int> indices;
  std::vector<TypeNames> names;  // per type

  int find(std::string_view name) const {
    const auto found = indices.find(name);
    return found == indices.end() ? -1 : found->second;
  }

  int find_variable(int type, std::string_view name) const {
    const auto& variables = names[static_cast<std::size_t>(type)].variables;
    const auto found = variables.find(name);
    return found == variables.end() ? -1 : found->second;
  }
};

class Scope {
 public:
  // `expected` says what a name may be here, for messages: "a constant or an index". `type` has the literals,
  // if there are any. `outer` and `type` must outlive the scope.
  Scope(const Scope* outer, std::string expected, const TypeNames* type = nullptr)
      : outer_(outer), expected_(std::move(expected)), type_(type) {}

  const std::string& expected() const { return expected_; }

  const Binding* find(std::string_view name) const {
    for (const Scope* scope = this; scope != nullptr; scope = scope->outer_) {
      const auto found = scope->bindings_.find(name);
      if (found != scope->bindings_.end()) return &found->second;
    }
    return nullptr;
  }

  // The scope of the constants.
  const Scope& outermost() const { return outer_ == nullptr ? *this : outer_->outermost(); }

  // The innermost meaning wins.
  const LiteralMeaning* find_literal(std::string_view name) const {
    for (const Scope* scope = this; scope != nullptr; scope = scope->outer_) {
      if (scope->type_ == nullptr) continue;
      const auto found = scope->type_->literals.find(name);
      if (found != scope->type_->literals.end()) return &found->second;
    }
    return nullptr;
  }

  void bind(std::string_view name, const Binding& binding) { bindings_.emplace(name, binding); }

  // Leaves a name alone that is not bound in this scope itself, because it has another meaning outside.
  void set_type(std::string_view name, const StaticType& type) {
    if (const auto found = bindings_.find(name); found != bindings_.end()) found->second.type = type;
  }

 private:
  const Scope* outer_;
  std::string expected_;
  const TypeNames* type_;
  std::unordered_map<std::string_view, Binding> bindings_;
};

}  // namespace symfold

#endif  // SYMFOLD_HOST_LANGUAGE_SCOPE_H
