// The automorphism search beside general tools: nauty, Traces and bliss get the same coloured graphs in the
// same run, in the order in which detection numbers them and shuffled.
//
//   automorphism_peers [--limit SECONDS] [--sizes N,N,..] [--only TEXT] [--all-to-the-limit]
//
// Every search runs in a process of its own, which is ended at the limit (20 s); what is timed is the search
// alone, from the graph in the tool's own form to the generators, the fastest of several searches where one
// is short, in rounds over all tools. The tools write nothing down. Once one tool has ended, one that needs
// fifty times as long is ended too, unless all are let run to the limit. A line for each graph, as a table's
// row, tells the milliseconds, and ours as a share of the fastest tool's; all that end must agree on the
// order of the group.

#include <nauty/nausparse.h>
#include <nauty/traces.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <bliss/graph.hh>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <memory>
#include <numeric>
#include <optional>
#include <sstream>
#include <string_view>

#include "bench/composition_graphs.h"
#include "engines/reduction/automorphism_search.h"

namespace symfold::detail {
namespace {

struct Measurement {
  double seconds;
  double log_order;  // decimal
};

template <class Search>
double seconds_of(const Search& search) {
  const auto start = std::chrono::steady_clock::now();
  search();
  return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

Measurement run_symfold(const GraphParts& parts) {
  const ColouredGraph graph(parts.n, parts.boundaries, parts.edges);
  AutomorphismGroup group;
  const double seconds = seconds_of([&] { group = find_automorphisms(graph); });
  double log_order = 0;
  for (const int length : group.orbit_lengths) log_order += std::log10(length);
  return {seconds, log_order};
}

// The graph, and the colours as the end of each cell, as nauty and Traces take them.
class SparseGraph {
 public:
  explicit SparseGraph(const GraphParts& parts)
      : first_(static_cast<std::size_t>(parts.n), 0),
        degree_(first_.size(), 0),
        colour_order_(first_.size()),
        continues_(first_.size(), 1),
        orbits_(first_.size()) {
    const ColouredGraph graph(parts.n, parts.boundaries, parts.edges);
    for (int v = 0; v < parts.n; ++v) {
      const auto neighbours = graph.neighbours(v);
      const auto i = static_cast<std::size_t>(v);
      first_[i] = ends_.size();
      degree_[i] = static_cast<int>(neighbours.size());
      ends_.insert(ends_.end(), neighbours.begin(), neighbours.end());
    }
    std::iota(colour_order_.begin(), colour_order_.end(), 0);
    for (const int boundary : parts.boundaries) continues_[static_cast<std::size_t>(boundary) - 1] = 0;
    continues_.back() = 0;
    graph_ = {ends_.size(), first_.data(), parts.n,        degree_.data(), ends_.data(),
              nullptr,      first_.size(), degree_.size(), ends_.size(),   0};
  }
  SparseGraph(const SparseGraph&) = delete;
  SparseGraph& operator=(const SparseGraph&) = delete;

  Measurement run_nauty() {
    static DEFAULTOPTIONS_SPARSEGRAPH(options);
    statsblk stats;
    options.defaultptn = FALSE;
    const double seconds = seconds_of([&] {
      sparsenauty(&graph_, colour_order_.data(), continues_.data(), orbits_.data(), &options, &stats,
                  nullptr);
    });
    return {seconds, std::log10(stats.grpsize1) + stats.grpsize2};
  }

  Measurement run_traces() {
    static DEFAULTOPTIONS_TRACES(options);
    TracesStats stats;
    options.defaultptn = FALSE;
    const double seconds = seconds_of([&] {
      Traces(&graph_, colour_order_.data(), continues_.data(), orbits_.data(), &options, &stats, nullptr);
    });
    return {seconds, std::log10(stats.grpsize1) + stats.grpsize2};
  }

 private:
  std::vector<size_t> first_;
  std::vector<int> degree_, ends_, colour_order_, continues_, orbits_;
  sparsegraph graph_;
};

Measurement run_nauty(const GraphParts& parts) { return SparseGraph(parts).run_nauty(); }
Measurement run_traces(const GraphParts& parts) { return SparseGraph(parts).run_traces(); }

Measurement run_bliss(const GraphParts& parts) {
  bliss::Graph graph;
  unsigned colour = 0;
  for (int v = 0; v < parts.n; ++v) {
    if (colour < parts.boundaries.size() && parts.boundaries[colour] == v) ++colour;
    graph.add_vertex(colour);
  }
  for (const Edge& edge : parts.edges)
    graph.add_edge(static_cast<unsigned>(edge.from), static_cast<unsigned>(edge.to));
  bliss::Stats stats;
  const double seconds = seconds_of([&] { graph.find_automorphisms(stats, nullptr, nullptr); });
  return {seconds, static_cast<double>(std::log10(stats.get_group_size_approx()))};
}

struct Tool {
  const char* name;
  Measurement (*run)(const GraphParts&);
};

constexpr std::array<Tool, 4> kTools = {
    {{"symfold", run_symfold}, {"nauty", run_nauty}, {"Traces", run_traces}, {"bliss", run_bliss}}};

// The fastest of up to eleven searches that together take no more than a quarter of a second or so.
Measurement fastest_of_several(const Tool& tool, const GraphParts& parts) {
  Measurement best = tool.run(parts);
  double total = best.seconds;
  for (int i = 0; i < 10 && total < 0.25; ++i) {
    const Measurement next = tool.run(parts);
    total += next.seconds;
    best.seconds = std::min(best.seconds, next.seconds);
  }
  return best;
}

// In a process of its own; nothing where it has been ended at the limit.
std::optional<Measurement> measure(const Tool& tool, const GraphParts& parts, double limit) {
  std::array<int, 2> ends;
  if (pipe(ends.data()) != 0) return std::nullopt;
  const pid_t child = fork();
  if (child == 0) {
    alarm(static_cast<unsigned>(std::ceil(limit)));
    const Measurement measurement = fastest_of_several(tool, parts);
    const bool is_written = write(ends[1], &measurement, sizeof measurement) == sizeof measurement;
    _exit(is_written ? 0 : 1);
  }
  close(ends[1]);
  Measurement measurement{};
  const bool is_read = read(ends[0], &measurement, sizeof measurement) == sizeof measurement;
  close(ends[0]);
  waitpid(child, nullptr, 0);
  return is_read && measurement.seconds <= limit ? std::optional(measurement) : std::nullopt;
}

struct Options {
  double limit = 20;
  bool lets_all_run = false;
  std::string only;
  std::vector<int> sizes{1'000, 10'000, 100'000};
};

Options read_options(int argc, char** argv) {
  Options options;
  for (int i = 1; i < argc; ++i) {
    const std::string_view option = argv[i];
    const std::string value = i + 1 < argc ? argv[i + 1] : "";
    if (option == "--all-to-the-limit") {
      options.lets_all_run = true;
      continue;
    }
    ++i;
    if (option == "--limit") options.limit = std::stod(value);
    if (option == "--only") options.only = value;
    if (option == "--sizes") {
      options.sizes.clear();
      std::istringstream list(value);
      for (std::string size; std::getline(list, size, ',');) options.sizes.push_back(std::stoi(size));
    }
  }
  return options;
}

class Table {
 public:
  explicit Table(Options options) : options_(std::move(options)) {
    std::printf("| graph | order | vertices |");
    for (const Tool& tool : kTools) std::printf(" %s |", tool.name);
    std::printf(" ratio |\n|---|---|---|---|---|---|---|---|\n");
  }

  void add_row(const std::string& name, const char* order, const GraphParts& parts) {
    std::printf("| %s | %s | %d |", name.c_str(), order, parts.n);
    Results results;
    double fastest = options_.limit;
    Limits limits;
    for (std::size_t i = 0; i < kTools.size(); ++i) {
      limits[i] =
          options_.lets_all_run ? options_.limit : std::min(options_.limit, std::max(1.0, 50 * fastest));
      results[i] = measure(kTools[i], parts, limits[i]);
      if (results[i].has_value()) fastest = std::min(fastest, results[i]->seconds);
    }
    repeat_short_searches(parts, results);
    for (std::size_t i = 0; i < kTools.size(); ++i) {
      const bool has_ended = results[i].has_value();
      std::printf(" %s%.3g |", has_ended ? "" : "> ", 1e3 * (has_ended ? results[i]->seconds : limits[i]));
    }
    note_ratio(results, limits);
    note_orders(results);
  }

  // The mean of the ratios, or what kept it from being one.
  int finish() const {
    std::printf(
        "\n%d graphs, geometric mean of the ratios %.2f, largest %.2f (%d above 1.5), %d disagreements\n",
        rows_, std::exp(sum_of_logs_ / rows_), largest_, above_, disagreements_);
    return disagreements_ == 0 ? 0 : 1;
  }

 private:
  using Results = std::array<std::optional<Measurement>, kTools.size()>;
  using Limits = std::array<double, kTools.size()>;

  static constexpr int kRounds = 15;
  static constexpr double kShort = 0.01;  // seconds

  // In turn, so that what else the machine does slows down all of them or none.
  void repeat_short_searches(const GraphParts& parts, Results& results) const {
    for (int round = 1; round < kRounds; ++round) {
      for (std::size_t i = 0; i < kTools.size(); ++i) {
        if (!results[i].has_value() || results[i]->seconds > kShort) continue;
        if (const auto again = measure(kTools[i], parts, options_.limit))
          results[i]->seconds = std::min(results[i]->seconds, again->seconds);
      }
    }
  }

  // Against a tool that was ended the ratio is at most this.
  void note_ratio(const Results& results, const Limits& limits) {
    const auto seconds = [&](std::size_t i) {
      return results[i].has_value() ? results[i]->seconds : limits[i];
    };
    double fastest = options_.limit;
    for (std::size_t i = 1; i < results.size(); ++i) fastest = std::min(fastest, seconds(i));
    const double ratio = seconds(0) / fastest;
    std::printf(" %.2f |", ratio);
    ++rows_;
    sum_of_logs_ += std::log(ratio);
    largest_ = std::max(largest_, ratio);
    if (ratio > 1.5) ++above_;
  }

  // Orders beyond what a tool's numbers hold are infinite and say nothing.
  void note_orders(const Results& results) {
    for (const auto& result : results) {
      if (!result.has_value() || !results[0].has_value() || !std::isfinite(result->log_order)) continue;
      if (std::abs(result->log_order - results[0]->log_order) < 1e-6 * (1 + results[0]->log_order)) continue;
      std::printf(" order 10^%.6f, here 10^%.6f", result->log_order, results[0]->log_order);
      ++disagreements_;
    }
    std::printf("\n");
    std::fflush(stdout);
  }

  Options options_;
  int rows_ = 0;
  int above_ = 0;
  int disagreements_ = 0;
  double sum_of_logs_ = 0;
  double largest_ = 0;
};

int run(const Options& options) {
  Table table(options);
  for (const NamedGraph& graph : graph_families(options.sizes)) {
    if (graph.name.find(options.only) == std::string::npos) continue;
    table.add_row(graph.name, "natural", graph.parts);
    table.add_row(graph.name, "shuffled", shuffled(graph.parts, 7));
  }
  return table.finish();
}

}  // namespace
}  // namespace symfold::detail

int main(int argc, char** argv) { return symfold::detail::run(symfold::detail::read_options(argc, argv)); }
