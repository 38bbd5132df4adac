// Two tokens of look-ahead and the parser's way of giving up on a statement.

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

  bool accept(std::string_view word) {
    if (!current_.is(word)) return false;
    take();
    return true;
  }

  void expect(std::string_view word) {
    if (!accept(word)) fail("'" + std::string(word) + "'");
  }

  Name expect_name(const std::string& what) {
    if (current_.kind != TokenKind::kName) fail(what);
    const Token token = take();
    return {token.text, token.offset};
  }

  // At the current token. A malformed one has its error already.
  [[noreturn]] void fail(const std::string& expected) {
    if (current_.kind != TokenKind::kMalformed) {
      errors_.add(current_.offset, "expected " + expected + ", got " + describe(current_));
    }
    throw SyntaxError();
  }

  [[noreturn]] void fail_at(Offset offset, const std::string& message) {
    errors_.add(offset, message);
    throw SyntaxError();
  }

 private:
  Lexer lexer_;
  ErrorList& errors_;
  Token current_;
  Token following_;
};

}  // namespace symfold

#endif  // SYMFOLD_HOST_LANGUAGE_TOKEN_STREAM_H
