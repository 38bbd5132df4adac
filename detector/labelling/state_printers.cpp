// States for a person: every second byte, "|" where a partition starts.

#include <ostream>

#include "detector/symmetry_detection.h"

namespace symfold {
namespace {

// Calls `bar` at the visited bytes that start a partition, and `number` with every visited byte.
template <class Bar, class Number>
void walk_state(const void* state, int n, const std::vector<int>& starts, Bar bar, Number number) {
  const auto* bytes = static_cast<const unsigned char*>(state);
  std::size_t next = 0;
  for (int i = 0; i < n; i += 2) {
    if (next < starts.size() && i == starts[next]) {
      bar();
      ++next;
    }
    number(static_cast<unsigned>(bytes[i]));
  }
}

}  // namespace

void SymmetryDetection::PrintState(void* state, int n) {
  walk_state(
      state, n, StaticCumPartitionInfo, [this] { diagnostics() << "|"; },
      [this](unsigned byte) { diagnostics() << byte; });
  diagnostics() << std::endl;
}

void SymmetryDetection::WriteState(void* state, int n, FILE* file) {
  walk_state(
      state, n, StaticCumPartitionInfo, [file] { std::fputc('|', file); },
      [file](unsigned byte) { std::fprintf(file, "%x", byte); });
  std::fputc('\n', file);
}

}  // namespace symfold
