#include "cli/exploration_report.h"

#include <algorithm>
#include <array>
#include <iomanip>
#include <nlohmann/json.hpp>
#include <ostream>

#include "cli/figures.h"

namespace symfold {
namespace {

struct Row {
  std::string title;
  std::vector<std::string> cells;
};

double states_per_second(const ExplorationResult& result) {
  const ExplorationFigures& figures = result.figures;
  return figures.seconds > 0 ? static_cast<double>(figures.expanded) / figures.seconds : 0;
}

// Of the packed states alone the figures say state_bytes; this is with the index.
double bytes_per_state(const ExplorationFigures& figures) {
  return static_cast<double>(figures.memory) / static_cast<double>(std::max<std::size_t>(figures.states, 1));
}

template <class Cell>
Row row(const std::string& title, const std::vector<ExplorationResult>& results, Cell cell) {
  Row row{title, {}};
  for (const ExplorationResult& result : results) row.cells.push_back(cell(result));
  return row;
}

Row count_row(const std::string& title, const std::vector<ExplorationResult>& results,
              std::size_t ExplorationFigures::*count) {
  return row(title, results, [&](const auto& result) { return grouped(result.figures.*count); });
}

std::vector<Row> count_rows(const std::vector<ExplorationResult>& results) {
  std::vector<Row> rows{count_row("states", results, &ExplorationFigures::states),
                        count_row("transitions", results, &ExplorationFigures::transitions),
                        count_row("deadlocks", results, &ExplorationFigures::deadlocks),
                        count_row("self-loops", results, &ExplorationFigures::self_loops),
                        count_row("  made by folding", results, &ExplorationFigures::folded_self_loops),
                        count_row("depth", results, &ExplorationFigures::depth)};
  for (std::size_t i = 0; i < results[0].labels.size(); ++i) {
    rows.push_back(row("label \"" + results[0].labels[i] + '"', results,
                       [&](const auto& result) { return grouped(result.figures.label_counts[i]); }));
  }
  return rows;
}

std::vector<Row> cost_rows(const std::vector<ExplorationResult>& results) {
  return {
      row("time", results, [](const auto& result) { return duration(result.seconds()); }),
      row("  of detection", results, [](const auto& result) { return duration(result.detection_seconds); }),
      row("states per second", results,
          [](const auto& result) { return grouped(static_cast<std::size_t>(states_per_second(result))); }),
      row("bytes per state", results,
          [](const auto& result) { return fixed(bytes_per_state(result.figures), 1); }),
      count_row("  packed", results, &ExplorationFigures::state_bytes),
      row("peak memory", results, [](const auto& result) { return mebibytes(result.peak_memory); })};
}

void print_table(std::ostream& out, const std::vector<Row>& rows) {
  std::size_t title_width = 0;
  std::vector<std::size_t> widths(rows[0].cells.size());
  for (const Row& row : rows) {
    title_width = std::max(title_width, row.title.size());
    for (std::size_t i = 0; i < widths.size(); ++i) widths[i] = std::max(widths[i], row.cells[i].size());
  }
  for (const Row& row : rows) {
    out << row.title << std::string(title_width - row.title.size(), ' ');
    for (std::size_t i = 0; i < widths.size(); ++i) {
      out << "  " << std::string(widths[i] - row.cells[i].size(), ' ') << row.cells[i];
    }
    out << "\n";
  }
}

void print_range_cells(std::ostream& out, const std::vector<std::string>& cells) {
  constexpr std::array<int, 6> kWidths = {6, 16, 16, 11, 11, 11};
  for (std::size_t i = 0; i < cells.size(); ++i) out << std::setw(kWidths[i]) << cells[i];
  out << std::endl;
}

const char* name_of(Ending ending) {
  constexpr std::array<const char*, 6> kNames = {"under way",    "complete",   "state limit",
                                                 "memory limit", "time limit", "interrupted"};
  return kNames[static_cast<std::size_t>(ending)];
}

}  // namespace

double reduction(const ExplorationResult& full, const ExplorationResult& folded) {
  if (!full.is_complete() || !folded.is_complete()) return 0;
  return static_cast<double>(full.figures.states) / static_cast<double>(folded.figures.states);
}

void print_results(std::ostream& out, const std::vector<ExplorationResult>& results) {
  std::vector<Row> rows{row("symmetry", results, [](const auto& result) { return result.symmetry; })};
  for (Row& counts : count_rows(results)) rows.push_back(std::move(counts));
  for (Row& costs : cost_rows(results)) rows.push_back(std::move(costs));
  print_table(out, rows);
  const ExplorationResult& folded = results.back();
  if (folded.group_order.empty()) return;
  out << "reduction  ";
  const double factor = reduction(results.front(), folded);
  if (results.size() == 2 && factor > 0) out << fixed(factor, 2) << " times, ";
  out << "at most " << folded.group_order << " times, the order of the symmetry group\n";
}

void print_range_head(std::ostream& out, const std::string& parameter) {
  print_range_cells(out, {parameter, "full", "folded", "reduction", "full in", "folded in"});
}

void print_range_row(std::ostream& out, long value, const std::vector<ExplorationResult>& results) {
  std::vector<std::string> cells{std::to_string(value), "-", "-", "-", "-", "-"};
  for (const ExplorationResult& result : results) {
    if (!result.is_complete()) continue;
    const std::size_t column = result.symmetry == "off" ? 1 : 2;
    cells[column] = grouped(result.figures.states);
    cells[column + 3] = duration(result.seconds());
  }
  const double factor = results.empty() ? 0 : reduction(results.front(), results.back());
  if (results.size() == 2 && factor > 0) cells[3] = fixed(factor, 2);
  print_range_cells(out, cells);
}

std::string ending_text(const ExplorationResult& result) {
  return "exploration with symmetry " + result.symmetry + " not complete (" + name_of(result.ending) +
         "): " + grouped(result.figures.states) + " states reached, " + grouped(result.figures.frontier()) +
         " of them in the frontier, not expanded";
}

nlohmann::ordered_json results_json(const std::vector<ExplorationResult>& results) {
  nlohmann::ordered_json runs = nlohmann::ordered_json::array();
  for (const ExplorationResult& result : results) {
    const ExplorationFigures& figures = result.figures;
    nlohmann::ordered_json run = {{"symmetry", result.symmetry},
                                  {"ending", name_of(result.ending)},
                                  {"states", figures.states},
                                  {"frontier", figures.frontier()},
                                  {"transitions", figures.transitions},
                                  {"deadlocks", figures.deadlocks},
                                  {"self_loops", figures.self_loops},
                                  {"folded_self_loops", figures.folded_self_loops},
                                  {"depth", figures.depth}};
    run["labels"] = nlohmann::ordered_json::object();
    for (std::size_t i = 0; i < result.labels.size(); ++i) {
      run["labels"][result.labels[i]] = figures.label_counts[i];
    }
    run["seconds"] = {{"detection", result.detection_seconds}, {"exploration", figures.seconds}};
    run["states_per_second"] = states_per_second(result);
    run["bytes_per_state"] = {{"packed", figures.state_bytes}, {"with_index", bytes_per_state(figures)}};
    run["peak_memory_bytes"] = result.peak_memory;
    if (!result.group_order.empty()) run["group_order"] = result.group_order;
    runs.push_back(std::move(run));
  }
  nlohmann::ordered_json json = {{"runs", std::move(runs)}};
  const double factor = results.size() == 2 ? reduction(results.front(), results.back()) : 0;
  if (factor > 0) json["reduction"] = factor;
  return json;
}

}  // namespace symfold
