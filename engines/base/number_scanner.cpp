#include "engines/base/number_scanner.h"

#include <charconv>
#include <string_view>
#include <system_error>

namespace symfold::detail {
namespace {

constexpr int kEnd = std::char_traits<char>::eof();

bool is_blank(int c) { return c == ' ' || (c >= '\t' && c <= '\r'); }

}  // namespace

bool NumberScanner::next() {
  token_.clear();
  int c = text_.sgetc();
  for (; is_blank(c); c = text_.snextc()) line_ += c == '\n' ? 1 : 0;
  for (; c != kEnd && !is_blank(c) && token_.size() < kMaxTokenLength; c = text_.snextc())
    token_ += static_cast<char>(c);
  is_cut_ = c != kEnd && !is_blank(c);
  return !token_.empty();
}

std::string NumberScanner::shown() const {
  constexpr std::string_view kDigits = "0123456789abcdef";
  std::string text;
  for (const char c : token_.substr(0, kMaxTokenShown)) {
    if (c >= ' ' && c <= '~') {
      text += c;
    } else {
      const auto byte = static_cast<unsigned char>(c);
      text += {'\\', 'x', kDigits[byte >> 4], kDigits[byte & 15]};
    }
  }
  return text;
}

std::optional<int> NumberScanner::number(int low, int high) const {
  if (is_cut_ || (low >= 0 && token_.starts_with('-'))) return std::nullopt;
  int value = 0;
  const char* end = token_.data() + token_.size();
  const auto [stop, error] = std::from_chars(token_.data(), end, value);
  if (error != std::errc() || stop != end || value < low || value > high) return std::nullopt;
  return value;
}

std::optional<std::uint64_t> NumberScanner::large_number() const {
  std::uint64_t value = 0;
  const char* end = token_.data() + token_.size();
  const auto [stop, error] = std::from_chars(token_.data(), end, value);
  if (is_cut_ || error != std::errc() || stop != end) return std::nullopt;
  return value;
}

}  // namespace symfold::detail
