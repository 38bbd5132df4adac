// The text of a model file, and the way from a byte offset to what a person reads: line, column, source line.

#ifndef SYMFOLD_HOST_LANGUAGE_SOURCE_TEXT_H
#define SYMFOLD_HOST_LANGUAGE_SOURCE_TEXT_H

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "host/model/model_error.h"

namespace symfold {

// The position of a byte in the text, from 0 to the text's size.
using Offset = std::uint32_t;

// Longer texts are refused by the reader.
inline constexpr std::size_t kMaxFileBytes = std::size_t{16} << 20;

// Neither changed nor moved after it is made: tokens and names are views into it.
class SourceText {
 public:
  SourceText(std::string name, std::string text);
  SourceText(const SourceText&) = delete;
  SourceText& operator=(const SourceText&) = delete;

  const std::string& name() const { return name_; }
  std::string_view text() const { return text_; }

  // The first byte that is not part of well-formed UTF-8, if any.
  std::optional<Offset> find_malformed_byte() const;

  // Cost of this and the next: the length of the line.
  Diagnostic diagnostic_at(Offset offset, std::string message) const;

  // `line:column`, for messages that name a second place.
  std::string place(Offset offset) const;

 private:
  std::size_t line_index(Offset offset) const;
  std::string_view line_text(std::size_t index) const;  // without the line break
  int code_points_before(std::size_t index, Offset offset) const;

  std::string name_;
  std::string text_;
  std::vector<Offset> line_starts_;
};

}  // namespace symfold

#endif  // SYMFOLD_HOST_LANGUAGE_SOURCE_TEXT_H
