// Products of symmetric groups that permute objects, with positions for single objects and for pairs of them:
// hubs and the links between all hubs, or clients, servers and a link for each of both.
//
//     positions  h0 h1 h2 | l01 l02 l12        objects 0, 1, 2; l12 belongs to the pair of 1 and 2
//
// An element is known by where it puts the objects, so the search never handles elements: it fills slots, the
// places of the objects, and reads the positions in their order. Slots that are not told apart yet form a
// cell with as many objects to fill it.
//
//  - The values at a run of positions that belong to the slots of one cell, one after the other, are largest
//    sorted: the cell splits into cells of equal values, and no choice is made.
//  - Where a position needs to know which object a slot has, every object of its cell is tried. Of the
//    candidates those go on that have the largest value at each position.
//  - Candidates whose images are equal, with the cells filled in the candidates' order, have the same images
//    in the end: one of them goes on. So a word whose values are all equal keeps to one candidate.
//
// This is the way of individualisation and refinement (B. D. McKay, A. Piperno, Practical graph isomorphism
// II, J. Symb. Comput. 60, 2014), with sorting by values for refinement, since a largest image is wanted and
// not any canonical form.
//
// Cost: for a random word with few values about as many values read as the first cells have pairs of objects.
// Words whose many symmetries do not show as equal images can need exponentially many candidates: their
// number is bounded.

#ifndef SYMFOLD_ENGINES_LARGEST_IMAGE_OBJECT_SEARCH_H
#define SYMFOLD_ENGINES_LARGEST_IMAGE_OBJECT_SEARCH_H

#include <algorithm>
#include <memory>
#include <utility>
#include <vector>

#include "engines/largest_image/image_search.h"
#include "engines/largest_image/object_positions.h"

namespace symfold::detail {

class ObjectSearch : public ImageSearch {
 public:
  // The group is that of all permutations of the objects within their classes, of which there are fewer than
  // 2^16; each has an image by positions.images_of. Only the positions with values, ascending, are read. At
  // most `max_candidates` are followed at a time.
  ObjectSearch(const ObjectPositions& positions, const std::vector<std::uint32_t>& positions_with_values,
               std::size_t max_candidates);
  std::unique_ptr<ImageSearch> clone() const override { return std::make_unique<ObjectSearch>(*this); }
  bool maximise(Placed* word) override;

 private:
  using Object = std::uint16_t;

  // How a position is read: of its two slots the free one is that in which the positions behind it differ,
  // and `run` is the number of positions, this one included, whose free slots follow each other, all else
  // equal. The value comes from table[base + object of the fixed slot * fixed_stride + object of the free one
  // * free_stride].
  struct Step {
    std::size_t base;
    std::size_t fixed_stride;  // 0 where there is one slot
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
  std::size_t advance(std::size_t next, const Placed* word);
  void close(std::uint32_t slot);
  void branch(std::uint32_t slot);
  void read(const Step& step, std::uint32_t length, const Placed* word);
  void rank(const Step& step, std::uint32_t length, const Placed* word, const Object* objects);
  void split(std::uint32_t slot, std::uint32_t length);
  void merge_equal(std::size_t next, const Placed* word);
  std::uint64_t hash_from(std::size_t next, const Placed* word, const Object* objects) const;
  bool equal_from(std::size_t next, const Placed* word, const Object* a, const Object* b) const;

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
