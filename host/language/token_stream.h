// The tokens as the parser takes them: two tokens of look-ahead, and the way on after a wrong statement.

#ifndef SYMFOLD_HOST_LANGUAGE_TOKEN_STREAM_H
#define SYMFOLD_HOST_LANGUAGE_TOKEN_STREAM_H

#include <string>
#include <string_view>

#include "host/language/lexer.h"
#include "host/language/model_description.h"

namespace symfold {

// Thrown after the error has been put into the list; caught where parsing can go on.
struct SyntaxError {};

class TokenStream {
 public:
  // The source and the list must outlive the stream.
  TokenStream(const SourceText& source, ErrorList& errors)
      : lexer_(source, errors), errors_(errors), current_(lexer_.next()), following_(lexer_.next()) {}

  const Token& current() const { return current_; }
  const Token& following() const { return following_; }
  bool at_end() const { return current_.kind == TokenKind::kEnd; }

  Token take() {
    const Token token = current_;
    current_ = following_;
    following_ = lexer_.next();
    return token;
  }

  // Takes the symbol or keyword if it comes next.
  bool accept(std::string_view word) {
    if (!current_.is(word)) return false;
    take();
    return true;
  }

  void expect(std::string_view word) {
    if (!accept(word)) fail("'" + std::string(word) + "'");
  }

  Name expect_name(const std::string& what);

  // Fails at the current token: "expected ..., got ...". A malformed token has its error already.
  [[noreturn]] void fail(const std::string& expected);

  [[noreturn]] void fail_at(Offset offset, const std::string& message);

  // Calls parse_statement() up to the closing brace, and takes the brace. After a wrong statement it goes on
  // behind that. A block that a declaration or the end of the text cuts off is an error, unless one of its
  // statements was wrong already.
  template <typename ParseStatement>
  void take_statements(const std::string& expected, const ParseStatement& parse_statement) {
    bool is_broken = false;
    while (!current_.is("}")) {
      const bool breaks_off = at_end() || at_declaration();
      if (breaks_off && is_broken) throw SyntaxError();
      if (breaks_off) fail(expected + " or '}'");
      try {
        parse_statement();
      } catch (const SyntaxError&) {
        is_broken = true;
        skip_statement();
      }
    }
    expect("}");
    accept(";");
  }

  // Skips to the next word that starts a declaration, or to the end.
  void skip_to_declaration();

 private:
  bool at_declaration() const;
  void skip_statement();

  Lexer lexer_;
  ErrorList& errors_;
  Token current_;
  Token following_;
};

}  // namespace symfold

#endif  // SYMFOLD_HOST_LANGUAGE_TOKEN_STREAM_H
