// The symfold command: its subcommands with their options, and what its exit codes say.

#ifndef SYMFOLD_CLI_COMMANDS_H
#define SYMFOLD_CLI_COMMANDS_H

#include <cstddef>
#include <iosfwd>
#include <limits>
#include <string>
#include <vector>

#include "cli/model_input.h"
#include "host/symmetry/folding.h"

namespace symfold {

// What the command's exit status says.
enum ExitCode : int {
  kOk = 0,
  kCheckFailed = 1,   // a check failed, or some of the input could not be used
  kUsage = 2,         // the command line
  kModelError = 3,    // the content of the model file
  kBadFile = 4,       // a file: unreadable, not to be written, or corrupt if it is no model
  kLimitReached = 5,  // more than can be held, or a limit that was set
  kInternalError = 70,
  kInterrupted = 130  // by Ctrl-C; the shell reports it so, too
};

// Runs the subcommand that the arguments name; argv[0] is the name of the program. At the end the results are
// flushed: if they could not be written, that is told, and the exit code is kBadFile.
int run_command_line(int argc, const char* const* argv, const Streams& streams) noexcept;

// symfold detect: the symmetries of a model file.
struct DetectOptions {
  ModelInput input;
  std::string directory;  // empty: named after the model
  bool no_log = false;
  bool json = false;
};

// Runs the whole detection, leaves its files in the run directory and prints what it found. Returns
// kCheckFailed if the symmetries found cannot be trusted for folding.
int run_detect(const DetectOptions& options, const Streams& streams);

// symfold explore: the state space of a model, as it is and folded, and its chain in files for solvers.
struct ExploreOptions {
  ModelInput input;  // a constant may have a range, NAME=3..10: a run for each value
  Symmetry symmetry = Symmetry::kExact;
  bool compare = false;  // all of them, side by side
  std::size_t max_states = std::numeric_limits<std::size_t>::max();
  std::size_t max_memory = std::numeric_limits<std::size_t>::max();  // bytes, of the whole process
  double max_seconds = std::numeric_limits<double>::infinity();      // of each exploration
  std::string directory;               // of the detection's files; empty: none are left
  std::vector<std::string> exports;    // files for the chain, the folded one if there are several
  std::string plot;                    // file for the curves of a range
  bool check = false;                  // certify the labels of the folding that is exported
  std::string certificate;             // file of the certificate; empty: named after the model
  std::size_t check_sample = 100'000;  // transitions, about
  bool quiet = false;
  bool json = false;

  // Those to explore with, the least folding first.
  std::vector<Symmetry> symmetries() const;
};

// What is wrong with the options together; empty if all is well.
std::string option_error(const ExploreOptions& options);

// Returns kLimitReached or kInterrupted if an exploration was not complete: what was reached is printed, and
// no chain is exported.
int run_explore(const ExploreOptions& options, const Streams& streams);

// symfold check: a permutation file beside the model that it was made from.
struct CheckOptions {
  ModelInput input;
  std::string perm_file;
  bool json = false;
};

// Checks every permutation of the file against the composition of the model, by code that detection does not
// use. Returns kCheckFailed if one is no symmetry of it.
int run_check(const CheckOptions& options, const Streams& streams);

// symfold draw: a picture of a model's composition, coloured by its symmetries.
struct DrawOptions {
  ModelInput input;
  std::string output;     // NAME.dot or NAME.svg: both are written; empty: named after the model
  bool collapse = false;  // orbits as nodes, as large models are drawn in any case
};

std::string option_error(const DrawOptions& options);

// Writes the drawing in the DOT language and, if Graphviz is installed, as SVG beside it.
int run_draw(const DrawOptions& options, const Streams& streams);

// symfold label: states in, canonical labels out, one by one and in constant memory.
struct LabelOptions {
  std::string perm_file;     // or the run directory that holds it
  std::string states = "-";  // file of states; "-" is standard input
  ModelInput input;          // the model, for states by names; empty without one
  bool names = false;        // labels by names
  bool perm = false;         // add to each label a permutation that carries the state onto it
  bool exact = false;        // the largest images, one for each class
  bool raw = false;          // states and labels as bytes without separators
};

std::string option_error(const LabelOptions& options);

// Text: a state per line in hexadecimal, two digits a byte; a label per line. With a model a line may name
// the values of variables instead, and those that it does not name are as the model begins. A line that is no
// state is reported with its number and gets no label. It makes the exit code kCheckFailed at the end, and so
// do labels that may not be exact. Ends at the first label that cannot be written.
int run_label(const LabelOptions& options, const Streams& streams);

// symfold show: the tables of a permutation file for a person.
struct ShowOptions {
  std::string perm_file;  // or the run directory that holds it
  bool json = false;
};

int run_show(const ShowOptions& options, const Streams& streams);

}  // namespace symfold

#endif  // SYMFOLD_CLI_COMMANDS_H
