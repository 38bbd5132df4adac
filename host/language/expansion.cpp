#include "host/language/expansion.h"

namespace symfold {

namespace {
constexpr int kStepsPerError = 200;
}  // namespace

void Expansion::spend(std::int64_t steps, Offset offset) {
  budget_.spend(steps);
  if (!budget_.is_spent()) return;
  errors_.fail(offset, "expected a system that expands in at most " + std::to_string(kMaxSteps) +
                           " steps, got a larger one");
}

Value Expansion::value_of(ExprId id) {
  const Value value = evaluate(model_, id, {{}, indices_}, budget_);
  spend(0, model_.expr(id).offset);
  return value;
}

std::string Expansion::element_name(const Name& array) const {
  std::string name(array.text);
  for (const std::int64_t index : indices_) {
    if (index < 0) {
      throw EvaluationError{array.offset, "expected indices of at least 0, got " + std::to_string(index)};
    }
    name += '_' + std::to_string(index);
  }
  return name;
}

Expansion::Span Expansion::span_of(const IndexRange& range) {
  const std::int64_t low = value_of(range.low).integer;
  const std::int64_t high = value_of(range.high).integer;
  if (low > high) return {low, 0};
  const std::uint64_t distance = static_cast<std::uint64_t>(high) - static_cast<std::uint64_t>(low);
  if (distance >= static_cast<std::uint64_t>(kMaxElements)) {
    throw EvaluationError{range.name.offset, "expected at most " + std::to_string(kMaxElements) +
                                                 " values of '" + std::string(range.name.text) + "', got " +
                                                 std::to_string(low) + ".." + std::to_string(high)};
  }
  return {low, static_cast<std::int64_t>(distance) + 1};
}

void Expansion::report(const EvaluationError& error, const std::string& where) {
  spend(kStepsPerError, error.offset);
  errors_.add_once(error.offset, error.offset, error.message + (where.empty() ? "" : " (in " + where + ")"));
}

}  // namespace symfold
