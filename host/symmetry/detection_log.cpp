#include "host/symmetry/detection_log.h"

#include <stdexcept>
#include <string_view>

namespace symfold {

bool DetectionLog::Buffer::open(const std::string& file_name) {
  return file_.open(file_name, std::ios::out | std::ios::trunc) != nullptr;
}

std::streamsize DetectionLog::Buffer::xsputn(const char* text, std::streamsize count) {
  if (left_ <= 0) return count;
  left_ -= count;
  if (left_ > 0) return file_.sputn(text, count);
  constexpr std::string_view kCut = "\n(the rest of this log is left out)\n";
  file_.sputn(kCut.data(), kCut.size());
  return count;
}

DetectionLog::Buffer::int_type DetectionLog::Buffer::overflow(int_type c) {
  const char text = traits_type::to_char_type(c);
  if (!traits_type::eq_int_type(c, traits_type::eof())) xsputn(&text, 1);
  return traits_type::not_eof(c);
}

// Without a buffer, a stream drops what it is given.
DetectionLog::DetectionLog(const std::string& file_name) : before_(nullptr) {
  if (!file_name.empty() && !buffer_.open(file_name)) {
    throw std::runtime_error(file_name + ": error: cannot be written");
  }
  before_ = std::cout.rdbuf(file_name.empty() ? nullptr : &buffer_);
}

DetectionLog::~DetectionLog() { std::cout.rdbuf(before_); }

}  // namespace symfold
