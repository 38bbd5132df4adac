// From graph-node order to state-vector order: with s the position in SSOrder of the name at a GNOrder
// position, a permutation P becomes s P s^-1, a point p becomes s(p), and the partition table is put into
// SSOrder.
//
// A point that has no name (-1), and a name that SSOrder has not, become -1 and are not looked up. Images
// that have no place in state-vector order are left out; TrimPermutations refuses what is then no
// permutation.

#include <algorithm>
#include <cstdlib>
#include <numeric>
#include <optional>
#include <ostream>
#include <utility>

#include "detector/graph/graph_names.h"
#include "detector/partitions/byte_sizes.h"
#include "detector/partitions/once_per_shared.h"
#include "detector/symmetry_detection.h"
#include "engines/base/images.h"

namespace symfold {
namespace {

// The renaming s of the GNOrder positions.
class Renaming {
 public:
  Renaming(const std::vector<std::string>& from, const std::vector<std::string>& to) : scratch_(from.size()) {
    const detail::NameIndex index(to);
    image_.reserve(from.size());
    for (const std::string& name : from) image_.push_back(index.find(name));
    is_bijection_ = detail::is_permutation(image_);
  }

  int operator()(int point) const { return has(point) ? image_[static_cast<std::size_t>(point)] : -1; }

  void conjugate(Permutation& permutation, std::ostream& diagnostics) {
    if (once_(permutation, [this](const Permutation& before) { return conjugated(before); })) return;
    const int n = static_cast<int>(image_.size());
    std::iota(scratch_.begin(), scratch_.end(), 0);
    for (int i = 0; i < n; ++i) {
      const int image = permutation[i];
      if (image >= n) diagnostics << "p_it too big: " << std::to_string(image) << std::endl;
      const int source = (*this)(i);
      const int target = (*this)(image);
      if (has(source) && has(target)) scratch_[static_cast<std::size_t>(source)] = target;
    }
    permutation = Permutation(n, scratch_.data());
  }

  void rename(ValPerms& record, std::ostream& diagnostics) {
    record.Value = (*this)(record.Value);
    for (Permutation& permutation : record.Perms) conjugate(permutation, diagnostics);
  }

 private:
  bool has(int point) const { return point >= 0 && static_cast<std::size_t>(point) < image_.size(); }

  // Returns nothing unless both the renaming and what it renames are permutations.
  std::optional<Permutation> conjugated(const Permutation& permutation) {
    const int n = static_cast<int>(image_.size());
    if (!is_bijection_ || permutation.GetN() != n || !permutation.IsPermutation()) return std::nullopt;
    moves_.clear();
    permutation.VisitMoves([this](int i, int image) { moves_.push_back({(*this)(i), (*this)(image)}); });
    std::ranges::sort(moves_, {}, &PointMove::point);
    return Permutation(n, moves_);
  }

  std::vector<int> image_;
  bool is_bijection_;
  detail::OncePerShared once_;
  SparsePermutation moves_;
  std::vector<int> scratch_;
};

}  // namespace

void SymmetryDetection::AdjustPermutations() {
  diagnostics() << "ADJUST PERMUTATIONS" << std::endl << "SS Order\tGraphNode Order: " << std::endl;
  if (SSOrder.size() == GNOrder.size()) {
    diagnostics() << "Size: " << std::to_string(SSOrder.size()) << std::endl;
  } else {
    diagnostics() << "ERROR: Sizes differ" << std::endl;
    diagnostics() << "SSOrder: " << std::to_string(SSOrder.size())
                  << "  GNORder: " << std::to_string(GNOrder.size()) << std::endl;
  }
  for (std::size_t i = 0; i < std::min(SSOrder.size(), GNOrder.size()); ++i) {
    diagnostics() << "  " << SSOrder[i] << "\t\t\t" << GNOrder[i] << std::endl;
  }
  diagnostics() << "PermSize: " << std::to_string(GNOrder.size()) << std::endl;
  diagnostics() << "=====================" << std::endl << "Before Permutations: " << std::endl;
  PrintPermutations();

  Renaming renaming(GNOrder, SSOrder);
  std::vector<int> new_bases;
  std::vector<std::vector<ValPerms>> new_vperms;
  for (auto& [base, records] : VPerms) {
    new_bases.push_back(renaming(base));
    for (ValPerms& record : records) renaming.rename(record, diagnostics());
    new_vperms.push_back(std::move(records));
  }
  diagnostics() << "new_bases: " << std::endl;
  for (const int base : new_bases) diagnostics() << "\tbase: " << std::to_string(base) << std::endl;
  diagnostics() << "new vperms: " << std::endl;
  for (const auto& records : new_vperms) {
    for (const ValPerms& record : records) diagnostics() << record << std::endl;
  }
  VPerms.clear();
  for (std::size_t r = 0; r < new_bases.size(); ++r) VPerms[new_bases[r]] = std::move(new_vperms[r]);
  Bases = std::move(new_bases);
  diagnostics() << "=====================" << std::endl << "After Adjustment" << std::endl;
  PrintPermutations();
}

void SymmetryDetection::AdjustPartitionInfo() {
  diagnostics() << "Old Partition Info: " << std::endl;
  PrintPartitionInfo();
  const detail::NameIndex graph_order(GNOrder);
  std::vector<int> sizes;
  for (const std::string& name : SSOrder) {
    diagnostics() << "SSOrder: " << name << std::endl;
    const int g = graph_order.find(name);
    if (g == -1) {
      diagnostics() << "index == -1" << std::endl;
      std::exit(1);
    }
    if (static_cast<std::size_t>(g) < PartitionInfo.size()) {
      sizes.push_back(PartitionInfo[static_cast<std::size_t>(g)]);
    }
  }
  if (sizes.size() == PartitionInfo.size() && SSOrder.size() == sizes.size()) {
    PartitionInfo = std::move(sizes);
    CumPartitionInfo.clear();
    int offset = 0;
    for (const int size : PartitionInfo) {
      CumPartitionInfo.push_back(offset);
      offset = add_bytes(offset, size);
    }
    StaticCumPartitionInfo = CumPartitionInfo;
  } else if (!PartitionInfo.empty()) {
    Refuse("expected as many partitions as names in SSOrder (" + std::to_string(SSOrder.size()) + "), got " +
           std::to_string(PartitionInfo.size()));
    HasWholeGroup = false;
  }
  diagnostics() << "New partition Info: " << std::endl;
  PrintPartitionInfo();
}

}  // namespace symfold
