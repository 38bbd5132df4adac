#include "host/language/source_text.h"

#include <algorithm>
#include <utility>

#include "host/model/utf8.h"

namespace symfold {
namespace {

constexpr int kCodePointsShown = 120;

}  // namespace

SourceText::SourceText(std::string name, std::string text)
    : name_(std::move(name)), text_(std::move(text)), line_starts_{0} {
  for (std::size_t i = 0; i < text_.size(); ++i) {
    if (text_[i] == '\n') line_starts_.push_back(static_cast<Offset>(i + 1));
  }
}

std::optional<Offset> SourceText::find_malformed_byte() const {
  const std::string_view all = text_;
  for (std::size_t i = 0; i < all.size();) {
    const std::size_t length = well_formed_length(all.substr(i));
    if (length == 0) return static_cast<Offset>(i);
    i += length;
  }
  return std::nullopt;
}

std::size_t SourceText::line_index(Offset offset) const {
  const auto after = std::upper_bound(line_starts_.begin(), line_starts_.end(), offset);
  return static_cast<std::size_t>(after - line_starts_.begin()) - 1;
}

std::string_view SourceText::line_text(std::size_t index) const {
  const std::size_t start = line_starts_[index];
  std::size_t end = std::min(text_.find('\n', start), text_.size());
  if (end > start && text_[end - 1] == '\r') --end;
  return text().substr(start, end - start);
}

// The code points of the line before the offset. An offset at the line break counts as the line's end.
int SourceText::code_points_before(std::size_t index, Offset offset) const {
  return count_code_points(line_text(index).substr(0, offset - line_starts_[index]));
}

Diagnostic SourceText::diagnostic_at(Offset offset, std::string message) const {
  const std::size_t index = line_index(offset);
  const std::string_view line = line_text(index);
  const int before = code_points_before(index, offset);
  Diagnostic result{name_, static_cast<int>(index) + 1, before + 1, std::move(message), "", before};

  const std::vector<std::size_t> starts = code_point_starts(line);
  const int length = static_cast<int>(starts.size()) - 1;
  const int first = std::max(0, std::min(before - kCodePointsShown / 2, length - kCodePointsShown));
  const int last = std::min(length, first + kCodePointsShown);
  const std::size_t from = first == 0 ? 0 : starts[static_cast<std::size_t>(first)];
  const std::size_t to = starts[static_cast<std::size_t>(last)];
  result.source_line = printable(line.substr(from, to - from));
  result.caret -= first;
  if (first > 0) {
    result.source_line.insert(0, "...");
    result.caret += 3;
  }
  if (last < length) result.source_line += "...";
  return result;
}

std::string SourceText::place(Offset offset) const {
  const std::size_t index = line_index(offset);
  return std::to_string(index + 1) + ':' + std::to_string(code_points_before(index, offset) + 1);
}

}  // namespace symfold
