// The permutation file: what is written is read back; what cannot be right changes nothing.

#include <gtest/gtest.h>

#include <filesystem>
#include <locale>
#include <random>
#include <sstream>

#include "detector/permfile/perm_table.h"
#include "tests/support/detector_support.h"

namespace symfold {
namespace {

// Two partitions of two bytes and one of four; a base with a record of two permutations and an empty record.
const char* const kFile = "3\n2 4 2 \n0 2 6 \n2\n0\n2\n2\n2\n2 1 0 \n0 1 2 \n-1\n0\n1\n0\n";

std::string name = "permutations";

TEST(PermFile, IsReadAndWrittenToTheLetter) {
  const TempDir dir;
  write_file(name, kFile);
  SymmetryDetection detector;
  EXPECT_EQ(
      captured([&] { detector.ReadPermFile(name); }),
      "Number of bases: 2\nBase: 0\n\tNum Vperm: 2\n\tvalue: 2  num_perm: 2\n\t\tPerm: (0 2)\n\t\tPerm: ()\n"
      "\tvalue: -1  num_perm: 0\nBase: 1\n\tNum Vperm: 0\n");
  EXPECT_EQ(detector.PartitionInfo, (std::vector<int>{2, 4, 2}));
  EXPECT_EQ(detector.StaticCumPartitionInfo, (std::vector<int>{0, 2, 6}));
  EXPECT_EQ(detector.num_partitions, 0);
  std::string copy = "copy";
  EXPECT_EQ(captured([&] { detector.WritePermFile(copy); }), "");
  EXPECT_EQ(read_file(copy), kFile);
  EXPECT_EQ(std::distance(std::filesystem::directory_iterator("."), {}), 2);
  captured([&] { detector.ReadPermFile(name); });
  EXPECT_EQ(detector.CumPartitionInfo, (std::vector<int>{0, 2, 6, 0, 2, 6}));
  EXPECT_EQ(detector.Bases, (std::vector<int>{0, 1, 0, 1}));
  EXPECT_EQ(detector.VPerms[0].size(), 2U);
  SymmetryDetection empty;
  empty.Bases = {-1};
  captured([&] { empty.WritePermFile(copy); });
  EXPECT_EQ(read_file(copy), "0\n\n\n1\n-1\n0\n");
  EXPECT_EQ(empty.VPerms.count(-1), 1U);
}

// Sound tables with some numbers changed: what is written is read back equal, and what is refused with the
// old file kept is what reading refuses.
TEST(PermFile, TakesEqualTablesInBothDirections) {
  const TempDir dir;
  std::mt19937 random(5);
  const auto below = [&](int n) { return static_cast<int>(random() % static_cast<unsigned>(n)); };
  const auto disturb = [&](int& number) {
    if (below(12) == 0) number += below(3) - 1 + (below(9) == 0 ? kMaxStateSize : 0);
  };
  std::ostringstream refusals;
  int written_count = 0;
  for (int round = 0; round < 200; ++round) {
    SymmetryDetection detector;
    detector.SetRefusals(&refusals);
    int offset = 0;
    for (int n = below(6); n > 0; --n) {
      detector.PartitionInfo.push_back(2 * below(2));
      detector.CumPartitionInfo.push_back(offset);
      offset += detector.PartitionInfo.back();
      disturb(detector.PartitionInfo.back());
      disturb(detector.CumPartitionInfo.back());
    }
    const int n = static_cast<int>(detector.PartitionInfo.size());
    for (int b = below(3); b > 0; --b) {
      detector.Bases.push_back(below(n + 1) - 1);
      disturb(detector.Bases.back());
      if (below(4) == 0) continue;
      auto& records = detector.VPerms[detector.Bases.back()];
      for (int r = below(n + 1) + (below(20) == 0 ? 1 : 0); r > 0; --r) {
        auto& record = records.emplace_back();
        record.Value = below(n + 1) - 1;
        disturb(record.Value);
        for (int p = below(3); p > 0; --p) {
          Permutation permutation(n);
          if (n > 1 && detector.PartitionInfo[0] == detector.PartitionInfo[1])
            std::swap(permutation.GetP()[0], permutation.GetP()[1]);
          if (n > 0) disturb(permutation.GetP()[below(n)]);
          record.Perms.push_back(permutation);
        }
      }
    }
    write_file(name, "old");
    detector.WritePermFile(name);
    std::ostringstream text;
    detector.WriteTables(text);
    std::istringstream in(text.str());
    PermTable table;
    const std::string error = read_perm_table(in, "table", table);
    ASSERT_EQ(error.empty(), detector.PermFileError.empty()) << text.str() << error;
    if (!error.empty()) {
      const std::string told = name + ": error: not written" + error.substr(error.rfind(": expected"));
      ASSERT_EQ(detector.PermFileError, told);
      ASSERT_EQ(read_file(name), "old");
      continue;
    }
    ++written_count;
    SymmetryDetection read_back;
    read_back.SetDiagnostics(nullptr);
    read_back.ReadPermFile(name);
    ASSERT_EQ(read_file(name), text.str());
    ASSERT_EQ(read_back.PartitionInfo, detector.PartitionInfo);
    ASSERT_EQ(read_back.CumPartitionInfo, detector.CumPartitionInfo);
    ASSERT_EQ(read_back.Bases, detector.Bases);
    std::ostringstream again;
    read_back.WriteTables(again);
    ASSERT_EQ(again.str(), text.str());
  }
  EXPECT_GT(written_count, 40);
  EXPECT_LT(written_count, 160);
  SymmetryDetection wide;
  wide.PartitionInfo = wide.CumPartitionInfo = std::vector<int>(40'000, 0);
  EXPECT_EQ(captured_errors([&] { wide.WritePermFile(name); }),
            "symfold: permutations: error: not written: expected the number of partitions (0 to 32767), got "
            "40000\n");
}

struct Dotted : std::numpunct<char> {
  char do_thousands_sep() const override { return '.'; }
  std::string do_grouping() const override { return "\3"; }
};

// All that a ring of 300 submodels writes and prints, on streams made in the global locale.
std::string everything_of_a_ring() {
  const TempDir dir;
  std::vector<TestJoin> joins;
  std::string types = "300\n";
  for (int i = 0; i < 300; ++i) {
    const auto submodel = [](int k) { return "P" + std::to_string(k % 300); };
    types += submodel(i) + " Phil\n";
    joins.push_back({"J" + std::to_string(i), {{"s", {{submodel(i), "r"}, {submodel(i + 1), "l"}}}}});
  }
  TestModel model(joins);
  SymmetryDetection detector(model.wrapper());
  std::ostringstream text;
  detector.SetDiagnostics(&text);
  detect(detector, types, 4);
  start_labelling(detector);
  detector.PrintStaticMembers();
  detector.WritePermFile(name);
  detector.WriteTables(text);
  SymmetryDetection reader;
  reader.SetDiagnostics(&text);
  reader.ReadPermFile(name);
  EXPECT_EQ(reader.PartitionInfo.size(), 600U);
  detector.PrintMCG(text);
  std::string state(static_cast<std::size_t>(detector.TotalStateSize), 'x');
  detector.IsPartiallyCanonical(599, state.data());
  stop_labelling(detector);
  return text.str() + read_file("model_comp_graph") + read_file("mcg.viz") + read_file(name);
}

TEST(PermFile, AndAllOtherTextIsTheSameInEveryLocale) {
  const std::string expected = everything_of_a_ring();
  EXPECT_NE(expected.find("\n1200 1200 4 300 600 900\n"), std::string::npos);
  const std::locale before = std::locale::global(std::locale(std::locale::classic(), new Dotted));
  const std::string actual = everything_of_a_ring();
  std::locale::global(before);
  EXPECT_TRUE(actual == expected);
}

TEST(PermFile, IsRefusedWholeWithTheLineOfTheFault) {
  const TempDir dir;
  const struct {
    const char* text;
    const char* error;
  } cases[] = {
      {"", ": error: cannot be read: empty file"},
      {"x", ":1: error: expected the number of partitions (0 to 32767), got x"},
      {"-1", ":1: error: expected the number of partitions (0 to 32767), got -1"},
      {"40000", ":1: error: expected the number of partitions (0 to 32767), got 40000"},
      {"99999999999999999999999999999999999",
       ":1: error: expected the number of partitions (0 to 32767), got 999999999999999999999999"},
      {"2\n2 2\n0", ":3: error: expected the offset of a partition, got the end of the file"},
      {"2\n2 -2\n", ":2: error: expected the size of a partition (0 to 67108862), got -2"},
      {"2\n2 67108863\n", ":2: error: expected the size of a partition (0 to 67108862), got 67108863"},
      {"2\n2 2\n0 3", ":3: error: expected offset 2, got 3"},
      {"1\n2\n0\n-1", ":4: error: expected the number of bases (0 to 2147483647), got -1"},
      {"1\n2\n0\n2000000000\n", ":5: error: expected a base point, got the end of the file"},
      {"1\n2\n0\n1\n1", ":5: error: expected a base point (-1 to 0), got 1"},
      {"1\n2\n0\n1\n0\n2", ":6: error: expected the number of records of a base (0 to 1), got 2"},
      {"1\n2\n0\n1\n0\n1\n1", ":7: error: expected the value of a record (-1 to 0), got 1"},
      {"1\n2\n0\n1\n0\n1\n0\n-7",
       ":8: error: expected the number of permutations of a record (0 to 2147483647), got -7"},
      {"2\n2 2\n0 2\n1\n0\n1\n1\n1\n1 2", ":9: error: expected an image of a permutation (0 to 1), got 2"},
      {"2\n2 2\n0 2\n1\n0\n1\n1\n1\n1 1\n",
       ":9: error: expected a permutation, got an image that occurs twice"},
      {"2\n2 4\n0 2\n1\n0\n1\n1\n1\n1 0\n",
       ":9: error: expected a partition of 2 bytes as image of partition 0, got 1, of 4 bytes"},
      {"0\n\n\n0\n7", ":5: error: expected the end of the file, got 7"},
      {"\x1b[2J", ":1: error: expected the number of partitions (0 to 32767), got \\x1b[2J"},
      {"1\n2.5\n", ":2: error: expected the size of a partition (0 to 67108864), got 2.5"},
  };
  for (const auto& c : cases) {
    write_file(name, c.text);
    SymmetryDetection detector;
    detector.Bases = {7};
    std::string errors;
    EXPECT_EQ(captured([&] { errors = captured_errors([&] { detector.ReadPermFile(name); }); }), "");
    EXPECT_EQ(errors, "symfold: permutations" + std::string(c.error) + "\n") << c.text;
    EXPECT_EQ("symfold: " + detector.PermFileError + "\n", errors);
    EXPECT_TRUE(detector.PartitionInfo.empty() && detector.VPerms.empty() && detector.Bases.size() == 1)
        << c.text;
  }
}

TEST(PermFile, MissingFilesAndFailedWritesAreReported) {
  const TempDir dir;
  SymmetryDetection detector;
  EXPECT_EQ(captured_errors([&] { detector.ReadPermFile(name); }),
            "symfold: permutations: error: cannot be read: No such file or directory\n");
  std::string nowhere = "no/such/file";
  EXPECT_EQ(captured_errors([&] { detector.WritePermFile(nowhere); }),
            "symfold: no/such/file: error: cannot be written: No such file or directory\n");
  std::string full = "/dev/full";
  EXPECT_EQ(captured_errors([&] { detector.WritePermFile(full); }),
            "symfold: /dev/full: error: cannot be written: No space left on device\n");
  write_file(name, kFile);
  detector.CumPartitionInfo = {0};
  EXPECT_EQ(captured_errors([&] { detector.WritePermFile(name); }),
            "symfold: permutations: error: not written: expected tables of 1 partitions\n");
  EXPECT_EQ(read_file(name), kFile);
}

// Every cut and a thousand random changes of a sound file: refused, or read as sound tables.
TEST(PermFile, DamagedFilesNeverGiveUnsoundTables) {
  const std::string sound = kFile;
  std::mt19937 random(11);
  for (std::size_t i = 0; i < sound.size() + 1000; ++i) {
    std::string text = i < sound.size() ? sound.substr(0, i) : sound;
    if (i >= sound.size()) text[random() % text.size()] = "0123456789 -x\n"[random() % 14];
    std::istringstream in(text);
    PermTable table;
    if (!read_perm_table(in, "damaged", table).empty()) continue;
    SymmetryDetection detector;
    detector.PartitionInfo = table.sizes;
    for (auto& [base, records] : table.bases) {
      detector.Bases.push_back(base);
      detector.VPerms[base] = records;
    }
    std::string report;
    EXPECT_TRUE(detector.VerifySymmetries(report)) << text << report;
  }
}

}  // namespace
}  // namespace symfold
