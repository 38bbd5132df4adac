// A constant that takes one value after the other: --const N=3..10.

#ifndef SYMFOLD_CLI_PARAMETER_RANGE_H
#define SYMFOLD_CLI_PARAMETER_RANGE_H

#include <cstddef>
#include <string>
#include <vector>

#include "cli/model_input.h"

namespace symfold {

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

#endif  // SYMFOLD_CLI_PARAMETER_RANGE_H
