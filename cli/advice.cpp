#include "cli/advice.h"

#include <algorithm>
#include <filesystem>
#include <stdexcept>
#include <string_view>

#include "detector/permfile/perm_table.h"

namespace symfold {
namespace {

constexpr std::size_t kMaxSlips = 2;
constexpr const char* kPermFile = "permutations";  // in a run directory

// The number of slips between two words: a letter left out, added, changed, or exchanged with the next one;
// no letter is touched twice (F. J. Damerau, A technique for computer detection and correction of spelling
// errors, CACM 7, 1964). Row by row, entry j of a row compares the first letters of `a` with j of `b`.
std::size_t slips_between(std::string_view a, std::string_view b) {
  std::vector<std::size_t> before_last;
  std::vector<std::size_t> last(b.size() + 1);
  for (std::size_t j = 0; j <= b.size(); ++j) last[j] = j;
  for (std::size_t i = 1; i <= a.size(); ++i) {
    std::vector<std::size_t> row(b.size() + 1, i);
    for (std::size_t j = 1; j <= b.size(); ++j) {
      const bool is_same = a[i - 1] == b[j - 1];
      row[j] = std::min({last[j] + 1, row[j - 1] + 1, last[j - 1] + (is_same ? 0 : 1)});
      if (i > 1 && j > 1 && a[i - 1] == b[j - 2] && a[i - 2] == b[j - 1]) {
        row[j] = std::min(row[j], before_last[j - 2] + 1);
      }
    }
    before_last = std::move(last);
    last = std::move(row);
  }
  return last[b.size()];
}

// The first one of those that are nearest; empty if all are too far away.
std::string nearest_word(const std::string& text, const std::vector<std::string>& words) {
  std::string nearest;
  std::size_t least = kMaxSlips + 1;
  for (const std::string& word : words) {
    if (text.size() > word.size() + kMaxSlips) continue;
    const std::size_t slips = slips_between(text, word);
    if (slips >= least) continue;
    least = slips;
    nearest = word;
  }
  return nearest;
}

bool is_directory(const std::string& path) {
  std::error_code ignored;
  return std::filesystem::is_directory(path, ignored);
}

bool is_file(const std::filesystem::path& path) {
  std::error_code ignored;
  return std::filesystem::is_regular_file(path, ignored);
}

bool is_run_directory(const std::string& path) { return is_file(std::filesystem::path(path) / kPermFile); }

bool is_perm_file(const std::string& path) {
  PermTable table;
  return is_file(path) && read_perm_file(path, table).empty();
}

bool has_model_ending(const std::string& path) { return std::filesystem::path(path).extension() == ".sym"; }

// "type 'symfold show X' or 'symfold label X'".
std::string typed(const std::vector<std::string>& subcommands, const std::string& path) {
  std::string text = "type ";
  for (std::size_t i = 0; i < subcommands.size(); ++i) {
    if (i > 0) text += i + 1 < subcommands.size() ? ", " : " or ";
    text += "'symfold " + subcommands[i] + " " + path + "'";
  }
  return text;
}

}  // namespace

std::string subcommand_advice(const std::string& argument, const std::vector<std::string>& subcommands) {
  const std::string nearest = nearest_word(argument, subcommands);
  if (!nearest.empty())
    return "expected a subcommand, got '" + argument + "'; did you mean '" + nearest + "'?";
  const std::string before = "expected a subcommand before '" + argument + "': ";
  if (is_run_directory(argument) || is_perm_file(argument))
    return before + typed({"show", "label"}, argument);
  if (is_file(argument) || has_model_ending(argument)) {
    return before + typed({"explore", "detect", "draw"}, argument);
  }
  std::string names;
  for (const std::string& name : subcommands) names += (names.empty() ? "" : ", ") + name;
  return "expected a subcommand (" + names + "), got '" + argument + "'";
}

std::string model_advice(const std::string& path) {
  const std::string instead = typed({"show", "label"}, path);
  if (is_run_directory(path)) return "expected a model file, got a run directory: " + instead;
  if (is_directory(path)) return "expected a model file, got a directory";
  return is_perm_file(path) ? "expected a model file, got a permutation file: " + instead : "";
}

std::string perm_file_at(const std::string& path, const std::string& subcommand) {
  if (is_run_directory(path)) return (std::filesystem::path(path) / kPermFile).string();
  if (is_directory(path)) {
    throw std::runtime_error(path +
                             ": error: expected a permutation file, or a run directory that holds one");
  }
  if (has_model_ending(path) && is_file(path) && !is_perm_file(path)) {
    const std::string run_directory = std::filesystem::path(path).stem().string() + ".symfold";
    throw std::runtime_error(path + ": error: expected a permutation file or a run directory, got a model: " +
                             typed({"detect"}, path) + ", then 'symfold " + subcommand + " " + run_directory +
                             "'");
  }
  return path;
}

}  // namespace symfold
