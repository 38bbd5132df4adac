// Dense permutations: point c of 0 .. n-1 goes to images[c].
//
// The functions take every random-access container of integers, such as PointVector<int> and
// std::vector<std::uint32_t>, and run in time linear in n. Except for is_permutation, they expect images that
// are permutations. A permutation that moves few of many points is better kept as a SparsePermutation
// (sparse_permutation.h).

#ifndef SYMFOLD_ENGINES_BASE_IMAGES_H
#define SYMFOLD_ENGINES_BASE_IMAGES_H

#include <cstddef>
#include <span>
#include <utility>
#include <vector>

#include "engines/base/point_vector.h"

namespace symfold::detail {

// The type by which a container counts and indexes its elements.
template <class Images>
using IndexOf = decltype(std::declval<const Images&>().size());

// The vector 0, 1, .. n-1.
template <class Images = PointVector<int>>
Images identity_images(IndexOf<Images> n) {
  Images images(n);
  for (IndexOf<Images> c = 0; c < n; ++c) images[c] = static_cast<typename Images::value_type>(c);
  return images;
}

template <class Images>
bool is_identity(const Images& images) {
  for (IndexOf<Images> c = 0; c < images.size(); ++c) {
    if (static_cast<IndexOf<Images>>(images[c]) != c) return false;
  }
  return true;
}

template <class Images>
Images inverse(const Images& images) {
  Images result(images.size());
  for (IndexOf<Images> c = 0; c < images.size(); ++c) {
    result[static_cast<IndexOf<Images>>(images[c])] = static_cast<typename Images::value_type>(c);
  }
  return result;
}

// a after b: point c goes to a[b[c]]. Both are of the same length.
template <class Images>
Images composed(const Images& a, const Images& b) {
  Images result(b.size());
  for (IndexOf<Images> c = 0; c < b.size(); ++c) result[c] = a[static_cast<IndexOf<Images>>(b[c])];
  return result;
}

// True if every point of 0 .. n-1 is the image of exactly one point. The images may be any numbers.
inline bool is_permutation(std::span<const int> images) {
  std::vector<char> is_image(images.size(), 0);
  for (const int image : images) {
    if (image < 0 || static_cast<std::size_t>(image) >= images.size()) return false;
    if (std::exchange(is_image[static_cast<std::size_t>(image)], 1) != 0) return false;
  }
  return true;
}

}  // namespace symfold::detail

#endif  // SYMFOLD_ENGINES_BASE_IMAGES_H
