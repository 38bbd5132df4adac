// Walks over the rate matrix: as it is, and as solvers want it that take no empty rows, where a deadlock has
// a self-loop of rate 1.

#ifndef SYMFOLD_HOST_EXPORT_MATRIX_ROWS_H
#define SYMFOLD_HOST_EXPORT_MATRIX_ROWS_H

#include <cstddef>
#include <cstdint>

#include "host/chain/markov_chain.h"

namespace symfold {

inline constexpr double kLoopRate = 1;

// Calls take(target, rate) for the entries of a state's row.
template <class Take>
void for_each_in_row(const RateMatrix& matrix, StateId state, Take take) {
  for (std::uint64_t i = matrix.row_starts[state]; i < matrix.row_starts[state + 1]; ++i) {
    take(matrix.targets[i], matrix.rates[i]);
  }
}

// The same, and for a deadlock its self-loop.
template <class Take>
void for_each_in_looped_row(const RateMatrix& matrix, StateId state, Take take) {
  if (matrix.is_deadlock(state)) take(state, kLoopRate);
  for_each_in_row(matrix, state, take);
}

// Calls take(source, target, rate) for all entries, row by row.
template <class Take>
void for_each_entry(const RateMatrix& matrix, Take take) {
  for (StateId source = 0; source < matrix.state_count(); ++source) {
    for_each_in_row(matrix, source, [&](StateId target, double rate) { take(source, target, rate); });
  }
}

inline std::size_t looped_entry_count(const RateMatrix& matrix) {
  std::size_t count = matrix.entry_count();
  for (StateId state = 0; state < matrix.state_count(); ++state) count += matrix.is_deadlock(state) ? 1 : 0;
  return count;
}

}  // namespace symfold

#endif  // SYMFOLD_HOST_EXPORT_MATRIX_ROWS_H
