// Names and types of a whole model, and the values of its constants.

#ifndef SYMFOLD_HOST_LANGUAGE_CHECKER_H
#define SYMFOLD_HOST_LANGUAGE_CHECKER_H

#include <string>
#include <vector>

#include "host/language/error_list.h"
#include "host/language/model_description.h"

namespace symfold {

// Replaces the value of a constant of the model.
struct ConstOverride {
  std::string name;
  std::string value;  // a number with an optional sign, or true or false
};

// Completes a parsed model. Puts what is wrong into the list; an override that does not fit throws
// ModelError.
void check_model(ModelDescription& model, const std::vector<ConstOverride>& overrides, ErrorList& errors);

}  // namespace symfold

#endif  // SYMFOLD_HOST_LANGUAGE_CHECKER_H
