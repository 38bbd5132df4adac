// Damaged permutation files and graph files: refused in one line, or read as what they now say, and never to
// a wrong label or a wrong symmetry.

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <map>
#include <numeric>
#include <sstream>
#include <utility>

#include "detector/exact_labeller.h"
#include "detector/greedy_labeller.h"
#include "detector/permfile/perm_table.h"
#include "engines/graph/graph_reader.h"
#include "engines/reduction/automorphism_search.h"
#include "host/symmetry/folding.h"
#include "tests/support/exploration_support.h"
#include "tests/support/model_support.h"
#include "tests/support/seeds.h"
#include "tests/support/temp_dir.h"
#include "tests/support/text_mutator.h"

namespace symfold {
namespace {

// The texts of a detection's file for all examples.
std::vector<std::string> texts_of(const std::string& file) {
  const TempDir dir;
  std::vector<std::string> texts;
  for (const std::string& name : example_names()) {
    const Folding folding(small_example(name), Symmetry::kFast, {name});
    texts.push_back(read_file(name + "/" + file));
  }
  return texts;
}

bool is_one_line(const std::string& error) {
  return error.starts_with("damaged:") &&
         std::all_of(error.begin(), error.end(), [](char c) { return c >= ' ' && c <= '~'; });
}

// Applies permutations of partitions to states, byte by byte.
class Mover {
 public:
  explicit Mover(const PermTable& table) : table_(table) {}

  std::string moved(const std::string& state, const auto& images) const {
    std::string result(state.size(), '\0');
    for (std::size_t c = 0; c < table_.sizes.size(); ++c) {
      const auto from = state.begin() + table_.offsets[c];
      std::copy(from, from + table_.sizes[c],
                result.begin() + table_.offsets[static_cast<std::size_t>(images[static_cast<int>(c)])]);
    }
    return result;
  }

 private:
  const PermTable& table_;
};

std::string label_of(Labeller& labeller, const std::string& state, const Mover& mover,
                     std::size_t partitions) {
  std::string label(state.size(), '\0');
  labeller.find(state.data(), label.data());
  std::vector<short> witness(partitions);
  labeller.find_witness(witness.data());
  std::vector<short> sorted = witness;
  std::sort(sorted.begin(), sorted.end());
  for (std::size_t c = 0; c < partitions; ++c) EXPECT_EQ(sorted[c], static_cast<short>(c));
  EXPECT_EQ(mover.moved(state, witness.data()), label);
  return label;
}

// Labels are images of the state, and an exact label is that of the image under every record.
void expect_right_labels(const PermTable& table, unsigned seed) {
  const LabellingTables tables(table);
  const GreedyGroup greedy_group(tables);
  const ExactGroup exact_group(tables);
  GreedyLabeller greedy(greedy_group);
  ExactLabeller exact(exact_group);
  const Mover mover(table);
  std::string state(static_cast<std::size_t>(std::reduce(table.sizes.begin(), table.sizes.end())), '\0');
  std::mt19937 random(seed);
  for (char& byte : state) byte = static_cast<char>(random() % 3);
  label_of(greedy, state, mover, table.sizes.size());
  const std::string label = label_of(exact, state, mover, table.sizes.size());
  for (const LabellingTables::Base& base : tables.bases) {
    for (const ValPerms& record : base.records) {
      std::string image = state;
      for (const Permutation& permutation : record.Perms) image = mover.moved(image, permutation);
      const std::string image_label = label_of(exact, image, mover, table.sizes.size());
      ASSERT_TRUE(image_label == label || exact.inexact_count() > 0);
    }
  }
}

// The edges of a graph and how many there are of each, as the vertices' images name them.
std::map<std::pair<int, int>, int> edges_of(const detail::ColouredGraph& graph,
                                            const std::vector<int>& images) {
  std::map<std::pair<int, int>, int> edges;
  for (int v = 0; v < graph.vertex_count(); ++v) {
    for (const int neighbour : graph.neighbours(v)) {
      ++edges[{images[static_cast<std::size_t>(v)], images[static_cast<std::size_t>(neighbour)]}];
    }
  }
  return edges;
}

void expect_automorphisms(const detail::ColouredGraph& graph) {
  std::vector<int> identity(static_cast<std::size_t>(graph.vertex_count()));
  std::iota(identity.begin(), identity.end(), 0);
  const auto edges = edges_of(graph, identity);
  for (const SparsePermutation& generator : detail::find_automorphisms(graph).generators) {
    std::vector<int> images = identity;
    for (const auto& [point, image] : generator) images[static_cast<std::size_t>(point)] = image;
    for (int v = 0; v < graph.vertex_count(); ++v) {
      EXPECT_EQ(graph.kind(v), graph.kind(images[static_cast<std::size_t>(v)]));
    }
    EXPECT_EQ(edges_of(graph, images), edges);
  }
}

// Damages the examples' files of this name. `read` returns what the reader says of a text, after it has
// checked what was read if the reader takes it.
void sweep(const std::string& file, const std::function<std::string(const std::string&, unsigned)>& read) {
  const std::vector<std::string> texts = texts_of(file);
  const Seeds seeds(2000);
  unsigned accepted = 0;
  for (unsigned seed = seeds.first; seed < seeds.end; ++seed) {
    SCOPED_TRACE("seed " + std::to_string(seed));
    const std::string error = read(TextMutator(seed).mutate(texts[seed % texts.size()]), seed);
    EXPECT_TRUE(error.empty() || is_one_line(error)) << error;
    if (error.empty()) ++accepted;
    if (testing::Test::HasFailure()) return;
  }
  EXPECT_GT(accepted, seeds.size() / 50);
}

TEST(MutatedFiles, PermutationFilesGiveNoWrongLabel) {
  sweep("permutations", [](const std::string& text, unsigned seed) {
    std::istringstream in(text);
    PermTable table;
    std::string error = read_perm_table(in, "damaged", table);
    if (error.empty()) expect_right_labels(table, seed);
    return error;
  });
}

TEST(MutatedFiles, GraphFilesGiveNoWrongSymmetry) {
  sweep("model_comp_graph", [](const std::string& text, unsigned) {
    std::istringstream in(text);
    const detail::GraphFileResult result = detail::read_graph(in, "damaged");
    if (result.error.empty() && result.graph.vertex_count() < 1000) expect_automorphisms(result.graph);
    return result.error;
  });
}

}  // namespace
}  // namespace symfold
