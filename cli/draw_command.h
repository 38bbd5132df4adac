// symfold draw: a picture of a model's composition, coloured by its symmetries.

#ifndef SYMFOLD_CLI_DRAW_COMMAND_H
#define SYMFOLD_CLI_DRAW_COMMAND_H

#include <string>

#include "cli/model_input.h"
#include "cli/streams.h"

namespace symfold {

struct DrawOptions {
  ModelInput input;
  std::string output;     // NAME.dot or NAME.svg: both are written; empty: named after the model
  bool collapse = false;  // orbits as nodes, as is done for large models in any case
};

// What is wrong with the options; empty where all is well.
std::string conflict_in(const DrawOptions& options);

// Writes the drawing in the DOT language and, where Graphviz is installed, as SVG beside it.
int run_draw(const DrawOptions& options, const Streams& streams);

}  // namespace symfold

#endif  // SYMFOLD_CLI_DRAW_COMMAND_H
