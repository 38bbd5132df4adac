// Errors that a user makes, and how they are shown.
//
//     ring.sym:14:20: error: expected ';', got 'join'
//       fork : Fork join x { a.b; }
//                   ^

#ifndef SYMFOLD_HOST_MODEL_MODEL_ERROR_H
#define SYMFOLD_HOST_MODEL_MODEL_ERROR_H

#include <stdexcept>
#include <string>
#include <vector>

namespace symfold {

// One error. Lines and columns count from 1, columns in code points; line 0 means that there is no position.
struct Diagnostic {
  std::string file;  // as the user named it
  int line = 0;
  int column = 0;
  std::string message;
  std::string source_line;  // printable; of a very long line the part around the column
  int caret = 0;            // code points of source_line before the caret
};

// `file:line:col: error: message`, the source line and a caret under the column, without a final line break;
// without a position only `file: error: message`.
std::string to_string(const Diagnostic& diagnostic);

// The one exception for errors that a user made in a model, or in what is asked of it. what() is the text of
// all diagnostics, one after the other.
class ModelError : public std::runtime_error {
 public:
  explicit ModelError(std::vector<Diagnostic> diagnostics);

  // An error without a position in `file`.
  ModelError(const std::string& file, const std::string& message);

  const std::vector<Diagnostic>& diagnostics() const { return diagnostics_; }

 private:
  std::vector<Diagnostic> diagnostics_;
};

// The model's file could not be read, so nothing is known of the model.
class UnreadableModelError : public ModelError {
 public:
  using ModelError::ModelError;
};

}  // namespace symfold

#endif  // SYMFOLD_HOST_MODEL_MODEL_ERROR_H
