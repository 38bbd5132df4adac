// An SVG document, element by element.

#ifndef SYMFOLD_HOST_PICTURES_SVG_WRITER_H
#define SYMFOLD_HOST_PICTURES_SVG_WRITER_H

#include <initializer_list>
#include <string>
#include <string_view>
#include <utility>

namespace symfold {

// Returns the text with &, <, > and quotes as entities, and with blanks for control characters.
std::string xml_escaped(std::string_view text);

// Returns the number with at most two decimals, whatever the locale.
std::string svg_number(double number);

struct SvgAttribute {
  SvgAttribute(const char* attribute_name, const char* text) : name(attribute_name), value(text) {}
  SvgAttribute(const char* attribute_name, std::string text) : name(attribute_name), value(std::move(text)) {}
  SvgAttribute(const char* attribute_name, double number) : name(attribute_name), value(svg_number(number)) {}

  const char* name;
  std::string value;  // escaped
};

using SvgAttributes = std::initializer_list<SvgAttribute>;

class SvgWriter {
 public:
  // Starts an image of this size in pixels, with a title and a description for people who do not see it.
  SvgWriter(double width, double height, std::string_view title, std::string_view description);

  // Adds an element whose content is `markup`: escaped text or elements.
  void add(const char* name, SvgAttributes attributes, std::string_view markup = "");

  // Opens a group, whose attributes hold for all that is added until it is closed.
  void open_group(SvgAttributes attributes);
  void close_group();

  // Returns the whole document. To be called once, at the end.
  std::string finish();

 private:
  std::string text_;
};

}  // namespace symfold

#endif  // SYMFOLD_HOST_PICTURES_SVG_WRITER_H
