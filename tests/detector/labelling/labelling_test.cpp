// Static tables, the canonical label search against its literal twin, and the state tools.

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <numeric>
#include <random>
#include <set>

#include "detector/greedy_labeller.h"
#include "tests/oracles/literal_labeller.h"
#include "tests/support/detector_support.h"

namespace symfold {
namespace {

using Ints = std::vector<int>;

ValPerms record(int value, const std::vector<Ints>& perms) {
  ValPerms result;
  result.Value = value;
  for (const Ints& p : perms) result.Perms.emplace_back(static_cast<int>(p.size()), p.data());
  return result;
}

// Gives a detector tables of its own, offsets filled in.
void set_tables(SymmetryDetection& detector, const LabelTables& tables) {
  detector.PartitionInfo = tables.sizes;
  int offset = 0;
  for (const int size : tables.sizes) {
    detector.CumPartitionInfo.push_back(offset);
    offset += size;
  }
  detector.StaticCumPartitionInfo = detector.CumPartitionInfo;
  for (const auto& [base, records] : tables.records) {
    detector.Bases.push_back(base);
    detector.VPerms[base] = records;
  }
}

class RandomTables {
 public:
  explicit RandomTables(unsigned seed) : random_(seed) {}

  int below(int n) { return static_cast<int>(random_() % static_cast<unsigned>(n)); }

  // Several permutations in a record, empty ones and repeated values all occur. Permutations exchange
  // partitions of equal size only; in wild tables some entries lead elsewhere, but never out of the state.
  LabelTables tables(bool wild = false) {
    LabelTables result;
    // Of more partitions some permutations move few.
    for (int n = 1 + (below(4) == 0 ? 30 : below(9)); n > 0; --n)
      result.sizes.push_back(below(2) == 0 ? 2 : below(12));
    for (int base = below(4); base > 0; --base) {
      std::vector<ValPerms> records;
      for (int r = below(6); r > 0; --r) {
        std::vector<Ints> perms;
        for (int p = below(4); p > 0; --p) {
          perms.push_back(permutation(result.sizes));
          if (wild && below(4) == 0) lead_astray(perms.back(), result.sizes);
        }
        records.push_back(record(below(4), perms));
      }
      result.records.emplace_back(base, std::move(records));
    }
    return result;
  }

  std::string state(const Ints& sizes) {
    std::string bytes(static_cast<std::size_t>(std::accumulate(sizes.begin(), sizes.end(), 0)), '\0');
    const int values = below(2) == 0 ? 2 : 256;
    for (char& byte : bytes) byte = static_cast<char>(values == 2 ? below(2) : below(256));
    return bytes;
  }

 private:
  Ints permutation(const Ints& sizes) {
    Ints images(sizes.size());
    std::iota(images.begin(), images.end(), 0);
    const std::size_t first = images.size() > 9 ? images.size() - 4 : 0;
    for (std::size_t i = first; i < images.size(); ++i) {
      const auto j = static_cast<std::size_t>(below(static_cast<int>(images.size())));
      if (sizes[i] == sizes[j]) std::swap(images[i], images[j]);
    }
    return images;
  }

  void lead_astray(Ints& images, const Ints& sizes) {
    const auto c = static_cast<std::size_t>(below(static_cast<int>(sizes.size())));
    const int d = below(static_cast<int>(sizes.size()));
    if (std::accumulate(sizes.begin() + d, sizes.end(), 0) >= sizes[c]) images[c] = d;
  }

