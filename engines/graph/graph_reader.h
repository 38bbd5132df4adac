// Reader of graph files.
//
// A file is plain text, decimal numbers between white space:
//
//     N E T  b(1) .. b(T-1)      vertices, edges, colours; first vertex of every colour but the first
//     a b                        one pair of vertex numbers per edge, E times
//
// Vertices are 0 .. N-1, the boundaries ascend strictly within 1 .. N-1; "0 0 0" is the empty graph. Example:
// a path of three vertices whose middle one has a colour of its own, so numbered last: "3 2 2 2 / 0 2 / 2 1".

#ifndef SYMFOLD_ENGINES_GRAPH_GRAPH_READER_H
#define SYMFOLD_ENGINES_GRAPH_GRAPH_READER_H

#include <iosfwd>
#include <string>

#include "engines/graph/coloured_graph.h"

namespace symfold::detail {

// Graphs of more vertices are refused.
inline constexpr int kMaxVertices = 1 << 24;

struct GraphFileResult {
  ColouredGraph graph;
  std::string error;  // empty, or "<name>:<line>: expected <what>, got <what>"
};

// Reads the whole text. `name` stands for it in the message. Allocates in proportion to N and to the text
// read, whatever edge count the text announces.
GraphFileResult read_graph(std::istream& in, const std::string& name);

// The same for the file of that name.
GraphFileResult read_graph_file(const std::string& name);

}  // namespace symfold::detail

#endif  // SYMFOLD_ENGINES_GRAPH_GRAPH_READER_H
