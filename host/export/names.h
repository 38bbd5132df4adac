// The free texts of a model as other programs take them.

#ifndef SYMFOLD_HOST_EXPORT_NAMES_H
#define SYMFOLD_HOST_EXPORT_NAMES_H

#include <string>
#include <string_view>
#include <vector>

#include "host/chain/markov_chain.h"

namespace symfold {

// Returns for each name an identifier of ASCII letters, digits and underscores that does not start with a
// digit. Every run of other characters becomes one underscore, or nothing at the ends. A word that solvers
// reserve gets an underscore behind it, and one that an earlier name has taken gets _2, _3 and so on. So the
// identifiers are distinct, and free identifiers stay as they are: "someone eats" becomes someone_eats,
// "phil_0.phase" becomes phil_0_phase.
std::vector<std::string> solver_identifiers(const std::vector<std::string>& names);

std::vector<std::string> variable_identifiers(const MarkovChain& chain);
std::vector<std::string> observable_identifiers(const MarkovChain& chain);  // none is `init` or `deadlock`
std::vector<std::string> reward_identifiers(const MarkovChain& chain);

// A text between the quotes of the DOT language.
std::string dot_escaped(std::string_view text);

}  // namespace symfold

#endif  // SYMFOLD_HOST_EXPORT_NAMES_H
