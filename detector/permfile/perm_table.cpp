#include "detector/permfile/perm_table.h"

#include <cerrno>
#include <climits>
#include <cstring>
#include <fstream>
#include <ios>
#include <locale>
#include <new>
#include <optional>
#include <utility>

#include "detector/symmetry_detection.h"
#include "engines/base/images.h"
#include "engines/base/number_scanner.h"

namespace symfold {
namespace {

using detail::NumberScanner;

// What is wrong with the numbers, and in which line.
struct Fault {
  int line;
  std::string message;
};

// Numbers in memory, handed over as a NumberScanner hands over those of a text.
class StoredNumbers {
 public:
  explicit StoredNumbers(std::span<const TableLine> lines) : lines_(lines) {}

  bool next() {
    ++column_;
    while (line_ < lines_.size() && column_ == lines_[line_].numbers.size()) {
      ++line_;
      column_ = 0;
    }
    return line_ < lines_.size();
  }
  std::optional<int> number(int low, int high) const {
    const int value = lines_[line_].numbers[column_];
    return value < low || value > high ? std::nullopt : std::optional<int>(value);
  }
  std::string shown() const { return std::to_string(lines_[line_].numbers[column_]); }
  int line() const { return static_cast<int>(line_) + 1; }

 private:
  std::span<const TableLine> lines_;
  std::size_t line_ = 0;
  std::size_t column_ = static_cast<std::size_t>(-1);
};

// The rules, for numbers from either source. What it reads goes to `table` unless that is null.
template <class Numbers>
class Reader {
 public:
  Reader(Numbers numbers, PermTable* table) : numbers_(std::move(numbers)), table_(table) {}

  void read() {
    const int partition_count = number("the number of partitions", 0, kMaxPartitions);
    read_layout(partition_count);
    const int base_count = number("the number of bases", 0, INT_MAX);
    for (int b = 0; b < base_count; ++b) read_base(partition_count);
    if (numbers_.next()) fail("the end of the file", numbers_.shown());
  }

 private:
  void read_layout(int partition_count) {
    int total = 0;
    for (int i = 0; i < partition_count; ++i) {
      sizes_.push_back(number("the size of a partition", 0, kMaxStateSize - total));
      total += sizes_.back();
    }
    if (table_ != nullptr) table_->sizes = sizes_;
    int offset = 0;
    for (const int size : sizes_) {
      const int value = number("the offset of a partition", 0, kMaxStateSize);
      if (value != offset) fail("offset " + std::to_string(offset), numbers_.shown());
      if (table_ != nullptr) table_->offsets.push_back(value);
      offset += size;
    }
  }

  void read_base(int partition_count) {
    const int base = number("a base point", -1, partition_count - 1);
    const int record_count = number("the number of records of a base", 0, partition_count);
    if (table_ != nullptr) table_->bases.emplace_back(base, std::vector<ValPerms>());
    for (int r = 0; r < record_count; ++r) {
      ValPerms record;
      record.Value = number("the value of a record", -1, partition_count - 1);
      const int permutation_count = number("the number of permutations of a record", 0, INT_MAX);
      for (int p = 0; p < permutation_count; ++p) {
        read_images(partition_count);
        if (table_ != nullptr) record.Perms.emplace_back(partition_count, images_.data());
      }
      if (table_ != nullptr) table_->bases.back().second.push_back(std::move(record));
    }
  }

  void read_images(int partition_count) {
    images_.clear();
    for (int c = 0; c < partition_count; ++c) {
      images_.push_back(number("an image of a permutation", 0, partition_count - 1));
      const int from_size = sizes_[static_cast<std::size_t>(c)];
      const int to_size = sizes_[static_cast<std::size_t>(images_.back())];
      if (from_size != to_size) {
        fail("a partition of " + std::to_string(from_size) + " bytes as image of partition " +
                 std::to_string(c),
             numbers_.shown() + ", of " + std::to_string(to_size) + " bytes");
      }
    }
    if (!detail::is_permutation(images_)) fail("a permutation", "an image that occurs twice");
  }

  int number(const char* what, int low, int high) {
    if (!numbers_.next()) fail(what, "the end of the file");
    const std::optional<int> value = numbers_.number(low, high);
    if (!value) {
      fail(what + (" (" + std::to_string(low)) + " to " + std::to_string(high) + ")", numbers_.shown());
    }
    return *value;
  }

  [[noreturn]] void fail(const std::string& expected, const std::string& got) const {
    throw Fault{numbers_.line(), "expected " + expected + ", got " + got};
  }

  Numbers numbers_;
  PermTable* table_;
  std::vector<int> sizes_;
  std::vector<int> images_;
};

}  // namespace

std::string read_perm_table(std::istream& in, const std::string& name, PermTable& table) {
  try {
    Reader(NumberScanner(*in.rdbuf()), &table).read();
  } catch (const Fault& fault) {
    return name + ":" + std::to_string(fault.line) + ": error: " + fault.message;
  } catch (const std::ios_base::failure&) {  // a device that fails
    return name + ": error: cannot be read";
  }
  return "";
}

std::string check_lines(std::span<const TableLine> lines) {
  try {
    Reader(StoredNumbers(lines), nullptr).read();
  } catch (const Fault& fault) {
    return fault.message;
  }
  return "";
}

std::string read_perm_file(const std::string& name, PermTable& table) {
  errno = 0;
  std::ifstream in;
  in.imbue(std::locale::classic());
  in.open(name);
  if (!in && errno == ENOMEM) throw std::bad_alloc();
  if (in && in.peek() != std::ifstream::traits_type::eof()) return read_perm_table(in, name, table);
  return name + ": error: cannot be read: " + (errno == 0 ? "empty file" : std::strerror(errno));
}

}  // namespace symfold
