#include "host/chain/state_store.h"

#include <algorithm>
#include <bit>
#include <cstring>

namespace symfold {
namespace {

constexpr std::size_t kFirstIndex = 64;               // entries
constexpr std::size_t kChunk = std::size_t{1} << 13;  // bytes, roughly

// The index is full at 85 %.
constexpr std::size_t room_of(std::size_t entry_count) { return entry_count / 20 * 17; }

std::uint64_t load(const unsigned char* bytes) {
  std::uint64_t word;
  std::memcpy(&word, bytes, sizeof word);
  return word;
}

}  // namespace

// Chunks end with a word of slack: states are read and written in whole words.
StateStore::StateStore(const StatePacking& packing)
    : word_count_(packing.word_count()),
      byte_count_(packing.byte_count()),
      last_word_mask_(~std::uint64_t{0} >> (8 * (8 * word_count_ - byte_count_))),
      chunk_shift_(static_cast<unsigned>(std::bit_width(std::max<std::size_t>(kChunk / byte_count_, 1))) -
                   1) {
  rebuild_index(kFirstIndex);
}

void StateStore::set_limits(std::size_t max_states, std::size_t max_bytes) {
  max_states_ = std::min(max_states, kMaxStates);
  max_bytes_ = std::min(max_bytes, kMaxBytes);
}

// Multiplies by odd constants, and after each folds the upper half onto the lower one: MurmurHash3's way of
// mixing (A. Appleby, 2011). Both halves of the result are used.
std::uint64_t StateStore::hash(const std::uint64_t* words) const {
  std::uint64_t h = 0x9e3779b97f4a7c15;
  for (std::size_t i = 0; i < word_count_; ++i) {
    h = (h ^ words[i]) * 0xff51afd7ed558ccd;
    h ^= h >> 32;
  }
  h *= 0xc4ceb9fe1a85ec53;
  return h ^ h >> 29;
}

void StateStore::read(StateId id, std::uint64_t* words) const {
  const unsigned char* const bytes = place(id);
  for (std::size_t i = 0; i < word_count_; ++i) words[i] = load(bytes + 8 * i);
  words[word_count_ - 1] &= last_word_mask_;
}

bool StateStore::equals(StateId id, const std::uint64_t* words) const {
  const unsigned char* const bytes = place(id);
  const std::size_t last = word_count_ - 1;
  for (std::size_t i = 0; i < last; ++i) {
    if (load(bytes + 8 * i) != words[i]) return false;
  }
  return (load(bytes + 8 * last) & last_word_mask_) == words[last];
}

StateStore::Found StateStore::insert(const std::uint64_t* words, std::uint64_t hash) {
  const auto hash_bits = static_cast<std::uint32_t>(hash);
  std::size_t position = home(hash);
  for (; index_[position].id != kEmpty; position = next(position)) {
    const Entry& entry = index_[position];
    if (entry.hash_bits == hash_bits && equals(entry.id, words)) return {entry.id, Outcome::kKnown};
  }
  if (size_ >= max_states_) return {0, Outcome::kTooManyStates};
  if (size_ == index_room_) {
    if (!grow_index()) return {0, Outcome::kOutOfMemory};
    position = free_entry(hash);
  }
  if (size_ == chunks_.size() * chunk_states() && !add_chunk()) return {0, Outcome::kOutOfMemory};
  const auto id = static_cast<StateId>(size_++);
  std::memcpy(place(id), words, 8 * word_count_);
  index_[position] = {id, hash_bits};
  return {id, Outcome::kNew};
}

std::size_t StateStore::free_entry(std::uint64_t hash) const {
  std::size_t position = home(hash);
  while (index_[position].id != kEmpty) position = next(position);
  return position;
}

bool StateStore::add_chunk() {
  if (memory() + chunk_bytes() > max_bytes_) return false;
  chunks_.push_back(std::make_unique<unsigned char[]>(chunk_bytes()));
  return true;
}

// Grows the index by half, capped by (a) the entries for all states that fit into the memory allowed and
// (b) the memory left beside the arena.
bool StateStore::grow_index() {
  const std::size_t fitting_states = max_bytes_ * 17 / (17 * byte_count_ + 20 * sizeof(Entry));
  const std::size_t arena = chunks_.size() * chunk_bytes();
  const std::size_t room = (max_bytes_ - std::min(max_bytes_, arena)) / sizeof(Entry);
  const std::size_t grown =
      std::min({index_.size() + index_.size() / 2, fitting_states / 17 * 20 + 20, room});
  if (room_of(grown) <= index_room_) return false;
  rebuild_index(grown);
  return true;
}

void StateStore::rebuild_index(std::size_t entry_count) {
  std::vector<Entry>().swap(index_);  // an assignment would keep the memory
  index_.assign(entry_count, Entry{kEmpty, 0});
  index_room_ = room_of(entry_count);
  std::vector<std::uint64_t> words(word_count_);
  for (std::size_t i = 0; i < size_; ++i) {
    const auto id = static_cast<StateId>(i);
    read(id, words.data());
    const std::uint64_t state_hash = hash(words.data());
    index_[free_entry(state_hash)] = {id, static_cast<std::uint32_t>(state_hash)};
  }
}

}  // namespace symfold
