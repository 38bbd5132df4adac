#include "host/pictures/composition_dot.h"

#include <algorithm>
#include <string_view>
#include <utility>

#include "host/export/names.h"
#include "host/pictures/line_layout.h"
#include "host/pictures/palette.h"
#include "host/pictures/svg_writer.h"

namespace symfold {
namespace {

constexpr std::size_t kMaxLevelled = 60;    // nodes
constexpr std::size_t kMaxStressed = 1500;  // nodes
constexpr double kCharacter = 0.075;        // inches
constexpr double kMargin = 0.13;
constexpr double kDot = 0.14;
constexpr double kMinBoxWidth = 0.3;

constexpr const char* kQuietInk = "#404040";

// Of the legend, one of Graphviz's HTML-like labels.
constexpr std::size_t kMaxOrbits = 16;
constexpr std::size_t kMaxNames = 4;
constexpr std::size_t kDigitsOfALine = 80;
constexpr std::size_t kMaxDigits = 1000;
constexpr std::size_t kDigitsAtEachEnd = 30;
constexpr const char* kLineEnd = "<br align=\"left\"/>\n";
constexpr const char* kNarrowLine = "<font point-size=\"4\">&#160;</font><br align=\"left\"/>\n";

std::string quoted(std::string_view text) { return '"' + dot_escaped(text) + '"'; }

// The width in inches that the longest text needs: of the submodels' boxes, or of the joins, with room for
// the text on either side.
double widest(const DrawnGraph& graph, bool joins) {
  std::size_t longest = 0;
  for (std::size_t i = 0; i < graph.nodes.size(); ++i) {
    if (graph.is_join(i) == joins) longest = std::max(longest, graph.nodes[i].text.size());
  }
  const double width = static_cast<double>(longest) * kCharacter;
  return joins ? 2 * width + kDot : std::max(width + kMargin, kMinBoxWidth);
}

// Orbits stand from left to right. Parts are placed by the stress of distances, which shows symmetries best,
// or by springs on several scales if that takes too long. Edges go round few nodes, and straight through
// many.
std::string layout_attributes(const DrawnGraph& graph, bool has_positions) {
  const std::size_t nodes = graph.nodes.size();
  if (has_positions) return "layout=neato, splines=line";
  if (graph.is_collapsed && nodes <= kMaxLevelled) return "layout=dot, rankdir=LR, ranksep=1, nodesep=0.4";
  if (nodes <= kMaxLevelled) return "layout=neato, overlap=false, splines=true";
  if (nodes <= kMaxStressed) return "layout=neato, overlap=false, splines=line";
  return "layout=sfdp, overlap=prism, splines=line";
}

// Fainter if many cross.
std::string edge_colour(const DrawnGraph& graph, bool has_positions) {
  if (has_positions || graph.edges.size() <= 100) return "#00000080";
  return graph.edges.size() <= 600 ? "#00000058" : "#00000030";
}

std::string small(std::string_view markup) {
  return std::string("<font point-size=\"9\" color=\"") + kQuietInk + "\">" + std::string(markup) + "</font>";
}

// The first names, and the last.
std::string shortened(const std::vector<std::string>& names) {
  std::string text = names[0];
  for (std::size_t i = 1; i < std::min(names.size(), kMaxNames); ++i) text += ", " + names[i];
  if (names.size() > kMaxNames) text += (names.size() > kMaxNames + 1 ? ", ... " : ", ") + names.back();
  return text;
}

// The order behind the words, or on lines of its own if it is long.
std::string order_lines(const std::string& order) {
  if (order.size() <= kDigitsOfALine / 2) return order + kLineEnd;
  std::string digits = order;
  if (order.size() > kMaxDigits) {
    digits = order.substr(0, kDigitsAtEachEnd) + " ... " + order.substr(order.size() - kDigitsAtEachEnd);
  }
  std::string lines = "(" + std::to_string(order.size()) + " digits)" + kLineEnd;
  for (std::size_t i = 0; i < digits.size(); i += kDigitsOfALine) {
    lines += small(digits.substr(i, kDigitsOfALine)) + kLineEnd;
  }
  return lines;
}

std::string orbit_line(const DrawnOrbit& orbit, const std::string& colour) {
  const std::string sign = orbit.is_join ? "\u25CF" : "\u25A0";  // a disc, a square
  const std::string kind = orbit.is_join ? "join" : "submodel";
  return "<font point-size=\"16\" color=\"" + colour + "\">" + sign + "</font>&#160;&#160;&#160;" +
         std::to_string(orbit.names.size()) + " " + kind + (orbit.names.size() == 1 ? "" : "s") + "  " +
         small(xml_escaped(shortened(orbit.names))) + kLineEnd;
}

// Lines of text: the model, its parts and the order of the group, and for each orbit its colour, size and
// names.
std::string legend(const DrawnGraph& graph, const DrawingTitle& title,
                   const std::vector<std::string>& colours) {
  std::string text =
      "<font point-size=\"16\"><b>" + xml_escaped(title.model) + "</b></font>" + kLineEnd + kNarrowLine;
  text +=
      xml_escaped(title.parts) + ", symmetry group of order " + order_lines(title.group_order) + kNarrowLine;
  const std::size_t shown = graph.orbits.size() <= kMaxOrbits + 1 ? graph.orbits.size() : kMaxOrbits;
  for (std::size_t i = 0; i < shown; ++i) text += orbit_line(graph.orbits[i], colours[i]);
  if (shown < graph.orbits.size()) {
    text += "and " + std::to_string(graph.orbits.size() - shown) + " more orbits" + kLineEnd;
  }
  return text + kNarrowLine;
}

class CompositionWriter {
 public:
  CompositionWriter(const DrawnGraph& graph, const DrawingTitle& title)
      : graph_(graph),
        colours_(distinct_colours(graph.orbits.size())),
        width_(widest(graph, false)),
        positions_(graph.is_collapsed ? std::vector<Position>()
                                      : line_positions(graph, width_, widest(graph, true))) {
    text_ = "// order of the symmetry group: " + title.group_order + "\ngraph composition {\n";
    line("graph [" + layout_attributes(graph, !positions_.empty()) +
         ", outputorder=edgesfirst, pad=0.3, fontname=\"Helvetica\", fontsize=12,\n"
         "    labelloc=t, labeljust=l, label=<" +
         legend(graph, title, colours_) + ">]");
    line(
        "node [shape=box, style=\"rounded,filled\", color=\"#00000090\", fontname=\"Helvetica\", "
        "fontsize=10, "
        "height=0.24, width=" +
        svg_number(positions_.empty() ? kMinBoxWidth : width_) + ", margin=\"0.06,0.02\"]");
    line("edge [color=\"" + edge_colour(graph, !positions_.empty()) +
         "\", fontname=\"Helvetica\", fontsize=9, fontcolor=" + quoted(kQuietInk) + "]");
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
        attributes += ", fontsize=9, fontcolor=" + quoted(kQuietInk) + ", xlabel=" + quoted(node.text);
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
    if (!edge.text.empty()) {
      attributes += (graph_.is_collapsed ? ", label=" : ", taillabel=") + quoted(edge.text);
    }
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
  return CompositionWriter(graph, title).text();
}

}  // namespace symfold