  std::mt19937 random_;
};

TEST(CanonicalLabel, EqualsTheLiteralSearchOnRandomTables) {
  for (unsigned seed = 0; seed < 2000; ++seed) {
    RandomTables random(seed);
    const LabelTables tables = random.tables();
    SymmetryDetection detector;
    set_tables(detector, tables);
    start_labelling(detector);
    const GreedyGroup group(detector);
    GreedyLabeller labeller(group);
    for (int i = 0; i < 50; ++i) {
      // With a base added afterwards, the tables are no longer taken as those that a plan was made for.
      if (i == 40) detector.Bases.push_back(9);
      const std::string state = random.state(tables.sizes);
      ASSERT_NO_FATAL_FAILURE(expect_literal_label(detector, tables, state)) << "seed " << seed;
      const LiteralLabel expected = literal_label(tables, state);
      std::string label(state.size(), '\0');
      std::vector<short> witness(tables.sizes.size());
      labeller.find(state.data(), label.data());
      labeller.find_witness(witness.data());
      ASSERT_EQ(label, expected.state) << "seed " << seed;
      ASSERT_EQ(witness, expected.witness) << "seed " << seed;
    }
    stop_labelling(detector);
  }
}

TEST(CanonicalLabel, EqualsTheLiteralSearchOnWildTables) {
  for (unsigned seed = 0; seed < 2000; ++seed) {
    RandomTables random(seed);
    const LabelTables tables = random.tables(true);
    SymmetryDetection detector;
    set_tables(detector, tables);
    start_labelling(detector);
    for (int i = 0; i < 20; ++i) {
      const std::string state = random.state(tables.sizes);
      ASSERT_NO_FATAL_FAILURE(expect_literal_label(detector, tables, state, true)) << "seed " << seed;
    }
    stop_labelling(detector);
  }
}

TEST(CanonicalLabel, TakesPartitionsInAnyOrder) {
  SymmetryDetection detector;
  set_tables(detector, {{2, 1, 2}, {{0, {record(2, {{2, 1, 0}})}}}});
  detector.CumPartitionInfo = {3, 2, 0};
  start_labelling(detector);
  EXPECT_EQ(label_of(detector, "abcde"), "decab");
  stop_labelling(detector);
}

// Static arrays that have been changed since the conversion count as they are.
TEST(CanonicalLabel, ReadsTheStaticArraysAsTheyAre) {
  const LabelTables tables{{2, 2, 2}, {{0, {record(1, {{1, 0, 2}}), record(2, {{2, 1, 0}})}}}};
  const std::vector<std::pair<std::function<void(SymmetryDetection&)>, std::string>> changes = {
      {[](SymmetryDetection&) {}, "ccbbaa"},
      {[](SymmetryDetection& detector) { detector.static_num_vperms[0] = 1; }, "bbaacc"},
      {[](SymmetryDetection& detector) { detector.num_bases = 0; }, "aabbcc"},
      {[](SymmetryDetection& detector) { detector.static_partition_sizes[2] = 0; }, "bbbbaa"},
      {[](SymmetryDetection& detector) { detector.static_partition_offsets[2] = 2; }, "bbbbZZ"},
  };
  for (const auto& [change, label] : changes) {
    SymmetryDetection detector;
    set_tables(detector, tables);
    start_labelling(detector);
    std::fill_n(detector.af_state_scratch_b, 6, static_cast<unsigned char>('Z'));
    change(detector);
    EXPECT_EQ(label_of(detector, "aabbcc"), label);
    detector.num_bases = 1;
    stop_labelling(detector);
  }
}

// States of more partitions than a short can number have labels, only no permutations.
TEST(CanonicalLabel, TakesAnyNumberOfPartitions) {
  const int n = 40'000;
  Ints images(n);
  std::iota(images.begin(), images.end(), 0);
  std::swap(images[0], images[n - 1]);
  SymmetryDetection detector;
  set_tables(detector, {Ints(n, 1), {{0, {record(n - 1, {images})}}}});
  start_labelling(detector);
  std::string state(n, 'a');
  state.back() = 'b';
  const std::string label = 'b' + std::string(n - 1, 'a');
  EXPECT_EQ(label_of(detector, state), label);
  stop_labelling(detector);
}

TEST(CanonicalLabel, TakesStatesWithoutBytesOrAddress) {
  SymmetryDetection detector;
  set_tables(detector, {{0, 0}, {{0, {record(1, {{1, 0}})}}}});
  start_labelling(detector);
  std::vector<int> result;
  std::vector<int> partitions{1};
  for (int changed = 0; changed < 2; ++changed) {
    detector.FindCanonicalLabel(nullptr, nullptr, nullptr);
    captured([&] {
      EXPECT_TRUE(detector.IsPartiallyCanonical(1, nullptr));
      detector.FindK(nullptr, partitions, result, 0);
    });
    detector.static_num_vperms[0] = 0;  // the second time step by step
  }
  EXPECT_EQ(result, (Ints{0, 0}));
  stop_labelling(detector);
}

TEST(CanonicalLabel, FailsOnEntriesThatLeadOutsideTheState) {
  const auto run = [](const Ints& sizes, const Ints& images, int state_size, int base = 0) {
    SymmetryDetection detector;
    set_tables(detector, {sizes, {{0, {record(1, {images})}}}});
    start_labelling(detector);
    detector.TotalStateSize = state_size;
    detector.Bases = {base};
    std::cout.rdbuf(std::cerr.rdbuf());
    label_of(detector, std::string(16, 'x'));
  };
  const auto exits = ::testing::ExitedWithCode(1);
  EXPECT_EXIT(run({2, 2}, {1, 2}, 4), exits, "^ERROR: moveToIndex: 2\n$");
  EXPECT_EXIT(run({2, 2}, {1, -1}, 4), exits, "^ERROR: moveToIndex: -1\n$");
  EXPECT_EXIT(run({2, 2}, {1}, 4), exits, "^ERROR: moveToIndex: -1\n$");
  EXPECT_EXIT(run({4, 2}, {1, 0}, 6), exits, "^ERROR: moveToIndex: 1\n$");
  EXPECT_EXIT(run({4, -2}, {0, 1}, 2), exits, "^ERROR: moveToIndex: 0\n$");
  EXPECT_EXIT(run({2, 2}, {1, 0}, 3), exits, "^ERROR: moveToIndex: 1\n$");
  EXPECT_EXIT(run({2, 2}, {1, 0}, 4, 3), exits, "^Base index not found.\n$");
}

TEST(StaticTables, AreASnapshotThatIsPrintedAndReleased) {
  SymmetryDetection detector;
  set_tables(detector, {{2, 4}, {{1, {record(0, {{1, 0}, {0, 1}})}}, {0, {}}}});
  detector.VPerms.erase(0);
  start_labelling(detector);
  EXPECT_EQ(detector.VPerms.count(0), 1U);
  detector.VPerms.clear();
  const std::string tables =
      "Bases: \n  1\n  0\nThere are: 2 Partitions\n"
      "PartitionInfo\tCumPartitionInfo\tStaticCumPartitionInfo\n2\t0\n4\t2\n"
      "Permutation Information: \n  Base: 1 has 1 ValPerms\n    Value: 0\n"
      "      (0 1)\n      ()\n  Base: 0 has 0 ValPerms\n";
  EXPECT_EQ(captured([&] { detector.PrintStaticMembers(); }), tables);
  stop_labelling(detector);
  detector.CleanStaticMembers();
  EXPECT_EQ(detector.static_vperms, nullptr);
  detector.num_partitions = 3;
  EXPECT_EQ(captured_errors([&] { detector.ConvertSTLToStatic(); }),
            "symfold: num_partitions: expected at most the number of partitions, 2, got 3\n");
  EXPECT_EQ(detector.num_bases, 0);
}

TEST(Lifecycle, SumsTheSizesAndStartsEmpty) {
  SymmetryDetection detector;
  EXPECT_EQ(detector.NumJoins, -1);
  detector.Cleanup();
  EXPECT_EQ(captured([&] { detector.Initialize(); }), "Initialize() TotalStateSize: 0\n");
  detector.Cleanup();
  detector.PartitionInfo = {4, 2, 2};
  EXPECT_EQ(detector.DetermineTotalStateSize(), 8);
  EXPECT_EQ(detector.GetTotalStateSize(), 8);
  detector.PartitionInfo = {2147483647, 2147483647};
  EXPECT_EQ(detector.DetermineTotalStateSize(), -2);
  captured([&] { EXPECT_THROW(detector.Initialize(), std::bad_alloc); });
  Wrapper wrapper{nullptr, 0};
  const SymmetryDetection around(&wrapper);
  EXPECT_EQ(around.model, &wrapper);
  EXPECT_EQ(around.NumJoins, 0);
}

// One image under one stored permutation, compared up to the end of partition k.
TEST(PrefixTest, EqualsItsDefinitionOnRandomTables) {
  for (unsigned seed = 0; seed < 500; ++seed) {
    RandomTables random(seed);
    const LabelTables tables = random.tables();
    SymmetryDetection detector;
    set_tables(detector, tables);
    start_labelling(detector);
    for (int i = 0; i < 20; ++i) {
      std::string state = random.state(tables.sizes);
      const int k = random.below(static_cast<int>(tables.sizes.size()));
      const auto prefix =
          static_cast<std::size_t>(std::accumulate(tables.sizes.begin(), tables.sizes.begin() + k + 1, 0));
      bool expected = true;
      for (const auto& [base, records] : tables.records) {
        for (const ValPerms& point : records) {
          std::vector<ValPerms> same;
          std::copy_if(records.begin(), records.end(), std::back_inserter(same),
                       [&](const ValPerms& r) { return r.Value == point.Value; });
          std::string image = state;
          for (const ValPerms& r : same) {
            for (const Permutation& p : r.Perms)
              image = moved(tables.sizes, {p.GetP(), p.GetP() + p.GetN()}, image);
          }
          expected = expected && image.compare(0, prefix, state, 0, prefix) <= 0;
        }
      }
      bool actual = false;
      EXPECT_EQ(captured([&] { actual = detector.IsPartiallyCanonical(k, state.data()); }),
                "num_bytes: " + std::to_string(prefix) + "\n");
      ASSERT_EQ(actual, expected) << "seed " << seed << " state " << i;
    }
    stop_labelling(detector);
  }
}

TEST(StateTools, FindTheLargestPartitionAndPrintStates) {
  SymmetryDetection detector;  // not initialised: the tools read the containers
  set_tables(detector, {{2, 2, 2}, {}});
  std::string state("\x09\x01\x02\x00\x09\x01", 6);
  Ints results;
  const auto find = [&](Ints partitions, int n) {
    return captured([&] { detector.FindK(state.data(), partitions, results, n); });
  };
  EXPECT_EQ(find({2, 0, 1}, 2), "Largest state: |9\nSmallestK: 0\n");
  EXPECT_EQ(find({1, 0}, 1), "Largest state: |9\nSmallestK: 1\n");
  EXPECT_EQ(find({}, 0), "Largest state: \nSmallestK: -1\n");
  EXPECT_EQ(captured_errors([&] { find({2}, 3); }),
            "symfold: FindK: expected a partition with 3 bytes from its start, got 2\n");
  EXPECT_EQ(results, (Ints{0, 1, -1, -1}));
  for (const int k : {-1, 3}) {
    EXPECT_EQ(captured_errors([&] { EXPECT_TRUE(detector.IsPartiallyCanonical(k, state.data())); }),
              "symfold: IsPartiallyCanonical: expected a partition, got " + std::to_string(k) + "\n");
  }
  EXPECT_EQ(captured([&] { detector.PrintState(state.data(), 6); }), "|9|2|9\n");
  detector.StaticCumPartitionInfo = {0, 3, 4};
  EXPECT_EQ(captured([&] { detector.PrintState(state.data(), 5); }), "|929\n");
  detector.StaticCumPartitionInfo = {0, 2};
  std::string written("\xff\x00\x0a\x00", 4);
  FILE* file = std::tmpfile();
  detector.WriteState(written.data(), 4, file);
  std::rewind(file);
  char text[16] = {};
  EXPECT_STREQ(std::fgets(text, sizeof text, file), "|ff|a\n");
  std::fclose(file);
}

}  // namespace
}  // namespace symfold
