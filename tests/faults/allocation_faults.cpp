// A library to be loaded before a program (LD_PRELOAD) that refuses some of its allocations. It replaces
// malloc and its relatives, on which operator new rests.
//
// SYMFOLD_FAIL_AT=K         refuses the K-th allocation, counted from 1; 0 refuses none
// SYMFOLD_FAIL_FROM=K       refuses it and all that follow
// SYMFOLD_COUNT_FILE=NAME   writes the number of allocations to that file at the end
//
// The variables and LD_PRELOAD are taken out of the environment, so that the programs that the program starts
// run as usual. What the loader allocates before this library is in place is not counted.

#include <fcntl.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <cstddef>
#include <cstdint>
#include <cstdlib>

// glibc's own names for what is replaced here.
extern "C" {
void* __libc_malloc(std::size_t size);
void* __libc_calloc(std::size_t count, std::size_t size);
void* __libc_realloc(void* memory, std::size_t size);
void* __libc_memalign(std::size_t alignment, std::size_t size);
}

namespace {

std::atomic<std::uint64_t> g_count{0};
std::uint64_t g_first = 1;  // the allocations that are refused; none before the environment is read
std::uint64_t g_last = 0;
const char* g_count_file = nullptr;

// Happens at the first allocation, which comes before the constructors of most libraries. Allocates nothing.
void read_environment() {
  if (const char* const at = std::getenv("SYMFOLD_FAIL_AT")) {
    g_first = g_last = std::strtoull(at, nullptr, 10);
  } else if (const char* const from = std::getenv("SYMFOLD_FAIL_FROM")) {
    g_first = std::strtoull(from, nullptr, 10);
    g_last = UINT64_MAX;
  }
  g_count_file = std::getenv("SYMFOLD_COUNT_FILE");
  for (const char* name : {"SYMFOLD_FAIL_AT", "SYMFOLD_FAIL_FROM", "SYMFOLD_COUNT_FILE", "LD_PRELOAD"}) {
    unsetenv(name);
  }
}

// Returns true, with errno set, if this allocation is to be refused.
bool is_refused() {
  const std::uint64_t number = ++g_count;
  if (number == 1) read_environment();
  if (number < g_first || number > g_last) return false;
  errno = ENOMEM;
  return true;
}

__attribute__((destructor(101))) void finish() {
  if (g_count_file == nullptr) return;
  const int file = ::open(g_count_file, O_WRONLY | O_CREAT | O_TRUNC, 0666);
  if (file < 0) return;
  char digits[24];
  char* first = digits + sizeof digits;
  for (std::uint64_t rest = g_count; rest > 0 || first == digits + sizeof digits; rest /= 10) {
    *--first = static_cast<char>('0' + rest % 10);
  }
  if (::write(file, first, static_cast<std::size_t>(digits + sizeof digits - first)) < 0) _exit(99);
  ::close(file);
}

}  // namespace

extern "C" {

void* malloc(std::size_t size) { return is_refused() ? nullptr : __libc_malloc(size); }

void* calloc(std::size_t count, std::size_t size) {
  return is_refused() ? nullptr : __libc_calloc(count, size);
}

void* realloc(void* memory, std::size_t size) {
  return is_refused() ? nullptr : __libc_realloc(memory, size);
}

void* aligned_alloc(std::size_t alignment, std::size_t size) {
  return is_refused() ? nullptr : __libc_memalign(alignment, size);
}

void* memalign(std::size_t alignment, std::size_t size) {
  return is_refused() ? nullptr : __libc_memalign(alignment, size);
}

int posix_memalign(void** memory, std::size_t alignment, std::size_t size) {
  if (is_refused()) return ENOMEM;
  *memory = __libc_memalign(alignment, size);
  return *memory == nullptr ? ENOMEM : 0;
}

}  // extern "C"
