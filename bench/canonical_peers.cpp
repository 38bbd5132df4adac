// Exact labels beside canonical forms of general tools: the same states, as states to symfold and as
// recoloured composition graphs to nauty, Traces and bliss, one after the other in the same run.
//
//   canonical_peers [--quick] [--only TEXT] [--unseen SEED COUNT]
//
// The models are examples, families of unseen_compositions.h, or COUNT random compositions with a symmetry. A
// line for each model and kind of states: microseconds per state (the median of several rounds), symfold's
// time as a share of the fastest tool's, labels that were not exact, exact labels that changed when a
// symmetry moved the state, and the milliseconds that the group took to make. Then a line with the model's
// largest ratio, and a summary.
//
// The tools get the graph built and the colours sorted; what is timed is the search for the canonical form.
// Each model and kind of states has a process of its own. A tool that takes longer than kMaxSeconds for one
// state is shown as "> " and that time, and is left out of what follows for these states; one that takes
// longer than kLapSeconds for all of them labels only as many as fit.

#include <nauty/nausparse.h>
#include <nauty/traces.h>
#include <signal.h>
#include <sys/mman.h>
#include <sys/time.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <bliss/graph.hh>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <functional>
#include <map>
#include <memory>
#include <numeric>
#include <optional>
#include <random>
#include <stdexcept>
#include <string_view>

#include "bench/composed_models.h"
#include "bench/example_family.h"
#include "detector/exact_labeller.h"
#include "host/symmetry/detection.h"

namespace symfold {
namespace {

constexpr double kMaxSeconds = 1;        // for one state
constexpr double kMaxGroupSeconds = 20;  // for making a group
constexpr double kLapSeconds = 0.1;      // for the states of a kind

const std::vector<Family> kFamilies = {
    {"star", {"N=20"}},
    {"star", {"N=100"}},
    {"philosophers", {"N=20"}},
    {"philosophers", {"N=100"}},
    {"arms", {"N=20"}},
    {"arms", {"N=100"}},
    {"wreath", {"M=4", "K=4"}},
    {"wreath", {"M=10", "K=10"}},
    {"complete", {"K=8"}},
    {"complete", {"K=20"}},
    {"routers", {"W=10", "H=10"}},
    {"torus", {"W=5", "H=5"}},
    {"torus", {"W=10", "H=10"}},
    {"hypercube", {"d=4"}},
    {"hypercube", {"d=6"}},
    {"clients_servers", {"K=5", "M=5"}},
    {"clients_servers", {"K=10", "M=10"}},
    {"multiprocessor", {"M=6", "K=4"}},
    {"cluster", {"N=20"}},
    {"peer2peer", {"N=10", "B=10"}},
    {"polling", {"N=50"}},
};

using State = std::vector<unsigned>;  // a value for each partition

// The composition graph; its first vertices are the partitions.
struct Graph {
  explicit Graph(const SymmetryDetection& detector) : partitions(detector.PartitionInfo.size()) {
    std::map<std::string, std::size_t> index;
    std::map<std::string, unsigned> types;
    for (const ModelCompGraphNode& node : detector.GraphNodes) {
      index.emplace(node.Name, index.size());
      types.emplace(node.Type, 0);
    }
    unsigned next = 0;
    for (auto& [name, number] : types) number = next++;
    for (const ModelCompGraphNode& node : detector.GraphNodes) type.push_back(types[node.Type]);
    neighbours.resize(index.size());
    for (const ModelCompGraphEdge& edge : detector.GraphEdges) {
      const std::size_t from = index.at(edge.From.Name);
      const std::size_t to = index.at(edge.To.Name);
      neighbours[from].push_back(to);
      neighbours[to].push_back(from);
    }
  }

  // One number for each type and value.
  unsigned colour(std::size_t vertex, const State& state) const {
    return type[vertex] * 256 + (vertex < partitions ? state[vertex] : 0);
  }

