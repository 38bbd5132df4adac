#include "tests/support/text_mutator.h"

#include <cctype>
#include <utility>
#include <vector>

namespace symfold {

std::string TextMutator::mutate(const std::string& text) {
  switch (below(4)) {
    case 0:
      return edit_bytes(text);
    case 1:
      return text.substr(0, below(text.size()));
    case 2:
      return exchange_tokens(text);
    default:
      return replace_numbers(text);
  }
}

std::string TextMutator::edit_bytes(std::string text) {
  static const std::string kBytes = "{}[]();:,.=<>?!+-*/%|&\"aN019 \n\t\xC3\xA9\xFF";
  for (std::size_t i = 0, n = 1 + below(4); i < n; ++i) {
    const std::size_t at = below(text.size());
    const char byte = below(4) == 0 ? static_cast<char>(static_cast<unsigned char>(below(256)))
                                    : kBytes[below(kBytes.size())];
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

std::string TextMutator::exchange_tokens(const std::string& text) {
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

std::string TextMutator::replace_numbers(const std::string& text) {
  static const std::vector<std::string> kNumbers = {"0",    "-1", "1", "7", "4000", "9223372036854775807",
                                                    "1e308"};
  std::string result;
  for (const char c : text) {
    const bool replaces = std::isdigit(static_cast<unsigned char>(c)) != 0 && below(8) == 0;
    result += replaces ? kNumbers[below(kNumbers.size())] : std::string(1, c);
  }
  return result;
}

}  // namespace symfold
