// The seeds of random sweeps: few in the test suite, as many as wanted in a sweep of its own.

#ifndef SYMFOLD_TESTS_SUPPORT_SEEDS_H
#define SYMFOLD_TESTS_SUPPORT_SEEDS_H

#include <cstdlib>
#include <string>

namespace symfold {

// The seeds from 0 up to `count`, or those that the environment variable SYMFOLD_SEEDS names, FIRST-LAST.
// scripts/sweep sets it.
struct Seeds {
  explicit Seeds(unsigned count) : end(count) {
    const char* const text = std::getenv("SYMFOLD_SEEDS");
    if (text == nullptr) return;
    const std::string range = text;
    first = static_cast<unsigned>(std::stoul(range));
    end = static_cast<unsigned>(std::stoul(range.substr(range.find('-') + 1))) + 1;
  }

  unsigned size() const { return end - first; }

  unsigned first = 0;
  unsigned end;  // the seed after the last one
};

}  // namespace symfold

#endif  // SYMFOLD_TESTS_SUPPORT_SEEDS_H
