// Exact labels beside canonical forms of general tools: the same random states, as states to symfold and as
// recoloured composition graphs to nauty, Traces and bliss, one after the other in the same run.
//
// A line for each family: microseconds per state (the median of several rounds), and symfold's time as a
// share of the fastest tool's. The tools get the graph built and the colours sorted; what is timed is the
// search for the canonical form.

#include <nauty/nausparse.h>
#include <nauty/traces.h>

#include <algorithm>
#include <array>
#include <bliss/graph.hh>
#include <chrono>
#include <cstdio>
#include <map>
#include <random>

#include "bench/example_family.h"
#include "detector/exact_labeller.h"
#include "host/symmetry/detection.h"

namespace symfold {
namespace {

constexpr std::size_t kStates = 50;
constexpr int kRounds = 5;

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

double microseconds_since(std::chrono::steady_clock::time_point start) {
  return std::chrono::duration<double, std::micro>(std::chrono::steady_clock::now() - start).count();
}

// Of each state, what `prepare` leaves untimed and `run` takes, in microseconds on average.
template <class Prepare, class Run>
double average(const std::vector<State>& states, Prepare prepare, Run run) {
  double total = 0;
  for (const State& state : states) {
    prepare(state);
    const auto start = std::chrono::steady_clock::now();
    run();
    total += microseconds_since(start);
  }
  return total / static_cast<double>(states.size());
}

// symfold's own calls are shorter than the clock is fine: all states in one go.
double average_label(Labeller& labeller, const std::vector<State>& states) {
  std::vector<std::vector<std::uint16_t>> words;
  for (const State& state : states) words.emplace_back(state.begin(), state.end());
  std::vector<std::uint16_t> label(words[0].size());
  constexpr int kRepeats = 20;
  const auto start = std::chrono::steady_clock::now();
  for (int repeat = 0; repeat < kRepeats; ++repeat) {
    for (const auto& word : words) labeller.find(word.data(), label.data());
  }
  return microseconds_since(start) / (kRepeats * static_cast<double>(words.size()));
}

std::vector<double> measure(const Graph& composition, Labeller& exact, const std::vector<State>& states) {
  Nauty nauty(composition);
  bliss::Graph bliss_graph(static_cast<unsigned>(composition.type.size()));
  for (std::size_t v = 0; v < composition.type.size(); ++v) {
    for (const std::size_t neighbour : composition.neighbours[v]) {
      if (v < neighbour) bliss_graph.add_edge(static_cast<unsigned>(v), static_cast<unsigned>(neighbour));
    }
  }
  const auto set_colours = [&](const State& state) { nauty.set_colours(state); };
  const auto recolour = [&](const State& state) {
    for (std::size_t v = 0; v < composition.type.size(); ++v) {
      bliss_graph.change_color(static_cast<unsigned>(v), composition.colour(v, state));
    }
  };
  bliss::Stats stats;
  return {average_label(exact, states), average(states, set_colours, [&] { nauty.run_nauty(); }),
          average(states, set_colours, [&] { nauty.run_traces(); }),
          average(states, recolour, [&] { bliss_graph.canonical_form(stats, nullptr, nullptr); })};
}

void run_family(const Family& family, unsigned values) {
  Detection detection(read_example(family), nullptr, false);
  SymmetryDetection& detector = detection.detector();
  const Graph composition(detector);
  for (std::size_t i = 0; i < detector.PartitionInfo.size(); ++i) {
    detector.PartitionInfo[i] = 2;
    detector.CumPartitionInfo[i] = static_cast<int>(2 * i);
  }
  const ExactGroup group(detector);
  ExactLabeller exact(group);
  std::mt19937 random(1);
  std::vector<State> states(kStates, State(composition.partitions));
  for (State& state : states) {
    for (unsigned& value : state) value = static_cast<unsigned>(random() % values);
  }
  std::vector<std::vector<double>> rounds;
  for (int round = 0; round < kRounds; ++round) rounds.push_back(measure(composition, exact, states));
  std::array<double, 4> medians{};
  for (std::size_t tool = 0; tool < medians.size(); ++tool) {
    std::sort(rounds.begin(), rounds.end(), [&](const auto& a, const auto& b) { return a[tool] < b[tool]; });
    medians[tool] = rounds[kRounds / 2][tool];
  }
  const double best = *std::min_element(medians.begin() + 1, medians.end());
  std::printf("%-26s %6u %10.2f %10.2f %10.2f %10.2f %8.3f %8zu\n", family.title().c_str(), values,
              medians[0], medians[1], medians[2], medians[3], medians[0] / best, exact.inexact_count());
  std::fflush(stdout);
}

}  // namespace
}  // namespace symfold

int main() {
  std::printf("%-26s %6s %10s %10s %10s %10s %8s %8s\n", "model", "values", "symfold", "nauty", "Traces",
              "bliss", "ratio", "inexact");
  for (const symfold::Family& family : symfold::kFamilies) {
    for (const unsigned values : {2U, 4U}) symfold::run_family(family, values);
  }
}
