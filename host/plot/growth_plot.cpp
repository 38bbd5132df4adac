#include "host/plot/growth_plot.h"

#include <algorithm>
#include <charconv>
#include <cmath>

#include "host/new_file.h"
#include "host/plot/growth_axes.h"
#include "host/plot/svg_writer.h"

namespace symfold {
namespace {

constexpr double kWidth = 340;
constexpr double kHeight = 250;
constexpr double kTextSize = 10;
constexpr double kTickTextSize = 9.5;
constexpr double kExponentSize = 7;
constexpr double kLabelGap = 13;  // from a curve's end to its label
constexpr double kMarkerSize = 2.8;

constexpr const char* kInk = "#222";
constexpr const char* kQuietInk = "#555";

// Two tones of the palette of M. Okabe and K. Ito (Color universal design, 2008), one of them darkened: apart
// for every kind of colour vision, and in grey. The markers tell the curves apart too.
struct Curve {
  const char* name;
  const char* colour;
  std::optional<std::uint64_t> GrowthPoint::*count;
};
constexpr Curve kFull = {"full", "#004a7c", &GrowthPoint::full};
constexpr Curve kFolded = {"folded", "#d55e00", &GrowthPoint::folded};

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

// "÷ 9.96": three digits or more.
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
    text += " " + plot.parameter + " = " + std::to_string(point.value) + ":";
    const auto count_text = [](const auto& count) { return count ? std::to_string(*count) : "not reached"; };
    text += " full " + count_text(point.full) + ", folded " + count_text(point.folded) + ".";
  }
  return text;
}

// On the right, room for the longest number of a label.
PlotFrame frame_for(const GrowthPlot& plot) {
  double widest = 36;
  for (const Curve* curve : {&kFull, &kFolded}) {
    const GrowthPoint* const last = last_point(plot, *curve);
    if (last != nullptr) widest = std::max(widest, width_of(*(last->*curve->count)));
  }
  return {44, kWidth - widest - 14, 30, kHeight - 38};
}

class GrowthDrawing {
 public:
  explicit GrowthDrawing(const GrowthPlot& plot)
      : plot_(plot),
        axes_(plot, frame_for(plot)),
        frame_(axes_.frame()),
        svg_(kWidth, kHeight, plot.title, description_of(plot)) {}

  std::string draw();

 private:
  void draw_states_axis();
  void draw_parameter_axis();
  void draw_curve(const Curve& curve);
  void draw_marker(const Curve& curve, const GrowthPoint& point);
  void draw_labels();
  void draw_labels_at_end(const GrowthPoint& end);
  void draw_label_at_end(const Curve& curve, const GrowthPoint& end, double y);
  void draw_label_inside(const Curve& curve, const GrowthPoint& last);

  double x_of(const GrowthPoint& point) const { return axes_.x(point.value); }
  double y_of(const Curve& curve, const GrowthPoint& point) const {
    return axes_.y(static_cast<double>(*(point.*curve.count)));
  }

  const GrowthPlot& plot_;
  GrowthAxes axes_;
  const PlotFrame& frame_;
  SvgWriter svg_;
};

void GrowthDrawing::draw_states_axis() {
  const int decades = axes_.high_decade() - axes_.low_decade();
  const int every = 1 + decades / 14;
  svg_.open_group({{"stroke", "#d4d4d4"}, {"stroke-width", 0.7}});
  for (int decade = axes_.low_decade(); decade <= axes_.high_decade(); ++decade) {
    const double y = axes_.y(std::pow(10.0, decade));
    svg_.add("line", {{"x1", frame_.left}, {"y1", y}, {"x2", frame_.right}, {"y2", y}});
  }
  svg_.close_group();
  svg_.open_group({{"text-anchor", "end"}, {"font-size", kTickTextSize}, {"fill", kQuietInk}});
  for (int decade = axes_.low_decade(); decade <= axes_.high_decade(); decade += every) {
    const SvgAttribute size("font-size", kExponentSize);
    svg_.add("text", {{"x", frame_.left - 7}, {"y", axes_.y(std::pow(10.0, decade)) + 3.6}},
             "10<tspan dy=\"-4\" font-size=\"" + size.value + "\">" + std::to_string(decade) + "</tspan>");
  }
  svg_.close_group();
  const SvgAttribute middle("", (frame_.top + frame_.bottom) / 2);
  svg_.add("text",
           {{"transform", "translate(13 " + middle.value + ") rotate(-90)"}, {"text-anchor", "middle"}},
           "states");
}

void GrowthDrawing::draw_parameter_axis() {
  const double y = frame_.bottom;
  const double widest = 6.0 * static_cast<double>(std::max(std::to_string(axes_.low()).size(),
                                                           std::to_string(axes_.high()).size()));
  const std::int64_t step = axes_.step(widest + 8);
  svg_.open_group({{"stroke", kInk}, {"stroke-width", 0.8}});
  svg_.add("line", {{"x1", frame_.left}, {"y1", y}, {"x2", frame_.right}, {"y2", y}});
  for (const GrowthPoint& point : plot_.points) {
    const double length = point.value % step == 0 ? 4 : 2;
    svg_.add("line", {{"x1", x_of(point)}, {"y1", y}, {"x2", x_of(point)}, {"y2", y + length}});
  }
  svg_.close_group();
  svg_.open_group({{"text-anchor", "middle"}, {"font-size", kTickTextSize}, {"fill", kQuietInk}});
  for (const GrowthPoint& point : plot_.points) {
    if (point.value % step != 0) continue;
    svg_.add("text", {{"x", x_of(point)}, {"y", y + 14.5}}, std::to_string(point.value));
  }
  svg_.close_group();
  svg_.add("text",
           {{"x", (frame_.left + frame_.right) / 2},
            {"y", kHeight - 7},
            {"text-anchor", "middle"},
            {"font-style", "italic"}},
           xml_escaped(plot_.parameter));
}

