// Reader of graph files, which are plain text: decimal numbers between white space.
//
//     N E T  b(1) .. b(T-1)      vertices, edges, colours; first vertex of every colour but the first
//     a b                        one pair of vertex numbers for each edge, E times
//
// Vertices are 0 .. N-1. The boundaries b(i) ascend strictly within 1 .. N-1. "0 0 0" is the empty graph.
// A file that begins with the word "weighted" holds edges with directions and weights:
//
//     weighted N E T  b(1) .. b(T-1)
//     a - b w                    an edge between a and b of weight w, 0 to 2^64-1
//     a > b w                    an edge from a to b
//
// Weights are colours: only equality counts, and of parallel edges how many there are of each direction and
// weight.
//
// Example: a path of three vertices whose middle one has a colour of its own, and is therefore numbered last:
// "3 2 2 2 / 0 2 / 2 1". A directed triangle: "weighted 3 3 1 / 0 > 1 0 / 1 > 2 0 / 2 > 0 0".

#ifndef SYMFOLD_ENGINES_GRAPH_GRAPH_READER_H
#define SYMFOLD_ENGINES_GRAPH_GRAPH_READER_H

#include <iosfwd>
#include <string>

#include "engines/graph/coloured_graph.h"

namespace symfold::detail {

// Graphs with more vertices are refused.
inline constexpr int kMaxVertices = 1 << 24;

// So are graphs with more vertices than their edges and colours name, and this many on top: a short text must
// not cost the memory of millions of vertices without edges. No answer is lost. Such a graph has more than
// 65,536 vertices without an edge beside others of their colour, so its group has as many generators, each
// with an image for each vertex: over 2^32, and saucy_obj holds 2^28.
inline constexpr int kMaxBareVertices = 1 << 16;

struct GraphFileResult {
  ColouredGraph graph;
  std::string error;  // empty, or "<name>:<line>: error: expected <what>, got <what>"
};

// Reads the whole text. The error message calls it `name`. Allocates in proportion to the text read, beyond
// the room for kMaxBareVertices, whatever numbers the text announces.
GraphFileResult read_graph(std::istream& in, const std::string& name);

// Reads the file of that name.
GraphFileResult read_graph_file(const std::string& name);

}  // namespace symfold::detail

#endif  // SYMFOLD_ENGINES_GRAPH_GRAPH_READER_H
