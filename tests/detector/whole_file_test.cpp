// Files that are whole or not there: what stands in the directory after commits, failures and killed writers.

#include "detector/whole_file.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <filesystem>
#include <initializer_list>
#include <map>
#include <memory>
#include <string>

#include "tests/support/temp_dir.h"

namespace symfold {
namespace {

namespace fs = std::filesystem;

std::map<std::string, std::string> contents() {
  std::map<std::string, std::string> result;
  for (const auto& entry : fs::directory_iterator(".")) {
    result[entry.path().filename().string()] = read_file(entry.path().string());
  }
  return result;
}

std::string written(const std::string& name, const std::string& text) {
  WholeFile file(name);
  const bool wrote = file.write(text.data(), text.size());
  const bool committed = file.commit();
  EXPECT_EQ(committed, file.error().empty());
  EXPECT_TRUE(wrote || !file.error().empty());
  return file.error();
}

TEST(WholeFile, AppearsWithItsLastByte) {
  const TempDir dir;
  const std::string large(100'000, 'x');
  std::string sum;
  {
    WholeFile file("a");
    for (const std::size_t size :
         std::initializer_list<std::size_t>{1, 16383, 16384, 16385, 5, 100'000, 16379}) {
      file.write(large.data(), size);
      sum += large.substr(0, size);
    }
    EXPECT_FALSE(fs::exists("a"));
    EXPECT_TRUE(file.commit());
    EXPECT_EQ(contents(), (std::map<std::string, std::string>{{"a", sum}}));
  }
  {
    WholeFile first("a");
    WholeFile second("a");
    first.write("first", 5);
    second.write("second", 6);
    EXPECT_EQ(contents().size(), 3U);
    EXPECT_TRUE(second.commit());
    EXPECT_TRUE(first.commit());
  }
  { WholeFile("a").write("lost", 4); }
  EXPECT_EQ(contents(), (std::map<std::string, std::string>{{"a", "first"}}));
}

TEST(WholeFile, FailuresAreToldAndLeaveTheOldFile) {
  const TempDir dir;
  write_file("old", "kept");
  const std::string large(100'000, 'x');
  const auto told = [](const std::string& name, const std::string& reason) {
    return name + ": error: cannot be written: " + reason;
  };
  EXPECT_EQ(written("/dev/full", "x"), told("/dev/full", "No space left on device"));
  EXPECT_EQ(written("/dev/full", large), told("/dev/full", "No space left on device"));
  EXPECT_EQ(written("/dev/null", large), "");
  EXPECT_EQ(written("no/file", "x"), told("no/file", "No such file or directory"));
  EXPECT_EQ(written("", "x"), told("", "No such file or directory"));
  EXPECT_EQ(written(".", "x"), told(".", "Is a directory"));
  fs::create_symlink("circle", "circle");
  EXPECT_EQ(written("circle", "x"), told("circle", "Too many levels of symbolic links"));
  fs::remove("circle");
  rlimit before{};
  getrlimit(RLIMIT_FSIZE, &before);
  const rlimit small{50'000, before.rlim_max};
  const auto handler = std::signal(SIGXFSZ, SIG_IGN);
  setrlimit(RLIMIT_FSIZE, &small);
  EXPECT_EQ(written("old", large), told("old", "File too large"));
  setrlimit(RLIMIT_FSIZE, &before);
  std::signal(SIGXFSZ, handler);
  EXPECT_EQ(contents(), (std::map<std::string, std::string>{{"old", "kept"}}));
}

TEST(WholeFile, KeepsLinksAndModes) {
  const TempDir dir;
  fs::create_directory("d");
  fs::create_symlink("d/second", "first");
  fs::create_symlink("target", "d/second");
  const mode_t mask = umask(027);
  EXPECT_EQ(written("first", "new"), "");
  umask(mask);
  EXPECT_EQ(fs::read_symlink("first"), "d/second");
  EXPECT_EQ(fs::read_symlink("d/second"), "target");
  EXPECT_EQ(read_file("d/target"), "new");
  EXPECT_EQ(fs::status("d/target").permissions(), fs::perms(0640));
  fs::permissions("d/target", fs::perms(0604));
  EXPECT_EQ(written("first", "newer"), "");
  EXPECT_EQ(fs::status("first").permissions(), fs::perms(0604));
  EXPECT_EQ(read_file("first"), "newer");
  EXPECT_EQ(std::distance(fs::directory_iterator("d"), {}), 2);
  const int output = open("output", O_WRONLY | O_CREAT | O_CLOEXEC, 0600);
  EXPECT_EQ(written("/proc/self/fd/" + std::to_string(output), "one "), "");
  EXPECT_EQ(written("/dev/fd/" + std::to_string(output), "two"), "");
  EXPECT_EQ(close(output), 0);
  EXPECT_EQ(read_file("output"), "one two");
}

TEST(WholeFile, RemovesWhatKilledWritersLeaveAndNothingElse) {
  const TempDir dir;
  const pid_t killed = fork();
  if (killed == 0) {
    WholeFile left("a");
    left.write("half", 4);
    _exit(0);
  }
  waitpid(killed, nullptr, 0);
  ASSERT_EQ(contents().size(), 1U);
  const std::string leftover = contents().begin()->first;
  EXPECT_TRUE(leftover.size() == 16 && leftover.starts_with("a.") && leftover.ends_with(".partial"));
  for (const char* name : {"a.partial", "a.backup.partial", "a.123456.partial", "b.000000.partial"}) {
    write_file(name, "mine");
  }
  fs::copy_file(leftover, "b" + leftover.substr(1));
  const auto alive = std::make_unique<WholeFile>("a");
  EXPECT_FALSE(fs::exists(leftover));
  EXPECT_EQ(contents().size(), 6U);
  EXPECT_EQ(written("a", "x"), "");
  EXPECT_EQ(contents().size(), 7U) << "the other writer's file stays";
  EXPECT_TRUE(alive->commit());
  EXPECT_EQ(contents().size(), 6U);
}

}  // namespace
}  // namespace symfold
