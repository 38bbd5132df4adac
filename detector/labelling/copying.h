// memcpy and memcmp for any number of bytes: the standard ones take no null, not even for no bytes, and a
// state of no bytes may have no address.

#ifndef SYMFOLD_DETECTOR_LABELLING_COPYING_H
#define SYMFOLD_DETECTOR_LABELLING_COPYING_H

#include <cstddef>
#include <cstring>

namespace symfold::detail {

inline void copy_bytes(void* to, const void* from, std::size_t count) {
  if (count > 0) std::memcpy(to, from, count);
}

inline int compare_bytes(const void* a, const void* b, std::size_t count) {
  return count > 0 ? std::memcmp(a, b, count) : 0;
}

}  // namespace symfold::detail

#endif  // SYMFOLD_DETECTOR_LABELLING_COPYING_H
