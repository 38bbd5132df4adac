// The reader's steps from the text of a model file to the composed model, in their order.

#ifndef SYMFOLD_HOST_LANGUAGE_READING_STEPS_H
#define SYMFOLD_HOST_LANGUAGE_READING_STEPS_H

#include <cstddef>
#include <map>
#include <memory>

#include "host/language/error_list.h"
#include "host/language/model_description.h"
#include "host/model/composed_model.h"

namespace symfold {

// Builds the tree of the whole text. Puts every syntax error that it finds into the list; the tree is
// complete if there is none.
ModelDescription parse_model(std::shared_ptr<const SourceText> source, ErrorList& errors);

// Values for constants from outside the model, by position in ModelDescription::constants.
using ConstantValues = std::map<std::size_t, Value>;

// Completes a parsed model: names, types and the values of the constants. Puts what is wrong into the list.
// Requires: the parser found no error; each override has the type of its constant.
void check_model(ModelDescription& model, const ConstantValues& overrides, ErrorList& errors);

// Expands the system of a checked model: arrays, conditions and `for` entries become submodels and joins.
// Throws ModelError. Requires: the model is checked and has no errors.
ComposedModel compose(std::shared_ptr<const ModelDescription> model, ErrorList& errors);

}  // namespace symfold

#endif  // SYMFOLD_HOST_LANGUAGE_READING_STEPS_H
