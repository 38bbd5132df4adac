// The rate matrix as solvers want it: they take no empty rows, so a deadlock gets a self-loop of rate 1.

#ifndef SYMFOLD_HOST_EXPORT_LOOPED_ROWS_H
#define SYMFOLD_HOST_EXPORT_LOOPED_ROWS_H

#include <cstddef>
#include <cstdint>

#include "host/chain/markov_chain.h"

namespace symfold {

inline constexpr double kLoopRate = 1;

// Calls take(target, rate) for the entries of a state's row, or once for its self-loop.
template <class Take>
void for_each_looped_entry(const RateMatrix& matrix, StateId state, Take take) {
  if (matrix.is_deadlock(state)) take(state, kLoopRate);
  for (std::uint64_t i = matrix.row_starts[state]; i < matrix.row_starts[state + 1]; ++i) {
    take(matrix.targets[i], matrix.rates[i]);
  }
}

inline std::size_t looped_entry_count(const RateMatrix& matrix) {
  std::size_t count = matrix.entry_count();
  for (StateId state = 0; state < matrix.state_count(); ++state) count += matrix.is_deadlock(state) ? 1 : 0;
  return count;
}

}  // namespace symfold

#endif  // SYMFOLD_HOST_EXPORT_LOOPED_ROWS_H
