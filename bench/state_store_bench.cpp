// The store of an exploration's states beside general hash sets: random packed states of one and three words,
// of which every one is looked up `kLookUps` times in all, as the successors of an exploration are.

#include <absl/container/flat_hash_set.h>
#include <benchmark/benchmark.h>

#include <random>
#include <unordered_set>

#include "host/chain/state_store.h"

namespace symfold {
namespace {

constexpr std::size_t kLookUps = 8;

// Variables that fill `words` words of 64 bits.
std::vector<ChainVariable> variables(std::size_t words) {
  return std::vector<ChainVariable>(words * 4, {"x", {ValueSet::Kind::kRange, -32768, 32767, nullptr}});
}

// A well-mixed word for each number (SplitMix64; Steele, Lea, Flood 2014).
std::uint64_t mixed(std::uint64_t number) {
  number = (number + 1) * 0x9e3779b97f4a7c15;
  number = (number ^ number >> 30) * 0xbf58476d1ce4e5b9;
  number = (number ^ number >> 27) * 0x94d049bb133111eb;
  return number ^ number >> 31;
}

// kLookUps times `states` states, each one of about `states` different ones.
std::vector<std::uint64_t> look_ups(std::size_t states, std::size_t words) {
  std::mt19937_64 random(1);
  std::vector<std::uint64_t> result;
  for (std::size_t i = 0; i < states * kLookUps; ++i) {
    const std::uint64_t state = random() % states;
    for (std::size_t w = 0; w < words; ++w) result.push_back(mixed(state * words + w));
  }
  return result;
}

void report(benchmark::State& state, std::size_t look_up_count) {
  state.SetItemsProcessed(static_cast<std::int64_t>(look_up_count) * state.iterations());
}

void store(benchmark::State& state) {
  const auto words = static_cast<std::size_t>(state.range(1));
  const std::vector<std::uint64_t> states = look_ups(static_cast<std::size_t>(state.range(0)), words);
  const StatePacking packing(variables(words));
  double bytes = 0;
  for (auto _ : state) {
    StateStore store(packing);
    for (std::size_t i = 0; i < states.size(); i += words) {
      benchmark::DoNotOptimize(store.insert(&states[i], store.hash(&states[i])));
    }
    bytes = static_cast<double>(store.memory()) / static_cast<double>(store.size());
  }
  state.counters["bytes_per_state"] = bytes;
  report(state, states.size() / words);
}

// States in a vector, and a set of their numbers that hashes and compares the states themselves.
class NumberedStates {
 public:
  explicit NumberedStates(std::size_t words) : words_(words), packing_(variables(words)), hasher_(packing_) {}

  const std::uint64_t* words_of(StateId id) const { return &arena_[id * words_]; }
  void push(const std::uint64_t* state) { arena_.insert(arena_.end(), state, state + words_); }
  void pop() { arena_.resize(arena_.size() - words_); }

  std::size_t operator()(StateId id) const { return hasher_.hash(words_of(id)); }
  bool operator()(StateId a, StateId b) const {
    return std::equal(words_of(a), words_of(a) + words_, words_of(b));
  }

 private:
  std::size_t words_;
  StatePacking packing_;
  StateStore hasher_;
  std::vector<std::uint64_t> arena_;
};

// The candidate is appended first, so that the set can look at it by its number, and taken back if known.
template <template <class...> class Set>
void numbered_set(benchmark::State& state) {
  const auto words = static_cast<std::size_t>(state.range(1));
  const std::vector<std::uint64_t> look_up = look_ups(static_cast<std::size_t>(state.range(0)), words);
  for (auto _ : state) {
    NumberedStates states(words);
    const auto hash = [&](StateId id) { return states(id); };
    const auto equal = [&](StateId a, StateId b) { return states(a, b); };
    Set<StateId, decltype(hash), decltype(equal)> set(16, hash, equal);
    for (std::size_t i = 0; i < look_up.size(); i += words) {
      states.push(&look_up[i]);
      if (!set.insert(static_cast<StateId>(set.size())).second) states.pop();
    }
    benchmark::DoNotOptimize(set.size());
  }
  report(state, look_up.size() / words);
}

void sizes(benchmark::internal::Benchmark* benchmark) {
  for (const int states : {10'000, 1'000'000, 4'000'000}) {
    for (const int words : {1, 3}) benchmark->Args({states, words});
  }
  benchmark->ArgNames({"states", "words"})->Unit(benchmark::kMillisecond);
}

BENCHMARK(store)->Apply(sizes);
BENCHMARK(numbered_set<absl::flat_hash_set>)->Apply(sizes);
BENCHMARK(numbered_set<std::unordered_set>)->Apply(sizes);

}  // namespace
}  // namespace symfold
