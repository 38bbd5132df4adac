#include "host/pictures/palette.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>

namespace symfold {
namespace {

using Rgb = std::array<int, 3>;

// Lightness from 0 to 1, and two coordinates of hue and chroma.
using OkLab = std::array<double, 3>;

constexpr std::array<Rgb, 9> kLightScheme = {{{0x77, 0xAA, 0xDD},
                                              {0xEE, 0x88, 0x66},
                                              {0xEE, 0xDD, 0x88},
                                              {0xFF, 0xAA, 0xBB},
                                              {0x99, 0xDD, 0xFF},
                                              {0x44, 0xBB, 0x99},
                                              {0xBB, 0xCC, 0x33},
                                              {0xAA, 0xAA, 0x00},
                                              {0xDD, 0xDD, 0xDD}}};

constexpr int kGridStep = 15;
constexpr double kMinLightness = 0.6;
constexpr double kMaxLightness = 0.93;
constexpr double kMaxChroma = 0.17;

double linear(int component) {
  const double value = component / 255.0;
  return value <= 0.04045 ? value / 12.92 : std::pow((value + 0.055) / 1.055, 2.4);
}

OkLab to_oklab(const Rgb& colour) {
  const double r = linear(colour[0]);
  const double g = linear(colour[1]);
  const double b = linear(colour[2]);
  const double l = std::cbrt(0.4122214708 * r + 0.5363325363 * g + 0.0514459929 * b);
  const double m = std::cbrt(0.2119034982 * r + 0.6806995451 * g + 0.1073969566 * b);
  const double s = std::cbrt(0.0883024619 * r + 0.2817188376 * g + 0.6299787005 * b);
  return {0.2104542553 * l + 0.7936177850 * m - 0.0040720468 * s,
          1.9779984951 * l - 2.4285922050 * m + 0.4505937099 * s,
          0.0259040371 * l + 0.7827717662 * m - 0.8086757660 * s};
}

double square_distance(const OkLab& a, const OkLab& b) {
  double sum = 0;
  for (std::size_t i = 0; i < a.size(); ++i) sum += (a[i] - b[i]) * (a[i] - b[i]);
  return sum;
}

std::string hexadecimal(const Rgb& colour) {
  constexpr const char* kDigits = "0123456789ABCDEF";
  std::string text = "#";
  for (const int component : colour) {
    text += kDigits[component / 16];
    text += kDigits[component % 16];
  }
  return text;
}

struct Candidate {
  Rgb colour;
  OkLab place;
  double distance = std::numeric_limits<double>::infinity();  // to the nearest colour taken, squared
};

std::vector<Candidate> candidates() {
  std::vector<Candidate> result;
  for (int r = 0; r <= 255; r += kGridStep) {
    for (int g = 0; g <= 255; g += kGridStep) {
      for (int b = 0; b <= 255; b += kGridStep) {
        const Candidate candidate{{r, g, b}, to_oklab({r, g, b})};
        const auto [lightness, x, y] = candidate.place;
        if (lightness >= kMinLightness && lightness <= kMaxLightness && std::hypot(x, y) <= kMaxChroma) {
          result.push_back(candidate);
        }
      }
    }
  }
  return result;
}

}  // namespace

std::vector<std::string> distinct_colours(std::size_t count) {
  std::vector<Candidate> left = candidates();
  std::vector<std::string> colours;
  const auto take = [&](const Rgb& colour) {
    colours.push_back(hexadecimal(colour));
    const OkLab place = to_oklab(colour);
    for (Candidate& candidate : left) {
      candidate.distance = std::min(candidate.distance, square_distance(candidate.place, place));
    }
  };
  for (std::size_t i = 0; i < std::min(count, kLightScheme.size()); ++i) take(kLightScheme[i]);
  while (colours.size() < std::min(count, left.size())) {
    take(std::max_element(left.begin(), left.end(), [](const Candidate& a, const Candidate& b) {
           return a.distance < b.distance;
         })->colour);
  }
  for (std::size_t i = 0; colours.size() < count; ++i) colours.push_back(colours[i]);
  return colours;
}

}  // namespace symfold
