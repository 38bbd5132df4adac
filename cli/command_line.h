// The symfold command: options in, exit code out.

#ifndef SYMFOLD_CLI_COMMAND_LINE_H
#define SYMFOLD_CLI_COMMAND_LINE_H

#include "cli/streams.h"

namespace symfold {

// Runs the subcommand that the arguments name; argv[0] is the name of the program. Never throws.
int run_command_line(int argc, const char* const* argv, const Streams& streams);

}  // namespace symfold

#endif  // SYMFOLD_CLI_COMMAND_LINE_H
