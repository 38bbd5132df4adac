// States in as few bits as their variables' value sets need.

#ifndef SYMFOLD_HOST_CHAIN_STATE_PACKING_H
#define SYMFOLD_HOST_CHAIN_STATE_PACKING_H

#include <cstddef>
#include <cstdint>
#include <vector>

#include "host/chain/markov_chain.h"

namespace symfold {

// A packed state is word_count() words of 64 bits, of which byte_count() bytes matter: the rest is zero. No
// variable lies across two words. Five philosophers' states take 15 bits in place of 160.
class StatePacking {
 public:
  explicit StatePacking(const std::vector<ChainVariable>& variables);

  std::size_t word_count() const { return word_count_; }
  std::size_t byte_count() const { return byte_count_; }

  // A whole state. Cost: in the number of variables.
  void pack(const std::int16_t* values, std::uint64_t* words) const;
  void unpack(const std::uint64_t* words, std::int16_t* values) const;

  // Sets one variable of a packed state.
  void set(std::uint64_t* words, std::uint32_t slot, std::int16_t value) const {
    const Field& field = fields_[slot];
    std::uint64_t& word = words[field.word];
    word = (word & ~(std::uint64_t{field.mask} << field.shift)) | bits(field, value) << field.shift;
  }

 private:
  struct Field {
    std::uint32_t word;
    std::uint16_t mask;
    std::int16_t low;
    std::uint8_t shift;
  };

  static std::uint64_t bits(const Field& field, std::int16_t value) {
    return static_cast<std::uint64_t>(value - field.low);
  }

  std::vector<Field> fields_;           // by slot
  std::vector<std::size_t> word_ends_;  // by word, into fields_
  std::size_t word_count_ = 1;
  std::size_t byte_count_ = 1;
};

}  // namespace symfold

#endif  // SYMFOLD_HOST_CHAIN_STATE_PACKING_H
