#include "cli/interrupt.h"

namespace symfold {
namespace {

volatile std::sig_atomic_t g_interrupted = 0;

extern "C" void note_interrupt(int) { g_interrupted = 1; }

}  // namespace

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
