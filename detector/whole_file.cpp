#include "detector/whole_file.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <random>
#include <string_view>
#include <utility>

namespace symfold {
namespace {

constexpr int kMaxLinks = 40;       // as many as Linux follows
constexpr int kMaxAttempts = 100;   // names tried
constexpr std::size_t kRandom = 4;  // characters
constexpr std::size_t kCheck = 2;
constexpr std::string_view kEnding = ".partial";
constexpr std::string_view kLetters = "0123456789ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz";

// With its slash; empty for a name in the working directory.
std::string_view directory_of(std::string_view path) { return path.substr(0, path.rfind('/') + 1); }
std::string_view base_of(std::string_view path) { return path.substr(path.rfind('/') + 1); }

std::string openable(std::string_view directory) { return directory.empty() ? "." : std::string(directory); }

// The path of the file that a path leads to, which need not exist. Empty for a circle of links, and for the
// process's own open files: replacing what those lead to would leave the open file behind, without a name.
std::string followed(std::string path) {
  for (int links = 0; links <= kMaxLinks; ++links) {
    if (path.starts_with("/proc/") || path.starts_with("/dev/fd/")) return "";
    std::array<char, 4096> content;
    const ssize_t length = ::readlink(path.c_str(), content.data(), content.size());
    if (length < 0) return path;
    const std::string_view link(content.data(), static_cast<std::size_t>(length));
    path = link.starts_with('/') ? std::string(link) : std::string(directory_of(path)).append(link);
  }
  return "";
}

// FNV-1a, cut to kCheck letters.
std::string checksum(std::string_view text) {
  std::uint32_t hash = 2166136261U;
  for (const char c : text) hash = (hash ^ static_cast<unsigned char>(c)) * 16777619U;
  std::string result;
  for (; result.size() < kCheck; hash /= static_cast<std::uint32_t>(kLetters.size())) {
    result += kLetters[hash % kLetters.size()];
  }
  return result;
}

// True for a name that a writer of the file `base` gives to what it writes.
bool is_partial_of(std::string_view name, std::string_view base) {
  if (name.size() != base.size() + 1 + kRandom + kCheck + kEnding.size()) return false;
  if (!name.starts_with(base) || !name.ends_with(kEnding)) return false;
  name.remove_suffix(kEnding.size());
  return name[base.size()] == '.' &&
         checksum(name.substr(0, name.size() - kCheck)) == name.substr(name.size() - kCheck);
}

// True if the path names the open file and not another one, nor nothing.
bool is_name_of(const std::string& path, int descriptor) {
  struct stat named {};
  struct stat opened {};
  return ::lstat(path.c_str(), &named) == 0 && ::fstat(descriptor, &opened) == 0 &&
         named.st_ino == opened.st_ino && named.st_dev == opened.st_dev;
}

// Removes the file if nobody holds it. It is looked at again under the lock, because its writer may have
// renamed it in between.
void remove_unless_held(const std::string& path) {
  struct stat status {};
  if (::lstat(path.c_str(), &status) != 0 || !S_ISREG(status.st_mode)) return;
  const int descriptor = ::open(path.c_str(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC);
  if (descriptor < 0) return;
  if (::flock(descriptor, LOCK_EX | LOCK_NB) == 0 && is_name_of(path, descriptor)) ::unlink(path.c_str());
  ::close(descriptor);
}

}  // namespace

WholeFile::WholeFile(std::string name) : name_(std::move(name)) {
  struct stat status {};
  const bool exists = ::stat(name_.c_str(), &status) == 0;
  if (!exists || S_ISREG(status.st_mode)) target_ = followed(name_);
  if (!target_.empty()) {
    open_beside();
  } else {
    descriptor_ = ::open(name_.c_str(), O_WRONLY | O_APPEND | O_NOCTTY | O_CLOEXEC);
    if (descriptor_ < 0) fail(errno);
  }
}

WholeFile::~WholeFile() { discard(); }

void WholeFile::open_beside() {
  remove_leftovers();
  struct stat status {};
  const bool replaces = ::stat(target_.c_str(), &status) == 0;
  for (int attempt = 0; attempt < kMaxAttempts; ++attempt) {
    if (open_partial(replaces ? S_IRUSR | S_IWUSR : 0666)) break;
    if (!error_.empty()) return;
  }
  if (descriptor_ < 0) return fail(EEXIST);
  if (replaces && ::fchmod(descriptor_, status.st_mode & 07777) != 0) fail(errno);
}

// Returns false if another name is to be tried: the name is taken, or a writer that removes leftovers was
// faster than the lock. A file system without locks has no such writers.
bool WholeFile::open_partial(mode_t mode) {
  std::random_device random;
  std::string path = target_ + ".";
  for (std::size_t i = 0; i < kRandom; ++i) path += kLetters[random() % kLetters.size()];
  path += checksum(base_of(path));
  path += kEnding;
  const int descriptor = ::open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, mode);
  if (descriptor < 0) {
    if (errno != EEXIST) fail(errno);
    return false;
  }
  if ((::flock(descriptor, LOCK_EX | LOCK_NB) != 0 && errno == EWOULDBLOCK) ||
      !is_name_of(path, descriptor)) {
    ::close(descriptor);
    return false;
  }
  descriptor_ = descriptor;
  partial_ = std::move(path);  // allocates nothing: the file must not be left without its remover
  return true;
}

void WholeFile::remove_leftovers() const {
  const std::string_view directory = directory_of(target_);
  DIR* entries = ::opendir(openable(directory).c_str());
  if (entries == nullptr) return;
  while (const dirent* entry = ::readdir(entries)) {
    if (is_partial_of(entry->d_name, base_of(target_))) {
      remove_unless_held(std::string(directory) + entry->d_name);
    }
  }
  ::closedir(entries);
}

bool WholeFile::write(const char* data, std::size_t size) {
  if (size > buffer_.size() - used_) flush();
  if (size > buffer_.size()) {
    put(data, size);
  } else if (error_.empty()) {
    std::copy_n(data, size, buffer_.data() + used_);
    used_ += size;
  }
  return error_.empty();
}

void WholeFile::flush() { put(buffer_.data(), std::exchange(used_, 0)); }

void WholeFile::put(const char* data, std::size_t size) {
  while (size > 0 && error_.empty()) {
    const ssize_t count = ::write(descriptor_, data, size);
    if (count >= 0) {
      data += count;
      size -= static_cast<std::size_t>(count);
    } else if (errno != EINTR) {
      fail(errno);
    }
  }
}

bool WholeFile::finish() {
  flush();
  if (error_.empty() && !partial_.empty() && ::fsync(descriptor_) != 0) fail(errno);
  is_finished_ = true;
  return error_.empty();
}

// The lock must last until the file has its name, so the file is closed last. It was brought to the disk
// before; a failure to close is then of interest only for what is written directly.
bool WholeFile::commit() {
  if (!is_finished_) finish();
  if (!error_.empty()) return false;
  if (!partial_.empty()) {
    if (std::rename(partial_.c_str(), target_.c_str()) != 0) {
      fail(errno);
      return false;
    }
    partial_.clear();
    sync_directory();
  }
  const bool is_closed = ::close(std::exchange(descriptor_, -1)) == 0 || errno == EINTR;
  if (!is_closed && is_direct() && error_.empty()) fail(errno);
  return error_.empty();
}

// Brings the new name to the disk. There are file systems that cannot, and directories that may be written
// and not read.
void WholeFile::sync_directory() {
  const std::string directory = openable(directory_of(target_));
  const int descriptor = ::open(directory.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
  if (descriptor < 0) return;
  if (::fsync(descriptor) != 0 && errno != EINVAL) fail(errno);
  ::close(descriptor);
}

void WholeFile::fail(int reason) {
  error_ = name_ + ": error: cannot be written: " + std::strerror(reason);
  discard();
}

void WholeFile::discard() {
  if (!partial_.empty()) ::unlink(partial_.c_str());
  partial_.clear();
  if (descriptor_ >= 0) ::close(std::exchange(descriptor_, -1));
}

}  // namespace symfold
