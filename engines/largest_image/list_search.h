// Small groups, all of whose elements are listed.
//
// At each position in turn, those candidates stay that bring the largest value there. At the first position
// this costs a look at each point of its orbit, because the elements are sorted by the source of the value
// there. Random values on a ring of 100 are decided after some 200 reads; values with symmetries of their own
// are read to the end by the elements that tie. If all values of each orbit are equal, so that every element
// would tie, the values stay as they are.

#ifndef SYMFOLD_ENGINES_LARGEST_IMAGE_LIST_SEARCH_H
#define SYMFOLD_ENGINES_LARGEST_IMAGE_LIST_SEARCH_H

#include <memory>
#include <vector>

#include "engines/largest_image/image_search.h"

namespace symfold::detail {

class ListSearch : public ImageSearch {
 public:
  // All elements of the group, and by position whether values can differ there; at least one of each.
  ListSearch(std::vector<Images> elements, const std::vector<bool>& has_value);
  std::unique_ptr<ImageSearch> clone() const override { return std::make_unique<ListSearch>(*this); }
  bool maximise(Placed* values) override;

 private:
  struct Table {
    std::size_t element_count;
    std::vector<std::uint32_t> positions_with_values;
    std::vector<std::uint32_t> first_sources;  // of the values at the first of them
    std::vector<std::uint32_t> begins;         // the elements of each of these; at the end their number
    std::vector<std::uint32_t> sources;        // of the value there, by position and element
    std::vector<std::uint32_t> next_in_orbit;  // by position; the last one of an orbit names itself
  };

  bool is_constant_on_orbits(const Placed* values) const;
  std::size_t find_first_candidates(const Placed* values);

  std::shared_ptr<const Table> table_;
  std::vector<std::uint32_t> candidates_;  // elements that may be best
  std::vector<Placed> image_;
};

}  // namespace symfold::detail

#endif  // SYMFOLD_ENGINES_LARGEST_IMAGE_LIST_SEARCH_H
