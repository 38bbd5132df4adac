// How far an exploration is, for a person who waits.

#ifndef SYMFOLD_CLI_PROGRESS_LINE_H
#define SYMFOLD_CLI_PROGRESS_LINE_H

#include <string>

#include "cli/streams.h"
#include "host/chain/exploration.h"

namespace symfold {

// On a terminal one line that is drawn anew with every call and wiped at the end; otherwise a line every five
// seconds.
class ProgressLine {
 public:
  // `title` says what is explored: "folded".
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

}  // namespace symfold

#endif  // SYMFOLD_CLI_PROGRESS_LINE_H
