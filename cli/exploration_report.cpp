#include "cli/exploration_report.h"

#include <algorithm>
#include <iomanip>
#include <nlohmann/json.hpp>
#include <ostream>

#include "cli/figures.h"

namespace symfold {
namespace {

// Of a table over a range.
constexpr std::size_t kMinValueWidth = 7;
constexpr int kCellWidth = 14;

struct Row {
  std::string title;
  std::vector<std::string> cells;
};

double states_per_second(const ExplorationResult& result) {
  const ExplorationFigures& figures = result.figures;
  return figures.seconds > 0 ? static_cast<double>(figures.expanded) / figures.seconds : 0;
}

// Counts the index, too; state_bytes is that of the packed states alone.
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
  if (results.back().inexact_labels > 0) {
    rows.push_back(
        row("inexact labels", results, [](const auto& result) { return grouped(result.inexact_labels); }));
  }
  for (std::size_t i = 0; i < results[0].observables.size(); ++i) {
    rows.push_back(row("label \"" + results[0].observables[i] + '"', results,
                       [&](const auto& result) { return grouped(result.figures.observable_counts[i]); }));
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

// Returns how many times fewer states the result has than the first one, which is the full state space; 0 if
// that is not known.
double reduction(const std::vector<ExplorationResult>& results, const ExplorationResult& result) {
  const ExplorationResult& full = results.front();
  if (full.is_folded() || !full.is_complete() || !result.is_complete()) return 0;
  return static_cast<double>(full.figures.states) / static_cast<double>(result.figures.states);
}

std::string reduction_text(const std::vector<ExplorationResult>& results, const ExplorationResult& result) {
  const double factor = reduction(results, result);
  return factor > 0 ? fixed(factor, 2) : "-";
}

}  // namespace

void print_results(std::ostream& out, const std::vector<ExplorationResult>& results) {
  std::vector<Row> rows{
      row("symmetry", results, [](const auto& result) { return std::string(to_string(result.symmetry)); })};
  for (Row& counts : count_rows(results)) rows.push_back(std::move(counts));
  for (Row& costs : cost_rows(results)) rows.push_back(std::move(costs));
  if (results.size() > 1) {
    rows.push_back(
        row("reduction", results, [&](const auto& result) { return reduction_text(results, result); }));
  }
  print_table(out, rows);
  if (!results.back().is_folded()) return;
  const ExplorationResult& folded = results.back();
  const char* const meaning =
      folded.refused.empty() ? "no folding reduces by more" : "of the symmetries that were not refused";
  out << "group order  " << folded.group_order_text << ": " << meaning << "\n";
  for (const std::string& line : folded.refused) out << "refused  " << line << "\n";
}

RangeTable::RangeTable(std::ostream& out, const std::string& parameter, std::size_t width,
                       std::vector<Symmetry> symmetries)
    : out_(out),
      value_width_(static_cast<int>(std::max({kMinValueWidth, width, parameter.size()}))),
      symmetries_(std::move(symmetries)) {
  std::vector<std::string> cells{parameter};
  for (const Symmetry symmetry : symmetries_) cells.emplace_back(to_string(symmetry));
  for (const Symmetry symmetry : symmetries_) cells.push_back(std::string(to_string(symmetry)) + " in");
  if (symmetries_.size() > 1) cells.emplace_back("reduction");
  print_cells(cells);
}

void RangeTable::print_cells(const std::vector<std::string>& cells) {
  for (std::size_t i = 0; i < cells.size(); ++i) {
    out_ << std::setw(i == 0 ? value_width_ : kCellWidth) << cells[i];
  }
  out_ << std::endl;
}

void RangeTable::print_row(const std::string& value, const std::vector<ExplorationResult>& results) {
  std::vector<std::string> counts;
  std::vector<std::string> times;
  for (const Symmetry symmetry : symmetries_) {
    const auto result = std::find_if(results.begin(), results.end(), [&](const auto& each) {
      return each.symmetry == symmetry && each.is_complete();
    });
    counts.push_back(result == results.end() ? "-" : grouped(result->figures.states));
    times.push_back(result == results.end() ? "-" : duration(result->seconds()));
  }
  std::vector<std::string> cells{value};
  cells.insert(cells.end(), counts.begin(), counts.end());
  cells.insert(cells.end(), times.begin(), times.end());
  if (symmetries_.size() > 1) cells.push_back(reduction_text(results, results.back()));
  print_cells(cells);
}

std::string ending_text(const ExplorationResult& result) {
  return std::string("exploration with symmetry ") + to_string(result.symmetry) + " not complete (" +
         to_string(result.ending) + "): " + grouped(result.figures.states) + " states reached, " +
         grouped(result.figures.frontier()) + " of them in the frontier, not expanded";
}

nlohmann::ordered_json results_json(const std::vector<ExplorationResult>& results) {
  nlohmann::ordered_json runs = nlohmann::ordered_json::array();
  for (const ExplorationResult& result : results) {
    const ExplorationFigures& figures = result.figures;
    nlohmann::ordered_json run = {{"symmetry", to_string(result.symmetry)},
                                  {"ending", to_string(result.ending)},
                                  {"states", figures.states},
                                  {"frontier", figures.frontier()},
                                  {"transitions", figures.transitions},
                                  {"deadlocks", figures.deadlocks},
                                  {"self_loops", figures.self_loops},
                                  {"folded_self_loops", figures.folded_self_loops},
                                  {"depth", figures.depth}};
    run["labels"] = nlohmann::ordered_json::object();
    for (std::size_t i = 0; i < result.observables.size(); ++i) {
      run["labels"][result.observables[i]] = figures.observable_counts[i];
    }
    run["seconds"] = {{"detection", result.detection_seconds}, {"exploration", figures.seconds}};
    run["states_per_second"] = states_per_second(result);
    run["bytes_per_state"] = {{"packed", figures.state_bytes}, {"with_index", bytes_per_state(figures)}};
    run["peak_memory_bytes"] = result.peak_memory;
    if (result.is_folded()) run["group_order"] = result.group_order;
    if (result.symmetry == Symmetry::kExact) run["inexact_labels"] = result.inexact_labels;
    if (!result.refused.empty()) run["refused"] = result.refused;
    if (reduction(results, result) > 0) run["reduction"] = reduction(results, result);
    runs.push_back(std::move(run));
  }
  return {{"runs", std::move(runs)}};
}

}  // namespace symfold
