// The group values that travel between the detector and its engines: permutations of the points 0 .. n-1, and
// the records of a value-permutation table.
//
// Points are 0-based everywhere. A permutation p sends point i to p[i]; `operator<<` writes it in disjoint
// cycles, smallest point first, fixed points left out, "()" for the identity.

#ifndef SYMFOLD_COMPONENTS_PERMUTATION_H
#define SYMFOLD_COMPONENTS_PERMUTATION_H

#include <algorithm>
#include <atomic>
#include <cstddef>
#include <iosfwd>
#include <span>
#include <vector>

#include "engines/base/sparse_permutation.h"

namespace symfold {

// n images, one int per point. A value: copies are deep, moves leave the source with no points.
//
// The images are stored as a list of moves while no more than half of the points move, and one by one
// otherwise. Copies share what is stored until GetP asks for images to write to, because a table holds one
// generator on many paths. So a copy costs a counter, and memory follows what moves. Threads: a const
// permutation may be read, and copied, by any number of them.
class Permutation {
 public:
  // The identity on n points (none for a negative n).
  explicit Permutation(int n);

  // Copies the images p[0 .. n-1] without a check: they may be no permutation, see IsPermutation.
  Permutation(int n, const int* p);

  // Sends the point of each move to its image, every other point to itself. Requires: the points are among 0
  // .. n-1, ascend, and none is its own image. The images may be any numbers.
  Permutation(int n, std::span<const PointMove> moves);

  Permutation(const Permutation& other);
  Permutation(Permutation&& other) noexcept;
  Permutation& operator=(Permutation other) noexcept;
  ~Permutation();

  int GetN() const { return n; }

  // The images, writable in place and valid while the value lives. Makes an array of n ints at the first
  // call; VisitMoves makes none.
  int* GetP();
  const int* GetP() const;

  // Returns the image of point i, or -1 if i is no point of this permutation. Cost: logarithmic in the number
  // of moved points.
  int GetIth(int i) const;
  int operator[](int i) const { return GetIth(i); }

  // Calls visit(point, image) for each point of 0 .. n-1 that has another image than itself, ascending. Cost:
  // linear in these points, or in n if they are more than half of all.
  template <class Visit>
  void VisitMoves(const Visit& visit) const;
  std::size_t CountMoves() const;

  // The n images if all of them are stored, as those of a permutation of many points are; null otherwise. For
  // loops that are faster over all points than over the moved ones.
  const int* StoredImages() const;

  // Equal addresses mean that two permutations have equal images, as copies have until one is written to.
  // Null for the identity, and after GetP.
  const void* SharedImages() const { return shared_; }

  // Returns true if every point is the image of exactly one point.
  bool IsPermutation() const;

  bool IsIdentity() const;

  // The point count. A caller that overwrites the first images through GetP may lower it.
  int n;

 private:
  struct Shared {
    std::atomic<int> use_count;
    int move_count;  // -1 if all images are stored
  };

  static Shared* share_moves(std::span<const PointMove> moves);
  static Shared* share(std::span<const int> images);
  void release() noexcept;
  int* make_images() const;
  std::span<const PointMove> stored_moves() const;

  int size_;                  // the images stored
  Shared* shared_ = nullptr;  // followed by its moves or images, which never change; null for the identity
  mutable std::atomic<int*> images_ = nullptr;  // own, made by GetP; they count if nothing is shared
};

inline std::span<const PointMove> Permutation::stored_moves() const {
  if (shared_ == nullptr) return {};
  return {reinterpret_cast<const PointMove*>(shared_ + 1), static_cast<std::size_t>(shared_->move_count)};
}

inline const int* Permutation::StoredImages() const {
  if (shared_ == nullptr) return images_.load(std::memory_order_acquire);
  return shared_->move_count < 0 ? reinterpret_cast<const int*>(shared_ + 1) : nullptr;
}

template <class Visit>
void Permutation::VisitMoves(const Visit& visit) const {
  const int end = std::min(n, size_);
  if (const int* const images = StoredImages()) {
    for (int i = 0; i < end; ++i) {
      if (images[i] != i) visit(i, images[i]);
    }
    return;
  }
  for (const auto& [point, image] : stored_moves()) {
    if (point >= end) return;
    visit(point, image);
  }
}

std::ostream& operator<<(std::ostream& out, const Permutation& permutation);

// One point of an orbit with the permutations of its path from the orbit's root, root first.
struct ValPerms {
  int Value = -1;
  std::vector<Permutation> Perms;
};

// Writes "Value: " and the value, then two blanks and the text of each permutation.
std::ostream& operator<<(std::ostream& out, const ValPerms& record);

}  // namespace symfold

#endif  // SYMFOLD_COMPONENTS_PERMUTATION_H
