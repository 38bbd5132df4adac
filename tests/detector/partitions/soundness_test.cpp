// What may be folded by: the check of tables and graph, and the generators that are left out, against all
// symmetries of a composition.

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <random>
#include <sstream>

#include "detector/exact_labeller.h"
#include "tests/oracles/compositions.h"
#include "tests/support/detector_support.h"

namespace symfold {
namespace {

using oracle::Composition;
using oracle::Images;
using Random = std::mt19937;

std::string numbered(const char* name, int i) { return name + std::to_string(i); }
std::size_t index(int i) { return static_cast<std::size_t>(i); }

std::vector<TestJoin> joins_of(const Composition& composition) {
  std::vector<TestJoin> joins;
  for (std::size_t j = 0; j < composition.variables.size(); ++j) {
    joins.push_back({numbered("J", static_cast<int>(j)), {}});
    for (int k = 0; k < composition.variables[j]; ++k) {
      joins.back().variables.push_back({numbered("s", k), {}});
    }
  }
  for (const auto& b : composition.bindings) {
    joins[index(b.join)].variables[index(b.number)].members.emplace_back(numbered("P", b.submodel),
                                                                         numbered("x", b.variable));
  }
  return joins;
}

std::string types_of(const Composition& composition) {
  std::string text = std::to_string(composition.types.size());
  for (std::size_t s = 0; s < composition.types.size(); ++s) {
    text += "\n" + numbered("P", static_cast<int>(s)) + " " + numbered("T", composition.types[s]);
  }
  return text;
}

std::string text_of(const Composition& composition) {
  std::string text = types_of(composition) + "\nbytes";
  for (const int bytes : composition.bytes) text += " " + std::to_string(bytes);
  for (const auto& b : composition.bindings) {
    text += "\nJ" + std::to_string(b.join) + "->s" + std::to_string(b.number) + " P" +
            std::to_string(b.submodel) + "->x" + std::to_string(b.variable);
  }
  return text;
}

// Variables are bound more than once now and then. Half of the bindings get the images that a permutation of
// submodels and joins has for them, so that most compositions have symmetries.
Composition random_composition(Random& random, int max_variables) {
  const auto below = [&](int bound) { return static_cast<int>(random() % static_cast<unsigned>(bound)); };
  Composition composition;
  const int submodels = 1 + below(5);
  const int joins = below(4);
  const int types = 1 + below(4) / 3;
  const int sizes = 1 + below(8) / 7;
  for (int s = 0; s < submodels; ++s) {
    composition.types.push_back(below(types));
    composition.bytes.push_back(2 + below(sizes));
  }
  const int variables = 1 + below(max_variables);
  for (int j = 0; j < joins; ++j) {
    composition.variables.push_back(variables);
    for (int k = 0; k < variables; ++k) {
      for (int i = 0; i <= below(3); ++i) {
        composition.bindings.push_back({j, k, below(submodels), below(2)});
      }
    }
  }
  const int shift = below(submodels);
  const std::vector<oracle::Binding> bindings = composition.bindings;
  for (oracle::Binding b : bindings) {
    for (int i = 1; shift != 0 && i < submodels; ++i) {
      b.submodel = (b.submodel + shift) % submodels;
      b.join = (b.join + 1) % joins;
      composition.bindings.push_back(b);
    }
  }
  return composition;
}

// A detector with its model, from the graph to the tables, in a random layout of the state vector.
class Detected {
 public:
  Detected(const Composition& composition, Random& random)
      : submodels_(composition.types.size()), model_(joins_of(composition)), detector_(model_.wrapper()) {
    detector_.SetRefusals(&refusals_);
    detector_.SetDiagnostics(nullptr);
    std::istringstream types(types_of(composition));
    detector_.FindMCG(types);
    for (ModelCompGraphNode& node : detector_.GraphNodes) {
      if (node.PrivateOrJoin && node.Type != "join") node.StateSize = composition.bytes[number_of(node.Name)];
    }
    std::ostringstream told;
    detector_.SetDiagnostics(&told);
    detector_.KeepSoundGenerators();
    EXPECT_EQ(told.str().empty(), refusals_.str().empty());
    detector_.SetDiagnostics(nullptr);
    detector_.CreatePartitionInfo();
    detector_.SSOrder = detector_.GNOrder;
    std::shuffle(detector_.SSOrder.begin(), detector_.SSOrder.end(), random);
    detector_.ShrinkPermutations();
    detector_.AdjustPermutations();
    detector_.AdjustPartitionInfo();
    detector_.TrimPermutations();
    for (const std::string& name : detector_.SSOrder) {
      points_.push_back(static_cast<int>(number_of(name) + (name[0] == 'J' ? submodels_ : 0)));
    }
  }

