// The reader of the model language: from a model file (*.sym) to a composed model.
//
//     const symfold::ComposedModel model = symfold::read_model("ring.sym", {{"N", "5"}});
//
// All functions here parse, check and expand one model. They throw ModelError, with up to ten diagnostics,
// for everything that is wrong with the file, the text or the overrides: an UnreadableModelError if the file
// cannot be read. Their time and memory are bounded for any bytes: texts of more than 16 MiB, and systems
// that take too many steps to expand, are errors. Different threads may read different models at the same
// time.

#ifndef SYMFOLD_HOST_LANGUAGE_MODEL_READER_H
#define SYMFOLD_HOST_LANGUAGE_MODEL_READER_H

#include <iosfwd>
#include <string>
#include <vector>

#include "host/model/composed_model.h"
#include "host/model/model_error.h"

namespace symfold {

// Replaces the value of a constant of the model. If several name the same constant, then the last counts.
struct ConstOverride {
  std::string name;
  std::string value;  // a number with an optional '-', or true or false
};

// Reads the file at the path.
ComposedModel read_model(const std::string& path, const std::vector<ConstOverride>& overrides = {});

// Reads the rest of the stream; messages call it `name`.
ComposedModel read_model(std::istream& in, const std::string& name,
                         const std::vector<ConstOverride>& overrides = {});

// Reads the text; messages call it `name`.
ComposedModel read_model_text(const std::string& name, std::string text,
                              const std::vector<ConstOverride>& overrides = {});

}  // namespace symfold

#endif  // SYMFOLD_HOST_LANGUAGE_MODEL_READER_H
