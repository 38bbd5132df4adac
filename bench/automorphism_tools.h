// The tools that automorphism_peers runs beside each other, each on its own form of the same graph.

#ifndef SYMFOLD_BENCH_AUTOMORPHISM_TOOLS_H
#define SYMFOLD_BENCH_AUTOMORPHISM_TOOLS_H

#include <vector>

#include "bench/composition.h"

namespace symfold::detail {

struct Measurement {
  double seconds;    // processor time of the search alone
  double log_order;  // of the group, decimal
};

struct Tool {
  const char* name;
  Measurement (*run)(const GraphParts&);
  bool is_certain;  // false if it may miss symmetries with a small probability
};

// The first is ours.
const std::vector<Tool>& automorphism_tools();

}  // namespace symfold::detail

#endif  // SYMFOLD_BENCH_AUTOMORPHISM_TOOLS_H
