// What a command is given: streams, a model file, values for its constants, and ranges of such values.

#ifndef SYMFOLD_CLI_MODEL_INPUT_H
#define SYMFOLD_CLI_MODEL_INPUT_H

#include <cstddef>
#include <iosfwd>
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

struct ModelInput {
  std::string model;                   // "-" is standard input
  std::vector<std::string> constants;  // each NAME=VALUE

  // The model's file name without directory and ending; "model" for standard input.
  std::string stem() const;
};

// Throws ModelError.
ComposedModel read_input(const ModelInput& input, const Streams& streams);

// A constant that takes one value after the other: --const N=3..10.
struct ParameterRange {
  std::size_t position = 0;  // among the input's constants
  std::string name;
  long low = 0;
  long high = 0;  // not below low

  // The input with the parameter at this value.
  ModelInput at(const ModelInput& input, long value) const;
};

// The constants that are ranges.
std::vector<ParameterRange> find_ranges(const ModelInput& input);

}  // namespace symfold

#endif  // SYMFOLD_CLI_MODEL_INPUT_H
