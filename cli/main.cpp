#include <unistd.h>

#include <iostream>

#include "cli/commands.h"

int main(int argc, char** argv) {
  std::ios::sync_with_stdio(false);
  return symfold::run_command_line(argc, argv, {std::cin, std::cout, std::cerr, isatty(STDERR_FILENO) == 1});
}
