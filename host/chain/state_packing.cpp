#include "host/chain/state_packing.h"

#include <algorithm>
#include <bit>

namespace symfold {

StatePacking::StatePacking(const std::vector<ChainVariable>& variables) {
  constexpr std::size_t kWordBits = 64;
  std::size_t used = 0;  // bits of the last word
  for (const ChainVariable& variable : variables) {
    const auto greatest = static_cast<unsigned>(variable.values.high - variable.values.low);
    const auto width = static_cast<std::size_t>(std::bit_width(greatest));
    if (used + width > kWordBits) {
      ++word_count_;
      used = 0;
    }
    // A variable with a single value has no bits, and its place may be the end of a full word, which is no
    // valid shift.
    fields_.push_back({static_cast<std::uint32_t>(word_count_ - 1),
                       static_cast<std::uint16_t>((1U << width) - 1),
                       static_cast<std::int16_t>(variable.values.low),
                       static_cast<std::uint8_t>(std::min(used, kWordBits - 1))});
    used += width;
  }
  for (std::size_t word = 0, slot = 0; word < word_count_; ++word) {
    while (slot < fields_.size() && fields_[slot].word == word) ++slot;
    word_ends_.push_back(slot);
  }
  byte_count_ = std::max<std::size_t>((word_count_ - 1) * 8 + (used + 7) / 8, 1);
}

void StatePacking::pack(const std::int16_t* values, std::uint64_t* words) const {
  std::size_t slot = 0;
  for (const std::size_t end : word_ends_) {
    std::uint64_t word = 0;
    for (; slot < end; ++slot) word |= bits(fields_[slot], values[slot]) << fields_[slot].shift;
    *words++ = word;
  }
}

void StatePacking::unpack(const std::uint64_t* words, std::int16_t* values) const {
  for (const Field& field : fields_) {
    *values++ = static_cast<std::int16_t>(static_cast<int>(words[field.word] >> field.shift & field.mask) +
                                          field.low);
  }
}

}  // namespace symfold
