// The symmetries of a cyclic sequence, such as the shapes around a cycle of a graph.
//
// A sequence of n entries is rotated so that it is least in lexical order. The result does not depend on
// where the reading of the cycle began; the smaller one of the results for both directions does not depend on
// the direction either. Example: c a b a, read forwards from position 1 and backwards from position 3, is a b
// a c, with period 4; a b a b has period 2.
//
// Cost: linear (K. S. Booth, Lexicographically least circular substrings, Information Processing Letters 10,
// 1980; the period by the borders of D. E. Knuth, J. H. Morris and V. R. Pratt, Fast pattern matching in
// strings, 1977).

#ifndef SYMFOLD_ENGINES_REDUCTION_CYCLIC_SEQUENCE_H
#define SYMFOLD_ENGINES_REDUCTION_CYCLIC_SEQUENCE_H

#include <cstdint>
#include <span>

namespace symfold::detail {

// Returns the first of the positions from which the entries, read cyclically, are least.
int least_rotation(std::span<const std::uint64_t> entries);

// Returns the smallest divisor p of the length such that a rotation by p changes nothing.
int cyclic_period(std::span<const std::uint64_t> entries);

}  // namespace symfold::detail

#endif  // SYMFOLD_ENGINES_REDUCTION_CYCLIC_SEQUENCE_H
