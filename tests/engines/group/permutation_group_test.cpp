#include "engines/group/permutation_group.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <initializer_list>
#include <numeric>
#include <random>
#include <stdexcept>
#include <thread>

#include "engines/group/relation_proof.h"
#include "engines/group/stabiliser_forest.h"
#include "engines/group/support_factors.h"
#include "tests/support/group_checks.h"

namespace symfold {
namespace {

using oracle::Images;

SparsePermutation moves_of(const Images& images) {
  SparsePermutation moves;
  for (std::size_t x = 0; x < images.size(); ++x) {
    if (images[x] != static_cast<int>(x)) moves.push_back({static_cast<int>(x), images[x]});
  }
  return moves;
}

// A few random permutations: any, exchanges of points, or exchanges of blocks, the points numbered at random.
std::vector<Images> random_generators(int n, std::mt19937& random) {
  Images identity(static_cast<std::size_t>(n));
  std::iota(identity.begin(), identity.end(), 0);
  Images number = identity;
  std::ranges::shuffle(number, random);
  const auto kind = random() % 3;
  const std::size_t length = kind == 2 ? 2 : 1;
  std::vector<Images> generators;
  for (unsigned i = 0; i < 1 + random() % 4; ++i) {
    Images& images = generators.emplace_back(identity);
    if (kind == 0) {
      std::shuffle(images.begin() + random() % 3, images.end(), random);
      continue;
    }
    const std::size_t blocks = static_cast<std::size_t>(n) / length;
    const std::size_t a = random() % blocks;
    const std::size_t b = random() % blocks;
    for (std::size_t k = 0; k < length && a != b; ++k) {
      std::swap(images[static_cast<std::size_t>(number[a * length + k])],
                images[static_cast<std::size_t>(number[b * length + k])]);
    }
  }
  if (kind == 2 && random() % 2 == 0) {
    Images& images = generators.emplace_back(identity);
    std::swap(images[static_cast<std::size_t>(number[0])], images[static_cast<std::size_t>(number[1])]);
  }
  return generators;
}

// Against all elements: base and orbit lengths by the rule, membership, smallest carriers, and generators
// that depend on the group alone and show the finest direct product. What relations prove to be strong is.
TEST(PermutationGroup, AgreesWithAllProductsOnRandomGroups) {
  int proved = 0;
  for (unsigned seed = 0; seed < 600 && !testing::Test::HasFatalFailure(); ++seed) {
    SCOPED_TRACE("seed " + std::to_string(seed));
    std::mt19937 random(seed);
    const int n = 4 + static_cast<int>(random() % 3);
    const std::vector<Images> generators = random_generators(n, random);
    PermutationList list;
    for (const Images& images : generators) {
      if (!moves_of(images).empty()) list.push_back(moves_of(images));
    }
    const auto group = PermutationGroup::generated_by(n, list);
    const auto closure = oracle::closure(n, generators);
    const std::vector<Images> elements(closure.begin(), closure.end());

    Images identity(static_cast<std::size_t>(n));
    std::iota(identity.begin(), identity.end(), 0);
    std::vector<int> base;
    std::vector<int> lengths;
    for (int b = 0; b < n; ++b) {
      std::vector<Images> smallest(static_cast<std::size_t>(n));  // by image of b
      int length = 0;
      for (const Images& images : elements) {
        if (!std::equal(images.begin(), images.begin() + b, identity.begin())) continue;
        Images& best = smallest[static_cast<std::size_t>(images[static_cast<std::size_t>(b)])];
        length += best.empty() ? 1 : 0;
        if (best.empty() || images < best) best = images;
      }
      if (length == 1) continue;
      base.push_back(b);
      lengths.push_back(length);
      for (int point = 0; point < n; ++point) {
        const Images& best = smallest[static_cast<std::size_t>(point)];
        ASSERT_EQ(group.reaches(b, point), !best.empty());
        ASSERT_EQ(group.smallest_carrier(b, point), best.empty() ? SparsePermutation() : moves_of(best));
      }
    }
    ASSERT_EQ(group.base(), base);
    ASSERT_EQ(group.orbit_lengths(), lengths);
    for (const PermutationList* some :
         std::initializer_list<const PermutationList*>{&list, &group.generators()}) {
      if (some->size() == 0) continue;
      const detail::StabiliserForest forest(n, *some);
      if (!detail::are_proved_strong(n, *some, forest)) continue;
      ++proved;
      ASSERT_EQ(forest.orbit_lengths(), lengths);
    }

    Images images = identity;
    do {
      ASSERT_EQ(group.contains(moves_of(images)), closure.contains(images));
    } while (std::ranges::next_permutation(images).found);

    PermutationList others;
    for (int i = 0; i < 12; ++i) others.push_back(moves_of(elements[random() % elements.size()]));
    const auto same = PermutationGroup::generated_by(n, others);
    if (same.orbit_lengths() != lengths) continue;
    const PermutationGroup canonical = group.with_canonical_generators();
    const PermutationGroup canonical_same = same.with_canonical_generators();
    ASSERT_EQ(canonical.generators().size(), canonical_same.generators().size());
    for (std::size_t g = 0; g < canonical.generators().size(); ++g) {
      ASSERT_TRUE(std::ranges::equal(canonical.generators()[g], canonical_same.generators()[g]));
    }
    ASSERT_EQ(canonical.orbit_lengths(), lengths);
    // A subset of the factors' points makes a direct factor; any part of a factor's points does not.
    std::vector<unsigned> factors;
    for (const detail::SupportFactor& factor : detail::support_factors(n, canonical.generators())) {
      unsigned points = 0;
      for (const int point : factor.points) points |= 1U << point;
      factors.push_back(points);
    }
    for (unsigned part = 0; part < 1U << n; ++part) {
      const bool splits = std::ranges::all_of(elements, [&](const Images& element) {
        Images restricted = element;
        for (int x = 0; x < n; ++x) {
          const auto i = static_cast<std::size_t>(x);
          if ((part >> x & 1) == 0) restricted[i] = x;
          if ((part >> x & 1) != (part >> element[i] & 1)) return false;
        }
        return closure.contains(restricted);
      });
      const bool is_union = std::ranges::all_of(
          factors, [part](unsigned points) { return (points & part) == 0 || (points & part) == points; });
      ASSERT_EQ(splits, is_union);
    }
  }
  EXPECT_GT(proved, 300);
}

// 30,000 exchanges in any order are proved without a table, and each thread may ask for members.
TEST(PermutationGroup, ProvesAndAnswersForManyExchanges) {
  constexpr int kPoints = 30'000;
  std::mt19937 random(1);
  std::vector<int> number(kPoints);
  std::iota(number.begin(), number.end(), 0);
  std::ranges::shuffle(number, random);
  PermutationList exchanges;
  for (std::size_t i = 1; i < number.size(); ++i) {
    const auto [a, b] = std::minmax(number[i - 1], number[i]);
    exchanges.push_back(std::vector<PointMove>{{a, b}, {b, a}});
  }
  const auto group = PermutationGroup::generated_by(kPoints, exchanges);
  EXPECT_EQ(group.base().size(), number.size() - 1);
  EXPECT_EQ(group.orbit_lengths().front(), kPoints);
  std::vector<int> members(2, 0);
  std::vector<std::thread> threads;
  for (std::size_t t = 0; t < members.size(); ++t) {
    threads.emplace_back([&group, &count = members[t]] {
      for (int x = 1; x < kPoints; ++x) count += group.contains({{x - 1, x}, {x, x - 1}}) ? 1 : 0;
    });
  }
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(members, (std::vector<int>{kPoints - 1, kPoints - 1}));
}

// Permutations of 20 objects on their ordered pairs have too many Schreier generators for a proof. All of
// them are all that keep the relations between pairs; the even ones are not.
TEST(PermutationGroup, IsOnlyAPartWithoutAProof) {
  constexpr int kObjects = 20;
  const auto number = [](int a, int b) { return a * (kObjects - 1) + b - (b > a ? 1 : 0); };
  for (const int cycle : {2, 3}) {
    PermutationList generators;
    for (int i = cycle - 1; i < kObjects; ++i) {
      const auto moved = [&](int x) { return x > i || x <= i - cycle ? x : x == i ? i - cycle + 1 : x + 1; };
      std::vector<PointMove> moves;
      for (int a = 0; a < kObjects; ++a) {
        for (int b = 0; b < kObjects; ++b) {
          if (a == b || (moved(a) == a && moved(b) == b)) continue;
          moves.push_back({number(a, b), number(moved(a), moved(b))});
        }
      }
      generators.push_back(moves);
    }
    const auto group = PermutationGroup::generated_by(kObjects * (kObjects - 1), generators);
    EXPECT_EQ(group.is_whole(), cycle == 2);
    EXPECT_EQ(group.orbit_lengths().front(), kObjects * (kObjects - 1));
  }
}

TEST(PermutationGroup, RefusesMovesThatAreNoPermutation) {
  for (const SparsePermutation& moves : std::vector<SparsePermutation>{{{0, 1}},
                                                                       {{0, 3}, {3, 0}},
                                                                       {{1, 0}, {0, 1}},
                                                                       {{0, 0}},
                                                                       {{0, 1}, {1, 2}, {2, 1}},
                                                                       {{-1, 0}, {0, -1}}}) {
    PermutationList list;
    list.push_back(moves);
    EXPECT_THROW(PermutationGroup::generated_by(3, list), std::invalid_argument);
  }
  EXPECT_TRUE(PermutationGroup(3).is_whole());
  EXPECT_FALSE(PermutationGroup(3, PermutationGroup::Extent::part).is_whole());
}

}  // namespace
}  // namespace symfold
