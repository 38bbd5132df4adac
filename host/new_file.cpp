#include "host/new_file.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <stdexcept>
#include <system_error>
#include <utility>

namespace symfold {
namespace {

bool is_written_directly(const std::string& name) {
  std::error_code error;
  const std::filesystem::file_status status = std::filesystem::status(name, error);
  return std::filesystem::exists(status) && !std::filesystem::is_regular_file(status);
}

}  // namespace

NewFile::NewFile(std::string name)
    : name_(std::move(name)),
      is_direct_(is_written_directly(name_)),
      written_name_(is_direct_ ? name_ : name_ + ".partial"),
      buffer_(std::make_unique_for_overwrite<char[]>(kBufferSize)) {
  descriptor_ = ::open(written_name_.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0666);
  if (descriptor_ < 0) fail(errno);
}

NewFile::~NewFile() {
  if (descriptor_ < 0) return;
  ::close(descriptor_);
  if (!is_direct_) ::unlink(written_name_.c_str());
}

void NewFile::put_in_pieces(std::string_view text) {
  while (!text.empty()) {
    make_room(1);
    const std::string_view piece = text.substr(0, kBufferSize - used_);
    put(piece);
    text.remove_prefix(piece.size());
  }
}

void NewFile::flush() {
  std::size_t written = 0;
  while (written < used_) {
    const ssize_t count = ::write(descriptor_, buffer_.get() + written, used_ - written);
    if (count >= 0) {
      written += static_cast<std::size_t>(count);
    } else if (errno != EINTR) {
      fail(errno);
    }
  }
  used_ = 0;
}

void NewFile::commit() {
  flush();
  if (!is_direct_ && ::fsync(descriptor_) != 0) fail(errno);
  if (!is_direct_ && std::rename(written_name_.c_str(), name_.c_str()) != 0) fail(errno);
  if (::close(std::exchange(descriptor_, -1)) != 0) fail(errno);
}

void NewFile::fail(int error) const {
  throw std::runtime_error(name_ + ": error: cannot be written: " + std::strerror(error));
}

}  // namespace symfold
