// symfold label: states in, canonical labels out, one by one and in constant memory.

#ifndef SYMFOLD_CLI_LABEL_COMMAND_H
#define SYMFOLD_CLI_LABEL_COMMAND_H

#include <string>

#include "cli/streams.h"

namespace symfold {

struct LabelOptions {
  std::string perm_file;
  std::string states = "-";  // file of states; "-" is standard input
  bool perm = false;         // add to each label a permutation that carries the state onto it
  bool exact = false;        // the largest images, one for each class
  bool raw = false;          // states and labels as bytes without separators
};

// Text: a state per line in hexadecimal, two digits a byte; a label per line. A line that is no state is
// reported with its number, gets no label, and makes the exit code kCheckFailed at the end; so do labels of
// which it is not sure that they are exact.
int run_label(const LabelOptions& options, const Streams& streams);

}  // namespace symfold

#endif  // SYMFOLD_CLI_LABEL_COMMAND_H
