// Chains written in every format and read back by strict readers.

#include "host/export/chain_export.h"

#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <filesystem>
#include <initializer_list>
#include <limits>
#include <random>
#include <set>

#include "host/checksum.h"
#include "host/export/names.h"
#include "host/new_file.h"
#include "tests/support/chain_readers.h"
#include "tests/support/detector_support.h"
#include "tests/support/model_support.h"

namespace symfold {
namespace {

namespace fs = std::filesystem;

using Rows = std::vector<std::vector<std::pair<StateId, double>>>;

RateMatrix matrix_of(const Rows& rows) {
  RateMatrix matrix;
  for (const auto& row : rows) {
    for (const auto& [target, rate] : row) {
      matrix.targets.push_back(target);
      matrix.rates.push_back(rate);
    }
    matrix.row_starts.push_back(matrix.targets.size());
  }
  return matrix;
}

// State s has the values of a mixed radix number s.
MarkovChain chain_of(const Rows& rows) {
  using enum ValueSet::Kind;
  const auto phases =
      std::make_shared<const std::vector<std::string>>(std::vector<std::string>{"idle", "busy"});
  MarkovChain chain;
  chain.matrix = matrix_of(rows);
  chain.variables = {{"phil_0.phase", {kEnumeration, 0, 1, phases}},
                     {"phil.0_phase", {kBool, 0, 1, nullptr}},
                     {"F", {kRange, -3, 1000, nullptr}}};
  chain.read_values = [](StateId state, std::span<std::int16_t> values) {
    const int number = static_cast<int>(state);
    values[0] = static_cast<std::int16_t>(number % 2);
    values[1] = static_cast<std::int16_t>(number / 2 % 2);
    values[2] = static_cast<std::int16_t>(number / 4 - 3);
  };
  return chain;
}

// A deadlock, self-loops, the smallest and the largest rate, and names that no solver takes.
MarkovChain awkward_chain() {
  MarkovChain chain = chain_of({{{0, 0.1}, {1, 1.0 / 3}, {3, std::numeric_limits<double>::denorm_min()}},
                                {{2, std::numeric_limits<double>::max()}},
                                {},
                                {{0, 1e-5}, {2, 123456789}, {3, 1e22}}});
  chain.observables = {{"someone eats", {true, false, false, false}},
                       {"someone-eats", {true, false, true, false}},
                       {"init", {false, false, false, true}},
                       {"\"1\\\" st", {true, false, true, true}},
                       {"", {false, false, false, true}}};
  chain.rewards = {{"eating!", {0, -0.5, 0, 2}}, {"eating", {1e300, 0, 1.0 / 7, -0.0}}};
  return chain;
}

MarkovChain random_chain(std::uint64_t seed) {
  std::mt19937_64 random(seed);
  const std::size_t state_count = 1 + random() % 40;
  const std::uint64_t density = 1 + random() % 6;
  Rows rows(state_count);
  for (auto& row : rows) {
    for (StateId target = 0; target < state_count; ++target) {
      const double rate = std::abs(std::bit_cast<double>(random()));
      if (random() % density == 0 && std::isfinite(rate) && rate > 0) row.emplace_back(target, rate);
    }
  }
  MarkovChain chain = chain_of(rows);
  for (std::uint64_t i = random() % 4; i > 0; --i) {
    ChainObservable& label =
        chain.observables.emplace_back(ChainObservable{"label " + std::to_string(i), {}});
    ChainReward& reward = chain.rewards.emplace_back(ChainReward{"reward " + std::to_string(i), {}});
    for (std::size_t state = 0; state < state_count; ++state) {
      label.holds.push_back(random() % 2 == 0);
      reward.values.push_back(random() % 2 == 0 ? 0 : static_cast<double>(random()) * 0x1p-64);
    }
  }
  return chain;
}

std::vector<Transition> transitions_of(const MarkovChain& chain, bool has_loops) {
  std::vector<Transition> transitions;
  for (StateId s = 0; s < chain.matrix.state_count(); ++s) {
    const auto targets = chain.matrix.targets_of(s);
    for (std::size_t i = 0; i < targets.size(); ++i) {
      transitions.emplace_back(s, targets[i], chain.matrix.rates_of(s)[i]);
    }
    if (targets.empty() && has_loops) transitions.emplace_back(s, s, 1.0);
  }
  return transitions;
}

std::vector<std::string> labels_of(const MarkovChain& chain, StateId state,
                                   const std::vector<std::string>& names) {
  std::vector<std::string> labels;
  if (state == 0) labels.emplace_back("init");
  if (chain.matrix.is_deadlock(state)) labels.emplace_back("deadlock");
  for (std::size_t i = 0; i < names.size(); ++i) {
    if (chain.observables[i].holds[state]) labels.push_back(names[i]);
  }
  return labels;
}

std::string text_of_value(const ChainVariable& variable, int value, bool is_for_people) {
  if (is_for_people) return variable.name + " = " + value_text(variable.values, value);
  if (variable.values.kind == ValueSet::Kind::kBool) return value == 0 ? "false" : "true";
  return std::to_string(value);
}

// What the file of a format has to say.
ReadChain expected_of(const MarkovChain& chain, const std::string& ending, std::size_t reward) {
  const bool has_loops = ending == ".tra" || ending == ".drn";
  const bool is_drawing = ending == ".dot";
  ReadChain expected;
  if (has_loops || is_drawing || ending == ".mtx" || ending == ".aut") {
    expected.transitions = transitions_of(chain, has_loops);
  }
  if (ending == ".sta") expected.names = variable_identifiers(chain);
  if (ending == ".drn") expected.names = reward_identifiers(chain);
  if (ending == ".srew") expected.names = {reward_identifiers(chain)[reward]};
  std::vector<std::string> label_names = observable_identifiers(chain);
  if (ending == ".lab") {
    expected.names = label_names;
    expected.names.insert(expected.names.begin(), {"init", "deadlock"});
  }
  for (std::size_t i = 0; is_drawing && i < label_names.size(); ++i)
    label_names[i] = chain.observables[i].name;
  for (StateId s = 0; s < chain.matrix.state_count(); ++s) {
    std::vector<std::int16_t> values(chain.variables.size());
    chain.read_values(s, values);
    if (is_drawing || ending == ".sta") expected.values.emplace_back();
    for (std::size_t i = 0; !expected.values.empty() && i < values.size(); ++i) {
      expected.values.back().push_back(text_of_value(chain.variables[i], values[i], is_drawing));
    }
    if (is_drawing || ending == ".lab" || ending == ".drn") {
      expected.labels.push_back(labels_of(chain, s, label_names));
    }
    if (ending == ".srew") expected.rewards.push_back({chain.rewards[reward].values[s]});
    if (ending != ".drn") continue;
    expected.rewards.emplace_back();
    for (const ChainReward& each : chain.rewards) expected.rewards.back().push_back(each.values[s]);
    double exit_rate = chain.matrix.is_deadlock(s) ? 1 : 0;
    for (const double rate : chain.matrix.rates_of(s)) exit_rate += rate;
    expected.exit_rates.push_back(exit_rate);
  }
  return expected;
}

void expect_written(const MarkovChain& chain, const std::string& path, std::size_t reward = 0) {
  SCOPED_TRACE(path);
  const ReadChain read = read_chain_file(path, chain.matrix.state_count());
  const ReadChain expected = expected_of(chain, fs::path(path).extension(), reward);
  EXPECT_EQ(read.names, expected.names);
  EXPECT_EQ(read.values, expected.values);
  EXPECT_EQ(read.labels, expected.labels);
  EXPECT_EQ(read.rewards, expected.rewards);
  EXPECT_EQ(read.exit_rates, expected.exit_rates);
  EXPECT_EQ(read.transitions, expected.transitions);
}

TEST(ChainExport, WritesWhatEveryFormatsReaderReadsBack) {
  const TempDir directory;
  std::vector<MarkovChain> chains = {awkward_chain(), chain_of({{}})};
  for (std::uint64_t seed = 0; seed < 20; ++seed) chains.push_back(random_chain(seed));
  for (std::size_t c = 0; c < chains.size(); ++c) {
    SCOPED_TRACE("chain " + std::to_string(c));
    const MarkovChain& chain = chains[c];
    for (const char* ending : {".tra", ".sta", ".lab", ".drn", ".mtx", ".aut", ".dot"}) {
      const std::string path = std::string("a") + ending;
      ASSERT_EQ(write_chain(chain, path), std::vector<std::string>{path});
      expect_written(chain, path);
    }
    const std::vector<std::string> files = write_chain(chain, "b.all");
    ASSERT_EQ(files.size(), 4 + chain.rewards.size());
    EXPECT_EQ(files.back(), "b.set");
    EXPECT_EQ(read_file_set("b.set").files, std::vector<std::string>(files.begin(), files.end() - 1));
    for (const char* ending : {".tra", ".sta", ".lab"}) {
      EXPECT_EQ(file_text(std::string("b") + ending), file_text(std::string("a") + ending));
    }
    for (std::size_t i = 0; i < chain.rewards.size(); ++i) {
      const std::string number = chain.rewards.size() == 1 ? "" : std::to_string(i + 1);
      EXPECT_EQ(files[3 + i], "b" + number + ".srew");
      expect_written(chain, files[3 + i], i);
    }
  }
}

// The description shows the files of one chain, byte by byte.
TEST(ChainExport, WritesTheFilesThatTheDescriptionShows) {
  const TempDir directory;
  const auto modes =
      std::make_shared<const std::vector<std::string>>(std::vector<std::string>{"up", "down", "scrapped"});
  MarkovChain chain;
  chain.matrix = matrix_of({{{1, 0.5}}, {{0, 4.0}, {2, 0.1}}, {}});
  chain.variables = {{"machine.mode", {ValueSet::Kind::kEnumeration, 0, 2, modes}}};
  chain.read_values = [](StateId state, std::span<std::int16_t> values) {
    values[0] = static_cast<std::int16_t>(state);
  };
  chain.observables = {{"is up", {true, false, false}}};
  chain.rewards = {{"uptime", {1, 0, 0}}};
  const std::string description = file_text(SYMFOLD_DOCS_DIR "/file-formats.md");
  for (const char* name : {"machine.all", "machine.drn", "machine.mtx", "machine.aut", "machine.dot"}) {
    for (const std::string& file : write_chain(chain, name)) {
      EXPECT_NE(description.find("```\n" + file_text(file) + "```\n"), std::string::npos) << file;
    }
  }
}

TEST(ChainExport, MakesDistinctIdentifiersOfAnyNames) {
  EXPECT_EQ(solver_identifiers({"a b", "a_b", "a  b!", "a_b_2", "2nd", "", "\xC3\xA9", "init", "deadlock",
                                "W", "phil_0.phase", "(x)", "__"}),
            (std::vector<std::string>{"a_b", "a_b_2", "a_b_3", "a_b_2_2", "_2nd", "_", "__2", "init_",
                                      "deadlock_", "W_", "phil_0_phase", "x", "__"}));
}

// PRISM decides by the first rates of the file.
TEST(ChainExport, TellsWhenPrismNeedsToBeToldOfContinuousTime) {
  EXPECT_TRUE(needs_ctmc_switch(chain_of({{{0, 1.0}}})));
  EXPECT_FALSE(needs_ctmc_switch(chain_of({{{0, 1.0}, {1, 1.5}}, {}})));
  EXPECT_FALSE(needs_ctmc_switch(chain_of({{}, {}, {}, {}, {{0, 2.0}}})));
  EXPECT_TRUE(needs_ctmc_switch(chain_of({{}, {}, {}, {}, {{0, 1.0}, {1, 2.0}}})));
}

std::string refusal_of(const MarkovChain& chain, const std::string& path) {
  try {
    write_chain(chain, path);
  } catch (const std::runtime_error& error) {
    return error.what();
  }
  return "";
}

std::set<std::string> entries() {
  std::set<std::string> names;
  for (const fs::directory_entry& entry : fs::directory_iterator(".")) {
    names.insert(entry.path().filename().string());
  }
  return names;
}

TEST(ChainExport, RefusesInOneLineAndLeavesNothingBehind) {
  const TempDir directory;
  const MarkovChain chain = chain_of({{}});
  const auto expect_refusal = [&](const std::string& name, const std::string& message) {
    EXPECT_EQ(refusal_of(chain, name), name + ": error: " + message);
  };
  expect_refusal("missing/a.tra", "cannot be written: No such file or directory");
  expect_refusal("a.srew", "expected a model with rewards for this format, got none");
  for (const char* name : {"a", "a.txt", "tra", "dir.tra/a"}) {
    EXPECT_FALSE(is_export_format(name));
    expect_refusal(
        name, "expected a name that ends in one of .all, .tra, .sta, .lab, .srew, .drn, .mtx, .aut, .dot");
  }
  EXPECT_EQ(refusal_of(chain_of(Rows(5001)), "a.dot"),
            "a.dot: error: expected a chain of at most 5000 states for this format, got 5001");
  EXPECT_TRUE(fs::is_empty("."));
  fs::create_directory("d.tra");
  expect_refusal("d.tra", "cannot be written: Is a directory");
  fs::create_symlink("/dev/full", "full.tra");
  expect_refusal("full.tra", "cannot be written: No space left on device");
  EXPECT_EQ(entries(), (std::set<std::string>{"d.tra", "full.tra"}));
}

// A set of one chain is read; with any part of another chain, or without a part or its list, it is refused.
TEST(ChainExport, WritesSetsThatAreRefusedIfTheyAreMixed) {
  const TempDir directory;
  const MarkovChain chain = awkward_chain();
  const MarkovChain other = random_chain(7);
  fs::create_directories("old");
  write_chain_set(other, {"old/a.all", "old/a.drn", "old/b.mtx"});
  const auto write = [&] { return write_chain_set(chain, {"a.all", "a.drn", "a.tra", "b.mtx"}).files; };
  const std::vector<std::string> files = write();
  EXPECT_EQ(files, (std::vector<std::string>{"a.tra", "a.sta", "a.lab", "a1.srew", "a2.srew", "a.drn",
                                             "b.mtx", "a.set", "b.set"}));
  EXPECT_EQ(entries().size(), files.size() + 1);
  const std::string identifier = read_file_set("a.set").identifier;
  EXPECT_EQ(read_file_set("b.set").identifier, identifier);
  EXPECT_NE(read_file_set("old/b.set").identifier, identifier);
  for (const std::string& file : files) {
    const std::string list = file.starts_with("a") ? "a.set" : "b.set";
    for (const bool is_mixed : {false, true}) {
      if (is_mixed) fs::copy_file("old/" + file, file, fs::copy_options::overwrite_existing);
      if (!is_mixed) fs::remove(file);
      EXPECT_THROW(read_file_set(list), std::runtime_error) << file << is_mixed;
      EXPECT_EQ(write(), files);
      EXPECT_EQ(read_file_set(list).identifier, identifier);
    }
  }
}

// PRISM would take a reward that an earlier chain has left for one of the new chain. What somebody else has
// written stays.
TEST(ChainExport, RemovesTheRewardsOfTheSetThatItReplaces) {
  const TempDir directory;
  const MarkovChain chain = awkward_chain();
  MarkovChain without = chain;
  without.rewards.clear();
  write_chain(chain, "a.all");
  write_file("a2.srew", "mine");
  write_chain(without, "a.all");
  EXPECT_EQ(entries(), (std::set<std::string>{"a.tra", "a.sta", "a.lab", "a.set", "a2.srew"}));
  EXPECT_EQ(read_file_set("a.set").files.size(), 3U);
  write_file("b.set", "mine");
  EXPECT_EQ(refusal_of(chain, "b.all"),
            "b.set: error: expected a list of exported files (\"symfold chain files\"), got another file, "
            "which stays as it is");
  EXPECT_EQ(file_text("b.set"), "mine");
  EXPECT_EQ(entries().size(), 6U);
}

TEST(ChainExport, LeavesOutWhatAFormatCannotShow) {
  const TempDir directory;
  fs::create_symlink("/dev/null", "null.drn");
  const WrittenChain written =
      write_chain_set(chain_of(Rows(5001)), {"a.srew", "a.tra", "a.dot", "null.drn", "a.lab"});
  EXPECT_EQ(written.files, (std::vector<std::string>{"a.tra", "null.drn", "a.lab", "a.set"}));
  EXPECT_EQ(written.refusals.size(), 2U);
  EXPECT_EQ(read_file_set("a.set").files, (std::vector<std::string>{"a.tra", "a.lab"}));
}

// A disk that is full at the last part leaves the earlier set as it was.
TEST(ChainExport, KeepsTheEarlierSetIfAFileCannotBeWritten) {
  const TempDir directory;
  write_chain_set(awkward_chain(), {"a.tra", "a.lab"});
  const std::string before = file_text("a.set");
  fs::create_symlink("/dev/full", "a.drn");
  EXPECT_THROW(write_chain_set(random_chain(3), {"a.tra", "a.lab", "a.drn"}), std::runtime_error);
  EXPECT_EQ(file_text("a.set"), before);
  EXPECT_EQ(read_file_set("a.set").files.size(), 2U);
  EXPECT_EQ(entries(), (std::set<std::string>{"a.tra", "a.lab", "a.set", "a.drn"}));
}

// The first four are known from other programs.
TEST(Checksum, IsXxh64) {
  const auto checksum = [](const std::string& text, std::size_t piece) {
    Checksum sum;
    for (std::size_t i = 0; i < text.size(); i += piece) sum.add(std::string_view(text).substr(i, piece));
    EXPECT_EQ(sum.size(), text.size());
    return hexadecimal(sum.value());
  };
  EXPECT_EQ(checksum("", 1), "ef46db3751d8e999");
  EXPECT_EQ(checksum("a", 1), "d24ec4f1a98c6e5b");
  EXPECT_EQ(checksum("abc", 3), "44bc2cf5ad770999");
  EXPECT_EQ(checksum("Nobody inspects the spammish repetition", 7), "fbcea83c8a378bf1");
  for (std::size_t size = 0; size < 200; ++size) {
    std::string text(size, 'x');
    for (std::size_t i = 0; i < size; ++i) text[i] = static_cast<char>(i * i);
    for (const std::size_t piece : std::initializer_list<std::size_t>{1, 5, 31, 32, 33, 64})
      EXPECT_EQ(checksum(text, piece), checksum(text, 200));
  }
}

// Writes numbers across the end of the buffer, and a text longer than the buffer. A file that is given up
// leaves the one before it.
TEST(NewFile, AppearsWholeOrNotAtAll) {
  const TempDir directory;
  const std::string path = "file";
  const std::string long_text(3'000'000, 'x');
  std::string expected;
  for (int i = 0; i < 300'000; ++i) expected += std::to_string(i) + " 0.5\n";
  for (const bool is_committed : {false, true, false}) {
    const std::string before = file_text(path);
    {
      NewFile file(path);
      for (int i = 0; i < 300'000; ++i) file.append(i, ' ', 0.5, '\n');
      file.append(long_text);
      if (is_committed) file.commit();
    }
    EXPECT_EQ(file_text(path), is_committed ? expected + long_text : before);
    EXPECT_EQ(entries().size(), is_committed || !before.empty() ? 1U : 0U);
  }
}

}  // namespace
}  // namespace symfold
