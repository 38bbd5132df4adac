// What the model reader guarantees for any text, checked by code that knows nothing of how it reads.

#ifndef SYMFOLD_TESTS_SUPPORT_READER_CONTRACT_H
#define SYMFOLD_TESTS_SUPPORT_READER_CONTRACT_H

#include <string>

namespace symfold {

struct Reading {
  bool is_model = false;
  std::string breach;  // of the contract; empty if it is kept
};

// Reads the text and checks the result: it must be a well-formed model, or one to ten errors with places in
// the text and without characters that a terminal would obey. Every other exception is passed on.
Reading read_by_contract(const std::string& text);

}  // namespace symfold

#endif  // SYMFOLD_TESTS_SUPPORT_READER_CONTRACT_H
