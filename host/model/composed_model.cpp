#include "host/model/composed_model.h"

#include <algorithm>

namespace symfold {

namespace {
constexpr std::size_t kLiteralsShown = 6;
}  // namespace

std::string to_string(const ValueSet& set) {
  if (set.kind == ValueSet::Kind::kBool) return "bool";
  if (set.kind == ValueSet::Kind::kRange)
    return "[" + std::to_string(set.low) + ".." + std::to_string(set.high) + "]";
  std::string text;
  for (std::size_t i = 0; i < std::min(set.literals->size(), kLiteralsShown); ++i) {
    text += (i == 0 ? "{" : ", ") + (*set.literals)[i];
  }
  return text + (set.literals->size() > kLiteralsShown ? ", ...}" : "}");
}

std::string value_text(const ValueSet& set, int value) {
  if (set.kind == ValueSet::Kind::kBool) return value != 0 ? "true" : "false";
  if (set.kind == ValueSet::Kind::kRange) return std::to_string(value);
  return (*set.literals)[static_cast<std::size_t>(value)];
}

}  // namespace symfold
