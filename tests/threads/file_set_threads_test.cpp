// Run directories and exports that several runs write to at a time, and what is left of one that was killed.

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/file.h>
#include <unistd.h>

#include <atomic>
#include <filesystem>
#include <set>
#include <stdexcept>
#include <thread>

#include "host/export/chain_export.h"
#include "host/symmetry/run_directory.h"
#include "tests/support/chain_readers.h"
#include "tests/support/temp_dir.h"

namespace symfold {
namespace {

namespace fs = std::filesystem;

const std::vector<std::string> kFiles = {"types", "model_comp_graph", "mcg.viz", "detection.log",
                                         "permutations"};

void publish(const std::string& text, bool has_log = true) {
  RunDirectory run("run");
  if (has_log) run.open_log() << text;
  for (const std::string& name : kFiles) {
    if (name != "detection.log") run.write(name, [&](std::ostream& out) { out << text; });
  }
  run.publish();
}

std::set<std::string> entries() {
  std::set<std::string> names;
  for (const fs::directory_entry& entry : fs::directory_iterator("run")) {
    names.insert(entry.path().filename().string());
  }
  return names;
}

TEST(RunDirectoryThreads, LeaveTheSetOfOneRun) {
  const TempDir directory;
  fs::create_directory("run");
  write_file("run/mine", "kept");
  std::vector<std::thread> threads;
  for (int i = 0; i < 4; ++i) {
    threads.emplace_back([i] {
      for (int round = 0; round < 10; ++round) publish("run " + std::to_string(100 * i + round), i != 3);
    });
  }
  // What a reader sees beside them is a whole file or none.
  std::atomic<bool> is_over = false;
  std::thread reader([&] {
    while (!is_over) {
      const std::string text = read_file("run/permutations");
      EXPECT_TRUE(text.empty() || text.starts_with("run ")) << text;
    }
  });
  for (std::thread& thread : threads) thread.join();
  is_over = true;
  reader.join();
  const std::string text = read_file("run/permutations");
  std::set<std::string> expected(kFiles.begin(), kFiles.end());
  if (std::stoi(text.substr(4)) >= 300) expected.erase("detection.log");
  for (const std::string& name : expected) EXPECT_EQ(read_file("run/" + name), text) << name;
  expected.insert("mine");
  EXPECT_EQ(entries(), expected);
  EXPECT_EQ(read_file("run/mine"), "kept");
}

TEST(RunDirectoryThreads, RemoveWhatAKilledRunHasLeft) {
  const TempDir directory;
  fs::create_directories("run/.partial-killed");
  write_file("run/.partial-killed/permutations", "half");
  fs::create_directories("run/.partial-living");
  const int living = open("run/.partial-living", O_RDONLY | O_DIRECTORY);
  ASSERT_EQ(flock(living, LOCK_EX), 0);
  { RunDirectory given_up("run"); }
  EXPECT_EQ(entries(), (std::set<std::string>{".partial-living"}));
  close(living);
  publish("whole");
  EXPECT_EQ(entries(), (std::set<std::string>(kFiles.begin(), kFiles.end())));
}

// The directory is a link, one file another one, and one is for its owner alone.
TEST(RunDirectoryThreads, KeepModesAndWhatLinksLeadTo) {
  const TempDir directory;
  fs::create_directory("run");
  fs::create_directory_symlink("run", "link");
  write_file("mine", "kept");
  fs::create_symlink("../mine", "run/mcg.viz");
  fs::create_directory_symlink("..", "run/.partial-killed");
  write_file("run/.partial-mine-too", "kept");
  write_file("run/permutations", "old");
  fs::permissions("run/permutations", fs::perms::owner_read);
  {
    RunDirectory run("link");
    for (const char* name : {"mcg.viz", "permutations"}) {
      run.write(name, [](std::ostream& out) { out << "new"; });
    }
    run.publish();
  }
  EXPECT_TRUE(fs::is_symlink("link"));
  EXPECT_EQ(read_file("mine"), "kept");
  EXPECT_FALSE(fs::is_symlink("run/mcg.viz"));
  EXPECT_EQ(read_file("run/permutations"), "new");
  EXPECT_EQ(fs::status("run/permutations").permissions(), fs::perms::owner_read);
  EXPECT_EQ(entries(),
            (std::set<std::string>{".partial-killed", ".partial-mine-too", "mcg.viz", "permutations"}));
}

// What a reader sees beside the runs is a set of one of them, or none.
TEST(ExportThreads, LeaveTheSetOfOneRun) {
  const TempDir directory;
  fs::create_directory_symlink(".", "same");
  const auto chain_of_rate = [](double rate) {
    MarkovChain chain;
    chain.matrix = {{0, 1}, {0}, {rate}};
    return chain;
  };
  std::vector<std::thread> threads;
  for (int i = 0; i < 4; ++i) {
    threads.emplace_back([&chain_of_rate, i] {
      const std::string place = i % 2 == 0 ? "" : "same/";
      for (int round = 0; round < 10; ++round) {
        write_chain_set(chain_of_rate(100 * i + round + 2),
                        {place + "a.tra", place + "b.mtx", place + "a.drn", place + "a.aut"});
      }
    });
  }
  std::atomic<bool> is_over = false;
  std::thread reader([&] {
    while (!is_over) {
      try {
        EXPECT_EQ(read_file_set("a.set").files.size(), 3U);
      } catch (const std::runtime_error&) {
        std::this_thread::yield();
      }
    }
  });
  for (std::thread& thread : threads) thread.join();
  is_over = true;
  reader.join();
  EXPECT_EQ(read_file_set("a.set").identifier, read_file_set("b.set").identifier);
  const double rate = std::get<2>(read_chain_file("a.tra", 1).transitions[0]);
  for (const char* name : {"b.mtx", "a.drn", "a.aut"}) {
    EXPECT_EQ(std::get<2>(read_chain_file(name, 1).transitions[0]), rate) << name;
  }
}

// Nothing of the earlier set is lost but the permutation file, without which it is no set.
TEST(RunDirectoryThreads, SayWhatCannotBeReplaced) {
  const TempDir directory;
  publish("first");
  fs::remove("run/mcg.viz");
  fs::create_directories("run/mcg.viz/in the way");
  try {
    publish("second");
    FAIL();
  } catch (const std::runtime_error& error) {
    EXPECT_EQ(std::string(error.what()).find("run/mcg.viz: error: cannot be replaced: "), 0U) << error.what();
  }
  EXPECT_FALSE(fs::exists("run/permutations"));
  write_file("file", "");
  EXPECT_THROW(RunDirectory("file"), std::runtime_error);
}

}  // namespace
}  // namespace symfold
