#include "host/new_file.h"

#include <stdexcept>
#include <utility>

namespace symfold {

NewFile::NewFile(std::string name, Checksum* checksum)
    : file_(std::move(name)),
      checksum_(checksum),
      buffer_(std::make_unique_for_overwrite<char[]>(kBufferSize)) {
  require(file_.error().empty());
}

void NewFile::put_in_pieces(std::string_view text) {
  while (!text.empty()) {
    make_room(1);
    const std::string_view piece = text.substr(0, kBufferSize - used_);
    put(piece);
    text.remove_prefix(piece.size());
  }
}

void NewFile::flush() {
  const std::string_view text(buffer_.get(), std::exchange(used_, 0));
  if (checksum_ != nullptr) checksum_->add(text);
  require(file_.write(text.data(), text.size()));
}

void NewFile::finish() {
  flush();
  require(file_.finish());
  buffer_.reset();
}

void NewFile::commit() {
  if (buffer_ != nullptr) finish();
  require(file_.commit());
}

void NewFile::require(bool is_written) const {
  if (!is_written) throw std::runtime_error(file_.error());
}

}  // namespace symfold
