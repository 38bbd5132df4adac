// Mixing of numbers into 64 bits, so that sums and repeated mixes of the results rarely agree by chance.

#ifndef SYMFOLD_ENGINES_BASE_MIX_H
#define SYMFOLD_ENGINES_BASE_MIX_H

#include <cstdint>

namespace symfold::detail {

// Is a bijection (G. L. Steele, D. Lea and C. H. Flood, Fast splittable pseudorandom number generators,
// OOPSLA 2014).
constexpr std::uint64_t mix(std::uint64_t x) {
  x += 0x9e3779b97f4a7c15;
  x = (x ^ (x >> 30)) * 0xbf58476d1ce4e5b9;
  x = (x ^ (x >> 27)) * 0x94d049bb133111eb;
  return x ^ (x >> 31);
}

// Mixes two numbers whose order counts.
constexpr std::uint64_t mix(int a, int b) {
  return mix((static_cast<std::uint64_t>(a) << 32) + static_cast<std::uint64_t>(b));
}

}  // namespace symfold::detail

#endif  // SYMFOLD_ENGINES_BASE_MIX_H
