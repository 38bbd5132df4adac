// An output file that is either whole or not there.

#ifndef SYMFOLD_HOST_NEW_FILE_H
#define SYMFOLD_HOST_NEW_FILE_H

#include <charconv>
#include <concepts>
#include <cstddef>
#include <cstring>
#include <memory>
#include <string>
#include <string_view>

#include "detector/whole_file.h"
#include "host/checksum.h"

namespace symfold {

// A WholeFile (detector/whole_file.h) for text, which gathers in a buffer of constant size. All functions
// except the destructor may throw std::runtime_error "NAME: error: cannot be written: REASON".
class NewFile {
 public:
  // If there is a checksum, everything that is appended is added to it in the end. It must outlive this file.
  explicit NewFile(std::string name, Checksum* checksum = nullptr);
  NewFile(const NewFile&) = delete;
  NewFile& operator=(const NewFile&) = delete;

  // Appends texts and characters as they are, integers in decimal, and doubles in the fewest digits that read
  // back as the same double ("0.1", "1e-300", "inf"), in every locale.
  template <class... Parts>
  void append(const Parts&... parts) {
    (put(parts), ...);
  }

  // Brings the contents to the disk under a name of their own. To be called once, after the last append, by
  // writers of several files that appear together.
  void finish();

  // Gives the file its name after its contents have reached the disk, by finish() if that was not called. To
  // be called once.
  void commit();

  // True if the file is a device or a pipe, which is written directly.
  bool is_direct() const { return file_.is_direct(); }

 private:
  static constexpr std::size_t kBufferSize = std::size_t{1} << 20;
  static constexpr std::size_t kMaxNumberLength = 32;  // a double takes at most 24 characters

  void put(std::string_view text) {
    if (text.size() > kBufferSize - used_) return put_in_pieces(text);
    std::memcpy(buffer_.get() + used_, text.data(), text.size());
    used_ += text.size();
  }
  void put(char c) {
    make_room(1);
    buffer_[used_++] = c;
  }
  template <class Number>
  requires std::integral<Number> || std::same_as<Number, double>
  void put(Number number) {
    make_room(kMaxNumberLength);
    char* const start = buffer_.get() + used_;
    used_ += static_cast<std::size_t>(std::to_chars(start, start + kMaxNumberLength, number).ptr - start);
  }

  void put_in_pieces(std::string_view text);
  void make_room(std::size_t size) {
    if (kBufferSize - used_ < size) flush();
  }
  void flush();
  void require(bool is_written) const;

  WholeFile file_;
  Checksum* checksum_;
  std::unique_ptr<char[]> buffer_;
  std::size_t used_ = 0;
};

}  // namespace symfold

#endif  // SYMFOLD_HOST_NEW_FILE_H
