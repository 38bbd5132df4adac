// Expands the system of a checked model: arrays, conditions and `for` entries become submodels and joins.
//
// Every combination of an array's indices is visited once, the last index fastest. Each visit, and each
// operator evaluated on the way, is a step; their number is bounded, so that ranges nested in ranges whose
// conditions are always false end in an error and not in the user's patience.

#ifndef SYMFOLD_HOST_LANGUAGE_COMPOSER_H
#define SYMFOLD_HOST_LANGUAGE_COMPOSER_H

#include <memory>

#include "host/language/error_list.h"
#include "host/model/composed_model.h"

namespace symfold {

inline constexpr std::size_t kMaxVariables = 2'000'000;  // of all submodels

// Precondition: the model is checked and has no errors. Throws ModelError.
ComposedModel compose(std::shared_ptr<const ModelDescription> model, ErrorList& errors);

}  // namespace symfold

#endif  // SYMFOLD_HOST_LANGUAGE_COMPOSER_H
