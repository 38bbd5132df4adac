// UTF-8, as far as the positions and texts of error messages need it.

#ifndef SYMFOLD_HOST_MODEL_UTF8_H
#define SYMFOLD_HOST_MODEL_UTF8_H

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace symfold {

// True for the bytes of a code point after its first.
constexpr bool continues_code_point(char c) { return (static_cast<unsigned char>(c) & 0xC0) == 0x80; }

// The positions of the code points' first bytes, and the end of the text.
std::vector<std::size_t> code_point_starts(std::string_view text);

int count_code_points(std::string_view text);

// The bytes of the code point that starts the text, 1 to 4; 0 if it is not well-formed (Unicode 15, table
// 3-7). Requires: the text is not empty.
std::size_t well_formed_length(std::string_view text);

// True if the text starts with a control character, which a terminal might obey: U+0000 to U+001F or U+007F
// to U+009F.
bool starts_with_control(std::string_view text);

// The text with '?' for every control character except tabs, and for every malformed sequence of bytes.
std::string printable(std::string_view text);

}  // namespace symfold

#endif  // SYMFOLD_HOST_MODEL_UTF8_H
