// A library to be preloaded (LD_PRELOAD) into a program, which makes one of its file calls fail or kills the
// program there. The calls are those that change files or directories or bring them to the disk, and writes
// to standard output; they are counted from 1. The environment says what happens:
//
//   SYMFOLD_FAULT_LOG   file that gets a line for each call, "NUMBER CALL PATH"
//   SYMFOLD_FAULT_AT    number of the call that fails
//   SYMFOLD_FAULT       enospc or eio: the call does nothing and returns the error (a close does close)
//                       short: a write writes the first half of its bytes; the next writes return ENOSPC
//                       full: from the call on, whatever needs space returns ENOSPC, as on a full disk
//                       before, after: the program is killed (SIGKILL) before or after the call
//
// Programs that this one starts are left alone. Calls from inside the C library are not seen, for instance
// the writes of a FILE; therefore fopen and fclose are among the calls. tests/faults/write_sweep.py and
// kill_sweep.py use this library.

#include <dlfcn.h>
#include <fcntl.h>
#include <signal.h>
#include <stdio.h>
#include <stdlib.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/uio.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <cstdarg>
#include <cstring>
#include <string>
#include <string_view>

namespace {

enum class Fault { kNone, kNoSpace, kIoError, kShort, kFull, kKillBefore, kKillAfter };

struct Settings {
  Settings() {
    const auto value = [](const char* name) -> std::string {
      const char* const text = ::getenv(name);
      return text == nullptr ? "" : text;
    };
    const std::string name = value("SYMFOLD_FAULT");
    constexpr std::string_view kNames[] = {"", "enospc", "eio", "short", "full", "before", "after"};
    for (std::size_t i = 0; i < std::size(kNames); ++i) {
      if (name == kNames[i]) fault = static_cast<Fault>(i);
    }
    at = std::atol(value("SYMFOLD_FAULT_AT").c_str());
    const std::string log_name = value("SYMFOLD_FAULT_LOG");
    if (!log_name.empty()) {
      log = static_cast<int>(
          ::syscall(SYS_openat, AT_FDCWD, log_name.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0666));
    }
    ::unsetenv("LD_PRELOAD");
  }

  Fault fault = Fault::kNone;
  long at = 0;
  int log = -1;
};

const Settings& settings() {
  static const Settings kSettings;
  return kSettings;
}

// Before main(), so that the environment is changed while there is one thread.
[[gnu::constructor]] void read_settings() { settings(); }

std::atomic<long> calls = 0;
std::atomic<bool> is_in_fault = false;  // for the kinds that last

std::string path_of(int descriptor) {
  char path[4096];
  const std::string link = "/proc/self/fd/" + std::to_string(descriptor);
  const ssize_t length = ::readlink(link.c_str(), path, sizeof path);
  return length < 0 ? "?" : std::string(path, static_cast<std::size_t>(length));
}

// Descriptors whose calls count: those that are written to, and directories. Reading is left alone, and
// standard error, on which the program tells of the failure.
bool is_counted(int descriptor) {
  if (descriptor < 0 || descriptor == STDERR_FILENO || descriptor == settings().log) return false;
  const int flags = ::fcntl(descriptor, F_GETFL);
  if (flags < 0) return false;
  struct stat status {};
  return (flags & O_ACCMODE) != O_RDONLY || (::fstat(descriptor, &status) == 0 && S_ISDIR(status.st_mode));
}

bool is_counted_open(int flags) {
  return (flags & O_ACCMODE) != O_RDONLY || (flags & (O_CREAT | O_DIRECTORY)) != 0;
}

[[noreturn]] void kill_self() {
  ::kill(::getpid(), SIGKILL);
  while (true) ::pause();
}

enum class Needs { kNothing, kSpace };

// One call: counts it, and runs it unless the fault replaces it. `fail` is what it returns then.
template <class Run, class Result>
Result counted_call(const char* name, const std::string& path, Needs needs, Result fail, Run run) {
  const long number = ++calls;
  const Settings& set = settings();
  if (set.log >= 0) {
    const std::string line = std::to_string(number) + " " + name + " " + path + "\n";
    if (::syscall(SYS_write, set.log, line.data(), line.size()) < 0) ::abort();
  }
  const bool is_here = number == set.at;
  if (is_here && set.fault == Fault::kKillBefore) kill_self();
  if (is_here && (set.fault == Fault::kFull || set.fault == Fault::kShort)) is_in_fault = true;
  if (is_here && (set.fault == Fault::kNoSpace || set.fault == Fault::kIoError)) {
    errno = set.fault == Fault::kNoSpace ? ENOSPC : EIO;
    return fail;
  }
  const bool is_short_write = is_here && set.fault == Fault::kShort && std::strcmp(name, "write") == 0;
  if (is_in_fault && needs == Needs::kSpace && !is_short_write) {
    errno = ENOSPC;
    return fail;
  }
  const Result result = run(is_short_write);
  if (is_here && set.fault == Fault::kKillAfter) kill_self();
  return result;
}

template <class Function>
Function* real(const char* name) {
  return reinterpret_cast<Function*>(::dlsym(RTLD_NEXT, name));
}

mode_t mode_of(int flags, va_list arguments) {
  return (flags & O_CREAT) != 0 ? static_cast<mode_t>(va_arg(arguments, unsigned)) : 0;
}

int open_with(const char* name, int directory, const char* path, int flags, mode_t mode) {
  static auto* const kOpen = real<int(int, const char*, int, ...)>("openat");
  const auto run = [&](bool) { return kOpen(directory, path, flags, mode); };
  if (!is_counted_open(flags)) return run(false);
  return counted_call(name, path, (flags & O_CREAT) != 0 ? Needs::kSpace : Needs::kNothing, -1, run);
}

}  // namespace

