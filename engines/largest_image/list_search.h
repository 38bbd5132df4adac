// Small groups, all of whose elements are listed.
//
// Position by position, of the elements still in the race those stay that bring the largest value there. At
// the first position that costs a look at each point of its orbit, since elements are listed by where its
// value comes from. A random word of a ring of 100 is decided after some 200 values; a word with symmetries
// of its own is read to its end by the elements that tie.

#ifndef SYMFOLD_ENGINES_LARGEST_IMAGE_LIST_SEARCH_H
#define SYMFOLD_ENGINES_LARGEST_IMAGE_LIST_SEARCH_H

#include <memory>
#include <vector>

#include "engines/largest_image/image_search.h"

namespace symfold::detail {

class ListSearch : public ImageSearch {
 public:
  // All elements of the group, and the positions whose values can differ, ascending; at least one of each.
  ListSearch(std::vector<Images> elements, std::vector<std::uint32_t> positions_with_values);
  std::unique_ptr<ImageSearch> clone() const override { return std::make_unique<ListSearch>(*this); }
  bool maximise(Placed* word) override;

 private:
  struct Table {
    std::size_t element_count;
    std::vector<std::uint32_t> positions_with_values;
    // For each source of the first of them, where its elements begin; at the end the number of elements.
    std::vector<std::uint32_t> first_sources;
    std::vector<std::uint32_t> begins;
    std::vector<std::uint32_t> sources;  // by position and element: where the value there comes from
  };

  std::size_t start_race(const Placed* word);

  std::shared_ptr<const Table> table_;
  std::vector<std::uint32_t> race_;  // elements that may be best
  std::vector<Placed> image_;
};

}  // namespace symfold::detail

#endif  // SYMFOLD_ENGINES_LARGEST_IMAGE_LIST_SEARCH_H
