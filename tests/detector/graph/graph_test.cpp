// The model composition graph: nodes, edges, sort and the files.

#include <gtest/gtest.h>

#include <filesystem>

#include "tests/support/detector_support.h"

namespace symfold {
namespace {

std::vector<std::string> names(const SymmetryDetection& detector) {
  std::vector<std::string> result;
  for (const ModelCompGraphNode& node : detector.GraphNodes) result.push_back(node.Name);
  return result;
}

std::vector<std::string> edges(const SymmetryDetection& detector) {
  std::vector<std::string> result;
  for (const ModelCompGraphEdge& edge : detector.GraphEdges)
    result.push_back(edge.From.Name + " " + edge.To.Name);
  return result;
}

using Strings = std::vector<std::string>;

TEST(TypesFile, GivesSubmodelNodesAndTypes) {
  const struct {
    const char* text;
    Strings nodes, types;
    const char* line;
  } cases[] = {
      {"0\n", {}, {"join"}, "There are : 0 submodels\n"},
      {"", {}, {"join"}, "There are : 0 submodels\n"},
      {"many P1 Phil", {}, {"join"}, "There are : 0 submodels\n"},
      {"99999999999999999999 P1 Phil", {}, {"join"}, "There are : 0 submodels\n"},
      {"3 P1\tPhil\nP2 Phil F1\nFork",
       {"P1", "P2", "F1"},
       {"Phil", "Fork", "join"},
       "There are : 3 submodels\n"},
      {"3\nP1 Phil\nP2", {"P1"}, {"Phil", "join"}, "There are : 3 submodels\n"},
      {"-2\nP1 Phil\n", {}, {"join"}, "There are : -2 submodels\n"},
  };
  for (const auto& c : cases) {
    const TempDir dir;
    write_file("types", c.text);
    SymmetryDetection detector;
    EXPECT_EQ(captured([&] { detector.InitFindMCG(); }), std::string(c.line) + "RTTI test: \n") << c.text;
    EXPECT_EQ(names(detector), c.nodes) << c.text;
    EXPECT_EQ(detector.NodeTypes, c.types) << c.text;
  }
}

TEST(TypesFile, IsRefusedWithTheTypeOfTheJoinsAndReportedWhenMissing) {
  const TempDir dir;
  SymmetryDetection missing;
  EXPECT_EQ(captured([&] { missing.InitFindMCG(); }), "Error: reading types file\nRTTI test: \n");
  write_file("types", "2 P1 Phil\nB join\n");
  SymmetryDetection detector;
  EXPECT_EQ(captured_errors([&] { detector.InitFindMCG(); }),
            "symfold: types: expected a submodel type other than \"join\" for B\n");
  EXPECT_EQ(names(detector), Strings{});
  EXPECT_EQ(detector.NodeTypes, Strings{"join"});
}

TEST(Graph, HasJoinNodesLocalNodesAndTwoEdgesPerEntry) {
  const TempDir dir;
  TestModel model({{"J1", {{"s", {{"P1", "f"}, {"P2", "f"}}}, {"b", {{"X", "g"}}}}}, {"J2", {}}});
  write_file("types", "2\nP1 Phil\nP2 Phil\n");
  SymmetryDetection detector(model.wrapper());
  const std::string printed = captured([&] {
    detector.InitFindMCG();
    detector.FindMCG_JoinNodes();
    detector.FindMCG_PrivateNodes();
  });
  const std::string rtti = typeid(JoinModel).name();
  EXPECT_EQ(printed, "There are : 2 submodels\nRTTI test: \njoin name: J1\tRTTI name: " + rtti +
                         "\njoin name: J2\tRTTI name: " + rtti +
                         "\njoinName: J1\njoinName: J2\nNumber of Shared State Vars: 2\n"
                         "Number of Shared State Vars: 0\n");
  EXPECT_EQ(names(detector), (Strings{"P1", "P2", "J1->s", "J1->b", "P1->f", "P2->f", "X->g"}));
  EXPECT_EQ(edges(detector),
            (Strings{"J1->s P1->f", "P1->f P1", "J1->s P2->f", "P2->f P2", "J1->b X->g", "X->g X"}));
  EXPECT_EQ(detector.NodeTypes, (Strings{"Phil", "join", "Phil->f", "unknown->g"}));
  EXPECT_EQ(detector.GraphNodes[2].StateSize, 2);
  EXPECT_TRUE(detector.GraphNodes[3].PrivateOrJoin);
  EXPECT_FALSE(detector.GraphNodes[4].PrivateOrJoin);
  EXPECT_EQ(detector.FindType("P2->f"), "Phil->f");
  EXPECT_EQ(detector.FindType("X"), "unknown");
  // The edge to X leads nowhere: reported, and left out of both files.
  EXPECT_EQ(captured([&] { detector.PrintMCG(); }), "error: index not found\nX->g : X\n");
  EXPECT_EQ(read_file("model_comp_graph"), "7 5 4 2 4 6\n2 4\n4 0\n2 5\n5 1\n3 6\n");
  EXPECT_EQ(captured([&] { detector.WriteMCGViz(); }), "error: index not found\nX->g : X\n");
  EXPECT_EQ(
      read_file("mcg.viz"),
      "graph structs {\n  J1_s -- P1_f;\n  P1_f -- P1;\n  J1_s -- P2_f;\n  P2_f -- P2;\n  J1_b -- X_g;\n}\n");
  const std::string listing = captured([&] { detector.PrintGraphEdges(); });
  EXPECT_NE(listing.find("J1->b -- X->g\nerror: index not found\nX->g : X\nX->g -- X\n\n"),
            std::string::npos);
}

TEST(Graph, GetJoinNameIsThePartBeforeTheFirstArrow) {
  SymmetryDetection detector;
  const Strings cases[] = {{"J1->a", "J1"}, {"J1->a->b", "J1"}, {"->a", ""}, {"P1", ""}, {"-", ""}, {"", ""}};
  for (const auto& c : cases) EXPECT_EQ(detector.GetJoinName(c[0]), c[1]) << c[0];
}

TEST(NodeSort, PutsTypesTogetherByExchanges) {
  SymmetryDetection detector;
  const Strings sorted_types[] = {{"A1", "A"}, {"B1", "B"}, {"B2", "B"}, {"A2", "A"}};
  for (const auto& node : sorted_types) detector.GraphNodes.push_back({node[1], node[0], false, 0});
  detector.NodeTypes = {"A", "B"};
  EXPECT_EQ(captured([&] { detector.FindMCG_Sort(); }), "Map: \n0  1  2  3  \nMap After: \n0  3  2  1  \n");
  EXPECT_EQ(names(detector), (Strings{"A1", "A2", "B2", "B1"}));
  EXPECT_EQ(captured([&] { detector.FindMCG_Sort(); }), "Map: \n0  1  2  3  \nMap After: \n0  1  2  3  \n");
  SymmetryDetection empty;
  EXPECT_EQ(captured([&] { empty.FindMCG_Sort(); }), "Map: \n\nMap After: \n\n");
}

// The sort as its passes are told, one comparison of names after the other. Some types have no entry.
TEST(NodeSort, EqualsTheLiteralPassesOnRandomGraphs) {
  std::srand(7);
  for (int round = 0; round < 1000; ++round) {
    SymmetryDetection detector;
    const int types = 1 + std::rand() % 12;
    for (int t = 0; t < types; ++t) detector.NodeTypes.push_back("T" + std::to_string(t));
    for (int i = std::rand() % 60; i > 0; --i) {
      detector.GraphNodes.push_back({"T" + std::to_string(std::rand() % (types + 1)), "", false, 0});
    }
    for (std::size_t i = 0; i < detector.GraphNodes.size(); ++i) {
      detector.GraphNodes[i].Name = std::to_string(i);
    }
    auto expected = detector.GraphNodes;
    std::size_t position = 0;
    for (const std::string& type : detector.NodeTypes) {
      for (auto& node : expected) {
        if (node.Type == type) std::swap(node, expected[position++]);
      }
    }
    const std::string printed = captured([&] { detector.FindMCG_Sort(); });
    std::string map_after = "Map After: \n";
    for (std::size_t i = 0; i < expected.size(); ++i) {
      ASSERT_EQ(detector.GraphNodes[i].Name, expected[i].Name) << "round " << round;
      ASSERT_EQ(detector.GraphNodes[i].Type, expected[i].Type) << "round " << round;
      map_after += expected[i].Name + "  ";
    }
    ASSERT_TRUE(printed.ends_with(map_after + "\n")) << printed;
  }
}

TEST(GraphFile, IsTheWorkedExample) {
  const TempDir dir;
  TestModel model({{"J", {{"s", {{"P1", "v"}, {"F1", "v"}, {"P2", "v"}}}}}});
  write_file("types", "3\nP1 A\nF1 B\nP2 A\n");
  SymmetryDetection detector(model.wrapper());
  const std::string printed = captured([&] { detector.FindMCG(); });
  EXPECT_EQ(names(detector), (Strings{"P1", "P2", "F1", "J->s", "P1->v", "P2->v", "F1->v"}));
  EXPECT_NE(printed.find("Map After: \n0  2  1  3  4  6  5  \nThere are 7 GraphNodes\n"), std::string::npos);
  EXPECT_NE(printed.find("\ti: 3\tName: J->s\tType: join\tPrivateOrJoin: 1\tStateSize: 2\n"),
            std::string::npos);
  EXPECT_EQ(read_file("model_comp_graph"), "7 6 5 2 3 4 6\n3 4\n4 0\n3 6\n6 2\n3 5\n5 1\n");
}

// The number of colours is that of the types, also where nodes of one type stand apart.
TEST(GraphFile, CountsTheTypesOrIfOneHasNoNodeTheRuns) {
  const TempDir dir;
  SymmetryDetection unsorted;
  for (const char* type : {"A", "B", "A", "A"}) unsorted.GraphNodes.push_back({type, type, false, 0});
  unsorted.NodeTypes = {"B", "A"};
  unsorted.PrintMCG();
  EXPECT_EQ(read_file("model_comp_graph"), "4 0 2 1 2\n");
  unsorted.NodeTypes = {"B", "join", "A"};
  unsorted.PrintMCG();
  EXPECT_EQ(read_file("model_comp_graph"), "4 0 3 1 2\n");
  SymmetryDetection empty;
  captured([&] { empty.PrintMCG(); });
  EXPECT_EQ(read_file("model_comp_graph"), "0 0 0\n");
  EXPECT_EQ(captured([&] {
              empty.PrintGraphNodes();
              empty.PrintGraphEdges();
              empty.WriteMCGViz();
            }),
            "There are 0 GraphNodes\nGraphEdges: 0\n\n");
  EXPECT_EQ(read_file("mcg.viz"), "graph structs {\n}\n");
  write_file("types", "2 P1 A P2 A");
  SymmetryDetection unjoined;
  captured([&] { unjoined.FindMCG(); });
  EXPECT_EQ(read_file("model_comp_graph"), "2 0 1\n");
  EXPECT_EQ(unjoined.Bases, std::vector<int>{0});
}

// Without room for the graph the engine must not read a part of it.
TEST(GraphFile, ThatCannotBeWrittenToItsEndIsRemoved) {
  const TempDir dir;
  TestModel model({{"J", {{"s", {{"P1", "v"}, {"P2", "v"}}}}}});
  write_file("types", "2\nP1 A\nP2 A\n");
  for (const char* file : {"model_comp_graph", "mcg.viz"}) std::filesystem::create_symlink("/dev/full", file);
  SymmetryDetection detector(model.wrapper());
  EXPECT_EQ(captured_errors([&] { detector.FindMCG(); }),
            "symfold: model_comp_graph: error: cannot be written: No space left on device\n"
            "symfold: mcg.viz: error: cannot be written: No space left on device\n"
            "model_comp_graph: error: cannot be opened for reading\n");
  EXPECT_FALSE(detector.HasWholeGroup);
  EXPECT_EQ(detector.OrigPermutations.size(), 1U);
  for (const char* file : {"model_comp_graph", "mcg.viz"}) std::filesystem::create_directory(file);
  EXPECT_EQ(captured([&] {
              detector.PrintMCG();
              detector.WriteMCGViz();
            }),
            "error: can't open model_comp_graph\nerror: can't open mcg.viz\n");
}

}  // namespace
}  // namespace symfold
