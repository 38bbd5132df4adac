#include "cli/show_command.h"

#include <iomanip>
#include <iostream>
#include <nlohmann/json.hpp>
#include <sstream>

#include "cli/exit_codes.h"
#include "cli/figures.h"
#include "host/symmetry/state_labeller.h"

namespace symfold {
namespace {

std::string cycles(const Permutation& permutation) {
  std::ostringstream text;
  text << permutation;
  return text.str();
}

nlohmann::ordered_json as_json(const SymmetryDetection& tables) {
  nlohmann::ordered_json result;
  result["state_bytes"] = tables.TotalStateSize;
  result["partitions"] = nlohmann::ordered_json::array();
  for (std::size_t i = 0; i < tables.PartitionInfo.size(); ++i) {
    result["partitions"].push_back(
        {{"offset", tables.CumPartitionInfo[i]}, {"bytes", tables.PartitionInfo[i]}});
  }
  result["bases"] = nlohmann::ordered_json::array();
  for (const int base : tables.Bases) {
    nlohmann::ordered_json records = nlohmann::ordered_json::array();
    for (const ValPerms& record : tables.VPerms.at(base)) {
      nlohmann::ordered_json perms = nlohmann::ordered_json::array();
      for (const Permutation& permutation : record.Perms) perms.push_back(cycles(permutation));
      records.push_back({{"value", record.Value}, {"permutations", perms}});
    }
    result["bases"].push_back({{"base", base}, {"records", records}});
  }
  return result;
}

void print(std::ostream& out, const SymmetryDetection& tables) {
  out << counted(tables.PartitionInfo.size(), "partition") << ", "
      << counted(static_cast<std::size_t>(tables.TotalStateSize), "byte") << " per state, "
      << counted(tables.Bases.size(), "base") << "\n\n";
  out << "partition  offset  bytes\n";
  for (std::size_t i = 0; i < tables.PartitionInfo.size(); ++i) {
    out << std::setw(9) << i << std::setw(8) << tables.CumPartitionInfo[i] << std::setw(7)
        << tables.PartitionInfo[i] << "\n";
  }
  for (const int base : tables.Bases) {
    const std::vector<ValPerms>& records = tables.VPerms.at(base);
    out << "\nbase " << base << ": " << counted(records.size(), "other point") << " in its orbit\n";
    for (const ValPerms& record : records) {
      out << "  from " << record.Value << " by";
      for (const Permutation& permutation : record.Perms) out << " " << permutation;
      out << "\n";
    }
  }
}

}  // namespace

int run_show(const ShowOptions& options, const Streams& streams) {
  const StateLabeller labeller(options.perm_file, false);
  if (options.json) {
    streams.out << as_json(labeller.detector()).dump(2) << "\n";
  } else {
    print(streams.out, labeller.detector());
  }
  return kOk;
}

}  // namespace symfold
