// Exact labels against all images, by groups whose numbers of classes are known.

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <map>
#include <memory>
#include <numeric>
#include <random>
#include <set>

#include "detector/exact_labeller.h"
#include "engines/base/images.h"
#include "engines/largest_image/recognition.h"
#include "engines/largest_image/stabiliser_trees.h"
#include "tests/oracles/literal_labeller.h"
#include "tests/oracles/state_classes.h"
#include "tests/support/random_group.h"
#include "tests/support/seeds.h"

namespace symfold::detail {
namespace {

// A group that acts on the positions 0 .. n-1, each with so many values.
struct Action {
  std::string name;
  std::vector<int> values;
  std::vector<Images> generators;
  std::size_t classes;

  std::size_t size() const { return values.size(); }
};

// The permutation that these cycles make.
Images cycles(std::size_t size, const std::vector<Images>& lists) {
  Images images(size);
  std::iota(images.begin(), images.end(), 0U);
  for (const Images& cycle : lists) {
    for (std::size_t i = 0; i < cycle.size(); ++i) images[cycle[i]] = cycle[(i + 1) % cycle.size()];
  }
  return images;
}

// What permutations of objects do to the objects and their unordered pairs, in this order.
std::vector<Images> on_pairs(std::uint32_t objects, const std::vector<Images>& permutations) {
  std::vector<Images> result;
  for (const Images& permutation : permutations) {
    std::vector<std::pair<std::uint32_t, std::uint32_t>> pairs;
    for (std::uint32_t a = 0; a < objects; ++a) {
      for (std::uint32_t b = a + 1; b < objects; ++b) pairs.emplace_back(a, b);
    }
    Images images = permutation;
    for (const auto& [a, b] : pairs) {
      const std::pair moved = std::minmax(permutation[a], permutation[b]);
      const auto index =
          std::find(pairs.begin(), pairs.end(), std::pair(moved.first, moved.second)) - pairs.begin();
      images.push_back(objects + static_cast<std::uint32_t>(index));
    }
    result.push_back(std::move(images));
  }
  return result;
}

// The images of the points of a grid under a map of its coordinates.
template <class Map>
Images on_grid(std::uint32_t width, std::uint32_t height, Map map) {
  Images images;
  for (std::uint32_t y = 0; y < height; ++y) {
    for (std::uint32_t x = 0; x < width; ++x) {
      const auto [to_x, to_y] = map(x, y);
      images.push_back(to_y % height * width + to_x % width);
    }
  }
  return images;
}

std::vector<Action> known_actions() {
  using Pair = std::pair<std::uint32_t, std::uint32_t>;
  const auto turned = [](auto x, auto y) { return Pair(x + 1, y); };
  const auto flipped = [](auto x, auto y) { return Pair(y, x); };
  const auto mirrored = [](auto x, auto y) { return Pair(3 - x, y); };
  const auto rows_swapped = [](auto x, auto y) { return Pair(x, y < 2 ? 1 - y : y); };
  const auto columns_swapped = [](auto x, auto y) { return Pair(x < 2 ? 1 - x : x, y); };
  const auto lifted = [](auto x, auto y) { return Pair(x, y + 1); };
  const Images cube_turn{1, 3, 0, 2, 5, 7, 4, 6};
  const Images cube_flip{4, 5, 6, 7, 0, 1, 2, 3};
  const Images cube_swap{0, 2, 1, 3, 4, 6, 5, 7};
  const Images cube_tilt{0, 1, 4, 5, 2, 3, 6, 7};
  return {
      {"star of 6", std::vector<int>(6, 3), {cycles(6, {{0, 1}}), cycles(6, {{0, 1, 2, 3, 4, 5}})}, 28},
      {"ring of 5 and forks, both directions",
       {3, 3, 3, 3, 3, 2, 2, 2, 2, 2},
       {cycles(10, {{0, 1, 2, 3, 4}, {5, 6, 7, 8, 9}}), cycles(10, {{1, 4}, {2, 3}, {5, 9}, {6, 8}})},
       888},
      {"S2 wr S3 with cluster variables",
       {3, 3, 3, 3, 3, 3, 2, 2, 2},
       {cycles(9, {{0, 1}}), cycles(9, {{0, 2}, {1, 3}, {6, 7}}),
        cycles(9, {{0, 2, 4}, {1, 3, 5}, {6, 7, 8}})},
       364},
      {"complete 4 with pairs", std::vector<int>(10, 2),
       on_pairs(4, {cycles(4, {{0, 1}}), cycles(4, {{0, 1, 2, 3}})}), 90},
      {"3x3 torus",
       std::vector<int>(9, 2),
       {on_grid(3, 3, turned), on_grid(3, 3, flipped), on_grid(3, 3, mirrored)},
       26},
      {"cube", std::vector<int>(8, 3), {cube_turn, cube_flip, cube_swap, cube_tilt}, 267},
      {"S4 x S4 on a matrix",
       std::vector<int>(16, 2),
       {on_grid(4, 4, turned), on_grid(4, 4, lifted), on_grid(4, 4, rows_swapped),
        on_grid(4, 4, columns_swapped)},
       317},
      {"complete 5 with pairs", std::vector<int>(15, 2),
       on_pairs(5, {cycles(5, {{0, 1}}), cycles(5, {{0, 1, 2, 3, 4}})}), 544},
  };
}

std::set<Images> closure(const std::vector<Images>& generators, std::size_t size) {
  std::set<Images> known{cycles(size, {})};
  std::vector<Images> elements(known.begin(), known.end());
  for (std::size_t i = 0; i < elements.size(); ++i) {
    for (const Images& generator : generators) {
      Images product = composed(generator, elements[i]);
      if (known.insert(product).second) elements.push_back(std::move(product));
    }
  }
  return known;
}

// The same action with its positions in another order.
Action shuffled(const Action& action, std::mt19937& random) {
  Action result = action;
  Images to = cycles(action.size(), {});
  std::shuffle(to.begin(), to.end(), random);
  for (std::size_t i = 0; i < to.size(); ++i) result.values[to[i]] = action.values[i];
  for (Images& generator : result.generators) generator = composed(to, composed(generator, inverse(to)));
  return result;
}

SparsePermutation moves_of(const Images& images) {
  SparsePermutation moves;
  for (std::size_t c = 0; c < images.size(); ++c) {
    if (images[c] != c) moves.push_back({static_cast<int>(c), static_cast<int>(images[c])});
  }
  return moves;
}

// A detector with the tables of the group that the generators make of partitions of so many bytes.
void set_tables(SymmetryDetection& detector, const std::vector<int>& sizes,
                const std::vector<Images>& generators) {
  int offset = 0;
  for (const int size : sizes) {
    detector.PartitionInfo.push_back(size);
    detector.CumPartitionInfo.push_back(offset);
    offset += size;
  }
  PermutationList moves;
  for (const Images& images : generators) moves.push_back(moves_of(images));
  const StabiliserTrees trees(PermutationGroup::generated_by(static_cast<int>(sizes.size()), moves));
  for (std::size_t level = 0; level < trees.levels().size(); ++level) {
    detector.Bases.push_back(static_cast<int>(trees.levels()[level].base));
    for (const std::uint32_t point : trees.levels()[level].orbit) {
      if (point == trees.levels()[level].base) continue;
      Images images = identity_images<Images>(sizes.size());
      Images scratch;
      trees.apply(level, point, images, scratch);
      const Images back = inverse(images);
      Permutation permutation(static_cast<int>(sizes.size()));
      std::copy(back.begin(), back.end(), permutation.GetP());
      detector.VPerms[detector.Bases.back()].push_back({static_cast<int>(point), {permutation}});
    }
  }
}

// The same for partitions that are all of one size.
void set_tables(SymmetryDetection& detector, const Action& action, int bytes) {
  set_tables(detector, std::vector<int>(action.size(), bytes), action.generators);
}

std::string image_of(const std::string& state, const Images& images, std::size_t bytes) {
  std::string image(state.size(), '\0');
  for (std::size_t c = 0; c < images.size(); ++c)
    image.replace(images[c] * bytes, bytes, state, c * bytes, bytes);
  return image;
}

struct Label {
  std::string state;
  bool is_exact;
};

// The label, after a check of its witness.
Label label_of(ExactLabeller& labeller, const std::string& state, std::size_t bytes) {
  Label label{std::string(state.size(), '\0'), false};
  std::vector<short> witness(state.size() / bytes);
  label.is_exact = labeller.find(state.data(), label.state.data());
  labeller.find_witness(witness.data());
  EXPECT_EQ(image_of(state, Images(witness.begin(), witness.end()), bytes), label.state);
  return label;
}

// The state that a random element of the group makes of this one.
std::string random_image(const std::string& state, const std::set<Images>& group, std::size_t bytes,
                         std::mt19937& random) {
  return image_of(state, *std::next(group.begin(), static_cast<int>(random() % group.size())), bytes);
}

bool is_image(const std::string& label, const std::string& state, const std::set<Images>& group,
              std::size_t bytes) {
  return std::any_of(group.begin(), group.end(),
                     [&](const Images& element) { return image_of(state, element, bytes) == label; });
}

// The group of so many elements from random ones of them.
PermutationGroup from_random_elements(const std::set<Images>& elements, std::mt19937& random) {
  const int degree = static_cast<int>(elements.begin()->size());
  const std::vector<Images> list(elements.begin(), elements.end());
  PermutationList generators;
  for (;;) {
    generators.push_back(moves_of(list[random() % list.size()]));
    PermutationGroup group = PermutationGroup::generated_by(degree, generators);
    std::size_t order = 1;
    for (const int length : group.orbit_lengths()) order *= static_cast<std::size_t>(length);
    if (order == elements.size()) return group;
  }
}

// One label for each class of all states, in the natural order of the positions and in others. For every 97th
// state it is an image, and that of an image under a group that is generated by other elements.
TEST(ExactLabels, AreOneForEachClassOfKnownGroups) {
  std::mt19937 random(1);
  for (const Action& known : known_actions()) {
    for (int layout = 0; layout < 4; ++layout) {
      SCOPED_TRACE(known.name + ", layout " + std::to_string(layout));
      const Action action = layout == 0 ? known : shuffled(known, random);
      SymmetryDetection detector;
      set_tables(detector, action, 2);
      const ExactGroup exact_group(detector);
      ExactLabeller labeller(exact_group);
      const std::set<Images> elements = closure(action.generators, action.size());
      const ExactGroup same_group(from_random_elements(elements, random), std::vector<int>(action.size(), 2));
      ExactLabeller same_labeller(same_group);
      std::set<std::string> labels;
      std::size_t number = 0;
      for (const std::string& state : all_states(std::vector<int>(action.size(), 2), action.values)) {
        const Label label = label_of(labeller, state, 2);
        ASSERT_TRUE(label.is_exact);
        labels.insert(label.state);
        if (number++ % 97 == 0) {
          ASSERT_TRUE(is_image(label.state, state, elements, 2));
          const std::string image = random_image(state, elements, 2, random);
          ASSERT_EQ(label_of(same_labeller, image, 2).state, label.state);
        }
      }
      EXPECT_EQ(labels.size(), action.classes);
      EXPECT_EQ(labeller.inexact_count(), 0U);
    }
  }
}

// Random groups, partitions of up to 10 bytes, little room: every label is an image under the group, and
// exact ones of one class are equal.
TEST(ExactLabels, NeverCallALabelExactThatIsNot) {
  std::mt19937 random(2);
  std::size_t inexact = 0;
  for (int round = 0; round < 400; ++round) {
    const std::size_t size = 3 + random() % 5;
    Action action{"round " + std::to_string(round), std::vector<int>(size, 2), {}, 0};
    for (unsigned i = 0; i < 1 + random() % 3; ++i) {
      Images images = cycles(size, {});
      std::shuffle(images.begin() + random() % 3, images.end(), random);
      action.generators.push_back(images);
    }
    const std::size_t bytes = std::vector<std::size_t>{1, 2, 8, 10}[random() % 4];
    SymmetryDetection detector;
    set_tables(detector, action, static_cast<int>(bytes));
    const ExactGroup group(detector,
                           {random() % 3 == 0 ? 1U : 20'000U, random() % 2 == 0 ? 1U : 20'000U, 1 << 20});
    ExactLabeller labeller(group);
    const std::set<Images> elements = closure(action.generators, size);
    for (int i = 0; i < 20; ++i) {
      std::string state(size * bytes, '\0');
      for (char& byte : state) byte = static_cast<char>(random() % 2 * 255);
      const Label label = label_of(labeller, state, bytes);
      const Label other = label_of(labeller, random_image(state, elements, bytes, random), bytes);
      ASSERT_TRUE(is_image(label.state, state, elements, bytes)) << action.name;
      if (label.is_exact && other.is_exact) {
        ASSERT_EQ(label.state, other.state) << action.name;
      }
      inexact += label.is_exact ? 0 : 1;
    }
  }
  EXPECT_GT(inexact, 0U);
}

// Orbits too long for all states: periodic ones, in which many images tie, and random ones. A bound of one
// element, then of few images, leaves the chain and nothing.
TEST(ExactLabels, AreOneForEachClassOnLongOrbits) {
  const auto turned = [](auto x, auto y) { return std::pair(x + 1, y); };
  const auto lifted = [](auto x, auto y) { return std::pair(x, y + 1); };
  const auto mirrored = [](auto x, auto y) { return std::pair(5 - x, y); };
  const auto once_round = [](auto x, auto y) { return std::pair((x + 1) % 24, y); };
  const auto back = [](auto x, auto y) { return std::pair((24 - x) % 24, y); };
  const std::vector<Action> actions{
      {"ring of 24 with two positions each", std::vector<int>(48, 2), {on_grid(24, 2, once_round)}, 0},
      {"the same in both directions",
       std::vector<int>(48, 2),
       {on_grid(24, 2, once_round), on_grid(24, 2, back)},
       0},
      {"6 x 5 torus", std::vector<int>(30, 2), {on_grid(6, 5, turned), on_grid(6, 5, lifted)}, 0},
      {"the same with mirrors",
       std::vector<int>(30, 2),
       {on_grid(6, 5, turned), on_grid(6, 5, lifted), on_grid(6, 5, mirrored)},
       0},
  };
  std::mt19937 random(3);
  for (const Action& action : actions) {
    const Action layout = shuffled(action, random);
    const std::set<Images> elements = closure(layout.generators, layout.size());
    SymmetryDetection detector;
    set_tables(detector, layout, 1);
    const ExactGroup listed(detector);
    const ExactGroup chained(detector, {20'000, 1});
    EXPECT_THROW((ExactGroup{detector, {20'000, 1, layout.size() - 1}}), std::length_error);
    ExactLabeller by_list(listed);
    ExactLabeller by_chain(chained);
    for (std::size_t i = 0; i < 200; ++i) {
      std::string state(layout.size(), '0');
      for (std::size_t c = 0; c < state.size(); ++c)
        state[c] = i < 12 ? (c % (i + 1) == 0 ? '1' : '0') : static_cast<char>('0' + random() % 2);
      const std::string image = random_image(state, elements, 1, random);
      for (ExactLabeller* labeller : {&by_list, &by_chain}) {
        const Label label = label_of(*labeller, state, 1);
        ASSERT_TRUE(label.is_exact) << action.name;
        ASSERT_EQ(label.state, label_of(*labeller, image, 1).state) << action.name;
      }
    }
  }
}

// The group that the generators make, searched by way of a list of its elements only if it may be. The sweep
// below makes all its groups here.
std::unique_ptr<ExactGroup> exact_group_of(const std::vector<int>& sizes,
                                           const std::vector<oracle::Images>& generators, bool may_list) {
  SymmetryDetection detector;
  std::vector<Images> images;
  for (const oracle::Images& generator : generators) images.emplace_back(generator.begin(), generator.end());
  set_tables(detector, sizes, images);
  SearchBounds bounds;
  if (!may_list) bounds.max_elements = 1;
  return std::make_unique<ExactGroup>(detector, bounds);
}

// Labels of a random group's states, each checked against what holds for every state and every canonical
// label.
class CheckedLabels {
 public:
  explicit CheckedLabels(const RandomGroup& group, bool may_list, std::mt19937& random)
      : group_(group),
        size_(static_cast<std::size_t>(std::accumulate(group.sizes.begin(), group.sizes.end(), 0))),
        exact_group_(exact_group_of(group.sizes, group.generators, may_list)),
        labeller_(*exact_group_),
        same_group_(exact_group_of(group.sizes, other_generators(group.generators, random), may_list)),
        same_labeller_(*same_group_),
        elements_(oracle::closure_up_to(kMaxListed, static_cast<int>(group.sizes.size()), group.generators)) {
  }

  std::string find(const std::string& state) {
    std::string label(size_, '\0');
    std::string other(size_, '\0');
    std::vector<short> entries(group_.sizes.size());
    EXPECT_TRUE(labeller_.find(state.data(), label.data())) << "inexact";
    labeller_.find_witness(entries.data());
    const oracle::Images witness(entries.begin(), entries.end());
    EXPECT_EQ(moved(group_.sizes, witness, state), label) << "the witness leads elsewhere";
    EXPECT_TRUE(elements_.empty() || elements_.contains(witness)) << "the witness is not of the group";
    EXPECT_TRUE(same_labeller_.find(state.data(), other.data())) << "inexact";
    EXPECT_EQ(other, label) << "from other generators";
    EXPECT_TRUE(labeller_.find(label.data(), other.data())) << "inexact";
    EXPECT_EQ(other, label) << "the label of the label";
    return label;
  }

 private:
  static constexpr std::size_t kMaxListed = 10'000;

  const RandomGroup& group_;
  std::size_t size_;
  std::unique_ptr<ExactGroup> exact_group_;
  ExactLabeller labeller_;
  std::unique_ptr<ExactGroup> same_group_;
  ExactLabeller same_labeller_;
  oracle::Group elements_;  // none if they are too many
};

// Numbers of values, at most 4, of which there are at most a thousand states, or else 2.
std::vector<int> random_values(const RandomGroup& group, std::mt19937& random) {
  std::map<int, int> of_orbit;
  std::vector<int> fewest;
  std::vector<int> values;
  for (const int orbit : oracle::orbit_of_points(static_cast<int>(group.sizes.size()), group.generators)) {
    fewest.push_back(group.sizes[values.size()] == 0 ? 1 : 2);
    const auto more = static_cast<int>(random() % 8 / 5 + random() % 8 / 6);
    values.push_back(fewest.back() == 1 ? 1 : of_orbit.try_emplace(orbit, 2 + more).first->second);
  }
  const int states = std::accumulate(values.begin(), values.end(), 1, std::multiplies<>());
  return states <= 1000 ? values : fewest;
}

// Each class of states that enumeration finds has one label, and no two have the same.
TEST(ExactLabels, AreOneForEachClassOfRandomGroups) {
  const Seeds seeds(300);
  for (unsigned seed = seeds.first; seed < seeds.end; ++seed) {
    std::mt19937 random(seed);
    const RandomGroup group = random_group(random);
    SCOPED_TRACE("seed " + std::to_string(seed) + ", " + group.name);
    CheckedLabels labels(group, seed % 2 == 0, random);
    const std::vector<std::string> states = all_states(group.sizes, random_values(group, random));
    const std::vector<int> classes = classes_of(states, group.sizes, group.generators);
    std::map<int, std::string> label_of;
    std::map<std::string, int> class_of;
    for (std::size_t i = 0; i < states.size(); ++i) {
      const std::string label = labels.find(states[i]);
      EXPECT_EQ(label_of.try_emplace(classes[i], label).first->second, label) << "two labels of a class";
      EXPECT_EQ(class_of.try_emplace(label, classes[i]).first->second, classes[i])
          << "two classes of a label";
      if (HasFailure()) FAIL() << "state " << testing::PrintToString(states[i]);
    }
    // More values than enumeration can do with.
    for (int i = 0; i < 20; ++i) {
      std::string state(states[0]);
      for (char& byte : state) byte = static_cast<char>(random() % 5 * 60);
      const std::string image = moved(group.sizes, random_element(group, random), state);
      EXPECT_EQ(labels.find(image), labels.find(state)) << "two labels of a class";
      if (HasFailure()) FAIL() << "state " << testing::PrintToString(state);
    }
  }
}

// Wreath products whose positions are numbered at random, so that their orbits are in different orders.
// Labels of images are equal, and the searches are quick ones: they are made within little room.
TEST(ExactLabels, SortBlocksInAnyOrderOfThePositions) {
  std::mt19937 random(4);
  for (int round = 0; round < 60; ++round) {
    SCOPED_TRACE("round " + std::to_string(round));
    const auto blocks = static_cast<std::uint32_t>(2 + random() % 5);
    const auto length = static_cast<std::uint32_t>(1 + random() % 4);
    const auto inside =
        static_cast<std::uint32_t>(random() % (length + 1));  // positions that are permuted inside each block
    Action action{"", std::vector<int>(blocks * length, 2), {}, 0};
    const std::uint32_t size = blocks * length;
    for (std::uint32_t b = 0; b < blocks; ++b) {
      for (std::uint32_t k = 0; k + 1 < inside; ++k)
        action.generators.push_back(cycles(size, {{b * length + k, b * length + k + 1}}));
      if (b == 0) continue;
      Images exchange = cycles(size, {});
      for (std::uint32_t k = 0; k < length; ++k)
        std::swap(exchange[(b - 1) * length + k], exchange[b * length + k]);
      action.generators.push_back(exchange);
    }
    const Action layout = shuffled(action, random);
    PermutationList given;
    for (const Images& generator : layout.generators) given.push_back(moves_of(generator));
    PermutationList mixed;  // without exchanges, mostly
    Images product = cycles(size, {});
    for (int i = 0; i < 30; ++i) {
      for (int step = 0; step < 5; ++step) {
        product = composed(layout.generators[random() % layout.generators.size()], product);
      }
      mixed.push_back(moves_of(product));
    }
    const int degree = static_cast<int>(size);
    const auto by_exchanges = PermutationGroup::generated_by(degree, given);
    const auto by_products = PermutationGroup::generated_by(degree, mixed);
    if (by_products.orbit_lengths() != by_exchanges.orbit_lengths()) continue;  // not all of the group
    const ExactGroup group(by_exchanges, layout.values, {20'000, 1, 20'000});
    const ExactGroup same_group(by_products, layout.values, {20'000, 1, 20'000});
    ExactLabeller labeller(group);
    ExactLabeller same_labeller(same_group);
    for (int i = 0; i < 40; ++i) {
      std::string state(size * 2, '\0');
      for (std::size_t c = 0; c < state.size(); c += 2) state[c] = static_cast<char>(random() % 3);
      const Label label = label_of(labeller, state, 2);
      ASSERT_TRUE(label.is_exact);
      for (int step = 0; step < 5; ++step) {
        state = image_of(state, layout.generators[random() % layout.generators.size()], 2);
      }
      ASSERT_EQ(label_of(same_labeller, state, 2).state, label.state);
    }
  }
}

// A ring too long to be listed, numbered at random, in one direction and in both.
TEST(ExactLabels, TurnLongRings) {
  constexpr std::uint32_t kLength = 9000;
  std::mt19937 random(5);
  Images all = cycles(kLength, {});
  Action ring{"", std::vector<int>(kLength, 2), {cycles(kLength, {all})}, 0};
  for (const bool has_mirror : {false, true}) {
    if (has_mirror) ring.generators.push_back({all.rbegin(), all.rend()});
    const Action layout = shuffled(ring, random);
    PermutationList generators;
    for (const Images& images : layout.generators) generators.push_back(moves_of(images));
    const ExactGroup group(PermutationGroup::generated_by(kLength, generators), std::vector<int>(kLength, 1));
    ExactLabeller labeller(group);
    for (std::uint32_t period = 1; period < 12; ++period) {
      std::string state(kLength, '0');
      for (std::size_t c = 0; c < kLength; ++c) {
        state[c] = c % period == 0 || random() % 1000 < period / 6 ? '1' : '0';
      }
      const Label label = label_of(labeller, state, 1);
      ASSERT_TRUE(label.is_exact);
      for (int step = 0; step < 10; ++step) {
        state = image_of(state, layout.generators[random() % layout.generators.size()], 1);
      }
      ASSERT_EQ(label_of(labeller, state, 1).state, label.state);
    }
  }
}

TEST(ExactLabels, RefuseGroupsThatDoNotFitTheSizes) {
  PermutationList swap;
  swap.push_back(std::vector<PointMove>{{0, 1}, {1, 0}});
  const auto group = PermutationGroup::generated_by(3, swap, PermutationGroup::Extent::part);
  EXPECT_THROW((ExactGroup{group, std::vector<int>{2, 2}}), std::invalid_argument);
  EXPECT_THROW((ExactGroup{group, std::vector<int>{2, 1, 2}}), std::invalid_argument);
  EXPECT_THROW((ExactGroup{group, std::vector<int>{-1, -1, 2}}), std::invalid_argument);
  const ExactGroup part(group, std::vector<int>{1, 1, 0});
  ExactLabeller labeller(part);
  std::string state = "ab";
  EXPECT_FALSE(labeller.find(state.data(), state.data())) << "the group is not whole";
  EXPECT_EQ(state, "ba");
}

TEST(ExactLabels, RefuseTablesThatAreNone) {
  SymmetryDetection unequal;
  set_tables(unequal, {"swap", {2, 2}, {cycles(2, {{0, 1}})}, 0}, 2);
  unequal.PartitionInfo = {1, 3};
  unequal.CumPartitionInfo = {0, 1};
  EXPECT_THROW(ExactGroup{unequal}, std::invalid_argument);
  SymmetryDetection gap;
  gap.PartitionInfo = {2, 2};
  gap.CumPartitionInfo = {0, 3};
  EXPECT_THROW(ExactGroup{gap}, std::invalid_argument);
  SymmetryDetection large;
  set_tables(large, {"ring", std::vector<int>(5, 2), {cycles(5, {{0, 1, 2, 3, 4}})}, 0}, 2);
  EXPECT_THROW((ExactGroup{large, {1, 1, 1}}), std::length_error);
  EXPECT_THROW((ExactGroup{large, {0, 1, 1000}}), std::invalid_argument);
  std::vector<short> witness(5, -1);
  ExactLabeller(ExactGroup(large)).find_witness(witness.data());
  EXPECT_EQ(witness, (std::vector<short>{0, 1, 2, 3, 4})) << "no state was labelled";
}

}  // namespace
}  // namespace symfold::detail
