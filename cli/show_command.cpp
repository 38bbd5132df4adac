#include "cli/commands.h"

#include <iomanip>
#include <iostream>
#include <nlohmann/json.hpp>
#include <numeric>
#include <sstream>
#include <stdexcept>

#include "cli/advice.h"
#include "cli/figures.h"
#include "detector/labelling_tables.h"
#include "detector/permfile/perm_table.h"

namespace symfold {
namespace {

std::string cycles(const Permutation& permutation) {
  std::ostringstream text;
  text << permutation;
  return text.str();
}

int state_bytes(const LabellingTables& tables) {
  return std::accumulate(tables.sizes.begin(), tables.sizes.end(), 0);
}

nlohmann::ordered_json as_json(const LabellingTables& tables) {
  nlohmann::ordered_json result = {{"state_bytes", state_bytes(tables)}};
  result["partitions"] = nlohmann::ordered_json::array();
  for (std::size_t i = 0; i < tables.sizes.size(); ++i) {
    result["partitions"].push_back({{"offset", tables.offsets[i]}, {"bytes", tables.sizes[i]}});
  }
  result["bases"] = nlohmann::ordered_json::array();
  for (const auto& [base, base_records] : tables.bases) {
    nlohmann::ordered_json records = nlohmann::ordered_json::array();
    for (const ValPerms& record : base_records) {
      nlohmann::ordered_json perms = nlohmann::ordered_json::array();
      for (const Permutation& permutation : record.Perms) perms.push_back(cycles(permutation));
      records.push_back({{"value", record.Value}, {"permutations", perms}});
    }
    result["bases"].push_back({{"base", base}, {"records", records}});
  }
  return result;
}

void print(std::ostream& out, const LabellingTables& tables) {
  out << counted(tables.sizes.size(), "partition") << ", "
      << counted(static_cast<std::size_t>(state_bytes(tables)), "byte") << " per state, "
      << counted(tables.bases.size(), "base") << "\n\n";
  out << "partition  offset  bytes\n";
  for (std::size_t i = 0; i < tables.sizes.size(); ++i) {
    out << std::setw(9) << i << std::setw(8) << tables.offsets[i] << std::setw(7) << tables.sizes[i] << "\n";
  }
  for (const auto& [base, records] : tables.bases) {
    if (!out) return;
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
  PermTable table;
  const std::string error = read_perm_file(perm_file_at(options.perm_file, "show"), table);
  if (!error.empty()) throw std::runtime_error(error);
  const LabellingTables tables(table);
  if (options.json) {
    streams.out << as_json(tables).dump(2) << "\n";
  } else {
    print(streams.out, tables);
  }
  return kOk;
}

}  // namespace symfold
