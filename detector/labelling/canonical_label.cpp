// The search for greedy labels, base by base. For each base point every stored permutation of its orbit is
// tried on the current state. The largest image, bytes in memcmp order, goes on to the next base.
//
// Two roads lead to the same label. The plan (planned_search.h) takes tables of bijections between partitions
// of equal size, as detection makes them. For all other tables the search goes step by step: it makes every
// image, at the cost of a pass over the state, and ends the process at an entry that leads outside the state.
// Both leave the same contents in every member. Neither allocates anything.

#include <cstdlib>
#include <ostream>

#include "detector/labelling/copying.h"
#include "detector/labelling/planned_search.h"
#include "detector/symmetry_detection.h"

namespace symfold {

// Returns the last slot of this base point. In tables that detection has made there is only one.
int SymmetryDetection::FindBaseSlot(int base) const {
  for (int i = num_bases; i-- > 0;) {
    if (static_bases[i] == base) return i;
  }
  diagnostics() << "Base index not found." << std::endl;
  std::exit(1);
}

int SymmetryDetection::FindOrbit_static(int base, int* values) {
  const int slot = FindBaseSlot(base);
  for (int j = 0; j < static_num_vperms[slot]; ++j) values[j] = static_vperms[slot][j].Value;
  return static_num_vperms[slot];
}

int SymmetryDetection::FindNewState_static(void* state, int base, int value, void* out) {
  const int slot = FindBaseSlot(base);
  const PartitionLayout layout{static_partition_sizes, static_partition_offsets, num_partitions};
  ApplyRecords(state, static_vperms[slot], static_num_vperms[slot], value, layout, out);
  return 0;
}

// The plan answers for the tables that it was made from. If the caller has changed what the search reads, the
// search goes step by step, with its checks.
void SymmetryDetection::FindCanonicalLabel(void* state, void* out, short* perm) {
  const auto state_size = static_cast<std::size_t>(TotalStateSize);
  const auto perm_size = static_cast<std::size_t>(num_partitions) * sizeof(short);
  detail::copy_bytes(af_best_perm, af_identity_perm, perm_size);
  if (planned_ != nullptr && planned_->applies(*this, perm != nullptr)) {
    planned_->run(*this, state, perm != nullptr);
  } else {
    SearchStepByStep(state, perm != nullptr);
  }
  detail::copy_bytes(out, af_current_state, state_size);
  if (perm != nullptr) detail::copy_bytes(perm, af_best_perm, perm_size);
}

void SymmetryDetection::SearchStepByStep(const void* state, bool composes) {
  const auto state_size = static_cast<std::size_t>(TotalStateSize);
  const auto perm_size = static_cast<std::size_t>(num_partitions) * sizeof(short);
  detail::copy_bytes(af_current_state, state, state_size);
  detail::copy_bytes(af_best_state, state, state_size);
  for (int i = 0; i < num_bases; ++i) {
    const int base = static_cast<std::size_t>(i) < Bases.size() ? Bases[static_cast<std::size_t>(i)] : -1;
    const int orbit_length = FindOrbit_static(base, af_orbit);
    detail::copy_bytes(af_temp_best_perm, af_identity_perm, perm_size);
    detail::copy_bytes(af_orbit_copy, af_orbit, static_cast<std::size_t>(orbit_length) * sizeof(int));
    af_choice[i] = -1;
    for (int j = 0; j < orbit_length; ++j) {
      FindNewState_static(af_current_state, base, af_orbit_copy[j], af_new_state);
      if (detail::compare_bytes(af_new_state, af_best_state, state_size) <= 0) continue;
      detail::copy_bytes(af_best_state, af_new_state, state_size);
      if (composes) detail::copy_bytes(af_temp_best_perm, af_new_perm, perm_size);
      af_choice[i] = j;
    }
    detail::copy_bytes(af_current_state, af_best_state, state_size);
    if (composes) ComposeBestPerm();
  }
}

void SymmetryDetection::ComposeBestPerm() {
  for (int c = 0; c < num_partitions; ++c) {
    const short t = af_temp_best_perm[c];
    if (t < 0 || t >= num_partitions) {
      diagnostics() << "af_temp_best_perm out of range: " << static_cast<const void*>(af_temp_best_perm)
                    << std::endl;
      std::exit(1);
    }
    af_perm_scratch[t] = af_best_perm[c];
  }
  detail::copy_bytes(af_best_perm, af_perm_scratch, static_cast<std::size_t>(num_partitions) * sizeof(short));
}

void SymmetryDetection::FindWitness(short* witness) {
  if (planned_ != nullptr && planned_->applies(*this, true)) {
    planned_->find_witness({af_choice, static_cast<std::size_t>(num_bases)}, witness);
    return;
  }
  detail::copy_bytes(witness, af_identity_perm, static_cast<std::size_t>(num_partitions) * sizeof(short));
  for (int i = 0; i < num_bases; ++i) {
    if (af_choice[i] < 0) continue;
    const int slot = FindBaseSlot(static_bases[i]);
    const int value = static_vperms[slot][af_choice[i]].Value;
    for (int j = 0; j < static_num_vperms[slot]; ++j) {
      if (static_vperms[slot][j].Value != value) continue;
      for (const Permutation& permutation : static_vperms[slot][j].Perms) {
        for (int c = 0; c < num_partitions; ++c) {
          witness[c] = static_cast<short>(permutation.GetIth(witness[c]));
        }
      }
    }
  }
}

}  // namespace symfold
