#include "host/export/names.h"

#include <algorithm>
#include <string_view>
#include <unordered_map>
#include <unordered_set>

namespace symfold {
namespace {

// The reserved words of the PRISM language (PRISM manual, "Modules And Variables") and the built-in label
// `deadlock`, each between blanks.
constexpr std::string_view kReserved =
    " A C E F G I P Pmax Pmin R Rmax Rmin S U W X bool clock const ctmc deadlock double dtmc endinit "
    "endinvariant endmodule endobservables endrewards endsystem false filter formula func global init int "
    "invariant label max mdp min module nondeterministic observable observables of pomdp popta prob "
    "probabilistic pta rate rewards stochastic system true ";

bool is_reserved(const std::string& word) {
  return kReserved.find(" " + word + " ") != std::string_view::npos;
}

bool is_digit(char c) { return c >= '0' && c <= '9'; }

bool is_word_character(char c) {
  return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || is_digit(c) || c == '_';
}

std::string identifier_of(std::string_view name) {
  std::string word;
  bool is_after_gap = false;
  for (const char c : name) {
    if (is_word_character(c)) {
      if (is_after_gap && !word.empty()) word += '_';
      word += c;
    }
    is_after_gap = !is_word_character(c);
  }
  if (word.empty() || is_digit(word.front())) word.insert(0, "_");
  if (is_reserved(word)) word += '_';
  return word;
}

template <class Named>
std::vector<std::string> identifiers_of(const std::vector<Named>& all) {
  std::vector<std::string> names(all.size());
  std::transform(all.begin(), all.end(), names.begin(), [](const Named& named) { return named.name; });
  return solver_identifiers(names);
}

}  // namespace

// The next number of a word that is taken only grows, so that a thousand equal words take a thousand steps.
std::vector<std::string> solver_identifiers(const std::vector<std::string>& names) {
  std::vector<std::string> identifiers;
  std::unordered_set<std::string> taken;
  std::unordered_map<std::string, int> next_numbers;
  for (const std::string& name : names) {
    const std::string word = identifier_of(name);
    std::string identifier = word;
    for (int& number = next_numbers.try_emplace(word, 2).first->second; !taken.insert(identifier).second;) {
      identifier = word + "_" + std::to_string(number++);
    }
    identifiers.push_back(std::move(identifier));
  }
  return identifiers;
}

std::vector<std::string> variable_identifiers(const MarkovChain& chain) {
  return identifiers_of(chain.variables);
}

std::vector<std::string> observable_identifiers(const MarkovChain& chain) {
  return identifiers_of(chain.observables);
}

std::vector<std::string> reward_identifiers(const MarkovChain& chain) {
  return identifiers_of(chain.rewards);
}

std::string dot_escaped(std::string_view text) {
  std::string result;
  for (const char c : text) {
    if (c == '"' || c == '\\') result += '\\';
    result += c;
  }
  return result;
}

}  // namespace symfold
