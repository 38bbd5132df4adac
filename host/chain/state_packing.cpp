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
    // A variable of a single value has no bits and may stand at the end of a full word.
    fields_.push_back({static_cast<std::uint32_t>(word_count_ - 1),
                       static_cast<std::uint16_t>((1U << width) - 1),
                       static_cast<std::int16_t>(variable.values.low),
                       static_cast<std::uint8_t>(std::min(used, kWordBits - 1))});
    used += width;
  }
  byte_count_ = std::max<std::size_t>((word_count_ - 1) * 8 + (used + 7) / 8, 1);
}

void StatePacking::pack(const std::int16_t* values, std::uint64_t* words) const {
  std::fill_n(words, word_count_, std::uint64_t{0});
  for (const Field& field : fields_) words[field.word] |= bits(field, *values++) << field.shift;
}

void StatePacking::unpack(const std::uint64_t* words, std::int16_t* values) const {
  for (const Field& field : fields_) {
    *values++ = static_cast<std::int16_t>(static_cast<int>(words[field.word] >> field.shift & field.mask) +
                                          field.low);
  }
}

}  // namespace symfold
