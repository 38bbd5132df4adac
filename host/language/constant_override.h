// Values for constants from outside the model file.

#ifndef SYMFOLD_HOST_LANGUAGE_CONSTANT_OVERRIDE_H
#define SYMFOLD_HOST_LANGUAGE_CONSTANT_OVERRIDE_H

#include <map>
#include <string>
#include <vector>

#include "host/language/checker.h"

namespace symfold {

// The overrides' values by the constant's position; of several for one constant the last counts. Throws
// ModelError where a name is no constant of the model, or a value not of the constant's type.
std::map<std::size_t, Value> parse_overrides(const ModelDescription& model,
                                             const std::vector<ConstOverride>& overrides);

}  // namespace symfold

#endif  // SYMFOLD_HOST_LANGUAGE_CONSTANT_OVERRIDE_H
