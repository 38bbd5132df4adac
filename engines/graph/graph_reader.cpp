#include "engines/graph/graph_reader.h"

#include <fstream>
#include <istream>
#include <limits>
#include <stdexcept>
#include <utility>
#include <vector>

namespace symfold::detail {
namespace {

constexpr std::size_t kMaxTokenLength = 32;

struct GraphFileError : std::runtime_error {
  using std::runtime_error::runtime_error;
};

bool is_blank(int c) { return c == ' ' || (c >= '\t' && c <= '\r'); }

// Cuts the text into tokens and keeps count of the lines.
class GraphFileScanner {
 public:
  GraphFileScanner(std::istream& in, const std::string& name) : buffer_(*in.rdbuf()), name_(name) {}

  // The next token as a number from low to high.
  int number(const std::string& what, int low, int high) {
    const std::string expected = "expected " + what + " (" + std::to_string(low) +
                                 (low == high ? "" : " to " + std::to_string(high)) + ")";
    const std::string token = next_token();
    long long value = 0;
    bool is_good = !token.empty();
    for (const char digit : token) {
      is_good = is_good && digit >= '0' && digit <= '9' && value <= high;
      if (is_good) value = 10 * value + (digit - '0');
    }
    if (!is_good || value < low || value > high) fail(expected, token);
    return static_cast<int>(value);
  }

  void end_of_file() {
    const std::string token = next_token();
    if (!token.empty()) fail("expected the end of the file", token);
  }

 private:
  // Longer tokens than any number are cut, so that a file without blanks costs no memory.
  std::string next_token() {
    int c = buffer_.sgetc();
    while (c != kEnd && is_blank(c)) {
      if (c == '\n') ++line_;
      c = buffer_.snextc();
    }
    std::string token;
    while (c != kEnd && !is_blank(c) && token.size() < kMaxTokenLength) {
      token += static_cast<char>(c);
      c = buffer_.snextc();
    }
    return token;
  }

  [[noreturn]] void fail(const std::string& expected, const std::string& token) const {
    std::string shown;
    for (const char c : token) shown += c >= ' ' && c <= '~' ? c : '?';
    throw GraphFileError(name_ + ":" + std::to_string(line_) + ": error: " + expected + ", got " +
                         (token.empty() ? "the end of the file" : "'" + shown + "'"));
  }

  static constexpr int kEnd = std::char_traits<char>::eof();
  std::streambuf& buffer_;
  const std::string& name_;
  int line_ = 1;
};

ColouredGraph scan_graph(GraphFileScanner& scanner) {
  const int n = scanner.number("the number of vertices", 0, kMaxVertices);
  const int edge_count =
      scanner.number("the number of edges", 0, n == 0 ? 0 : std::numeric_limits<int>::max());
  const int colours = scanner.number("the number of colours", n == 0 ? 0 : 1, n);
  std::vector<int> boundaries;
  for (int c = 1; c < colours; ++c) {
    const int low = boundaries.empty() ? 1 : boundaries.back() + 1;
    // Later boundaries need room, too.
    boundaries.push_back(scanner.number("the first vertex of a colour", low, n - (colours - c)));
  }
  std::vector<Edge> edges;
  for (int e = 0; e < edge_count; ++e) {
    const int from = scanner.number("an edge's vertex", 0, n - 1);
    const int to = scanner.number("an edge's other vertex", 0, n - 1);
    edges.push_back({from, to});
  }
  scanner.end_of_file();
  return {n, boundaries, edges};
}

}  // namespace

GraphFileResult read_graph(std::istream& in, const std::string& name) {
  try {
    GraphFileScanner scanner(in, name);
    return {scan_graph(scanner), ""};
  } catch (const GraphFileError& error) {
    return {ColouredGraph(), error.what()};
  } catch (const std::ios_base::failure&) {  // a directory, or a device that fails
    return {ColouredGraph(), name + ": error: cannot be read"};
  }
}

GraphFileResult read_graph_file(const std::string& name) {
  std::ifstream in(name);
  if (!in) return {ColouredGraph(), name + ": error: cannot be opened for reading"};
  return read_graph(in, name);
}

}  // namespace symfold::detail
