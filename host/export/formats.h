// The formats of exported chains, one function each, and the walks over the rate matrix that they share.
// docs/file-formats.md describes the formats.

#ifndef SYMFOLD_HOST_EXPORT_FORMATS_H
#define SYMFOLD_HOST_EXPORT_FORMATS_H

#include <cstddef>
#include <cstdint>

#include "host/chain/markov_chain.h"
#include "host/new_file.h"

namespace symfold {

// PRISM's explicit files: transitions, values of the variables, labels.
void write_tra(const MarkovChain& chain, NewFile& out);
void write_sta(const MarkovChain& chain, NewFile& out);
void write_lab(const MarkovChain& chain, NewFile& out);

// PRISM's file of one state reward, the chain's reward `index`.
void write_srew(const MarkovChain& chain, std::size_t index, NewFile& out);

// Storm's explicit format DRN.
void write_drn(const MarkovChain& chain, NewFile& out);

// The rate matrix alone, Matrix Market.
void write_mtx(const MarkovChain& chain, NewFile& out);

// A labelled transition system, AUT, with the rates as CADP's tools read them.
void write_aut(const MarkovChain& chain, NewFile& out);

// A drawing of the chain in the DOT language.
void write_dot(const MarkovChain& chain, NewFile& out);

// Solvers that take no empty rows see a deadlock as a state with a self-loop of this rate.
inline constexpr double kLoopRate = 1;

// Calls take(target, rate) for the entries of a state's row, as they are.
template <class Take>
void for_each_in_row(const RateMatrix& matrix, StateId state, Take take) {
  for (std::uint64_t i = matrix.row_starts[state]; i < matrix.row_starts[state + 1]; ++i) {
    take(matrix.targets[i], matrix.rates[i]);
  }
}

// The same, with the self-loop of a deadlock.
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

// The number of entries with the self-loops of deadlocks.
inline std::size_t looped_entry_count(const RateMatrix& matrix) {
  std::size_t count = matrix.entry_count();
  for (StateId state = 0; state < matrix.state_count(); ++state) count += matrix.is_deadlock(state) ? 1 : 0;
  return count;
}

}  // namespace symfold

#endif  // SYMFOLD_HOST_EXPORT_FORMATS_H
