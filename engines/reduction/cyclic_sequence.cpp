#include "engines/reduction/cyclic_sequence.h"

#include <algorithm>
#include <cstddef>
#include <vector>

namespace symfold::detail {

// Compares two candidates. After a stretch of equal entries, the candidate with the larger next entry skips
// all positions that the stretch covers.
int least_rotation(std::span<const std::uint64_t> entries) {
  const std::size_t n = entries.size();
  const auto entry = [&](std::size_t i) { return entries[i < n ? i : i - n]; };
  std::size_t a = 0;
  std::size_t b = 1;
  for (std::size_t equal = 0; a < n && b < n && equal < n;) {
    const std::uint64_t at_a = entry(a + equal);
    const std::uint64_t at_b = entry(b + equal);
    if (at_a == at_b) {
      ++equal;
      continue;
    }
    (at_a > at_b ? a : b) += equal + 1;
    if (a == b) ++b;
    equal = 0;
  }
  return static_cast<int>(std::min(a, b));
}

// border[i] is the length of the longest proper prefix of the first i entries that is also their end.
int cyclic_period(std::span<const std::uint64_t> entries) {
  const std::size_t n = entries.size();
  std::vector<std::size_t> border(n + 1, 0);
  for (std::size_t i = 1, length = 0; i < n; border[++i] = length) {
    while (length > 0 && entries[i] != entries[length]) length = border[length];
    if (entries[i] == entries[length]) ++length;
  }
  const std::size_t period = n - border[n];
  return static_cast<int>(n % period == 0 ? period : n);
}

}  // namespace symfold::detail
