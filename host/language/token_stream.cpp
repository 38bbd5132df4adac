#include "host/language/token_stream.h"

#include <algorithm>
#include <array>

namespace symfold {
namespace {

// The words with which declarations start, and those with which most statements start. All are reserved.
constexpr std::array<std::string_view, 5> kDeclarations = {"const", "type", "system", "label", "reward"};
constexpr std::array<std::string_view, 3> kStatements = {"private", "shared", "join"};

template <typename Words>
bool is_one_of(const Token& token, const Words& words) {
  return std::any_of(words.begin(), words.end(), [&token](std::string_view word) { return token.is(word); });
}

}  // namespace

Name TokenStream::expect_name(const std::string& what) {
  if (current_.kind != TokenKind::kName) fail(what);
  const Token token = take();
  return {token.text, token.offset};
}

void TokenStream::fail(const std::string& expected) {
  if (current_.kind != TokenKind::kMalformed) {
    errors_.add(current_.offset, "expected " + expected + ", got " + describe(current_));
  }
  throw SyntaxError();
}

void TokenStream::fail_at(Offset offset, const std::string& message) {
  errors_.add(offset, message);
  throw SyntaxError();
}

bool TokenStream::at_declaration() const { return is_one_of(current_, kDeclarations); }

void TokenStream::skip_to_declaration() {
  while (!at_end() && !at_declaration()) take();
}

// Skips the next ';' outside braces, or stops before the end of the block or the start of another statement.
void TokenStream::skip_statement() {
  int depth = 0;
  for (bool is_first = true; !at_end(); is_first = false) {
    if (at_declaration() || (!is_first && is_one_of(current_, kStatements))) return;
    if (current_.is("}") && depth == 0) return;
    if (current_.is("{")) ++depth;
    if (current_.is("}")) --depth;
    if (take().is(";") && depth == 0) return;
  }
}

}  // namespace symfold
