#include "host/language/lexer.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <utility>

#include "host/model/utf8.h"

namespace symfold {
namespace {

constexpr std::array<std::string_view, 16> kKeywords = {
    "const", "type", "private", "shared", "system", "join", "label", "reward",
    "if",    "for",  "bool",    "int",    "real",   "true", "false", "div"};

// A symbol stands before the symbols that it starts with.
constexpr std::array<std::string_view, 30> kSymbols = {
    "..", "->", "||", "&&", "==", "!=", "<=", ">=", "{", "}", "[", "]", "(", ")", ";",
    ":",  ",",  ".",  "=",  "<",  ">",  "?",  "!",  "+", "-", "*", "/", "%", "|", "&"};

constexpr std::size_t kMaxShown = 40;

bool is_digit(char c) { return c >= '0' && c <= '9'; }
bool is_letter(char c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_'; }
bool is_name_character(char c) { return is_letter(c) || is_digit(c); }
bool is_blank(char c) { return c == ' ' || c == '\t' || c == '\n' || c == '\r'; }

std::size_t count_digits(std::string_view text) {
  return static_cast<std::size_t>(std::find_if_not(text.begin(), text.end(), is_digit) - text.begin());
}

// The bytes of the code point that starts the text, well-formed or not.
std::size_t code_point_length(std::string_view text) {
  std::size_t length = 1;
  while (length < text.size() && continues_code_point(text[length])) ++length;
  return length;
}

bool has_control(std::string_view text) {
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (starts_with_control(text.substr(i))) return true;
  }
  return false;
}

std::string shortened(std::string_view text) {
  std::size_t length = std::min(text.size(), kMaxShown);
  while (length < text.size() && continues_code_point(text[length])) --length;
  return std::string(text.substr(0, length)) + (length < text.size() ? "..." : "");
}

}  // namespace

std::string describe(const Token& token) {
  switch (token.kind) {
    case TokenKind::kEnd:
      return "the end of the file";
    case TokenKind::kKeyword:
      return "the keyword '" + std::string(token.text) + "'";
    case TokenKind::kString:
      return "the string " + shortened(token.text);
    default:
      return "'" + shortened(token.text) + "'";
  }
}

Lexer::Lexer(const SourceText& source, ErrorList& errors) : text_(source.text()), errors_(errors) {
  constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";
  if (text_.starts_with(kByteOrderMark)) position_ = kByteOrderMark.size();
}

Token Lexer::next() {
  if (!skip_blanks()) return malformed(text_.size() - position_, "expected '*/', got the end of the file");
  if (rest().empty()) return take(TokenKind::kEnd, 0);
  const char c = rest().front();
  if (is_letter(c)) return name();
  if (is_digit(c)) return number();
  if (c == '"') return string();
  return symbol();
}

// Skips comments too. Returns false if a comment has no end.
bool Lexer::skip_blanks() {
  while (!rest().empty()) {
    if (is_blank(rest().front())) {
      ++position_;
    } else if (rest().starts_with("//")) {
      position_ = std::min(text_.find('\n', position_), text_.size());
    } else if (rest().starts_with("/*")) {
      if (!skip_comment()) return false;
    } else {
      break;
    }
  }
  return true;
}

bool Lexer::skip_comment() {
  const std::size_t end = text_.find("*/", position_ + 2);
  if (end == std::string_view::npos) return false;
  position_ = end + 2;
  return true;
}

Token Lexer::take(TokenKind kind, std::size_t length) {
  Token token;
  token.kind = kind;
  token.offset = static_cast<Offset>(position_);
  token.text = text_.substr(position_, length);
  position_ += length;
  return token;
}

Token Lexer::malformed(std::size_t length, std::string message) {
  const Token token = take(TokenKind::kMalformed, length);
  errors_.add(token.offset, std::move(message));
  return token;
}

Token Lexer::name() {
  const std::string_view text = rest();
  const auto end = std::find_if_not(text.begin(), text.end(), is_name_character);
  const auto length = static_cast<std::size_t>(end - text.begin());
  if (length > kMaxNameLength) {
    return malformed(length, "expected a name of at most " + std::to_string(kMaxNameLength) +
                                 " characters, got one of " + std::to_string(length));
  }
  const bool is_keyword =
      std::find(kKeywords.begin(), kKeywords.end(), text.substr(0, length)) != kKeywords.end();
  return take(is_keyword ? TokenKind::kKeyword : TokenKind::kName, length);
}

// Digits, then perhaps a fraction and an exponent. "0..3" starts with the number 0 and a symbol.
Token Lexer::number() {
  const std::string_view text = rest();
  std::size_t length = count_digits(text);
  bool is_real = false;
  if (length + 1 < text.size() && text[length] == '.' && is_digit(text[length + 1])) {
    is_real = true;
    length += 1 + count_digits(text.substr(length + 1));
  }
  if (length < text.size() && (text[length] == 'e' || text[length] == 'E')) {
    const std::string_view after = text.substr(length + 1);
    const std::size_t sign = after.starts_with('+') || after.starts_with('-') ? 1 : 0;
    const std::size_t digits = count_digits(after.substr(sign));
    if (digits > 0) {
      is_real = true;
      length += 1 + sign + digits;
    }
  }
  if (length < text.size() && is_name_character(text[length])) {
    const auto end = std::find_if_not(text.begin(), text.end(), is_name_character);
    const std::size_t whole = std::max(length + 1, static_cast<std::size_t>(end - text.begin()));
    return malformed(whole, "expected a number, got '" + shortened(text.substr(0, whole)) + "'");
  }
  Token token = take(is_real ? TokenKind::kReal : TokenKind::kInteger, length);
  const char* const first = token.text.data();
  const char* const last = first + token.text.size();
  const auto result =
      is_real ? std::from_chars(first, last, token.real) : std::from_chars(first, last, token.integer);
  if (result.ec != std::errc()) {
    errors_.add(token.offset, std::string("expected a number in the range of ") +
                                  (is_real ? "a 64-bit real" : "a 64-bit int") + ", got '" +
                                  shortened(token.text) + "'");
    token.kind = TokenKind::kMalformed;
  }
  return token;
}

Token Lexer::string() {
  const std::string_view text = rest();
  const std::size_t end = text.find_first_of("\"\n", 1);
  if (end == std::string_view::npos || text[end] == '\n') {
    return malformed(std::min(end, text.size()), "expected '\"' before the end of the line");
  }
  if (end == 1) return malformed(2, "expected a name between the quotes, got nothing");
  const std::string_view content = text.substr(1, end - 1);
  if (has_control(content)) {
    return malformed(end + 1, "expected printable characters between the quotes, got a control character");
  }
  if (content.size() > kMaxNameLength) {
    return malformed(end + 1, "expected at most " + std::to_string(kMaxNameLength) +
                                  " bytes between the quotes, got " + std::to_string(content.size()));
  }
  return take(TokenKind::kString, end + 1);
}

Token Lexer::symbol() {
  const std::string_view text = rest();
  for (const std::string_view candidate : kSymbols) {
    if (!text.starts_with(candidate)) continue;
    if (candidate == "|") return malformed(1, "expected '||', got '|'");
    if (candidate == "&") return malformed(1, "expected '&&', got '&'");
    return take(TokenKind::kSymbol, candidate.size());
  }
  const std::size_t length = code_point_length(text);
  const std::string got =
      starts_with_control(text) ? "a control character" : "'" + std::string(text.substr(0, length)) + "'";
  return malformed(length, "expected a token of the language, got " + got);
}

}  // namespace symfold
