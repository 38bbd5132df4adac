// Groups that are direct products of groups on disjoint positions: each factor finds its own largest image.

#ifndef SYMFOLD_DETECTOR_LABELLING_EXACT_PRODUCT_SEARCH_H
#define SYMFOLD_DETECTOR_LABELLING_EXACT_PRODUCT_SEARCH_H

#include <vector>

#include "detector/labelling/exact/image_search.h"

namespace symfold {

// A factor, and the positions that it moves, ascending.
struct Factor {
  std::vector<std::uint32_t> positions;
  std::unique_ptr<ImageSearch> search;
};

// Cost beside that of the factors: a copy of the word.
class ProductSearch : public ImageSearch {
 public:
  explicit ProductSearch(std::vector<Factor> factors);
  std::unique_ptr<ImageSearch> clone() const override;
  bool maximise(Placed* word) override;

 private:
  std::vector<Factor> factors_;
  std::vector<Placed> part_;
};

}  // namespace symfold

#endif  // SYMFOLD_DETECTOR_LABELLING_EXACT_PRODUCT_SEARCH_H
