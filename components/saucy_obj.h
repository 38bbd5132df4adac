// Generators of the automorphism group of a coloured graph, given as a file or as plain values.
//
// The calls come in this order: saucy_begin2 or saucy_begin_graph, then saucy_init, saucy_search and
// saucy_end. Points are the graph's vertex numbers, 0-based. An object holds the result of its latest search.
// Objects share nothing but the stream for messages, so different threads may use different objects with
// different streams.

#ifndef SYMFOLD_COMPONENTS_SAUCY_OBJ_H
#define SYMFOLD_COMPONENTS_SAUCY_OBJ_H

#include <iosfwd>
#include <string>
#include <utility>
#include <vector>

#include "components/permutation.h"

namespace symfold {

// The graph and the progress of a search; opaque to callers.
struct saucy_struct;

class saucy_obj {
 public:
  saucy_obj();

  // After saucy_search: permutations of all vertices that together generate the automorphism group, none of
  // them the identity. Empty for a group without non-trivial automorphisms.
  std::vector<Permutation> generators;

  // After saucy_search: base[i] is the smallest vertex that the stabiliser of base[0 .. i-1] moves, and
  // orbit_lengths[i], at least 2, the length of its orbit under that stabiliser. The product of all lengths
  // is the exact group order, and the generators that fix every vertex below base[i] generate that
  // stabiliser.
  std::vector<int> base;
  std::vector<int> orbit_lengths;

  // After saucy_search: true if the generators generate the whole group. False if there was no graph to
  // search, or if the search ended at a limit: then all of the above is that of a subgroup.
  bool is_complete = false;

  // Where the calls report errors, a line each; standard error at first, null for nowhere. The stream must
  // outlive the calls.
  std::ostream* errors;

  // Reads the graph. A missing or malformed file is reported in one line, which says where and what was
  // expected, and the result is null. Otherwise the caller must pass the result to saucy_end.
  saucy_struct* saucy_begin2(char* file_name);

  // Takes the graph as values: its vertices are 0 .. vertex_count - 1; `boundaries`, strictly ascending,
  // holds the first vertex of every colour but the first; `edges` holds pairs of vertices. Values that a
  // graph file must not have are refused like such a file. `name` stands for the file's name in messages.
  saucy_struct* saucy_begin_graph(int vertex_count, const std::vector<int>& boundaries,
                                  const std::vector<std::pair<int, int>>& edges, const std::string& name);

  // Makes the state ready for a search and drops the results of an earlier one.
  void saucy_init(saucy_struct* state);

  // Fills these members; leaves them as they are if state is null. A search that ends at a
  // limit, such as that of 2^28 moves of all generators together (2 GiB), is reported in one line.
  void saucy_search(saucy_struct* state);

  // Releases the state, null or not; the results stay.
  void saucy_end(saucy_struct* state);

 private:
  void report(const std::string& message) const;
};

}  // namespace symfold

#endif  // SYMFOLD_COMPONENTS_SAUCY_OBJ_H
