#include "cli/model_input.h"

#include <charconv>
#include <filesystem>
#include <optional>
#include <string_view>

#include "host/language/model_reader.h"

namespace symfold {
namespace {

// The whole text as a number.
std::optional<long> number(std::string_view text) {
  long value = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
  if (error != std::errc() || end != text.data() + text.size()) return std::nullopt;
  return value;
}

}  // namespace

std::string ModelInput::stem() const {
  return model == "-" ? "model" : std::filesystem::path(model).stem().string();
}

ComposedModel read_input(const ModelInput& input, const Streams& streams) {
  std::vector<ConstOverride> overrides;
  for (const std::string& text : input.constants) {
    const auto equals = text.find('=');
    overrides.push_back({text.substr(0, equals), text.substr(equals + 1)});
  }
  return input.model == "-" ? read_model(streams.in, "standard input", overrides)
                            : read_model(input.model, overrides);
}

std::vector<ParameterRange> find_ranges(const ModelInput& input) {
  std::vector<ParameterRange> ranges;
  for (std::size_t i = 0; i < input.constants.size(); ++i) {
    const std::string_view text = input.constants[i];
    const std::size_t equals = text.find('=');
    const std::size_t dots = text.find("..", equals);
    if (dots == std::string_view::npos) continue;
    const auto low = number(text.substr(equals + 1, dots - equals - 1));
    const auto high = number(text.substr(dots + 2));
    if (low && high && *low <= *high) ranges.push_back({i, std::string(text.substr(0, equals)), *low, *high});
  }
  return ranges;
}

ModelInput ParameterRange::at(const ModelInput& input, long value) const {
  ModelInput result = input;
  result.constants[position] = name + '=' + std::to_string(value);
  return result;
}

}  // namespace symfold
