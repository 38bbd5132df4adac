// Small random models, for which fast code and its slow twin must agree.

#ifndef SYMFOLD_TESTS_SUPPORT_RANDOM_MODEL_H
#define SYMFOLD_TESTS_SUPPORT_RANDOM_MODEL_H

#include <string>

namespace symfold {

// The text of a model that can be read: a few submodels of two types with parameters, every kind of variable,
// joins of one or several members, and labels and rewards with quantifiers inside one another. Some types
// have too many local states to be numbered; some models have errors that show only in a state.
std::string random_model(unsigned seed);

}  // namespace symfold

#endif  // SYMFOLD_TESTS_SUPPORT_RANDOM_MODEL_H
