// How a command deals with memory that it does not get.
//
// What a command allocates is private writable memory, which the system bounds (RLIMIT_DATA, setrlimit(2)):
// an allocation beyond it throws std::bad_alloc. The other memory of a process is its stack and the pages of
// its program and libraries, which are taken off the number beforehand.

#ifndef SYMFOLD_CLI_MEMORY_CAP_H
#define SYMFOLD_CLI_MEMORY_CAP_H

#include <sys/resource.h>

#include <cstddef>
#include <limits>
#include <new>

namespace symfold {

// Holds the process to a number of bytes while it lives, whatever it does; one object at a time. In a program
// built with the address sanitizer it does nothing, since the sanitizer ends a process that is refused
// memory.
class MemoryCap {
 public:
  static constexpr std::size_t kNone = std::numeric_limits<std::size_t>::max();

  // `bytes` are those of the whole process, or kNone.
  explicit MemoryCap(std::size_t bytes);
  ~MemoryCap();
  MemoryCap(const MemoryCap&) = delete;
  MemoryCap& operator=(const MemoryCap&) = delete;

  // The bytes that the process may still take.
  std::size_t bytes_left() const;

 private:
  std::size_t bytes_;
  rlimit before_{};
};

// Notes while it lives whether an allocation was refused; one object at a time. Formatted output and input
// swallow std::bad_alloc and set a stream's badbit instead, so what they have made may be cut without anyone
// being told.
class RefusalWatch {
 public:
  RefusalWatch();
  ~RefusalWatch();
  RefusalWatch(const RefusalWatch&) = delete;
  RefusalWatch& operator=(const RefusalWatch&) = delete;

  // A refusal that the user has not been told of.
  bool has_untold_refusal() const;

  // To be called by whoever tells the user of one.
  static void note_told();

 private:
  std::new_handler before_;
};

}  // namespace symfold

#endif  // SYMFOLD_CLI_MEMORY_CAP_H
