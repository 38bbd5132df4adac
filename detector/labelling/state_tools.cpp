// State tools, on the container tables: the prefix test with its look-ups, the search for the largest
// partition, and states for a person.

#include <algorithm>
#include <cstdint>
#include <numeric>
#include <ostream>

#include "detector/labelling/copying.h"
#include "detector/partitions/byte_sizes.h"
#include "detector/symmetry_detection.h"

namespace symfold {
namespace {

// Calls `bar` at the visited bytes that start a partition, and `number` with every visited byte.
template <class Bar, class Number>
void walk_state(const void* state, int n, const std::vector<int>& starts, Bar bar, Number number) {
  const auto* bytes = static_cast<const unsigned char*>(state);
  std::size_t next = 0;
  for (int i = 0; i < n; i += 2) {
    if (next < starts.size() && i == starts[next]) {
      bar();
      ++next;
    }
    number(static_cast<unsigned>(bytes[i]));
  }
}

}  // namespace

void SymmetryDetection::FindOrbit(int base, std::vector<int>* values) {
  for (const ValPerms& record : VPerms[base]) values->push_back(record.Value);
}

int SymmetryDetection::FindNewState(void* state, int base, int value, void* out) {
  const std::vector<ValPerms>& records = VPerms[base];
  const PartitionLayout layout{PartitionInfo.data(), CumPartitionInfo.data(),
                               static_cast<int>(std::min(PartitionInfo.size(), CumPartitionInfo.size()))};
  ApplyRecords(state, records.data(), static_cast<int>(records.size()), value, layout, out);
  return 0;
}

bool SymmetryDetection::IsPartiallyCanonical(int k, void* state) {
  const auto partition = static_cast<std::size_t>(k);
  if (k < 0 || partition >= std::min(PartitionInfo.size(), CumPartitionInfo.size())) {
    Refuse("IsPartiallyCanonical: expected a partition, got " + std::to_string(k));
    return true;
  }
  const int num_bytes = add_bytes(PartitionInfo[partition], CumPartitionInfo[partition]);
  diagnostics() << "num_bytes: " << std::to_string(num_bytes) << std::endl;
  const auto state_size = static_cast<std::size_t>(TotalStateSize);
  const auto prefix = static_cast<std::size_t>(std::clamp(num_bytes, 0, TotalStateSize));
  detail::copy_bytes(af_current_state, state, state_size);
  detail::copy_bytes(af_best_state, state, state_size);
  bool is_canonical = true;
  for (std::size_t i = 0; i < Bases.size() && is_canonical; ++i) {
    orbit->clear();
    FindOrbit(Bases[i], orbit);
    *orbit_copy = *orbit;
    for (const int value : *orbit_copy) {
      FindNewState(af_current_state, Bases[i], value, af_new_state);
      if (detail::compare_bytes(af_new_state, af_best_state, prefix) > 0) {
        detail::copy_bytes(af_best_state, af_new_state, state_size);
        is_canonical = false;
        break;
      }
    }
    if (is_canonical) detail::copy_bytes(af_current_state, af_best_state, state_size);
    orbit->clear();
    orbit_copy->clear();
  }
  return is_canonical;
}

void SymmetryDetection::FindK(void* state, std::vector<int>& partitions, std::vector<int>& result, int n) {
  const auto* bytes = static_cast<const unsigned char*>(state);
  // The state ends where the partition table does, also before TotalStateSize is known.
  const auto table_end = std::accumulate(PartitionInfo.begin(), PartitionInfo.end(), std::int64_t{0});
  const std::int64_t state_size = std::max<std::int64_t>(table_end, TotalStateSize);
  for (const int partition : partitions) {
    const bool is_partition = partition >= 0 && static_cast<std::size_t>(partition) < CumPartitionInfo.size();
    const int offset = is_partition ? CumPartitionInfo[static_cast<std::size_t>(partition)] : -1;
    if (n >= 0 && offset >= 0 && offset + std::int64_t{n} <= state_size) continue;
    Refuse("FindK: expected a partition with " + std::to_string(n) + " bytes from its start, got " +
           std::to_string(partition));
    result.push_back(-1);
    return;
  }
  const auto size = static_cast<std::size_t>(std::max(n, 0));
  const auto start = [&](int partition) {
    return size == 0 ? bytes : bytes + CumPartitionInfo[static_cast<std::size_t>(partition)];
  };
  std::vector<unsigned char> largest(size + 1, 0);
  for (const int partition : partitions) {
    if (detail::compare_bytes(start(partition), largest.data(), size) > 0) {
      std::copy_n(start(partition), size, largest.begin());
    }
  }
  diagnostics() << "Largest state: ";
  PrintState(largest.data(), n);
  const auto found = std::find_if(partitions.begin(), partitions.end(), [&](int partition) {
    return detail::compare_bytes(start(partition), largest.data(), size) == 0;
  });
  const int k = found == partitions.end() ? -1 : static_cast<int>(found - partitions.begin());
  diagnostics() << "SmallestK: " << std::to_string(k) << std::endl;
  result.push_back(k);
}

void SymmetryDetection::PrintState(void* state, int n) {
  walk_state(
      state, n, StaticCumPartitionInfo, [this] { diagnostics() << "|"; },
      [this](unsigned byte) { diagnostics() << std::to_string(byte); });
  diagnostics() << std::endl;
}

void SymmetryDetection::WriteState(void* state, int n, FILE* file) {
  walk_state(
      state, n, StaticCumPartitionInfo, [file] { std::fputc('|', file); },
      [file](unsigned byte) { std::fprintf(file, "%x", byte); });
  std::fputc('\n', file);
}

}  // namespace symfold
