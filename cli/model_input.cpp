#include "cli/model_input.h"

#include <algorithm>
#include <charconv>
#include <cstdlib>
#include <filesystem>
#include <string_view>

#include "cli/advice.h"
#include "host/language/model_reader.h"

namespace symfold {
namespace {

constexpr std::int64_t kMaxUnits = 1'000'000'000'000'000'000;  // sums of two fit in 64 bits
constexpr int kMaxExponent = 400;                              // no double is beyond
constexpr int kMaxPlainDecimals = 18;                          // more are written with an exponent
constexpr std::size_t kMaxRangeValues = 10'000;

// units * 10^-decimals.
struct Decimal {
  std::int64_t units = 0;
  int decimals = 0;
};

// Writes the number with more decimals. Returns false if it gets too long.
bool refine(Decimal& number, int decimals) {
  for (; number.decimals < decimals && number.units != 0; ++number.decimals) {
    if (std::abs(number.units) > kMaxUnits / 10) return false;
    number.units *= 10;
  }
  number.decimals = std::max(number.decimals, decimals);
  return true;
}

// The length of the digits at the text's start, which are appended to the units; nothing if these get too
// long.
std::optional<std::size_t> take_digits(std::string_view text, std::int64_t& units) {
  std::size_t length = 0;
  for (; length < text.size() && text[length] >= '0' && text[length] <= '9'; ++length) {
    if (units > (kMaxUnits - 9) / 10) return std::nullopt;
    units = 10 * units + (text[length] - '0');
  }
  return length;
}

// Digits with an optional '-' before them, a fraction and an exponent.
std::optional<Decimal> parse_decimal(std::string_view text) {
  Decimal number;
  const bool is_negative = text.starts_with('-');
  if (is_negative) text.remove_prefix(1);
  const auto whole = take_digits(text, number.units);
  if (!whole || *whole == 0) return std::nullopt;
  text.remove_prefix(*whole);
  if (text.starts_with('.')) {
    const auto fraction = take_digits(text.substr(1), number.units);
    if (!fraction || *fraction == 0) return std::nullopt;
    number.decimals = static_cast<int>(*fraction);
    text.remove_prefix(1 + *fraction);
  }
  if (text.starts_with('e') || text.starts_with('E')) {
    text.remove_prefix(text.starts_with("e+") || text.starts_with("E+") ? 2 : 1);
    int exponent = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), exponent);
    if (error != std::errc() || std::abs(exponent) > kMaxExponent) return std::nullopt;
    number.decimals -= exponent;
    text.remove_prefix(static_cast<std::size_t>(end - text.data()));
  }
  if (!text.empty() || !refine(number, 0)) return std::nullopt;
  if (is_negative) number.units = -number.units;
  return number;
}

std::vector<std::string_view> split(std::string_view text, std::string_view separator) {
  std::vector<std::string_view> parts;
  for (std::size_t end = text.find(separator); end != std::string_view::npos; end = text.find(separator)) {
    parts.push_back(text.substr(0, end));
    text.remove_prefix(end + separator.size());
  }
  parts.push_back(text);
  return parts;
}

