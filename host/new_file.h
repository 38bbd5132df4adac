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

namespace symfold {

// Written beside its place under the name NAME.partial; commit() renames it to NAME. Without a commit the
// destructor removes it. If NAME exists and is no regular file (a device, a pipe), then it is written
// directly. Text gathers in a buffer of constant size. All functions except the destructor may throw
// std::runtime_error "NAME: error: cannot be written: REASON".
class NewFile {
 public:
  explicit NewFile(std::string name);
  ~NewFile();
  NewFile(const NewFile&) = delete;
  NewFile& operator=(const NewFile&) = delete;

  // Appends texts and characters as they are, integers in decimal, and doubles in the fewest digits that read
  // back as the same double ("0.1", "1e-300", "inf"), in every locale.
  template <class... Parts>
  void append(const Parts&... parts) {
    (put(parts), ...);
  }

  // Gives the file its name after its contents have reached the disk. To be called once, after the last
  // append.
  void commit();

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
  [[noreturn]] void fail(int error) const;

  std::string name_;
  bool is_direct_;
  std::string written_name_;
  std::unique_ptr<char[]> buffer_;
  std::size_t used_ = 0;
  int descriptor_ = -1;
};

}  // namespace symfold

#endif  // SYMFOLD_HOST_NEW_FILE_H
