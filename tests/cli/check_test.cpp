// Certificates and checked permutation files from the outside. tests/tools/ reads the certificates.

#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include "cli/commands.h"
#include "tests/support/detector_support.h"
#include "tests/support/run_command.h"

namespace symfold {
namespace {

const std::string kPhilosophers = kExamples + "/philosophers.sym";

TEST(ExploreCheck, WritesTheSameCertificateEachTime) {
  const TempDir directory;
  const Outcome outcome = run({"explore", kPhilosophers, "--const", "N=3", "--check"});
  EXPECT_EQ(outcome.code, kOk) << outcome.err;
  EXPECT_NE(outcome.out.find("\nfile  philosophers.certificate\ncheck  passed: 41 transitions, each carried "
                             "onto its label by a symmetry of the composition\n"),
            std::string::npos)
      << outcome.out;
  const std::string text = read_file("philosophers.certificate");
  const std::string expected =
      "symfold certificate 1\nsystem Ring\nlabels exact\nsample all\nsubmodels 3\n"
      "submodel phil_0 Philosopher 2\nsubmodel phil_1 Philosopher 2\nsubmodel phil_2 Philosopher 2\n"
      "joins 3\njoin fork_0 2 phil_0.lfork phil_1.rfork\njoin fork_1 2 phil_1.lfork phil_2.rfork\n"
      "join fork_2 2 phil_2.lfork phil_0.rfork\norder phil_0 phil_1 phil_2 fork_0 fork_1 fork_2\n"
      "group-order 3\ngenerators 1\ngenerator (phil_0 phil_1 phil_2)(fork_0 fork_1 fork_2)\n"
      "initial 000000000000010001000100 000000000000010001000100 0 1 2 3 4 5\n"
      "transition 000000000000010001000100 phil_0 hungry 010000000000010001000100 "
      "010000000000010001000100 0 1 2 3 4 5\n"
      "transition 000000000000010001000100 phil_1 hungry 000001000000010001000100 "
      "010000000000010001000100 2 0 1 5 3 4\n";
  EXPECT_EQ(text.substr(0, expected.size()), expected);
  EXPECT_TRUE(text.ends_with("\nend 41\n"));
  const nlohmann::json json =
      nlohmann::json::parse(run({"explore", kPhilosophers, "--const", "N=3", "--compare", "--check",
                                 "--certificate", "again", "--json"})
                                .out);
  EXPECT_EQ(json["certified_transitions"], 41);
  EXPECT_EQ(json["files"], nlohmann::json({"again"}));
  EXPECT_EQ(read_file("again"), text);
}

TEST(ExploreCheck, SpreadsASampleOverTheExploration) {
  const TempDir directory;
  const auto certified = [&](const std::string& sample) -> int {
    const Outcome outcome =
        run({"explore", kPhilosophers, "--const", "N=8", "--check", "--check-sample", sample, "--json"});
    return nlohmann::json::parse(outcome.out)["certified_transitions"];
  };
  EXPECT_GT(certified("1000000"), 10000);
  const std::string all = read_file("philosophers.certificate");
  for (const int sample : {500, 5000}) {
    EXPECT_NEAR(certified(std::to_string(sample)), sample, sample / 5);
    const std::string text = read_file("philosophers.certificate");
    EXPECT_NE(text.find("\nsample " + std::to_string(sample) + '/'), std::string::npos);
    const std::size_t first = text.find("\ntransition");
    const std::size_t last = text.rfind("\ntransition");
    EXPECT_LT(all.find(text.substr(first, text.find('\n', first + 1) - first)), all.size() / 20);
    EXPECT_GT(all.find(text.substr(last, text.find('\n', last + 1) - last)), all.size() / 20 * 19);
  }
  EXPECT_EQ(certified("0"), 0);
}

TEST(ExploreCheck, RefusesWhatCannotBeCertified) {
  const TempDir directory;
  for (const std::vector<std::string>& wrong :
       std::vector<std::vector<std::string>>{{"--check", "--symmetry", "off"},
                                             {"--check", "--const", "N=3..4"},
                                             {"--certificate", "file"},
                                             {"--check-sample", "5"},
                                             {"--check", "--check-sample", "-1"}}) {
    std::vector<std::string> arguments = {"explore", kPhilosophers};
    arguments.insert(arguments.end(), wrong.begin(), wrong.end());
    EXPECT_EQ(run(arguments).code, kUsage) << wrong[0];
  }
  EXPECT_EQ(run({"explore", kPhilosophers, "--check", "--certificate", "no/file"}).code, kBadFile);
  const Outcome nothing = run({"explore", kPhilosophers, "--check", "--max-memory", "1K"});
  EXPECT_EQ(nothing.code, kLimitReached);
  EXPECT_NE(nothing.err.find("no certificate is written"), std::string::npos);
  EXPECT_TRUE(std::filesystem::is_empty("."));
  EXPECT_EQ(run({"explore", kPhilosophers, "--check", "--max-states", "50"}).code, kLimitReached);
  EXPECT_TRUE(std::filesystem::exists("philosophers.certificate"));
}

TEST(Check, TakesThePermutationFilesOfAllExamples) {
  for (const char* name : {"arms", "cluster", "philosophers", "star", "torus", "wreath"}) {
    const TempDir directory;
    const std::string model = kExamples + "/" + name + ".sym";
    const nlohmann::json found = nlohmann::json::parse(run({"detect", model, "-o", "run", "--json"}).out);
    const Outcome outcome = run({"check", model, "run/permutations", "--json"});
    EXPECT_EQ(outcome.code, kOk) << name << outcome.err;
    const nlohmann::json json = nlohmann::json::parse(outcome.out);
    EXPECT_EQ(json["group_order"], found["group_order"]) << name;
    EXPECT_TRUE(json["holds"]) << json["fault"];
  }
}

TEST(Check, SaysInNamesWhatFails) {
  const TempDir directory;
  const auto check = [&](const std::string& table) {
    write_file("table", table);
    return run({"check", kPhilosophers, "--const", "N=3", "table"});
  };
  const std::string layout = "6\n2 2 2 2 2 2\n0 2 4 6 8 10\n";
  const Outcome part = check(layout + "0\n");
  EXPECT_EQ(part.code, kOk);
  EXPECT_EQ(part.out,
            "6 cells, 0 bases, 0 permutations\ngroup order  1 of the model's 3\n"
            "check  passed: every permutation carries the model's composition onto itself\n");
  const Outcome swap = check(layout + "1\n0\n2\n1\n1\n2 0 1 5 3 4\n2\n1\n1 0 2 3 4 5\n");
  EXPECT_EQ(swap.code, kCheckFailed);
  EXPECT_EQ(swap.out,
            "6 cells, 1 base, 2 permutations\ncheck  FAILED: the permutation of base phil_0, value phil_2, "
            "carries join fork_0 to fork_0, but its members not to the members there\n");
  EXPECT_EQ(
      check("1\n2\n0\n0\n").out,
      "6 cells, 0 bases, 0 permutations\ncheck  FAILED: expected 6 partitions as the model has submodels "
      "and joins, got 1\n");
  EXPECT_EQ(check("6\n2 2 4 2 2 2\n0 2 4 8 10 12\n0\n").out,
            "6 cells, 0 bases, 0 permutations\ncheck  FAILED: expected 2 bytes for partition 2, which is "
            "phil_2, got 4\n");
  EXPECT_EQ(check("6\n2 2\n").code, kBadFile);
  EXPECT_EQ(run({"check", kPhilosophers, "missing"}).code, kBadFile);
  EXPECT_EQ(run({"check", "missing.sym", "table"}).code, kBadFile);
  EXPECT_EQ(run({"check", kPhilosophers}).code, kUsage);
}

}  // namespace
}  // namespace symfold
