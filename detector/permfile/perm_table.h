// The content of a permutation file, read and checked apart from any detector.
//
// The file is text: decimal integers between white space. In order: the number N of partitions; their N sizes
// in bytes; their N offsets, the running sums of the sizes; the number of bases; per base the base point, the
// number of its records and, per record, its value, the number of its permutations and the N images of each.

#ifndef SYMFOLD_DETECTOR_PERMFILE_PERM_TABLE_H
#define SYMFOLD_DETECTOR_PERMFILE_PERM_TABLE_H

#include <istream>
#include <span>
#include <string>
#include <utility>
#include <vector>

#include "components/permutation.h"

namespace symfold {

struct PermTable {
  std::vector<int> sizes;
  std::vector<int> offsets;
  std::vector<std::pair<int, std::vector<ValPerms>>> bases;  // base point and its records, in file order
};

// The largest number of bytes of a state. There are at most kMaxPartitions partitions (symmetry_detection.h).
inline constexpr int kMaxStateSize = 1 << 26;

// Reads a table to its end. Returns an empty text for a sound one; otherwise "name:line: error: expected X,
// got Y", and the table holds what was read so far. Refused are: anything but integers, too few or too many
// of them; negative or absurd counts; offsets that are not the running sums; points and values outside -1 ..
// N-1; more records under a base than partitions; images that are no permutation, or that join partitions of
// unequal size. Memory and time are linear in the length of the input.
std::string read_perm_table(std::istream& in, const std::string& name, PermTable& table);

// One line of the file. A list ends each of its numbers with a blank; every other line holds one number.
struct TableLine {
  std::span<const int> numbers;
  bool is_list;
};

// Checks lines that are to be written by the rules of read_perm_table. Returns an empty text if it would read
// them, otherwise "expected X, got Y". Makes no text and stores nothing.
std::string check_lines(std::span<const TableLine> lines);

// Does the same as read_perm_table for the file of that name. A file that cannot be read is reported with the
// system's reason, without a line.
std::string read_perm_file(const std::string& name, PermTable& table);

}  // namespace symfold

#endif  // SYMFOLD_DETECTOR_PERMFILE_PERM_TABLE_H
