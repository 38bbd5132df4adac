// What the model reader owes for any text, checked by code that knows nothing of how it reads.

#ifndef SYMFOLD_TESTS_SUPPORT_READER_CONTRACT_H
#define SYMFOLD_TESTS_SUPPORT_READER_CONTRACT_H

#include <string>

namespace symfold {

struct Reading {
  bool is_model = false;
  std::string breach;  // of the contract; empty where all is well
};

// Reads the text: a well-formed model, or at most ten errors with places in the text, none of them with
// characters that a terminal would obey. Whatever else the reader throws is passed on.
Reading read_by_contract(const std::string& text);

}  // namespace symfold

#endif  // SYMFOLD_TESTS_SUPPORT_READER_CONTRACT_H
