// symfold show: the tables of a permutation file for a person.

#ifndef SYMFOLD_CLI_SHOW_COMMAND_H
#define SYMFOLD_CLI_SHOW_COMMAND_H

#include <string>

#include "cli/streams.h"

namespace symfold {

struct ShowOptions {
  std::string perm_file;
  bool json = false;
};

int run_show(const ShowOptions& options, const Streams& streams);

}  // namespace symfold

#endif  // SYMFOLD_CLI_SHOW_COMMAND_H
