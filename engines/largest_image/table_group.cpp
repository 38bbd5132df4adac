#include "engines/largest_image/table_group.h"

#include <numeric>
#include <stdexcept>
#include <string>
#include <utility>

namespace symfold::detail {
namespace {

Images identity(std::size_t point_count) {
  Images images(point_count);
  std::iota(images.begin(), images.end(), 0U);
  return images;
}

Images images_of(const Permutation& permutation, std::size_t point_count) {
  Images images(point_count);
  std::vector<bool> is_image(point_count);
  for (std::size_t c = 0; c < point_count; ++c) {
    const int image = permutation[static_cast<int>(c)];
    if (image < 0 || static_cast<std::size_t>(image) >= point_count ||
        is_image[static_cast<std::size_t>(image)]) {
      throw std::invalid_argument("expected permutations of " + std::to_string(point_count) +
                                  " partitions, got another table");
    }
    is_image[static_cast<std::size_t>(image)] = true;
    images[c] = static_cast<std::uint32_t>(image);
  }
  return images;
}

}  // namespace

Images composed(const Images& a, const Images& b) {
  Images result(a.size());
  for (std::size_t c = 0; c < a.size(); ++c) result[c] = a[b[c]];
  return result;
}

Images inverse(const Images& a) {
  Images result(a.size());
  for (std::uint32_t c = 0; c < a.size(); ++c) result[a[c]] = c;
  return result;
}

bool is_identity(const Images& a) {
  for (std::size_t c = 0; c < a.size(); ++c) {
    if (a[c] != c) return false;
  }
  return true;
}

TableGroup::TableGroup(std::vector<bool> has_value, const std::vector<int>& bases,
                       const std::map<int, std::vector<ValPerms>>& records)
    : has_value_(std::move(has_value)) {
  const std::size_t point_count = has_value_.size();
  for (const int base : bases) {
    Level level{static_cast<std::size_t>(base), std::vector<std::int32_t>(point_count, -1)};
    const auto found = records.find(base);
    if (found == records.end()) continue;
    for (const ValPerms& record : found->second) {
      Images images = identity(point_count);
      for (const Permutation& step : record.Perms) images = composed(images_of(step, point_count), images);
      if (is_identity(images)) continue;
      const auto value = static_cast<std::size_t>(record.Value);
      if (value < point_count && images[value] == level.base) {
        level.record_of[value] = static_cast<std::int32_t>(permutations_.size());
      }
      permutations_.push_back(std::move(images));
    }
    levels_.push_back(std::move(level));
  }
}

bool TableGroup::contains(Images g) const {
  for (const Level& level : levels_) {
    if (level.base >= point_count() || g[level.base] == level.base) continue;
    const std::int32_t record = level.record_of[g[level.base]];
    if (record < 0) return false;
    const Images& step = permutations_[static_cast<std::size_t>(record)];
    for (std::uint32_t& image : g) image = step[image];
  }
  return is_identity(g);
}

}  // namespace symfold::detail
