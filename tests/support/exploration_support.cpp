#include "tests/support/exploration_support.h"

#include <map>

#include "detector/symmetry_detection.h"
#include "tests/oracles/state_classes.h"
#include "tests/support/model_support.h"

namespace symfold {
ComposedModel small_example(const std::string& name) {
  static const std::multimap<std::string, ConstOverride> constants = {
      {"arms", {"N", "2"}},      {"cluster", {"N", "1"}},        {"complete", {"K", "2"}},
      {"hypercube", {"T", "2"}}, {"multiprocessor", {"M", "2"}}, {"multiprocessor", {"K", "1"}},
      {"peer2peer", {"N", "3"}}, {"philosophers", {"N", "4"}},   {"polling", {"N", "5"}},
      {"routers", {"W", "3"}},   {"routers", {"H", "1"}},        {"tandem", {"N", "3"}},
      {"torus", {"W", "2"}},     {"torus", {"H", "2"}}};
  std::vector<ConstOverride> overrides;
  const auto [begin, end] = constants.equal_range(name);
  for (auto found = begin; found != end; ++found) overrides.push_back(found->second);
  return read_model(example_path(name), overrides);
}

std::string star_text(int n, int k) {
  return "const int n = " + std::to_string(n) + "; const int k = " + std::to_string(k) + R"(;
    type Place { private x : [0..k-1]; shared centre : bool;
      [up] x < k - 1 -> 1 : x = x + 1; [again] x == k - 1 -> 2 : x = 0; [stay] true -> 3 : x = x; }
    system Star { p[i : 1..n] : Place; join centre { p[i].centre for i : 1..n; } }
    label "all away" = forall p : Place . p.x > 0; reward "x" = sum p : Place . 0.1 * p.x;)";
}

Explored explored(const ComposedModel& model, const std::vector<std::string>& order, Labeller* labeller,
                  const ExplorationLimits& limits) {
  Explored result;
  try {
    Exploration exploration(model, order, labeller, true);
    const Ending ending = exploration.run(limits, [](const ExplorationFigures&) { return true; });
    result.figures = exploration.figures();
    if (ending == Ending::kComplete) result.chain = exploration.take_chain();
    result.ending = ending;
    if (ending != Ending::kComplete) return result;
    result.states.resize(result.figures.states, std::vector<std::int16_t>(result.chain.variables.size()));
    for (StateId s = 0; s < result.figures.states; ++s) result.chain.read_values(s, result.states[s]);
    result.chain.read_values = nullptr;  // the exploration ends here
  } catch (const ModelError& error) {
    result.error = error.what();
  }
  return result;
}

FoldedModel::FoldedModel(const ComposedModel& model)
    : model_(model), greedy_(model, Symmetry::kFast), exact_(model, Symmetry::kExact) {}

std::vector<int> FoldedModel::classes_of(const std::vector<std::vector<std::int16_t>>& states) const {
  std::vector<std::string> bytes;
  for (const std::vector<std::int16_t>& values : states) {
    bytes.emplace_back(reinterpret_cast<const char*>(values.data()), values.size() * sizeof values[0]);
  }
  return symfold::classes_of(bytes, exact_.cell_sizes(), partition_generators(*exact_.detector()));
}

}  // namespace symfold
