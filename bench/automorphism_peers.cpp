// The automorphism search beside general tools: nauty, Traces, bliss and, if its header was found, dejavu get
// the same coloured graphs in the same run, in the order in which detection numbers them and shuffled.
//
//   automorphism_peers [--limit SECONDS] [--rounds N] [--sizes N,N,..] [--only TEXT] [--all-to-the-limit]
//   automorphism_peers --unseen SEED COUNT [..]
//
// The graphs: the examples at each of the sizes, then combinatorial objects, bare and as compositions; or,
// with
// --unseen, random compositions alone. Every search runs in a process of its own, which is ended at the limit
// (20 s); what is timed is the search alone, from the graph in the tool's own form to the generators, the
// fastest of several searches where one is short, in rounds over all tools. The time is processor time, which
// other work on the machine disturbs least. The tools write nothing down. Once one tool has ended, one that
// needs fifty times as long is ended too, unless all are let run to the limit. A line for each graph, as a
// table's row, tells the milliseconds, and ours as a share of the fastest tool's; all that end must agree on
// the order of the group.
//
// dejavu is probabilistic: with its default error bound, which is used here, it may miss a generator with a
// probability below 2^-10, and gives no proof. The other tools, and ours, are certain. An order in which
// dejavu alone differs is therefore shown, and counted apart.

#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <optional>
#include <sstream>
#include <string>
#include <string_view>
#include <vector>

#include "bench/automorphism_tools.h"
#include "bench/combinatorial_graphs.h"
#include "bench/composition_graphs.h"
#include "bench/unseen_compositions.h"

namespace symfold::detail {
namespace {

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
  int rounds = 15;
  bool lets_all_run = false;
  std::string only;
  std::vector<int> sizes{1'000, 10'000, 100'000};
  unsigned unseen_seed = 0;
  int unseen_count = 0;
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
    if (option == "--rounds") options.rounds = std::stoi(value);
    if (option == "--only") options.only = value;
    if (option == "--unseen" && i + 1 < argc) {
      options.unseen_seed = static_cast<unsigned>(std::stoul(value));
      options.unseen_count = std::stoi(argv[++i]);
    }
    if (option == "--sizes") {
      options.sizes.clear();
      std::istringstream list(value);
      for (std::string size; std::getline(list, size, ',');) options.sizes.push_back(std::stoi(size));
    }
  }
  return options;
}

// Rows of one kind of graph.
class Summary {
 public:
  void add(const std::string& row, double ratio) { ratios_.emplace_back(ratio, row); }

  void print(const char* kind) {
    if (ratios_.empty()) return;
    std::sort(ratios_.rbegin(), ratios_.rend());
    double sum_of_logs = 0;
    for (const auto& [ratio, row] : ratios_) sum_of_logs += std::log(ratio);
    const auto above =
        std::count_if(ratios_.begin(), ratios_.end(), [](const auto& entry) { return entry.first > 2; });
    std::printf("\n%s: %zu rows, geometric mean of the ratios %.2f, %td above 2.0; worst:\n", kind,
                ratios_.size(), std::exp(sum_of_logs / static_cast<double>(ratios_.size())), above);
    for (std::size_t i = 0; i < std::min<std::size_t>(5, ratios_.size()); ++i)
      std::printf("  %.2f %s\n", ratios_[i].first, ratios_[i].second.c_str());
  }

 private:
  std::vector<std::pair<double, std::string>> ratios_;
};

class Table {
 public:
  explicit Table(Options options) : options_(std::move(options)) {
    std::printf("| graph | order | vertices |");
    for (const Tool& tool : tools_) std::printf(" %s |", tool.name);
    std::printf(" ratio |\n|---|---|---|");
    for (std::size_t i = 0; i < tools_.size(); ++i) std::printf("---|");
    std::printf("---|\n");
  }

  void add_rows(const NamedGraph& graph) {
    if (graph.name.find(options_.only) == std::string::npos) return;
    add_row(graph, "natural", graph.parts);
    add_row(graph, "shuffled", shuffled(graph.parts, 7));
  }

