#include "cli/model_input.h"

#include <filesystem>

#include "host/language/model_reader.h"

namespace symfold {

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

}  // namespace symfold
