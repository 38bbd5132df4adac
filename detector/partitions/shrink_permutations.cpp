// From graph nodes to partitions: every point of the value-permutation table becomes a position in GNOrder,
// and every permutation of the graph nodes the permutation that it induces on those positions.
//
// Real nodes (submodels and join variables) come first in node order. The shrink map gives each of them the
// position of its partition, and -1 to a join's nodes but the first. Walking a permutation's images of the
// real nodes and keeping those that have a position gives the induced permutation: nodes A J->x J->y B K->x
// K->y have the map 0 1 -1 2 3 -1, and the images 3 5 4 0 2 1 keep 2 3 0 1, A with B and J with K.
//
// A base that is no real node is left out with its records. It is the node of a submodel's variable. Such
// bases occur if a variable is bound twice: it has two nodes, one of which has no edges, and those without
// edges are exchanged freely. Fewer permutations are sound in any case. And nothing is lost. Real nodes are
// numbered before all others, and each base point is the smallest one that the stabiliser S of the base
// points before it moves (schreier_sims.h). If that is no real node, S fixes all real nodes, so S moves no
// partition. The records of the real base points hold, for each of them, the points that the stabiliser of
// the base points before it reaches. So every automorphism is a product of these records' permutations and a
// member of S, and what it does to the partitions is the product of what these permutations do.
//
// A table that is not of this form (an orbit point that is no real node, a permutation that moves real nodes
// elsewhere or keeps another number of images) is refused.

#include <optional>
#include <ostream>
#include <utility>

#include "detector/graph/graph_names.h"
#include "detector/partitions/once_per_shared.h"
#include "detector/symmetry_detection.h"

namespace symfold {
namespace {

// Prints the names of the real nodes and returns their map; a real node behind other nodes has no entry.
std::vector<int> make_shrink_map(const std::vector<ModelCompGraphNode>& nodes, std::size_t real_count,
                                 int& position_count, std::ostream& diagnostics) {
  std::vector<int> map(real_count, -1);
  detail::NameIndex joins;
  for (std::size_t i = 0; i < nodes.size(); ++i) {
    if (!nodes[i].PrivateOrJoin) continue;
    diagnostics << "  " << nodes[i].Name << std::endl;
    const std::string join(detail::join_name(nodes[i].Name));
    if (!join.empty() && !joins.append(join)) continue;
    if (i < real_count) map[i] = position_count;
    ++position_count;
  }
  return map;
}

std::string blank_separated(const std::vector<int>& numbers) {
  std::string text;
  for (const int number : numbers) {
    text += ' ';
    text += std::to_string(number);
  }
  return text;
}

class Shrinker {
 public:
  Shrinker(std::vector<int> map, std::size_t partition_count, std::ostream& diagnostics)
      : map_(std::move(map)), partition_count_(partition_count), diagnostics_(diagnostics) {
    int position = 0;
    for (const int entry : map_) is_numbered_ = is_numbered_ && (entry == -1 || entry == position++);
    is_numbered_ = is_numbered_ && position == static_cast<int>(partition_count);
  }

  bool has(int node) const { return node >= 0 && static_cast<std::size_t>(node) < map_.size(); }
  int operator[](int node) const { return map_[static_cast<std::size_t>(node)]; }

  // Replaces a permutation of the nodes by the induced one and prints it. Returns false if there is none.
  bool shrink(Permutation& permutation) {
    if (diagnostics_) {
      if (!keep_images(permutation)) return false;
      print_kept();
    }
    if (once_(permutation, [this](const Permutation& of_nodes) { return induced(of_nodes); })) return true;
    if (!keep_images(permutation)) return false;
    permutation = Permutation(static_cast<int>(kept_.size()), kept_.data());
    return true;
  }

  // Replaces a record of nodes by one of positions.
  bool shrink(ValPerms& record) {
    if (!has(record.Value)) return false;
    const int position = (*this)[record.Value];
    diagnostics_ << "  Val: " << std::to_string(record.Value) << "  map[Val]: " << std::to_string(position)
                 << std::endl;
    record.Value = position;
    for (Permutation& permutation : record.Perms) {
      if (!shrink(permutation)) return false;
    }
    return true;
  }

