// The set of packed states against std::map, and at its limits.

#include "host/chain/state_store.h"

#include <gtest/gtest.h>

#include <map>
#include <random>

namespace symfold {
namespace {

using Values = std::vector<std::int16_t>;
using Layout = std::vector<ChainVariable>;

struct Group {
  std::size_t count;
  int low;
  int high;
};

Layout layout_of(const std::vector<Group>& groups) {
  Layout layout;
  for (const auto& [count, low, high] : groups) {
    layout.insert(layout.end(), count, {"x", {ValueSet::Kind::kRange, low, high, nullptr}});
  }
  return layout;
}

// Mostly few values, so that states come again.
Values random_state(const Layout& layout, std::mt19937& random) {
  const unsigned value_count = random() % 4 == 0 ? 65536 : 2;
  Values values;
  for (const ChainVariable& variable : layout) {
    const auto offset =
        static_cast<int>(random() % std::min<std::size_t>(variable.values.size(), value_count));
    const int value = random() % 8 == 0 ? variable.values.high - offset : variable.values.low;
    values.push_back(static_cast<std::int16_t>(value));
  }
  return values;
}

// The states take from no bit and a single bit to several words, with fields that end at a word's end or do
// not fit there. With one hash for all, every look-up meets every state; a store that grows uses its own
// hashes instead.
TEST(StateStore, NumbersStatesLikeAMap) {
  const std::vector<std::vector<Group>> groups = {{{3, 5, 5}},
                                                  {{1, 0, 1}},
                                                  {{9, -1, 0}},
                                                  {{64, 0, 1}},
                                                  {{64, 0, 1}, {1, 7, 7}},
                                                  {{65, 0, 1}},
                                                  {{5, -32768, 32767}},
                                                  {{20, -3, 100}, {3, -32768, -32767}},
                                                  {{7, 0, 511}, {2, 2, 2}, {40, -1, 1}}};
  for (unsigned seed = 0; seed < 2 * groups.size(); ++seed) {
    SCOPED_TRACE("seed " + std::to_string(seed));
    const Layout layout = layout_of(groups[seed / 2]);
    const bool all_collide = seed % 2 == 1;
    const StatePacking packing(layout);
    StateStore store(packing);
    std::map<Values, StateId> known;
    std::mt19937 random(seed);
    std::vector<std::uint64_t> words(packing.word_count());
    for (int i = 0; i < 20'000 && (!all_collide || known.size() < 50); ++i) {
      const Values values = random_state(layout, random);
      if (i % 2 == 0) packing.pack(values.data(), words.data());
      for (std::uint32_t slot = 0; slot < layout.size(); ++slot)
        packing.set(words.data(), slot, values[slot]);
      const auto [id, outcome] = store.insert(words.data(), all_collide ? 42 : store.hash(words.data()));
      const auto [expected, is_new] = known.emplace(values, known.size());
      ASSERT_EQ(id, expected->second);
      ASSERT_EQ(outcome, is_new ? StateStore::Outcome::kNew : StateStore::Outcome::kKnown);
    }
    EXPECT_EQ(store.size(), known.size());
    for (const auto& [values, id] : known) {
      Values found(layout.size());
      store.read(id, words.data());
      packing.unpack(words.data(), found.data());
      EXPECT_EQ(found, values);
    }
  }
}

// When a state finds no room, the memory is used up, and it holds few bytes per state beside the states.
TEST(StateStore, KeepsToItsLimitsAndUsesThem) {
  for (const std::size_t count : {2U, 5U, 12U}) {
    const StatePacking packing(layout_of({{count, -32768, 32767}}));
    std::vector<std::uint64_t> words(packing.word_count());
    for (std::size_t limit = 600; limit < 6'000'000; limit += limit / 7) {
      SCOPED_TRACE(std::to_string(packing.byte_count()) + " bytes a state, limit " + std::to_string(limit));
      StateStore store(packing);
      store.set_limits(SIZE_MAX, limit);
      for (StateStore::Outcome outcome = StateStore::Outcome::kNew; outcome == StateStore::Outcome::kNew;) {
        words[0] = store.size();
        outcome = store.insert(words.data(), store.hash(words.data())).outcome;
        ASSERT_LE(store.memory(), limit);
        const std::size_t bookkeeping = store.memory() - store.size() * packing.byte_count();
        ASSERT_LE(bookkeeping, 16 * std::max<std::size_t>(store.size(), 100'000));
      }
      if (limit < 1'000'000) continue;
      EXPECT_GE(store.memory(), limit / 100 * 95);
      words[0] = 7;
      EXPECT_EQ(store.insert(words.data(), store.hash(words.data())).id, 7U);
    }
  }
}

}  // namespace
}  // namespace symfold
