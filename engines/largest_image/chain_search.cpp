#include "engines/largest_image/chain_search.h"

#include <algorithm>
#include <numeric>

#include "engines/base/images.h"
#include "engines/group/stabiliser_chain.h"
#include "engines/largest_image/subgroup.h"

namespace symfold::detail {
namespace {

bool less_values(const Placed& a, const Placed& b) { return a.value < b.value; }
bool equal_values(const Placed& a, const Placed& b) { return a.value == b.value; }

bool fixes_below(const Images& images, std::size_t point) {
  for (std::size_t c = 0; c < point; ++c) {
    if (images[c] != c) return false;
  }
  return true;
}

SparsePermutation moves_of(const Images& images) {
  SparsePermutation moves;
  for (std::size_t c = 0; c < images.size(); ++c) {
    if (images[c] != c) moves.push_back({static_cast<int>(c), static_cast<int>(images[c])});
  }
  return moves;
}

Images images_of(const SparsePermutation& moves, std::size_t point_count) {
  Images images = identity_images<Images>(point_count);
  for (const auto& [point, image] : moves) {
    images[static_cast<std::size_t>(point)] = static_cast<std::uint32_t>(image);
  }
  return images;
}

StabiliserLevel make_level(std::uint32_t base, const std::vector<const Images*>& stabiliser,
                           OrbitTree& tree) {
  const std::size_t count = stabiliser.front()->size();
  build_tree(base, stabiliser, tree);
  StabiliserLevel level{base, {}, {}};
  std::vector<std::size_t> place_of(count);
  for (const int point : tree.points()) {
    const auto position = static_cast<std::size_t>(point);
    if (level.orbit.empty()) {
      level.transversal.push_back(identity_images<Images>(count));
    } else {
      const Images& generator = *stabiliser[static_cast<std::size_t>(tree.generator(point))];
      const std::size_t parent = place_of[static_cast<std::size_t>(tree.parent(point))];
      level.transversal.push_back(composed(level.transversal[parent], inverse(generator)));
    }
    place_of[position] = level.orbit.size();
    level.orbit.push_back(static_cast<std::uint32_t>(position));
  }
  return level;
}

// Returns the levels of the group that these generate; none if they would need more images.
std::vector<StabiliserLevel> levels_of(std::size_t point_count, const std::vector<const Images*>& generators,
                                       std::size_t max_images) {
  std::vector<SparsePermutation> permutations;
  permutations.reserve(generators.size());
  for (const Images* images : generators) permutations.push_back(moves_of(*images));
  const StabiliserChain chain =
      build_stabiliser_chain(static_cast<int>(point_count), std::move(permutations), {});
  std::size_t elements = 0;
  for (const int length : chain.orbit_lengths) elements += static_cast<std::size_t>(length);
  if (elements * point_count > max_images) return {};
  std::vector<Images> strong;
  for (const SparsePermutation& moves : chain.generators) strong.push_back(images_of(moves, point_count));
  OrbitTree tree(static_cast<int>(point_count));
  std::vector<StabiliserLevel> levels;
  for (const int point : chain.base) {
    std::vector<const Images*> stabiliser;
    for (const Images& images : strong) {
      if (fixes_below(images, static_cast<std::size_t>(point))) stabiliser.push_back(&images);
    }
    levels.push_back(make_level(static_cast<std::uint32_t>(point), stabiliser, tree));
  }
  return levels;
}

// Returns the number of entries in the transversal of the first base point alone.
std::size_t least_images(std::size_t point_count, const std::vector<const Images*>& generators) {
  UnionFind orbits(static_cast<int>(point_count));
  for (const Images* images : generators) unite_with_images(*images, orbits);
  for (int x = 0; x < static_cast<int>(point_count); ++x) {
    if (orbits.size_of_class(x) > 1) return static_cast<std::size_t>(orbits.size_of_class(x)) * point_count;
  }
  return 0;
}

bool contains(const std::vector<StabiliserLevel>& levels, Images g) {
  for (const StabiliserLevel& level : levels) {
    const auto place = std::find(level.orbit.begin(), level.orbit.end(), g[level.base]);
    if (place == level.orbit.end()) return false;
    if (place == level.orbit.begin()) continue;
    const Images& back = level.transversal[static_cast<std::size_t>(place - level.orbit.begin())];
    for (std::uint32_t& image : g) image = back[image];
  }
  return is_identity(g);
}

}  // namespace

// Begins with a sample of the generators and adds those that its group leaves out, because tables hold a
// generator for each point of an orbit, of which few are needed.
std::vector<StabiliserLevel> make_stabiliser_levels(std::size_t point_count,
                                                    const std::vector<Images>& generators,
                                                    std::size_t max_images) {
  std::vector<const Images*> used = sample_of(generators);
  if (least_images(point_count, used) > max_images) return {};
  for (;;) {
    std::vector<StabiliserLevel> levels = levels_of(point_count, used, max_images);
    if (levels.empty()) return levels;
    const std::size_t max_used = 2 * used.size();
    const std::size_t before = used.size();
    for (const Images& generator : generators) {
      if (used.size() < max_used && !contains(levels, generator)) used.push_back(&generator);
    }
    if (used.size() == before) return levels;
  }
}

ChainSearch::ChainSearch(std::size_t position_count, std::vector<StabiliserLevel> levels,
                         std::size_t max_candidates)
    : position_count_(position_count),
      levels_(std::make_shared<const std::vector<StabiliserLevel>>(std::move(levels))),
      max_candidates_(max_candidates) {}

bool ChainSearch::maximise(Placed* values) {
  bool is_exact = true;
  candidates_.assign(values, values + position_count_);
  candidate_count_ = 1;
  std::size_t settled = 0;
  for (const StabiliserLevel& level : *levels_) {
    keep_largest(settled, level.base);
    if (!descend(level)) is_exact = false;
    settled = level.base + 1;
    merge_equal(settled);
  }
  keep_largest(settled, position_count_);
  std::copy_n(candidate(0), position_count_, values);
  return is_exact;
}

// Keeps the candidates with the largest values at these positions.
void ChainSearch::keep_largest(std::size_t begin, std::size_t end) {
  std::size_t kept = 1;
  for (std::size_t i = 1; i < candidate_count_; ++i) {
    const Placed* const own = candidate(i);
    const Placed* const best = candidate(0);
    if (std::lexicographical_compare(own + begin, own + end, best + begin, best + end, less_values)) continue;
    if (!std::equal(own + begin, own + end, best + begin, equal_values)) kept = 0;
    if (kept != i) std::copy_n(own, position_count_, candidate(kept));
    ++kept;
  }
  candidate_count_ = kept;
}

// Replaces the candidates by those of their images that have the largest value at the base point. Returns
// false if there are too many.
bool ChainSearch::descend(const StabiliserLevel& level) {
  std::uint64_t best = 0;
  for (std::size_t i = 0; i < candidate_count_; ++i) {
    for (const std::uint32_t point : level.orbit) best = std::max(best, candidate(i)[point].value);
  }
  std::size_t made = 0;
  bool is_complete = true;
  next_.clear();
  for (std::size_t i = 0; i < candidate_count_; ++i) {
    for (std::size_t j = 0; j < level.orbit.size(); ++j) {
      if (candidate(i)[level.orbit[j]].value != best) continue;
      if (made == max_candidates_) {
        is_complete = false;
        continue;
      }
      next_.resize((made + 1) * position_count_);
      Placed* const image = next_.data() + made++ * position_count_;
      for (std::size_t c = 0; c < position_count_; ++c) image[level.transversal[j][c]] = candidate(i)[c];
    }
  }
  std::swap(candidates_, next_);
  candidate_count_ = made;
  return is_complete;
}

// Keeps the first of equal images. Their settled positions are equal already.
void ChainSearch::merge_equal(std::size_t settled) {
  if (candidate_count_ == 1) return;
  order_.resize(candidate_count_);
  std::iota(order_.begin(), order_.end(), 0U);
  const auto is_less = [&](std::uint32_t a, std::uint32_t b) {
    return std::lexicographical_compare(candidate(a) + settled, candidate(a) + position_count_,
                                        candidate(b) + settled, candidate(b) + position_count_, less_values);
  };
  std::sort(order_.begin(), order_.end(), is_less);
  const auto end = std::unique(order_.begin(), order_.end(),
                               [&](std::uint32_t a, std::uint32_t b) { return !is_less(a, b); });
  std::sort(order_.begin(), end);
  candidate_count_ = 0;
  for (auto kept = order_.begin(); kept != end; ++kept, ++candidate_count_) {
    if (*kept != candidate_count_)
      std::copy_n(candidate(*kept), position_count_, candidate(candidate_count_));
  }
}

}  // namespace symfold::detail
