// Pictures by Graphviz's program `dot`.

#ifndef SYMFOLD_HOST_PICTURES_GRAPHVIZ_H
#define SYMFOLD_HOST_PICTURES_GRAPHVIZ_H

#include <string>

namespace symfold {

// Draws a file in the DOT language as SVG, by the layout that the file names; the picture appears whole or
// not at all. Returns false if the program is not installed. Throws std::runtime_error with one line "NAME:
// error: ..." if a file cannot be read or written, or if the program fails; it says on standard error why.
bool draw_svg(const std::string& dot_name, const std::string& svg_name);

}  // namespace symfold

#endif  // SYMFOLD_HOST_PICTURES_GRAPHVIZ_H
