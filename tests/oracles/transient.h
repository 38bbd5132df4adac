// Probabilities of a Markov chain by repeated steps of its uniformised chain.

#ifndef SYMFOLD_TESTS_ORACLES_TRANSIENT_H
#define SYMFOLD_TESTS_ORACLES_TRANSIENT_H

#include <vector>

#include "host/chain/markov_chain.h"

namespace symfold::oracle {

// By state; a chain starts in state 0.
using Distribution = std::vector<double>;

// More than any state is left with.
double uniform_rate(const RateMatrix& matrix);

// At a time, to 14 digits. Precondition: rate * time is at most 700. A. Jensen, 1953.
Distribution transient(const RateMatrix& matrix, double rate, double time);

// In the long run: steps until one moves less than 1e-14 of the probability. `steps` says how many there
// were.
Distribution long_run(const RateMatrix& matrix, double rate, std::size_t& steps);

}  // namespace symfold::oracle

#endif  // SYMFOLD_TESTS_ORACLES_TRANSIENT_H
