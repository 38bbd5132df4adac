#include "host/language/model_reader.h"

#include <array>
#include <fstream>
#include <istream>
#include <memory>
#include <utility>

#include "host/language/composer.h"
#include "host/language/parser.h"
#include "host/language/source_text.h"

namespace symfold {
namespace {

void require_readable_size(const std::string& name, std::size_t size) {
  if (size <= kMaxFileBytes) return;
  throw ModelError(
      name, "expected a file of at most " + std::to_string(kMaxFileBytes) + " bytes, got a larger one");
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
  check_model(*model, overrides, errors);
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
    throw ModelError(name, "cannot be read");
  }
  if (in.bad()) throw ModelError(name, "cannot be read");
  return read_model_text(name, std::move(text), overrides);
}

ComposedModel read_model(const std::string& path, const std::vector<ConstOverride>& overrides) {
  std::ifstream in(path, std::ios::binary);
  if (!in) throw ModelError(path, "cannot be opened for reading");
  return read_model(in, path, overrides);
}

}  // namespace symfold
