// The first line of every example tells its true size: "// star.sym    48 states, 9 classes (exact), N = 4".

#include <gtest/gtest.h>

#include <algorithm>
#include <regex>

#include "tests/support/exploration_support.h"
#include "tests/support/model_support.h"

namespace symfold {
namespace {

TEST(Examples, HaveTheSizesOfTheirFirstLines) {
  for (const std::string& name : example_names()) {
    SCOPED_TRACE(name);
    const std::string text = example_text(name);
    const std::string line = text.substr(0, text.find('\n'));
    std::smatch told;
    ASSERT_TRUE(std::regex_match(
        line, told, std::regex("// " + name + R"(\.sym    (\d+) states, (\d+) classes \(exact\), (.*))")));
    std::vector<ConstOverride> constants;
    const std::string values = told[3];
    const std::regex assignment(R"((\w+) = (\d+))");
    for (std::sregex_iterator value(values.begin(), values.end(), assignment), end; value != end; ++value) {
      constants.push_back({(*value)[1], (*value)[2]});
    }
    const ComposedModel model = read_model(example_path(name), constants);
    const FoldedModel folding(model);
    const auto states = folding.full().states;
    const auto classes = folding.classes_of(states);
    EXPECT_EQ(std::to_string(states.size()), told[1]);
    EXPECT_EQ(std::to_string(1 + *std::max_element(classes.begin(), classes.end())), told[2]);
  }
}

}  // namespace
}  // namespace symfold
