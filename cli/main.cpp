#include <unistd.h>

#include <cstdlib>
#include <exception>
#include <istream>
#include <new>
#include <ostream>
#include <string_view>

#include "cli/commands.h"
#include "cli/standard_streams.h"

namespace {

[[noreturn]] void end_for_memory() {
  constexpr std::string_view kText = "symfold: error: out of memory\n";
  if (::write(STDERR_FILENO, kText.data(), kText.size()) < 0) _exit(symfold::kBadFile);
  _exit(symfold::kLimitReached);
}

// Returns true if the exception in flight is a failed allocation. There is none in flight if even the memory
// for throwing one was missing.
bool is_for_memory(const std::exception_ptr& exception) {
  if (!exception) return true;
  try {
    std::rethrow_exception(exception);
  } catch (const std::bad_alloc&) {
    return true;
  } catch (...) {
    return false;
  }
}

void end_for_memory_or_abort() {
  if (is_for_memory(std::current_exception())) end_for_memory();
  std::abort();
}

// Runs before the initialisers of static objects, in which nobody could catch a failed allocation. While a
// command runs, a failed allocation throws.
__attribute__((constructor(101))) void expect_failed_allocations() {
  std::set_new_handler(end_for_memory);
  std::set_terminate(end_for_memory_or_abort);
}

}  // namespace

int main(int argc, char** argv) {
  if (!symfold::occupy_standard_descriptors()) return symfold::kBadFile;
  symfold::DescriptorOutput output(STDOUT_FILENO);
  symfold::DescriptorInput input(STDIN_FILENO, output);
  symfold::DescriptorOutput messages(STDERR_FILENO);
  std::istream in(&input);
  std::ostream out(&output);
  std::ostream err(&messages);
  err << std::unitbuf;
  return symfold::run_command_line(argc, argv, {in, out, err, isatty(STDERR_FILENO) == 1});
}