extern "C" {

int open(const char* path, int flags, ...) {
  va_list arguments;
  va_start(arguments, flags);
  const mode_t mode = mode_of(flags, arguments);
  va_end(arguments);
  return open_with("open", AT_FDCWD, path, flags, mode);
}

int open64(const char* path, int flags, ...) {
  va_list arguments;
  va_start(arguments, flags);
  const mode_t mode = mode_of(flags, arguments);
  va_end(arguments);
  return open_with("open", AT_FDCWD, path, flags, mode);
}

int openat(int directory, const char* path, int flags, ...) {
  va_list arguments;
  va_start(arguments, flags);
  const mode_t mode = mode_of(flags, arguments);
  va_end(arguments);
  return open_with("openat", directory, path, flags, mode);
}

int openat64(int directory, const char* path, int flags, ...) {
  va_list arguments;
  va_start(arguments, flags);
  const mode_t mode = mode_of(flags, arguments);
  va_end(arguments);
  return open_with("openat", directory, path, flags, mode);
}

FILE* fopen(const char* path, const char* mode) {
  static auto* const kCall = real<FILE*(const char*, const char*)>("fopen");
  const auto run = [&](bool) { return kCall(path, mode); };
  if (std::strpbrk(mode, "wa+") == nullptr) return run(false);
  return counted_call("fopen", path, Needs::kSpace, static_cast<FILE*>(nullptr), run);
}

FILE* fopen64(const char* path, const char* mode) { return fopen(path, mode); }

int fclose(FILE* file) {
  static auto* const kCall = real<int(FILE*)>("fclose");
  const int descriptor = ::fileno(file);
  if (!is_counted(descriptor)) return kCall(file);
  bool has_run = false;
  const int result = counted_call("fclose", path_of(descriptor), Needs::kSpace, EOF, [&](bool) {
    has_run = true;
    return kCall(file);
  });
  if (!has_run) {
    const int error = errno;
    kCall(file);
    errno = error;
  }
  return result;
}

ssize_t write(int descriptor, const void* data, size_t size) {
  static auto* const kCall = real<ssize_t(int, const void*, size_t)>("write");
  const auto run = [&](bool is_short) { return kCall(descriptor, data, is_short ? size / 2 : size); };
  if (!is_counted(descriptor)) return run(false);
  return counted_call("write", path_of(descriptor), Needs::kSpace, ssize_t{-1}, run);
}

ssize_t pwrite(int descriptor, const void* data, size_t size, off_t offset) {
  static auto* const kCall = real<ssize_t(int, const void*, size_t, off_t)>("pwrite");
  const auto run = [&](bool) { return kCall(descriptor, data, size, offset); };
  return counted_call("pwrite", path_of(descriptor), Needs::kSpace, ssize_t{-1}, run);
}

ssize_t writev(int descriptor, const iovec* pieces, int count) {
  static auto* const kCall = real<ssize_t(int, const iovec*, int)>("writev");
  const auto run = [&](bool) { return kCall(descriptor, pieces, count); };
  if (!is_counted(descriptor)) return run(false);
  return counted_call("writev", path_of(descriptor), Needs::kSpace, ssize_t{-1}, run);
}

int close(int descriptor) {
  static auto* const kCall = real<int(int)>("close");
  if (!is_counted(descriptor)) return kCall(descriptor);
  bool has_run = false;
  const int result = counted_call("close", path_of(descriptor), Needs::kNothing, -1, [&](bool) {
    has_run = true;
    return kCall(descriptor);
  });
  if (!has_run) {
    const int error = errno;
    kCall(descriptor);
    errno = error;
  }
  return result;
}

int fsync(int descriptor) {
  static auto* const kCall = real<int(int)>("fsync");
  return counted_call("fsync", path_of(descriptor), Needs::kSpace, -1,
                      [&](bool) { return kCall(descriptor); });
}

int fdatasync(int descriptor) {
  static auto* const kCall = real<int(int)>("fdatasync");
  return counted_call("fdatasync", path_of(descriptor), Needs::kSpace, -1,
                      [&](bool) { return kCall(descriptor); });
}

int ftruncate(int descriptor, off_t size) {
  static auto* const kCall = real<int(int, off_t)>("ftruncate");
  return counted_call("ftruncate", path_of(descriptor), Needs::kSpace, -1,
                      [&](bool) { return kCall(descriptor, size); });
}

int fchmod(int descriptor, mode_t mode) {
  static auto* const kCall = real<int(int, mode_t)>("fchmod");
  return counted_call("fchmod", path_of(descriptor), Needs::kNothing, -1,
                      [&](bool) { return kCall(descriptor, mode); });
}

int flock(int descriptor, int operation) {
  static auto* const kCall = real<int(int, int)>("flock");
  return counted_call("flock", path_of(descriptor), Needs::kNothing, -1,
                      [&](bool) { return kCall(descriptor, operation); });
}

int rename(const char* from, const char* to) {
  static auto* const kCall = real<int(const char*, const char*)>("rename");
  return counted_call("rename", to, Needs::kNothing, -1, [&](bool) { return kCall(from, to); });
}

int renameat(int from_directory, const char* from, int to_directory, const char* to) {
  static auto* const kCall = real<int(int, const char*, int, const char*)>("renameat");
  return counted_call("renameat", to, Needs::kNothing, -1,
                      [&](bool) { return kCall(from_directory, from, to_directory, to); });
}

int unlink(const char* path) {
  static auto* const kCall = real<int(const char*)>("unlink");
  return counted_call("unlink", path, Needs::kNothing, -1, [&](bool) { return kCall(path); });
}

int unlinkat(int directory, const char* path, int flags) {
  static auto* const kCall = real<int(int, const char*, int)>("unlinkat");
  return counted_call("unlinkat", path, Needs::kNothing, -1,
                      [&](bool) { return kCall(directory, path, flags); });
}

int remove(const char* path) {
  static auto* const kCall = real<int(const char*)>("remove");
  return counted_call("remove", path, Needs::kNothing, -1, [&](bool) { return kCall(path); });
}

int rmdir(const char* path) {
  static auto* const kCall = real<int(const char*)>("rmdir");
  return counted_call("rmdir", path, Needs::kNothing, -1, [&](bool) { return kCall(path); });
}

int link(const char* from, const char* to) {
  static auto* const kCall = real<int(const char*, const char*)>("link");
  return counted_call("link", to, Needs::kSpace, -1, [&](bool) { return kCall(from, to); });
}

int mkdir(const char* path, mode_t mode) {
  static auto* const kCall = real<int(const char*, mode_t)>("mkdir");
  return counted_call("mkdir", path, Needs::kSpace, -1, [&](bool) { return kCall(path, mode); });
}

char* mkdtemp(char* pattern) {
  static auto* const kCall = real<char*(char*)>("mkdtemp");
  return counted_call("mkdtemp", pattern, Needs::kSpace, static_cast<char*>(nullptr),
                      [&](bool) { return kCall(pattern); });
}

int mkstemp(char* pattern) {
  static auto* const kCall = real<int(char*)>("mkstemp");
  return counted_call("mkstemp", pattern, Needs::kSpace, -1, [&](bool) { return kCall(pattern); });
}

}  // extern "C"
