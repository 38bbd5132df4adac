// Products of symmetric groups that permute objects, with positions for single objects and for sets and
// tuples of them (object_positions.h).
//
// An element is determined by where it puts the objects, so the points of the search are the objects. In a
// round, each position with a value adds a mix of the value and of its objects' colours to the keys of its
// objects. If all objects get colours of their own, they are in a canonical order, and the image is read off.
//
// Most symmetries of a state are exchanges of two objects, *twins*, that leave all values as they are. To be
// twins is an equivalence, because (a b), (b c) and (a c) generate each other in pairs. Twins may go to their
// places in any order; they are singled out together, and a node whose cells are classes of twins is a leaf.
//
// Example: all values of 20 hubs and their 190 links are equal. One round leaves all hubs in one cell; 19
// exchanges are tried, and the root of the tree is its only node.
//
// Cost: about two rounds for random values, each linear in the positions, and a look-up for each position.
// Tied objects cost a comparison of the values around two objects for each pair of one and a class of twins.

#ifndef SYMFOLD_ENGINES_LARGEST_IMAGE_OBJECT_SEARCH_H
#define SYMFOLD_ENGINES_LARGEST_IMAGE_OBJECT_SEARCH_H

#include <memory>
#include <vector>

#include "engines/largest_image/object_positions.h"
#include "engines/largest_image/refining_search.h"

namespace symfold::detail {

class ObjectSearch : public RefiningSearch {
 public:
  // The group consists of all permutations of the objects within their classes, which carry positions to
  // positions. The positions are distinct.
  ObjectSearch(ObjectPositions positions, const std::vector<bool>& has_value, std::size_t max_nodes);
  std::unique_ptr<ImageSearch> clone() const override { return std::make_unique<ObjectSearch>(*this); }

 private:
  // Positions with equally many seats, and these, position after position.
  struct Bundle {
    std::size_t arity;
    Points positions;
    Points seats;
  };
  struct Plan {
    ObjectPositions positions;
    std::vector<Bundle> read;  // the positions with values; single objects' first
    std::vector<Bundle> all;
    std::vector<Points> read_by_object;
  };
  static std::shared_ptr<const Plan> make_plan(ObjectPositions positions, const std::vector<bool>& has_value);
  static std::vector<Bundle> make_bundles(const ObjectPositions& positions, const Points& chosen);

  ObjectSearch(std::shared_ptr<const Plan> plan, const std::vector<bool>& has_value, std::size_t max_nodes);

  void start() override;
  void add_keys(std::vector<std::uint64_t>& keys) override;
  std::uint32_t settle() override;
  void single_out(std::uint32_t object) override;
  void unite_known(UnionFind& orbits) const override;
  std::uint32_t name_of(std::uint32_t object) const override { return twin_of_[object]; }
  void save(std::size_t /*depth*/) override {}
  void restore(std::size_t /*depth*/) override {}
  void make_source(Points& source) override;
  const Points& leaf_order() const override { return cells_.order(); }

  template <std::size_t kArity>
  void add_sums(const Bundle& bundle, const std::uint64_t* value_keys);
  template <std::size_t kArity>
  void find_sources(const Bundle& bundle, Points& source) const;
  void find_twins();
  bool are_twins(std::uint32_t a, std::uint32_t b) const;
  std::uint64_t exchanged_key(std::uint32_t position, std::uint32_t a, std::uint32_t b) const;

  std::shared_ptr<const Plan> plan_;
  bool is_first_round_ = true;
  std::vector<std::uint64_t> value_keys_;    // of the positions with values, by bundle
  std::vector<std::uint64_t> seat_colours_;  // by seat, as the next two
  std::vector<std::uint64_t> sums_;
  std::vector<std::uint64_t> place_keys_;   // of the seat of the object that comes there
  bool has_twins_ = false;                  // true once they are found
  Points twin_of_;                          // a member of each object's class of twins
  std::vector<std::uint64_t> twin_counts_;  // by object
  std::size_t twin_classes_ = 0;
  Points firsts_;  // of the classes of a cell
};

}  // namespace symfold::detail

#endif  // SYMFOLD_ENGINES_LARGEST_IMAGE_OBJECT_SEARCH_H
