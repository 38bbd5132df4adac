// Products of symmetric groups that permute objects, with positions for single objects and for pairs of them:
// hubs and the links between all hubs, or clients, servers and a link for each of both.
//
//     positions  h0 h1 h2 | l01 l02 l12        objects 0, 1, 2; l12 belongs to the pair of 1 and 2
//
// An element is determined by where it puts the objects, so the search never handles elements: it fills
// slots, the places of the objects, and reads the positions in their order. Slots that cannot be
// distinguished yet form a cell, with as many objects to fill it.
//
//  - If a run of positions belongs to the slots of one cell, one after the other, their values are largest
//  when
//    sorted: the cell splits into cells of equal values, and no choice is made.
//  - If a position needs to know which object a slot has, every object of its cell is tried. The candidates
//    with the largest value at each position go on.
//  - Candidates whose images are equal, with the cells filled in the candidates' order, have the same images
//    in the end: one of them goes on. So if all values are equal, there is never more than one candidate.
//
// This is individualisation and refinement (B. D. McKay, A. Piperno, Practical graph isomorphism II, J. Symb.
// Comput. 60, 2014). Refinement is sorting by values, because a largest image is wanted and not any canonical
// form.
//
// Cost: if few different values lie at random, about as many reads as the first cells have pairs of objects.
// Values whose many symmetries do not show as equal images can need exponentially many candidates, so their
// number is bounded.

#ifndef SYMFOLD_ENGINES_LARGEST_IMAGE_OBJECT_SEARCH_H
#define SYMFOLD_ENGINES_LARGEST_IMAGE_OBJECT_SEARCH_H

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <utility>
#include <vector>

#include "engines/largest_image/image_search.h"

namespace symfold::detail {

// The objects to which a position belongs: two, or one, which is then named twice. Permutations of the
// objects carry positions of one kind onto each other.
struct ObjectPair {
  std::uint32_t kind;
  std::uint32_t first;
  std::uint32_t second;

  bool is_single() const { return first == second; }
};

// Positions that belong to objects and pairs of objects. Objects are numbered class after class.
class ObjectPositions {
 public:
  static constexpr std::uint32_t kNone = UINT32_MAX;

  // `class_begins` holds the first object of each class and, at the end, the number of objects. If
  // is_unordered[kind], a pair of this kind is the same in either order.
  ObjectPositions(std::vector<std::uint32_t> class_begins, std::vector<ObjectPair> pairs,
                  const std::vector<bool>& is_unordered);

  std::size_t object_count() const { return class_begins_.back(); }
  const std::vector<std::uint32_t>& class_begins() const { return class_begins_; }
  const std::vector<ObjectPair>& pairs() const { return pairs_; }

  // The positions by kind, first and second object: for two objects of a kind, the entry at table_of(kind) +
  // first * object_count() + second. kNone if there is no such position.
  const std::vector<std::uint32_t>& table() const { return table_; }
  std::size_t table_of(std::uint32_t kind) const { return kind * object_count() * object_count(); }

  // Returns what a permutation of the objects does to the positions. Empty if it carries a pair with a
  // position to one without.
  Images images_of(const std::vector<std::uint32_t>& objects) const;

 private:
  std::vector<std::uint32_t> class_begins_;
  std::vector<ObjectPair> pairs_;  // by position
  std::vector<std::uint32_t> table_;
};

class ObjectSearch : public ImageSearch {
 public:
  // The group consists of all permutations of the objects within their classes; each has images by
  // positions.images_of. There are fewer than 2^16 objects. Only the positions with values, ascending, are
  // read. At most `max_candidates` are followed at a time.
  ObjectSearch(const ObjectPositions& positions, const std::vector<std::uint32_t>& positions_with_values,
               std::size_t max_candidates);
  std::unique_ptr<ImageSearch> clone() const override { return std::make_unique<ObjectSearch>(*this); }
  bool maximise(Placed* values) override;

 private:
  using Object = std::uint16_t;

  // How a position is read. The free one of its two slots is the one in which the next positions differ, and
  // `run` is the number of positions, this one included, whose free slots follow each other, all else equal.
  // The value comes from table[base + object of the fixed slot * fixed_stride + object of the free one *
  // free_stride].
  struct Step {
    std::size_t base;
    std::size_t fixed_stride;  // 0 if there is one slot
    std::size_t free_stride;
    std::uint32_t fixed_slot;
    std::uint32_t free_slot;
    std::uint32_t run;
  };
  struct Plan {
    std::vector<Step> steps;    // by position
    std::vector<Step> reading;  // those of the positions with values
    std::vector<std::uint32_t> table;
    std::vector<std::uint32_t> class_begins;
    std::size_t object_count;
    std::size_t max_candidates;
  };
  struct Ranked {
    std::uint64_t value;
    Object object;
  };

  static std::vector<Step> make_steps(const ObjectPositions& positions,
                                      const std::vector<std::uint32_t>& read);

  Object* candidate(std::size_t i) { return objects_.data() + i * plan_->object_count; }
  void keep(std::size_t from, std::size_t to) {
    if (from != to) std::copy_n(candidate(from), plan_->object_count, candidate(to));
  }
  bool is_open(std::uint32_t slot) const { return cell_ends_[slot] - cell_begins_[slot] > 1; }
  std::uint32_t source(const Step& step, const Object* objects, Object free_object) const {
    return plan_
        ->table[step.base + objects[step.fixed_slot] * step.fixed_stride + free_object * step.free_stride];
  }

  void start();
  std::size_t advance(std::size_t next, const Placed* values);
  void close(std::uint32_t slot);
  void branch(std::uint32_t slot);
  void read(const Step& step, std::uint32_t length, const Placed* values);
  void rank(const Step& step, std::uint32_t length, const Placed* values, const Object* objects);
  void split(std::uint32_t slot, std::uint32_t length);
  void merge_equal(std::size_t next, const Placed* values);
  std::uint64_t hash_from(std::size_t next, const Placed* values, const Object* objects) const;
  bool equal_from(std::size_t next, const Placed* values, const Object* a, const Object* b) const;

  std::shared_ptr<const Plan> plan_;
  bool is_exact_ = true;
  // The cells of the slots, the same for all candidates.
  std::vector<std::uint32_t> cell_begins_;
  std::vector<std::uint32_t> cell_ends_;
  std::size_t open_slots_ = 0;  // slots in cells of several
  // The candidates: which object each slot has, or would have if its cell were filled in this order.
  std::size_t candidate_count_ = 0;
  std::vector<Object> objects_;
  std::vector<Object> branched_;
  std::vector<Ranked> ranked_;       // the slots of a run, by descending values
  std::vector<std::uint64_t> best_;  // their values in the best candidates
  std::vector<std::pair<std::uint64_t, std::uint32_t>> hashes_;
  std::vector<Placed> image_;
};

}  // namespace symfold::detail

#endif  // SYMFOLD_ENGINES_LARGEST_IMAGE_OBJECT_SEARCH_H
