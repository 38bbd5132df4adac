#include "host/language/constant_override.h"

#include <algorithm>
#include <optional>

#include "host/language/lexer.h"

namespace symfold {
namespace {

// Reads the text as the language's own numbers and truth values, with an optional minus.
std::optional<Value> parse_value(const std::string& text, Scalar wanted) {
  const SourceText source("", text);
  ErrorList errors(source);
  Lexer lexer(source, errors);
  Token token = lexer.next();
  const bool is_negative = token.is("-");
  if (is_negative) token = lexer.next();
  if (lexer.next().kind != TokenKind::kEnd) return std::nullopt;
  const bool is_truth = token.is("true") || token.is("false");
  if (wanted == Scalar::kBool)
    return is_truth && !is_negative ? std::optional(Value::of_bool(token.is("true"))) : std::nullopt;
  if (token.kind == TokenKind::kInteger && wanted == Scalar::kInt) {
    return Value::of_int(is_negative ? -token.integer : token.integer);
  }
  if (wanted != Scalar::kReal || (token.kind != TokenKind::kInteger && token.kind != TokenKind::kReal))
    return std::nullopt;
  const double value = token.kind == TokenKind::kReal ? token.real : static_cast<double>(token.integer);
  return Value::of_real(is_negative ? -value : value);
}

std::string word_for(Scalar scalar) {
  if (scalar == Scalar::kBool) return "'true' or 'false'";
  return scalar == Scalar::kInt ? "an int" : "a number";
}

}  // namespace

std::map<std::size_t, Value> parse_overrides(const ModelDescription& model,
                                             const std::vector<ConstOverride>& overrides) {
  std::map<std::size_t, Value> values;
  for (const ConstOverride& entry : overrides) {
    const std::string where = "--const " + entry.name + "=" + entry.value;
    const auto found =
        std::find_if(model.constants.begin(), model.constants.end(),
                     [&entry](const ConstantDecl& constant) { return constant.name.text == entry.name; });
    if (found == model.constants.end()) {
      throw ModelError(where,
                       "expected a constant of " + model.source->name() + ", got '" + entry.name + "'");
    }
    const std::optional<Value> value = parse_value(entry.value, found->type.scalar);
    if (!value)
      throw ModelError(where, "expected " + word_for(found->type.scalar) + ", got '" + entry.value + "'");
    values[static_cast<std::size_t>(found - model.constants.begin())] = *value;
  }
  return values;
}

}  // namespace symfold
