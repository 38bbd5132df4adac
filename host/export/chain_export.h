// A Markov chain as a file for a solver: explicit PRISM files, Storm's DRN, Matrix Market, AUT, DOT.

#ifndef SYMFOLD_HOST_EXPORT_CHAIN_EXPORT_H
#define SYMFOLD_HOST_EXPORT_CHAIN_EXPORT_H

#include <string>
#include <vector>

#include "host/chain/markov_chain.h"

namespace symfold {

// The endings that write_chain knows, for people: ".all, .tra, .sta, ...".
std::string export_endings();

// Whether the path has one of these endings.
bool is_export_format(const std::string& path);

// Writes the chain in the format of the path's ending and returns the names of the files written, in order:
// `.all` stands for `.tra`, `.sta`, `.lab` and, where there are rewards, `.srew`; a chain of several rewards
// has one file for each, NAME1.srew, NAME2.srew and so on. Each file appears whole or not at all; those
// before a failed one remain. The same chain gives the same bytes. Takes constant memory beside the chain.
// Throws std::runtime_error with one line "PATH: error: ..." when a file cannot be written, when the ending
// is unknown, for `.srew` without rewards and for `.dot` of a chain that is too large to draw.
std::vector<std::string> write_chain(const MarkovChain& chain, const std::string& path);

// PRISM takes a `.tra` file for one of a discrete chain when none of the first rates in it exceeds 1: whether
// this one has to be opened with the switch `-ctmc`.
bool needs_ctmc_switch(const MarkovChain& chain);

}  // namespace symfold

#endif  // SYMFOLD_HOST_EXPORT_CHAIN_EXPORT_H