// LOW..HIGH, LOW:HIGH or LOW:STEP:HIGH. Returns what is wrong with it, or an empty text.
std::string read_range(std::string_view text, ParameterRange& range) {
  const bool has_colons = text.find(':') != std::string_view::npos;
  std::vector<std::string_view> parts = split(text, has_colons ? ":" : "..");
  if (parts.size() != 2 && !(has_colons && parts.size() == 3)) {
    return "expected a range LOW..HIGH, LOW:HIGH or LOW:STEP:HIGH";
  }
  if (parts.size() == 2) parts.insert(parts.begin() + 1, "1");
  std::vector<Decimal> numbers;
  for (const std::string_view part : parts) {
    const std::optional<Decimal> number = parse_decimal(part);
    if (!number)
      return "expected a number of at most 18 digits in the range, got '" + std::string(part) + "'";
    numbers.push_back(*number);
    range.decimals = std::max(range.decimals, number->decimals);
  }
  for (Decimal& number : numbers) {
    if (!refine(number, range.decimals)) return "expected a range of numbers of at most 18 digits in all";
  }
  range.low = numbers[0].units;
  range.step = numbers[1].units;
  const std::int64_t high = numbers[2].units;
  if (range.step <= 0) return "expected a step above 0, got " + std::string(parts[1]);
  if (range.low > high) {
    return "expected a range from a low value to a high one, got " + std::string(parts[0]) + " before " +
           std::string(parts[2]);
  }
  const std::int64_t steps = (high - range.low) / range.step;
  if (steps >= static_cast<std::int64_t>(kMaxRangeValues)) {
    return "expected a range of at most " + std::to_string(kMaxRangeValues) + " values, got more";
  }
  range.count = static_cast<std::size_t>(steps) + 1;
  return "";
}

// Takes one NAME=VALUE.
std::string read_constant(std::string_view text, ModelInput& input) {
  const std::size_t equals = text.find('=');
  if (equals == std::string_view::npos || equals == 0) {
    return "expected NAME=VALUE, got '" + std::string(text) + "'";
  }
  const std::string_view start = text.substr(0, equals + 1);
  const std::string_view value = text.substr(equals + 1);
  if (std::any_of(input.constants.begin(), input.constants.end(),
                  [&](const std::string& constant) { return constant.starts_with(start); })) {
    return "expected one value of " + std::string(text.substr(0, equals)) + ", got a second one";
  }
  if (value.find(':') != std::string_view::npos || value.find("..") != std::string_view::npos) {
    ParameterRange range{input.constants.size(), std::string(text.substr(0, equals))};
    std::string error = read_range(value, range);
    if (!error.empty()) return error;
    if (input.range)
      return "expected one range of a constant's values, got a second one after " +
             input.constants[input.range->position];
    input.range = std::move(range);
  }
  input.constants.emplace_back(text);
  return "";
}

}  // namespace

std::string ParameterRange::text(std::size_t index) const {
  const std::int64_t value = units(index);
  std::string digits = std::to_string(std::abs(value));
  const auto behind_point = static_cast<std::size_t>(decimals);
  if (decimals > kMaxPlainDecimals) {
    digits += "e-" + std::to_string(decimals);
  } else if (decimals > 0) {
    if (digits.size() <= behind_point) digits.insert(0, behind_point + 1 - digits.size(), '0');
    digits.insert(digits.size() - behind_point, ".");
  }
  return value < 0 ? "-" + digits : digits;
}

std::string ModelInput::stem() const {
  return model == "-" ? "model" : std::filesystem::path(model).stem().string();
}

ModelInput ModelInput::at(std::size_t index) const {
  ModelInput result = *this;
  result.constants[range->position] = range->name + '=' + range->text(index);
  result.range.reset();
  return result;
}

std::string read_constants(const std::vector<std::string>& texts, ModelInput& input) {
  for (const std::string& text : texts) {
    for (const std::string_view part : split(text, ",")) {
      const std::string error = read_constant(part, input);
      if (error.empty()) continue;
      std::string told = "--const ";
      return told.append(text).append(": ").append(error);
    }
  }
  return "";
}

ComposedModel read_input(const ModelInput& input, const Streams& streams) {
  std::vector<ConstOverride> overrides;
  for (const std::string& text : input.constants) {
    const auto equals = text.find('=');
    overrides.push_back({text.substr(0, equals), text.substr(equals + 1)});
  }
  if (input.model == "-") return read_model(streams.in, "standard input", overrides);
  try {
    return read_model(input.model, overrides);
  } catch (const ModelError& error) {
    const std::string advice = model_advice(input.model);
    if (advice.empty()) throw;
    if (dynamic_cast<const UnreadableModelError*>(&error) != nullptr)
      throw UnreadableModelError(input.model, advice);
    throw ModelError(input.model, advice);
  }
}

}  // namespace symfold
