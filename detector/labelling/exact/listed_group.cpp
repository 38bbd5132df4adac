#include "detector/labelling/exact/listed_group.h"

#include <algorithm>
#include <numeric>

namespace symfold {

ListedGroup::ListedGroup(const std::vector<Images>& elements)
    : race_(elements.size()), image_(elements.front().size()) {
  Table table{elements.size(), image_.size(), {}};
  table.sources.resize(table.element_count * table.position_count);
  for (std::size_t e = 0; e < elements.size(); ++e) {
    for (std::uint32_t c = 0; c < table.position_count; ++c) {
      table.sources[elements[e][c] * table.element_count + e] = c;
    }
  }
  table_ = std::make_shared<const Table>(std::move(table));
}

bool ListedGroup::maximise(Placed* word) {
  std::size_t count = table_->element_count;
  std::iota(race_.begin(), race_.end(), 0U);
  for (std::size_t position = 0; position < table_->position_count && count > 1; ++position) {
    const std::uint32_t* const sources = &table_->sources[position * table_->element_count];
    std::uint64_t best = 0;
    for (std::size_t i = 0; i < count; ++i) best = std::max(best, word[sources[race_[i]]].value);
    std::size_t kept = 0;
    for (std::size_t i = 0; i < count; ++i) {
      const std::uint32_t element = race_[i];
      race_[kept] = element;
      kept += word[sources[element]].value == best ? 1 : 0;
    }
    count = kept;
  }
  const std::uint32_t* source = &table_->sources[race_[0]];
  for (Placed& placed : image_) {
    placed = word[*source];
    source += table_->element_count;
  }
  std::copy(image_.begin(), image_.end(), word);
  return true;
}

}  // namespace symfold
