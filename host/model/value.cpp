#include "host/model/value.h"

#include <algorithm>
#include <array>
#include <charconv>

namespace symfold {

namespace {
constexpr std::size_t kLiteralsShown = 6;
}  // namespace

std::string to_string(const Value& value) {
  if (value.scalar == Scalar::kBool) return value.is_true() ? "true" : "false";
  if (value.scalar != Scalar::kReal) return std::to_string(value.integer);
  std::array<char, 32> text{};
  const auto end = std::to_chars(text.data(), text.data() + text.size(), value.real).ptr;
  return {text.data(), end};
}

std::string to_string(const ValueSet& set) {
  if (set.kind == ValueSet::Kind::kBool) return "bool";
  if (set.kind == ValueSet::Kind::kEnumeration) return literals_text(*set.literals);
  return "[" + std::to_string(set.low) + ".." + std::to_string(set.high) + "]";
}

std::string literals_text(const std::vector<std::string>& literals) {
  std::string text;
  for (std::size_t i = 0; i < std::min(literals.size(), kLiteralsShown); ++i) {
    text += (i == 0 ? "{" : ", ") + literals[i];
  }
  return text + (literals.size() > kLiteralsShown ? ", ...}" : "}");
}

std::string value_text(const ValueSet& set, int value) {
  if (set.kind == ValueSet::Kind::kBool) return value != 0 ? "true" : "false";
  if (set.kind == ValueSet::Kind::kRange) return std::to_string(value);
  return (*set.literals)[static_cast<std::size_t>(value)];
}

}  // namespace symfold
