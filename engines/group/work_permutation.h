// A permutation that is multiplied again and again at the cost of the points that the factors move.

#ifndef SYMFOLD_ENGINES_GROUP_WORK_PERMUTATION_H
#define SYMFOLD_ENGINES_GROUP_WORK_PERMUTATION_H

#include <algorithm>
#include <span>
#include <vector>

#include "engines/base/images.h"
#include "engines/base/point_vector.h"
#include "engines/base/sparse_permutation.h"

namespace symfold::detail {

// A permutation of 0 .. degree-1, at first the identity. Sized once, used for one permutation after the
// other.
class WorkPermutation {
 public:
  explicit WorkPermutation(int degree)
      : images_(identity_images(degree)), preimages_(images_), is_listed_(degree, 0) {}

  int operator[](int point) const { return images_[point]; }

  // Holds every point that is moved, and maybe points that were, in no order.
  const std::vector<int>& points() const { return points_; }

  void set_identity() {
    for (const int point : points_) {
      preimages_[images_[point]] = images_[point];
      images_[point] = point;
      is_listed_[point] = 0;
    }
    points_.clear();
  }

  // Multiplies: this permutation first, then the other.
  void then(std::span<const PointMove> other) {
    scratch_.clear();
    for (const PointMove move : other) scratch_.push_back(preimages_[move.point]);
    for (std::size_t i = 0; i < other.size(); ++i) place(scratch_[i], other[i].image);
  }

  // Multiplies: the other permutation first, then this one.
  void after(std::span<const PointMove> other) {
    scratch_.clear();
    for (const PointMove move : other) scratch_.push_back(images_[move.image]);
    for (std::size_t i = 0; i < other.size(); ++i) place(other[i].point, scratch_[i]);
  }

  // Takes points that are fixed off the list, and returns the moves, ascending.
  SparsePermutation moves() {
    std::erase_if(points_, [this](int point) {
      if (images_[point] == point) is_listed_[point] = 0;
      return images_[point] == point;
    });
    std::ranges::sort(points_);
    SparsePermutation moves;
    moves.reserve(points_.size());
    for (const int point : points_) moves.push_back({point, images_[point]});
    return moves;
  }

 private:
  void place(int point, int image) {
    images_[point] = image;
    preimages_[image] = point;
    if (is_listed_[point] != 0) return;
    is_listed_[point] = 1;
    points_.push_back(point);
  }

  PointVector<int> images_;
  PointVector<int> preimages_;
  PointVector<char> is_listed_;
  std::vector<int> points_;
  std::vector<int> scratch_;
};

}  // namespace symfold::detail

#endif  // SYMFOLD_ENGINES_GROUP_WORK_PERMUTATION_H
