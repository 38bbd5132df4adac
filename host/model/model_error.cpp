#include "host/model/model_error.h"

#include <utility>

#include "host/model/utf8.h"

namespace symfold {
namespace {

// Blanks up to the caret. A tab stays a tab, so that a terminal moves equally far on both lines.
std::string caret_line(const std::string& source_line, int caret) {
  std::string blanks;
  for (const char c : source_line) {
    if (continues_code_point(c)) continue;
    if (static_cast<int>(blanks.size()) == caret) break;
    blanks += c == '\t' ? '\t' : ' ';
  }
  return blanks + '^';
}

std::string text_of(const std::vector<Diagnostic>& diagnostics) {
  std::string text;
  for (const Diagnostic& diagnostic : diagnostics) {
    if (!text.empty()) text += '\n';
    text += to_string(diagnostic);
  }
  return text;
}

}  // namespace

std::string to_string(const Diagnostic& diagnostic) {
  std::string text = diagnostic.file;
  if (diagnostic.line == 0) return text + ": error: " + diagnostic.message;
  text += ':' + std::to_string(diagnostic.line) + ':' + std::to_string(diagnostic.column);
  text += ": error: " + diagnostic.message + '\n';
  return text + diagnostic.source_line + '\n' + caret_line(diagnostic.source_line, diagnostic.caret);
}

ModelError::ModelError(std::vector<Diagnostic> diagnostics)
    : std::runtime_error(text_of(diagnostics)), diagnostics_(std::move(diagnostics)) {}

ModelError::ModelError(const std::string& file, const std::string& message)
    : ModelError({Diagnostic{file, 0, 0, message, "", 0}}) {}

}  // namespace symfold
