#include "bench/example_run.h"

#include <stdlib.h>

#include <filesystem>

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

ExampleRun::ExampleRun(const Family& family) {
  directory_ = (std::filesystem::temp_directory_path() / "symfold-bench-XXXXXX").string();
  if (mkdtemp(directory_.data()) == nullptr) throw std::runtime_error(directory_ + ": cannot be made");
  run_ = std::make_unique<DetectionRun>(read_example(family), directory_, false);
}

ExampleRun::~ExampleRun() { std::filesystem::remove_all(directory_); }

}  // namespace symfold