  SymmetryDetection& detector() { return detector_; }
  std::string refusals() const { return refusals_.str(); }

  // A permutation of the state vector's partitions as one of the oracle's points, submodels and then joins.
  Images points_of(const Permutation& permutation) const {
    Images images(points_.size());
    for (std::size_t c = 0; c < points_.size(); ++c) {
      images[index(points_[c])] = points_[index(permutation[static_cast<int>(c)])];
    }
    return images;
  }

  std::vector<Images> stored() const {
    std::vector<Images> permutations;
    for (const auto& [base, records] : detector_.VPerms) {
      for (const ValPerms& record : records) permutations.push_back(points_of(record.Perms.at(0)));
    }
    return permutations;
  }

  // What the generators that were kept do to the submodels and joins.
  std::vector<Images> kept() const {
    const auto point_of = [&](int node) {
      const std::string name = detector_.GraphNodes[index(node)].Name;
      return static_cast<int>(number_of(name) + (name[0] == 'J' ? submodels_ : 0));
    };
    std::vector<Images> permutations;
    for (const Permutation& generator : detector_.OrigPermutations) {
      Images& images = permutations.emplace_back(points_.size());
      for (int node = 0; node < generator.GetN(); ++node) {
        if (!detector_.GraphNodes[index(node)].PrivateOrJoin) continue;
        images[index(point_of(node))] = point_of(generator[node]);
      }
    }
    return permutations;
  }

 private:
  static std::size_t number_of(const std::string& name) { return std::stoul(name.substr(1)); }

