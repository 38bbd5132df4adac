#include "components/permutation.h"

#include <algorithm>
#include <cstddef>
#include <numeric>
#include <ostream>
#include <string>
#include <utility>

#include "engines/base/images.h"

namespace symfold {

Permutation::Permutation(int point_count)
    : n(std::max(point_count, 0)), images_(static_cast<std::size_t>(n)) {
  std::iota(images_.begin(), images_.end(), 0);
}

Permutation::Permutation(int point_count, const int* p) : n(std::max(point_count, 0)), images_(p, p + n) {}

Permutation::Permutation(Permutation&& other) noexcept
    : n(std::exchange(other.n, 0)), images_(std::move(other.images_)) {
  other.images_.clear();
}

Permutation& Permutation::operator=(Permutation other) noexcept {
  n = other.n;
  images_.swap(other.images_);
  return *this;
}

int Permutation::GetIth(int i) const {
  const auto index = static_cast<std::size_t>(i);
  return i >= 0 && i < n && index < images_.size() ? images_[index] : -1;
}

bool Permutation::IsPermutation() const {
  if (n < 0 || static_cast<std::size_t>(n) > images_.size()) return false;
  return detail::is_permutation({images_.data(), static_cast<std::size_t>(n)});
}

bool Permutation::IsIdentity() const {
  for (int i = 0; i < n; ++i) {
    if (GetIth(i) != i) return false;
  }
  return true;
}

// The whole text is put together before it is written, because tables of thousands of permutations are
// printed and a stream's formatted output costs more than the digits. A stream that takes nothing gets no
// text (a host may have given it no buffer). An image that is no point ends its cycle.
std::ostream& operator<<(std::ostream& out, const Permutation& permutation) {
  if (!out) return out;
  std::string text;
  std::vector<bool> written(static_cast<std::size_t>(std::max(permutation.n, 0)), false);
  for (int start = 0; start < permutation.n; ++start) {
    if (written[static_cast<std::size_t>(start)] || permutation[start] == start) continue;
    char separator = '(';
    for (int point = start; point >= 0 && point < permutation.n; point = permutation[point]) {
      if (written[static_cast<std::size_t>(point)]) break;
      written[static_cast<std::size_t>(point)] = true;
      text += separator;
      text += std::to_string(point);
      separator = ' ';
    }
    text += ')';
  }
  return out << (text.empty() ? "()" : text);
}

std::ostream& operator<<(std::ostream& out, const ValPerms& record) {
  out << "Value: " << std::to_string(record.Value);
  for (const Permutation& permutation : record.Perms) out << "  " << permutation;
  return out;
}

}  // namespace symfold
