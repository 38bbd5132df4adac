// Where the detector's diagnostics go while a host runs it: into a file, or nowhere, but not to standard
// output.

#ifndef SYMFOLD_HOST_SYMMETRY_DETECTION_LOG_H
#define SYMFOLD_HOST_SYMMETRY_DETECTION_LOG_H

#include <cstdint>
#include <fstream>
#include <iostream>
#include <string>

namespace symfold {

// Redirects std::cout for its lifetime. The detector ends every line with a flush, and its tables have
// hundreds of thousands of lines: the file is written in blocks all the same, and whole when the log is
// closed. Of a log longer than 1 GiB the rest is left out, which its last line says.
class DetectionLog {
 public:
  // Into a new file; an empty name drops what is printed. Throws std::runtime_error when it cannot be
  // created.
  explicit DetectionLog(const std::string& file_name);
  ~DetectionLog();
  DetectionLog(const DetectionLog&) = delete;
  DetectionLog& operator=(const DetectionLog&) = delete;

 private:
  class Buffer : public std::streambuf {
   public:
    bool open(const std::string& file_name);

   protected:
    std::streamsize xsputn(const char* text, std::streamsize count) override;
    int_type overflow(int_type c) override;
    int sync() override { return 0; }

   private:
    std::filebuf file_;
    std::int64_t left_ = std::int64_t{1} << 30;  // bytes
  };

  Buffer buffer_;
  std::streambuf* before_;
};

}  // namespace symfold

#endif  // SYMFOLD_HOST_SYMMETRY_DETECTION_LOG_H
