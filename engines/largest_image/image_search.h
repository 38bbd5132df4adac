// A canonical image of a list of values under a permutation group: what all searches for it have in common.
//
// A value lies at each of the positions 0 .. n-1. An element g of the group carries the value at position c
// to position g[c]. The canonical image of a state is an image under the group, and it is the same for all
// its images: it depends on the group and the class of the state alone, and not on the generators by which
// the group was found. Some searches find the largest image, the one whose values, read from position 0 on,
// are largest in lexicographic order. Others find another one sooner (refining_search.h).
//
// Values compare as unsigned numbers. The caller decides in which order the bytes of a state make a number,
// and so in which order states compare. The engines never see bytes.

#ifndef SYMFOLD_ENGINES_LARGEST_IMAGE_IMAGE_SEARCH_H
#define SYMFOLD_ENGINES_LARGEST_IMAGE_IMAGE_SEARCH_H

#include <cstdint>
#include <memory>
#include <vector>

namespace symfold::detail {

// A value at a position, and the position from which it came.
struct Placed {
  std::uint64_t value;
  std::uint32_t source;
};

// A permutation of the positions 0 .. n-1: position c goes to images[c].
using Images = std::vector<std::uint32_t>;

// A search for one group. It holds work space of its own, so one search serves one thread at a time.
class ImageSearch {
 public:
  virtual ~ImageSearch() = default;

  // Returns another search for the same group, which shares what is only read.
  virtual std::unique_ptr<ImageSearch> clone() const = 0;

  // Rearranges the values, one for each position, into their canonical image. Returns false if a bound on the
  // work was exceeded: then the result is an image, but maybe not the canonical one. Allocates nothing once
  // the work space has its size. A position without a value has the value 0.
  virtual bool maximise(Placed* values) = 0;

 protected:
  ImageSearch() = default;
  ImageSearch(const ImageSearch&) = default;
  ImageSearch& operator=(const ImageSearch&) = default;
};

}  // namespace symfold::detail

#endif  // SYMFOLD_ENGINES_LARGEST_IMAGE_IMAGE_SEARCH_H
