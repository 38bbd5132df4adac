#include "engines/largest_image/table_group.h"

#include <utility>

#include "engines/base/images.h"

namespace symfold::detail {

TableGroup::TableGroup(std::vector<bool> has_value, std::vector<TableLevel> levels)
    : has_value_(std::move(has_value)) {
  for (TableLevel& table_level : levels) {
    Level& level =
        levels_.emplace_back(Level{table_level.base, std::vector<std::int32_t>(point_count(), -1)});
    for (TableRecord& record : table_level.records) {
      if (is_identity(record.images)) continue;
      if (record.value < point_count() && record.images[record.value] == level.base) {
        level.record_of[record.value] = static_cast<std::int32_t>(permutations_.size());
      }
      permutations_.push_back(std::move(record.images));
    }
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
