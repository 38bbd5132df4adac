// Expands the system of a checked model: arrays, conditions and `for` entries become submodels and joins.
//
// Every combination of an array's indices is visited once, the last index fastest. Each visit, and each
// operator evaluated on the way, is a step; their number is bounded, so that ranges nested in ranges whose
// conditions are always false end in an error and not in the user's patience.

#ifndef SYMFOLD_HOST_LANGUAGE_COMPOSER_H
#define SYMFOLD_HOST_LANGUAGE_COMPOSER_H

#include <memory>

#include "host/composed_model.h"
#include "host/language/error_list.h"

namespace symfold {

inline constexpr std::size_t kMostVariables = 2'000'000;  // of all submodels

// Precondition: the model is checked and has no errors. Throws ModelError.
ComposedModel compose(std::shared_ptr<const ModelDescription> model, ErrorList& errors);

}  // namespace symfold

#endif  // SYMFOLD_HOST_LANGUAGE_COMPOSER_H
