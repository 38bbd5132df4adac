// What the tests of the model reader share.

#ifndef SYMFOLD_TESTS_SUPPORT_MODEL_SUPPORT_H
#define SYMFOLD_TESTS_SUPPORT_MODEL_SUPPORT_H

#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include "host/language/model_reader.h"

namespace symfold {

inline const std::vector<std::string>& example_names() {
  static const std::vector<std::string> names = {"arms",      "clients_servers", "cluster",   "complete",
                                                 "hypercube", "multiprocessor",  "peer2peer", "philosophers",
                                                 "polling",   "routers",         "star",      "tandem",
                                                 "torus",     "two_speeds",      "wreath"};
  return names;
}

inline std::string example_path(const std::string& name) { return SYMFOLD_EXAMPLES_DIR "/" + name + ".sym"; }

inline std::string file_text(const std::string& path) {
  std::ifstream in(path);
  return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

inline std::string example_text(const std::string& name) { return file_text(example_path(name)); }

// The whole message, or "" if the text is a model.
inline std::string error_of(const std::string& text, const std::vector<ConstOverride>& overrides = {},
                            const std::string& name = "m.sym") {
  try {
    read_model_text(name, text, overrides);
  } catch (const ModelError& error) {
    return error.what();
  }
  return "";
}

}  // namespace symfold

#endif  // SYMFOLD_TESTS_SUPPORT_MODEL_SUPPORT_H
