// Decimal numbers between white space, as in graph files and permutation files.

#ifndef SYMFOLD_ENGINES_BASE_NUMBER_SCANNER_H
#define SYMFOLD_ENGINES_BASE_NUMBER_SCANNER_H

#include <cstddef>
#include <cstdint>
#include <optional>
#include <streambuf>
#include <string>

namespace symfold::detail {

// Cuts a text into tokens and counts its lines. What the tokens mean, and what to say about a wrong one, is
// left to the caller.
class NumberScanner {
 public:
  // The text must outlive the scanner. What it throws when it cannot be read passes through.
  explicit NumberScanner(std::streambuf& text) : text_(text) {}

  // Moves to the next token. Returns false at the end of the text, where the token is empty. A token of more
  // than kMaxTokenLength characters is cut, so that a text without white space costs no memory; the text is
  // then read no further than the cut.
  bool next();

  const std::string& token() const { return token_; }

  // The token for an error message: its first characters, at most kMaxTokenShown of the text, everything but
  // printable ASCII as \xNN. Empty at the end of the text.
  std::string shown() const;

  // Returns the number that the token is, with a minus sign if `low` is negative; nothing if the token is no
  // number from low to high, or was cut.
  std::optional<int> number(int low, int high) const;

  // The same for a number from 0 to 2^64-1.
  std::optional<std::uint64_t> large_number() const;

  // The line in which the token stands, or the text ends, from 1 on.
  int line() const { return line_; }

  static constexpr std::size_t kMaxTokenLength = 32;
  static constexpr std::size_t kMaxTokenShown = 24;  // longer than any number

 private:
  std::streambuf& text_;
  std::string token_;
  bool is_cut_ = false;
  int line_ = 1;
};

}  // namespace symfold::detail

#endif  // SYMFOLD_ENGINES_BASE_NUMBER_SCANNER_H
