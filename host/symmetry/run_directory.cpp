#include "host/symmetry/run_directory.h"

#include <fcntl.h>
#include <stdlib.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <limits>
#include <new>
#include <stdexcept>
#include <string_view>
#include <system_error>
#include <utility>
#include <vector>

#include "host/directory_lock.h"

namespace symfold {
namespace {

namespace fs = std::filesystem;

constexpr std::string_view kOwnPlace = ".partial-";
constexpr const char* kLogName = "detection.log";
constexpr const char* kPermutations = "permutations";
constexpr std::int64_t kMaxLogSize = std::int64_t{1} << 30;  // bytes
constexpr std::size_t kRandom = 6;                           // characters behind kOwnPlace

[[noreturn]] void fail(const std::string& name, const std::string& what, const std::string& reason) {
  throw std::runtime_error(name + ": error: " + what + ": " + reason);
}

// Removes the places of runs that have ended without removing them: nobody holds their locks. The directory
// is locked, so that no run is about to lock the place that it has just made.
void remove_abandoned_places(const std::string& directory) {
  std::error_code error;
  for (const fs::directory_entry& entry : fs::directory_iterator(directory, error)) {
    const std::string name = entry.path().filename().string();
    if (!name.starts_with(kOwnPlace) || name.size() != kOwnPlace.size() + kRandom) continue;
    const int descriptor = open(entry.path().c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC);
    if (descriptor < 0) continue;
    if (flock(descriptor, LOCK_EX | LOCK_NB) == 0) fs::remove_all(entry.path(), error);
    close(descriptor);
  }
}

// Makes the directory, if there is none, and brings its name to the disk.
void make_directories(const std::string& directory) {
  std::vector<fs::path> parents;  // of directories that are missing, the innermost first
  fs::path place = fs::absolute(directory).lexically_normal();
  if (!place.has_filename()) place = place.parent_path();
  for (; !fs::exists(place); place = place.parent_path()) parents.push_back(place.parent_path());
  fs::create_directories(directory);
  for (const fs::path& parent : parents) sync_directory(parent);
}

}  // namespace

// A file of which every write is checked. It writes in blocks, however often it is flushed.
class RunDirectory::File : public std::ostream {
 public:
  // Takes the descriptor over. What exceeds the size is left out, and the last line says so.
  File(int descriptor, std::int64_t max_size) : std::ostream(&buffer_), buffer_(descriptor, max_size) {}

  // Brings the file to the disk and closes it. Returns the number of the first error, or 0.
  int close() { return buffer_.close(); }

 private:
  class Buffer : public std::streambuf {
   public:
    Buffer(int descriptor, std::int64_t max_size) : descriptor_(descriptor), left_(max_size) {
      text_.reserve(kBlock);
    }
    ~Buffer() override {
      if (descriptor_ >= 0) ::close(descriptor_);
    }
    Buffer(const Buffer&) = delete;
    Buffer& operator=(const Buffer&) = delete;

    int close() {
      flush();
      if (error_ == 0 && ::fsync(descriptor_) != 0) error_ = errno;
      if (::close(std::exchange(descriptor_, -1)) != 0 && error_ == 0) error_ = errno;
      return error_;
    }

   protected:
    std::streamsize xsputn(const char* text, std::streamsize count) override {
      if (left_ <= 0) return count;
      left_ -= count;
      if (left_ > 0) {
        put({text, static_cast<std::size_t>(count)});
      } else {
        put("\n(the rest of this log is left out)\n");
      }
      return error_ == 0 ? count : 0;
    }
    int_type overflow(int_type c) override {
      if (traits_type::eq_int_type(c, traits_type::eof())) return traits_type::not_eof(c);
      const char text = traits_type::to_char_type(c);
      return xsputn(&text, 1) == 1 ? c : traits_type::eof();
    }
    int sync() override { return 0; }

   private:
    static constexpr std::size_t kBlock = std::size_t{1} << 16;

    void put(std::string_view text) {
      text_ += text;
      if (text_.size() >= kBlock) flush();
    }

