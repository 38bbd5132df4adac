// The text of a model file, and the way from a byte offset to what a person reads: line, column, source line.

#ifndef SYMFOLD_HOST_LANGUAGE_SOURCE_TEXT_H
#define SYMFOLD_HOST_LANGUAGE_SOURCE_TEXT_H

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "host/model/model_error.h"

namespace symfold {

// A byte of the text, from 0 to its size.
using Offset = std::uint32_t;

// Longer texts are refused by the reader.
inline constexpr std::size_t kMaxFileBytes = std::size_t{16} << 20;

// Immutable and not movable: tokens and names are views into it.
// Whether a control character, which a terminal might obey, comes first: U+0000 to U+001F, U+007F to U+009F.
bool starts_with_control(std::string_view text);

class SourceText {
 public:
  SourceText(std::string name, std::string text);
  SourceText(const SourceText&) = delete;
  SourceText& operator=(const SourceText&) = delete;

  const std::string& name() const { return name_; }
  std::string_view text() const { return text_; }

  // The first byte that is no part of well-formed UTF-8.
  std::optional<Offset> find_malformed_byte() const;

  Diagnostic diagnostic_at(Offset offset, std::string message) const;

  // `line:column`, for messages that name a second place.
  std::string place(Offset offset) const;

 private:
  std::size_t line_index(Offset offset) const;
  std::string_view line_text(std::size_t index) const;
  int code_points_before(std::size_t index, Offset offset) const;

  std::string name_;
  std::string text_;
  std::vector<Offset> line_starts_;
};

}  // namespace symfold

#endif  // SYMFOLD_HOST_LANGUAGE_SOURCE_TEXT_H
