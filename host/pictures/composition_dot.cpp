#include "host/pictures/composition_dot.h"

#include <algorithm>
#include <string_view>
#include <utility>

#include "host/pictures/chain_layout.h"
#include "host/pictures/palette.h"
#include "host/pictures/svg_writer.h"

namespace symfold {
namespace {

constexpr std::size_t kMaxLevelled = 60;    // nodes
constexpr std::size_t kMaxStressed = 1500;  // nodes
constexpr double kCharacter = 0.075;        // inches
constexpr double kMargin = 0.13;
constexpr double kDot = 0.14;
constexpr double kNarrowestBox = 0.3;

std::string quoted(std::string_view text) {
  std::string result = "\"";
  for (const char c : text) {
    if (c == '"' || c == '\\') result += '\\';
    result += c;
  }
  return result + '"';
}

// Of the submodels, or of the joins with room for a name on either side, as the longest needs; in inches.
double widest(const DrawnGraph& graph, bool joins) {
  std::size_t longest = 0;
  for (std::size_t i = 0; i < graph.nodes.size(); ++i) {
    if (graph.is_join(i) == joins) longest = std::max(longest, graph.nodes[i].text.size());
  }
  const double width = static_cast<double>(longest) * kCharacter;
  return joins ? 2 * width + kDot : std::max(width + kMargin, kNarrowestBox);
}

// Orbits from left to right; parts by the stress of distances, which shows symmetries best, and where that
// takes too long, by springs on several scales. Edges go round few nodes, and straight through many.
std::string layout_attributes(const DrawnGraph& graph, bool has_positions) {
  const std::size_t nodes = graph.nodes.size();
  if (has_positions) return "layout=neato, splines=line";
  if (graph.is_collapsed && nodes <= kMaxLevelled) return "layout=dot, rankdir=LR, ranksep=1, nodesep=0.4";
  if (nodes <= kMaxLevelled) return "layout=neato, overlap=false, splines=true";
  if (nodes <= kMaxStressed) return "layout=neato, overlap=false, splines=line";
  return "layout=sfdp, overlap=prism, splines=line";
}

// Fainter where many cross.
std::string edge_colour(const DrawnGraph& graph, bool has_positions) {
  if (has_positions || graph.edges.size() <= 100) return "#00000080";
  return graph.edges.size() <= 600 ? "#00000058" : "#00000030";
}

class Writer {
 public:
  Writer(const DrawnGraph& graph, const DrawingTitle& title)
      : graph_(graph),
        colours_(distinct_colours(graph.orbits.size())),
        width_(widest(graph, false)),
        positions_(graph.is_collapsed ? std::vector<Position>()
                                      : chain_positions(graph, width_, widest(graph, true))) {
    text_ = "// order of the symmetry group: " + title.group_order + "\ngraph composition {\n";
    line("graph [" + layout_attributes(graph, !positions_.empty()) +
         ", outputorder=edgesfirst, pad=0.3, fontname=\"Helvetica\", fontsize=12,\n"
         "    labelloc=t, labeljust=l, label=<" +
         legend(graph, title, colours_) + ">]");
    line(
        "node [shape=box, style=\"rounded,filled\", color=\"#00000090\", fontname=\"Helvetica\", "
        "fontsize=10, "
        "height=0.24, width=" +
        svg_number(positions_.empty() ? kNarrowestBox : width_) + ", margin=\"0.06,0.02\"]");
    line("edge [color=\"" + edge_colour(graph, !positions_.empty()) +
         "\", fontname=\"Helvetica\", fontsize=9, fontcolor=\"#404040\"]");
    for (std::size_t i = 0; i < graph.nodes.size(); ++i) add_node(i);
    for (const DrawnEdge& edge : graph.edges) add_edge(edge);
    text_ += "}\n";
  }

  std::string text() && { return std::move(text_); }

 private:
  void line(const std::string& content) { text_ += "  " + content + ";\n"; }

  void add_node(std::size_t index) {
    const DrawnNode& node = graph_.nodes[index];
    std::string attributes = "fillcolor=" + quoted(colours_[node.orbit]) + ", tooltip=" + quoted(node.hint);
    if (graph_.is_collapsed) {
      attributes +=
          ", label=" + quoted(node.text) + (graph_.is_join(index) ? ", shape=ellipse, style=filled" : "");
    } else if (graph_.is_join(index)) {
      attributes += ", shape=circle, style=filled, width=" + svg_number(kDot) +
                    ", height=" + svg_number(kDot) + ", fixedsize=true, label=\"\"";
      if (!node.text.empty())
        attributes += ", fontsize=9, fontcolor=\"#404040\", xlabel=" + quoted(node.text);
    } else {
      attributes += ", label=" + quoted(node.text);
    }
    if (!positions_.empty()) {
      const auto [x, y] = positions_[index];
      attributes += ", pos=\"" + svg_number(x) + "," + svg_number(y) + "!\"";
    }
    line(quoted(node.name) + " [" + attributes + "]");
  }

  void add_edge(const DrawnEdge& edge) {
    std::string attributes = "tooltip=" + quoted(edge.hint);
    if (!edge.text.empty()) attributes += ", label=" + quoted(edge.text);
    line(quoted(graph_.nodes[edge.submodel].name) + " -- " + quoted(graph_.nodes[edge.join].name) + " [" +
         attributes + "]");
  }

  const DrawnGraph& graph_;
  std::vector<std::string> colours_;  // by orbit
  double width_;
  std::vector<Position> positions_;
  std::string text_;
};

}  // namespace

std::string composition_dot(const DrawnGraph& graph, const DrawingTitle& title) {
  return Writer(graph, title).text();
}

}  // namespace symfold
