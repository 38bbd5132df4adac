// A base and a strong generating set of a permutation group given by generators.

#ifndef SYMFOLD_COMPONENTS_SCHREIER_SIMS_H
#define SYMFOLD_COMPONENTS_SCHREIER_SIMS_H

#include <vector>

#include "components/permutation.h"

namespace symfold {

class SchreierSims {
 public:
  // For permutations of the points 0 .. n-1, about m of them (a hint).
  SchreierSims(int n, int m);

  // Optional: the orbit lengths of a stabiliser chain of the same group over the same base rule, found
  // elsewhere. A stabiliser chain that reaches them is complete, because none has longer orbits; otherwise it
  // is verified.
  void SetKnownOrder(std::vector<int> orbit_lengths);

  // Optional: leaves out the redundant members that Go adds for shallow Schreier trees. They cost the square
  // of an orbit's length.
  void OmitShortcuts() { has_shortcuts_ = false; }

  // Replaces the content of `base` by the base: each point is the smallest one that the stabiliser of the
  // points before it moves. Returns a strong generating set relative to it: for each base point b, the
  // returned permutations that fix every point below b generate the stabiliser of the base points below b.
  // The identity is never among them, and the trivial group has an empty base and an empty set. The set holds
  // redundant members if they are needed to keep the paths of Schreier trees logarithmic in the orbit's
  // length. Values that are no permutations of n points are left out.
  std::vector<Permutation> Go(std::vector<Permutation> gens, std::vector<int>& base);

  // After Go: the length, at least 2, of each base point's orbit. Their product is the exact group order.
  const std::vector<int>& OrbitLengths() const { return orbit_lengths_; }

 private:
  int n_;
  bool has_shortcuts_ = true;
  std::vector<int> known_lengths_;
  std::vector<int> orbit_lengths_;
};

}  // namespace symfold

#endif  // SYMFOLD_COMPONENTS_SCHREIER_SIMS_H
