#include "engines/largest_image/list_search.h"

#include <algorithm>
#include <utility>

#include "engines/base/images.h"

namespace symfold::detail {
namespace {

// Returns the next position of the same orbit by position, the position itself for the last one.
Images next_in_orbits(const std::vector<Images>& elements) {
  Images next = identity_images<Images>(elements.front().size());
  for (std::uint32_t p = 0; p < next.size(); ++p) {
    std::uint32_t nearest = UINT32_MAX;
    for (const Images& element : elements) {
      if (element[p] > p) nearest = std::min(nearest, element[p]);
    }
    if (nearest != UINT32_MAX) next[p] = nearest;
  }
  return next;
}

}  // namespace

ListSearch::ListSearch(std::vector<Images> elements, const std::vector<bool>& has_value)
    : candidates_(elements.size()), image_(elements.front().size()) {
  std::vector<std::uint32_t> positions_with_values;
  for (std::uint32_t p = 0; p < has_value.size(); ++p) {
    if (has_value[p]) positions_with_values.push_back(p);
  }
  for (Images& element : elements) element = inverse(element);
  const std::uint32_t first = positions_with_values.front();
  std::sort(elements.begin(), elements.end(),
            [&](const Images& a, const Images& b) { return a[first] < b[first]; });
  Table table{elements.size(), std::move(positions_with_values), {}, {}, {}, next_in_orbits(elements)};
  table.sources.resize(table.element_count * image_.size());
  for (std::uint32_t e = 0; e < elements.size(); ++e) {
    if (e == 0 || elements[e][first] != table.first_sources.back()) {
      table.first_sources.push_back(elements[e][first]);
      table.begins.push_back(e);
    }
    for (std::size_t p = 0; p < image_.size(); ++p)
      table.sources[p * table.element_count + e] = elements[e][p];
  }
  table.begins.push_back(static_cast<std::uint32_t>(elements.size()));
  table_ = std::make_shared<const Table>(std::move(table));
}

bool ListSearch::is_constant_on_orbits(const Placed* values) const {
  for (const std::uint32_t position : table_->positions_with_values) {
    if (values[position].value != values[table_->next_in_orbit[position]].value) return false;
  }
  return true;
}

// Makes the elements that bring the largest value to the first position the candidates. Returns their number.
std::size_t ListSearch::find_first_candidates(const Placed* values) {
  std::uint64_t best = 0;
  for (const std::uint32_t source : table_->first_sources) best = std::max(best, values[source].value);
  std::size_t count = 0;
  for (std::size_t i = 0; i < table_->first_sources.size(); ++i) {
    if (values[table_->first_sources[i]].value != best) continue;
    for (std::uint32_t e = table_->begins[i]; e < table_->begins[i + 1]; ++e) candidates_[count++] = e;
  }
  return count;
}

bool ListSearch::maximise(Placed* values) {
  std::size_t count = find_first_candidates(values);
  if (count == table_->element_count && is_constant_on_orbits(values)) return true;
  for (std::size_t p = 1; p < table_->positions_with_values.size() && count > 1; ++p) {
    const std::uint32_t position = table_->positions_with_values[p];
    const std::uint32_t* const sources = &table_->sources[position * table_->element_count];
    std::uint64_t best = 0;
    std::size_t kept = 0;
    for (std::size_t i = 0; i < count; ++i) {
      const std::uint32_t element = candidates_[i];
      const std::uint64_t value = values[sources[element]].value;
      if (value < best) continue;
      if (value > best) kept = 0;
      best = value;
      candidates_[kept++] = element;
    }
    count = kept;
  }
  const std::uint32_t* source = &table_->sources[candidates_[0]];
  for (Placed& placed : image_) {
    placed = values[*source];
    source += table_->element_count;
  }
  std::copy(image_.begin(), image_.end(), values);
  return true;
}

}  // namespace symfold::detail