  // Returns the exit code: 1 if tools that are certain disagree.
  int finish() {
    compositions_.print("compositions");
    bare_.print("bare graphs");
    std::printf("\n%d disagreements, and %d of dejavu alone\n", disagreements_, probabilistic_disagreements_);
    return disagreements_ == 0 ? 0 : 1;
  }

 private:
  using Results = std::vector<std::optional<Measurement>>;
  using Limits = std::vector<double>;

  static constexpr double kShort = 0.01;  // seconds

  void add_row(const NamedGraph& graph, const char* order, const GraphParts& parts) {
    std::printf("| %s | %s | %d |", graph.name.c_str(), order, parts.n);
    std::fflush(stdout);
    Results results;
    Limits limits;
    double fastest = options_.limit;
    for (const Tool& tool : tools_) {
      limits.push_back(options_.lets_all_run ? options_.limit
                                             : std::min(options_.limit, std::max(1.0, 50 * fastest)));
      results.push_back(measure(tool, parts, limits.back()));
      if (results.back().has_value()) fastest = std::min(fastest, results.back()->seconds);
    }
    repeat_short_searches(parts, results);
    for (std::size_t i = 0; i < results.size(); ++i) {
      const bool has_ended = results[i].has_value();
      std::printf(" %s%.3g |", has_ended ? "" : "> ", 1e3 * (has_ended ? results[i]->seconds : limits[i]));
    }
    const double ratio = ratio_of(results, limits);
    std::printf(" %.2f |", ratio);
    (graph.kind == GraphKind::kBare ? bare_ : compositions_).add(graph.name + ", " + order, ratio);
    note_orders(results);
  }

  // In turn, so that what else the machine does slows down all of them or none.
  void repeat_short_searches(const GraphParts& parts, Results& results) const {
    for (int round = 1; round < options_.rounds; ++round) {
      for (std::size_t i = 0; i < tools_.size(); ++i) {
        if (!results[i].has_value() || results[i]->seconds > kShort) continue;
        if (const auto again = measure(tools_[i], parts, options_.limit))
          results[i]->seconds = std::min(results[i]->seconds, again->seconds);
      }
    }
  }

  // Against a tool that was ended the ratio is at most this.
  static double ratio_of(const Results& results, const Limits& limits) {
    const auto seconds = [&](std::size_t i) {
      return results[i].has_value() ? results[i]->seconds : limits[i];
    };
    double fastest = seconds(1);
    for (std::size_t i = 2; i < results.size(); ++i) fastest = std::min(fastest, seconds(i));
    return seconds(0) / fastest;
  }

  // Orders beyond what a tool's numbers hold are infinite and say nothing.
  void note_orders(const Results& results) {
    for (std::size_t i = 1; i < results.size(); ++i) {
      const auto& result = results[i];
      if (!result.has_value() || !results[0].has_value() || !std::isfinite(result->log_order)) continue;
      if (std::abs(result->log_order - results[0]->log_order) < 1e-6 * (1 + results[0]->log_order)) continue;
      std::printf(" %s: order 10^%.6f, here 10^%.6f", tools_[i].name, result->log_order,
                  results[0]->log_order);
      ++(tools_[i].is_certain ? disagreements_ : probabilistic_disagreements_);
    }
    std::printf("\n");
    std::fflush(stdout);
  }

  const std::vector<Tool>& tools_ = automorphism_tools();
  Options options_;
  Summary compositions_, bare_;
  int disagreements_ = 0;
  int probabilistic_disagreements_ = 0;
};

int run(const Options& options) {
  Table table(options);
  if (options.unseen_count > 0) {
    for (const NamedGraph& graph : unseen_compositions(options.unseen_seed, options.unseen_count))
      table.add_rows(graph);
    return table.finish();
  }
  for (const NamedGraph& graph : graph_families(options.sizes)) table.add_rows(graph);
  for (const NamedGraph& graph : combinatorial_families()) table.add_rows(graph);
  return table.finish();
}

}  // namespace
}  // namespace symfold::detail

int main(int argc, char** argv) { return symfold::detail::run(symfold::detail::read_options(argc, argv)); }
