// symfold detect: the symmetries of a model file.

#ifndef SYMFOLD_CLI_DETECT_COMMAND_H
#define SYMFOLD_CLI_DETECT_COMMAND_H

#include <string>

#include "cli/model_input.h"
#include "cli/streams.h"

namespace symfold {

struct DetectOptions {
  ModelInput input;
  std::string directory;  // empty: named after the model
  bool no_log = false;
  bool json = false;
};

// Runs the whole detection in the run directory and prints what it found. kCheckFailed when the symmetries
// found cannot be trusted for folding.
int run_detect(const DetectOptions& options, const Streams& streams);

}  // namespace symfold

#endif  // SYMFOLD_CLI_DETECT_COMMAND_H
