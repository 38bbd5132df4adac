#include "detector/permfile/perm_table.h"

#include <cerrno>
#include <climits>
#include <cstring>
#include <fstream>
#include <ios>
#include <optional>

#include "detector/symmetry_detection.h"
#include "engines/base/number_scanner.h"

namespace symfold {
namespace {

using detail::NumberScanner;

constexpr std::size_t kMaxTokenShown = 24;

// What is wrong with the file, and in which line.
struct Fault {
  int line;
  std::string message;
};

class Reader {
 public:
  Reader(std::istream& in, PermTable& table) : scanner_(*in.rdbuf()), table_(table) {}

  void read() {
    const int partition_count = number("the number of partitions", 0, kMaxPartitions);
    read_layout(partition_count);
    const int base_count = number("the number of bases", 0, INT_MAX);
    for (int b = 0; b < base_count; ++b) read_base(partition_count);
    if (scanner_.next()) fail("the end of the file", token());
  }

 private:
  void read_layout(int partition_count) {
    int total = 0;
    for (int i = 0; i < partition_count; ++i) {
      table_.sizes.push_back(number("the size of a partition", 0, kMaxStateSize - total));
      total += table_.sizes.back();
    }
    int offset = 0;
    for (const int size : table_.sizes) {
      const int value = number("the offset of a partition", 0, kMaxStateSize);
      if (value != offset) fail("offset " + std::to_string(offset), token());
      table_.offsets.push_back(value);
      offset += size;
    }
  }

  void read_base(int partition_count) {
    const int base = number("a base point", -1, partition_count - 1);
    const int record_count = number("the number of records of a base", 0, partition_count);
    table_.bases.emplace_back(base, std::vector<ValPerms>());
    for (int r = 0; r < record_count; ++r) {
      ValPerms record;
      record.Value = number("the value of a record", -1, partition_count - 1);
      const int permutation_count = number("the number of permutations of a record", 0, INT_MAX);
      for (int p = 0; p < permutation_count; ++p) record.Perms.push_back(read_permutation(partition_count));
      table_.bases.back().second.push_back(std::move(record));
    }
  }

  Permutation read_permutation(int partition_count) {
    images_.clear();
    for (int c = 0; c < partition_count; ++c) {
      images_.push_back(number("an image of a permutation", 0, partition_count - 1));
      const auto from = static_cast<std::size_t>(c);
      const auto to = static_cast<std::size_t>(images_.back());
      if (table_.sizes[from] != table_.sizes[to]) {
        fail("a partition of " + std::to_string(table_.sizes[from]) + " bytes as image of partition " +
                 std::to_string(c),
             token() + ", of " + std::to_string(table_.sizes[to]) + " bytes");
      }
    }
    Permutation permutation(partition_count, images_.data());
    if (!permutation.IsPermutation()) fail("a permutation", "an image that occurs twice");
    return permutation;
  }

  int number(const std::string& what, int low, int high) {
    if (!scanner_.next()) fail(what, "the end of the file");
    const std::optional<int> value = scanner_.number(low, high);
    if (!value) fail(what + " (" + std::to_string(low) + " to " + std::to_string(high) + ")", token());
    return *value;
  }

  // The text of the token, cut if it is longer than any number.
  std::string token() const { return scanner_.token().substr(0, kMaxTokenShown); }

  [[noreturn]] void fail(const std::string& expected, const std::string& got) const {
    throw Fault{scanner_.line(), "expected " + expected + ", got " + got};
  }

  NumberScanner scanner_;
  PermTable& table_;
  std::vector<int> images_;
};

}  // namespace

std::string read_perm_table(std::istream& in, const std::string& name, PermTable& table) {
  try {
    Reader(in, table).read();
  } catch (const Fault& fault) {
    return name + ":" + std::to_string(fault.line) + ": error: " + fault.message;
  } catch (const std::ios_base::failure&) {  // a device that fails
    return name + ": error: cannot be read";
  }
  return "";
}

std::string read_perm_file(const std::string& name, PermTable& table) {
  errno = 0;
  std::ifstream in(name);
  if (in && in.peek() != std::ifstream::traits_type::eof()) return read_perm_table(in, name, table);
  return name + ": error: cannot be read: " + (errno == 0 ? "empty file" : std::strerror(errno));
}

}  // namespace symfold
