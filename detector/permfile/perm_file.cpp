// Saving the tables of detection, and loading them in place of it.

#include <algorithm>
#include <array>
#include <charconv>
#include <ostream>
#include <utility>

#include "detector/permfile/perm_table.h"
#include "detector/symmetry_detection.h"
#include "detector/whole_file.h"

namespace symfold {
namespace {

// True if there is a size, and an image of every permutation, for each partition.
bool is_complete(const SymmetryDetection& tables) {
  const auto partition_count = static_cast<int>(tables.CumPartitionInfo.size());
  const auto is_complete_base = [&](int base) {
    const auto found = tables.VPerms.find(base);
    return found == tables.VPerms.end() || std::ranges::all_of(found->second, [&](const ValPerms& record) {
             return std::ranges::all_of(record.Perms, [&](const Permutation& permutation) {
               return permutation.GetN() >= partition_count;
             });
           });
  };
  return tables.PartitionInfo.size() >= tables.CumPartitionInfo.size() &&
         std::ranges::all_of(tables.Bases, is_complete_base);
}

void append_number(std::string& text, int number) {
  std::array<char, 16> digits;
  text.append(digits.data(), std::to_chars(digits.begin(), digits.end(), number).ptr);
}

// The text of a table's lines. Most images of most permutations are their points: the text of these is copied
// from that of the identity.
class LineText {
 public:
  explicit LineText(std::size_t partition_count) {
    for (std::size_t c = 0; c < partition_count; ++c) {
      begins_.push_back(identity_.size());
      append_number(identity_, static_cast<int>(c));
      identity_ += ' ';
    }
    begins_.push_back(identity_.size());
  }

  // Returns the text of the line, valid until the next call.
  const std::string& of(const TableLines& lines) {
    text_.clear();
    if (lines.permutation() != nullptr) {
      append_images(*lines.permutation());
    } else {
      for (const int number : lines.numbers()) {
        append_number(text_, number);
        if (lines.has_blanks()) text_ += ' ';
      }
    }
    return text_ += '\n';
  }

 private:
  void append_images(const Permutation& permutation) {
    std::size_t end = 0;  // of the images that the text has
    permutation.VisitMoves([&](int point, int image) {
      const auto c = static_cast<std::size_t>(point);
      if (c + 1 >= begins_.size()) return;
      if (end < c) append_identity(end, c);
      append_number(text_, image);
      text_ += ' ';
      end = c + 1;
    });
    append_identity(end, begins_.size() - 1);
  }

  void append_identity(std::size_t from, std::size_t to) {
    text_.append(identity_, begins_[from], begins_[to] - begins_[from]);
  }

  std::string identity_;
  std::vector<std::size_t> begins_;  // of each image in it; at the end its length
  std::string text_;
};

// Calls write(text) for one line after the other.
template <class Write>
void write_lines(SymmetryDetection& tables, Write write) {
  LineText text(tables.CumPartitionInfo.size());
  for (TableLines lines(tables); lines.next();) write(text.of(lines));
}

std::string write_perm_file(const std::string& name, SymmetryDetection& tables) {
  const std::string fault = tables.FindTableFault();
  if (!fault.empty()) return name + ": error: not written: " + fault;
  WholeFile file(name);
  write_lines(tables, [&](const std::string& text) { file.write(text.data(), text.size()); });
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
  write_lines(*this, [&](const std::string& text) { out << text; });
}

std::string SymmetryDetection::FindTableFault() {
  if (is_complete(*this)) return check_tables(*this);
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
