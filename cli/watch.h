// How a person follows a long exploration, and stops it.

#ifndef SYMFOLD_CLI_WATCH_H
#define SYMFOLD_CLI_WATCH_H

#include <csignal>
#include <string>

#include "cli/model_input.h"
#include "host/chain/exploration.h"

namespace symfold {

// Shows how far an exploration is: on a terminal one line that is drawn anew with every call and wiped at the
// end; otherwise a line every five seconds.
class ProgressLine {
 public:
  // `title` stands before the figures: "symmetry exact".
  ProgressLine(const Streams& streams, std::string title, bool is_quiet);
  ~ProgressLine();
  ProgressLine(const ProgressLine&) = delete;
  ProgressLine& operator=(const ProgressLine&) = delete;

  void show(const ExplorationFigures& figures);

 private:
  const Streams& streams_;
  std::string title_;
  bool is_quiet_;
  double next_line_ = 5;  // seconds
  bool is_drawn_ = false;
};

// Takes Ctrl-C as a request to stop cleanly: while an object lives, the first SIGINT is only noted. A second
// one ends the process as usual. There is at most one object at a time.
class InterruptWatch {
 public:
  InterruptWatch();
  ~InterruptWatch();
  InterruptWatch(const InterruptWatch&) = delete;
  InterruptWatch& operator=(const InterruptWatch&) = delete;

  bool is_interrupted() const;

 private:
  struct sigaction before_ {};
};

}  // namespace symfold

#endif  // SYMFOLD_CLI_WATCH_H
