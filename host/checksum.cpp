#include "host/checksum.h"

#include <algorithm>
#include <bit>
#include <cstring>

namespace symfold {
namespace {

constexpr std::uint64_t kPrime1 = 0x9E3779B185EBCA87U;
constexpr std::uint64_t kPrime2 = 0xC2B2AE3D27D4EB4FU;
constexpr std::uint64_t kPrime3 = 0x165667B19E3779F9U;
constexpr std::uint64_t kPrime4 = 0x85EBCA77C2B2AE63U;
constexpr std::uint64_t kPrime5 = 0x27D4EB2F165667C5U;

// A number of which the first byte is the lowest.
template <class Number>
Number read(const char* bytes) {
  Number number = 0;
  if constexpr (std::endian::native == std::endian::little) {
    std::memcpy(&number, bytes, sizeof number);
  } else {
    for (std::size_t i = sizeof number; i-- > 0;) {
      number = static_cast<Number>(number << 8U) | static_cast<unsigned char>(bytes[i]);
    }
  }
  return number;
}

std::uint64_t mixed(std::uint64_t lane, std::uint64_t input) {
  return std::rotl(lane + input * kPrime2, 31) * kPrime1;
}

// The bytes that fill no block: eight at a time, then four, then single ones.
std::uint64_t with_rest(std::uint64_t hash, std::string_view rest) {
  for (; rest.size() >= 8; rest.remove_prefix(8)) {
    hash = std::rotl(hash ^ mixed(0, read<std::uint64_t>(rest.data())), 27) * kPrime1 + kPrime4;
  }
  if (rest.size() >= 4) {
    hash = std::rotl(hash ^ (read<std::uint32_t>(rest.data()) * kPrime1), 23) * kPrime2 + kPrime3;
    rest.remove_prefix(4);
  }
  for (const char c : rest) hash = std::rotl(hash ^ (static_cast<unsigned char>(c) * kPrime5), 11) * kPrime1;
  return hash;
}

}  // namespace

Checksum::Checksum() : lanes_{kPrime1 + kPrime2, kPrime2, 0, 0 - kPrime1} {}

void Checksum::add_block(const char* block) {
  for (std::size_t i = 0; i < lanes_.size(); ++i) {
    lanes_[i] = mixed(lanes_[i], read<std::uint64_t>(block + 8 * i));
  }
}

void Checksum::add(std::string_view bytes) {
  const std::size_t held = length_ % kBlock;
  length_ += bytes.size();
  if (held > 0) {
    const std::size_t count = std::min(kBlock - held, bytes.size());
    std::copy_n(bytes.data(), count, held_.data() + held);
    bytes.remove_prefix(count);
    if (held + count < kBlock) return;
    add_block(held_.data());
  }
  for (; bytes.size() >= kBlock; bytes.remove_prefix(kBlock)) add_block(bytes.data());
  std::copy_n(bytes.data(), bytes.size(), held_.data());
}

std::uint64_t Checksum::value() const {
  std::uint64_t hash = kPrime5;
  if (length_ >= kBlock) {
    hash = std::rotl(lanes_[0], 1) + std::rotl(lanes_[1], 7) + std::rotl(lanes_[2], 12) +
           std::rotl(lanes_[3], 18);
    for (const std::uint64_t lane : lanes_) hash = (hash ^ mixed(0, lane)) * kPrime1 + kPrime4;
  }
  hash = with_rest(hash + length_, {held_.data(), length_ % kBlock});
  hash = (hash ^ (hash >> 33U)) * kPrime2;
  hash = (hash ^ (hash >> 29U)) * kPrime3;
  return hash ^ (hash >> 32U);
}

std::string hexadecimal(std::uint64_t checksum) {
  std::string digits(16, '0');
  for (std::size_t i = digits.size(); i-- > 0; checksum >>= 4U)
    digits[i] = "0123456789abcdef"[checksum & 15U];
  return digits;
}

}  // namespace symfold
