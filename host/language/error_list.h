// The errors found in one model file.

#ifndef SYMFOLD_HOST_LANGUAGE_ERROR_LIST_H
#define SYMFOLD_HOST_LANGUAGE_ERROR_LIST_H

#include <cstddef>
#include <map>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "host/language/source_text.h"

namespace symfold {

inline constexpr std::size_t kMaxErrors = 10;

// "1 index", "2 indices".
inline std::string counted(std::size_t count, const std::string& one, const std::string& many) {
  return std::to_string(count) + ' ' + (count == 1 ? one : many);
}

class ErrorList {
 public:
  // The source must outlive the list.
  explicit ErrorList(const SourceText& source) : source_(source) {}

  // Throws ModelError, with all errors, as soon as there are kMaxErrors of them.
  void add(Offset offset, std::string message) {
    errors_.push_back(source_.diagnostic_at(offset, std::move(message)));
    if (errors_.size() == kMaxErrors) throw_if_any();
  }

  // For errors that every element of an array repeats: only the first error of each pair of places is kept.
  void add_once(Offset offset, Offset cause, std::string message) {
    if (seen_.emplace(offset, cause).second) add(offset, std::move(message));
  }

  // Adds the error and throws.
  [[noreturn]] void fail(Offset offset, std::string message) {
    errors_.push_back(source_.diagnostic_at(offset, std::move(message)));
    throw ModelError(std::move(errors_));
  }

  bool is_empty() const { return errors_.empty(); }

  void throw_if_any() {
    if (!errors_.empty()) throw ModelError(std::move(errors_));
  }

  // `line:column`, computed once for each offset: finding it takes a walk along the line, and the errors that
  // all elements of an array repeat ask for the same places.
  const std::string& place(Offset offset) {
    const auto [entry, is_new] = places_.try_emplace(offset);
    if (is_new) entry->second = source_.place(offset);
    return entry->second;
  }

 private:
  const SourceText& source_;
  std::vector<Diagnostic> errors_;
  std::set<std::pair<Offset, Offset>> seen_;
  std::map<Offset, std::string> places_;
};

}  // namespace symfold

#endif  // SYMFOLD_HOST_LANGUAGE_ERROR_LIST_H
