#include "cli/figures.h"

#include <sys/resource.h>
#include <unistd.h>

#include <boost/multiprecision/cpp_int.hpp>
#include <fstream>
#include <iomanip>
#include <sstream>

namespace symfold {
namespace {

struct MemoryPages {
  std::size_t resident = 0;
  std::size_t of_files = 0;
};

// The second and the third number of statm (proc(5)); 0 if there is no such file.
MemoryPages memory_pages() {
  std::ifstream statm("/proc/self/statm");
  std::size_t total = 0;
  MemoryPages pages;
  statm >> total >> pages.resident >> pages.of_files;
  return pages;
}

std::size_t page_size() { return static_cast<std::size_t>(sysconf(_SC_PAGESIZE)); }

}  // namespace

std::string counted(std::size_t count, const std::string& noun) {
  return std::to_string(count) + " " + noun + (count == 1 ? "" : "s");
}

std::string fixed(double number, int digits) {
  std::ostringstream text;
  text.exceptions(std::ios::badbit);
  text << std::fixed << std::setprecision(digits) << number;
  return text.str();
}

std::string duration(double seconds) {
  return seconds < 1 ? fixed(seconds * 1000, 1) + " ms" : fixed(seconds, 2) + " s";
}

std::string grouped(std::size_t number) {
  std::string text = std::to_string(number);
  for (std::size_t end = text.size(); end > 3; end -= 3) text.insert(end - 3, ",");
  return text;
}

std::string percentage(double share) { return fixed(share * 100, 1) + " %"; }

std::string mebibytes(std::size_t bytes) { return std::to_string(bytes >> 20) + " MiB"; }

std::vector<std::string> lines_of(const std::string& text) {
  std::vector<std::string> lines;
  std::istringstream in(text);
  for (std::string line; std::getline(in, line);) lines.push_back(line);
  return lines;
}

std::string group_order(const std::vector<int>& orbit_lengths) {
  boost::multiprecision::cpp_int order = 1;
  for (const int length : orbit_lengths) order *= length;
  return order.str();
}

std::size_t current_memory() { return memory_pages().resident * page_size(); }

std::size_t file_memory() { return memory_pages().of_files * page_size(); }

std::size_t peak_memory() {
  rusage usage{};
  getrusage(RUSAGE_SELF, &usage);
  return static_cast<std::size_t>(usage.ru_maxrss) * 1024;
}

}  // namespace symfold
