// The checksum by which a set of files knows its parts.

#ifndef SYMFOLD_HOST_CHECKSUM_H
#define SYMFOLD_HOST_CHECKSUM_H

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace symfold {

// XXH64 with the seed 0 of a sequence of bytes (Y. Collet: xxHash fast digest algorithm, "XXH64 algorithm
// description"), which the program xxhsum computes too. It reads eight bytes in about a nanosecond. Changes
// by accident are found but with a chance of 2^-64; it is no protection against forgery.
class Checksum {
 public:
  Checksum();

  // The bytes may come in pieces of any size.
  void add(std::string_view bytes);

  // The checksum of what was added so far.
  std::uint64_t value() const;
  std::uint64_t size() const { return length_; }  // in bytes

 private:
  static constexpr std::size_t kBlock = 32;  // bytes, eight for each lane

  void add_block(const char* block);

  std::array<std::uint64_t, 4> lanes_;
  std::array<char, kBlock> held_{};  // what does not fill a block yet
  std::uint64_t length_ = 0;         // of all bytes
};

// Sixteen hexadecimal digits, as xxhsum prints them.
std::string hexadecimal(std::uint64_t checksum);

}  // namespace symfold

#endif  // SYMFOLD_HOST_CHECKSUM_H
