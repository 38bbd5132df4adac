// Moves of whole partitions: the step that the label search and the prefix test share.
//
// Applying P carries the bytes of partition c to the place of partition P[c]. An entry that names no
// partition, or a move that would leave the state, ends the process: the tables are wrong, and no label would
// be right.

#include <cstdlib>
#include <ostream>

#include "detector/labelling/copying.h"
#include "detector/symmetry_detection.h"

namespace symfold {
namespace {

[[noreturn]] void fail_move(int entry, std::ostream& diagnostics) {
  diagnostics << "ERROR: moveToIndex: " << std::to_string(entry) << std::endl;
  std::exit(1);
}

bool fits(int offset, int size, int state_size) {
  return offset >= 0 && size >= 0 && offset <= state_size && size <= state_size - offset;
}

}  // namespace

// One pass over the partitions of af_state_scratch_a, by way of af_state_scratch_b; af_new_perm becomes the
// inverse of the permutation.
void SymmetryDetection::MovePartitions(const Permutation& permutation, const PartitionLayout& layout) {
  for (int c = 0; c < num_partitions; ++c) {
    const int d = permutation.GetIth(c);
    if (d < 0 || d >= num_partitions || c >= layout.count || d >= layout.count) fail_move(d, diagnostics());
    const int size = layout.sizes[c];
    if (!fits(layout.offsets[c], size, TotalStateSize) || !fits(layout.offsets[d], size, TotalStateSize)) {
      fail_move(d, diagnostics());
    }
    detail::copy_bytes(af_state_scratch_b + layout.offsets[d], af_state_scratch_a + layout.offsets[c],
                       static_cast<std::size_t>(size));
    af_new_perm[d] = static_cast<short>(c);
  }
  detail::copy_bytes(af_state_scratch_a, af_state_scratch_b, static_cast<std::size_t>(TotalStateSize));
}

// Applies, in table order, every permutation of every record of this value.
void SymmetryDetection::ApplyRecords(const void* state, const ValPerms* records, int record_count, int value,
                                     const PartitionLayout& layout, void* out) {
  const auto state_size = static_cast<std::size_t>(TotalStateSize);
  detail::copy_bytes(af_state_scratch_a, state, state_size);
  detail::copy_bytes(af_new_perm, af_identity_perm, static_cast<std::size_t>(num_partitions) * sizeof(short));
  for (int j = 0; j < record_count; ++j) {
    if (records[j].Value != value) continue;
    for (const Permutation& permutation : records[j].Perms) MovePartitions(permutation, layout);
  }
  detail::copy_bytes(out, af_state_scratch_a, state_size);
}

}  // namespace symfold
