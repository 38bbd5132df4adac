#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <functional>
#include <numeric>
#include <random>
#include <sstream>

#include "components/schreier_sims.h"
#include "components/schreier_tree.h"
#include "engines/group/stabiliser_chain.h"
#include "engines/group/stabiliser_chain_builder.h"
#include "tests/support/group_checks.h"

namespace symfold::detail {
namespace {

using oracle::Images;

Images cycle_of(int n, const std::vector<std::vector<int>>& cycles) {
  Images images(static_cast<std::size_t>(n));
  std::iota(images.begin(), images.end(), 0);
  for (const auto& cycle : cycles) {
    for (std::size_t i = 0; i < cycle.size(); ++i)
      images[static_cast<std::size_t>(cycle[i])] = cycle[(i + 1) % cycle.size()];
  }
  return images;
}

std::vector<int> lengths_of(int n, const std::vector<Images>& generators) {
  SchreierSims chain(n, static_cast<int>(generators.size()));
  std::vector<int> base;
  chain.Go(permutations_of(generators), base);
  return chain.OrbitLengths();
}

TEST(SchreierSims, AgreesWithAllProductsOnRandomGroups) {
  for (unsigned seed = 0; seed < 150 && !HasFailure(); ++seed) {
    SCOPED_TRACE("seed " + std::to_string(seed));
    std::mt19937 random(seed);
    const int n = 1 + static_cast<int>(random() % 6);
    std::vector<Images> generators;
    for (auto count = random() % 4; count > 0; --count) {
      generators.push_back(cycle_of(n, {}));
      std::shuffle(generators.back().begin() + static_cast<int>(random() % 3) % n, generators.back().end(),
                   random);
    }
    expect_stabiliser_chain_and_trees(oracle::closure(n, generators), n, generators);
  }
}

// Orders: J. H. Conway et al., Atlas of Finite Groups, 1985.
TEST(SchreierSims, FindsTheOrdersOfWellKnownGroups) {
  const Images eleven = cycle_of(12, {{0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10}});
  const Images quads = cycle_of(12, {{2, 6, 10, 7}, {3, 9, 4, 5}});
  EXPECT_EQ(lengths_of(12, {eleven, quads}), (std::vector<int>{11, 10, 9, 8}));  // M11
  const Images pairs = cycle_of(12, {{0, 11}, {1, 10}, {2, 5}, {3, 7}, {4, 8}, {6, 9}});
  EXPECT_EQ(lengths_of(12, {eleven, quads, pairs}), (std::vector<int>{12, 11, 10, 9, 8}));  // M12
  const Images twelve = cycle_of(12, {{0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11}});
  EXPECT_EQ(lengths_of(12, {twelve, cycle_of(12, {{0, 1}})}),
            (std::vector<int>{12, 11, 10, 9, 8, 7, 6, 5, 4, 3, 2}));
  EXPECT_EQ(lengths_of(30, {cycle_of(30, {{4, 9, 20}, {7, 8}})}), (std::vector<int>{3, 2}));
}

// Without random elements, so that every missing generator is found as a Schreier generator.
TEST(StabiliserChainBuilder, IsCompletedByVerificationAlone) {
  for (unsigned seed = 0; seed < 300 && !HasFailure(); ++seed) {
    SCOPED_TRACE("seed " + std::to_string(seed));
    std::mt19937 random(seed);
    std::vector<Images> generators(1 + seed % 3, cycle_of(7, {}));
    StabiliserChainBuilder builder(7);
    for (Images& images : generators) {
      std::shuffle(images.begin(), images.end(), random);
      StabiliserChainBuilder::Images points(7);
      std::copy(images.begin(), images.end(), points.begin());
      builder.absorb(points);
    }
    builder.verify();
    const std::vector<int> lengths = builder.orbit_lengths();
    const double order = std::accumulate(lengths.begin(), lengths.end(), 1.0, std::multiplies<>());
    EXPECT_EQ(order, static_cast<double>(oracle::closure(7, generators).size()));
  }
}

TEST(SchreierSims, LeavesOutWhatIsNoPermutationOfItsPoints) {
  SchreierSims chain(3, 3);
  std::vector<int> base;
  EXPECT_TRUE(chain.Go(permutations_of({{0, 0, 1}, {1, 0}, {0, 1, 3}, {0, 1, 2}}), base).empty());
  EXPECT_TRUE(base.empty());
  EXPECT_TRUE(chain.OrbitLengths().empty());
}

struct TreeShape {
  std::size_t generators;
  std::size_t deepest;
};

// The whole way from generators to trees, the order being known.
TreeShape shape_of(int n, const std::vector<Images>& generators, const std::vector<int>& lengths) {
  SchreierSims chain(n, static_cast<int>(generators.size()));
  chain.SetKnownOrder(lengths);
  std::vector<int> base;
  SchreierTree tree;
  tree.n = n;
  tree.SetPerms(chain.Go(permutations_of(generators), base));
  std::vector<int> none;
  TreeShape shape{chain.Go(permutations_of(generators), none).size(), 0};
  for (const int point : base) {
    tree.CreateTree(point);
    for (const ValPerms& record : tree.GetAllPermutationsToRoot()) {
      shape.deepest = std::max(shape.deepest, record.Perms.size());
    }
  }
  return shape;
}

TEST(SchreierSims, KeepsTreesShallow) {
  for (const int n : {3, 5, 6, 17, 100, 1000}) {
    std::vector<int> all(static_cast<std::size_t>(n));
    std::iota(all.begin(), all.end(), 0);
    const TreeShape ring = shape_of(n, {cycle_of(n, {all})}, {n});
    const double log_length = std::log2(n);
    EXPECT_LE(ring.generators, 2 * std::ceil(log_length)) << n;
    EXPECT_LE(ring.deepest, 1 + std::ceil(log_length / 2)) << n;
  }
  // Transpositions with a hub are shallow as they are.
  std::vector<Images> hub;
  std::vector<int> lengths;
  for (int i = 0; i < 99; ++i) {
    hub.push_back(cycle_of(100, {{i, 99}}));
    lengths.push_back(100 - i);
  }
  const TreeShape symmetric = shape_of(100, hub, lengths);
  EXPECT_EQ(symmetric.generators, hub.size());
  EXPECT_EQ(symmetric.deepest, 2U);
}

TEST(SchreierTree, ListsPathsBreadthFirstWithoutTheRoot) {
  SchreierTree tree;
  tree.n = 4;
  tree.SetPerms(permutations_of({cycle_of(4, {{1, 2}}), cycle_of(4, {{0, 1}, {2, 3}}), {0, 1}}));
  EXPECT_EQ(tree.GetN(), 4);
  testing::internal::CaptureStdout();
  tree.PrintPerms();
  EXPECT_EQ(testing::internal::GetCapturedStdout(), "(1 2)\n(0 1)(2 3)\n");
  tree.SetRootValue(1);
  tree.CreateTree(1);
  std::ostringstream text;
  for (const ValPerms& record : tree.GetAllPermutationsToRoot()) text << record << '\n';
  // 3 is reached from 2, which the stabiliser of 0 reaches first.
  EXPECT_EQ(text.str(), "Value: 2  (1 2)\nValue: 0  (0 1)(2 3)\nValue: 3  (1 2)  (0 1)(2 3)\n");
  for (const int outside : {-1, 4, 1 << 30}) {
    tree.SetRootValue(outside);
    tree.CreateTree(outside);
    EXPECT_TRUE(tree.GetAllPermutationsToRoot().empty());
  }
  SchreierTree unset;
  unset.CreateTree(0);
  EXPECT_TRUE(unset.GetAllPermutationsToRoot().empty());
}

}  // namespace
}  // namespace symfold::detail
