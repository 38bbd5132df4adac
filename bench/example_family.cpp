#include "bench/example_family.h"

#include "host/language/model_reader.h"

namespace symfold {

std::string Family::title() const {
  std::string text = name;
  for (const std::string& constant : constants) text += " " + constant;
  return text;
}

ComposedModel read_example(const Family& family) {
  std::vector<ConstOverride> overrides;
  for (const std::string& constant : family.constants) {
    const auto equals = constant.find('=');
    overrides.push_back({constant.substr(0, equals), constant.substr(equals + 1)});
  }
  return read_model(std::string(SYMFOLD_EXAMPLES_DIR "/") + family.name + ".sym", overrides);
}

}  // namespace symfold
