// symfold explore: the state space of a model, as it is and folded, and its chain in files for solvers.

#ifndef SYMFOLD_CLI_EXPLORE_COMMAND_H
#define SYMFOLD_CLI_EXPLORE_COMMAND_H

#include <string>
#include <vector>

#include "cli/model_input.h"
#include "cli/streams.h"
#include "host/chain/exploration.h"

namespace symfold {

struct ExploreOptions {
  ModelInput input;                // at most one constant may be a range, NAME=3..10: a run for each value
  std::string symmetry = "exact";  // or "off", "fast"
  bool compare = false;            // all of them, side by side
  std::size_t max_states = std::numeric_limits<std::size_t>::max();
  std::size_t max_memory = std::numeric_limits<std::size_t>::max();  // bytes, of the whole process
  double max_seconds = std::numeric_limits<double>::infinity();      // of each exploration
  std::string directory;             // of the detection's files; empty: named after the model
  std::vector<std::string> exports;  // files for the chain, the folded one where there are several
  std::string plot;                  // file for the curves of a range
  bool quiet = false;
  bool json = false;

  // Those to explore with, the least folding first.
  std::vector<std::string> symmetries() const;
};

// What does not go together in the options; empty where all is well.
std::string conflict_in(const ExploreOptions& options);

// kLimitReached or kInterrupted when an exploration was not complete: what was reached is printed, and no
// chain is exported.
int run_explore(const ExploreOptions& options, const Streams& streams);

}  // namespace symfold

#endif  // SYMFOLD_CLI_EXPLORE_COMMAND_H
