// symfold draw from the outside: what the drawing shows, and that a picture comes of it.

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <regex>

#include "cli/commands.h"
#include "tests/support/detector_support.h"
#include "tests/support/run_command.h"

namespace symfold {
namespace {

std::size_t count(const std::string& text, const char* pattern) {
  const std::regex regex(pattern);
  return static_cast<std::size_t>(
      std::distance(std::sregex_iterator(text.begin(), text.end(), regex), std::sregex_iterator()));
}

TEST(Draw, ShowsPartsInTheColoursOfTheirOrbits) {
  const TempDir directory;
  const Outcome outcome = run({"draw", kExamples + "/wreath.sym", "--const", "M=2", "--const", "K=3"});
  EXPECT_EQ(outcome.code, kOk) << outcome.err;
  EXPECT_EQ(outcome.out,
            "wreath M=2 K=3: 8 submodels, 3 joins in 4 orbits\nfile  wreath.dot\nfile  wreath.svg\n");
  const std::string dot = read_file("wreath.dot");
  EXPECT_EQ(count(dot, "\n  \"rack_[01]\" \\[fillcolor=\"#77AADD\""), 2U) << dot;
  EXPECT_EQ(count(dot, "\n  \"server_[01]_[012]\" \\[fillcolor=\"#EE8866\""), 6U);
  EXPECT_EQ(count(dot, "\n  \"bus_[01]\" \\[fillcolor=\"#EEDD88\""), 2U);
  EXPECT_EQ(count(dot, "\n  \"backbone\" \\[fillcolor=\"#FFAABB\""), 1U);
  for (const char* edges : {"\n  \"server_0_[012]\" -- \"bus_0\"", "\n  \"server_1_[012]\" -- \"bus_1\""}) {
    EXPECT_EQ(count(dot, edges), 3U);
  }
  EXPECT_EQ(count(dot, "\n  \"rack_0\" -- \"(bus_0|backbone)\""), 2U);
  EXPECT_EQ(count(dot, "\n  \"server_[01]_[012]\" -- \"bus_[01]\" .*, taillabel=\"bus\"]"), 6U);
  EXPECT_EQ(count(dot, " -- "), 10U);
  EXPECT_EQ(count(dot, "symmetry group of order 72<"), 1U);
  const std::string svg = read_file("wreath.svg");
  EXPECT_EQ(count(svg, "class=\"node\""), 11U);
  EXPECT_EQ(count(svg, "class=\"edge\""), 10U);
  for (const char* file : {"wreath.dot", "wreath.svg"}) std::filesystem::remove(file);
  EXPECT_TRUE(std::filesystem::is_empty("."));
}

TEST(Draw, CollapsesLargeModelsToOrbits) {
  const TempDir directory;
  run({"draw", kExamples + "/philosophers.sym", "--const", "N=501", "-o", "ring.svg"});
  const std::string dot = read_file("ring.dot");
  EXPECT_EQ(count(dot, "\n  \"phil_0\" \\[.*label=\"phil \u00D7501\""), 1U) << dot;
  EXPECT_EQ(count(dot, "\n  \"fork_0\" \\[.*label=\"fork \u00D7501\", shape=ellipse"), 1U);
  EXPECT_EQ(count(dot, "\n  \"phil_0\" -- \"fork_0\" \\[.*label=\"[lr]fork \u00D7501\""), 2U);
  EXPECT_EQ(count(dot, "taillabel"), 0U);
  EXPECT_EQ(count(read_file("ring.svg"), "class=\"(node|edge)\""), 4U);
}

TEST(Draw, DrawsAnyFileName) {
  const TempDir directory;
  const std::string name = "a&b <\"c\\d>.sym";
  std::filesystem::copy_file(kExamples + "/star.sym", name);
  const Outcome outcome = run({"draw", name, "-o", "star.dot"});
  EXPECT_EQ(outcome.code, kOk) << outcome.err;
  EXPECT_EQ(count(read_file("star.svg"), "a&amp;b &lt;"), 1U);
}

TEST(Draw, TellsWhyThereIsNoPicture) {
  const TempDir directory;
  const std::string path = std::getenv("PATH");
  setenv("PATH", "/nowhere", 1);
  const Outcome without = run({"draw", kExamples + "/star.sym"});
  std::filesystem::create_directory("bin");
  write_file("bin/dot", "#!/bin/sh\nexit 3\n");
  std::filesystem::permissions("bin/dot", std::filesystem::perms::owner_all);
  setenv("PATH", "bin:/bin", 1);
  const Outcome failing = run({"draw", kExamples + "/star.sym"});
  setenv("PATH", path.c_str(), 1);
  EXPECT_EQ(without.code, kOk);
  EXPECT_EQ(without.err,
            "symfold: no picture: the program dot, of Debian's package graphviz, is not installed\n");
  EXPECT_EQ(failing.code, kBadFile);
  EXPECT_EQ(failing.err, "symfold: star.svg: error: Graphviz's program dot failed\n");
  EXPECT_TRUE(std::filesystem::exists("star.dot"));
  EXPECT_FALSE(std::filesystem::exists("star.svg"));
  EXPECT_EQ(run({"draw", kExamples + "/star.sym", "-o", "star.png"}).code, kUsage);
}

}  // namespace
}  // namespace symfold
