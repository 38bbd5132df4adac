// Large and hostile models end in an error, quickly and with little memory.

#include <gtest/gtest.h>

#include <string>

#include "host/symmetry/detection.h"
#include "tests/support/model_support.h"

namespace symfold {
namespace {

std::string repeated(const std::string& text, int count) {
  std::string result;
  for (int i = 0; i < count; ++i) result += text;
  return result;
}

std::string first_message(const std::string& text, const std::vector<ConstOverride>& overrides = {}) {
  try {
    read_model_text("m.sym", text, overrides);
  } catch (const ModelError& error) {
    return error.diagnostics().front().message;
  }
  return "";
}

constexpr const char* kRest = " type T { } system S { a : T; }";

std::string constant(const std::string& value) { return "const int N = " + value + ";" + kRest; }

TEST(ModelLimits, DepthOfExpressions) {
  const std::string too_deep = "expected expressions nested at most 256 deep, got a deeper one";
  const std::string paren_250 = repeated("(", 250) + "1" + repeated(")", 250);
  EXPECT_EQ(first_message(constant(paren_250)), "");
  EXPECT_EQ(first_message("const bool b = " + repeated("!", 250) + "true;" + kRest), "");
  EXPECT_EQ(first_message(constant(repeated("(", 10'000'000))), too_deep);
  EXPECT_EQ(first_message(constant(repeated("- ", 1'000'000))), too_deep);
  EXPECT_EQ(first_message(constant(repeated("true ? 1 : ", 1'000'000))), too_deep);
  EXPECT_EQ(first_message(constant(repeated("1+(", 1'000'000))), too_deep);
  EXPECT_EQ(first_message("const bool b = " + repeated("!", 1'000'000) + ";" + kRest), too_deep);
  EXPECT_EQ(first_message(std::string(kRest) + "label \"a\" = " + repeated("exists p : T . ", 100'000)),
            "expected at most 8 quantifiers inside one another, got 'exists'");
}

TEST(ModelLimits, SizeOfTheFile) {
  EXPECT_EQ(first_message(std::string((16 << 20) + 1, ' ')),
            "expected a file of at most 16777216 bytes, got a larger one");
  EXPECT_EQ(first_message(std::string(10'000'000, '(')),
            "expected 'const', 'type', 'system', 'label' or 'reward', got '('");
  EXPECT_EQ(first_message(std::string(10'000'000, 'x')),
            "expected a name of at most 128 characters, got one of 10000000");
  EXPECT_EQ(first_message(repeated("const int N = 1*1*1*1*1*1*1*1;", 150'000)),
            "expected a model of at most 2000000 names, numbers and operators, got a larger one");
}

TEST(ModelLimits, SizeOfTheSystem) {
  const std::string type = "const int N = 3; type T { shared s : bool; } system S { ";
  EXPECT_EQ(first_message(type + "a[i : 0..N-1] : T; join j { a[i].s for i : 0..N-1; } }", {{"N", "32766"}}),
            "");
  EXPECT_EQ(first_message(type + "a[i : 0..1000000] : T; }"),
            "expected at most 1000000 values of 'i', got 0..1000000");
  EXPECT_EQ(first_message(type + "a[i : 9223372036854775806..9223372036854775807] : T; join j { "
                                 "a[i].s for i : 9223372036854775806..9223372036854775807; } }"),
            "");
  EXPECT_EQ(first_message(type + "a[i : -9223372036854775807..N] : T; }"),
            "expected at most 1000000 values of 'i', got -9223372036854775807..3");
  EXPECT_EQ(first_message(type + "a[i : 0..1999, j : 0..999] : T; }"),
            "expected at most 1000000 submodels, got more");
  EXPECT_EQ(first_message(type + "if (false) a[i : 0..999999, j : 0..999999, k : 0..999999] : T; }"),
            "expected a system that expands in at most 100000000 steps, got a larger one");
  EXPECT_EQ(first_message(type + "a : T; join j { a.s; if (k < 0) a.s for k : 0..999999, m : 0..999999; } }"),
            "expected a system that expands in at most 100000000 steps, got a larger one");
  EXPECT_EQ(first_message(type + "a : T; join j[i : 0..999999] { a.s; } }"),
            "expected every shared variable in one join, got a.s in j_1 and, at 1:88, in j_0");
}

// An error that each of many elements repeats is worked out only once.
TEST(ModelLimits, ErrorsThatManyElementsRepeat) {
  const std::string array = "a[i : 0..99999] : T;";
  EXPECT_EQ(first_message("type T { shared s : bool; }" + std::string(10'000'000, ' ') + "system S { " +
                          array + " join j { a[i].s for i : 0..99999; a[i].s for i : 0..99999; } }"),
            "expected every shared variable in one join, got a_0.s in j and, at 1:10000069, in j");
  std::string literals;
  for (int i = 0; i < 32000; ++i) literals += "x" + std::to_string(i) + ",";
  EXPECT_EQ(
      first_message("type F { shared s : {" + literals + "y}; } type T { shared s : {" + literals +
                    "z}; }\nsystem S { f : F; " + array + " join j { f.s; a[i].s for i : 0..99999; } }"),
      "expected the value set {x0, x1, x2, x3, x4, x5, ...} of f.s (at 2:49), got {x0, x1, x2, x3, x4, x5, "
      "...} of a_0.s");
}

TEST(ModelLimits, NumberOfPartitions) {
  const std::string type = "type T { } system S { a[i : 1..32768] : T; }";
  const ComposedModel model = read_model_text("m.sym", type);
  try {
    require_countable_partitions(model);
    FAIL() << "accepted";
  } catch (const ModelError& error) {
    EXPECT_STREQ(
        error.what(),
        "m.sym: error: expected at most 32767 submodels and joins together, got 32768 submodels and 0 joins");
  }
  EXPECT_NO_THROW(require_countable_partitions(read_model(example_path("star"))));
}

TEST(ModelLimits, NoMoreThanTenErrors) {
  try {
    read_model_text("m.sym", repeated("const int = 1;\n", 50));
    FAIL() << "accepted";
  } catch (const ModelError& error) {
    EXPECT_EQ(error.diagnostics().size(), 10u);
    EXPECT_EQ(error.diagnostics().back().line, 10);
  }
}

}  // namespace
}  // namespace symfold
