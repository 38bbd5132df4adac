#include "host/model/value.h"

#include <array>
#include <charconv>
#include <limits>

namespace symfold {

std::string to_string(const Value& value) {
  if (value.scalar == Scalar::kBool) return value.is_true() ? "true" : "false";
  if (value.scalar != Scalar::kReal) return std::to_string(value.integer);
  std::array<char, 32> text{};
  const auto end = std::to_chars(text.data(), text.data() + text.size(), value.real).ptr;
  return {text.data(), end};
}

std::optional<std::int64_t> checked_add(std::int64_t a, std::int64_t b) {
  std::int64_t result = 0;
  if (__builtin_add_overflow(a, b, &result)) return std::nullopt;
  return result;
}

std::optional<std::int64_t> checked_subtract(std::int64_t a, std::int64_t b) {
  std::int64_t result = 0;
  if (__builtin_sub_overflow(a, b, &result)) return std::nullopt;
  return result;
}

std::optional<std::int64_t> checked_multiply(std::int64_t a, std::int64_t b) {
  std::int64_t result = 0;
  if (__builtin_mul_overflow(a, b, &result)) return std::nullopt;
  return result;
}

std::optional<std::int64_t> checked_divide_down(std::int64_t a, std::int64_t b) {
  if (b == -1) return checked_subtract(0, a);
  const std::int64_t quotient = a / b;
  return a % b != 0 && (a < 0) != (b < 0) ? quotient - 1 : quotient;
}

std::int64_t remainder_of_divide_down(std::int64_t a, std::int64_t b) {
  if (b == -1) return 0;
  const std::int64_t remainder = a % b;
  return remainder != 0 && (remainder < 0) != (b < 0) ? remainder + b : remainder;
}

}  // namespace symfold
