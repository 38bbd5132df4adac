// The command in the test's own process.

#ifndef SYMFOLD_TESTS_SUPPORT_RUN_COMMAND_H
#define SYMFOLD_TESTS_SUPPORT_RUN_COMMAND_H

#include <sstream>
#include <string>
#include <vector>

#include "cli/commands.h"

namespace symfold {

inline const std::string kExamples = SYMFOLD_EXAMPLES_DIR;

struct Outcome {
  int code;
  std::string out, err;
};

inline Outcome run(std::vector<std::string> arguments, const std::string& input = "",
                   bool on_terminal = false) {
  std::vector<const char*> argv = {"symfold"};
  for (const std::string& argument : arguments) argv.push_back(argument.c_str());
  std::istringstream in(input);
  std::ostringstream out, err;
  const int code = run_command_line(static_cast<int>(argv.size()), argv.data(), {in, out, err, on_terminal});
  return {code, out.str(), err.str()};
}

}  // namespace symfold

#endif  // SYMFOLD_TESTS_SUPPORT_RUN_COMMAND_H
