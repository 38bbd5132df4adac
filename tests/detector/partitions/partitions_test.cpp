// Node orders, the partition table and the three rewriting passes.

#include <gtest/gtest.h>

#include "tests/support/detector_support.h"

namespace symfold {
namespace {

using Ints = std::vector<int>;
using Strings = std::vector<std::string>;

Permutation permutation(Ints images) { return {static_cast<int>(images.size()), images.data()}; }

Ints images(const Permutation& p) { return {p.GetP(), p.GetP() + p.GetN()}; }

ValPerms record(int value, const std::vector<Ints>& perms) {
  ValPerms result;
  result.Value = value;
  for (const Ints& perm : perms) result.Perms.push_back(permutation(perm));
  return result;
}

void add_real_nodes(SymmetryDetection& detector, const std::vector<std::pair<std::string, int>>& nodes) {
  for (const auto& [name, size] : nodes) detector.GraphNodes.push_back({"T", name, true, size});
}

TEST(NodeOrder, ListsEachJoinOnceAndEverySubmodel) {
  SymmetryDetection detector;
  add_real_nodes(detector,
                 {{"J->a", 2}, {"S", 4}, {"J->b", 2}, {"S", 4}, {"A->b->c", 2}, {"->e", 2}, {"->f", 2}});
  detector.GraphNodes.push_back({"T", "hidden", false, 0});
  add_real_nodes(detector, {{"S->x", 2}});
  const std::string printed = captured([&] { detector.FindGraphNodeOrder(); });
  EXPECT_EQ(detector.GNOrder, (Strings{"J", "S", "S", "A", ""}));
  EXPECT_EQ(printed,
            "gn_name: J->a\ngn_name: S\ngn_name: J->b\ngn_name: S\ngn_name: A->b->c\ngn_name: ->e\n"
            "gn_name: ->f\ngn_name: S->x\n");
  EXPECT_EQ(detector.FindIndexGNOrder("S"), 1);
  EXPECT_EQ(detector.FindIndexGNOrder("T"), -1);
  EXPECT_EQ(detector.FindIndexSSOrder("S"), -1);
}

TEST(PartitionInfo, SumsTheNodesOfEachJoin) {
  SymmetryDetection detector;
  add_real_nodes(detector, {{"S1", 4}, {"J->a", 2}, {"S2", 6}, {"J->b", 2}, {"J2->a", 2}});
  detector.GraphNodes.push_back({"T", "J->hidden", false, 3});
  const std::string table =
      "AFTER CREATE: \nThere are 4 Partitions\n"
      "PartitionInfo\tCumPartitionInfo\tStaticCumPartitionInfo\n"
      "4\t0\t0\n7\t4\t4\n6\t11\t11\n2\t17\t17\n\n";
  EXPECT_EQ(captured([&] { detector.CreatePartitionInfo(); }),
            "gn_name: S1\natomic_model_name: S1\ngn_name: J->a\njoin_model_name: J\ngn_name: S2\n"
            "atomic_model_name: S2\ngn_name: J->b\ngn_name: J2->a\njoin_model_name: J2\n" +
                table);
  EXPECT_EQ(detector.PartitionInfo, (Ints{4, 7, 6, 2}));
  captured([&] { detector.CreatePartitionInfo(); });
  EXPECT_EQ(detector.CumPartitionInfo, (Ints{0, 4, 11, 17, 0, 4, 11, 17}));
  EXPECT_EQ(detector.StaticCumPartitionInfo, detector.CumPartitionInfo);
}

class Rewriting : public ::testing::Test {
 protected:
  Rewriting() {
    add_real_nodes(detector_, {{"A", 4}, {"J->x", 2}, {"J->y", 2}, {"B", 4}, {"K->x", 2}, {"K->y", 2}});
    detector_.GNOrder = {"A", "J", "B", "K"};
  }
  SymmetryDetection detector_;
};

TEST_F(Rewriting, ShrinksToTheInducedPermutations) {
  detector_.VPerms[0] = {record(3, {{3, 5, 4, 0, 2, 1}, {0, 2, 1, 3, 5, 4}}), record(2, {})};
  detector_.VPerms[2] = {record(1, {})};
  detector_.VPerms[5] = {record(4, {})};
  detector_.Bases = {0, 5, 7};
  const std::string printed = captured([&] { detector_.ShrinkPermutations(); });
  EXPECT_EQ(detector_.Bases, (Ints{0, -1, -1}));
  ASSERT_EQ(detector_.VPerms[0].size(), 2U);
  EXPECT_EQ(detector_.VPerms[0][0].Value, 2);
  EXPECT_EQ(images(detector_.VPerms[0][0].Perms[0]), (Ints{2, 3, 0, 1}));
  EXPECT_EQ(images(detector_.VPerms[0][0].Perms[1]), (Ints{0, 1, 2, 3}));
  EXPECT_EQ(detector_.VPerms[0][1].Value, -1);
  EXPECT_EQ(detector_.VPerms[-1][0].Value, 3);
  EXPECT_EQ(printed.substr(0, printed.find("  Val: 2")),
            "num_real: 6\nShrinkPermutations\n  A\n  J->x\n  J->y\n  B\n  K->x\n  K->y\n"
            "Shrink Map: \n 0 1 -1 2 3 -1\nShrinking...\nBase: 0  map[base]: 0\n  Val: 3  map[Val]: 2\n"
            "    2 3 0 1\n    2 3 0 1\n=============\n    0 1 2 3\n    0 1 2 3\n=============\n");
  EXPECT_NE(
      printed.find("====================\nAFTER SHRINK\nAll VPerms\nBase: 0\nValue: 2  (0 2)(1 3)  ()\n"),
      std::string::npos);
}

TEST_F(Rewriting, RefusesPermutationsThatLeaveTheRealNodes) {
  detector_.GraphNodes.push_back({"T", "A->v", false, 0});
  const std::vector<std::map<int, std::vector<ValPerms>>> tables = {
      {{0, {record(6, {})}}},
      {{0, {record(3, {{6, 1, 2, 3, 4, 5, 0}})}}},
      {{0, {record(3, {{3, 1, 2}})}}},
      {{0, {record(3, {{0, 0, 0, 0, 0, 0, 0}, {1, 1, 1, 1, 1, 2, 3}})}}},
      {{0, {record(3, {{2, 2, 2, 2, 2, 2, 2}})}}},
  };
  for (std::size_t i = 0; i < tables.size(); ++i) {
    detector_.VPerms = tables[i];
    detector_.HasWholeGroup = true;
    EXPECT_EQ(captured_errors([&] { detector_.ShrinkPermutations(); }),
              "symfold: expected permutations that move the submodels and joins among themselves\n")
        << i;
    EXPECT_TRUE(detector_.VPerms.empty() && detector_.Bases.empty() && !detector_.HasWholeGroup) << i;
  }
}

// The base of a submodel's variable goes with its records; the others stay.
TEST_F(Rewriting, LeavesBasesOutThatAreNoRealNodes) {
  detector_.GraphNodes.push_back({"T", "A->v", false, 0});
  detector_.VPerms[0] = {record(3, {{3, 4, 5, 0, 1, 2, 6}})};
  detector_.VPerms[6] = {record(7, {{3, 4, 5, 0, 1, 2, 6}})};
  detector_.HasWholeGroup = true;
  EXPECT_EQ(captured_errors([&] { detector_.ShrinkPermutations(); }), "");
  EXPECT_EQ(detector_.Bases, Ints{0});
  EXPECT_EQ(images(detector_.VPerms[0][0].Perms[0]), (Ints{2, 3, 0, 1}));
  EXPECT_TRUE(detector_.HasWholeGroup);
}

TEST_F(Rewriting, AdjustsToStateVectorOrder) {
  detector_.SSOrder = {"J", "K", "A", "B"};
  detector_.Bases = {0, -1};
  detector_.VPerms[0] = {record(2, {{2, 3, 0, 1}})};
  detector_.VPerms[-1] = {record(-1, {{0, 1, 2, 3}})};
  detector_.PartitionInfo = {4, 2, 4, 2};
  detector_.CumPartitionInfo = detector_.StaticCumPartitionInfo = {0, 4, 6, 10};
  const std::string printed = captured([&] {
    detector_.AdjustPermutations();
    detector_.AdjustPartitionInfo();
  });
  EXPECT_EQ(detector_.Bases, (Ints{-1, 2}));
  EXPECT_EQ(detector_.VPerms[2][0].Value, 3);
  EXPECT_EQ(images(detector_.VPerms[2][0].Perms[0]), (Ints{1, 0, 3, 2}));
  EXPECT_EQ(detector_.PartitionInfo, (Ints{2, 2, 4, 4}));
  EXPECT_EQ(detector_.CumPartitionInfo, (Ints{0, 2, 4, 8}));
  EXPECT_EQ(detector_.StaticCumPartitionInfo, (Ints{0, 2, 4, 8}));
  EXPECT_EQ(
      printed.find("ADJUST PERMUTATIONS\nSS Order\tGraphNode Order: \nSize: 4\n  J\t\t\tA\n  K\t\t\tJ\n"),
      0U);
  EXPECT_NE(
      printed.find("new_bases: \n\tbase: -1\n\tbase: 2\nnew vperms: \nValue: -1  ()\nValue: 3  (0 1)(2 3)\n"
                   "=====================\nAfter Adjustment\nAll VPerms\n"),
      std::string::npos);
  EXPECT_NE(printed.find("SSOrder: J\nSSOrder: K\nSSOrder: A\nSSOrder: B\nNew partition Info: \n"),
            std::string::npos);
}

TEST_F(Rewriting, CarriesMissingNamesWithoutLookingThemUp) {
  detector_.SSOrder = {"J", "K", "A"};
  detector_.VPerms[2] = {record(0, {{2, 3, 0, 9}})};
  const std::string printed = captured([&] { detector_.AdjustPermutations(); });
  EXPECT_NE(printed.find(
                "ERROR: Sizes differ\nSSOrder: 3  GNORder: 4\n  J\t\t\tA\n  K\t\t\tJ\n  A\t\t\tB\nPermSize"),
            std::string::npos);
  EXPECT_NE(printed.find("p_it too big: 9\n"), std::string::npos);
  EXPECT_EQ(detector_.Bases, Ints{-1});
  EXPECT_EQ(detector_.VPerms[-1][0].Value, 2);
  detector_.PartitionInfo = {4, 2, 4, 2};
  EXPECT_EQ(captured_errors([&] { detector_.AdjustPartitionInfo(); }),
            "symfold: expected as many partitions as names in SSOrder (3), got 4\n");
  EXPECT_EQ(detector_.PartitionInfo, (Ints{4, 2, 4, 2}));
  detector_.SSOrder = {"J", "K", "A", "X"};
  EXPECT_EXIT(detector_.AdjustPartitionInfo(), ::testing::ExitedWithCode(1), "");
}

TEST(Trim, LeavesOneCompositePerRecord) {
  SymmetryDetection detector;
  const Ints id = {0, 1, 2};
  detector.Bases = {0, 1};
  detector.VPerms[0] = {record(1, {id, {1, 0, 2}, id}),
                        record(2, {{1, 2, 0}}),
                        record(3, {id, id}),
                        record(4, {{1, 2, 0}, {1, 0, 2}}),
                        record(5, {{1, 2, 0}, {2, 0, 1}}),
                        record(6, {})};
  detector.VPerms[1] = {record(0, {id})};
  const std::string printed = captured([&] { detector.TrimPermutations(); });
  Strings kept;
  for (const ValPerms& r : detector.VPerms[0]) {
    ASSERT_EQ(r.Perms.size(), 1U);
    std::string text = std::to_string(r.Value) + ":";
    for (const int image : images(r.Perms[0])) text += " " + std::to_string(image);
    kept.push_back(text);
  }
  EXPECT_EQ(kept, (Strings{"1: 1 0 2", "2: 2 0 1", "4: 0 2 1", "5: 0 1 2"}));
  EXPECT_EQ(detector.Bases, (Ints{0, 1}));
  EXPECT_TRUE(detector.VPerms[1].empty());
  EXPECT_NE(printed.find("() is an identity\n() is an identity\n() is an identity\n() is an identity\n"
                         "() is an identity\nAfter TrimPermutation Part 1: \n"),
            std::string::npos);
  EXPECT_NE(printed.find("PermSize: 3\nbase: 0\nbase: 1\nAfter TrimPermutation: \n"), std::string::npos);
}

TEST(Trim, InvertsAgainUnderABaseListedTwice) {
  SymmetryDetection detector;
  detector.Bases = {-1, -1};
  detector.VPerms[-1] = {record(-1, {{1, 2, 0}})};
  captured([&] { detector.TrimPermutations(); });
  EXPECT_EQ(images(detector.VPerms[-1][0].Perms[0]), (Ints{1, 2, 0}));
}

TEST(Trim, RefusesWhatIsNoPermutationOfThePartitions) {
  for (const std::vector<Ints>& perms : std::vector<std::vector<Ints>>{
           {{1, 0}, {1, 0, 2}}, {{1, 0, 2}, {1, 0}}, {{0, 0, 2}}, {{1, 0, 3}}, {{1, 0, -1}}}) {
    SymmetryDetection detector;
    detector.Bases = {0};
    detector.VPerms[0] = {record(1, perms)};
    EXPECT_EQ(captured_errors([&] { detector.TrimPermutations(); }),
              "symfold: base 0, value 1: expected a permutation of " + std::to_string(perms.back().size()) +
                  " partitions\n");
    EXPECT_TRUE(detector.VPerms.empty() && detector.Bases.empty());
  }
}

}  // namespace
}  // namespace symfold