    void flush() {
      std::string_view rest = text_;
      while (!rest.empty() && error_ == 0) {
        const ssize_t count = ::write(descriptor_, rest.data(), rest.size());
        if (count >= 0) {
          rest.remove_prefix(static_cast<std::size_t>(count));
        } else if (errno != EINTR) {
          error_ = errno;
        }
      }
      text_.clear();
    }

    int descriptor_;
    std::int64_t left_;  // bytes
    std::string text_;   // not written yet
    int error_ = 0;
  };

  Buffer buffer_;
};

RunDirectory::RunDirectory(std::string directory) : directory_(std::move(directory)) {
  try {
    make_directories(directory_);
    const DirectoryLock lock(directory_);
    remove_abandoned_places(directory_);
    own_place_ = directory_ + "/" + std::string(kOwnPlace) + "XXXXXX";
    if (mkdtemp(own_place_.data()) == nullptr) throw std::system_error(errno, std::generic_category());
    lock_of_own_place_ = std::make_unique<DirectoryLock>(own_place_);
  } catch (const std::system_error& error) {
    if (!own_place_.empty()) rmdir(own_place_.c_str());
    if (error.code() == std::errc::not_enough_memory) throw std::bad_alloc();
    fail(directory_, "no run directory", error.code().message());
  }
}

RunDirectory::~RunDirectory() {
  log_.reset();
  try {
    std::error_code error;
    fs::remove_all(own_place_, error);
  } catch (const std::bad_alloc&) {
    return;  // the next run in the directory removes it
  }
}

std::unique_ptr<RunDirectory::File> RunDirectory::make_file(const std::string& name,
                                                            std::int64_t max_size) const {
  const int descriptor =
      open((own_place_ + "/" + name).c_str(), O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, 0666);
  if (descriptor < 0) fail(directory_ + "/" + name, "cannot be written", std::strerror(errno));
  auto file = std::make_unique<File>(descriptor, max_size);
  struct stat old {};
  const bool is_replaced = lstat((directory_ + "/" + name).c_str(), &old) == 0 && S_ISREG(old.st_mode);
  if (is_replaced && fchmod(descriptor, old.st_mode & 07777) != 0) {
    fail(directory_ + "/" + name, "cannot be written", std::strerror(errno));
  }
  return file;
}

void RunDirectory::close_file(const std::string& name, File& file) const {
  const int error = file.close();
  if (error != 0) fail(directory_ + "/" + name, "cannot be written", std::strerror(error));
}

void RunDirectory::write(const std::string& name, const std::function<void(std::ostream&)>& fill) {
  const std::unique_ptr<File> file = make_file(name, std::numeric_limits<std::int64_t>::max());
  fill(*file);
  close_file(name, *file);
  made_.insert(name);
}

std::ostream& RunDirectory::open_log() {
  log_ = make_file(kLogName, kMaxLogSize);
  made_.insert(kLogName);
  return *log_;
}

// At every moment the disk holds no permutation file, or one whose set is complete on the disk.
void RunDirectory::publish() {
  if (log_ != nullptr) close_file(kLogName, *log_);
  try {
    const DirectoryLock lock(directory_);
    remove_old(kPermutations);
    lock.sync();
    for (const char* name : {"types", "model_comp_graph", "mcg.viz", kLogName}) place(name);
    lock.sync();
    place(kPermutations);
    lock.sync();
  } catch (const std::system_error& error) {
    fail(directory_, "cannot be written", error.code().message());
  }
}

void RunDirectory::place(const std::string& name) {
  if (!made_.contains(name)) return remove_old(name);
  if (std::rename((own_place_ + "/" + name).c_str(), (directory_ + "/" + name).c_str()) != 0) {
    fail(directory_ + "/" + name, "cannot be replaced", std::strerror(errno));
  }
}

void RunDirectory::remove_old(const std::string& name) {
  const std::string place = directory_ + "/" + name;
  if (unlink(place.c_str()) != 0 && errno != ENOENT) fail(place, "cannot be replaced", std::strerror(errno));
}

}  // namespace symfold
