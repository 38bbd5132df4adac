// The set of the states that an exploration has reached, each stored once. Their numbers are the order in
// which they come.
//
// States lie packed in an arena of chunks, in the order of their numbers, without padding. An open-addressing
// index with linear probing has an entry of 8 bytes for each: the state's number and 32 bits of its hash. If
// the hash bits differ, so do the states; if they agree, the full states are compared.
//
// The index is at most 85 % full and grows by half, so it costs 8/0.85 = 9.4 to 14.1 bytes a state. To grow,
// it is dropped and filled anew by a walk through the arena, so that there are never two indexes at a time.
// Near the end of the memory allowed it grows only so far that the arena has room to grow with it.

#ifndef SYMFOLD_HOST_CHAIN_STATE_STORE_H
#define SYMFOLD_HOST_CHAIN_STATE_STORE_H

#include <cstddef>
#include <cstdint>
#include <limits>
#include <memory>
#include <vector>

#include "host/chain/markov_chain.h"
#include "host/chain/state_packing.h"

namespace symfold {

class StateStore {
 public:
  enum class Outcome : std::uint8_t { kNew, kKnown, kTooManyStates, kOutOfMemory };

  struct Found {
    StateId id;  // if the outcome is kNew or kKnown
    Outcome outcome;
  };

  explicit StateStore(const StatePacking& packing);

  // Allows `max_states` states, and `max_bytes` bytes for arena and index together. If there is more already,
  // no state is added any more.
  void set_limits(std::size_t max_states, std::size_t max_bytes);

  std::size_t size() const { return size_; }

  // Bytes of arena and index.
  std::size_t memory() const { return chunks_.size() * chunk_bytes() + index_.size() * sizeof(Entry); }

  std::uint64_t hash(const std::uint64_t* words) const;

  // Fetches into the cache the place in the index at which the search for this hash starts.
  void prefetch(std::uint64_t hash) const { __builtin_prefetch(&index_[home(hash)]); }

  // Fetches into the cache the state that the index has at that place, if any. To be called when the place
  // itself has arrived.
  void prefetch_state(std::uint64_t hash) const {
    const Entry& entry = index_[home(hash)];
    if (entry.id != kEmpty) __builtin_prefetch(place(entry.id));
  }

  // Returns the number of the state, and adds the state if it is new. `hash` is that of the words.
  Found insert(const std::uint64_t* words, std::uint64_t hash);

  void read(StateId id, std::uint64_t* words) const;

 private:
  struct Entry {
    StateId id;
    std::uint32_t hash_bits;
  };

  static constexpr StateId kEmpty = std::numeric_limits<StateId>::max();
  static constexpr std::size_t kMaxStates = kEmpty;
  static constexpr std::size_t kMaxBytes = std::size_t{1} << 56;

  // The upper half of the hash, scaled to the index's size; the lower half is stored.
  std::size_t home(std::uint64_t hash) const { return ((hash >> 32) * index_.size()) >> 32; }
  std::size_t chunk_states() const { return std::size_t{1} << chunk_shift_; }
  std::size_t chunk_bytes() const { return byte_count_ * chunk_states() + sizeof(std::uint64_t); }
  unsigned char* place(StateId id) const {
    return chunks_[id >> chunk_shift_].get() + (id & (chunk_states() - 1)) * byte_count_;
  }
  bool equals(StateId id, const std::uint64_t* words) const;
  std::size_t next(std::size_t position) const { return position + 1 == index_.size() ? 0 : position + 1; }
  std::size_t free_entry(std::uint64_t hash) const;
  bool add_chunk();
  bool grow_index();
  void rebuild_index(std::size_t entry_count);

  std::size_t word_count_;
  std::size_t byte_count_;
  std::uint64_t last_word_mask_;
  unsigned chunk_shift_;
  std::size_t max_states_ = kMaxStates;
  std::size_t max_bytes_ = kMaxBytes;
  std::size_t size_ = 0;
  std::size_t index_room_ = 0;  // states that the index can hold
  std::vector<std::unique_ptr<unsigned char[]>> chunks_;
  std::vector<Entry> index_;
};

}  // namespace symfold

#endif  // SYMFOLD_HOST_CHAIN_STATE_STORE_H
