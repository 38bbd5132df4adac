#include "cli/figures.h"

#include <sys/resource.h>
#include <unistd.h>

#include <boost/multiprecision/cpp_int.hpp>
#include <fstream>
#include <functional>
#include <iomanip>
#include <locale>
#include <map>
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
  statm.imbue(std::locale::classic());
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
  text.imbue(std::locale::classic());
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

namespace {

constexpr std::size_t kMaxPlainDigits = 20;
constexpr std::size_t kMaxProductLength = 80;

void multiply_by(std::string& product, const std::string& factor) {
  product += (product.empty() ? "" : " * ") + factor;
}

// "5! * 3!" if the lengths are runs n, n-1, ..., 2, as those of interchangeable things are; otherwise empty.
// Taking the longest run for the largest number is no restriction: if the numbers are such runs at all, the
// run of the largest one goes down to 2, and the others remain runs without it.
std::string factorials(const std::vector<int>& orbit_lengths) {
  std::map<int, int, std::greater<>> counts;
  for (const int length : orbit_lengths) ++counts[length];
  counts.erase(1);
  std::map<int, int, std::greater<>> powers;
  while (!counts.empty()) {
    const int largest = counts.begin()->first;
    for (int n = largest; n >= 2; --n) {
      const auto found = counts.find(n);
      if (found == counts.end()) return "";
      if (--found->second == 0) counts.erase(found);
    }
    ++powers[largest];
  }
  std::string product;
  for (const auto& [n, power] : powers) {
    const std::string factor = std::to_string(n) + "!";
    multiply_by(product, power > 1 ? "(" + factor + ")^" + std::to_string(power) : factor);
  }
  return product;
}

// "2^26 * 3^14 * 29", by trial division: a length is at most the number of vertices of a graph.
std::string prime_powers(const std::vector<int>& orbit_lengths) {
  std::map<int, int> powers;
  for (int length : orbit_lengths) {
    for (int divisor = 2; divisor <= length / divisor; ++divisor) {
      for (; length % divisor == 0; length /= divisor) ++powers[divisor];
    }
    if (length > 1) ++powers[length];
  }
  std::string product;
  for (const auto& [prime, power] : powers) {
    multiply_by(product, std::to_string(prime) + (power > 1 ? "^" + std::to_string(power) : ""));
  }
  return product;
}

// "2.65 * 10^32". The first digits are few enough for a double.
std::string size_text(const std::string& digits) {
  const double start = std::stod(digits.substr(0, 1) + "." + digits.substr(1, 12));
  const std::string rounded = fixed(start, 2);
  const bool is_carried = rounded.size() > 4;
  return (is_carried ? "1.00" : rounded) + " * 10^" + std::to_string(digits.size() - (is_carried ? 0 : 1));
}

}  // namespace

std::string group_order_text(const std::vector<int>& orbit_lengths) {
  std::string digits = group_order(orbit_lengths);
  if (digits.size() <= kMaxPlainDigits) return digits;
  std::string product = factorials(orbit_lengths);
  if (product.empty() || product.size() > kMaxProductLength) product = prime_powers(orbit_lengths);
  return product.size() > kMaxProductLength ? size_text(digits) : product + " (" + size_text(digits) + ")";
}

std::size_t current_memory() { return memory_pages().resident * page_size(); }

std::size_t file_memory() { return memory_pages().of_files * page_size(); }

std::size_t peak_memory() {
  rusage usage{};
  getrusage(RUSAGE_SELF, &usage);
  return static_cast<std::size_t>(usage.ru_maxrss) * 1024;
}

}  // namespace symfold
