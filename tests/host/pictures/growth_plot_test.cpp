// Growth plots, read back as XML and as numbers.

#include "host/pictures/growth_plot.h"

#include <gtest/gtest.h>

#include <cmath>
#include <map>
#include <random>
#include <regex>

namespace symfold {
namespace {

// Says what is wrong with the document: tags that do not match, attributes without quotes, stray markup
// characters.
std::string xml_error(const std::string& text) {
  static const std::regex tag(R"re(<(/?)([a-z]+)((?: [A-Za-z0-9:-]+="[^"<]*")*)(/?)>)re");
  static const std::regex plain(R"re((?:[^<>&]|&(?:amp|lt|gt|quot);)*)re");
  constexpr std::string_view kHead = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n";
  if (!text.starts_with(kHead)) return "no XML declaration";
  std::vector<std::string> open;
  auto rest = text.cbegin() + kHead.size();
  for (std::smatch match; std::regex_search(rest, text.cend(), match, tag); rest = match.suffix().first) {
    if (!std::regex_match(match.prefix().str(), plain)) return "stray markup: " + match.prefix().str();
    if (match[1].length() == 0) open.push_back(match[2]);
    if (match[1].length() == 0 && match[4].length() == 0) continue;
    if (open.empty() || open.back() != match[2]) return "unexpected end of " + match[2].str();
    open.pop_back();
  }
  return open.empty() && std::string(rest, text.cend()) == "\n" ? "" : "text or open tags at the end";
}

// All matches' groups as numbers.
std::vector<std::vector<double>> numbers_at(const std::string& text, const std::string& pattern) {
  const std::regex regex(pattern);
  std::vector<std::vector<double>> found;
  for (std::sregex_iterator match(text.begin(), text.end(), regex), end; match != end; ++match) {
    std::vector<double>& groups = found.emplace_back();
    for (std::size_t i = 1; i < match->size(); ++i) groups.push_back(std::stod((*match)[i]));
  }
  return found;
}

// Expects the points of a curve where their values and the logarithms of their counts put them by the axes'
// labels, and lines between neighbours only.
void expect_curve(const std::string& svg, const GrowthPlot& plot, const std::string& name,
                  std::optional<std::uint64_t> GrowthPoint::*count) {
  const auto decades = numbers_at(svg, R"re(y="([0-9.]+)">10<tspan[^>]*>([0-9]+)</tspan>)re");
  ASSERT_GE(decades.size(), 2U);
  const double decade = (decades.back()[0] - decades[0][0]) / (decades.back()[1] - decades[0][1]);
  const double zero = decades[0][0] - decade * decades[0][1];
  EXPECT_LT(decade, 0);
  std::smatch path;
  std::regex_search(svg, path, std::regex("<g id=\"" + name + "\"[^>]*>\n<path d=\"([^\"]*)\""));
  const std::string data = path[1];
  const auto points = numbers_at(data, R"re([ML]([0-9.]+) ([0-9.]+))re");
  std::vector<const GrowthPoint*> expected;
  std::size_t pieces = 0;
  for (const GrowthPoint& point : plot.points) {
    if (!(point.*count)) continue;
    const bool is_joined = &point != plot.points.data() && ((&point - 1)->*count).has_value();
    pieces += is_joined ? 0 : 1;
    expected.push_back(&point);
  }
  EXPECT_EQ(std::count(data.begin(), data.end(), 'M'), static_cast<std::ptrdiff_t>(pieces));
  ASSERT_EQ(points.size(), expected.size());
  for (std::size_t i = 0; i < points.size(); ++i) {
    const double logarithm = std::log10(static_cast<double>(*(expected[i]->*count)));
    EXPECT_NEAR(points[i][1], zero + decade * logarithm - 3.6, 0.05);
    const auto share = static_cast<double>(expected[i]->value - plot.points.front().value) /
                       static_cast<double>(plot.points.back().value - plot.points.front().value);
    const auto x = numbers_at(svg, R"re(<line x1="([0-9.]+)" y1="212" x2="\1" y2="21[0-9.]+"/>)re");
    ASSERT_EQ(x.size(), plot.points.size());
    EXPECT_NEAR(points[i][0], x.front()[0] + share * (x.back()[0] - x.front()[0]), 0.02);
  }
}

void expect_sound(const GrowthPlot& plot) {
  const std::string svg = growth_svg(plot);
  SCOPED_TRACE(plot.title);
  EXPECT_EQ(xml_error(svg), "");
  expect_curve(svg, plot, "full", &GrowthPoint::full);
  expect_curve(svg, plot, "folded", &GrowthPoint::folded);
  for (const auto& position : numbers_at(svg, R"re( x="([0-9.-]+)" y="([0-9.-]+)")re")) {
    EXPECT_TRUE(position[0] > 0 && position[0] < 340 && position[1] > 7 && position[1] < 250);
  }
}

TEST(GrowthPlot, DrawsPointsInProportionToLogarithms) {
  for (std::uint64_t seed = 0; seed < 30; ++seed) {
    std::mt19937_64 random(seed);
    GrowthPlot plot{"seed <" + std::to_string(seed) + "> & \"more\"\n", "N", {}};
    const std::int64_t first = static_cast<std::int64_t>(random() % 20) - 5;
    const std::int64_t count = 2 + static_cast<std::int64_t>(random() % 30);
    const std::int64_t spacing = 1 + static_cast<std::int64_t>(random() % 3);
    for (std::int64_t i = 0; i < count; ++i) {
      const std::int64_t value = first + i * spacing;
      GrowthPoint& point = plot.points.emplace_back(GrowthPoint{value, std::to_string(value), {}, {}});
      if (random() % 4 != 0) point.full = 1 + (random() >> (random() % 64));
      if (random() % 4 != 0) point.folded = 1 + (random() >> (random() % 64));
    }
    expect_sound(plot);
  }
}

TEST(GrowthPlot, NamesTheLastNumbersAndTheFactorBetweenThem) {
  GrowthPlot plot{"Philosophers", "N", {{3, "3", 45, 17}, {9, "9", 92205, 10257}, {10, "10", 328393, 32973}}};
  const auto expect_text = [&](const std::string& text, bool is_there) {
    EXPECT_EQ(growth_svg(plot).find(">" + text + "</text>") != std::string::npos, is_there) << text;
  };
  for (const char* text : {"Philosophers", "328\u2009393", "32\u2009973", "÷ 9.96"}) expect_text(text, true);
  plot.points.back().full.reset();
  for (const char* text : {"92\u2009205", "32\u2009973", "÷ 8.99"}) expect_text(text, true);
  expect_text("÷ 9.96", false);
  plot.points = {{7, "7", 1'000'000'000'000, 1'000'000}};
  expect_text("÷ 1\u2009000\u2009000", true);
  EXPECT_EQ(growth_svg(plot).find("nan"), std::string::npos);
  plot.points = {{7, "7", {}, {}}};
  EXPECT_EQ(xml_error(growth_svg(plot)), "");
  EXPECT_NE(growth_svg(plot).find("full not reached, folded not reached"), std::string::npos);
}

}  // namespace
}  // namespace symfold
