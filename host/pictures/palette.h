// Colours that tell kinds of things apart.

#ifndef SYMFOLD_HOST_PICTURES_PALETTE_H
#define SYMFOLD_HOST_PICTURES_PALETTE_H

#include <cstddef>
#include <string>
#include <vector>

namespace symfold {

// Returns `count` different colours "#RRGGBB" on which black text can be read, as far apart as possible.
// Those for a smaller count are the first of those for a larger one. The first nine are a scheme that
// colour-blind people too can tell apart (P. Tol: Colour schemes, SRON/EPS/TN/09-002, "light"). Each further
// one is taken from a grid of colours that are neither dark nor glaring: the one farthest from all before it,
// by distance in a space in which equal distances look equal (B. Ottosson: A perceptual color space for image
// processing, 2020). Cost: some thousand distances per colour. Beyond some thousand, colours repeat.
std::vector<std::string> distinct_colours(std::size_t count);

}  // namespace symfold

#endif  // SYMFOLD_HOST_PICTURES_PALETTE_H
