// symfold explore from the outside: what it prints, writes and returns.

#include <gtest/gtest.h>

#include <array>
#include <chrono>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <nlohmann/json.hpp>
#include <regex>
#include <thread>

#include "cli/commands.h"
#include "cli/exploration_report.h"
#include "cli/figures.h"
#include "tests/support/detector_support.h"
#include "tests/support/run_command.h"

namespace symfold {
namespace {

const std::string kPhilosophers = kExamples + "/philosophers.sym";

// An exploration that only a limit ends.
std::vector<std::string> large(const std::vector<std::string>& more) {
  std::vector<std::string> arguments = {"explore", kPhilosophers, "--const", "N=16"};
  arguments.insert(arguments.end(), more.begin(), more.end());
  return arguments;
}

TEST(Explore, PrintsBothStateSpacesSideBySide) {
  const TempDir directory;
  const nlohmann::json json =
      nlohmann::json::parse(run({"explore", kPhilosophers, "--compare", "--json"}).out);
  const nlohmann::json& full = json["runs"][0];
  const nlohmann::json& folded = json["runs"][1];
  EXPECT_EQ(full["states"], 573);
  EXPECT_EQ(full["transitions"], 2366);
  EXPECT_EQ(full["deadlocks"], 1);
  EXPECT_EQ(full["labels"]["all left"], 1);
  EXPECT_EQ(folded["states"], 117);
  EXPECT_EQ(folded["transitions"], 461);
  EXPECT_EQ(folded["group_order"], "5");
  EXPECT_NEAR(folded["reduction"].get<double>(), 573.0 / 117, 1e-12);
  EXPECT_EQ(json["runs"][2]["states"], 117);
  EXPECT_EQ(json["runs"][2]["inexact_labels"], 0);
  const std::string text = run({"explore", kPhilosophers, "--compare"}).out;
  const std::regex table(
      "[^]*\\nstates +573 +117 +117\\n[^]*\\nlabel \"all left\" +1 +1 +1\\n[^]*"
      "\\nreduction +1.00 +4.90 +4.90\\ngroup order  5: no folding reduces by more\\n");
  EXPECT_TRUE(std::regex_match(text, table)) << text;
  EXPECT_TRUE(std::filesystem::is_empty("."));
  EXPECT_EQ(run({"explore", kPhilosophers, "-o", "run"}).code, kOk);
  for (const char* file : {"types", "model_comp_graph", "mcg.viz", "permutations"}) {
    EXPECT_TRUE(std::filesystem::remove(std::string("run/") + file)) << file;
  }
  EXPECT_TRUE(std::filesystem::is_empty("run"));
}

// Nothing is said of symmetries that were refused unless there are any.
TEST(Explore, ReportsWhatIsNotFoldedBy) {
  ExplorationResult result{};
  result.symmetry = Symmetry::kExact;
  result.group_order = result.group_order_text = "2";
  EXPECT_FALSE(results_json({result})["runs"][0].contains("refused"));
  result.refused = {"symfold: the generator (a b) is left out"};
  EXPECT_EQ(results_json({result})["runs"][0]["refused"], result.refused);
  std::ostringstream text;
  print_results(text, {result});
  EXPECT_TRUE(text.str().ends_with("group order  2: of the symmetries that were not refused\nrefused  " +
                                   result.refused[0] + "\n"))
      << text.str();
}

// A token on a ring of three places: folded, every step leads back; beside it an action that changes nothing.
TEST(Explore, TellsLoopsThatFoldingMakes) {
  const TempDir directory;
  const std::string ring =
      "type T { shared l : bool; shared r : bool; [pass] l && !r -> 1.5 : l = false, r = true; }\n"
      "type U { private x : bool; [stay] true -> 2.0 : x = x; }\n"
      "system S { u : U; t[i : 0..2] : T; join p[i : 0..2] = i == 0 { t[i].l; t[(i + 2) % 3].r; } }\n";
  const auto loops = [&](const char* symmetry) {
    const Outcome outcome = run({"explore", "-", "--symmetry", symmetry, "--json"}, ring);
    const nlohmann::json result = nlohmann::json::parse(outcome.out)["runs"][0];
    return std::vector<int>{result["states"], result["transitions"], result["self_loops"],
                            result["folded_self_loops"]};
  };
  EXPECT_EQ(loops("off"), (std::vector<int>{3, 6, 3, 0}));
  EXPECT_EQ(loops("fast"), (std::vector<int>{1, 1, 1, 1}));
  EXPECT_EQ(loops("exact"), (std::vector<int>{1, 1, 1, 1}));
}

TEST(Explore, WritesTheFoldedChainAndSaysHowToOpenIt) {
  const TempDir directory;
  const Outcome outcome =
      run({"explore", kPhilosophers, "--compare", "--export", "chain.all", "--export", "chain.drn"});
  EXPECT_EQ(outcome.code, kOk) << outcome.err;
  EXPECT_NE(outcome.out.find("\nfile  chain.tra\n"), std::string::npos);
  EXPECT_EQ(outcome.out.find("-ctmc"), std::string::npos);
  std::string line;
  std::ifstream("chain.tra") >> line;
  EXPECT_EQ(line, "117");
  const std::string slow = "type T { private x : bool; [flip] true -> 0.5 : x = !x; }\nsystem S { t : T; }\n";
  EXPECT_NE(run({"explore", "-", "--export", "slow.tra"}, slow).out.find("prism -ctmc"), std::string::npos);
  EXPECT_EQ(run({"explore", "-", "--export", "no/slow.tra"}, slow).code, kBadFile);
  EXPECT_EQ(run({"explore", "-", "--export", "slow.srew"}, slow).code, kBadFile);
  const Outcome cut = run({"explore", "-", "--export", "slow.srew", "--export", "slow.mtx"}, slow);
  EXPECT_EQ(cut.code, kCheckFailed);
  EXPECT_NE(cut.err.find("slow.srew: error: expected a model with rewards"), std::string::npos) << cut.err;
  EXPECT_NE(cut.out.find("\nfile  slow.mtx\n"), std::string::npos) << cut.out;
}

TEST(Explore, StopsCleanlyAtEveryLimit) {
  const TempDir directory;
  const std::string more_memory = std::to_string(current_memory() + (std::size_t{16} << 20));
  for (const auto& [limit, ending] : std::vector<std::pair<std::vector<std::string>, std::string>>{
           {{"--max-states", "1000"}, "state limit): 1,000 states reached"},
           {{"--max-memory", more_memory}, "memory limit): "},
           {{"--time-limit", "0.2"}, "time limit): "}}) {
    std::vector<std::string> arguments = large(limit);
    arguments.insert(arguments.end(), {"--export", "chain.all"});
    const Outcome outcome = run(arguments);
    EXPECT_EQ(outcome.code, kLimitReached);
    EXPECT_NE(outcome.err.find(ending), std::string::npos) << outcome.err;
    EXPECT_NE(outcome.err.find("in the frontier"), std::string::npos) << outcome.err;
    EXPECT_FALSE(std::filesystem::exists("chain.tra"));
  }
}

TEST(Explore, RefusesLimitsThatAreNone) {
  const TempDir directory;
  for (const std::string limit : {"--max-states", "--max-memory", "--time-limit"}) {
    for (const std::string value : {"-1", "nan", "inf", "many", ""}) {
      const Outcome outcome = run({"explore", kPhilosophers, limit, value});
      EXPECT_EQ(outcome.code, kUsage) << limit << ' ' << value;
      EXPECT_NE(outcome.err.find(limit), std::string::npos) << outcome.err;
    }
  }
  const std::string too_large = "99999999999999999999999";
  for (const auto& [limit, value, expected] : std::vector<std::array<std::string, 3>>{
           {"--max-states", too_large, "a number, at most 18446744073709551614, got '"},
           {"--max-memory", too_large, "a number, at most 18446744073709551614, got '"},
           {"--max-memory", "99999999999999G",
            "a number of bytes, for instance 500M, at most 18446744073709551614, got '"},
           {"--time-limit", "1e999", "a finite number of seconds, got '"}}) {
    const Outcome outcome = run({"explore", kPhilosophers, limit, value});
    EXPECT_EQ(outcome.code, kUsage);
    EXPECT_NE(outcome.err.find(limit + ": expected " + expected + value + "'"), std::string::npos)
        << outcome.err;
  }
}

TEST(Explore, StopsCleanlyWhenInterrupted) {
  const TempDir directory;
  std::thread interrupts([] {
    std::this_thread::sleep_for(std::chrono::milliseconds(300));
    std::raise(SIGINT);
  });
  const Outcome outcome = run(large({"--compare", "--time-limit", "20"}));
  interrupts.join();
  EXPECT_EQ(outcome.code, kInterrupted);
  EXPECT_NE(outcome.err.find("interrupted"), std::string::npos) << outcome.err;
}

TEST(Explore, DrawsProgressOnATerminalOnly) {
  const TempDir directory;
  const std::vector<std::string> limit = {"--time-limit", "0.3"};
  EXPECT_NE(run(large(limit), "", true).err.find("\r\x1b[Ksymmetry exact: "), std::string::npos);
  EXPECT_EQ(run(large(limit)).err.find("symmetry exact: "), std::string::npos);
  EXPECT_EQ(run(large({"--time-limit", "0.3", "--quiet"}), "", true).err.find("symmetry exact: "),
            std::string::npos);
}

TEST(Explore, RunsOverARangeOfValues) {
  const TempDir directory;
  const Outcome outcome =
      run({"explore", kPhilosophers, "--const", "N=3..5", "--compare", "--json", "--plot", "n.svg"});
  const nlohmann::json points = nlohmann::json::parse(outcome.out)["points"];
  ASSERT_EQ(points.size(), 3U) << outcome.err;
  EXPECT_EQ(points[1]["N"], 4);
  EXPECT_EQ(points[2]["runs"][1]["states"], 117);
  EXPECT_TRUE(std::filesystem::exists("n.svg"));
  const Outcome decimals =
      run({"explore", kExamples + "/star.sym", "--const", "N=2,think=0.1:0.1:0.3", "--plot", "t.svg"});
  EXPECT_TRUE(
      std::regex_match(decimals.out, std::regex("  think [^]*\n    0.1 [^]*\n    0.2 [^]*\n    0.3 [^]*")))
      << decimals.out;
  EXPECT_NE(read_file("t.svg").find(">0.3</text>"), std::string::npos);
  const std::string json =
      run({"explore", kExamples + "/star.sym", "--const", "think=0.1:0.1:0.3", "--json"}).out;
  EXPECT_EQ(nlohmann::json::parse(json)["points"][2]["think"], 0.3);
  for (const std::vector<std::string>& wrong :
       std::vector<std::vector<std::string>>{{"--const", "N=5..3"},
                                             {"--const", "N=3..5", "--export", "x.tra"},
                                             {"--export", "x.unknown"},
                                             {"--plot", "x.svg"},
                                             {"--symmetry", "off", "--compare"},
                                             {"--symmetry", "some"}}) {
    std::vector<std::string> arguments = {"explore", kPhilosophers};
    arguments.insert(arguments.end(), wrong.begin(), wrong.end());
    EXPECT_EQ(run(arguments).code, kUsage) << wrong[0] << wrong.back();
  }
}

// Later values are left to the symmetry that has not met a limit yet.
TEST(Explore, GoesOnWithTheFoldedOneWhereTheFullOneIsTooLarge) {
  const TempDir directory;
  const Outcome outcome =
      run({"explore", kPhilosophers, "--const", "N=4..6", "--compare", "--max-states", "500", "--json"});
  EXPECT_EQ(outcome.code, kLimitReached);
  const nlohmann::json points = nlohmann::json::parse(outcome.out)["points"];
  ASSERT_EQ(points.size(), 3U);
  EXPECT_EQ(points[2]["runs"].size(), 2U);
  EXPECT_EQ(points[2]["runs"][0]["states"], 353);
}

}  // namespace
}  // namespace symfold
