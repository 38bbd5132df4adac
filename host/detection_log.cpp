#include "host/detection_log.h"

#include <stdexcept>

namespace symfold {

// Without a buffer, a stream drops what it is given.
DetectionLog::DetectionLog(const std::string& file_name) : before_(nullptr) {
  if (!file_name.empty() && buffer_.open(file_name, std::ios::out | std::ios::trunc) == nullptr) {
    throw std::runtime_error(file_name + ": error: cannot be written");
  }
  before_ = std::cout.rdbuf(file_name.empty() ? nullptr : &buffer_);
}

DetectionLog::~DetectionLog() { std::cout.rdbuf(before_); }

}  // namespace symfold
