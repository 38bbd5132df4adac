// The standard descriptors as streams. In contrast to std::cin, std::cout and std::cerr they allocate
// nothing, keep the reason of a failed write, and leave no failed read unnoticed.

#ifndef SYMFOLD_CLI_STANDARD_STREAMS_H
#define SYMFOLD_CLI_STANDARD_STREAMS_H

#include <array>
#include <cstddef>
#include <streambuf>

namespace symfold {

inline constexpr std::size_t kStreamBuffer = std::size_t{1} << 16;  // bytes

// Reads from a descriptor. A read that fails throws std::ios_base::failure, which an istream takes for its
// badbit. Flushes `results` before it waits for more, so that a program at the other ends has an answer to
// all that it has sent.
class DescriptorInput : public std::streambuf {
 public:
  DescriptorInput(int descriptor, std::streambuf& results) : descriptor_(descriptor), results_(results) {}

 protected:
  int_type underflow() override;

 private:
  int descriptor_;
  std::streambuf& results_;
  std::array<char, kStreamBuffer> buffer_;
};

// Writes to a descriptor. After a write has failed, everything is refused, and pubsync() returns -1 with the
// reason of that failure in errno.
class DescriptorOutput : public std::streambuf {
 public:
  explicit DescriptorOutput(int descriptor);
  ~DescriptorOutput() override;
  DescriptorOutput(const DescriptorOutput&) = delete;
  DescriptorOutput& operator=(const DescriptorOutput&) = delete;

 protected:
  int_type overflow(int_type c) override;
  int sync() override;

 private:
  int descriptor_;
  int error_ = 0;  // errno
  std::array<char, kStreamBuffer> buffer_;
};

// Makes sure that descriptors 0, 1 and 2 are open, so that no file that is opened later becomes one of them
// and gets results or messages written into it. On one that was closed, reading and writing fail as before.
// Returns false if that cannot be done.
bool occupy_standard_descriptors();

}  // namespace symfold

#endif  // SYMFOLD_CLI_STANDARD_STREAMS_H
