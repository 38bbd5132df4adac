#include "host/pictures/growth_axes.h"

#include <algorithm>
#include <cmath>
#include <numeric>
#include <string>

namespace symfold {
namespace {

// Between the frame's sides and the first and last value.
constexpr double kInset = 8;

constexpr double kNumberSize = 9.5;
constexpr const char* kQuietInk = "#555";

}  // namespace

GrowthAxes::GrowthAxes(const GrowthPlot& plot, const PlotFrame& frame, double headroom) : frame_(frame) {
  if (!plot.points.empty()) {
    low_ = plot.points.front().value;
    high_ = plot.points.back().value;
  }
  std::int64_t spacing = 0;
  for (const GrowthPoint& point : plot.points) {
    spacing = std::gcd(spacing, point.value - low_);
    longest_ = std::max(longest_, point.text.size());
  }
  spacing_ = std::max<std::int64_t>(spacing, 1);
  std::vector<double> counts;
  for (const GrowthPoint& point : plot.points) {
    for (const auto& count : {point.full, point.folded}) {
      if (count) counts.push_back(static_cast<double>(*count));
    }
  }
  if (counts.empty()) return;
  const auto [least, most] = std::minmax_element(counts.begin(), counts.end());
  low_decade_ = static_cast<int>(std::floor(std::log10(*least)));
  high_decade_ = std::max(low_decade_ + 1, static_cast<int>(std::ceil(std::log10(*most))));
  while (y(*most) < frame_.top + headroom) ++high_decade_;
}

// A single value lies in the middle.
double GrowthAxes::x(std::int64_t value) const {
  const double length = static_cast<double>(high_) - static_cast<double>(low_);
  const double share = length == 0 ? 0.5 : (static_cast<double>(value) - static_cast<double>(low_)) / length;
  return frame_.left + kInset + share * (frame_.right - frame_.left - 2 * kInset);
}

double GrowthAxes::y(double count) const {
  const double share = (std::log10(count) - low_decade_) / (high_decade_ - low_decade_);
  return frame_.bottom - share * (frame_.bottom - frame_.top);
}

// Numbers stand at every step-th value, where the step is 1, 2 or 5 times a power of ten: the smallest one
// with room for the numbers.
std::int64_t GrowthAxes::step() const {
  constexpr double kDigit = 6;
  constexpr double kGap = 8;
  constexpr std::int64_t kMaxStep = 1'000'000'000'000'000'000;
  const double distance = kDigit * static_cast<double>(longest_) + kGap;
  const double length =
      (static_cast<double>(high_) - static_cast<double>(low_)) / static_cast<double>(spacing_);
  const double least = length * distance / (frame_.right - frame_.left - 2 * kInset);
  for (std::int64_t power = 1; power < kMaxStep; power *= 10) {
    for (const std::int64_t factor : {1, 2, 5}) {
      if (static_cast<double>(power * factor) >= least) return power * factor;
    }
  }
  return kMaxStep;
}

// Values that are spaced by 1 have numbers at the multiples of the step.
bool GrowthAxes::is_numbered(const GrowthPoint& point, std::int64_t step) const {
  const std::int64_t offset = ((low_ % spacing_) + spacing_) % spacing_;
  return (point.value - offset) / spacing_ % step == 0;
}

// Draws the decades and, if there are few, their tenths.
void GrowthAxes::draw_decades(SvgWriter& svg) const {
  const int decades = high_decade_ - low_decade_;
  const auto draw_line = [&](double count, const char* colour) {
    svg.add(
        "line",
        {{"x1", frame_.left}, {"y1", y(count)}, {"x2", frame_.right}, {"y2", y(count)}, {"stroke", colour}});
  };
  svg.open_group({{"stroke-width", 0.7}});
  for (int decade = low_decade_; decade < high_decade_; ++decade) {
    for (int factor = 2; decades <= 2 && factor < 10; ++factor) {
      draw_line(factor * std::pow(10.0, decade), "#eee");
    }
    draw_line(std::pow(10.0, decade + 1), "#d0d0d0");
  }
  svg.close_group();
  svg.open_group({{"text-anchor", "end"}, {"font-size", kNumberSize}, {"fill", kQuietInk}});
  for (int decade = low_decade_; decade <= high_decade_; decade += 1 + decades / 14) {
    svg.add("text", {{"x", frame_.left - 7}, {"y", y(std::pow(10.0, decade)) + 3.6}},
            "10<tspan dy=\"-4\" font-size=\"7\">" + std::to_string(decade) + "</tspan>");
  }
  svg.close_group();
}

void GrowthAxes::draw_parameter(const GrowthPlot& plot, SvgWriter& svg) const {
  const double bottom = frame_.bottom;
  const std::int64_t numbered = step();
  svg.open_group({{"stroke", kPlotInk}, {"stroke-width", 0.8}});
  svg.add("line", {{"x1", frame_.left}, {"y1", bottom}, {"x2", frame_.right}, {"y2", bottom}});
  for (const GrowthPoint& point : plot.points) {
    const double at = x(point.value);
    const double length = is_numbered(point, numbered) ? 4 : 2;
    svg.add("line", {{"x1", at}, {"y1", bottom}, {"x2", at}, {"y2", bottom + length}});
  }
  svg.close_group();
  svg.open_group({{"text-anchor", "middle"}, {"font-size", kNumberSize}, {"fill", kQuietInk}});
  for (const GrowthPoint& point : plot.points) {
    if (!is_numbered(point, numbered)) continue;
    svg.add("text", {{"x", x(point.value)}, {"y", bottom + 14.5}}, point.text);
  }
  svg.close_group();
}

void GrowthAxes::draw(const GrowthPlot& plot, SvgWriter& svg) const {
  draw_decades(svg);
  draw_parameter(plot, svg);
  const std::string middle = svg_number((frame_.top + frame_.bottom) / 2);
  svg.open_group({{"text-anchor", "middle"}});
  svg.add("text", {{"transform", "translate(13 " + middle + ") rotate(-90)"}}, "states");
  svg.add("text",
          {{"x", (frame_.left + frame_.right) / 2}, {"y", frame_.bottom + 31}, {"font-style", "italic"}},
          xml_escaped(plot.parameter));
  svg.close_group();
}

}  // namespace symfold
