#include "engines/search/paired_descent.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <numeric>
#include <random>

#include "engines/graph/automorphism_check.h"
#include "engines/search/partial_image.h"

namespace symfold::detail {
namespace {

// Roots 0 and 1, each joined to seven vertices of its own, which are numbered and listed at random. The
// vertices of root 0 form a triangle and a square, those of root 1 the given cycles.
ColouredGraph two_roots(unsigned seed, const std::vector<int>& cycles) {
  std::vector<int> number(14);
  std::iota(number.begin(), number.end(), 2);
  std::mt19937 random(seed);
  std::shuffle(number.begin(), number.end(), random);
  std::vector<Edge> edges;
  for (std::size_t i = 0; i < number.size(); ++i) edges.push_back({i < 7 ? 0 : 1, number[i]});
  const auto add_cycle = [&](std::size_t start, int length) {
    const auto count = static_cast<std::size_t>(length);
    for (std::size_t i = 0; i < count; ++i)
      edges.push_back({number[start + i], number[start + (i + 1) % count]});
    return start + count;
  };
  std::size_t start = add_cycle(add_cycle(0, 3), 4);
  for (const int length : cycles) start = add_cycle(start, length);
  std::shuffle(edges.begin(), edges.end(), random);
  return {16, {2}, edges};
}

PairedDescent::Answer exchange_roots(const ColouredGraph& graph, int max_failures) {
  OrderedPartition right(graph.vertex_count());
  WorkBudget budget(1'000'000);
  Refiner refiner(graph, right, budget);
  refiner.refine_by(colour_keys(graph));
  const int splits = right.split_count();
  PairedDescent descent(graph, right, right, refiner, budget);
  descent.set_level(splits, 0);
  Trace trace;
  refiner.individualise_and_record(0, trace);
  right.undo(splits);
  EXPECT_TRUE(refiner.individualise_and_compare(1, trace));
  PartialImage image(graph);
  AutomorphismCheck check(graph);
  SparsePermutation moves;
  return descent.run(splits, max_failures, [&](bool is_last) {
    return is_last && image.read(descent.left(), right, splits, moves) && check.is_automorphism(moves);
  });
}

TEST(PairedDescent, TriesOtherVerticesUntilOneFitsOrNoneIsLeft) {
  int open = 0;
  for (unsigned seed = 0; seed < 100; ++seed) {
    SCOPED_TRACE("seed " + std::to_string(seed));
    EXPECT_EQ(exchange_roots(two_roots(seed, {3, 4}), 100), PairedDescent::Answer::kFound);
    EXPECT_EQ(exchange_roots(two_roots(seed, {7}), 100), PairedDescent::Answer::kNone);
    EXPECT_EQ(exchange_roots(two_roots(seed, {7}), 2), PairedDescent::Answer::kOpen);
    EXPECT_EQ(exchange_roots(two_roots(seed, {3, 4}), 0), PairedDescent::Answer::kOpen);
    if (exchange_roots(two_roots(seed, {3, 4}), 1) == PairedDescent::Answer::kOpen) ++open;
  }
  EXPECT_GT(open, 0) << "no seed needs more than one other vertex";
}

}  // namespace
}  // namespace symfold::detail
