#include "host/model/utf8.h"

#include <algorithm>

namespace symfold {

std::vector<std::size_t> code_point_starts(std::string_view text) {
  std::vector<std::size_t> starts;
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (!continues_code_point(text[i])) starts.push_back(i);
  }
  starts.push_back(text.size());
  return starts;
}

int count_code_points(std::string_view text) {
  return static_cast<int>(
      std::count_if(text.begin(), text.end(), [](char c) { return !continues_code_point(c); }));
}

std::size_t well_formed_length(std::string_view text) {
  const auto byte_at = [text](std::size_t i) {
    return i < text.size() ? static_cast<unsigned char>(text[i]) : 0;
  };
  const auto continues_at = [text](std::size_t i) {
    return i < text.size() && continues_code_point(text[i]);
  };
  const int lead = byte_at(0);
  const int second = byte_at(1);
  if (lead < 0x80) return 1;
  if (lead >= 0xC2 && lead <= 0xDF) return continues_at(1) ? 2 : 0;
  if (lead >= 0xE0 && lead <= 0xEF) {
    const bool overlong = lead == 0xE0 && second < 0xA0;
    const bool surrogate = lead == 0xED && second > 0x9F;
    return continues_at(1) && continues_at(2) && !overlong && !surrogate ? 3 : 0;
  }
  if (lead >= 0xF0 && lead <= 0xF4) {
    const bool overlong = lead == 0xF0 && second < 0x90;
    const bool beyond = lead == 0xF4 && second > 0x8F;
    return continues_at(1) && continues_at(2) && continues_at(3) && !overlong && !beyond ? 4 : 0;
  }
  return 0;
}

bool starts_with_control(std::string_view text) {
  if (text.empty()) return false;
  const auto first = static_cast<unsigned char>(text[0]);
  if (first < 0x20 || first == 0x7F) return true;
  return first == 0xC2 && text.size() > 1 && static_cast<unsigned char>(text[1]) < 0xA0;
}

std::string printable(std::string_view text) {
  std::string shown;
  for (std::size_t i = 0; i < text.size();) {
    const std::size_t length = well_formed_length(text.substr(i));
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

}  // namespace symfold
