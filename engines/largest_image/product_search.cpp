#include "engines/largest_image/product_search.h"

#include <algorithm>
#include <utility>

namespace symfold::detail {

ProductSearch::ProductSearch(std::vector<Factor> factors) : factors_(std::move(factors)) {
  std::size_t longest = 0;
  for (const Factor& factor : factors_) longest = std::max(longest, factor.positions.size());
  factor_values_.resize(longest);
}

std::unique_ptr<ImageSearch> ProductSearch::clone() const {
  std::vector<Factor> factors;
  for (const Factor& factor : factors_) factors.push_back({factor.positions, factor.search->clone()});
  return std::make_unique<ProductSearch>(std::move(factors));
}

bool ProductSearch::maximise(Placed* values) {
  bool is_exact = true;
  for (const Factor& factor : factors_) {
    std::size_t i = 0;
    for (const std::uint32_t position : factor.positions) factor_values_[i++] = values[position];
    if (!factor.search->maximise(factor_values_.data())) is_exact = false;
    i = 0;
    for (const std::uint32_t position : factor.positions) values[position] = factor_values_[i++];
  }
  return is_exact;
}

}  // namespace symfold::detail
