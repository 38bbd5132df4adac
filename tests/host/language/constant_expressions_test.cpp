// Random constant expressions, written with as few parentheses as precedence allows. Their values are
// computed in 128 bits while they are made up.

#include <gtest/gtest.h>

#include <limits>
#include <optional>
#include <random>
#include <string>

#include "host/language/model_description.h"
#include "tests/support/model_support.h"

namespace symfold {
namespace {

__extension__ typedef __int128 Wide;

// An expression of type int or bool (0 or 1), without a value if its evaluation must fail.
struct Made {
  std::string text;
  int level;  // of precedence, loosest first
  std::optional<Wide> value;
};

class Maker {
 public:
  explicit Maker(unsigned seed) : random_(seed) {}

  Made integer(int depth) {
    if (depth == 0 || below(6) == 0) return leaf();
    switch (below(5)) {
      case 0:
        return conditional(depth, true);
      case 1:
        return call(depth);
      case 2:
        return negation(depth);
      default:
        return arithmetic(depth);
    }
  }

  Made boolean(int depth) {
    if (depth == 0) return below(2) == 0 ? Made{"true", 8, 1} : Made{"false", 8, 0};
    switch (below(4)) {
      case 0:
        return conditional(depth, false);
      case 1: {
        const Made inner = boolean(depth - 1);
        return {"!" + within(inner, 3), 3,
                inner.value ? std::optional<Wide>(1 - *inner.value) : std::nullopt};
      }
      case 2:
        return logic(depth);
      default:
        return comparison(depth);
    }
  }

 private:
  int below(int bound) { return std::uniform_int_distribution<int>(0, bound - 1)(random_); }

  static std::string within(const Made& made, int level) {
    return made.level >= level ? made.text : "(" + made.text + ")";
  }

  static std::optional<Wide> fitting(Wide value) {
    if (value < std::numeric_limits<std::int64_t>::min() ||
        value > std::numeric_limits<std::int64_t>::max()) {
      return std::nullopt;
    }
    return value;
  }

  Made leaf() {
    if (below(10) == 0) return {"9223372036854775807", 8, std::numeric_limits<std::int64_t>::max()};
    const int value = below(12);
    return {std::to_string(value), 8, value};
  }

  Made conditional(int depth, bool is_integer) {
    const Made condition = boolean(depth - 1);
    const Made then = is_integer ? integer(depth - 1) : boolean(depth - 1);
    const Made otherwise = is_integer ? integer(depth - 1) : boolean(depth - 1);
    const std::string text = within(condition, 1) + " ? " + then.text + " : " + otherwise.text;
    if (!condition.value) return {text, 0, std::nullopt};
    return {text, 0, *condition.value != 0 ? then.value : otherwise.value};
  }

  Made call(int depth) {
    const Made a = integer(depth - 1);
    const Made b = integer(depth - 1);
    const bool both = a.value && b.value;
    switch (below(3)) {
      case 0:
        return {"abs(" + a.text + ")", 8,
                a.value ? fitting(*a.value < 0 ? -*a.value : *a.value) : std::nullopt};
      case 1:
        return {"min(" + a.text + ", " + b.text + ")", 8,
                both ? std::optional(std::min(*a.value, *b.value)) : std::nullopt};
      default:
        return {"max(" + a.text + ", " + b.text + ")", 8,
                both ? std::optional(std::max(*a.value, *b.value)) : std::nullopt};
    }
  }

  Made negation(int depth) {
    const Made inner = integer(depth - 1);
    return {"-" + within(inner, 7), 7, inner.value ? fitting(-*inner.value) : std::nullopt};
  }

  Made arithmetic(int depth) {
    static const std::string kSymbols[] = {"+", "-", "*", "div", "%"};
    const Made a = integer(depth - 1);
    const Made b = integer(depth - 1);
    const int op = below(5);
    const int level = op < 2 ? 5 : 6;
    const std::string text = within(a, level) + ' ' + kSymbols[op] + ' ' + within(b, level + 1);
    if (!a.value || !b.value) return {text, level, std::nullopt};
    return {text, level, computed(op, *a.value, *b.value)};
  }

  // The quotient is the largest integer q with q * b <= a (q * b >= a for negative b).
  static std::optional<Wide> computed(int op, Wide a, Wide b) {
    if (op == 0) return fitting(a + b);
    if (op == 1) return fitting(a - b);
    if (op == 2) return fitting(a * b);
    if (b == 0) return std::nullopt;
    Wide q = a / b;
    if (q * b != a && (a < 0) != (b < 0)) --q;
    return op == 3 ? fitting(q) : std::optional(a - q * b);
  }

