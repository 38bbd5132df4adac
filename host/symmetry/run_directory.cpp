#include "host/symmetry/run_directory.h"

#include <fcntl.h>
#include <stdlib.h>
#include <sys/file.h>
#include <unistd.h>

#include <cerrno>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <string_view>
#include <utility>

namespace symfold {
namespace {

namespace fs = std::filesystem;

constexpr std::string_view kOwnPlace = ".partial-";
constexpr const char* kLogName = "detection.log";
constexpr const char* kPermutations = "permutations";

[[noreturn]] void fail(const std::string& name, const std::string& what, const std::string& reason) {
  throw std::runtime_error(name + ": error: " + what + ": " + reason);
}

// Removes the places of runs that have ended without removing them: nobody holds their locks. The directory
// is locked, so that no run is about to lock the place that it has just made.
void remove_abandoned_places(const std::string& directory) {
  std::error_code error;
  for (const fs::directory_entry& entry : fs::directory_iterator(directory, error)) {
    if (!entry.path().filename().string().starts_with(kOwnPlace)) continue;
    const int descriptor = open(entry.path().c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC);
    if (descriptor < 0) continue;
    if (flock(descriptor, LOCK_EX | LOCK_NB) == 0) fs::remove_all(entry.path(), error);
    close(descriptor);
  }
}

}  // namespace

class RunDirectory::Lock {
 public:
  explicit Lock(const std::string& directory)
      : descriptor_(open(directory.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC)) {
    int result = -1;
    while (descriptor_ >= 0 && (result = flock(descriptor_, LOCK_EX)) != 0 && errno == EINTR) {
    }
    if (result == 0) return;
    const std::string reason = std::strerror(errno);
    if (descriptor_ >= 0) close(descriptor_);
    fail(directory, "no run directory", reason);
  }
  ~Lock() { close(descriptor_); }
  Lock(const Lock&) = delete;
  Lock& operator=(const Lock&) = delete;

 private:
  int descriptor_;
};

class RunDirectory::Log : public std::ostream {
 public:
  explicit Log(const std::string& file_name) : std::ostream(&buffer_), buffer_(file_name) {
    if (!buffer_.is_open()) setstate(badbit);
  }

  bool close() { return buffer_.close(); }

 private:
  class Buffer : public std::streambuf {
   public:
    explicit Buffer(const std::string& file_name) { file_.open(file_name, std::ios::out | std::ios::trunc); }
    bool is_open() const { return file_.is_open(); }
    bool close() { return file_.close() != nullptr && is_written_; }

   protected:
    std::streamsize xsputn(const char* text, std::streamsize count) override {
      if (left_ <= 0) return count;
      left_ -= count;
      if (left_ > 0) return put(text, count);
      constexpr std::string_view kCut = "\n(the rest of this log is left out)\n";
      put(kCut.data(), kCut.size());
      return count;
    }
    int_type overflow(int_type c) override {
      const char text = traits_type::to_char_type(c);
      if (!traits_type::eq_int_type(c, traits_type::eof())) xsputn(&text, 1);
      return traits_type::not_eof(c);
    }
    int sync() override { return 0; }

   private:
    std::streamsize put(const char* text, std::streamsize count) {
      const std::streamsize written = file_.sputn(text, count);
      if (written != count) is_written_ = false;
      return written;
    }

    std::filebuf file_;
    std::int64_t left_ = std::int64_t{1} << 30;  // bytes
    bool is_written_ = true;
  };

  Buffer buffer_;
};

RunDirectory::RunDirectory(std::string directory) : directory_(std::move(directory)) {
  std::error_code error;
  fs::create_directories(directory_, error);
  if (error) fail(directory_, "no run directory", error.message());
  const Lock lock(directory_);
  remove_abandoned_places(directory_);
  own_place_ = directory_ + "/" + std::string(kOwnPlace) + "XXXXXX";
  if (mkdtemp(own_place_.data()) == nullptr) fail(directory_, "no run directory", std::strerror(errno));
  lock_of_own_place_ = std::make_unique<Lock>(own_place_);
}

RunDirectory::~RunDirectory() {
  log_.reset();
  std::error_code error;
  fs::remove_all(own_place_, error);
}

void RunDirectory::write(const std::string& name, const std::function<void(std::ostream&)>& fill) {
  errno = 0;
  std::ofstream out(own_place_ + "/" + name, std::ios::trunc);
  if (out) fill(out);
  out.close();
  if (!out) {
    fail(directory_ + "/" + name, "cannot be written", errno == 0 ? "write failed" : std::strerror(errno));
  }
  made_.insert(name);
}

std::ostream& RunDirectory::open_log() {
  log_ = std::make_unique<Log>(own_place_ + "/" + kLogName);
  if (!*log_) fail(directory_ + "/" + kLogName, "cannot be written", std::strerror(errno));
  made_.insert(kLogName);
  return *log_;
}

void RunDirectory::publish() {
  if (log_ != nullptr && !log_->close()) {
    fail(directory_ + "/" + kLogName, "cannot be written", "write failed");
  }
  const Lock lock(directory_);
  remove_old(kPermutations);
  for (const char* name : {"types", "model_comp_graph", "mcg.viz", kLogName, kPermutations}) {
    if (!made_.contains(name)) {
      remove_old(name);
    } else if (std::rename((own_place_ + "/" + name).c_str(), (directory_ + "/" + name).c_str()) != 0) {
      fail(directory_ + "/" + name, "cannot be replaced", std::strerror(errno));
    }
  }
}

void RunDirectory::remove_old(const std::string& name) {
  const std::string place = directory_ + "/" + name;
  if (unlink(place.c_str()) != 0 && errno != ENOENT) fail(place, "cannot be replaced", std::strerror(errno));
}

}  // namespace symfold
