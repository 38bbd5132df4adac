// Where the detector's diagnostics go while a host runs it: into a file, or nowhere, but not to standard
// output.

#ifndef SYMFOLD_HOST_DETECTION_LOG_H
#define SYMFOLD_HOST_DETECTION_LOG_H

#include <fstream>
#include <iostream>
#include <string>

namespace symfold {

// Redirects std::cout for its lifetime. The detector ends every line with a flush, and its tables have
// hundreds of thousands of lines: the file is written in blocks all the same, and whole when the log is
// closed.
class DetectionLog {
 public:
  // Into a new file; an empty name drops what is printed. Throws std::runtime_error when it cannot be
  // created.
  explicit DetectionLog(const std::string& file_name);
  ~DetectionLog();
  DetectionLog(const DetectionLog&) = delete;
  DetectionLog& operator=(const DetectionLog&) = delete;

 private:
  class Buffer : public std::filebuf {
    int sync() override { return 0; }
  };

  Buffer buffer_;
  std::streambuf* before_;
};

}  // namespace symfold

#endif  // SYMFOLD_HOST_DETECTION_LOG_H
