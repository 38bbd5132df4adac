#include "engines/largest_image/tuft_search.h"

#include <algorithm>
#include <numeric>
#include <utility>

namespace symfold::detail {
namespace {

bool is_less(const Placed* a, const Placed* b, std::size_t count) {
  return std::lexicographical_compare(a, a + count, b, b + count,
                                      [](const Placed& x, const Placed& y) { return x.value < y.value; });
}

}  // namespace

TuftSearch::TuftSearch(RecognisedTufts tufts, std::unique_ptr<ImageSearch> smaller)
    : smaller_(std::move(smaller)), smaller_values_(tufts.has_value.size()) {
  Plan plan{std::move(tufts.kinds), std::move(tufts.others), std::move(tufts.other_items), {}};
  plan.place_of_item.resize(smaller_values_.size());
  for (std::size_t i = 0; i < plan.others.size(); ++i)
    plan.place_of_item[plan.other_items[i]] = plan.others[i];
  std::size_t in_tufts = 0;
  std::size_t most_tufts = 0;
  for (const Tufts& kind : plan.kinds) {
    in_tufts += kind.positions.size();
    most_tufts = std::max(most_tufts, kind.items.size());
    for (std::uint32_t t = 0; t < kind.items.size(); ++t) plan.place_of_item[kind.items[t]] = t;
  }
  contents_.resize(in_tufts);
  order_.resize(most_tufts);
  image_.resize(in_tufts + plan.others.size());
  plan_ = std::make_shared<const Plan>(std::move(plan));
}

TuftSearch::TuftSearch(const TuftSearch& other)
    : ImageSearch(other),
      plan_(other.plan_),
      smaller_(other.smaller_ ? other.smaller_->clone() : nullptr),
      smaller_values_(other.smaller_values_),
      contents_(other.contents_),
      order_(other.order_),
      image_(other.image_) {}

// Positions without values have the value 0, so they change no order.
bool TuftSearch::maximise(Placed* values) {
  for (std::size_t i = 0; i < plan_->others.size(); ++i)
    smaller_values_[plan_->other_items[i]].value = values[plan_->others[i]].value;
  Placed* contents = contents_.data();
  for (const Tufts& tufts : plan_->kinds) {
    fill_contents(tufts, values, contents);
    rank_tufts(tufts, contents);
    contents += tufts.positions.size();
  }
  for (std::uint32_t i = 0; i < smaller_values_.size(); ++i) smaller_values_[i].source = i;
  const bool is_exact = smaller_ == nullptr || smaller_->maximise(smaller_values_.data());
  std::copy_n(values, image_.size(), image_.begin());
  const auto source_place = [this](std::uint32_t item) {
    return plan_->place_of_item[smaller_values_[item].source];
  };
  for (std::size_t i = 0; i < plan_->others.size(); ++i)
    values[plan_->others[i]] = image_[source_place(plan_->other_items[i])];
  contents = contents_.data();
  for (const Tufts& tufts : plan_->kinds) {
    const std::uint32_t* to = tufts.positions.data();
    for (const std::uint32_t item : tufts.items) {
      const Placed* from = contents + source_place(item) * tufts.size();
      for (std::size_t i = 0; i < tufts.size(); ++i) values[*to++] = *from++;
    }
    contents += tufts.positions.size();
  }
  return is_exact;
}

// Sorts the blocks of each tuft by insertion, because tufts are small and often in order.
void TuftSearch::fill_contents(const Tufts& tufts, const Placed* values, Placed* contents) {
  const std::size_t length = tufts.block_length;
  const std::uint32_t* position = tufts.positions.data();
  for (std::size_t t = 0; t < tufts.items.size(); ++t, contents += tufts.size()) {
    for (std::size_t i = 0; i < tufts.size(); ++i) contents[i] = values[*position++];
    for (std::size_t b = 1; b < tufts.block_count; ++b) {
      for (std::size_t a = b; a > 0; --a) {
        Placed* const block = contents + a * length;
        if (!is_less(block, block - length, length)) break;
        std::swap_ranges(block, block + length, block - length);
      }
    }
  }
}

void TuftSearch::rank_tufts(const Tufts& tufts, const Placed* contents) {
  const auto end = order_.begin() + static_cast<std::ptrdiff_t>(tufts.items.size());
  std::iota(order_.begin(), end, 0U);
  const auto comes_before = [&](std::uint32_t a, std::uint32_t b) {
    return is_less(contents + a * tufts.size(), contents + b * tufts.size(), tufts.size());
  };
  std::sort(order_.begin(), end, comes_before);
  std::uint64_t rank = 0;
  for (std::size_t i = 0; i < tufts.items.size(); ++i) {
    if (i > 0 && comes_before(order_[i - 1], order_[i])) ++rank;
    smaller_values_[tufts.items[order_[i]]].value = rank;
  }
}

}  // namespace symfold::detail
