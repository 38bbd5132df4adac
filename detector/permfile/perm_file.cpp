// Saving the tables of detection, and loading them in place of it.

#include <algorithm>
#include <array>
#include <charconv>
#include <climits>
#include <deque>
#include <ostream>
#include <utility>

#include "detector/permfile/perm_table.h"
#include "detector/symmetry_detection.h"
#include "detector/whole_file.h"

namespace symfold {
namespace {

// A detector's tables as the lines of the file. Views them, and gives a base point without an entry an empty
// one.
class TableLines {
 public:
  explicit TableLines(SymmetryDetection& tables) {
    const std::size_t partition_count = tables.CumPartitionInfo.size();
    is_complete_ = tables.PartitionInfo.size() >= partition_count;
    add(partition_count);
    add(tables.PartitionInfo.data(), std::min(partition_count, tables.PartitionInfo.size()));
    add(tables.CumPartitionInfo.data(), partition_count);
    add(tables.Bases.size());
    for (const int& base : tables.Bases) add_base(base, tables.VPerms[base], partition_count);
  }

  // True if there is a size, and an image of every permutation, for each partition.
  bool is_complete() const { return is_complete_; }

  const std::vector<TableLine>& lines() const { return lines_; }

 private:
  // The table keeps the address of `base`.
  void add_base(const int& base, const std::vector<ValPerms>& records, std::size_t partition_count) {
    add(&base, 1, false);
    add(records.size());
    for (const ValPerms& record : records) {
      add(&record.Value, 1, false);
      add(record.Perms.size());
      for (const Permutation& permutation : record.Perms) {
        const auto image_count = static_cast<std::size_t>(std::max(permutation.GetN(), 0));
        is_complete_ = is_complete_ && image_count >= partition_count;
        add(permutation.GetP(), std::min(image_count, partition_count));
      }
    }
  }

  void add(std::size_t count) {
    counts_.push_back(static_cast<int>(std::min(count, std::size_t{INT_MAX})));
    add(&counts_.back(), 1, false);
  }

  void add(const int* numbers, std::size_t count, bool is_list = true) {
    lines_.push_back({{numbers, count}, is_list});
  }

  std::deque<int> counts_;
  std::vector<TableLine> lines_;
  bool is_complete_;
};

// Calls write(text) for one line after the other.
template <class Write>
void write_lines(const std::vector<TableLine>& lines, Write write) {
  std::string text;
  for (const TableLine& line : lines) {
    text.clear();
    for (const int number : line.numbers) {
      std::array<char, 16> digits;
      text.append(digits.data(), std::to_chars(digits.begin(), digits.end(), number).ptr);
      if (line.is_list) text += ' ';
    }
    text += '\n';
    write(text);
  }
}

std::string write_perm_file(const std::string& name, SymmetryDetection& tables) {
  const std::string fault = tables.FindTableFault();
  if (!fault.empty()) return name + ": error: not written: " + fault;
  WholeFile file(name);
  write_lines(TableLines(tables).lines(),
              [&](const std::string& text) { file.write(text.data(), text.size()); });
  file.commit();
  return file.error();
}

void print_base(std::ostream& out, int base, const std::vector<ValPerms>& records) {
  out << "Base: " << std::to_string(base) << std::endl
      << "\tNum Vperm: " << std::to_string(records.size()) << std::endl;
  for (const ValPerms& record : records) {
    out << "\tvalue: " << std::to_string(record.Value)
        << "  num_perm: " << std::to_string(record.Perms.size()) << std::endl;
    for (const Permutation& permutation : record.Perms) out << "\t\tPerm: " << permutation << std::endl;
  }
}

}  // namespace

void SymmetryDetection::WritePermFile(std::string& name) {
  PermFileError = write_perm_file(name, *this);
  if (!PermFileError.empty()) Refuse(PermFileError);
}

void SymmetryDetection::WriteTables(std::ostream& out) {
  write_lines(TableLines(*this).lines(), [&](const std::string& text) { out << text; });
}

std::string SymmetryDetection::FindTableFault() {
  const TableLines lines(*this);
  if (lines.is_complete()) return check_lines(lines.lines());
  return "expected tables of " + std::to_string(CumPartitionInfo.size()) + " partitions";
}

void SymmetryDetection::ReadPermFile(std::string& name) {
  PermTable table;
  PermFileError = read_perm_file(name, table);
  if (!PermFileError.empty()) {
    Refuse(PermFileError);
    return;
  }
  PartitionInfo.insert(PartitionInfo.end(), table.sizes.begin(), table.sizes.end());
  CumPartitionInfo.insert(CumPartitionInfo.end(), table.offsets.begin(), table.offsets.end());
  StaticCumPartitionInfo.insert(StaticCumPartitionInfo.end(), table.offsets.begin(), table.offsets.end());
  diagnostics() << "Number of bases: " << std::to_string(table.bases.size()) << std::endl;
  for (auto& [base, records] : table.bases) {
    print_base(diagnostics(), base, records);
    Bases.push_back(base);
    VPerms[base] = std::move(records);
  }
}

}  // namespace symfold
