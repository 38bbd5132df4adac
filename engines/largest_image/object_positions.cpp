#include "engines/largest_image/object_positions.h"

#include <utility>

namespace symfold::detail {

ObjectPositions::ObjectPositions(std::vector<std::uint32_t> class_begins, std::vector<ObjectPair> pairs,
                                 const std::vector<bool>& is_unordered)
    : class_begins_(std::move(class_begins)), pairs_(std::move(pairs)) {
  table_.assign(is_unordered.size() * object_count() * object_count(), kNone);
  for (std::uint32_t position = 0; position < pairs_.size(); ++position) {
    const ObjectPair& pair = pairs_[position];
    table_[table_of(pair.kind) + pair.first * object_count() + pair.second] = position;
    if (is_unordered[pair.kind]) {
      table_[table_of(pair.kind) + pair.second * object_count() + pair.first] = position;
    }
  }
}

Images ObjectPositions::images_of(const std::vector<std::uint32_t>& objects) const {
  Images images;
  for (const ObjectPair& pair : pairs_) {
    const std::uint32_t image =
        table_[table_of(pair.kind) + objects[pair.first] * object_count() + objects[pair.second]];
    if (image == kNone) return {};
    images.push_back(image);
  }
  return images;
}

}  // namespace symfold::detail
