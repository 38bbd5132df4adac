#include "tests/oracles/transient.h"

#include <algorithm>
#include <cmath>

namespace symfold::oracle {
namespace {

Distribution start(const RateMatrix& matrix) {
  Distribution distribution(matrix.state_count());
  distribution[0] = 1;
  return distribution;
}

Distribution step(const RateMatrix& matrix, double rate, const Distribution& from) {
  Distribution to = from;
  for (StateId s = 0; s < matrix.state_count(); ++s) {
    for (std::size_t i = 0; i < matrix.targets_of(s).size(); ++i) {
      const double moved = from[s] * matrix.rates_of(s)[i] / rate;
      to[s] -= moved;
      to[matrix.targets_of(s)[i]] += moved;
    }
  }
  return to;
}

}  // namespace

double uniform_rate(const RateMatrix& matrix) {
  double rate = 0;
  for (StateId s = 0; s < matrix.state_count(); ++s) {
    double exit_rate = 0;
    for (const double each : matrix.rates_of(s)) exit_rate += each;
    rate = std::max(rate, exit_rate);
  }
  return 1.1 * rate;
}

Distribution transient(const RateMatrix& matrix, double rate, double time) {
  Distribution distribution = start(matrix);
  Distribution sum(matrix.state_count());
  double weight = std::exp(-rate * time);  // of k steps, by the Poisson distribution
  double rest = 1;
  for (int k = 0; rest > 1e-14; distribution = step(matrix, rate, distribution)) {
    for (std::size_t s = 0; s < sum.size(); ++s) sum[s] += weight * distribution[s];
    rest -= weight;
    weight *= rate * time / ++k;
    if (k > rate * time && weight < 1e-18) break;
  }
  return sum;
}

Distribution long_run(const RateMatrix& matrix, double rate, std::size_t& steps) {
  Distribution distribution = start(matrix);
  double moved = 1;
  for (steps = 0; moved > 1e-14 && steps < 1'000'000; ++steps) {
    const Distribution next = step(matrix, rate, distribution);
    moved = 0;
    for (std::size_t s = 0; s < next.size(); ++s) moved += std::abs(next[s] - distribution[s]);
    distribution = next;
  }
  return distribution;
}

}  // namespace symfold::oracle
