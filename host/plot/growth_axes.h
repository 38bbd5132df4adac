// Where the numbers of a growth plot lie in its image.

#ifndef SYMFOLD_HOST_PLOT_GROWTH_AXES_H
#define SYMFOLD_HOST_PLOT_GROWTH_AXES_H

#include <cstdint>

#include "host/plot/growth_plot.h"

namespace symfold {

// In pixels; y grows downwards.
struct PlotFrame {
  double left = 0;
  double right = 0;
  double top = 0;
  double bottom = 0;
};

// The parameter on a linear axis, the states on a logarithmic one from one power of ten to another.
class GrowthAxes {
 public:
  GrowthAxes(const GrowthPlot& plot, const PlotFrame& frame);

  double x(std::int64_t value) const;
  double y(double count) const;

  const PlotFrame& frame() const { return frame_; }
  std::int64_t low() const { return low_; }
  std::int64_t high() const { return high_; }
  int low_decade() const { return low_decade_; }
  int high_decade() const { return high_decade_; }  // above the low one

  // Marks on the parameter's axis are at the multiples of a step of 1, 2 or 5 times a power of ten, the
  // smallest one that keeps them `distance` pixels apart.
  std::int64_t step(double distance) const;

 private:
  PlotFrame frame_;
  std::int64_t low_ = 0;
  std::int64_t high_ = 0;
  int low_decade_ = 0;
  int high_decade_ = 1;
};

}  // namespace symfold

#endif  // SYMFOLD_HOST_PLOT_GROWTH_AXES_H
