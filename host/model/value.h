// Values, and the sets from which variables take theirs.

#ifndef SYMFOLD_HOST_MODEL_VALUE_H
#define SYMFOLD_HOST_MODEL_VALUE_H

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace symfold {

enum class Scalar : std::uint8_t {
  kUnknown,  // not known yet, or of an expression in which an error was found
  kBool,
  kInt,
  kReal,
  kEnum
};

// The value of a constant, a parameter or an expression. A bool is 0 or 1 in `integer`, a literal its
// position in its enumeration.
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

  // Requires: no real.
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

// "true", "-3", "2.5": the shortest text that reads back as the same value. A literal's is its position.
std::string to_string(const Value& value);

// The integers low .. high that a variable can take. In a bool's set they stand for false and true, in an
// enumeration's for the positions of the literals.
struct ValueSet {
  enum class Kind : std::uint8_t { kBool, kRange, kEnumeration };

  Kind kind = Kind::kBool;
  int low = 0;
  int high = 1;
  // Of an enumeration only. Equal enumerations of one model share their literals.
  std::shared_ptr<const std::vector<std::string>> literals;

  std::size_t size() const { return static_cast<std::size_t>(high - low) + 1; }
  bool contains(std::int64_t value) const { return value >= low && value <= high; }

  // Requires: both sets belong to the same model. Constant time.
  bool operator==(const ValueSet&) const = default;
};

// "bool", "[0..3]", "{idle, busy}"; of a long enumeration the first literals only.
std::string to_string(const ValueSet& set);

// "{idle, busy}", or "{a, b, c, d, e, f, ...}" for more than six literals.
std::string literals_text(const std::vector<std::string>& literals);

// A value of the set, as the model language writes it. Requires: the set contains the value.
std::string value_text(const ValueSet& set, int value);

}  // namespace symfold

#endif  // SYMFOLD_HOST_MODEL_VALUE_H
