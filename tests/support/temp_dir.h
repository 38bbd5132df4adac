// A directory of a test's own, and files in it.

#ifndef SYMFOLD_TESTS_SUPPORT_TEMP_DIR_H
#define SYMFOLD_TESTS_SUPPORT_TEMP_DIR_H

#include <filesystem>
#include <string>

namespace symfold {

// The working directory while the object lives; removed at its end.
class TempDir {
 public:
  TempDir();
  ~TempDir();
  TempDir(const TempDir&) = delete;
  TempDir& operator=(const TempDir&) = delete;

 private:
  std::filesystem::path before_;
  std::filesystem::path path_;
};

void write_file(const std::string& name, const std::string& text);
std::string read_file(const std::string& name);

}  // namespace symfold

#endif  // SYMFOLD_TESTS_SUPPORT_TEMP_DIR_H
