#include "detector/permfile/perm_table.h"

#include <algorithm>
#include <cerrno>
#include <climits>
#include <cstring>
#include <fstream>
#include <ios>
#include <locale>
#include <new>
#include <optional>
#include <type_traits>
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
  explicit StoredNumbers(SymmetryDetection& tables)
      : lines_(tables), partition_count_(tables.CumPartitionInfo.size()) {}

  bool next() {
    while (next_ == length_) {
      if (!next_line()) return false;
    }
    ++next_;
    return true;
  }
  std::optional<int> number(int low, int high) const {
    const int value = this->value();
    return value < low || value > high ? std::nullopt : std::optional<int>(value);
  }
  std::string shown() const { return std::to_string(value()); }
  int line() const { return 0; }

  // Passes over the next line and returns true if it is a sound permutation between partitions of equal size.
  bool skip_sound_permutation(const std::vector<int>& sizes) {
    if (!next_line()) return false;
    const Permutation& permutation = *lines_.permutation();
    if (permutation.GetN() != static_cast<int>(sizes.size()) || !permutation.IsPermutation()) return false;
    bool keeps_sizes = true;
    permutation.VisitMoves([&](int c, int image) {
      keeps_sizes =
          keeps_sizes && sizes[static_cast<std::size_t>(c)] == sizes[static_cast<std::size_t>(image)];
    });
    if (keeps_sizes) next_ = length_;
    return keeps_sizes;
  }

 private:
  bool next_line() {
    if (!lines_.next()) return false;
    length_ = lines_.permutation() != nullptr ? partition_count_ : lines_.numbers().size();
    next_ = 0;
    return true;
  }
  int value() const {
    const std::size_t column = next_ - 1;
    const Permutation* const permutation = lines_.permutation();
    return permutation != nullptr ? (*permutation)[static_cast<int>(column)] : lines_.numbers()[column];
  }

  TableLines lines_;
  std::size_t partition_count_;
  std::size_t length_ = 0;  // of the line
  std::size_t next_ = 0;    // column
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
        if constexpr (std::is_same_v<Numbers, StoredNumbers>) {
          if (numbers_.skip_sound_permutation(sizes_)) continue;
        }
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

bool TableLines::set_list(std::span<const int> numbers, bool has_blanks) {
  permutation_ = nullptr;
  numbers_ = numbers;
  has_blanks_ = has_blanks;
  return true;
}

bool TableLines::set_number(int number) {
  number_ = number;
  return set_list({&number_, 1}, false);
}

bool TableLines::set_count(std::size_t count) {
  return set_number(static_cast<int>(std::min(count, std::size_t{INT_MAX})));
}

bool TableLines::next() {
  switch (next_) {
    case Next::kPartitionCount:
      next_ = Next::kSizes;
      return set_count(tables_.CumPartitionInfo.size());
    case Next::kSizes:
      next_ = Next::kOffsets;
      return set_list(std::span(tables_.PartitionInfo).first(tables_.CumPartitionInfo.size()), true);
    case Next::kOffsets:
      next_ = Next::kBaseCount;
      return set_list(tables_.CumPartitionInfo, true);
    case Next::kBaseCount:
      next_ = Next::kBase;
      return set_count(tables_.Bases.size());
    case Next::kBase:
      if (base_ == tables_.Bases.size()) return false;
      records_ = &tables_.VPerms[tables_.Bases[base_]];
      record_ = 0;
      next_ = Next::kRecords;
      return set_number(tables_.Bases[base_++]);
    case Next::kRecords:
      next_ = records_->empty() ? Next::kBase : Next::kRecord;
      return set_count(records_->size());
    case Next::kRecord:
      permutation_index_ = 0;
      next_ = Next::kPermutationCount;
      return set_number((*records_)[record_].Value);
    case Next::kPermutationCount:
      next_ = Next::kPermutation;
      set_count((*records_)[record_].Perms.size());
      break;
    case Next::kPermutation:
      permutation_ = &(*records_)[record_].Perms[permutation_index_++];
      break;
  }
  if (permutation_index_ == (*records_)[record_].Perms.size()) {
    next_ = ++record_ == records_->size() ? Next::kBase : Next::kRecord;
  }
  return true;
}

std::string check_tables(SymmetryDetection& tables) {
  try {
    Reader(StoredNumbers(tables), nullptr).read();
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
