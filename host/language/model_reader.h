// From a model file to a composed model.

#ifndef SYMFOLD_HOST_LANGUAGE_MODEL_READER_H
#define SYMFOLD_HOST_LANGUAGE_MODEL_READER_H

#include <iosfwd>
#include <string>
#include <vector>

#include "host/language/checker.h"
#include "host/model/composed_model.h"
#include "host/model/model_error.h"

namespace symfold {

// Each of these parses, checks and expands one model. All throw ModelError, with up to ten diagnostics, for
// whatever is wrong with the text or the overrides; `name` stands for the text in messages. Time and memory
// are bounded whatever the bytes are.
ComposedModel read_model_text(const std::string& name, std::string text,
                              const std::vector<ConstOverride>& overrides = {});

// The rest of the stream.
ComposedModel read_model(std::istream& in, const std::string& name,
                         const std::vector<ConstOverride>& overrides = {});

ComposedModel read_model(const std::string& path, const std::vector<ConstOverride>& overrides = {});

}  // namespace symfold

#endif  // SYMFOLD_HOST_LANGUAGE_MODEL_READER_H
