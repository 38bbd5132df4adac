#include "engines/largest_image/object_positions.h"

#include <algorithm>
#include <bit>
#include <utility>

#include "engines/base/mix.h"

namespace symfold::detail {

ObjectPositions::ObjectPositions(Numbers class_begins, const Numbers& class_of_role,
                                 const std::vector<std::vector<Seat>>& seats)
    : class_begins_(std::move(class_begins)) {
  Numbers role_begins;
  for (std::uint32_t role = 0; role < class_of_role.size(); ++role) {
    role_begins.push_back(static_cast<std::uint32_t>(seats_.size()));
    const std::uint32_t c = class_of_role[role];
    for (std::uint32_t object = class_begins_[c]; object < class_begins_[c + 1]; ++object) {
      keys_.push_back(mix(seats_.size()));
      seats_.push_back({role, object});
    }
  }
  for (const std::vector<Seat>& own : seats) {
    begins_.push_back(static_cast<std::uint32_t>(seat_numbers_.size()));
    for (const auto& [role, object] : own)
      seat_numbers_.push_back(role_begins[role] + object - class_begins_[class_of_role[role]]);
    std::sort(seat_numbers_.begin() + begins_.back(), seat_numbers_.end());
  }
  begins_.push_back(static_cast<std::uint32_t>(seat_numbers_.size()));
  are_distinct_ = fill_table();
}

// A quarter of the table is full, so that most look-ups read one entry. Returns false if two keys are equal.
bool ObjectPositions::fill_table() {
  const int bits = static_cast<int>(std::bit_width(position_count())) + 2;
  table_.resize(std::size_t{1} << bits);
  shift_ = 64 - bits;
  for (std::uint32_t p = 0; p < position_count(); ++p) {
    std::uint64_t key = 0;
    for (const std::uint32_t seat : seats_of(p)) key += keys_[seat];
    if (position_with(key) != kNone) return false;
    std::size_t i = key >> shift_;
    while (table_[i].position != kNone) i = (i + 1) & (table_.size() - 1);
    table_[i] = {key, p};
  }
  return true;
}

ObjectPositions::Numbers ObjectPositions::images_of(const Numbers& objects) const {
  Numbers images;
  Numbers image_seats;
  for (std::size_t p = 0; p < position_count(); ++p) {
    image_seats.clear();
    std::uint64_t key = 0;
    for (const std::uint32_t seat : seats_of(p)) {
      image_seats.push_back(seat_with(seat, objects[seats_[seat].object]));
      key += keys_[image_seats.back()];
    }
    const std::uint32_t image = position_with(key);
    std::sort(image_seats.begin(), image_seats.end());
    if (image == kNone || !std::ranges::equal(seats_of(image), image_seats)) return {};
    images.push_back(image);
  }
  return images;
}

}  // namespace symfold::detail
