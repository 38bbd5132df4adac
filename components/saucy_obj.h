// Generators of the automorphism group of a coloured graph, read from a graph file.
//
// The calls come in this order: saucy_begin2, saucy_init, saucy_search, saucy_end. Points are the vertex
// numbers of the file, 0-based. An object holds the result of its latest search; objects share nothing, so
// different threads may use different objects.

#ifndef SYMFOLD_COMPONENTS_SAUCY_OBJ_H
#define SYMFOLD_COMPONENTS_SAUCY_OBJ_H

#include <vector>

#include "components/permutation.h"

namespace symfold {

// The graph and the progress of a search; opaque to callers.
struct saucy_struct;

class saucy_obj {
 public:
  // After saucy_search: permutations of all vertices that together generate the automorphism group, none of
  // them the identity. Empty for a group without non-trivial automorphisms.
  std::vector<Permutation> generators;

  // After saucy_search: base[i] is the smallest vertex that the stabiliser of base[0 .. i-1] moves, and
  // orbit_lengths[i], at least 2, the length of its orbit under that stabiliser. The product of all lengths
  // is the exact group order, and the generators that fix every vertex below base[i] generate that
  // stabiliser.
  std::vector<int> base;
  std::vector<int> orbit_lengths;

  // After saucy_search: true where the generators generate the whole group; false where there was no graph to
  // search, or where the group was too large to be listed.
  bool is_complete = false;

  // Reads the graph. A missing or malformed file is reported in one line on standard error, which says where
  // and what was expected, and gives null. Otherwise the caller owes the result to saucy_end.
  saucy_struct* saucy_begin2(char* file_name);

  // Makes the state ready for a search and drops the results of an earlier one.
  void saucy_init(saucy_struct* state);

  // Fills these members; does nothing to them where state is null. A group that would need more than
  // 2^28 images in all (1 GiB) is reported in one line on standard error and leaves them empty.
  void saucy_search(saucy_struct* state);

  // Releases the state, null or not; the results stay.
  void saucy_end(saucy_struct* state);
};

}  // namespace symfold

#endif  // SYMFOLD_COMPONENTS_SAUCY_OBJ_H
