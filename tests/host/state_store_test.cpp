// The set of packed states against std::map, and at its limits.

#include "host/chain/state_store.h"

#include <gtest/gtest.h>

#include <map>
#include <random>

namespace symfold {
namespace {

using Values = std::vector<std::int16_t>;

std::vector<ChainVariable> variables(std::size_t count, int low, int high) {
  return std::vector<ChainVariable>(count, {"x", {ValueSet::Kind::kRange, low, high, nullptr}});
}

std::vector<ChainVariable> joined(std::vector<ChainVariable> a, const std::vector<ChainVariable>& b) {
  a.insert(a.end(), b.begin(), b.end());
  return a;
}

// From none and a single bit to several words, with fields that end at a word's end or do not fit there.
std::vector<std::vector<ChainVariable>> layouts() {
  return {variables(3, 5, 5),
          variables(1, 0, 1),
          variables(9, -1, 0),
          variables(64, 0, 1),
          joined(variables(64, 0, 1), variables(1, 7, 7)),
          variables(65, 0, 1),
          variables(5, -32768, 32767),
          joined(variables(20, -3, 100), variables(3, -32768, -32767)),
          joined(joined(variables(7, 0, 511), variables(2, 2, 2)), variables(40, -1, 1))};
}

class RandomStates {
 public:
  RandomStates(const std::vector<ChainVariable>& of, unsigned seed) : variables_(of), random_(seed) {}

  // Mostly of few values, so that states come again.
  Values next() {
    const int spread = random_() % 4 == 0 ? 65536 : 2;
    Values values;
    for (const ChainVariable& variable : variables_) {
      const int size = std::min(static_cast<int>(variable.values.size()), spread);
      const int offset = static_cast<int>(random_() % static_cast<unsigned>(size));
      values.push_back(static_cast<std::int16_t>(random_() % 2 == 0 ? variable.values.low + offset
                                                                    : variable.values.high - offset));
      if (random_() % 8 == 0) continue;
      values.back() = static_cast<std::int16_t>(variable.values.low);
    }
    return values;
  }

 private:
  const std::vector<ChainVariable>& variables_;
  std::mt19937 random_;
};

Values read(const StateStore& store, const StatePacking& packing, StateId id, std::size_t count) {
  std::vector<std::uint64_t> words(packing.word_count());
  Values values(count);
  store.read(id, words.data());
  packing.unpack(words.data(), values.data());
  return values;
}

// With one hash for all, every look-up meets every state; a store that grows takes its own hashes instead.
TEST(StateStore, NumbersStatesLikeAMap) {
  unsigned seed = 0;
  for (const std::vector<ChainVariable>& layout : layouts()) {
    for (const bool all_collide : {false, true}) {
      SCOPED_TRACE("layout " + std::to_string(seed / 2) + (all_collide ? ", one hash" : ""));
      const StatePacking packing(layout);
      StateStore store(packing);
      std::map<Values, StateId> known;
      RandomStates states(layout, seed++);
      std::vector<std::uint64_t> words(packing.word_count());
      for (int i = 0; i < 20'000 && (!all_collide || known.size() < 50); ++i) {
        const Values values = states.next();
        packing.pack(values.data(), words.data());
        const auto [id, outcome] = store.insert(words.data(), all_collide ? 42 : store.hash(words.data()));
        const auto [expected, is_new] = known.emplace(values, known.size());
        ASSERT_EQ(id, expected->second);
        ASSERT_EQ(outcome, is_new ? StateStore::Outcome::kNew : StateStore::Outcome::kKnown);
      }
      EXPECT_EQ(store.size(), known.size());
      for (const auto& [values, id] : known) EXPECT_EQ(read(store, packing, id, layout.size()), values);
    }
  }
}

TEST(StatePacking, SetsSingleVariablesAsPackingDoes) {
  for (const std::vector<ChainVariable>& layout : layouts()) {
    const StatePacking packing(layout);
    RandomStates states(layout, 1);
    std::vector<std::uint64_t> words(packing.word_count());
    std::vector<std::uint64_t> expected(packing.word_count());
    for (int i = 0; i < 200; ++i) {
      const Values from = states.next();
      const Values to = states.next();
      packing.pack(from.data(), words.data());
      for (std::uint32_t slot = 0; slot < layout.size(); ++slot) packing.set(words.data(), slot, to[slot]);
      packing.pack(to.data(), expected.data());
      ASSERT_EQ(words, expected);
    }
  }
}

// The memory is used up when a state finds no room, and beyond the states themselves there are few bytes
// each.
TEST(StateStore, KeepsToItsLimitsAndUsesThem) {
  for (const std::size_t count : {2U, 5U, 12U}) {
    const StatePacking packing(variables(count, -32768, 32767));
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
