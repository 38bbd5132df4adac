// Detection and labelling together, on small models with all their states.

#include <gtest/gtest.h>

#include <filesystem>
#include <map>
#include <set>
#include <sstream>

#include "tests/oracles/literal_labeller.h"
#include "tests/oracles/state_classes.h"
#include "tests/support/detector_support.h"

namespace symfold {
namespace {

std::string listed(int count, const std::string& type) {
  std::string text;
  for (int i = 0; i < count; ++i) text += "P" + std::to_string(i) + " " + type + "\n";
  return text;
}

std::string named(int i) { return "P" + std::to_string(i); }

TestModel star(int n) {
  SharedVariable shared{"s", {}};
  for (int i = 0; i < n; ++i) shared.members.push_back({named(i), "x"});
  return TestModel({{"J", {shared}}});
}

TestModel ring(int n) {
  std::vector<TestJoin> joins;
  for (int i = 0; i < n; ++i) {
    joins.push_back({"J" + std::to_string(i), {{"s", {{named(i), "l"}, {named((i + 1) % n), "r"}}}}});
  }
  return TestModel(joins);
}

struct Counts {
  std::size_t states, labels, classes;
};

// Labels every state: a label must be a state of the same class, and is counted.
Counts label_all(SymmetryDetection& detector, const std::vector<int>& values) {
  start_labelling(detector);
  const std::vector<std::string> states = all_states(detector.PartitionInfo, values);
  const std::vector<int> classes = classes_of(states, detector.PartitionInfo, partition_generators(detector));
  std::map<std::string, int> class_of;
  for (std::size_t i = 0; i < states.size(); ++i) class_of[states[i]] = classes[i];
  std::set<std::string> labels;
  for (std::size_t i = 0; i < states.size(); ++i) {
    const std::string label = label_of(detector, states[i]);
    EXPECT_EQ(class_of.at(label), classes[i]) << "state " << i;
    labels.insert(label);
  }
  stop_labelling(detector);
  return {states.size(), labels.size(), std::set<int>(classes.begin(), classes.end()).size()};
}

TEST(Detection, GivesOneLabelPerClassOfTheStar) {
  const TempDir dir;
  TestModel model = star(6);
  SymmetryDetection detector(model.wrapper());
  detect(detector, "6\n" + listed(6, "T"), 1);
  std::string report;
  EXPECT_TRUE(detector.VerifySymmetries(report)) << report;
  const Counts counts = label_all(detector, {3, 3, 3, 3, 3, 3, 1});
  EXPECT_EQ(counts.states, 729U);
  EXPECT_EQ(counts.classes, 28U);
  EXPECT_EQ(counts.labels, 28U);
}

TEST(Detection, GivesOneLabelPerClassOfTheDirectedRing) {
  const TempDir dir;
  TestModel model = ring(5);
  SymmetryDetection detector(model.wrapper());
  detect(detector, "5\n" + listed(5, "T"), 1);
  const Counts counts = label_all(detector, {3, 3, 3, 3, 3, 2, 2, 2, 2, 2});
  EXPECT_EQ(counts.classes, 1560U);  // (6^5 + 4 * 6) / 5, by Burnside's lemma
  EXPECT_EQ(counts.labels, counts.classes);
}

// Every record moves its value onto its base, and the last base points lie behind the first.
TEST(Detection, StoresPermutationsThatBringTheValueToTheBase) {
  const TempDir dir;
  TestModel model = star(7);
  SymmetryDetection detector(model.wrapper());
  detect(detector, "7\n" + listed(7, "T"), 2);
  EXPECT_EQ(detector.Bases, (std::vector<int>{0, 1, 2, 3, 4, 5}));
  EXPECT_EQ(detector.SGSOrbitLengths, (std::vector<int>{7, 6, 5, 4, 3, 2}));
  for (const int base : detector.Bases) {
    std::set<int> values;
    for (const ValPerms& record : detector.VPerms[base]) {
      values.insert(record.Value);
      ASSERT_EQ(record.Perms.size(), 1U);
      EXPECT_EQ(record.Perms[0][record.Value], base);
      EXPECT_EQ(record.Perms[0][7], 7);
    }
    EXPECT_EQ(values.size(), 6U);
  }
}

// By files or in memory: the same diagnostics, members and texts; nothing on standard output in memory.
TEST(Detection, NeedsNoFiles) {
  const TempDir dir;
  TestModel models[] = {star(5), ring(6)};
  for (TestModel& model : models) {
    const std::string types = "6\n" + listed(6, "T");
    write_file("types", types);
    SymmetryDetection by_files(model.wrapper());
    const std::string diagnostics = captured([&] { by_files.FindMCG(); });
    const std::string graph = read_file("model_comp_graph");
    const std::string drawing = read_file("mcg.viz");
    for (const char* name : {"types", "model_comp_graph", "mcg.viz"}) std::filesystem::remove(name);

    SymmetryDetection in_memory(model.wrapper());
    std::ostringstream told, written_graph, written_drawing;
    std::istringstream list(types);
    in_memory.SetDiagnostics(&told);
    EXPECT_EQ(captured([&] { in_memory.FindMCG(list); }), "");
    EXPECT_EQ(told.str(), diagnostics);
    in_memory.PrintMCG(written_graph);
    in_memory.WriteMCGViz(written_drawing);
    EXPECT_EQ(written_graph.str(), graph);
    EXPECT_EQ(written_drawing.str(), drawing);
    EXPECT_EQ(in_memory.Bases, by_files.Bases);
    EXPECT_EQ(in_memory.SGSOrbitLengths, by_files.SGSOrbitLengths);
    EXPECT_TRUE(std::filesystem::is_empty("."));
  }
}

TEST(Detection, AnswersModelsWithoutSymmetryJoinsOrSubmodels) {
  const struct {
    int submodels;
    std::vector<TestJoin> joins;
    std::size_t bases;
  } cases[] = {
      {0, {}, 0},
      {1, {}, 0},
      {3, {}, 2},
      {1, {{"J", {{"s", {{"P0", "x"}}}}}}, 0},
      {2, {{"J", {{"s", {{"P0", "x"}, {"P1", "y"}}}}}}, 0},
      {2, {{"J", {{"s", {{"P0", "x"}, {"P1", "x"}}}}}}, 1},
  };
  for (const auto& c : cases) {
    const TempDir dir;
    TestModel model(c.joins);
    SymmetryDetection detector(model.wrapper());
    std::string report;
    EXPECT_EQ(captured_errors([&] {
                detect(detector, std::to_string(c.submodels) + "\n" + listed(c.submodels, "T"), 2);
              }),
              "");
    EXPECT_EQ(detector.Bases.size(), c.bases);
    EXPECT_TRUE(detector.VerifySymmetries(report)) << report;
    start_labelling(detector);
    const std::string state(static_cast<std::size_t>(detector.TotalStateSize), 'x');
    EXPECT_EQ(label_of(detector, state), state);
    stop_labelling(detector);
  }
}

TEST(VerifySymmetries, FindsPartitionsOfUnequalSize) {
  const TempDir dir;
  TestModel model({{"J1", {{"a", {{"P1", "x"}}}, {"b", {{"P2", "x"}}}}}, {"J2", {{"c", {{"P3", "x"}}}}}});
  SymmetryDetection detector(model.wrapper());
  detect(detector, "3\nP1 T\nP2 T\nP3 T\n", 2);
  std::string report;
  EXPECT_FALSE(detector.VerifySymmetries(report));
  EXPECT_EQ(report, "the permutation of base P1, value P3, moves J1 (4 bytes) to J2 (2 bytes)");
}

TEST(VerifySymmetries, FindsVariablesThatAreExchangedInsideAJoin) {
  const TempDir dir;
  TestModel model({{"J", {{"a", {{"P1", "x"}, {"P2", "x"}}}, {"b", {{"P3", "x"}, {"P4", "x"}}}}}});
  SymmetryDetection detector(model.wrapper());
  detect(detector, "4\nP1 T\nP2 T\nP3 T\nP4 T\n", 2);
  std::string report;
  EXPECT_FALSE(detector.VerifySymmetries(report));
  EXPECT_EQ(
      report,
      "a generator does not carry the variables of join J, in order, onto those of one join: it carries "
      "J->a to J->b");
  EXPECT_FALSE(detector.HasWholeGroup);
  detector.OrigPermutations.clear();
  EXPECT_FALSE(detector.VerifySymmetries(report));
  EXPECT_EQ(report, "the permutation of base P1, value P3, does not carry the joins of P1 onto those of P3");
  detector.VPerms[0][0].Perms[0].GetP()[0] = 4;
  EXPECT_FALSE(detector.VerifySymmetries(report));
  EXPECT_EQ(report, "the permutation of base P1, value " +
                        detector.SSOrder[static_cast<std::size_t>(detector.VPerms[0][0].Value)] +
                        ", is no permutation of the 5 partitions");
}

// A loaded table gives the labels of the detected one.
TEST(Detection, LabelsTheSameAfterSavingAndLoading) {
  const TempDir dir;
  TestModel model = ring(4);
  SymmetryDetection detected(model.wrapper());
  detect(detected, "4\n" + listed(4, "T"), 1);
  std::string name = "permutations";
  detected.WritePermFile(name);
  SymmetryDetection loaded;
  captured([&] { loaded.ReadPermFile(name); });
  start_labelling(detected);
  start_labelling(loaded);
  for (const std::string& state : all_states(detected.PartitionInfo, {2, 2, 2, 2, 2, 2, 2, 2})) {
    ASSERT_EQ(label_of(loaded, state), label_of(detected, state));
  }
  stop_labelling(detected);
  stop_labelling(loaded);
}

}  // namespace
}  // namespace symfold
