// Shortcuts: redundant strong generators that keep Schreier trees shallow.
//
// With the rotation (0 1 .. 999) as the one generator, point 999 is 999 steps from 0. Let h(1), .., h(k) be
// group elements and consider the points that 0 reaches by taking or skipping the steps h(k), .., h(1) and
// then the inverses of h(1), .., h(k), in this order. Whenever some orbit point is not reached, an element
// h(k+1) that leads there at least doubles the number of points reached by the first half. So at most
// log2(orbit length) elements, with their inverses, make every path at most twice as long as that. For the
// rotation they are about its powers 1, 2, 4, .., 512 and their inverses: 20 generators, and no point more
// than 5 steps away (L. Babai, G. Cooperman, L. Finkelstein and A. Seress, Nearly linear time algorithms for
// permutation groups with a small base, ISSAC 1991; A. Seress, Permutation Group Algorithms, 2003,
// section 4.4).

#ifndef SYMFOLD_ENGINES_GROUP_SHALLOW_TREES_H
#define SYMFOLD_ENGINES_GROUP_SHALLOW_TREES_H

#include "engines/group/stabiliser_chain.h"

namespace symfold::detail {

// Adds shortcuts at every base point whose tree, breadth-first by the generators that fix all points below
// it, is deeper than max(2, log2 of its orbit's length); no other base point gets any. Precondition: the
// chain is complete.
void add_shortcuts(int n, StabiliserChain& chain);

}  // namespace symfold::detail

#endif  // SYMFOLD_ENGINES_GROUP_SHALLOW_TREES_H