  std::size_t partitions;
  std::vector<unsigned> type;
  std::vector<std::vector<std::size_t>> neighbours;
};

// nauty or Traces on one graph.
class Nauty {
 public:
  explicit Nauty(const Graph& composition) : graph_(composition), orbits_(composition.type.size()) {
    SG_INIT(sparse_);
    SG_INIT(canonical_);
    std::size_t ends = 0;
    for (const auto& list : composition.neighbours) ends += list.size();
    SG_ALLOC(sparse_, composition.type.size(), ends, "no memory");
    sparse_.nv = static_cast<int>(composition.type.size());
    sparse_.nde = ends;
    ends = 0;
    for (std::size_t v = 0; v < composition.type.size(); ++v) {
      sparse_.v[v] = ends;
      sparse_.d[v] = static_cast<int>(composition.neighbours[v].size());
      for (const std::size_t neighbour : composition.neighbours[v])
        sparse_.e[ends++] = static_cast<int>(neighbour);
    }
  }
  ~Nauty() {
    SG_FREE(sparse_);
    SG_FREE(canonical_);
  }
  Nauty(const Nauty&) = delete;
  Nauty& operator=(const Nauty&) = delete;

  // The vertices by colour, and where each colour ends.
  void set_colours(const State& state) {
    lab_.resize(graph_.type.size());
    ptn_.resize(graph_.type.size());
    for (std::size_t v = 0; v < lab_.size(); ++v) lab_[v] = static_cast<int>(v);
    const auto colour = [&](int v) { return graph_.colour(static_cast<std::size_t>(v), state); };
    std::stable_sort(lab_.begin(), lab_.end(), [&](int a, int b) { return colour(a) < colour(b); });
    for (std::size_t i = 0; i < lab_.size(); ++i) {
      ptn_[i] = i + 1 < lab_.size() && colour(lab_[i]) == colour(lab_[i + 1]) ? 1 : 0;
    }
  }

  void run_nauty() {
    static DEFAULTOPTIONS_SPARSEGRAPH(options);
    statsblk stats;
    options.getcanon = TRUE;
    options.defaultptn = FALSE;
    sparsenauty(&sparse_, lab_.data(), ptn_.data(), orbits_.data(), &options, &stats, &canonical_);
  }

  void run_traces() {
    static DEFAULTOPTIONS_TRACES(options);
    TracesStats stats;
    options.getcanon = TRUE;
    options.defaultptn = FALSE;
    Traces(&sparse_, lab_.data(), ptn_.data(), orbits_.data(), &options, &stats, &canonical_);
  }

