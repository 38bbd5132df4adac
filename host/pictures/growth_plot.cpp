#include "host/pictures/growth_plot.h"

#include <algorithm>
#include <charconv>
#include <cmath>

#include "host/new_file.h"
#include "host/pictures/growth_axes.h"
#include "host/pictures/svg_writer.h"

namespace symfold {
namespace {

constexpr double kWidth = 340;
constexpr double kHeight = 250;
constexpr double kTextSize = 10;
constexpr double kLineHeight = 11.5;
constexpr double kLabelGap = 13;  // from a curve's end to its label

// Two tones of the palette of M. Okabe and K. Ito (Color universal design, 2008), one of them darkened,
// differ for every kind of colour vision, and in grey. The markers tell the curves apart too. The folded
// curve is the thinner one, so that both are seen where they coincide.
struct Curve {
  const char* name;
  const char* colour;
  double width;
  std::optional<std::uint64_t> GrowthPoint::*count;
};
constexpr Curve kFull = {"full", "#004a7c", 1.9, &GrowthPoint::full};
constexpr Curve kFolded = {"folded", "#d55e00", 1.2, &GrowthPoint::folded};

// "328 393" with thin spaces.
std::string grouped(std::uint64_t number) {
  std::string text = std::to_string(number);
  for (std::size_t end = text.size(); end > 3; end -= 3) text.insert(end - 3, "\u2009");
  return text;
}

double width_of(std::uint64_t number) {
  constexpr double kDigit = 5.6;
  constexpr double kThinSpace = 2;
  const auto digits = static_cast<double>(std::to_string(number).size());
  return digits * kDigit + std::floor((digits - 1) / 3) * kThinSpace;
}

// "÷ 9.96", with at least three digits.
std::string factor_text(const GrowthPoint& point) {
  const double factor = static_cast<double>(*point.full) / static_cast<double>(*point.folded);
  if (factor >= 99.95) return "÷ " + grouped(static_cast<std::uint64_t>(std::llround(factor)));
  char text[32];
  const int decimals = factor < 9.995 ? 2 : 1;
  const auto end = std::to_chars(text, text + sizeof text, factor, std::chars_format::fixed, decimals).ptr;
  return "÷ " + std::string(text, end);
}

// The last point that has a number on the curve.
const GrowthPoint* last_point(const GrowthPlot& plot, const Curve& curve) {
  const auto found = std::find_if(plot.points.rbegin(), plot.points.rend(),
                                  [&](const GrowthPoint& point) { return (point.*curve.count).has_value(); });
  return found == plot.points.rend() ? nullptr : &*found;
}

std::string description_of(const GrowthPlot& plot) {
  std::string text = "Numbers of states over " + plot.parameter + ", on a logarithmic axis.";
  for (const GrowthPoint& point : plot.points) {
    text += " " + plot.parameter + " = " + point.text + ":";
    const auto count_text = [](const auto& count) { return count ? std::to_string(*count) : "not reached"; };
    text += " full " + count_text(point.full) + ", folded " + count_text(point.folded) + ".";
  }
  return text;
}

// On the right there is room for the longest number of a label.
PlotFrame frame_for(const GrowthPlot& plot) {
  double widest = 36;
  for (const Curve* curve : {&kFull, &kFolded}) {
    const GrowthPoint* const last = last_point(plot, *curve);
    if (last != nullptr) widest = std::max(widest, width_of(*(last->*curve->count)));
  }
  return {44, kWidth - widest - 14, 30, kHeight - 38};
}

// Returns true if the full curve ends before the folded one; then its label stands above it.
bool is_full_cut(const GrowthPlot& plot) {
  const GrowthPoint* const full = last_point(plot, kFull);
  const GrowthPoint* const folded = last_point(plot, kFolded);
  return full != nullptr && folded != nullptr && full->value < folded->value;
}

class GrowthDrawing {
 public:
  explicit GrowthDrawing(const GrowthPlot& plot)
      : plot_(plot),
        axes_(plot, frame_for(plot), is_full_cut(plot) ? kLineHeight : 0),
        frame_(axes_.frame()),
        svg_(kWidth, kHeight, plot.title, description_of(plot)) {}

  std::string draw();

 private:
  void draw_curve(const Curve& curve);
  void draw_marker(const Curve& curve, const GrowthPoint& point);
  void draw_labels();
  void draw_division(const GrowthPoint& end);
  void draw_label(const Curve& curve, const GrowthPoint& last, double x, double y,
                  const char* anchor = "start");
  void draw_label_inside(const Curve& curve, const GrowthPoint& last);
  void draw_factor(const GrowthPoint& point, double x, double y, const char* anchor = "start");

  double x_of(const GrowthPoint& point) const { return axes_.x(point.value); }
  double y_of(const Curve& curve, const GrowthPoint& point) const {
    return axes_.y(static_cast<double>(*(point.*curve.count)));
  }

