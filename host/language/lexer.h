// Cuts the text of a model file into tokens, one at a time.

#ifndef SYMFOLD_HOST_LANGUAGE_LEXER_H
#define SYMFOLD_HOST_LANGUAGE_LEXER_H

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "host/language/error_list.h"

namespace symfold {

// Longer names are errors, since names are repeated for every element of an array.
inline constexpr std::size_t kMaxNameLength = 128;

enum class TokenKind {
  kName,
  kKeyword,  // a reserved word
  kInteger,
  kReal,
  kString,  // text includes the quotes
  kSymbol,
  kMalformed,  // an error that is already in the list
  kEnd
};

struct Token {
  TokenKind kind = TokenKind::kEnd;
  Offset offset = 0;
  std::string_view text;  // into the source
  std::int64_t integer = 0;
  double real = 0;

  // True for this symbol or keyword.
  bool is(std::string_view word) const {
    return (kind == TokenKind::kSymbol || kind == TokenKind::kKeyword) && text == word;
  }
};

// The token as a message shows it.
std::string describe(const Token& token);

class Lexer {
 public:
  // Skips a byte order mark. The source and the list must outlive the lexer.
  Lexer(const SourceText& source, ErrorList& errors);

  // Returns the next token; after the last, always the end token. What is no token is an error in the list.
  Token next();

 private:
  bool skip_blanks();
  bool skip_comment();
  Token take(TokenKind kind, std::size_t length);
  Token malformed(std::size_t length, std::string message);
  Token name();
  Token number();
  Token string();
  Token symbol();

  std::string_view rest() const { return text_.substr(position_); }

  std::string_view text_;
  ErrorList& errors_;
  std::size_t position_ = 0;
};

}  // namespace symfold

#endif  // SYMFOLD_HOST_LANGUAGE_LEXER_H
