#ifndef SYMFOLD_DETECTOR_PARTITIONS_BYTE_SIZES_H
#define SYMFOLD_DETECTOR_PARTITIONS_BYTE_SIZES_H

namespace symfold {

// The sum of two sizes in int arithmetic. Sizes that a host sets are not checked when they are added up: a
// sum past the largest int wraps to a negative size, which the allocation of the search buffers then rejects.
inline int add_bytes(int a, int b) {
  return static_cast<int>(static_cast<unsigned>(a) + static_cast<unsigned>(b));
}

}  // namespace symfold

#endif  // SYMFOLD_DETECTOR_PARTITIONS_BYTE_SIZES_H
