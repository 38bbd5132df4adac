// Where the numbers of a growth plot lie in its image.

#ifndef SYMFOLD_HOST_PICTURES_GROWTH_AXES_H
#define SYMFOLD_HOST_PICTURES_GROWTH_AXES_H

#include <cstdint>

#include "host/pictures/growth_plot.h"
#include "host/pictures/svg_writer.h"

namespace symfold {

// The ink of axes and texts.
inline constexpr const char* kPlotInk = "#222";

// In pixels; y grows downwards.
struct PlotFrame {
  double left = 0;
  double right = 0;
  double top = 0;
  double bottom = 0;
};

// The parameter stands on a linear axis, the states on a logarithmic one from one power of ten to another.
class GrowthAxes {
 public:
  // At least `headroom` pixels stay free above the largest number.
  GrowthAxes(const GrowthPlot& plot, const PlotFrame& frame, double headroom);

  double x(std::int64_t value) const;
  double y(double count) const;

  const PlotFrame& frame() const { return frame_; }

  // Grid, marks, numbers and names. `plot` is the one that the axes were made for.
  void draw(const GrowthPlot& plot, SvgWriter& svg) const;

 private:
  void draw_decades(SvgWriter& svg) const;
  void draw_parameter(const GrowthPlot& plot, SvgWriter& svg) const;
  std::int64_t step() const;
  bool is_numbered(const GrowthPoint& point, std::int64_t step) const;

  PlotFrame frame_;
  std::int64_t low_ = 0;
  std::int64_t high_ = 0;
  int low_decade_ = 0;
  std::int64_t spacing_ = 1;  // of the values, the greatest that fits them all
  std::size_t longest_ = 1;   // of their texts
  int high_decade_ = 1;       // above the low one
};

}  // namespace symfold

#endif  // SYMFOLD_HOST_PICTURES_GROWTH_AXES_H
