// What to type instead: after a misspelt or forgotten subcommand, and for a file of another kind.

#ifndef SYMFOLD_CLI_ADVICE_H
#define SYMFOLD_CLI_ADVICE_H

#include <string>
#include <vector>

namespace symfold {

// For a first argument that is none of the subcommands: one line that says what was expected, with the
// subcommand that is at most two slips away, or with the commands for the file if it is one.
std::string subcommand_advice(const std::string& argument, const std::vector<std::string>& subcommands);

// What was expected in place of a path that is no model: empty unless it is a directory or a permutation
// file. Reads the file.
std::string model_advice(const std::string& path);

// The permutation file that a path names, by itself or as the run directory that holds it. Throws
// std::runtime_error with one line for other directories and for models; `subcommand` is the one to go on
// with.
std::string perm_file_at(const std::string& path, const std::string& subcommand);

}  // namespace symfold

#endif  // SYMFOLD_CLI_ADVICE_H
