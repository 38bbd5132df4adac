#include "engines/group/random_products.h"

#include <algorithm>

#include "engines/base/images.h"

namespace symfold::detail {

RandomProducts::RandomProducts(int degree, const PermutationList& generators)
    : products_(std::clamp<std::size_t>(generators.size(), 10, 40), identity_images(degree)) {
  for (std::size_t i = 0; i < std::max(products_.size(), generators.size()); ++i) {
    PointVector<int> images = identity_images(degree);
    for (const auto& [point, image] : generators[i % generators.size()]) images[point] = image;
    PointVector<int>& product = products_[i % products_.size()];
    product = composed(images, product);
  }
  for (std::size_t i = 0; i < 50 + 5 * products_.size(); ++i) next();
}

SparsePermutation RandomProducts::next() {
  const std::size_t to = random_() % products_.size();
  const std::size_t other = (to + 1 + random_() % (products_.size() - 1)) % products_.size();
  products_[to] = random_() % 2 == 0 ? composed(products_[other], products_[to])
                                     : composed(products_[to], inverse(products_[other]));
  running_ = running_.empty() ? products_[to] : composed(products_[to], running_);
  SparsePermutation moves;
  for (int x = 0; x < running_.size(); ++x) {
    if (running_[x] != x) moves.push_back({x, running_[x]});
  }
  return moves;
}

}  // namespace symfold::detail
