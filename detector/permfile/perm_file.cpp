// Saving the tables of detection, and loading them in place of it.

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <ostream>
#include <utility>

#include "detector/permfile/perm_table.h"
#include "detector/symmetry_detection.h"

namespace symfold {
namespace {

// A line of `count` numbers, each followed by a blank.
template <class NumberAt>
void write_list(std::ostream& out, std::size_t count, NumberAt number_at) {
  std::string line;
  for (std::size_t i = 0; i < count; ++i) {
    line += std::to_string(number_at(i));
    line += ' ';
  }
  out << line << "\n";
}

void write_base(std::ostream& out, int base, const std::vector<ValPerms>& records,
                std::size_t partition_count) {
  out << base << "\n" << records.size() << "\n";
  for (const ValPerms& record : records) {
    out << record.Value << "\n" << record.Perms.size() << "\n";
    for (const Permutation& permutation : record.Perms) {
      write_list(out, partition_count, [&](std::size_t i) { return permutation[static_cast<int>(i)]; });
    }
  }
}

// Writes a file so that nobody ever sees half of it: beside its place, flushed, then renamed. What exists and
// is no regular file (a device, a pipe) is written directly. Returns what went wrong, or nothing.
template <class Fill>
std::string write_whole_file(const std::string& name, Fill fill) {
  namespace fs = std::filesystem;
  std::error_code error;
  const fs::file_status status = fs::status(name, error);
  const bool is_direct = fs::exists(status) && !fs::is_regular_file(status);
  const std::string written_name = is_direct ? name : name + ".partial";
  errno = 0;
  std::ofstream out(written_name, std::ios::trunc);
  if (out) fill(out);
  out.close();
  if (!out) {
    const std::string reason = errno == 0 ? "write failed" : std::strerror(errno);
    if (!is_direct) fs::remove(written_name, error);
    return name + ": error: cannot be written: " + reason;
  }
  if (is_direct) return "";
  fs::rename(written_name, name, error);
  if (!error) return "";
  const std::string reason = error.message();
  fs::remove(written_name, error);
  return name + ": error: cannot be written: " + reason;
}

void print_base(std::ostream& out, int base, const std::vector<ValPerms>& records) {
  out << "Base: " << base << std::endl << "\tNum Vperm: " << records.size() << std::endl;
  for (const ValPerms& record : records) {
    out << "\tvalue: " << record.Value << "  num_perm: " << record.Perms.size() << std::endl;
    for (const Permutation& permutation : record.Perms) out << "\t\tPerm: " << permutation << std::endl;
  }
}

}  // namespace

void SymmetryDetection::WritePermFile(std::string& name) {
  PermFileError = HasWritableTables()
                      ? write_whole_file(name, [this](std::ostream& out) { WriteTables(out); })
                      : name + ": error: not written: expected tables of " +
                            std::to_string(CumPartitionInfo.size()) + " partitions";
  if (!PermFileError.empty()) Refuse(PermFileError);
}

bool SymmetryDetection::HasWritableTables() {
  const std::size_t partition_count = CumPartitionInfo.size();
  bool is_sound = PartitionInfo.size() >= partition_count;
  for (const int base : Bases) {
    for (const ValPerms& record : VPerms[base]) {
      for (const Permutation& permutation : record.Perms) {
        is_sound = is_sound && static_cast<std::size_t>(permutation.GetN()) >= partition_count;
      }
    }
  }
  return is_sound;
}

void SymmetryDetection::WriteTables(std::ostream& out) {
  const std::size_t partition_count = CumPartitionInfo.size();
  out << partition_count << "\n";
  write_list(out, partition_count, [this](std::size_t i) { return PartitionInfo[i]; });
  write_list(out, partition_count, [this](std::size_t i) { return CumPartitionInfo[i]; });
  out << Bases.size() << "\n";
  for (const int base : Bases) write_base(out, base, VPerms[base], partition_count);
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
  diagnostics() << "Number of bases: " << table.bases.size() << std::endl;
  for (auto& [base, records] : table.bases) {
    print_base(diagnostics(), base, records);
    Bases.push_back(base);
    VPerms[base] = std::move(records);
  }
}

}  // namespace symfold
