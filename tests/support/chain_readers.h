// Strict readers of the exported formats.

#ifndef SYMFOLD_TESTS_SUPPORT_CHAIN_READERS_H
#define SYMFOLD_TESTS_SUPPORT_CHAIN_READERS_H

#include <cstdint>
#include <string>
#include <tuple>
#include <vector>

namespace symfold {

// Source and target, counted from 0 in every format, and rate.
using Transition = std::tuple<std::uint64_t, std::uint64_t, double>;

// What a file says; what its format does not hold is empty.
struct ReadChain {
  std::vector<std::string> names;                // of variables, labels or rewards
  std::vector<std::vector<std::string>> values;  // by state
  std::vector<std::vector<std::string>> labels;  // by state
  std::vector<std::vector<double>> rewards;      // by state
  std::vector<double> exit_rates;                // by state
  std::vector<Transition> transitions;
};

// Reads a file of a chain of `state_count` states, in the format of its ending. Takes exactly what the
// format's description in docs/file-formats.md allows, and throws std::runtime_error at anything else.
ReadChain read_chain_file(const std::string& path, std::uint64_t state_count);

}  // namespace symfold

#endif  // SYMFOLD_TESTS_SUPPORT_CHAIN_READERS_H
