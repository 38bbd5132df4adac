#include "cli/memory_cap.h"

#include <algorithm>
#include <atomic>

#include "cli/figures.h"

#if defined(__SANITIZE_ADDRESS__)
#define SYMFOLD_HAS_ADDRESS_SANITIZER 1
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
#define SYMFOLD_HAS_ADDRESS_SANITIZER 1
#endif
#endif

namespace symfold {
namespace {

#ifdef SYMFOLD_HAS_ADDRESS_SANITIZER
constexpr bool kIsHeld = false;
#else
constexpr bool kIsHeld = true;
#endif

// For the stack, and for pages of the program that have not been used yet.
constexpr std::size_t kReserve = std::size_t{1} << 20;

std::atomic<bool> g_is_refused{false};

void note_refusal() {
  g_is_refused = true;
  throw std::bad_alloc();
}

}  // namespace

MemoryCap::MemoryCap(std::size_t bytes) : bytes_(bytes) {
  if (bytes_ == kNone || !kIsHeld) return;
  getrlimit(RLIMIT_DATA, &before_);
  rlimit cap = before_;
  cap.rlim_cur = std::min<rlim_t>(before_.rlim_cur, bytes_ - std::min(bytes_, file_memory() + kReserve));
  setrlimit(RLIMIT_DATA, &cap);
}

MemoryCap::~MemoryCap() {
  if (bytes_ != kNone && kIsHeld) setrlimit(RLIMIT_DATA, &before_);
}

std::size_t MemoryCap::bytes_left() const {
  return bytes_ == kNone ? kNone : bytes_ - std::min(bytes_, current_memory() + kReserve);
}

RefusalWatch::RefusalWatch() : before_(std::set_new_handler(note_refusal)) { g_is_refused = false; }

RefusalWatch::~RefusalWatch() { std::set_new_handler(before_); }

bool RefusalWatch::has_untold_refusal() const { return g_is_refused; }

void RefusalWatch::note_told() { g_is_refused = false; }

}  // namespace symfold