void GrowthDrawing::draw_marker(const Curve& curve, const GrowthPoint& point) {
  const double x = x_of(point);
  const double y = y_of(curve, point);
  const std::string tip = "<title>" + xml_escaped(plot_.parameter) + " = " + std::to_string(point.value) +
                          ": " + grouped(*(point.*curve.count)) + " states</title>";
  if (&curve == &kFull) {
    svg_.add("circle", {{"cx", x}, {"cy", y}, {"r", kMarkerSize}, {"fill", curve.colour}}, tip);
  } else {
    const double side = 2 * kMarkerSize - 0.6;
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
      data += (is_drawn ? "L" : "M") + SvgAttribute("", x_of(point)).value + " " +
              SvgAttribute("", y_of(curve, point)).value;
    }
    is_drawn = has_count;
  }
  if (data.empty()) return;
  svg_.open_group(
      {{"id", curve.name}, {"stroke", curve.colour}, {"stroke-width", 1.5}, {"stroke-linejoin", "round"}});
  svg_.add("path", {{"d", data}, {"fill", "none"}});
  for (const GrowthPoint& point : plot_.points) {
    if (point.*curve.count) draw_marker(curve, point);
  }
  svg_.close_group();
}

// Name and number in two lines around y.
void GrowthDrawing::draw_label_at_end(const Curve& curve, const GrowthPoint& end, double y) {
  const double x = x_of(end) + kLabelGap;
  svg_.open_group({{"fill", curve.colour}});
  svg_.add("text", {{"x", x}, {"y", y - 2}, {"font-weight", "bold"}}, curve.name);
  svg_.add("text", {{"x", x}, {"y", y + 9.5}}, grouped(*(end.*curve.count)));
  svg_.close_group();
}

// Both curves end at one point: full ÷ factor, folded, read from top to bottom like a division.
void GrowthDrawing::draw_labels_at_end(const GrowthPoint& end) {
  constexpr double kDistance = 19;  // of the factor from either label
  constexpr double kHalf = 11;      // of a label's height
  const double full = y_of(kFull, end);
  const double folded = y_of(kFolded, end);
  const double reach = std::max((folded - full) / 2, kDistance);
  const double middle =
      std::clamp((full + folded) / 2, frame_.top - kHalf + reach, frame_.bottom + kHalf - reach);
  draw_label_at_end(kFull, end, middle - reach);
  draw_label_at_end(kFolded, end, middle + reach);
  svg_.add("text", {{"x", x_of(end) + kLabelGap}, {"y", middle + 3.5}, {"fill", kInk}}, factor_text(end));
}

// The label of a curve that ends before the other one, in one line on the side where the other one is not.
void GrowthDrawing::draw_label_inside(const Curve& curve, const GrowthPoint& last) {
  constexpr double kRoom = 130;
  const double x = x_of(last);
  const bool is_left_of_end = &curve == &kFull && x - frame_.left > kRoom;
  std::string text =
      std::string("<tspan font-weight=\"bold\">") + curve.name + "</tspan> " + grouped(*(last.*curve.count));
  if (last.full && last.folded) {
    text += std::string("<tspan fill=\"") + kInk + "\">  " + factor_text(last) + "</tspan>";
  }
  svg_.add("text",
           {{"x", is_left_of_end ? x + 4 : x - 4},
            {"y", y_of(curve, last) + (&curve == &kFull ? -7 : 15)},
            {"text-anchor", is_left_of_end ? "end" : "start"},
            {"fill", curve.colour}},
           text);
}

void GrowthDrawing::draw_labels() {
  const GrowthPoint* const full = last_point(plot_, kFull);
  const GrowthPoint* const folded = last_point(plot_, kFolded);
  if (full != nullptr && full == folded) return draw_labels_at_end(*full);
  for (const Curve* curve : {&kFull, &kFolded}) {
    const GrowthPoint* const own = curve == &kFull ? full : folded;
    const GrowthPoint* const other = curve == &kFull ? folded : full;
    if (own == nullptr) continue;
    if (other != nullptr && other->value > own->value) {
      draw_label_inside(*curve, *own);
    } else {
      draw_label_at_end(*curve, *own, y_of(*curve, *own));
    }
  }
}

std::string GrowthDrawing::draw() {
  svg_.add("rect", {{"width", kWidth}, {"height", kHeight}, {"fill", "#fff"}});
  svg_.open_group({{"font-family", "Helvetica, Arial, 'Liberation Sans', 'DejaVu Sans', sans-serif"},
                   {"font-size", kTextSize},
                   {"fill", kInk}});
  svg_.add("text", {{"x", frame_.left}, {"y", 15.0}, {"font-size", 11.0}, {"font-weight", "bold"}},
           xml_escaped(plot_.title));
  draw_states_axis();
  draw_parameter_axis();
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
