#include "cli/watch.h"

#include <algorithm>
#include <iostream>
#include <utility>

#include "cli/figures.h"

namespace symfold {
namespace {

constexpr double kSecondsBetweenLines = 5;

// Back to the first column, and clear to the end of the line (ECMA-48, EL).
constexpr const char* kWipe = "\r\x1b[K";

std::string text_of(const ExplorationFigures& figures) {
  const auto found = static_cast<double>(std::max<std::size_t>(figures.successors, 1));
  const double rate = figures.seconds > 0 ? static_cast<double>(figures.expanded) / figures.seconds : 0;
  return grouped(figures.states) + " states, frontier " + grouped(figures.frontier()) + ", " +
         grouped(static_cast<std::size_t>(rate)) + "/s, " + mebibytes(figures.memory) + ", " +
         percentage(static_cast<double>(figures.states) / found) + " new";
}

volatile std::sig_atomic_t g_interrupted = 0;

extern "C" void note_interrupt(int) { g_interrupted = 1; }

}  // namespace

ProgressLine::ProgressLine(const Streams& streams, std::string title, bool is_quiet)
    : streams_(streams), title_(std::move(title)), is_quiet_(is_quiet) {}

ProgressLine::~ProgressLine() {
  if (is_drawn_) streams_.err << kWipe << std::flush;
}

void ProgressLine::show(const ExplorationFigures& figures) {
  if (is_quiet_) return;
  if (streams_.err_is_terminal) {
    streams_.err << kWipe << title_ << ": " << text_of(figures) << std::flush;
    is_drawn_ = true;
  } else if (figures.seconds >= next_line_) {
    streams_.err << title_ << ": " << text_of(figures) << "\n" << std::flush;
    next_line_ = figures.seconds + kSecondsBetweenLines;
  }
}

InterruptWatch::InterruptWatch() {
  g_interrupted = 0;
  struct sigaction action {};
  action.sa_handler = note_interrupt;
  action.sa_flags = static_cast<int>(SA_RESETHAND);
  sigaction(SIGINT, &action, &before_);
}

InterruptWatch::~InterruptWatch() { sigaction(SIGINT, &before_, nullptr); }

bool InterruptWatch::is_interrupted() const { return g_interrupted != 0; }

}  // namespace symfold
