#include "engines/graph/graph_reader.h"

#include <cstdint>
#include <fstream>
#include <istream>
#include <limits>
#include <locale>
#include <optional>
#include <stdexcept>
#include <vector>

#include "engines/base/number_scanner.h"

namespace symfold::detail {
namespace {

struct GraphFileError : std::runtime_error {
  using std::runtime_error::runtime_error;
};

class GraphReader {
 public:
  GraphReader(std::istream& in, const std::string& name) : scanner_(*in.rdbuf()), name_(name) {}

  ColouredGraph read() {
    scanner_.next();
    const bool is_weighted = scanner_.token() == "weighted";
    if (is_weighted) scanner_.next();
    const int n = current_number("the number of vertices", 0, kMaxVertices);
    const int edge_count = number("the number of edges", 0, n == 0 ? 0 : std::numeric_limits<int>::max());
    const int colours = number("the number of colours", n == 0 ? 0 : 1, n);
    check_vertex_count(n, edge_count, colours);
    std::vector<int> boundaries;
    for (int c = 1; c < colours; ++c) {
      const int low = boundaries.empty() ? 1 : boundaries.back() + 1;
      // Leaves room for the later boundaries.
      boundaries.push_back(number("the first vertex of a colour", low, n - (colours - c)));
    }
    if (is_weighted) return ColouredGraph::weighted(n, boundaries, read_weighted_edges(n, edge_count));
    return {n, boundaries, read_edges(n, edge_count)};
  }

 private:
  std::vector<Edge> read_edges(int n, int edge_count) {
    std::vector<Edge> edges;
    for (int e = 0; e < edge_count; ++e) {
      const int from = number("an edge's vertex", 0, n - 1);
      const int to = number("an edge's other vertex", 0, n - 1);
      edges.push_back({from, to});
    }
    expect_end();
    return edges;
  }

  std::vector<WeightedEdge> read_weighted_edges(int n, int edge_count) {
    std::vector<WeightedEdge> edges;
    for (int e = 0; e < edge_count; ++e) {
      const int from = number("an edge's vertex", 0, n - 1);
      const bool is_directed = direction();
      const int to = number("an edge's other vertex", 0, n - 1);
      edges.push_back({from, to, weight(), is_directed});
    }
    expect_end();
    return edges;
  }

  void expect_end() {
    if (scanner_.next()) fail("the end of the file");
  }

  bool direction() {
    scanner_.next();
    if (scanner_.token() != "-" && scanner_.token() != ">") fail("an edge's direction ('-' or '>')");
    return scanner_.token() == ">";
  }

  std::uint64_t weight() {
    scanner_.next();
    const std::optional<std::uint64_t> value = scanner_.large_number();
    if (!value.has_value()) fail("an edge's weight (0 to 18446744073709551615)");
    return *value;
  }

  // Room is made for the vertices when all edges and boundaries have been read, so the text itself then backs
  // the number that is allowed here.
  void check_vertex_count(int n, int edge_count, int colours) const {
    const std::int64_t most = kMaxBareVertices + 2 * std::int64_t{edge_count} + colours;
    if (n <= most) return;
    throw GraphFileError(name_ + ":" + std::to_string(scanner_.line()) + ": error: expected at most " +
                         std::to_string(most) + " vertices for " + std::to_string(edge_count) +
                         " edges and " + std::to_string(colours) + " colours, got '" + std::to_string(n) +
                         "'");
  }

  // Reads the next token as a number from low to high.
  int number(const char* what, int low, int high) {
    scanner_.next();
    return current_number(what, low, high);
  }

  int current_number(const char* what, int low, int high) const {
    const std::optional<int> value = scanner_.number(low, high);
    if (!value.has_value()) {
      fail(what + (" (" + std::to_string(low)) + (low == high ? "" : " to " + std::to_string(high)) + ")");
    }
    return *value;
  }

  [[noreturn]] void fail(const std::string& expected) const {
    const std::string shown = scanner_.shown();
    throw GraphFileError(name_ + ":" + std::to_string(scanner_.line()) + ": error: expected " + expected +
                         ", got " + (shown.empty() ? "the end of the file" : "'" + shown + "'"));
  }

  NumberScanner scanner_;
  const std::string& name_;
};

}  // namespace

GraphFileResult read_graph(std::istream& in, const std::string& name) {
  try {
    return {GraphReader(in, name).read(), ""};
  } catch (const GraphFileError& error) {
    return {ColouredGraph(), error.what()};
  } catch (const std::ios_base::failure&) {  // a directory, or a device that fails
    return {ColouredGraph(), name + ": error: cannot be read"};
  }
}

GraphFileResult read_graph_file(const std::string& name) {
  std::ifstream in;
  in.imbue(std::locale::classic());
  in.open(name);
  if (!in) return {ColouredGraph(), name + ": error: cannot be opened for reading"};
  return read_graph(in, name);
}

}  // namespace symfold::detail
