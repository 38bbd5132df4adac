// The command from the outside: arguments and input in; exit code, results and messages out.

#include <gtest/gtest.h>

#include <nlohmann/json.hpp>
#include <random>

#include "cli/commands.h"
#include "cli/figures.h"
#include "tests/support/detector_support.h"
#include "tests/support/run_command.h"

namespace symfold {
namespace {

nlohmann::json detect(const std::string& example, const std::vector<std::string>& constants) {
  std::vector<std::string> arguments = {"detect", kExamples + "/" + example + ".sym", "--json", "-o", "run"};
  for (const std::string& constant : constants) arguments.insert(arguments.end(), {"--const", constant});
  const Outcome outcome = run(arguments);
  EXPECT_EQ(outcome.code, kOk) << example << outcome.err;
  return nlohmann::json::parse(outcome.out);
}

// Every example has the group that its first comment tells.
TEST(Examples, HaveTheirGroupOrders) {
  struct Example {
    std::string name;
    std::vector<std::string> constants;
    int submodels, joins;
    std::string order;
  };
  std::vector<Example> examples = {
      {"philosophers", {}, 5, 5, "5"},
      {"philosophers", {"N=3"}, 3, 3, "3"},
      {"philosophers", {"N=40"}, 40, 40, "40"},
      {"star", {"N=1"}, 1, 1, "1"},
      {"star", {"N=6"}, 6, 1, "720"},
      {"star", {"N=30"}, 30, 1, "265252859812191058636308480000000"},
      {"wreath", {}, 8, 3, "72"},
      {"wreath", {"M=4", "K=2"}, 12, 5, "384"},
      {"wreath", {"M=3", "K=5"}, 18, 4, "10368000"},
      {"polling", {}, 8, 8, "8"},
      {"polling", {"N=2"}, 2, 2, "2"},
      {"cluster", {}, 11, 4, "1152"},
      {"cluster", {"N=7"}, 17, 4, "50803200"},
      {"multiprocessor", {}, 15, 10, "384"},
      {"multiprocessor", {"M=4", "K=3"}, 28, 13, "40310784"},
      {"peer2peer", {}, 16, 7, "144"},
      {"peer2peer", {"N=5", "B=5"}, 30, 10, "14400"},
      {"torus", {}, 45, 9, "72"},
      {"torus", {"W=4", "H=4"}, 80, 16, "384"},
      {"torus", {"W=5", "H=5"}, 125, 25, "200"},
      {"torus", {"W=4", "H=7"}, 140, 28, "112"},
      {"routers", {"W=3", "H=3"}, 9, 18, "9"},
      {"routers", {"W=4", "H=6"}, 24, 48, "24"},
      {"tandem", {}, 6, 5, "1"},
      {"clients_servers", {}, 11, 5, "12"},
      {"clients_servers", {"K=4", "M=5"}, 29, 9, "2880"},
      {"arms", {"N=3"}, 9, 6, "6"},
      {"arms", {"N=8"}, 24, 16, "16"},
      {"complete", {}, 9, 6, "6"},
      {"complete", {"K=6"}, 36, 12, "720"},
      {"two_speeds", {"N=7"}, 8, 1, "144"},
  };
  for (int d = 1; d <= 8; ++d) {
    const int nodes = 1 << d;
    const int joins = d * nodes / 2 + (8 - d) * nodes;
    examples.push_back({"hypercube", {"d=" + std::to_string(d)}, nodes, joins, std::to_string(nodes)});
  }
  for (const Example& example : examples) {
    SCOPED_TRACE(example.name + " " + ::testing::PrintToString(example.constants));
    const TempDir dir;
    const nlohmann::json result = detect(example.name, example.constants);
    EXPECT_EQ(result["submodels"], example.submodels);
    EXPECT_EQ(result["joins"], example.joins);
    EXPECT_EQ(result["group_order"], example.order);
    EXPECT_TRUE(result["is_sound"]) << result["unsound_reason"];
    for (const char* file : {"types", "model_comp_graph", "mcg.viz", "detection.log", "permutations"}) {
      EXPECT_TRUE(std::filesystem::exists(std::string("run/") + file)) << file;
    }
  }
}

TEST(Detect, TellsWhatAPersonWantsToKnow) {
  const TempDir dir;
  const Outcome outcome = run({"detect", kExamples + "/philosophers.sym", "--const", "N=3", "--no-log"});
  EXPECT_EQ(outcome.code, kOk);
  EXPECT_EQ(outcome.err, "");
  const std::string expected =
      kExamples +
      "/philosophers.sym: 3 submodels, 3 joins\n"
      "graph  12 nodes, 12 edges, 4 colours\n"
      "group order  3\n"
      "generators  1\n"
      "  (phil_0 phil_1 phil_2)(fork_0 fork_1 fork_2)\n"
      "orbits of submodels  1\n  phil_0 phil_1 phil_2\n"
      "orbits of joins  1\n  fork_0 fork_1 fork_2\n"
      "state  12 bytes in 6 partitions\n"
      "  initial  000000000000010001000100\n"
      "  label    000000000000010001000100\n"
      "check  passed: every permutation keeps the partitions' sizes and the joins' variables\n"
      "time ";
  EXPECT_EQ(outcome.out.substr(0, expected.size()), expected);
  EXPECT_NE(outcome.out.find("\nfiles  philosophers.symfold\n"), std::string::npos);
  EXPECT_FALSE(std::filesystem::exists("philosophers.symfold/detection.log"));
  EXPECT_EQ(read_file("philosophers.symfold/types"),
            "3\nphil_0 Philosopher\nphil_1 Philosopher\nphil_2 Philosopher\n");
}

TEST(Detect, ShortensWhatIsLong) {
  const TempDir dir;
  const std::string ring = run({"detect", kExamples + "/philosophers.sym", "--const", "N=40"}).out;
  EXPECT_NE(ring.find(" phil_10 phil_11 ... 40)(fork_0 "), std::string::npos) << ring;
  const std::string grid =
      run({"detect", kExamples + "/routers.sym", "--const", "W=5", "--const", "H=5"}).out;
  EXPECT_NE(grid.find(" ... 15 cycles\n"), std::string::npos) << grid;
  const std::string star = run({"detect", kExamples + "/star.sym", "--const", "N=60"}).out;
  EXPECT_NE(star.find("\n  ... and 39 more\n"), std::string::npos) << star;
}

TEST(Detect, ReadsStandardInputAndReportsModelErrors) {
  const TempDir dir;
  EXPECT_EQ(run({"detect", "-"}, "type T { private x : bool; }\nsystem S { t : T; }\n").code, kOk);
  EXPECT_TRUE(std::filesystem::exists("model.symfold/permutations"));
  const Outcome bad = run({"detect", "-"}, "type T { private x : bool; }\nsystem S { t : U; }\n");
  EXPECT_EQ(bad.code, kModelError);
  EXPECT_EQ(bad.out, "");
  EXPECT_EQ(
      bad.err,
      "standard input:2:16: error: expected a type's name, got 'U'\nsystem S { t : U; }\n               ^\n");
  write_file("file", "");
  EXPECT_EQ(run({"detect", kExamples + "/star.sym", "--const", "N=40000", "-o", "none"}).code, kModelError);
  EXPECT_FALSE(std::filesystem::exists("none"));
  const Outcome unwritable = run({"detect", kExamples + "/star.sym", "-o", "file"});
  EXPECT_EQ(unwritable.code, kBadFile);
  EXPECT_NE(unwritable.err.find("file"), std::string::npos);
}

TEST(Detect, GivesUpTablesThatDoNotFit) {
  const TempDir dir;
  const Outcome outcome = run({"detect", kExamples + "/star.sym", "--const", "N=8000", "--no-log"});
  EXPECT_EQ(outcome.code, kLimitReached);
  EXPECT_EQ(outcome.out, "");
  EXPECT_EQ(
      outcome.err,
      "symfold: expected tables of at most 4 GiB, got 7999 base points that would need about 8.1 GiB; exact "
      "labels need no tables\n"
      "symfold: error: the symmetry group could not be tabulated, as the line above says\n");
}

TEST(CommandLine, RefusesWrongUse) {
  for (const std::vector<std::string>& arguments :
       std::vector<std::vector<std::string>>{{},
                                             {"label"},
                                             {"show", "a", "b"},
                                             {"label", "p", "--raw", "--perm"},
                                             {"label", "p", "--names"},
                                             {"label", "p", "--const", "N=3"},
                                             {"label", "p", "--raw", "--model", "m"},
                                             {"label", "p", "--model", "-"}}) {
    const Outcome outcome = run(arguments);
    EXPECT_EQ(outcome.code, kUsage) << outcome.err;
    EXPECT_EQ(outcome.out, "");
    EXPECT_NE(outcome.err, "");
  }
  EXPECT_EQ(run({"--help"}).code, kOk);
  EXPECT_EQ(run({"label", "no-such-file"}).err,
            "symfold: no-such-file: error: cannot be read: No such file or directory\n");
  EXPECT_EQ(run({"show", "no-such-file"}).code, kBadFile);
  EXPECT_EQ(run({"help", "explore"}).out, run({"explore", "--help"}).out);
  EXPECT_NE(run({"explore", "--export", "--help"}).out.find(".drn (Storm)"), std::string::npos);
  EXPECT_EQ(run({"help"}).out, run({"--help"}).out);
}

TEST(CommandLine, SaysWhatToTypeInstead) {
  const TempDir dir;
  std::filesystem::copy_file(kExamples + "/star.sym", "star.sym");
  EXPECT_EQ(run({"detect", "star.sym", "-o", "run"}).code, kOk);
  std::filesystem::create_directory("empty");
  struct Case {
    std::vector<std::string> arguments;
    int code;
    std::string message;
  };
  const std::string types_of_run = "type 'symfold show run' or 'symfold label run'\n";
  for (const Case& wrong : std::vector<Case>{
           {{"exlpore", "star.sym"}, kUsage, "got 'exlpore'; did you mean 'explore'?\n"},
           {{"help", "lable"}, kUsage, "did you mean 'label'?\n"},
           {{"dr"}, kUsage, "did you mean 'draw'?\n"},
           {{"fold"},
            kUsage,
            "expected a subcommand (detect, explore, check, draw, label, show, help), got 'fold'\n"},
           {{"star.sym"}, kUsage, "'symfold explore star.sym', 'symfold detect star.sym' or"},
           {{"run"}, kUsage, "expected a subcommand before 'run': " + types_of_run},
           {{"label", "star.sym"},
            kBadFile,
            "type 'symfold detect star.sym', then 'symfold label star.symfold'\n"},
           {{"show", "empty"}, kBadFile, "expected a permutation file, or a run directory that holds one\n"},
           {{"explore", "run/permutations"},
            kModelError,
            "expected a model file, got a permutation file: type"},
           {{"detect", "run"},
            kBadFile,
            "run: error: expected a model file, got a run directory: " + types_of_run},
           {{"draw", "empty"}, kBadFile, "empty: error: expected a model file, got a directory\n"},
           {{"detect", "missing.sym"}, kBadFile, "missing.sym: error: cannot be opened for reading\n"}}) {
    const Outcome outcome = run(wrong.arguments);
    EXPECT_EQ(outcome.code, wrong.code) << outcome.err;
    EXPECT_NE(outcome.err.find(wrong.message), std::string::npos) << outcome.err;
    EXPECT_EQ(outcome.out, "");
  }
  EXPECT_EQ(run({"show", "run"}).out, run({"show", "run/permutations"}).out);
}

// Every range of decimals, written as people do, has the values that integers have.
TEST(Constants, TakeEveryValueOfARange) {
  const auto decimal = [](long units, int decimals) {
    std::string digits = std::to_string(std::abs(units));
    if (decimals > 0) {
      digits.insert(0, std::string(digits.size() > 1 ? 0 : 1, '0'));
      digits.insert(digits.size() - 1, ".");
    }
    return (units < 0 ? "-" : "") + digits;
  };
  for (const int decimals : {0, 1}) {
    for (long low = -12; low <= 12; ++low) {
      for (long step = 1; step <= 5; ++step) {
        for (long high = low; high <= low + 22; ++high) {
          ModelInput input;
          const std::string text =
              decimal(low, decimals) + ":" + decimal(step, decimals) + ":" + decimal(high, decimals);
          ASSERT_EQ(read_constants({"M=2,x=" + text}, input), "") << text;
          std::vector<std::string> expected, values;
          for (long value = low; value <= high; value += step) expected.push_back(decimal(value, decimals));
          for (std::size_t i = 0; i < input.range->count; ++i) {
            values.push_back(input.at(i).constants[1].substr(2));
          }
          ASSERT_EQ(values, expected) << text;
        }
      }
    }
  }
}

TEST(Constants, AreRefusedWithTheReason) {
  for (const auto& [text, message] : std::vector<std::pair<std::string, std::string>>{
           {"N", "expected NAME=VALUE, got 'N'"},
           {"N=3,", "expected NAME=VALUE, got ''"},
           {"N=3,M=1,N=4", "expected one value of N, got a second one"},
           {"N=8..3", "expected a range from a low value to a high one, got 8 before 3"},
           {"N=3:0:8", "expected a step above 0, got 0"},
           {"N=8:-1:3", "expected a step above 0, got -1"},
           {"N=1:2:3:4", "expected a range LOW..HIGH, LOW:HIGH or LOW:STEP:HIGH"},
           {"N=1..2..3", "expected a range LOW..HIGH, LOW:HIGH or LOW:STEP:HIGH"},
           {"N=a..3", "expected a number of at most 18 digits in the range, got 'a'"},
           {"N=0:1e400", "expected a number of at most 18 digits in the range, got '1e400'"},
           {"N=1000000:1e-13:2", "expected a range of numbers of at most 18 digits in all"},
           {"N=0:0.0001:1", "expected a range of at most 10000 values, got more"},
           {"N=1..2,M=1:2", "expected one range of a constant's values, got a second one after N=1..2"}}) {
    ModelInput input;
    EXPECT_EQ(read_constants({text}, input), "--const " + text + ": " + message);
  }
  EXPECT_EQ(run({"draw", "m", "--const", "N=1..2"}).code, kUsage);
}

TEST(Figures, TellLongGroupOrdersAsProducts) {
  const auto factorial = [](int n) {
    std::vector<int> lengths;
    for (; n > 1; --n) lengths.push_back(n);
    return lengths;
  };
  std::vector<int> two = factorial(15);
  const std::vector<int> other = factorial(12);
  two.insert(two.begin(), other.begin(), other.end());
  std::vector<int> primes;
  for (int n = 3; n < 200; n += 2) primes.push_back(n);
  for (const auto& [lengths, text] : std::vector<std::pair<std::vector<int>, std::string>>{
           {factorial(20), "2432902008176640000"},
           {factorial(22), "22! (1.12 * 10^21)"},
           {two, "15! * 12! (6.26 * 10^20)"},
           {std::vector<int>(30, 12), "2^60 * 3^30 (2.37 * 10^32)"},
           {std::vector<int>(5, 99999), "3^10 * 41^5 * 271^5 (1.00 * 10^25)"},
           {primes, "6.67 * 10^186"}}) {
    EXPECT_EQ(group_order_text(lengths), text);
  }
}

// Three partitions of one byte; the rotation brings each to the first place.
const char* const kRotation = "3\n1 1 1 \n0 1 2 \n1\n0\n2\n1\n1\n2 0 1 \n2\n1\n1 2 0 \n";

TEST(Label, ReportsWrongLinesAndGoesOn) {
  const TempDir dir;
  write_file("p", kRotation);
  const Outcome outcome = run({"label", "p", "--perm"}, "0001Ff\n00\n\n01020304\n00010g\r\n010203\r\n030201");
  EXPECT_EQ(outcome.code, kCheckFailed);
  EXPECT_EQ(outcome.out, "ff0001\t(0 1 2)\n030102\t(0 1 2)\n030201\t()\n");
  EXPECT_EQ(outcome.err,
            "standard input:2: error: expected 6 hexadecimal digits, got 2\n"
            "standard input:3: error: expected 6 hexadecimal digits, got 0\n"
            "standard input:4: error: expected 6 hexadecimal digits, got more\n"
            "standard input:5: error: column 6: expected a hexadecimal digit\n");
  write_file("states", "010203\n");
  EXPECT_EQ(run({"label", "p", "states"}).out, "030102\n");
  EXPECT_EQ(run({"label", "p", "nowhere"}).err, "nowhere: error: cannot be read\n");
  EXPECT_EQ(run({"label", "p", "."}).code, kBadFile);
  EXPECT_EQ(run({"label", "p"}, std::string(1 << 20, '0')).code, kCheckFailed);
}

// A table without partitions: every state is empty, and its own label.
TEST(Label, TakesStatesOfNoBytes) {
  const TempDir dir;
  write_file("p", "0\n0\n");
  for (const char* kind : {"--perm", "--exact"}) EXPECT_EQ(run({"label", "p", kind}, "\n").code, kOk);
}

TEST(Label, TakesRawRecords) {
  const TempDir dir;
  write_file("p", kRotation);
  EXPECT_EQ(run({"label", "p", "--raw"}, "abcxyzbca").out, "cabzxycab");
  const Outcome cut = run({"label", "p", "--raw"}, "abcxy");
  EXPECT_EQ(cut.code, kCheckFailed);
  EXPECT_EQ(cut.out, "cab");
  EXPECT_EQ(cut.err, "standard input: error: record 2: expected 3 bytes, got 2\n");
}

// States of a detected model, through the files: a label is a fixed point, and so is each equivalent state's.
TEST(Label, LabelsTheStatesOfADetectedModel) {
  const TempDir dir;
  detect("philosophers", {"N=7"});
  std::mt19937 random(3);
  std::string states, rotated;
  for (int i = 0; i < 50; ++i) {
    std::string phils, forks;
    for (int p = 0; p < 7; ++p) {
      phils += "0" + std::to_string(random() % 4) + "00";
      forks += "0" + std::to_string(random() % 2) + "00";
    }
    states += phils + forks + "\n";
    rotated += phils.substr(4) + phils.substr(0, 4) + forks.substr(4) + forks.substr(0, 4) + "\n";
  }
  for (const std::vector<std::string>& ways : std::vector<std::vector<std::string>>{{}, {"--exact"}}) {
    std::vector<std::string> command = {"label", "run/permutations"};
    command.insert(command.end(), ways.begin(), ways.end());
    const std::string labels = run(command, states).out;
    EXPECT_EQ(run(command, rotated).out, labels);
    EXPECT_EQ(run(command, labels).out, labels);
    command.emplace_back("--perm");
    EXPECT_EQ(run(command, states).code, kOk);
  }
}

// Names instead of bytes: the same labels, which can be given again.
TEST(Label, TakesStatesByNames) {
  const TempDir dir;
  const std::string model = kExamples + "/philosophers.sym";
  detect("philosophers", {"N=3"});
  const std::vector<std::string> plain = {"label", "run", "-", "--model", model, "--const", "N=3", "--exact"};
  std::vector<std::string> named = plain;
  named.emplace_back("--names");
  const char* const phases[] = {"thinking", "hungry", "left", "eating"};
  std::string states, names;
  for (int i = 0; i < 64 * 8; ++i) {
    for (int p = 0; p < 3; ++p) {
      states += "0" + std::to_string(i >> (2 * p) & 3) + "00";
      names += "phil_" + std::to_string(p) + ".phase=" + phases[i >> (2 * p) & 3] + ' ';
    }
    for (int f = 0; f < 3; ++f) {
      const bool is_free = (i >> (6 + f) & 1) != 0;
      states += is_free ? "0100" : "0000";
      const std::string name =
          i % 2 == 0 ? "fork_" + std::to_string(f) : "phil_" + std::to_string(f) + ".lfork";
      names += name + (is_free ? "=true\t" : "=false ");
    }
    states += '\n';
    names += '\n';
  }
  const std::string labels = run({"label", "run", "-", "--exact"}, states).out;
  const std::string named_labels = run(named, states).out;
  EXPECT_EQ(run(plain, names).out, labels);
  EXPECT_EQ(run(named, names).out, named_labels);
  EXPECT_EQ(run(plain, named_labels).out, labels);
  EXPECT_EQ(run(plain, "fork_1=false\n").out, run(plain, "000000000000010000000100\n").out);
}

TEST(Label, SaysWhatIsWrongWithNames) {
  const TempDir dir;
  const std::string model = kExamples + "/philosophers.sym";
  detect("philosophers", {"N=3"});
  for (const auto& [line, message] : std::vector<std::pair<std::string, std::string>>{
           {"phil_3.phase=left", "expected a variable of " + model + ", got 'phil_3.phase'"},
           {"phil_0.phase=sad",
            "phil_0.phase: expected a value of {thinking, hungry, left, eating}, got 'sad'"},
           {"fork_0=true fork_0=true", "expected fork_0 once, got it twice"},
           {"phil_1.lfork=true phil_0.rfork=true fork_0=true fork_1=false",
            "expected one value of fork_1, got phil_1.lfork=true and fork_1=false"},
           {"fork_0=true fork_1", "expected NAME=VALUE, got 'fork_1'"},
           {"fork_1", "expected NAME=VALUE pairs or 24 hexadecimal digits, got 6"},
           {"0700" + std::string(20, '0'),
            "phil_0.phase: expected a value of {thinking, hungry, left, eating}, got number 7"},
           {"fork_0=true" + std::string(9000, ' '), "expected at most "}}) {
    const Outcome outcome = run({"label", "run", "--model", model, "--const", "N=3"}, line + "\n");
    EXPECT_EQ(outcome.code, kCheckFailed);
    EXPECT_TRUE(outcome.err.starts_with("standard input:1: error: " + message)) << outcome.err;
  }
  const Outcome other = run({"label", "run", "--model", model});
  EXPECT_EQ(other.code, kBadFile);
  EXPECT_EQ(other.err, "symfold: run/permutations: error: expected the states of " + model +
                           ", 20 bytes in 10 partitions, got 12 bytes in 6 partitions\n");
}

TEST(Show, PrintsTheTables) {
  const TempDir dir;
  write_file("p", kRotation);
  EXPECT_EQ(run({"show", "p"}).out,
            "3 partitions, 3 bytes per state, 1 base\n\n"
            "partition  offset  bytes\n        0       0      1\n        1       1      1\n"
            "        2       2      1\n\nbase 0: 2 other points in its orbit\n"
            "  from 1 by (0 2 1)\n  from 2 by (0 1 2)\n");
  const nlohmann::json json = nlohmann::json::parse(run({"show", "p", "--json"}).out);
  EXPECT_EQ(json["bases"][0]["records"][1]["permutations"][0], "(0 1 2)");
}

}  // namespace
}  // namespace symfold
