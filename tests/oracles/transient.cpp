#include "tests/oracles/transient.h"

#include <cmath>

namespace symfold::oracle {
namespace {

// Makes a step and returns the probability that it moves.
double step(const RateMatrix& matrix, double rate, std::vector<double>& probabilities) {
  const std::vector<double> before = probabilities;
  for (StateId s = 0; s < matrix.state_count(); ++s) {
    for (std::size_t i = 0; i < matrix.targets_of(s).size(); ++i) {
      const double moved = before[s] * matrix.rates_of(s)[i] / rate;
      probabilities[s] -= moved;
      probabilities[matrix.targets_of(s)[i]] += moved;
    }
  }
  double change = 0;
  for (std::size_t s = 0; s < before.size(); ++s) change += std::abs(probabilities[s] - before[s]);
  return change;
}

}  // namespace

std::vector<double> transient(const RateMatrix& matrix, double rate, double time) {
  std::vector<double> probabilities(matrix.state_count());
  std::vector<double> sum(matrix.state_count());
  probabilities[0] = 1;
  double weight = std::exp(-rate * time);  // of k steps, by the Poisson distribution
  for (int k = 0; k < rate * time || weight > 1e-18; weight *= rate * time / ++k) {
    for (std::size_t s = 0; s < sum.size(); ++s) sum[s] += weight * probabilities[s];
    step(matrix, rate, probabilities);
  }
  return sum;
}

std::vector<double> long_run(const RateMatrix& matrix, double rate) {
  std::vector<double> probabilities(matrix.state_count());
  probabilities[0] = 1;
  while (step(matrix, rate, probabilities) > 1e-14) continue;
  return probabilities;
}

}  // namespace symfold::oracle
