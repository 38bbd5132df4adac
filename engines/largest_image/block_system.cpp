#include "engines/largest_image/block_system.h"

#include <algorithm>
#include <utility>

namespace symfold::detail {

BlockSystem::BlockSystem(std::size_t position_count)
    : classes_(static_cast<int>(position_count)),
      first_members_(identity_images<PointVector<std::uint32_t>>(static_cast<int>(position_count))) {}

bool BlockSystem::unite(std::uint32_t x, std::uint32_t y) {
  const int class_of_x = classes_.find(static_cast<int>(x));
  const int class_of_y = classes_.find(static_cast<int>(y));
  if (!classes_.unite(class_of_x, class_of_y)) return false;
  first_members_[classes_.find(class_of_x)] =
      std::min(first_members_[class_of_x], first_members_[class_of_y]);
  return true;
}

std::size_t BlockSystem::unite_invariantly(std::uint32_t x, std::uint32_t y,
                                           const std::vector<const Images*>& permutations) {
  std::vector<std::pair<std::uint32_t, std::uint32_t>> united;
  if (unite(x, y)) united.emplace_back(x, y);
  for (std::size_t i = 0; i < united.size(); ++i) {
    const auto [a, b] = united[i];
    for (const Images* permutation : permutations) {
      const std::uint32_t image_of_a = (*permutation)[a];
      const std::uint32_t image_of_b = (*permutation)[b];
      if (unite(image_of_a, image_of_b)) united.emplace_back(image_of_a, image_of_b);
    }
  }
  return united.size();
}

}  // namespace symfold::detail
