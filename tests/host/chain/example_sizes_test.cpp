// The first line of every example tells its true size: "// star.sym    48 states, 9 classes (exact), N = 4".

#include <gtest/gtest.h>
#include <algorithm>
#include <regex>

#include "host/chain/exploration.h"
#include "host/symmetry/detection.h"
#include "tests/oracles/state_classes.h"
#include "tests/support/model_support.h"

namespace symfold {
namespace {

// All states, as the bytes of the layout.
std::vector<std::string> reachable_states(const ComposedModel& model, const StateLayout& layout) {
  Exploration exploration(model, layout, nullptr, true);
  EXPECT_EQ(exploration.run({}, [](const ExplorationFigures&) { return true; }), Ending::kComplete);
  const MarkovChain chain = exploration.take_chain();
  std::vector<std::int16_t> values(layout.slot_count());
  std::vector<std::string> states;
  for (StateId id = 0; id < chain.matrix.state_count(); ++id) {
    chain.read_values(id, values);
    states.emplace_back(reinterpret_cast<const char*>(values.data()), values.size() * sizeof values[0]);
  }
  return states;
}

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
    const Detection run(model, nullptr, false);
    const SymmetryDetection& detector = run.detector();
    const auto states = reachable_states(model, StateLayout(model, detector.SSOrder));
    const auto classes = classes_of(states, detector.PartitionInfo, partition_generators(detector));
    EXPECT_EQ(std::to_string(states.size()), told[1]);
    EXPECT_EQ(std::to_string(1 + *std::max_element(classes.begin(), classes.end())), told[2]);
  }
}

}  // namespace
}  // namespace symfold
