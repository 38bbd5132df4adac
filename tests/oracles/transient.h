// Probabilities of a Markov chain by steps of its uniformised chain (A. Jensen, 1953).

#ifndef SYMFOLD_TESTS_ORACLES_TRANSIENT_H
#define SYMFOLD_TESTS_ORACLES_TRANSIENT_H

#include <vector>

#include "host/chain/markov_chain.h"

namespace symfold::oracle {

// The probabilities of the states at a time, to 14 digits, and in the long run, when steps move less than
// 1e-14. The chain starts in state 0; no state is left at a higher rate than `rate`, and rate * time is at
// most 700.
std::vector<double> transient(const RateMatrix& matrix, double rate, double time);
std::vector<double> long_run(const RateMatrix& matrix, double rate);

}  // namespace symfold::oracle

#endif  // SYMFOLD_TESTS_ORACLES_TRANSIENT_H
