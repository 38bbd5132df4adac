#include "host/plot/growth_axes.h"

#include <algorithm>
#include <cmath>

namespace symfold {
namespace {

// Between the frame's sides and the first and last value.
constexpr double kInset = 8;

}  // namespace

GrowthAxes::GrowthAxes(const GrowthPlot& plot, const PlotFrame& frame) : frame_(frame) {
  if (!plot.points.empty()) {
    low_ = plot.points.front().value;
    high_ = plot.points.back().value;
  }
  std::vector<double> logarithms;
  for (const GrowthPoint& point : plot.points) {
    for (const auto& count : {point.full, point.folded}) {
      if (count) logarithms.push_back(std::log10(static_cast<double>(*count)));
    }
  }
  if (logarithms.empty()) return;
  const auto [least, most] = std::minmax_element(logarithms.begin(), logarithms.end());
  low_decade_ = static_cast<int>(std::floor(*least));
  high_decade_ = std::max(low_decade_ + 1, static_cast<int>(std::ceil(*most)));
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

std::int64_t GrowthAxes::step(double distance) const {
  const double length = static_cast<double>(high_) - static_cast<double>(low_);
  const double least = length * distance / (frame_.right - frame_.left - 2 * kInset);
  constexpr std::int64_t kLargest = 1'000'000'000'000'000'000;
  for (std::int64_t power = 1; power < kLargest; power *= 10) {
    for (const std::int64_t factor : {1, 2, 5}) {
      if (static_cast<double>(power * factor) >= least) return power * factor;
    }
  }
  return kLargest;
}

}  // namespace symfold
