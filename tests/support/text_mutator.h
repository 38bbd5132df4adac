// Damages texts, as disks, editors and people do.

#ifndef SYMFOLD_TESTS_SUPPORT_TEXT_MUTATOR_H
#define SYMFOLD_TESTS_SUPPORT_TEXT_MUTATOR_H

#include <cstddef>
#include <random>
#include <string>

namespace symfold {

class TextMutator {
 public:
  explicit TextMutator(unsigned seed) : random_(seed) {}

  // The text, which must not be empty, cut short, with a few bytes changed, with tokens (words and single
  // characters) in each other's place, doubled or left out, or with digits replaced by numbers.
  std::string mutate(const std::string& text);

 private:
  std::size_t below(std::size_t bound) {
    return std::uniform_int_distribution<std::size_t>(0, bound - 1)(random_);
  }
  std::string edit_bytes(std::string text);
  std::string exchange_tokens(const std::string& text);
  std::string replace_numbers(const std::string& text);

  std::mt19937 random_;
};

}  // namespace symfold

#endif  // SYMFOLD_TESTS_SUPPORT_TEXT_MUTATOR_H
