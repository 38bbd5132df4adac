// Ctrl-C as a request to stop cleanly.

#ifndef SYMFOLD_CLI_INTERRUPT_H
#define SYMFOLD_CLI_INTERRUPT_H

#include <csignal>

namespace symfold {

// While an object lives, the first SIGINT is only noted; a second one ends the process as usual. One object
// at a time.
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

#endif  // SYMFOLD_CLI_INTERRUPT_H
