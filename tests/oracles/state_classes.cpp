#include "tests/oracles/state_classes.h"

#include <map>

#include "tests/oracles/literal_labeller.h"

namespace symfold {

std::vector<std::string> all_states(const std::vector<int>& sizes, const std::vector<int>& values) {
  std::vector<std::string> states = {""};
  for (std::size_t c = 0; c < sizes.size(); ++c) {
    std::vector<std::string> longer;
    for (const std::string& state : states) {
      for (int value = 0; value < values[c]; ++value) {
        std::string bytes(static_cast<std::size_t>(sizes[c]), '\0');
        bytes[0] = static_cast<char>(value);
        longer.push_back(state + bytes);
      }
    }
    states = std::move(longer);
  }
  return states;
}

std::vector<std::vector<int>> partition_generators(const SymmetryDetection& detector) {
  std::vector<std::vector<int>> result;
  for (const Permutation& generator : detector.OrigPermutations) {
    result.emplace_back(generator.GetP(), generator.GetP() + detector.PartitionInfo.size());
  }
  return result;
}

std::vector<int> classes_of(const std::vector<std::string>& states, const std::vector<int>& sizes,
                            const std::vector<std::vector<int>>& generators) {
  std::map<std::string, int> class_of;
  int count = 0;
  for (const std::string& state : states) {
    std::vector<std::string> reached = {state};
    if (!class_of.try_emplace(state, count).second) continue;
    for (std::size_t i = 0; i < reached.size(); ++i) {
      for (const std::vector<int>& generator : generators) {
        std::string image = moved(sizes, generator, reached[i]);
        if (class_of.try_emplace(image, count).second) reached.push_back(std::move(image));
      }
    }
    ++count;
  }
  std::vector<int> result;
  for (const std::string& state : states) result.push_back(class_of.at(state));
  return result;
}

}  // namespace symfold
