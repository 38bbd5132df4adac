#include "host/pictures/svg_writer.h"

#include <charconv>
#include <cmath>

namespace symfold {
namespace {

void append_tag(std::string& text, const char* name, SvgAttributes attributes) {
  text += '<';
  text += name;
  for (const SvgAttribute& attribute : attributes) {
    text += std::string(" ") + attribute.name + "=\"" + attribute.value + '"';
  }
}

}  // namespace

std::string xml_escaped(std::string_view text) {
  std::string result;
  for (const char c : text) {
    if (c == '&') {
      result += "&amp;";
    } else if (c == '<') {
      result += "&lt;";
    } else if (c == '>') {
      result += "&gt;";
    } else if (c == '"') {
      result += "&quot;";
    } else {
      result += c >= 0 && c < ' ' ? ' ' : c;
    }
  }
  return result;
}

// Adding 0 makes -0 a 0.
std::string svg_number(double number) {
  char text[64];
  const double rounded = std::round(number * 100) / 100 + 0.0;
  return {text, std::to_chars(text, text + sizeof text, rounded, std::chars_format::fixed).ptr};
}

SvgWriter::SvgWriter(double width, double height, std::string_view title, std::string_view description) {
  text_ = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n";
  append_tag(text_, "svg",
             {{"xmlns", "http://www.w3.org/2000/svg"},
              {"width", width},
              {"height", height},
              {"viewBox", "0 0 " + svg_number(width) + " " + svg_number(height)},
              {"role", "img"},
              {"aria-labelledby", "title description"}});
  text_ += ">\n";
  add("title", {{"id", "title"}}, xml_escaped(title));
  add("desc", {{"id", "description"}}, xml_escaped(description));
}

void SvgWriter::add(const char* name, SvgAttributes attributes, std::string_view markup) {
  append_tag(text_, name, attributes);
  if (markup.empty()) {
    text_ += "/>\n";
  } else {
    text_ += ">" + std::string(markup) + "</" + name + ">\n";
  }
}

void SvgWriter::open_group(SvgAttributes attributes) {
  append_tag(text_, "g", attributes);
  text_ += ">\n";
}

void SvgWriter::close_group() { text_ += "</g>\n"; }

std::string SvgWriter::finish() { return text_ + "</svg>\n"; }

}  // namespace symfold
