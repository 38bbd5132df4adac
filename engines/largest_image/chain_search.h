// Any group, down its stabiliser chain.
//
// The candidate is an image of the values. Below each level of the chain, one more base point has got the
// value that it keeps: the elements of the next stabiliser move the others. The points of the search are the
// positions that no others lead (orbitals.h); in a round, each gets a key from the colours of those to which
// the group's sparse relations lead. At a level, the points that can come to the base point are its orbit. If
// a cell has one of them only, the coset representative that brings it there is applied, and no choice is
// made. If not, positions are told apart by their orbits under the stabiliser as well; and if still no cell
// has one of them only, those of the smallest cell are tried in turn. As soon as the values are the same on
// each orbit of the stabiliser, the image is final. So if all values are equal, the root is a leaf.
//
// Symmetries of a state are found at leaves, and before that among the generators of the stabiliser.
//
// Tried and dropped: to choose the base point by the state, so that it is the one with the smallest cell.
// It needs a tree of stabilisers instead of one chain.
//
// Cost: rounds linear in the arcs, down the chain its orbits and what its generators move.

#ifndef SYMFOLD_ENGINES_LARGEST_IMAGE_CHAIN_SEARCH_H
#define SYMFOLD_ENGINES_LARGEST_IMAGE_CHAIN_SEARCH_H

#include <memory>
#include <vector>

#include "engines/group/permutation_group.h"
#include "engines/largest_image/orbitals.h"
#include "engines/largest_image/refining_search.h"
#include "engines/largest_image/stabiliser_trees.h"

namespace symfold::detail {

class ChainSearch : public RefiningSearch {
 public:
  // Throws std::length_error if the orbits of all stabilisers would have more than `max_entries` entries.
  ChainSearch(const PermutationGroup& group, const std::vector<bool>& has_value, std::size_t max_nodes,
              std::size_t max_entries);
  std::unique_ptr<ImageSearch> clone() const override { return std::make_unique<ChainSearch>(*this); }

 private:
  struct Stabiliser {
    std::vector<std::uint64_t> orbit_of;  // by position
    Points moved;                         // the positions with values that it moves
    Points smallest;                      // of the orbit of each of them
    Points generators;
  };
  struct Plan {
    StabiliserTrees trees;
    Orbitals orbitals;
    std::vector<Stabiliser> stabilisers;  // by level
  };
  struct Saved {
    Points source;
    std::size_t level;
  };

  static std::shared_ptr<const Plan> make_plan(const PermutationGroup& group,
                                               const std::vector<bool>& has_value, std::size_t max_entries);
  static Stabiliser make_stabiliser(const StabiliserTrees& trees, std::size_t level,
                                    const std::vector<bool>& has_value);
  static PointCells cells_of(const Plan& plan);

  ChainSearch(std::shared_ptr<const Plan> plan, const std::vector<bool>& has_value, std::size_t max_nodes);

  void start() override;
  void add_keys(std::vector<std::uint64_t>& keys) override;
  std::uint32_t settle() override;
  void single_out(std::uint32_t point) override;
  void unite_known(UnionFind& orbits) const override;
  std::uint32_t name_of(std::uint32_t point) const override { return point; }
  void save(std::size_t depth) override;
  void restore(std::size_t depth) override;
  void make_source(Points& source) override;
  const Points& leaf_order() const override { return order_; }

  // The point whose value, or that of a position it leads, is at this place of the image.
  std::uint32_t point_at(std::size_t place) const { return plan_->orbitals.leader_of[source_[place]]; }

  void descend(std::uint32_t place);
  std::uint32_t smallest_cell();
  bool is_final() const;

  std::shared_ptr<const Plan> plan_;
  Points source_;  // the image has at c the value from position source_[c]
  std::size_t level_ = 0;
  bool knows_orbits_ = true;  // cells are no coarser than the stabiliser's orbits
  std::vector<std::uint64_t> point_keys_;
  Points counts_;  // by cell; 0 between calls
  Points order_;   // the points, as the image has them
  Points scratch_;
  std::vector<Saved> saved_;
};

}  // namespace symfold::detail

#endif  // SYMFOLD_ENGINES_LARGEST_IMAGE_CHAIN_SEARCH_H