 private:
  const Graph& graph_;
  sparsegraph sparse_;
  sparsegraph canonical_;
  std::vector<int> lab_, ptn_, orbits_;
};

constexpr std::array<const char*, 4> kTools = {"symfold", "nauty", "Traces", "bliss"};
constexpr int kMaxRounds = 5;

// How much is measured of a kind of states.
struct Effort {
  std::size_t states = 50;
  int rounds = kMaxRounds;
};

// Written by the process that measures, read by the one that waits for it.
struct Report {
  int tool_at_work;  // the one that was, if the process was ended
  std::array<std::array<double, kMaxRounds>, kTools.size()> microseconds;
  std::size_t inexact;
  std::size_t changed;
};

double seconds_since(std::chrono::steady_clock::time_point start) {
  return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

// Ends the process if it has not been set again before the time is up.
void set_alarm(double seconds) {
  itimerval timer{};
  timer.it_value.tv_sec = static_cast<time_t>(seconds);
  timer.it_value.tv_usec = static_cast<suseconds_t>(1e6 * (seconds - std::floor(seconds)));
  setitimer(ITIMER_REAL, &timer, nullptr);
}

// Runs `work` in a process of its own; true if it came to its end.
bool ends_alone(const std::function<void()>& work) {
  const pid_t child = fork();
  if (child == 0) {
    work();
    _exit(0);
  }
  int status = 0;
  waitpid(child, &status, 0);
  return WIFEXITED(status) && WEXITSTATUS(status) == 0;
}

// Microseconds per state: what `prepare` leaves untimed and `run` takes, for as many states as fit into a
// lap.
double average(const std::vector<State>& states, const std::function<void(const State&)>& prepare,
               const std::function<void()>& run) {
  double total = 0;
  std::size_t count = 0;
  while (count < states.size() && total < kLapSeconds) {
    set_alarm(kMaxSeconds);
    prepare(states[count++]);
    const auto start = std::chrono::steady_clock::now();
    run();
    total += seconds_since(start);
  }
  return 1e6 * total / static_cast<double>(count);
}

// A detected model, its group and what the tools get of it.
class Subject {
 public:
  Subject(std::string name, const ComposedModel& model)
      : name_(std::move(name)),
        detection_(std::make_unique<Detection>(model, nullptr, false)),
        graph_(detector()) {
    find_orbits();
  }

  // Every partition gets a value, also that of a submodel without variables.
  void give_all_partitions_values() {
    for (std::size_t i = 0; i < detector().PartitionInfo.size(); ++i) {
      detector().PartitionInfo[i] = 2;
      detector().CumPartitionInfo[i] = static_cast<int>(2 * i);
    }
    find_orbits();
  }

  bool has_symmetry() const { return !orbits_.empty(); }

  // Whether the time was enough. `fault` says if there is no group for another reason.
  bool make_group(std::string& fault) {
    const bool is_made = ends_alone([&] {
      set_alarm(kMaxGroupSeconds);
      try {
        const ExactGroup group(detector());
      } catch (const std::exception&) {
      }
    });
    if (!is_made) return false;
    const auto start = std::chrono::steady_clock::now();
    try {
      group_ = std::make_unique<ExactGroup>(detector());
    } catch (const std::length_error& error) {
      fault = error.what();
    }
    group_seconds_ = seconds_since(start);
    return true;
  }

  const std::string& name() const { return name_; }
  double group_seconds() const { return group_seconds_; }
  const Graph& graph() const { return graph_; }
  const ExactGroup* group() const { return group_.get(); }
  const std::vector<std::size_t>& cells() const { return cells_; }
  const std::vector<std::vector<std::size_t>>& orbits() const { return orbits_; }

  // The bytes of a state as the labeller reads them.
  std::vector<std::uint16_t> words_of(const State& state) const {
    std::vector<std::uint16_t> words;
    for (const std::size_t cell : cells_) words.push_back(static_cast<std::uint16_t>(state[cell]));
    return words;
  }

  // The state's image under a random product of the tables' permutations.
  State moved(State state, std::mt19937& random) const {
    for (const int base : detection_->detector().Bases) {
      const std::vector<ValPerms>& records = detection_->detector().VPerms.at(base);
      if (records.empty()) continue;
      for (const Permutation& permutation : records[random() % records.size()].Perms) {
        State image(state.size());
        for (std::size_t i = 0; i < state.size(); ++i)
          image[static_cast<std::size_t>(permutation[static_cast<int>(i)])] = state[i];
        state = std::move(image);
      }
    }
    return state;
  }

 private:
  SymmetryDetection& detector() { return detection_->detector(); }

  // Orbits of more than one partition with values.
  void find_orbits() {
    std::vector<std::size_t> root(graph_.partitions);
    std::iota(root.begin(), root.end(), 0U);
    const auto find = [&](std::size_t i) {
      while (root[i] != i) i = root[i] = root[root[i]];
      return i;
    };
    for (const auto& [base, records] : detector().VPerms) {
      for (const ValPerms& record : records) {
        for (const Permutation& permutation : record.Perms) {
          for (std::size_t i = 0; i < root.size(); ++i)
            root[find(i)] = find(static_cast<std::size_t>(permutation[static_cast<int>(i)]));
        }
      }
    }
    std::map<std::size_t, std::vector<std::size_t>> orbits;
    cells_.clear();
    for (std::size_t i = 0; i < root.size(); ++i) {
      if (detector().PartitionInfo[i] == 0) continue;
      cells_.push_back(i);
      orbits[find(i)].push_back(i);
    }
    orbits_.clear();
    for (auto& [first, members] : orbits) {
      if (members.size() > 1) orbits_.push_back(std::move(members));
    }
  }

  std::string name_;
  std::unique_ptr<Detection> detection_;
  Graph graph_;
  std::unique_ptr<ExactGroup> group_;
  double group_seconds_ = 0;
  std::vector<std::size_t> cells_;  // the partitions with values
  std::vector<std::vector<std::size_t>> orbits_;
};

// How a state is drawn: from one that holds 0 everywhere.
struct StateKind {
  const char* name;
  void (*draw)(const Subject& subject, State& state, std::mt19937& random);
};

template <class T>
const T& any_of(const std::vector<T>& list, std::mt19937& random) {
  return list[random() % list.size()];
}

template <unsigned kValues>
void draw_values(const Subject& subject, State& state, std::mt19937& random) {
  for (const std::size_t cell : subject.cells()) state[cell] = static_cast<unsigned>(random() % kValues);
}

template <unsigned kCount>
void change_cells(const Subject& subject, State& state, std::mt19937& random) {
  for (unsigned i = 0; i < kCount; ++i) state[any_of(subject.cells(), random)] = 1;
}

void leave_equal(const Subject&, State&, std::mt19937&) {}

void change_half_orbit(const Subject& subject, State& state, std::mt19937& random) {
  std::vector<std::size_t> orbit = any_of(subject.orbits(), random);
  std::shuffle(orbit.begin(), orbit.end(), random);
  for (std::size_t i = 0; i < orbit.size() / 2; ++i) state[orbit[i]] = 1;
}

// All cells of some orbits, so that no symmetry is lost, and two cells of another one.
void change_orbits(const Subject& subject, State& state, std::mt19937& random) {
  for (const auto& orbit : subject.orbits()) {
    const auto value = static_cast<unsigned>(random() % 2);
    for (const std::size_t cell : orbit) state[cell] = value;
  }
  for (int i = 0; i < 2; ++i) state[any_of(any_of(subject.orbits(), random), random)] = 2;
}

// As after some actions from an initial state: each changes a submodel, and perhaps a join that it sees.
void take_steps(const Subject& subject, State& state, std::mt19937& random) {
  const Graph& graph = subject.graph();
  std::vector<bool> is_cell(graph.type.size(), false);
  for (const std::size_t cell : subject.cells()) is_cell[cell] = true;
  const auto most = static_cast<unsigned>(1 + 2 * std::sqrt(static_cast<double>(subject.cells().size())));
  for (unsigned steps = 1 + static_cast<unsigned>(random()) % most; steps > 0; --steps) {
    const std::size_t cell = any_of(subject.cells(), random);
    state[cell] = static_cast<unsigned>(random() % 3);
    if (graph.neighbours[cell].empty() || random() % 2 == 0) continue;
    const std::size_t variable = any_of(graph.neighbours[cell], random);
    const std::size_t other = any_of(graph.neighbours[variable], random);
    if (is_cell[other]) state[other] = static_cast<unsigned>(random() % 2);
  }
}

const std::vector<StateKind> kKinds = {
    {"2 values", draw_values<2>},     {"4 values", draw_values<4>},      {"all equal", leave_equal},
    {"one differs", change_cells<1>}, {"three differ", change_cells<3>}, {"half an orbit", change_half_orbit},
    {"whole orbits", change_orbits},  {"few steps", take_steps},
};

// Labels all states several times if they are short, since the clock is not fine enough for one.
double average_label(ExactLabeller& labeller, const std::vector<std::vector<std::uint16_t>>& states) {
  std::vector<std::uint16_t> label(states[0].size());
  constexpr int kRepeats = 20;
  std::size_t count = 0;
  const auto start = std::chrono::steady_clock::now();
  for (int repeat = 0; repeat < kRepeats; ++repeat) {
    for (const auto& state : states) {
      if (count % 64 == 0) set_alarm(kMaxSeconds);
      labeller.find(state.data(), label.data());
      ++count;
      if (count % 16 == 0 && seconds_since(start) > kLapSeconds)
        return 1e6 * seconds_since(start) / static_cast<double>(count);
    }
  }
  return 1e6 * seconds_since(start) / static_cast<double>(count);
}

// In the process that measures: the rounds of all tools that are wanted, in turn.
void measure(const Subject& subject, const std::vector<State>& states,
             const std::array<bool, kTools.size()>& is_wanted, int rounds, Report& report) {
  const Graph& graph = subject.graph();
  Nauty nauty(graph);
  bliss::Graph bliss_graph(static_cast<unsigned>(graph.type.size()));
  for (std::size_t v = 0; v < graph.type.size(); ++v) {
    for (const std::size_t neighbour : graph.neighbours[v]) {
      if (v < neighbour) bliss_graph.add_edge(static_cast<unsigned>(v), static_cast<unsigned>(neighbour));
    }
  }
  const auto set_colours = [&](const State& state) { nauty.set_colours(state); };
  const auto recolour = [&](const State& state) {
    for (std::size_t v = 0; v < graph.type.size(); ++v)
      bliss_graph.change_color(static_cast<unsigned>(v), graph.colour(v, state));
  };
  bliss::Stats stats;
  std::vector<std::vector<std::uint16_t>> words;
  for (const State& state : states) words.push_back(subject.words_of(state));
  std::optional<ExactLabeller> labeller;
  if (is_wanted[0]) labeller.emplace(*subject.group());
  for (int round = 0; round < rounds; ++round) {
    const auto run = [&](int tool) -> double {
      switch (tool) {
        case 0:
          return average_label(*labeller, words);
        case 1:
          return average(states, set_colours, [&] { nauty.run_nauty(); });
        case 2:
          return average(states, set_colours, [&] { nauty.run_traces(); });
        default:
          return average(states, recolour, [&] { bliss_graph.canonical_form(stats, nullptr, nullptr); });
      }
    };
    for (std::size_t tool = 0; tool < kTools.size(); ++tool) {
      if (!is_wanted[tool]) continue;
      report.tool_at_work = static_cast<int>(tool);
      report.microseconds[tool][static_cast<std::size_t>(round)] = run(static_cast<int>(tool));
    }
  }
}

// Counts the states without an exact label, and those whose exact label a symmetry changes.
void check_labels(const Subject& subject, const std::vector<State>& states, Report& report) {
  report.tool_at_work = 0;
  ExactLabeller labeller(*subject.group());
  std::mt19937 random(2);
  const auto start = std::chrono::steady_clock::now();
  for (const State& state : states) {
    if (seconds_since(start) > 5 * kLapSeconds) return;
    std::vector<std::uint16_t> label(subject.cells().size());
    std::vector<std::uint16_t> label_of_image(label);
    set_alarm(2 * kMaxSeconds);
    const bool is_exact = labeller.find(subject.words_of(state).data(), label.data());
    const bool is_image_exact =
        labeller.find(subject.words_of(subject.moved(state, random)).data(), label_of_image.data());
    if (!is_exact) ++report.inexact;
    if (is_exact && is_image_exact && label != label_of_image) ++report.changed;
  }
}

struct Row {
  std::string model;
  const char* kind;
  std::array<std::optional<double>, kTools.size()> microseconds;
  double ratio;  // at least or at most this, if symfold or all others were ended
  std::size_t inexact, changed;
};

class Table {
 public:
  explicit Table(Effort effort) : effort_(effort) {
    report_ = static_cast<Report*>(
        mmap(nullptr, sizeof(Report), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0));
    if (report_ == MAP_FAILED) throw std::runtime_error("no memory to share with the processes that measure");
    print_line("model", "cells", "states", {"symfold", "nauty", "Traces", "bliss"}, "ratio", "inexact",
               "changed", "group ms");
  }
  ~Table() { munmap(report_, sizeof(Report)); }
  Table(const Table&) = delete;
  Table& operator=(const Table&) = delete;

  void add_model(Subject& subject) {
    std::string fault;
    if (!subject.make_group(fault))
      fault = "the group takes longer than " + shown(kMaxGroupSeconds, 0) + " s";
    if (subject.group() == nullptr) {
      std::printf("%-26s no labels: %s\n", subject.name().c_str(), fault.c_str());
      std::fflush(stdout);
      without_labels_.push_back(subject.name());
      return;
    }
    double worst = 0;
    for (const StateKind& kind : kKinds) {
      std::mt19937 random(1);
      std::vector<State> states(effort_.states, State(subject.graph().partitions));
      for (State& state : states) kind.draw(subject, state, random);
      rows_.push_back(run(subject, kind.name, states));
      print(rows_.back(), subject);
      worst = std::max(worst, rows_.back().ratio);
    }
    std::printf("%-26s %56s %9.3f\n", subject.name().c_str(), "worst", worst);
    std::fflush(stdout);
    worst_of_models_.push_back(worst);
  }

  // Exits with 1 if an exact label was changed by a symmetry.
  int finish() {
    if (rows_.empty()) return 0;
    std::sort(rows_.begin(), rows_.end(), [](const Row& a, const Row& b) { return a.ratio > b.ratio; });
    double logs = 0;
    std::size_t inexact = 0;
    std::size_t changed = 0;
    for (const Row& row : rows_) {
      logs += std::log(row.ratio);
      inexact += row.inexact;
      changed += row.changed;
    }
    const auto above = [&](double bound) {
      return std::count_if(rows_.begin(), rows_.end(), [&](const Row& row) { return row.ratio > bound; });
    };
    const auto models_above = [&](double bound) {
      return std::count_if(worst_of_models_.begin(), worst_of_models_.end(),
                           [&](double r) { return r > bound; });
    };
    std::printf(
        "\n%zu lines of %zu models: geometric mean of the ratios %.3f, above 0.3: %td (%td models), above "
        "1.0: "
        "%td (%td models), labels that are not exact: %zu, changed by a symmetry: %zu, models without "
        "labels: "
        "%zu\nworst:\n",
        rows_.size(), worst_of_models_.size(), std::exp(logs / static_cast<double>(rows_.size())), above(0.3),
        models_above(0.3), above(1.0), models_above(1.0), inexact, changed, without_labels_.size());
    for (std::size_t i = 0; i < std::min<std::size_t>(10, rows_.size()); ++i)
      std::printf("%-26s %-14s %8.3f %8zu\n", rows_[i].model.c_str(), rows_[i].kind, rows_[i].ratio,
                  rows_[i].inexact);
    return changed == 0 ? 0 : 1;
  }

 private:
  static std::string shown(double value, int digits) {
    std::array<char, 64> text{};
    std::snprintf(text.data(), text.size(), "%.*f", digits, value);
    return text.data();
  }

  static void print_line(const std::string& model, const std::string& cells, const std::string& kind,
                         const std::array<std::string, kTools.size()>& times, const std::string& ratio,
                         const std::string& inexact, const std::string& changed, const std::string& group) {
    std::printf("%-26s %5s %-14s", model.c_str(), cells.c_str(), kind.c_str());
    for (const std::string& time : times) std::printf(" %10s", time.c_str());
    std::printf(" %9s %8s %8s %9s\n", ratio.c_str(), inexact.c_str(), changed.c_str(), group.c_str());
    std::fflush(stdout);
  }

  // Starts again without a tool that was ended.
  Row run(const Subject& subject, const char* kind, const std::vector<State>& states) {
    std::array<bool, kTools.size()> is_wanted;
    is_wanted.fill(true);
    *report_ = {};
    while (!ends_alone([&] {
      if (is_wanted[0]) check_labels(subject, states, *report_);
      measure(subject, states, is_wanted, effort_.rounds, *report_);
    })) {
      if (!is_wanted[static_cast<std::size_t>(report_->tool_at_work)]) break;
      is_wanted[static_cast<std::size_t>(report_->tool_at_work)] = false;
      if (is_wanted[0]) report_->inexact = report_->changed = 0;
    }
    Row row{subject.name(), kind, {}, 0, report_->inexact, report_->changed};
    const auto middle = static_cast<std::size_t>(effort_.rounds / 2);
    for (std::size_t tool = 0; tool < kTools.size(); ++tool) {
      if (!is_wanted[tool]) continue;
      auto& rounds = report_->microseconds[tool];
      std::sort(rounds.begin(), rounds.begin() + effort_.rounds);
      row.microseconds[tool] = rounds[middle];
    }
    double best = 1e6 * kMaxSeconds;
    for (std::size_t tool = 1; tool < kTools.size(); ++tool)
      best = std::min(best, row.microseconds[tool].value_or(best));
    row.ratio = row.microseconds[0].value_or(1e6 * kMaxSeconds) / best;
    return row;
  }

  static void print(const Row& row, const Subject& subject) {
    std::array<std::string, kTools.size()> times;
    for (std::size_t tool = 0; tool < kTools.size(); ++tool)
      times[tool] = row.microseconds[tool].has_value() ? shown(*row.microseconds[tool], 2)
                                                       : "> " + shown(1e6 * kMaxSeconds, 0);
    print_line(row.model, std::to_string(subject.cells().size()), row.kind, times, shown(row.ratio, 3),
               std::to_string(row.inexact), std::to_string(row.changed),
               shown(1e3 * subject.group_seconds(), 2));
  }

  Effort effort_;
  Report* report_;
  std::vector<Row> rows_;
  std::vector<double> worst_of_models_;
  std::vector<std::string> without_labels_;
};

struct Options {
  Effort effort;
  std::string only;
  unsigned seed = 0;
  unsigned count = 0;  // of random compositions, in place of the families
};

Options read_options(int argc, char** argv) {
  Options options;
  for (int i = 1; i < argc; ++i) {
    const std::string_view option = argv[i];
    if (option == "--quick") {
      options.effort = {15, 3};
    } else if (option == "--only" && i + 1 < argc) {
      options.only = argv[++i];
    } else if (option == "--unseen" && i + 2 < argc) {
      options.seed = static_cast<unsigned>(std::stoul(argv[++i]));
      options.count = static_cast<unsigned>(std::stoul(argv[++i]));
    } else {
      throw std::invalid_argument("expected --quick, --only TEXT or --unseen SEED COUNT, got " +
                                  std::string(option));
    }
  }
  return options;
}

void run_unseen(const Options& options, Table& table) {
  unsigned done = 0;
  for (unsigned seed = options.seed; done < options.count; ++seed) {
    NamedModel named = random_composition(seed);
    Subject subject(named.name, named.model);
    if (!subject.has_symmetry()) continue;
    ++done;
    table.add_model(subject);
  }
}

int run(const Options& options) {
  Table table(options.effort);
  if (options.count > 0) {
    run_unseen(options, table);
    return table.finish();
  }
  const auto is_wanted = [&](const std::string& name) {
    return name.find(options.only) != std::string::npos;
  };
  for (const Family& family : kFamilies) {
    if (!is_wanted(family.title())) continue;
    Subject subject(family.title(), read_example(family));
    subject.give_all_partitions_values();
    table.add_model(subject);
  }
  for (const NamedModel& named : composition_families()) {
    if (!is_wanted(named.name)) continue;
    Subject subject(named.name, named.model);
    table.add_model(subject);
  }
  return table.finish();
}

}  // namespace
}  // namespace symfold

int main(int argc, char** argv) try {
  return symfold::run(symfold::read_options(argc, argv));
} catch (const std::exception& error) {
  std::fprintf(stderr, "canonical_peers: %s\n", error.what());
  return 2;
}