  const GrowthPlot& plot_;
  GrowthAxes axes_;
  const PlotFrame& frame_;
  SvgWriter svg_;
};

// Markers are smaller if the points are close.
void GrowthDrawing::draw_marker(const Curve& curve, const GrowthPoint& point) {
  const double distance = (frame_.right - frame_.left) / static_cast<double>(plot_.points.size());
  const double radius = std::clamp(distance / 4, 1.3, 3.2);
  const double x = x_of(point);
  const double y = y_of(curve, point);
  const std::string tip = "<title>" + xml_escaped(plot_.parameter) + " = " + point.text + ": " +
                          grouped(*(point.*curve.count)) + " states</title>";
  if (&curve == &kFull) {
    svg_.add("circle", {{"cx", x}, {"cy", y}, {"r", radius}, {"fill", curve.colour}, {"stroke", "none"}},
             tip);
  } else {
    const double side = 1.5 * radius;
    svg_.add("rect",
             {{"x", x - side / 2}, {"y", y - side / 2}, {"width", side}, {"height", side}, {"fill", "#fff"}},
             tip);
  }
}

void GrowthDrawing::draw_curve(const Curve& curve) {
  std::string data;
  bool is_drawn = false;  // up to the point before
  for (const GrowthPoint& point : plot_.points) {
    const bool has_count = (point.*curve.count).has_value();
    if (has_count) {
      data += (is_drawn ? "L" : "M") + svg_number(x_of(point)) + " " + svg_number(y_of(curve, point));
    }
    is_drawn = has_count;
  }
  if (data.empty()) return;
  svg_.open_group({{"id", curve.name},
                   {"stroke", curve.colour},
                   {"stroke-width", curve.width},
                   {"stroke-linejoin", "round"}});
  svg_.add("path", {{"d", data}, {"fill", "none"}});
  for (const GrowthPoint& point : plot_.points) {
    if (point.*curve.count) draw_marker(curve, point);
  }
  svg_.close_group();
}

// Name and number in two lines around y.
void GrowthDrawing::draw_label(const Curve& curve, const GrowthPoint& last, double x, double y,
                               const char* anchor) {
  svg_.open_group({{"fill", curve.colour}, {"text-anchor", anchor}});
  svg_.add("text", {{"x", x}, {"y", y - 2}, {"font-weight", "bold"}}, curve.name);
  svg_.add("text", {{"x", x}, {"y", y - 2 + kLineHeight}}, grouped(*(last.*curve.count)));
  svg_.close_group();
}

void GrowthDrawing::draw_factor(const GrowthPoint& point, double x, double y, const char* anchor) {
  if (!point.full || !point.folded) return;
  svg_.add("text", {{"x", x}, {"y", y + 3.5}, {"text-anchor", anchor}}, factor_text(point));
}

// For curves that end at one point: full ÷ factor, folded, which reads from top to bottom like a division.
void GrowthDrawing::draw_division(const GrowthPoint& end) {
  constexpr double kDistance = 19;  // of the factor from either label
  constexpr double kHalf = 11;      // of a label's height
  const double full = y_of(kFull, end);
  const double folded = y_of(kFolded, end);
  const double reach = std::max((folded - full) / 2, kDistance);
  const double middle =
      std::clamp((full + folded) / 2, frame_.top - kHalf + reach, frame_.bottom + kHalf - reach);
  const double x = x_of(end) + kLabelGap;
  draw_label(kFull, end, x, middle - reach);
  draw_label(kFolded, end, x, middle + reach);
  draw_factor(end, x, middle);
  if (reach < 2 * kDistance) return;
  svg_.open_group({{"stroke", "#999"}, {"stroke-width", 0.7}});
  for (const double side : {-1.0, 1.0}) {
    svg_.add("line", {{"x1", x + 3},
                      {"y1", middle + side * (kHalf - 2)},
                      {"x2", x + 3},
                      {"y2", middle + side * (reach - kHalf - 4)}});
  }
  svg_.close_group();
}

// The label of a curve that ends before the other one, with the factor, on the side where the other one is
// not.
void GrowthDrawing::draw_label_inside(const Curve& curve, const GrowthPoint& last) {
  const bool is_above = &curve == &kFull;
  const double x = x_of(last);
  const bool is_left = is_above && x - frame_.left > width_of(*(last.*curve.count)) + 4;
  const char* const anchor = is_left ? "end" : "start";
  const double label_x = is_left ? x + 4 : x - 4;
  const double y = y_of(curve, last) + (is_above ? -28 : 17);
  draw_label(curve, last, label_x, y, anchor);
  draw_factor(last, label_x, y - 2 + 2 * kLineHeight - 3.5, anchor);
}

void GrowthDrawing::draw_labels() {
  const GrowthPoint* const full = last_point(plot_, kFull);
  const GrowthPoint* const folded = last_point(plot_, kFolded);
  if (full != nullptr && full == folded) return draw_division(*full);
  const auto draw_one = [&](const Curve& curve, const GrowthPoint* own, const GrowthPoint* other) {
    if (own == nullptr) return;
    if (other != nullptr && other->value > own->value) return draw_label_inside(curve, *own);
    draw_label(curve, *own, x_of(*own) + kLabelGap, y_of(curve, *own));
  };
  draw_one(kFull, full, folded);
  draw_one(kFolded, folded, full);
}

std::string GrowthDrawing::draw() {
  svg_.add("rect", {{"width", kWidth}, {"height", kHeight}, {"fill", "#fff"}});
  svg_.open_group({{"font-family", "Helvetica, Arial, 'Liberation Sans', 'DejaVu Sans', sans-serif"},
                   {"font-size", kTextSize},
                   {"fill", kPlotInk}});
  svg_.add("text", {{"x", frame_.left}, {"y", 15.0}, {"font-size", 11.0}, {"font-weight", "bold"}},
           xml_escaped(plot_.title));
  axes_.draw(plot_, svg_);
  draw_curve(kFull);
  draw_curve(kFolded);
  draw_labels();
  svg_.close_group();
  return svg_.finish();
}

}  // namespace

std::string growth_svg(const GrowthPlot& plot) { return GrowthDrawing(plot).draw(); }

void write_growth_plot(const GrowthPlot& plot, const std::string& path) {
  NewFile out(path);
  out.append(growth_svg(plot));
  out.commit();
}

}  // namespace symfold
