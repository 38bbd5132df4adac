// A Markov chain as a file for a solver: explicit PRISM files, Storm's DRN, Matrix Market, AUT, DOT.

#ifndef SYMFOLD_HOST_EXPORT_CHAIN_EXPORT_H
#define SYMFOLD_HOST_EXPORT_CHAIN_EXPORT_H

#include <string>
#include <vector>

#include "host/chain/markov_chain.h"

namespace symfold {

// The endings that write_chain knows, as a text for people: ".all, .tra, .sta, ...".
std::string export_endings();

// The endings with a word each for what they write: ".all (PRISM: ...), ...".
std::string export_formats();

// Returns true if the path has one of these endings.
bool is_export_format(const std::string& path);

// Writes the chain in the format of the path's ending and returns the names of the files written, in order.
// `.all` stands for `.tra`, `.sta`, `.lab` and, if there are rewards, `.srew`; a chain with several rewards
// has one file for each, NAME1.srew, NAME2.srew and so on. docs/file-formats.md describes the formats.
//
// Each file appears whole or not at all. If there are several, they are a set: they appear together, with the
// list NAME.set of them, which is the last of the files returned. The same chain gives the same bytes. Takes
// constant memory beside the chain (a file descriptor and 16 KiB for each file), and time in the length of
// the files. `.all`, `.sta` and `.dot` call the chain's read_values, for which the chain's own rule on
// threads holds; the other formats may be written in several threads, each to a path of its own.
//
// Throws std::runtime_error with one line "PATH: error: ..." if a file cannot be written, if the ending is
// unknown, for `.srew` without rewards and for `.dot` if the chain is too large to draw. Files that exist
// stay as they are then, unless it is a rename that fails.
std::vector<std::string> write_chain(const MarkovChain& chain, const std::string& path);

struct WrittenChain {
  std::vector<std::string> files;     // in the order of the paths; the lists of the set behind them
  std::vector<std::string> refusals;  // a line "PATH: error: ..." for each path that was left out
};

// The same for several paths, whose files are one set, with a list for each NAME. A path is left out if its
// format cannot show the chain (`.srew`, `.dot`). Throws as write_chain does, and if every path is left out.
WrittenChain write_chain_set(const MarkovChain& chain, const std::vector<std::string>& paths);

// Returns true if the chain's `.tra` file has to be opened with the switch `-ctmc`: PRISM takes a file for
// one of a discrete chain if none of the first rates in it exceeds 1.
bool needs_ctmc_switch(const MarkovChain& chain);

}  // namespace symfold

#endif  // SYMFOLD_HOST_EXPORT_CHAIN_EXPORT_H
