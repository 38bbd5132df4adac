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

class SymmetryDetection;

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

// The lines of a file of a detector's tables, one after the other, so that no copy of large tables is made. A
// base point without an entry gets an empty one.
class TableLines {
 public:
  explicit TableLines(SymmetryDetection& tables) : tables_(tables) {}

  // Goes to the next line, the first one at first. Returns false if there is none.
  bool next();

  // A line is a permutation, of which the file has the images of the partitions, or a list of numbers.
  const Permutation* permutation() const { return permutation_; }  // null for a list
  std::span<const int> numbers() const { return numbers_; }
  bool has_blanks() const { return has_blanks_; }  // a blank ends each number

 private:
  enum class Next {
    kPartitionCount,
    kSizes,
    kOffsets,
    kBaseCount,
    kBase,
    kRecords,
    kRecord,
    kPermutationCount,
    kPermutation
  };

  bool set_list(std::span<const int> numbers, bool has_blanks);
  bool set_number(int number);
  bool set_count(std::size_t count);

  SymmetryDetection& tables_;
  Next next_ = Next::kPartitionCount;
  std::size_t base_ = 0;
  const std::vector<ValPerms>* records_ = nullptr;
  std::size_t record_ = 0;
  std::size_t permutation_index_ = 0;
  const Permutation* permutation_ = nullptr;
  std::span<const int> numbers_;
  int number_ = 0;
  bool has_blanks_ = false;
};

// Checks tables that are to be written by the rules of read_perm_table. Returns an empty text if it would
// read them, otherwise "expected X, got Y". Requires: there is a size, and an image of every permutation, for
// each partition. Stores nothing. Cost: that of a look at every move.
std::string check_tables(SymmetryDetection& tables);

// Does the same as read_perm_table for the file of that name. A file that cannot be read is reported with the
// system's reason, without a line.
std::string read_perm_file(const std::string& name, PermTable& table);

}  // namespace symfold

#endif  // SYMFOLD_DETECTOR_PERMFILE_PERM_TABLE_H
