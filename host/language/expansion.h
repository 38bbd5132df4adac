// Walks through the values of indices and evaluates expressions that use them, within a budget of steps.

#ifndef SYMFOLD_HOST_LANGUAGE_EXPANSION_H
#define SYMFOLD_HOST_LANGUAGE_EXPANSION_H

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "host/language/error_list.h"
#include "host/language/evaluator.h"

namespace symfold {

inline constexpr std::int64_t kMaxElements = 1'000'000;  // submodels, joins, or values of one index
inline constexpr std::int64_t kMaxSteps = 100'000'000;

class Expansion {
 public:
  Expansion(const ModelDescription& model, ErrorList& errors) : model_(model), errors_(errors) {}

  Budget& budget() { return budget_; }

  // Takes steps from the budget; throws ModelError, with an error at the offset, if none are left.
  void spend(std::int64_t steps, Offset offset);

  // The value for the current indices. Throws EvaluationError.
  Value value_of(ExprId id);
  bool is_left_out(ExprId condition) { return condition != kNoExpr && !value_of(condition).is_true(); }

  // The array's name with the current indices: "grid_1_2". Throws EvaluationError if one is negative.
  std::string element_name(const Name& array) const;

  // Calls body() for every combination of the ranges' values, the last index fastest. Throws EvaluationError
  // if a range has no value.
  template <typename Body>
  void for_each(const std::vector<IndexRange>& ranges, const Body& body) {
    for_each_from(ranges, 0, body);
  }

  // Calls body() and returns true. If an expression in it has no value, then that ends it: the error, with
  // `where` added, goes into the list, and the result is false.
  template <typename Body>
  bool guarded(const std::string& where, const Body& body) {
    const std::size_t depth = indices_.size();
    try {
      body();
      return true;
    } catch (const EvaluationError& error) {
      indices_.resize(depth);
      report(error, where);
      return false;
    }
  }

 private:
  struct Span {
    std::int64_t low;
    std::int64_t count;
  };

  Span span_of(const IndexRange& range);
  void report(const EvaluationError& error, const std::string& where);

  template <typename Body>
  void for_each_from(const std::vector<IndexRange>& ranges, std::size_t position, const Body& body) {
    if (position == ranges.size()) return body();
    const Span span = span_of(ranges[position]);
    for (std::int64_t i = 0; i < span.count; ++i) {
      spend(kStepsPerIndex, ranges[position].name.offset);
      indices_.push_back(span.low + i);
      for_each_from(ranges, position + 1, body);
      indices_.pop_back();
    }
  }

  static constexpr int kStepsPerIndex = 8;

  const ModelDescription& model_;
  ErrorList& errors_;
  Budget budget_{kMaxSteps};
  std::vector<std::int64_t> indices_;
};

}  // namespace symfold

#endif  // SYMFOLD_HOST_LANGUAGE_EXPANSION_H
