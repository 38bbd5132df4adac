#include "detector/partitions/bijection.h"

#include <algorithm>
#include <cstddef>
#include <vector>

namespace symfold {

bool is_bijection(const Permutation& permutation) {
  std::vector<bool> is_image(static_cast<std::size_t>(std::max(permutation.GetN(), 0)), false);
  for (int i = 0; i < permutation.GetN(); ++i) {
    const int image = permutation[i];
    if (image < 0 || image >= permutation.GetN() || is_image[static_cast<std::size_t>(image)]) return false;
    is_image[static_cast<std::size_t>(image)] = true;
  }
  return true;
}

}  // namespace symfold