  Made logic(int depth) {
    const Made a = boolean(depth - 1);
    const Made b = boolean(depth - 1);
    const bool is_or = below(2) == 0;
    const int level = is_or ? 1 : 2;
    const std::string text = within(a, level) + (is_or ? " || " : " && ") + within(b, level + 1);
    if (!a.value || *a.value == (is_or ? 1 : 0)) return {text, level, a.value};
    return {text, level, b.value};
  }

  Made comparison(int depth) {
    static const std::string kSymbols[] = {"==", "!=", "<", "<=", ">", ">="};
    const Made a = integer(depth - 1);
    const Made b = integer(depth - 1);
    const int op = below(6);
    const std::string text = within(a, 5) + ' ' + kSymbols[op] + ' ' + within(b, 5);
    if (!a.value || !b.value) return {text, 4, std::nullopt};
    const bool results[] = {*a.value == *b.value, *a.value != *b.value,
                            *a.value<*b.value, *a.value <= *b.value, *a.value> * b.value,
                            *a.value >= *b.value};
    return {text, 4, results[op] ? 1 : 0};
  }

  std::mt19937 random_;
};

TEST(ConstantExpressions, HaveTheirValue) {
  int values = 0;
  for (unsigned seed = 0; seed < 4000; ++seed) {
    const bool is_integer = seed % 2 == 0;
    Maker maker(seed);
    const Made made = is_integer ? maker.integer(4) : maker.boolean(4);
    SCOPED_TRACE("seed " + std::to_string(seed) + ": " + made.text);
    const std::string text = std::string("const ") + (is_integer ? "int" : "bool") + " c = " + made.text +
                             "; type T { } system S { a : T; }";
    try {
      const ComposedModel model = read_model_text("m.sym", text);
      ASSERT_TRUE(made.value.has_value());
      ASSERT_EQ(Wide{model.description->constants[0].evaluated.integer} == *made.value, true);
      ++values;
    } catch (const ModelError& error) {
      ASSERT_FALSE(made.value.has_value()) << error.what();
    }
  }
  EXPECT_GT(values, 2000);
}

std::string real_value(const std::string& expression) {
  const std::string text = "const real c = " + expression + "; type T { } system S { a : T; }";
  return to_string(read_model_text("m.sym", text).description->constants[0].evaluated);
}

TEST(ConstantExpressions, OfTypeReal) {
  EXPECT_EQ(real_value("1 / 4"), "0.25");
  EXPECT_EQ(real_value("3"), "3");
  EXPECT_EQ(real_value("true ? 1 : 2.5"), "1");
  EXPECT_EQ(real_value("-1.5e-3 * 2"), "-0.003");
  EXPECT_EQ(real_value("max(1, 0.5, min(7, 2.5)) + abs(-1)"), "3.5");
}

TEST(ConstantExpressions, AreReplacedFromOutside) {
  const std::string text =
      "const int n = 1; const real r = n; const bool b = false; const int m = 2 * n; type T { } system S { a "
      ": T; }";
  const auto model = read_model_text("m.sym", text, {{"n", "5"}, {"n", "-7"}, {"b", "true"}, {"r", "3"}});
  const auto& constants = model.description->constants;
  EXPECT_EQ(to_string(constants[0].evaluated), "-7");
  EXPECT_EQ(to_string(constants[1].evaluated), "3");
  EXPECT_EQ(constants[1].evaluated.scalar, Scalar::kReal);
  EXPECT_EQ(to_string(constants[2].evaluated), "true");
  EXPECT_EQ(to_string(constants[3].evaluated), "-14");
  EXPECT_EQ(error_of(text, {{"k", "1"}}), "--const k=1: error: expected a constant of m.sym, got 'k'");
  EXPECT_EQ(error_of(text, {{"n", "1.5"}}), "--const n=1.5: error: expected an int, got '1.5'");
  EXPECT_EQ(error_of(text, {{"n", "1 2"}}), "--const n=1 2: error: expected an int, got '1 2'");
  EXPECT_EQ(error_of(text, {{"n", ""}}), "--const n=: error: expected an int, got ''");
  EXPECT_EQ(error_of(text, {{"b", "1"}}), "--const b=1: error: expected 'true' or 'false', got '1'");
  EXPECT_EQ(error_of(text, {{"r", "- true"}}), "--const r=- true: error: expected a number, got '- true'");
}

}  // namespace
}  // namespace symfold
