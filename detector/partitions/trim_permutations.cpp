// The last step of detection: identities and empty records are dropped, and every record keeps one
// permutation, the arrangement that its permutations, one after the other, produce: entry j is the partition
// that ends at position j. For a single permutation P that is the inverse of P, since P carries partition c
// to position P[c].

#include <algorithm>
#include <numeric>
#include <ostream>
#include <utility>

#include "detector/symmetry_detection.h"

namespace symfold {
namespace {

// Drops the identities of the record, printing each, and notes the point count of every permutation it meets.
void drop_identities(ValPerms& record, int& point_count, std::ostream& diagnostics) {
  std::erase_if(record.Perms, [&](const Permutation& permutation) {
    point_count = permutation.GetN();
    if (!permutation.IsIdentity()) return false;
    diagnostics << permutation << " is an identity" << std::endl;
    return true;
  });
}

class Composer {
 public:
  explicit Composer(int point_count) : arrangement_(static_cast<std::size_t>(point_count)) {
    std::iota(arrangement_.begin(), arrangement_.end(), 0);
  }

  // Replaces the permutations of the record by their composite.
  void compose(ValPerms& record) {
    for (const Permutation& permutation : record.Perms) {
      arrivals_.clear();
      permutation.VisitMoves([this](int i, int image) { arrivals_.push_back({image, at(i)}); });
      for (const auto& [point, partition] : arrivals_) {
        if (at(point) == point) touched_.push_back(point);
        at(point) = partition;
      }
    }
    record.Perms.clear();
    record.Perms.push_back(take());
  }

 private:
  int& at(int point) { return arrangement_[static_cast<std::size_t>(point)]; }

  // Returns the arrangement and makes it the identity. Few points are sorted, many are read in passing.
  Permutation take() {
    const auto n = static_cast<int>(arrangement_.size());
    if (touched_.size() > arrangement_.size() / 4) {
      Permutation composite(n, arrangement_.data());
      std::iota(arrangement_.begin(), arrangement_.end(), 0);
      touched_.clear();
      return composite;
    }
    std::sort(touched_.begin(), touched_.end());
    arrivals_.clear();
    for (const int point : touched_) {
      if (at(point) != point) arrivals_.push_back({point, std::exchange(at(point), point)});
    }
    touched_.clear();
    return {n, arrivals_};
  }

  std::vector<int> arrangement_;  // entry j: the partition that ends at position j
  SparsePermutation arrivals_;
  std::vector<int> touched_;  // all positions where the arrangement is not the identity, and others
};

}  // namespace

void SymmetryDetection::TrimPermutations() {
  diagnostics() << "Before TrimPermutations: " << std::endl;
  PrintPermutations();
  int point_count = 0;
  for (const int base : Bases) {
    std::vector<ValPerms>& records = VPerms[base];
    for (ValPerms& record : records) drop_identities(record, point_count, diagnostics());
    std::erase_if(records, [](const ValPerms& record) { return record.Perms.empty(); });
  }
  diagnostics() << "After TrimPermutation Part 1: " << std::endl;
  PrintPermutations();
  diagnostics() << "PermSize: " << std::to_string(point_count) << std::endl;

  for (const int base : Bases) {
    for (const ValPerms& record : VPerms[base]) {
      for (const Permutation& permutation : record.Perms) {
        if (permutation.GetN() == point_count && permutation.IsPermutation()) continue;
        Refuse("base " + std::to_string(base) + ", value " + std::to_string(record.Value) +
               ": expected a permutation of " + std::to_string(point_count) + " partitions");
        DropTables();
        return;
      }
    }
  }
  Composer composer(point_count);
  for (const int base : Bases) {
    diagnostics() << "base: " << std::to_string(base) << std::endl;
    for (ValPerms& record : VPerms[base]) composer.compose(record);
  }
  diagnostics() << "After TrimPermutation: " << std::endl;
  PrintPermutations();
}

}  // namespace symfold
