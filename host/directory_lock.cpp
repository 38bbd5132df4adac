#include "host/directory_lock.h"

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <cerrno>
#include <system_error>

namespace symfold {
namespace {

[[noreturn]] void fail(int error) { throw std::system_error(error, std::generic_category()); }

int open_directory(const std::string& directory) {
  const int descriptor = ::open(directory.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
  if (descriptor < 0) fail(errno);
  return descriptor;
}

// Returns the error's number, or 0.
int sync_error(int descriptor) { return ::fsync(descriptor) != 0 && errno != EINVAL ? errno : 0; }

}  // namespace

DirectoryLock::DirectoryLock(const std::string& directory) : descriptor_(open_directory(directory)) {
  while (::flock(descriptor_, LOCK_EX) != 0) {
    if (errno == EINTR) continue;
    const int error = errno;
    ::close(descriptor_);
    fail(error);
  }
}

DirectoryLock::~DirectoryLock() { ::close(descriptor_); }

void DirectoryLock::sync() const {
  if (const int error = sync_error(descriptor_); error != 0) fail(error);
}

void sync_directory(const std::string& directory) {
  const int descriptor = open_directory(directory);
  const int error = sync_error(descriptor);
  ::close(descriptor);
  if (error != 0) fail(error);
}

}  // namespace symfold
