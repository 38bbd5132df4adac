// The model that a command is given: a file and values for its constants.

#ifndef SYMFOLD_CLI_MODEL_INPUT_H
#define SYMFOLD_CLI_MODEL_INPUT_H

#include <string>
#include <vector>

#include "cli/streams.h"
#include "host/model/composed_model.h"

namespace symfold {

struct ModelInput {
  std::string model;                   // "-" is standard input
  std::vector<std::string> constants;  // each NAME=VALUE

  // The model's file name without directory and ending; "model" for standard input.
  std::string stem() const;
};

// Throws ModelError.
ComposedModel read_input(const ModelInput& input, const Streams& streams);

}  // namespace symfold

#endif  // SYMFOLD_CLI_MODEL_INPUT_H
