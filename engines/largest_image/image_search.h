// The largest image of a word under a permutation group: what every way to find it has in common.
//
// A word is a list of positions, each with a value. An element g of the group carries the value at position c
// to position g[c]; the largest image is the one whose values, read from position 0 on, are largest in
// lexicographic order.

#ifndef SYMFOLD_ENGINES_LARGEST_IMAGE_IMAGE_SEARCH_H
#define SYMFOLD_ENGINES_LARGEST_IMAGE_IMAGE_SEARCH_H

#include <cstdint>
#include <memory>
#include <vector>

namespace symfold::detail {

// What lies at a position: a value, and where it lay at first.
struct Placed {
  std::uint64_t value;
  std::uint32_t source;
};

// The images of the positions 0 .. n-1.
using Images = std::vector<std::uint32_t>;

// A search for one group. Holds work space of its own: one search serves one thread.
class ImageSearch {
 public:
  virtual ~ImageSearch() = default;

  // Another search for the same group, which shares what is only read.
  virtual std::unique_ptr<ImageSearch> clone() const = 0;

  // Rearranges the word into its largest image. False where a bound on the work was exceeded: then it is an
  // image, but there may be larger ones. Allocates nothing once the work space has its size.
  virtual bool maximise(Placed* word) = 0;

 protected:
  ImageSearch() = default;
  ImageSearch(const ImageSearch&) = default;
  ImageSearch& operator=(const ImageSearch&) = default;
};

}  // namespace symfold::detail

#endif  // SYMFOLD_ENGINES_LARGEST_IMAGE_IMAGE_SEARCH_H
