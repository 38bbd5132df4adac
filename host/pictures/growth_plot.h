// The curves that papers show: the number of states of a model over a parameter, full and folded.

#ifndef SYMFOLD_HOST_PICTURES_GROWTH_PLOT_H
#define SYMFOLD_HOST_PICTURES_GROWTH_PLOT_H

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace symfold {

// The numbers of states for one value of the parameter, each at least 1; none if a run was not complete.
struct GrowthPoint {
  std::int64_t value = 0;  // in a unit that all points share, of at most 10^18
  std::string text;        // the value for people: "7", "0.25"
  std::optional<std::uint64_t> full;
  std::optional<std::uint64_t> folded;
};

struct GrowthPlot {
  std::string title;
  std::string parameter;            // "N"
  std::vector<GrowthPoint> points;  // by ascending values, each value once
};

// Returns the plot as a stand-alone SVG document, for a column of a paper (340 pixels or 90 mm wide). The
// states stand on a logarithmic axis, and beside each curve its last number and the factor by which folding
// divides the last full state space that was reached. A curve has a gap where a number is missing.
std::string growth_svg(const GrowthPlot& plot);

// Writes it to a file. Throws std::runtime_error "PATH: error: cannot be written: REASON".
void write_growth_plot(const GrowthPlot& plot, const std::string& path);

}  // namespace symfold

#endif  // SYMFOLD_HOST_PICTURES_GROWTH_PLOT_H
