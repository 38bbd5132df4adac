// A permutation as the list of the points that it moves, because a generator of a large graph's group moves
// few points. Permutations by the images of all points are in images.h.

#ifndef SYMFOLD_ENGINES_BASE_SPARSE_PERMUTATION_H
#define SYMFOLD_ENGINES_BASE_SPARSE_PERMUTATION_H

#include <algorithm>
#include <cstddef>
#include <span>
#include <vector>

namespace symfold {

struct PointMove {
  int point;
  int image;  // never equal to point

  bool operator==(const PointMove&) const = default;
};

// The moves in ascending order of their points; empty for the identity.
using SparsePermutation = std::vector<PointMove>;

// Permutations one after the other in one block of memory, because a large group has many small generators.
class PermutationList {
 public:
  std::size_t size() const { return ends_.size(); }
  std::size_t move_count() const { return moves_.size(); }  // of all permutations

  std::span<const PointMove> operator[](std::size_t i) const {
    const std::size_t begin = i == 0 ? 0 : ends_[i - 1];
    return std::span(moves_).subspan(begin, ends_[i] - begin);
  }

  void reserve(std::size_t moves) { moves_.reserve(moves); }
  void push_back(std::span<const PointMove> moves) { std::ranges::copy(moves, add(moves.size()).begin()); }

  // Adds a permutation and returns the room for its moves.
  std::span<PointMove> add(std::size_t moves) {
    moves_.resize(moves_.size() + moves);
    ends_.push_back(moves_.size());
    return std::span(moves_).last(moves);
  }

  // Returns copies of the permutations.
  class Iterator {
   public:
    Iterator(const PermutationList& list, std::size_t i) : list_(&list), i_(i) {}

    SparsePermutation operator*() const { return {(*list_)[i_].begin(), (*list_)[i_].end()}; }
    Iterator& operator++() {
      ++i_;
      return *this;
    }
    bool operator==(const Iterator&) const = default;

   private:
    const PermutationList* list_;
    std::size_t i_;
  };
  Iterator begin() const { return {*this, 0}; }
  Iterator end() const { return {*this, size()}; }

 private:
  std::vector<PointMove> moves_;
  std::vector<std::size_t> ends_;  // of each permutation's moves
};

}  // namespace symfold

#endif  // SYMFOLD_ENGINES_BASE_SPARSE_PERMUTATION_H