  std::size_t submodels_;
  TestModel model_;
  SymmetryDetection detector_;
  std::ostringstream refusals_;
  std::vector<int> points_;  // by place in the state vector
};

bool labels_exactly(const SymmetryDetection& detector) {
  const ExactGroup group(detector);
  ExactLabeller labeller(group);
  std::string state(labeller.state_size(), '\1');
  const bool is_exact = labeller.find(state.data(), state.data());
  EXPECT_EQ(labeller.inexact_count(), is_exact ? 0U : 1U);
  return is_exact;
}

// A permutation between partitions of equal size in place of the tables: accepted if and only if it is a
// symmetry.
void expect_verdict_on_random_table(Detected& detected, const oracle::Group& symmetries, Random& random) {
  SymmetryDetection& detector = detected.detector();
  const int n = static_cast<int>(detector.PartitionInfo.size());
  Permutation permutation(n);
  for (int swaps = 1 + static_cast<int>(random() % 3); swaps > 0; --swaps) {
    const std::size_t a = random() % index(n);
    const std::size_t b = random() % index(n);
    if (detector.PartitionInfo[a] == detector.PartitionInfo[b]) {
      std::swap(permutation.GetP()[a], permutation.GetP()[b]);
    }
  }
  detector.Bases = {0};
  detector.VPerms = {{0, {{0, {permutation}}}}};
  std::string report;
  EXPECT_EQ(detector.VerifySymmetries(report), symmetries.contains(detected.points_of(permutation)))
      << permutation << report;
}

// All systems are sound: none is refused. The tables are the whole group unless a generator was left out, and
// that happens only if joins share several variables or submodels of one type differ in size.
TEST(Soundness, KeepsAllSymmetriesOfRandomCompositions) {
  Random random(1);
  int symmetric = 0;
  int bound_twice = 0;
  int partly_kept = 0;
  for (int round = 0; round < 4000; ++round) {
    const Composition composition = random_composition(random, 1 + round % 3);
    SCOPED_TRACE("round " + std::to_string(round) + "\n" + text_of(composition));
    const oracle::Group symmetries = oracle::all_symmetries(composition);
    Detected detected(composition, random);
    SymmetryDetection& detector = detected.detector();
    std::string report;
    ASSERT_TRUE(detector.VerifySymmetries(report)) << report;
    const auto points = static_cast<int>(composition.types.size() + composition.variables.size());
    const oracle::Group group = oracle::closure(points, detected.stored());
    ASSERT_TRUE(std::includes(symmetries.begin(), symmetries.end(), group.begin(), group.end()));
    ASSERT_EQ(group, oracle::closure(points, detected.kept()));
    ASSERT_EQ(detector.HasWholeGroup, detected.refusals().empty());
    if (detector.HasWholeGroup) {
      ASSERT_EQ(group, symmetries);
    }
    const bool is_simple = std::ranges::all_of(composition.variables, [](int count) { return count == 1; }) &&
                           std::ranges::all_of(composition.bytes, [](int bytes) { return bytes == 2; });
    ASSERT_TRUE(detector.HasWholeGroup || !is_simple) << detected.refusals();
    ASSERT_EQ(labels_exactly(detector), detector.HasWholeGroup);
    symmetric += symmetries.size() > 1 ? 1 : 0;
    partly_kept += !detector.HasWholeGroup && group.size() > 1 ? 1 : 0;
    std::vector<std::pair<int, int>> variables;
    for (const auto& b : composition.bindings) variables.emplace_back(b.submodel, b.variable);
    std::sort(variables.begin(), variables.end());
    bound_twice += symmetries.size() > 1 && std::ranges::adjacent_find(variables) != variables.end() ? 1 : 0;
    for (int i = 0; i < 8; ++i) expect_verdict_on_random_table(detected, symmetries, random);
    if (HasFailure()) return;
  }
  EXPECT_GT(symmetric, 1000);
  EXPECT_GT(bound_twice, 400);
  EXPECT_GT(partly_kept, 20);
}

std::string clients(int count) {
  std::string text = std::to_string(count);
  for (int i = 0; i < count; ++i) text += "\n" + numbered("P", i) + " T";
  return text;
}

TestJoin star(const std::string& name, int count) {
  TestJoin join{name, {{"s", {}}}};
  for (int i = 0; i < count; ++i) join.variables[0].members.emplace_back(numbered("P", i), "x");
  return join;
}

// Graphs that are those of no composition, and layouts that are not those of the graph.
TEST(Soundness, RefusesWhatIsNoCompositionInNames) {
  const struct {
    std::string types;
    std::vector<TestJoin> joins;
    std::function<void(SymmetryDetection&)> change;
    std::string report;
  } cases[] = {
      {"2\nP0 T\nP1 T", {star("J", 3)}, {}, "the edge P2->x -- P2 has no node P2"},
      {clients(4), {star("J", 2), star("J", 2)}, {}, "two joins share a variable under one name, J->s"},
      {"2\nP0 T\nP0 T", {}, {}, "two submodels have one name, P0"},
      {clients(2), {star("P0", 2)}, {}, "a submodel and a join have one name, P0"},
      {"2\nP0 T\nP1 join", {}, {}, "types: expected a submodel type other than \"join\" for P1"},
      {clients(2),
       {},
       [](SymmetryDetection& detector) { detector.GraphNodes[1].Type = "join"; },
       "submodel P1 has the type of the joins, join"},
      {"2\nP0 T\nP->1 T", {}, {}, "P->1, of type T, has a partition and the name of a variable"},
      {"3\nP0 T\nP1 T->x\nP2 U",
       {{"J", {{"s", {{"P0", "x"}}}}}},
       {},
       "P0->x, of type T->x, has a partition and the name of a variable"},
      {clients(4),
       {},
       [](SymmetryDetection& detector) {
         detector.SSOrder = {"P0", "P1", "P0", "P1"};
       },
       "SSOrder names P0 twice"},
      {clients(2),
       {},
       [](SymmetryDetection& detector) {
         detector.SSOrder = {"P0", "Q"};
       },
       "SSOrder does not name P1"},
      {clients(2),
       {},
       [](SymmetryDetection& detector) { detector.PartitionInfo.push_back(2); },
       "expected 2 partitions, got 2 in SSOrder, 2 in GNOrder, 3 in PartitionInfo and 2 in CumPartitionInfo"},
      {clients(2),
       {star("J", 2)},
       [](SymmetryDetection& detector) { detector.PartitionInfo[2] = 4; },
       "J has 4 bytes, expected 2"},
      {clients(2),
       {},
       [](SymmetryDetection& detector) { detector.CumPartitionInfo[1] = 0; },
       "P1 begins at byte 0, expected 2"},
      {clients(2),
       {},
       [](SymmetryDetection& detector) { detector.OrigPermutations[1].GetP()[0] = 0; },
       "a generator is no permutation of the graph nodes"},
      {clients(2),
       {star("J", 2)},
       [](SymmetryDetection& detector) { detector.GraphEdges[3].From = detector.GraphEdges[1].From; },
       "the edge P0->x -- P1 gives the variable to a second submodel"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.report);
    const TempDir dir;
    TestModel model(c.joins);
    SymmetryDetection detector(model.wrapper());
    captured_errors([&] { detect(detector, c.types, 2); });
    if (c.change) c.change(detector);
    std::string report;
    EXPECT_FALSE(detector.VerifySymmetries(report));
    EXPECT_EQ(report, c.report);
    EXPECT_FALSE(detector.HasWholeGroup);
  }
}

// The engine reads the graph from a file. One that was cut short, or an old one, is another graph.
TEST(Soundness, RefusesTheGeneratorsOfAnotherGraphFile) {
  for (const bool is_cut : {true, false}) {
    const TempDir dir;
    TestModel model({star("J", 12)});
    SymmetryDetection detector(model.wrapper());
    std::istringstream types(clients(12));
    std::string errors;
    captured([&] {
      detector.InitFindMCG(types);
      detector.FindMCG_JoinNodes();
      detector.FindMCG_PrivateNodes();
      detector.FindMCG_Sort();
      detector.PrintMCG();
      std::string text = read_file("model_comp_graph");
      ASSERT_TRUE(text.ends_with("\n24 11\n")) << text;
      if (is_cut) {
        text.resize(text.size() - 2);  // "24 1"
      } else {
        text.replace(text.find("\n13 0\n"), 6, "\n13 1\n");
      }
      write_file("model_comp_graph", text);
      errors = captured_errors([&] { detector.FindMCG_FindAut(); });
    });
    const std::string fault =
        is_cut ? "model_comp_graph: expected a graph with the edge P11->x -- P11 (24 11), got 1"
               : "model_comp_graph: expected a graph with the edge P0->x -- P0 (13 0), got 1";
    EXPECT_EQ(errors, "symfold: " + fault + "\n");
    EXPECT_FALSE(detector.HasWholeGroup);
    std::string report;
    EXPECT_FALSE(detector.VerifySymmetries(report));
    EXPECT_EQ(report, fault);
  }
}

// The rotations of a state have one exact label, although the second join of each variable gives it a second
// node that is in no edge.
TEST(Soundness, FoldsVariablesThatAreBoundTwice) {
  std::vector<TestJoin> joins;
  for (const char* name : {"J", "K"}) {
    for (int i = 0; i < 4; ++i) {
      joins.push_back(
          {numbered(name, i), {{"s", {{numbered("P", i), "l"}, {numbered("P", (i + 1) % 4), "r"}}}}});
    }
  }
  const TempDir dir;
  TestModel model(joins);
  SymmetryDetection detector(model.wrapper());
  EXPECT_EQ(captured_errors([&] { detect(detector, clients(4), 2); }), "");
  EXPECT_TRUE(detector.HasWholeGroup);
  std::string report;
  EXPECT_TRUE(detector.VerifySymmetries(report)) << report;
  const ExactGroup group(detector);
  ExactLabeller labeller(group);
  std::string state("aabbccdd                ");
  std::string rotated("bbccddaa                ");
  EXPECT_TRUE(labeller.find(state.data(), state.data()));
  EXPECT_TRUE(labeller.find(rotated.data(), rotated.data()));
  EXPECT_EQ(state, rotated);
}

// Eight clients and, apart from them, a join whose two variables can be exchanged.
TEST(Soundness, LeavesOutUnsoundGeneratorsAlone) {
  const TempDir dir;
  TestModel model({star("J", 8), {"M", {{"a", {{"Q0", "x"}}}, {"b", {{"Q1", "x"}}}}}});
  SymmetryDetection detector(model.wrapper());
  std::ostringstream refusals;
  detector.SetRefusals(&refusals);
  std::istringstream types("10" + clients(8).substr(1) + "\nQ0 U\nQ1 U");
  captured([&] {
    detector.FindMCG(types);
    for (ModelCompGraphNode& node : detector.GraphNodes) {
      if (node.Type == "T" || node.Type == "U") node.StateSize = 2;
    }
    detector.KeepSoundGenerators();
    make_tables(detector);
  });
  EXPECT_EQ(
      refusals.str(),
      "symfold: the generator (Q0 Q1)(M->a M->b) is left out: it does not carry the variables of join M, in "
      "order, onto those of one join: it carries M->a to M->b\n");
  EXPECT_FALSE(detector.HasWholeGroup);
  EXPECT_EQ(detector.SGSOrbitLengths, (std::vector<int>{8, 7, 6, 5, 4, 3, 2}));
  std::string report;
  EXPECT_TRUE(detector.VerifySymmetries(report)) << report;
  EXPECT_FALSE(labels_exactly(detector));
}

}  // namespace
}  // namespace symfold
