// Groups that are direct products of groups on disjoint positions: each factor finds its own largest image.

#ifndef SYMFOLD_ENGINES_LARGEST_IMAGE_PRODUCT_SEARCH_H
#define SYMFOLD_ENGINES_LARGEST_IMAGE_PRODUCT_SEARCH_H

#include <vector>

#include "engines/largest_image/image_search.h"

namespace symfold::detail {

// A factor, and the positions that it moves, ascending.
struct Factor {
  std::vector<std::uint32_t> positions;
  std::unique_ptr<ImageSearch> search;
};

// Cost besides that of the factors: a copy of the values.
class ProductSearch : public ImageSearch {
 public:
  explicit ProductSearch(std::vector<Factor> factors);
  std::unique_ptr<ImageSearch> clone() const override;
  bool maximise(Placed* values) override;

 private:
  std::vector<Factor> factors_;
  std::vector<Placed> factor_values_;
};

}  // namespace symfold::detail

#endif  // SYMFOLD_ENGINES_LARGEST_IMAGE_PRODUCT_SEARCH_H
