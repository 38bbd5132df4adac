// Probabilities of a Markov chain by steps of its uniformised chain (A. Jensen, 1953). The chain starts in
// state 0. Both functions require that no state is left at a higher rate than `rate`.

#ifndef SYMFOLD_TESTS_ORACLES_TRANSIENT_H
#define SYMFOLD_TESTS_ORACLES_TRANSIENT_H

#include <vector>

#include "host/chain/markov_chain.h"

namespace symfold::oracle {

// The probabilities of the states at a time, to 14 digits. Requires rate * time to be at most 700.
std::vector<double> transient(const RateMatrix& matrix, double rate, double time);

// The probabilities of the states in the long run, when a step moves at most 1e-14.
std::vector<double> long_run(const RateMatrix& matrix, double rate);

}  // namespace symfold::oracle

#endif  // SYMFOLD_TESTS_ORACLES_TRANSIENT_H