 private:
  // Reads the induced permutation off the moves of the real nodes. Returns nothing unless they are permuted,
  // and those that have a position among themselves.
  std::optional<Permutation> induced(const Permutation& permutation) {
    if (!is_numbered_ || !permutation.IsPermutation() || !has_all(permutation)) return std::nullopt;
    moves_.clear();
    bool is_induced = true;
    permutation.VisitMoves([&](int node, int image) {
      if (!has(node)) return;
      is_induced = is_induced && has(image) && ((*this)[node] == -1) == ((*this)[image] == -1);
      if (is_induced && (*this)[node] != -1) moves_.push_back({(*this)[node], (*this)[image]});
    });
    if (!is_induced) return std::nullopt;
    return Permutation(static_cast<int>(partition_count_), moves_);
  }

  // Keeps the images of the real nodes that have a position. Returns false if they make no permutation.
  bool keep_images(const Permutation& permutation) {
    kept_.clear();
    if (!has_all(permutation)) return false;
    for (int node = 0; has(node); ++node) {
      const int image = permutation[node];
      if (!has(image)) return false;
      if ((*this)[image] != -1) kept_.push_back((*this)[image]);
    }
    return kept_.size() == partition_count_;
  }

  // True if the last real node has an image that is one; then all have images.
  bool has_all(const Permutation& permutation) const {
    return map_.empty() || has(permutation[static_cast<int>(map_.size()) - 1]);
  }

  // The kept images and the new permutation, which are the same numbers.
  void print_kept() const {
    const std::string images = blank_separated(kept_);
    diagnostics_ << "   " << images << std::endl
                 << "   " << images << std::endl
                 << "=============" << std::endl;
  }

  std::vector<int> map_;
  std::size_t partition_count_;
  std::ostream& diagnostics_;
  bool is_numbered_ = true;  // the positions are 0, 1, .. in the order of the nodes
  detail::OncePerShared once_;
  SparsePermutation moves_;
  std::vector<int> kept_;
};

}  // namespace

void SymmetryDetection::ShrinkPermutations() {
  std::size_t real_count = 0;
  for (const ModelCompGraphNode& node : GraphNodes) real_count += node.PrivateOrJoin ? 1 : 0;
  diagnostics() << "num_real: " << std::to_string(real_count) << std::endl;
  diagnostics() << "ShrinkPermutations" << std::endl;
  int position_count = 0;
  std::vector<int> map = make_shrink_map(GraphNodes, real_count, position_count, diagnostics());
  diagnostics() << "Shrink Map: " << std::endl << blank_separated(map) << std::endl;
  diagnostics() << "Shrinking..." << std::endl;

  Shrinker shrinker(std::move(map), GNOrder.size(), diagnostics());
  std::vector<int> new_bases;
  std::map<int, std::vector<ValPerms>> new_vperms;
  bool is_sound = true;
  for (auto& [base, records] : VPerms) {
    if (!shrinker.has(base)) continue;
    diagnostics() << "Base: " << std::to_string(base) << "  map[base]: " << std::to_string(shrinker[base])
                  << std::endl;
    for (ValPerms& record : records) is_sound = is_sound && shrinker.shrink(record);
    if (!is_sound) break;
    new_bases.push_back(shrinker[base]);
    new_vperms[shrinker[base]] = std::move(records);
  }
  Bases = std::move(new_bases);
  VPerms = std::move(new_vperms);
  if (!is_sound) {
    Refuse("expected permutations that move the submodels and joins among themselves");
    DropTables();
  }
  diagnostics() << "====================" << std::endl << "AFTER SHRINK" << std::endl;
  PrintPermutations();
}

// A table that is refused leaves no symmetry at all, which is sound for every model.
void SymmetryDetection::DropTables() {
  Bases.clear();
  VPerms.clear();
  HasWholeGroup = false;
}

}  // namespace symfold
