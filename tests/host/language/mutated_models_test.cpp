// A damaged model is still a model, or it ends in errors with places in the text, and in nothing else.

#include <gtest/gtest.h>

#include <cctype>
#include <filesystem>
#include <random>
#include <string>
#include <vector>

#include "tests/support/model_support.h"
#include "tests/support/reader_contract.h"

namespace symfold {
namespace {

class Mutator {
 public:
  explicit Mutator(unsigned seed) : random_(seed) {}

  std::string mutate(std::string text) {
    switch (below(4)) {
      case 0:
        return edit_bytes(std::move(text));
      case 1:
        return text.substr(0, below(text.size()));
      case 2:
        return exchange_tokens(text);
      default:
        return replace_numbers(std::move(text));
    }
  }

 private:
  std::size_t below(std::size_t bound) {
    return std::uniform_int_distribution<std::size_t>(0, bound - 1)(random_);
  }

  std::string edit_bytes(std::string text) {
    static const std::string kBytes = "{}[]();:,.=<>?!+-*/%|&\"aN019 \n\t\xC3\xA9\xFF";
    for (std::size_t i = 0, n = 1 + below(4); i < n; ++i) {
      const std::size_t at = below(text.size());
      const char byte = below(4) == 0 ? static_cast<char>(below(256)) : kBytes[below(kBytes.size())];
      if (below(3) == 0) {
        text.erase(at, 1);
      } else if (below(2) == 0) {
        text.insert(at, 1, byte);
      } else {
        text[at] = byte;
      }
    }
    return text;
  }

  // Tokens are words and single characters. A few of them change places, are doubled or left out.
  std::string exchange_tokens(const std::string& text) {
    std::vector<std::string> tokens;
    for (const char c : text) {
      const bool is_word = std::isalnum(static_cast<unsigned char>(c)) != 0 || c == '_';
      const bool follows_word =
          !tokens.empty() && std::isalnum(static_cast<unsigned char>(tokens.back().back())) != 0;
      if (is_word && follows_word) {
        tokens.back() += c;
      } else {
        tokens.emplace_back(1, c);
      }
    }
    for (std::size_t i = 0, n = 1 + below(3); i < n; ++i) {
      std::string& first = tokens[below(tokens.size())];
      std::string& second = tokens[below(tokens.size())];
      if (below(2) == 0) {
        std::swap(first, second);
      } else {
        first = below(2) == 0 ? "" : second;
      }
      if (first.empty()) first = " ";
    }
    std::string result;
    for (const std::string& token : tokens) result += token;
    return result;
  }

  std::string replace_numbers(std::string text) {
    static const std::vector<std::string> kNumbers = {"0",    "-1", "1", "7", "4000", "9223372036854775807",
                                                      "1e308"};
    std::string result;
    for (const char c : text) {
      const bool replaces = std::isdigit(static_cast<unsigned char>(c)) != 0 && below(8) == 0;
      result += replaces ? kNumbers[below(kNumbers.size())] : std::string(1, c);
    }
    return result;
  }

  std::mt19937 random_;
};

TEST(MutatedModels, AreModelsOrErrors) {
  int models = 0;
  int errors = 0;
  for (unsigned seed = 0; seed < 300; ++seed) {
    for (const std::string& name : example_names()) {
      const std::string text = Mutator(seed).mutate(example_text(name));
      const Reading reading = read_by_contract(text);
      ASSERT_EQ(reading.breach, "") << "seed " << seed << " of " << name << "\n" << text;
      ++(reading.is_model ? models : errors);
    }
  }
  EXPECT_GT(models, 100);
  EXPECT_GT(errors, 100);
}

// The texts that the fuzzer starts from; its earlier findings are among them.
TEST(FuzzerSeeds, AreReadByContract) {
  const std::string directory = SYMFOLD_TESTS_DIR "/fuzz/seeds";
  EXPECT_TRUE(read_by_contract(file_text(directory + "/every_construct.sym")).is_model);
  for (const auto& seed : std::filesystem::directory_iterator(directory)) {
    EXPECT_EQ(read_by_contract(file_text(seed.path().string())).breach, "") << seed.path();
  }
}

}  // namespace
}  // namespace symfold
