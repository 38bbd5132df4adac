// What an exploration has found, for a person and as JSON.

#ifndef SYMFOLD_CLI_EXPLORATION_REPORT_H
#define SYMFOLD_CLI_EXPLORATION_REPORT_H

#include <iosfwd>
#include <nlohmann/json_fwd.hpp>
#include <string>
#include <vector>

#include "host/chain/exploration.h"
#include "host/symmetry/folding.h"

namespace symfold {

struct ExplorationResult {
  Symmetry symmetry;
  std::string group_order;       // in decimal; empty without folding
  std::string group_order_text;  // the same for people
  Ending ending;
  ExplorationFigures figures;
  std::vector<std::string> observables;  // their names
  double detection_seconds = 0;
  std::size_t inexact_labels = 0;    // those of "exact" that may not be
  std::vector<std::string> refused;  // the symmetries that are not folded by, a line each
  std::size_t peak_memory = 0;       // of the process so far, in bytes

  double seconds() const { return detection_seconds + figures.seconds; }
  bool is_folded() const { return !group_order.empty(); }
  bool is_complete() const { return ending == Ending::kComplete; }
};

// Prints a table with a column for each result. If there are several, the first one is the full state space.
void print_results(std::ostream& out, const std::vector<ExplorationResult>& results);

// Prints the same for a range of a parameter's values: a line for each, as soon as it is known.
class RangeTable {
 public:
  // Prints the head. `width` is that of the longest value.
  RangeTable(std::ostream& out, const std::string& parameter, std::size_t width,
             std::vector<Symmetry> symmetries);

  void print_row(const std::string& value, const std::vector<ExplorationResult>& results);

 private:
  void print_cells(const std::vector<std::string>& cells);

  std::ostream& out_;
  int value_width_;
  std::vector<Symmetry> symmetries_;
};

// Tells what was reached when a limit or an interrupt ended an exploration: "exploration with symmetry exact
// not complete (memory limit): ...".
std::string ending_text(const ExplorationResult& result);

nlohmann::ordered_json results_json(const std::vector<ExplorationResult>& results);

}  // namespace symfold

#endif  // SYMFOLD_CLI_EXPLORATION_REPORT_H
