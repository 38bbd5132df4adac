// Names that solvers take, for the free texts of a model.

#ifndef SYMFOLD_HOST_EXPORT_IDENTIFIERS_H
#define SYMFOLD_HOST_EXPORT_IDENTIFIERS_H

#include <string>
#include <vector>

#include "host/chain/markov_chain.h"

namespace symfold {

// For each name an identifier of ASCII letters, digits and underscores that does not start with a digit.
// Every run of other characters becomes one underscore, and none at the ends; a word that solvers reserve
// gets an underscore behind it, and a name that an earlier one has taken gets _2, _3 and so on. So they are
// distinct, and those that were identifiers stay as they are: "someone eats" gives someone_eats,
// "phil_0.phase" gives phil_0_phase.
std::vector<std::string> solver_identifiers(const std::vector<std::string>& names);

std::vector<std::string> variable_identifiers(const MarkovChain& chain);
std::vector<std::string> observable_identifiers(const MarkovChain& chain);  // none is `init` or `deadlock`
std::vector<std::string> reward_identifiers(const MarkovChain& chain);

}  // namespace symfold

#endif  // SYMFOLD_HOST_EXPORT_IDENTIFIERS_H
