#include "cli/standard_streams.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <ios>
#include <system_error>

namespace symfold {

DescriptorInput::int_type DescriptorInput::underflow() {
  results_.pubsync();
  ssize_t count = 0;
  do {
    count = ::read(descriptor_, buffer_.data(), buffer_.size());
  } while (count < 0 && errno == EINTR);
  if (count < 0) {
    throw std::ios_base::failure("standard input: error: cannot be read",
                                 std::error_code(errno, std::generic_category()));
  }
  setg(buffer_.data(), buffer_.data(), buffer_.data() + count);
  return count == 0 ? traits_type::eof() : traits_type::to_int_type(buffer_[0]);
}

DescriptorOutput::DescriptorOutput(int descriptor) : descriptor_(descriptor) {
  setp(buffer_.data(), buffer_.data() + buffer_.size());
}

DescriptorOutput::~DescriptorOutput() { DescriptorOutput::sync(); }

DescriptorOutput::int_type DescriptorOutput::overflow(int_type c) {
  if (DescriptorOutput::sync() != 0) return traits_type::eof();
  if (traits_type::eq_int_type(c, traits_type::eof())) return traits_type::not_eof(c);
  return sputc(traits_type::to_char_type(c));
}

int DescriptorOutput::sync() {
  const char* next = pbase();
  while (error_ == 0 && next < pptr()) {
    const ssize_t count = ::write(descriptor_, next, static_cast<std::size_t>(pptr() - next));
    if (count >= 0) {
      next += count;
    } else if (errno != EINTR) {
      error_ = errno;
    }
  }
  if (error_ == 0) {
    setp(buffer_.data(), buffer_.data() + buffer_.size());
    return 0;
  }
  setp(nullptr, nullptr);
  errno = error_;
  return -1;
}

// Descriptors are given out from the lowest free one upwards. Each gets /dev/null for the direction that it
// is not used in.
bool occupy_standard_descriptors() {
  for (int descriptor = STDIN_FILENO; descriptor <= STDERR_FILENO; ++descriptor) {
    if (::fcntl(descriptor, F_GETFD) >= 0) continue;
    const int unusable = descriptor == STDIN_FILENO ? O_WRONLY : O_RDONLY;
    if (::open("/dev/null", unusable) != descriptor) return false;
  }
  return true;
}

}  // namespace symfold
