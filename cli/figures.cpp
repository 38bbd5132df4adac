#include "cli/figures.h"

#include <sys/resource.h>

#include <boost/multiprecision/cpp_int.hpp>
#include <iomanip>
#include <sstream>

namespace symfold {

std::string counted(std::size_t count, const std::string& noun) {
  return std::to_string(count) + " " + noun + (count == 1 ? "" : "s");
}

std::string duration(double seconds) {
  std::ostringstream text;
  text << std::fixed;
  if (seconds < 1) {
    text << std::setprecision(1) << seconds * 1000 << " ms";
  } else {
    text << std::setprecision(2) << seconds << " s";
  }
  return text.str();
}

std::string mebibytes(std::size_t bytes) { return std::to_string(bytes >> 20) + " MiB"; }

std::string group_order(const std::vector<int>& orbit_lengths) {
  boost::multiprecision::cpp_int order = 1;
  for (const int length : orbit_lengths) order *= length;
  return order.str();
}

std::size_t peak_memory() {
  rusage usage{};
  getrusage(RUSAGE_SELF, &usage);
  return static_cast<std::size_t>(usage.ru_maxrss) * 1024;
}

}  // namespace symfold
