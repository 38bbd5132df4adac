#include "tests/support/temp_dir.h"

#include <stdlib.h>

#include <fstream>
#include <sstream>

namespace symfold {

TempDir::TempDir() : before_(std::filesystem::current_path()) {
  std::string name = (std::filesystem::temp_directory_path() / "symfold-test-XXXXXX").string();
  path_ = mkdtemp(name.data());
  std::filesystem::current_path(path_);
}

TempDir::~TempDir() {
  std::filesystem::current_path(before_);
  std::filesystem::remove_all(path_);
}

void write_file(const std::string& name, const std::string& text) { std::ofstream(name) << text; }

std::string read_file(const std::string& name) {
  std::ostringstream text;
  text << std::ifstream(name).rdbuf();
  return text.str();
}

}  // namespace symfold
