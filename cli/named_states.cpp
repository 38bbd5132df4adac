#include "cli/named_states.h"

#include <algorithm>
#include <charconv>
#include <cstring>

#include "host/language/model_description.h"

namespace symfold {
namespace {

constexpr std::string_view kBlanks = " \t";
constexpr std::size_t kRoomForBlanks = 4096;

// What a line holds, of which a message shows only so much.
std::string quoted(std::string_view text) {
  constexpr std::size_t kMaxShown = 60;
  return "'" + std::string(text.substr(0, kMaxShown)) + (text.size() > kMaxShown ? "...'" : "'");
}

// The value of the set that the text names, as value_text (value.h) writes it.
std::optional<int> parse_value(const ValueSet& set, std::string_view text) {
  if (set.kind == ValueSet::Kind::kBool) {
    if (text == "true") return 1;
    return text == "false" ? std::optional(0) : std::nullopt;
  }
  if (set.kind == ValueSet::Kind::kEnumeration) {
    const auto found = std::find(set.literals->begin(), set.literals->end(), text);
    if (found == set.literals->end()) return std::nullopt;
    return static_cast<int>(found - set.literals->begin());
  }
  int value = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
  if (error != std::errc() || end != text.data() + text.size() || !set.contains(value)) return std::nullopt;
  return value;
}

std::size_t longest_value(const ValueSet& set) {
  if (set.kind != ValueSet::Kind::kEnumeration) return std::string_view("-32768").size();
  std::size_t longest = 0;
  for (const std::string& literal : *set.literals) longest = std::max(longest, literal.size());
  return longest;
}

}  // namespace

NamedStates::NamedStates(const ComposedModel& model, const std::vector<std::string>& order)
    : layout_(model, order),
      model_name_(model.description->source->name()),
      values_(layout_.slot_count()),
      given_(layout_.slot_count()) {
  for (std::uint32_t slot = 0; slot < layout_.slot_count(); ++slot) {
    slots_.emplace(layout_.variables()[slot].name, slot);
  }
  for (std::size_t i = 0; i < model.submodels.size(); ++i) {
    const Submodel& submodel = model.submodels[i];
    const std::uint32_t* slot = layout_.slots_of(i);
    for (const VariableDecl& variable : model.description->type(model.instance_of(submodel).type).variables) {
      slots_.emplace(submodel.name + '.' + std::string(variable.name.text), *slot++);
    }
  }
  max_line_ = kRoomForBlanks;
  for (const auto& [name, slot] : slots_) {
    max_line_ += name.size() + longest_value(layout_.variables()[slot].values) + 2;
  }
}

// Takes the value into values_, and what was given into given_.
std::string NamedStates::take_pair(std::string_view pair) {
  const std::size_t equals = pair.find('=');
  if (equals == std::string_view::npos) return "expected NAME=VALUE, got " + quoted(pair);
  const Given given{pair.substr(0, equals), pair.substr(equals + 1)};
  const auto found = slots_.find(std::string(given.name));
  if (found == slots_.end()) return "expected a variable of " + model_name_ + ", got " + quoted(given.name);
  const std::uint32_t slot = found->second;
  const ChainVariable& variable = layout_.variables()[slot];
  const std::optional<int> value = parse_value(variable.values, given.value);
  if (!value) {
    return std::string(given.name) + ": expected a value of " + to_string(variable.values) + ", got " +
           quoted(given.value);
  }
  for (const Given& earlier : given_[slot]) {
    if (earlier.name == given.name) return "expected " + std::string(given.name) + " once, got it twice";
    if (values_[slot] != *value) {
      return "expected one value of " + variable.name + ", got " + std::string(earlier.name) + "=" +
             std::string(earlier.value) + " and " + std::string(pair);
    }
  }
  if (given_[slot].empty()) given_slots_.push_back(slot);
  given_[slot].push_back(given);
  values_[slot] = static_cast<std::int16_t>(*value);
  return "";
}

std::string NamedStates::read(std::string_view line, unsigned char* state) {
  if (line.size() > max_line_)
    return "expected at most " + std::to_string(max_line_) + " characters, got more";
  values_ = layout_.initial_state();
  std::string error;
  for (std::size_t start = line.find_first_not_of(kBlanks); start != std::string_view::npos && error.empty();
       start = line.find_first_not_of(kBlanks)) {
    line.remove_prefix(start);
    const std::size_t end = std::min(line.find_first_of(kBlanks), line.size());
    error = take_pair(line.substr(0, end));
    line.remove_prefix(end);
  }
  for (const std::uint32_t slot : given_slots_) given_[slot].clear();
  given_slots_.clear();
  if (error.empty()) std::memcpy(state, values_.data(), values_.size() * sizeof values_[0]);
  return error;
}

int NamedStates::value_at(const unsigned char* state, std::size_t slot) const {
  std::int16_t value = 0;
  std::memcpy(&value, state + slot * sizeof value, sizeof value);
  return value;
}

std::string NamedStates::value_error(const unsigned char* state) const {
  for (std::size_t slot = 0; slot < layout_.slot_count(); ++slot) {
    const ChainVariable& variable = layout_.variables()[slot];
    const int value = value_at(state, slot);
    if (variable.values.contains(value)) continue;
    return variable.name + ": expected a value of " + to_string(variable.values) + ", got number " +
           std::to_string(value);
  }
  return "";
}

void NamedStates::append_text(const unsigned char* state, std::string& text) const {
  for (std::size_t slot = 0; slot < layout_.slot_count(); ++slot) {
    const ChainVariable& variable = layout_.variables()[slot];
    if (slot > 0) text += ' ';
    text += variable.name + '=' + value_text(variable.values, value_at(state, slot));
  }
}

}  // namespace symfold
