// What a command is given: streams, a model file, values for its constants, and a range of such values.

#ifndef SYMFOLD_CLI_MODEL_INPUT_H
#define SYMFOLD_CLI_MODEL_INPUT_H

#include <cstddef>
#include <cstdint>
#include <iosfwd>
#include <optional>
#include <string>
#include <vector>

#include "host/model/composed_model.h"

namespace symfold {

// A command writes results to `out` and messages to `err`.
struct Streams {
  std::istream& in;
  std::ostream& out;
  std::ostream& err;
  bool err_is_terminal = false;
};

// A constant that takes one value after the other: --const N=3..10, N=3:10 or lambda=0.1:0.1:0.3. The values
// are decimal numbers, not doubles, so that sums of steps meet the last one exactly.
struct ParameterRange {
  std::size_t position = 0;  // among the input's constants
  std::string name;
  std::int64_t low = 0;  // as the step in units of 10^-decimals
  std::int64_t step = 1;
  std::size_t count = 1;  // of values
  int decimals = 0;

  std::int64_t units(std::size_t index) const { return low + static_cast<std::int64_t>(index) * step; }

  // A value as a number of the model language, with all decimals: "7", "0.30".
  std::string text(std::size_t index) const;
};

struct ModelInput {
  std::string model;                    // "-" is standard input
  std::vector<std::string> constants;   // each NAME=VALUE
  std::optional<ParameterRange> range;  // of one of them

  // The model's file name without directory and ending; "model" for standard input.
  std::string stem() const;

  // The same with the range's constant at one of its values. Requires: there is a range.
  ModelInput at(std::size_t index) const;
};

// Takes the texts of --const into the input, each "A=1" or "A=1,B=2". Returns what is wrong with them, or an
// empty text.
std::string read_constants(const std::vector<std::string>& texts, ModelInput& input);

// Throws ModelError, UnreadableModelError if there is no such file. If the file is something else of ours,
// the error says what to type instead.
ComposedModel read_input(const ModelInput& input, const Streams& streams);

}  // namespace symfold

#endif  // SYMFOLD_CLI_MODEL_INPUT_H
