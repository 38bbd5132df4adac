// Figures as people read them.

#ifndef SYMFOLD_CLI_FIGURES_H
#define SYMFOLD_CLI_FIGURES_H

#include <cstddef>
#include <string>
#include <vector>

namespace symfold {

// "1 join", "2 joins".
std::string counted(std::size_t count, const std::string& noun);

// "0.4 ms", "2.50 s".
std::string duration(double seconds);

// "4 MiB".
std::string mebibytes(std::size_t bytes);

// "1,234,567".
std::string grouped(std::size_t number);

// "12.5 %" of a share of 0.125.
std::string percentage(double share);

// A number with so many digits behind the point.
std::string fixed(double number, int digits);

// The lines of a text, without their ends.
std::vector<std::string> lines_of(const std::string& text);

// The exact order of a group, in decimal: the product of its orbit lengths.
std::string group_order(const std::vector<int>& orbit_lengths);

// The same for people. If it has more than 20 digits: as a product of factorials, or else of powers of
// primes, with its size behind it, "30! (2.65 * 10^32)"; the size alone if the product is long.
std::string group_order_text(const std::vector<int>& orbit_lengths);

// The memory that the process holds, the part of it that shows files, such as the program and its libraries,
// and the most that it has held so far, in bytes.
std::size_t current_memory();
std::size_t file_memory();
std::size_t peak_memory();

}  // namespace symfold

#endif  // SYMFOLD_CLI_FIGURES_H
