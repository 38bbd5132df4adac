// Values of the model language and their arithmetic.
//
// Integers are exact 64-bit numbers: a result outside is an error, never a wrap. `div` rounds down and `%`
// takes the sign of the divisor, so that (i - 1) % N steps back around a ring: -1 div 5 = -1, -1 % 5 = 4.
// Reals are IEEE doubles; a result that is not finite is an error.

#ifndef SYMFOLD_HOST_MODEL_VALUE_H
#define SYMFOLD_HOST_MODEL_VALUE_H

#include <cstdint>
#include <optional>
#include <string>

namespace symfold {

enum class Scalar : std::uint8_t {
  kUnknown,  // of an expression in which an error was found
  kBool,
  kInt,
  kReal,
  kEnum
};

// The type of an expression. Enumerations with the same literals in the same order are one type.
struct StaticType {
  Scalar scalar = Scalar::kUnknown;
  int enumeration = -1;  // of kEnum: an index into ModelDescription::enumerations

  bool operator==(const StaticType&) const = default;
  bool is_known() const { return scalar != Scalar::kUnknown; }
  bool is_number() const { return scalar == Scalar::kInt || scalar == Scalar::kReal; }
};

inline constexpr StaticType kBoolType{Scalar::kBool, -1};
inline constexpr StaticType kIntType{Scalar::kInt, -1};
inline constexpr StaticType kRealType{Scalar::kReal, -1};

// A bool is 0 or 1 in `integer`, a literal its position in its enumeration.
struct Value {
  Scalar scalar = Scalar::kUnknown;
  union {
    std::int64_t integer = 0;
    double real;
  };

  static Value of_bool(bool value) { return of(Scalar::kBool, value ? 1 : 0); }
  static Value of_int(std::int64_t value) { return of(Scalar::kInt, value); }
  static Value of_literal(std::int64_t value) { return of(Scalar::kEnum, value); }
  static Value of_real(double value) {
    Value result;
    result.scalar = Scalar::kReal;
    result.real = value;
    return result;
  }

  bool is_true() const { return integer != 0; }
  double as_real() const { return scalar == Scalar::kReal ? real : static_cast<double>(integer); }

 private:
  static Value of(Scalar scalar, std::int64_t integer) {
    Value result;
    result.scalar = scalar;
    result.integer = integer;
    return result;
  }
};

// "true", "-3", "2.5": the shortest text that reads back as the same value. Not for literals.
std::string to_string(const Value& value);

// Nothing where the result is no 64-bit integer; divisors must not be 0.
std::optional<std::int64_t> checked_add(std::int64_t a, std::int64_t b);
std::optional<std::int64_t> checked_subtract(std::int64_t a, std::int64_t b);
std::optional<std::int64_t> checked_multiply(std::int64_t a, std::int64_t b);
std::optional<std::int64_t> checked_divide_down(std::int64_t a, std::int64_t b);
std::int64_t remainder_of_divide_down(std::int64_t a, std::int64_t b);

}  // namespace symfold

#endif  // SYMFOLD_HOST_MODEL_VALUE_H
