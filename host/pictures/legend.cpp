#include "host/pictures/legend.h"

#include <algorithm>
#include <string_view>

#include "host/pictures/svg_writer.h"

namespace symfold {
namespace {

constexpr std::size_t kMaxOrbits = 16;
constexpr std::size_t kMaxNames = 4;
constexpr std::size_t kDigitsOfALine = 80;
constexpr std::size_t kMaxDigits = 1000;
constexpr std::size_t kDigitsAtEachEnd = 30;

std::string small(std::string_view markup) {
  return "<font point-size=\"9\" color=\"#404040\">" + std::string(markup) + "</font>";
}

constexpr const char* kLineEnd = "<br align=\"left\"/>\n";

constexpr const char* kNarrowLine = "<font point-size=\"4\">&#160;</font><br align=\"left\"/>\n";

// The first names, and the last.
std::string shortened(const std::vector<std::string>& names) {
  std::string text = names[0];
  for (std::size_t i = 1; i < std::min(names.size(), kMaxNames); ++i) text += ", " + names[i];
  if (names.size() > kMaxNames) text += (names.size() > kMaxNames + 1 ? ", ... " : ", ") + names.back();
  return text;
}

// Behind the words, or on lines of its own where it is long.
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

}  // namespace

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

}  // namespace symfold
