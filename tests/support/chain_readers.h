// Strict readers of the exported formats, and of the lists of files that belong together.

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

struct ReadSet {
  std::string identifier;
  std::vector<std::string> files;  // with the list's directory
};

// Reads the list NAME.set of a set of files, and all of the files. Throws std::runtime_error if there is no
// list, if it is not exactly what the description allows, and if a file is missing or not the one listed.
ReadSet read_file_set(const std::string& list);

}  // namespace symfold

#endif  // SYMFOLD_TESTS_SUPPORT_CHAIN_READERS_H
