#include "host/language/source_text.h"

#include <algorithm>
#include <utility>

namespace symfold {
namespace {

constexpr int kCodePointsShown = 120;

bool continues_code_point(char c) { return (static_cast<unsigned char>(c) & 0xC0) == 0x80; }

int count_code_points(std::string_view text) {
  return static_cast<int>(
      std::count_if(text.begin(), text.end(), [](char c) { return !continues_code_point(c); }));
}

// The first byte of each code point, and the end.
std::vector<std::size_t> code_point_starts(std::string_view text) {
  std::vector<std::size_t> starts;
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (!continues_code_point(text[i])) starts.push_back(i);
  }
  starts.push_back(text.size());
  return starts;
}

bool in_range(unsigned char byte, int low, int high) { return byte >= low && byte <= high; }

// Length of the well-formed sequence at the start of the text, 0 where there is none (Unicode 15, table 3-7).
std::size_t sequence_length(std::string_view text) {
  const auto at = [text](std::size_t i) { return i < text.size() ? static_cast<unsigned char>(text[i]) : 0; };
  const int lead = at(0);
  if (lead < 0x80) return 1;
  const auto continuation = [&](std::size_t i) {
    return in_range(static_cast<unsigned char>(at(i)), 0x80, 0xBF);
  };
  const int second = at(1);
  if (lead >= 0xC2 && lead <= 0xDF) return continuation(1) ? 2 : 0;
  if (lead >= 0xE0 && lead <= 0xEF) {
    const bool overlong = lead == 0xE0 && second < 0xA0;
    const bool surrogate = lead == 0xED && second > 0x9F;
    return continuation(1) && continuation(2) && !overlong && !surrogate ? 3 : 0;
  }
  if (lead >= 0xF0 && lead <= 0xF4) {
    const bool overlong = lead == 0xF0 && second < 0x90;
    const bool beyond = lead == 0xF4 && second > 0x8F;
    return continuation(1) && continuation(2) && continuation(3) && !overlong && !beyond ? 4 : 0;
  }
  return 0;
}

// Nothing that a terminal would obey, and only whole code points.
std::string printable(std::string_view text) {
  std::string shown;
  for (std::size_t i = 0; i < text.size();) {
    const std::size_t length = sequence_length(text.substr(i));
    if (length == 0) {
      if (!continues_code_point(text[i])) shown += '?';
      ++i;
    } else if (text[i] != '\t' && starts_with_control(text.substr(i))) {
      shown += '?';
      i += length;
    } else {
      shown += text.substr(i, length);
      i += length;
    }
  }
  return shown;
}

}  // namespace

bool starts_with_control(std::string_view text) {
  if (text.empty()) return false;
  const auto first = static_cast<unsigned char>(text[0]);
  if (first < 0x20 || first == 0x7F) return true;
  return first == 0xC2 && text.size() > 1 && static_cast<unsigned char>(text[1]) < 0xA0;
}

SourceText::SourceText(std::string name, std::string text)
    : name_(std::move(name)), text_(std::move(text)), line_starts_{0} {
  for (std::size_t i = 0; i < text_.size(); ++i) {
    if (text_[i] == '\n') line_starts_.push_back(static_cast<Offset>(i + 1));
  }
}

std::optional<Offset> SourceText::find_malformed_byte() const {
  const std::string_view all = text_;
  for (std::size_t i = 0; i < all.size();) {
    const std::size_t length = sequence_length(all.substr(i));
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

// Those of the line; a line break counts as its end.
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
