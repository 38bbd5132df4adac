// Certificates taken apart, and corrupted in ways that are wrong by construction.

#ifndef SYMFOLD_TESTS_TOOLS_CERTIFICATE_CORRUPTIONS_H
#define SYMFOLD_TESTS_TOOLS_CERTIFICATE_CORRUPTIONS_H

#include <map>
#include <string>
#include <utility>
#include <vector>

namespace symfold {

using Words = std::vector<std::string>;

Words words_of(const std::string& line);

// A certificate in pieces; cells are numbered as they lie in the state.
struct Pieces {
  std::vector<std::string> header;  // lines, up to the initial state
  std::vector<std::string> transitions;
  std::map<std::string, int> cells;
  std::vector<std::string> names, types;             // types are empty for joins
  std::vector<std::size_t> sizes;                    // bytes
  std::vector<std::map<std::string, int>> joins_of;  // by cell and variable
  std::vector<std::vector<int>> generators;          // images
  bool is_exact = false;
};

Pieces parse_certificate(const std::string& text);

// The transitions, each corrupted so that it cannot hold; the reasons stand at the corruptions.
std::vector<std::string> corrupted_transitions(const Pieces& pieces, unsigned seed);

// Headers that cannot hold: each entry replaces one line.
std::vector<std::pair<std::size_t, std::string>> corrupted_headers(const Pieces& pieces);

}  // namespace symfold

#endif  // SYMFOLD_TESTS_TOOLS_CERTIFICATE_CORRUPTIONS_H
