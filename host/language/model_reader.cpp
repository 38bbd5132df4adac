#include "host/language/model_reader.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <fstream>
#include <istream>
#include <memory>
#include <new>
#include <optional>
#include <utility>

#include "host/language/lexer.h"
#include "host/language/reading_steps.h"

namespace symfold {
namespace {

void require_readable_size(const std::string& name, std::size_t size) {
  if (size <= kMaxFileBytes) return;
  throw ModelError(
      name, "expected a file of at most " + std::to_string(kMaxFileBytes) + " bytes, got a larger one");
}

// The text as a number of the language, with an optional '-' before it, or as a truth value.
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

// Throws ModelError if a name is no constant of the model, or if a value is not of the constant's type.
ConstantValues parse_overrides(const ModelDescription& model, const std::vector<ConstOverride>& overrides) {
  ConstantValues values;
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

}  // namespace

ComposedModel read_model_text(const std::string& name, std::string text,
                              const std::vector<ConstOverride>& overrides) {
  require_readable_size(name, text.size());
  const auto source = std::make_shared<const SourceText>(name, std::move(text));
  ErrorList errors(*source);
  if (const auto offset = source->find_malformed_byte())
    errors.fail(*offset, "expected UTF-8 text, got another byte");
  auto model = std::make_shared<ModelDescription>(parse_model(source, errors));
  errors.throw_if_any();
  check_model(*model, parse_overrides(*model, overrides), errors);
  errors.throw_if_any();
  return compose(std::move(model), errors);
}

ComposedModel read_model(std::istream& in, const std::string& name,
                         const std::vector<ConstOverride>& overrides) {
  std::string text;
  std::array<char, 1 << 16> block{};
  try {
    while (in.read(block.data(), block.size()) || in.gcount() > 0) {
      text.append(block.data(), static_cast<std::size_t>(in.gcount()));
      require_readable_size(name, text.size());
    }
  } catch (const std::ios_base::failure&) {
    throw UnreadableModelError(name, "cannot be read");
  }
  if (in.bad()) throw UnreadableModelError(name, "cannot be read");
  return read_model_text(name, std::move(text), overrides);
}

ComposedModel read_model(const std::string& path, const std::vector<ConstOverride>& overrides) {
  errno = 0;
  std::ifstream in(path, std::ios::binary);
  if (!in && errno == ENOMEM) throw std::bad_alloc();
  if (!in) throw UnreadableModelError(path, "cannot be opened for reading");
  return read_model(in, path, overrides);
}

}  // namespace symfold
