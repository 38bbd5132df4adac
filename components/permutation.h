// The group values that travel between the detector and its engines: permutations of the points 0 .. n-1, and
// the records of a value-permutation table.
//
// Points are 0-based everywhere. A permutation p sends point i to p[i]; `operator<<` writes it in disjoint
// cycles, smallest point first, fixed points left out, "()" for the identity.

#ifndef SYMFOLD_COMPONENTS_PERMUTATION_H
#define SYMFOLD_COMPONENTS_PERMUTATION_H

#include <iosfwd>
#include <vector>

namespace symfold {

// n images, one int per point. A value: copies are deep, moves leave the source with no points.
class Permutation {
 public:
  // The identity on n points (none for a negative n).
  explicit Permutation(int n);

  // Copies the images p[0 .. n-1] without a check: they may be no permutation, see IsPermutation.
  Permutation(int n, const int* p);

  Permutation(const Permutation&) = default;
  Permutation(Permutation&& other) noexcept;
  Permutation& operator=(Permutation other) noexcept;
  ~Permutation() = default;

  int GetN() const { return n; }

  // The images, writable in place and valid while the value lives.
  int* GetP() { return images_.data(); }
  const int* GetP() const { return images_.data(); }

  // Returns the image of point i, or -1 if i is no point of this permutation.
  int GetIth(int i) const;
  int operator[](int i) const { return GetIth(i); }

  // Returns true if every point is the image of exactly one point.
  bool IsPermutation() const;

  bool IsIdentity() const;

  // The point count. A caller that overwrites the first images through GetP may lower it.
  int n;

 private:
  std::vector<int> images_;
};

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
