#include "cli/commands.h"

#include <algorithm>
#include <iostream>
#include <nlohmann/json.hpp>
#include <optional>
#include <stdexcept>

#include "cli/advice.h"
#include "cli/figures.h"
#include "components/schreier_sims.h"
#include "detector/permfile/perm_table.h"
#include "host/symmetry/composition_check.h"
#include "host/symmetry/folding.h"

namespace symfold {
namespace {

// Up to so many images in all permutations together their group's order is computed: a few seconds.
constexpr std::size_t kMaxImages = 2'000'000;

struct Report {
  std::size_t cells = 0, bases = 0, permutations = 0;
  std::string fault;                 // of the first permutation that is no symmetry; empty if all are
  std::optional<std::string> order;  // of the group that they generate, if it is cheap
  std::string order_of_model;
};

std::string find_layout_fault(const std::vector<int>& sizes,
                              const std::vector<CompositionCheck::Cell>& cells) {
  if (sizes.size() != cells.size()) {
    return "expected " + counted(cells.size(), "partition") + " as the model has submodels and joins, got " +
           std::to_string(sizes.size());
  }
  for (std::size_t c = 0; c < cells.size(); ++c) {
    if (sizes[c] == cells[c].size) continue;
    return "expected " + std::to_string(cells[c].size) + " bytes for partition " + std::to_string(c) +
           ", which is " + cells[c].name + ", got " + std::to_string(sizes[c]);
  }
  return "";
}

// Checks the permutations of a table whose layout is the model's.
void check_permutations(const PermTable& table, const CompositionCheck& composition, Report& report,
                        std::vector<Permutation>& permutations) {
  const auto name_of = [&](int cell) {
    return cell < 0 ? "-1" : composition.cells()[static_cast<std::size_t>(cell)].name;
  };
  for (const auto& [base, records] : table.bases) {
    ++report.bases;
    for (const ValPerms& record : records) {
      for (const Permutation& permutation : record.Perms) {
        ++report.permutations;
        permutations.push_back(permutation);
        const std::string fault =
            composition.find_fault({permutation.GetP(), static_cast<std::size_t>(permutation.GetN())});
        if (fault.empty() || !report.fault.empty()) continue;
        report.fault =
            "the permutation of base " + name_of(base) + ", value " + name_of(record.Value) + ", " + fault;
      }
    }
  }
}

std::string order_of_group(const std::vector<Permutation>& permutations, std::size_t cells) {
  SchreierSims group(static_cast<int>(cells), static_cast<int>(permutations.size()));
  std::vector<int> base;
  group.Go(permutations, base);
  return group_order(group.OrbitLengths());
}

void print(std::ostream& out, const Report& report) {
  out << counted(report.cells, "cell") << ", " << counted(report.bases, "base") << ", "
      << counted(report.permutations, "permutation") << "\n";
  if (report.order) {
    out << "group order  " << *report.order
        << (*report.order == report.order_of_model ? ", the model's"
                                                   : " of the model's " + report.order_of_model)
        << "\n";
  }
  if (report.fault.empty()) {
    out << "check  passed: every permutation carries the model's composition onto itself\n";
  } else {
    out << "check  FAILED: " << report.fault << "\n";
  }
}

void print_json(std::ostream& out, const CheckOptions& options, const Report& report) {
  nlohmann::ordered_json json = {{"model", options.input.model}, {"file", options.perm_file}};
  json["cells"] = report.cells;
  json["bases"] = report.bases;
  json["permutations"] = report.permutations;
  if (report.order) json["group_order"] = *report.order;
  json["group_order_of_model"] = report.order_of_model;
  json["holds"] = report.fault.empty();
  json["fault"] = report.fault;
  out << json.dump(2) << "\n";
}

}  // namespace

// A permutation file holds no names: its partitions are the model's cells in the order that detection gives
// them, and the order is all that is taken from detection here.
int run_check(const CheckOptions& options, const Streams& streams) {
  const ComposedModel model = read_input(options.input, streams);
  PermTable table;
  const std::string error =
      read_perm_file(perm_file_at(options.perm_file, "check " + options.input.model), table);
  if (!error.empty()) throw std::runtime_error(error);
  const Folding folding(model, Symmetry::kFast);
  streams.err << folding.refusals();
  const CompositionCheck composition(model, folding.order());
  Report report;
  report.cells = composition.cells().size();
  report.order_of_model = group_order(folding.orbit_lengths());
  report.fault = find_layout_fault(table.sizes, composition.cells());
  if (report.fault.empty()) {
    std::vector<Permutation> permutations;
    check_permutations(table, composition, report, permutations);
    if (report.fault.empty() && permutations.size() * report.cells <= kMaxImages) {
      report.order = order_of_group(permutations, report.cells);
    }
  }
  if (options.json) {
    print_json(streams.out, options, report);
  } else {
    print(streams.out, report);
  }
  return report.fault.empty() ? kOk : kCheckFailed;
}

}  // namespace symfold
