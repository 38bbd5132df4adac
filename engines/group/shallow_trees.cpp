// Shortcuts: redundant strong generators that keep Schreier trees shallow.
//
// With the rotation (0 1 .. 999) as the one generator, point 999 is 999 steps from 0. Let h(1), .., h(k) be
// group elements and consider the points that 0 reaches by taking or skipping the steps h(k), .., h(1) and
// then the inverses of h(1), .., h(k), in this order. Whenever some orbit point is not reached, an element
// h(k+1) that leads there at least doubles the number of points reached by the first half. So at most
// log2(orbit length) elements, with their inverses, make every path at most twice as long as that. For the
// rotation they are about its powers 1, 2, 4, .., 512 and their inverses: 20 generators, and no point more
// than 5 steps away (L. Babai, G. Cooperman, L. Finkelstein and A. Seress, Nearly linear time algorithms for
// permutation groups with a small base, ISSAC 1991; A. Seress, Permutation Group Algorithms, 2003,
// section 4.4).

#include <algorithm>
#include <bit>
#include <utility>

#include "engines/base/images.h"
#include "engines/base/point_vector.h"
#include "engines/group/orbit_tree.h"
#include "engines/group/stabiliser_chain.h"

namespace symfold::detail {
namespace {

using Images = PointVector<int>;

class ShortcutBuilder {
 public:
  ShortcutBuilder(int n, StabiliserChain& chain) : chain_(chain), steps_(n), tree_(n) {}

  // Goes from the last base point up, because its generators belong to the stabilisers of all base points
  // before it.
  void run() {
    std::vector<std::vector<int>> generators_of(chain_.base.size());
    for (std::size_t g = 0; g < chain_.generators.size(); ++g) {
      const auto level =
          std::lower_bound(chain_.base.begin(), chain_.base.end(), chain_.generators[g].front().point);
      generators_of[static_cast<std::size_t>(level - chain_.base.begin())].push_back(static_cast<int>(g));
    }
    for (std::size_t i = chain_.base.size(); i-- > 0;) {
      for (const int g : generators_of[i]) use_generator(g);
      const int length = chain_.orbit_lengths[i];
      const int log_length = static_cast<int>(std::bit_width(static_cast<unsigned>(length - 1)));
      grow_tree(chain_.base[i]);
      if (tree_.depth(tree_.points().back()) > std::max(2, log_length)) add_doublings(chain_.base[i]);
    }
  }

 private:
  struct Step {
    int generator;
    int image;
  };

  void use_generator(int g) {
    for (const auto& [point, image] : chain_.generators[static_cast<std::size_t>(g)]) {
      steps_[point].push_back({g, image});
    }
  }

  void grow_tree(int root) {
    tree_.set_root(root);
    tree_.grow([&](int point, const auto& step) {
      for (const auto& [generator, image] : steps_[point]) step(generator, image);
    });
  }

  // The tree is grown anew after every addition, so that the next element has a short path.
  void add_doublings(int root) {
    std::vector<Images> there;
    std::vector<Images> back;
    for (;;) {
      const std::vector<char> is_reached = reached_points(root, there, back);
      const auto& orbit = tree_.points();
      const auto outside = std::find_if(orbit.begin(), orbit.end(), [&is_reached](int point) {
        return is_reached[static_cast<std::size_t>(point)] == 0;
      });
      if (outside == orbit.end()) return;
      there.push_back(path_to(*outside));
      back.push_back(inverse(there.back()));
      add_generator(there.back());
      add_generator(back.back());
      grow_tree(root);
    }
  }

  // Marks the points that the root reaches by taking or skipping each step, the latest one first, and then
  // their inverses in the opposite order.
  std::vector<char> reached_points(int root, const std::vector<Images>& there,
                                   const std::vector<Images>& back) const {
    std::vector<char> is_reached(static_cast<std::size_t>(steps_.size()), 0);
    std::vector<int> reached{root};
    is_reached[static_cast<std::size_t>(root)] = 1;
    const auto take_or_skip = [&](const Images& step) {
      for (std::size_t i = 0, end = reached.size(); i < end; ++i) {
        const int image = step[reached[i]];
        if (std::exchange(is_reached[static_cast<std::size_t>(image)], 1) == 0) reached.push_back(image);
      }
    };
    std::for_each(there.rbegin(), there.rend(), take_or_skip);
    std::for_each(back.begin(), back.end(), take_or_skip);
    return is_reached;
  }

  // Returns the product of the generators on the tree's path from the root to the point. It is composed from
  // the end of the path, so each generator is applied before those already there.
  Images path_to(int point) const {
    Images images = identity_images(steps_.size());
    tree_.walk_to_root(point, [&](int generator) {
      const Images later = images;
      for (const auto& [x, image] : chain_.generators[static_cast<std::size_t>(generator)])
        images[x] = later[image];
    });
    return images;
  }

  void add_generator(const Images& images) {
    SparsePermutation moves;
    for (int x = 0; x < images.size(); ++x) {
      if (images[x] != x) moves.push_back({x, images[x]});
    }
    if (std::find(chain_.generators.begin(), chain_.generators.end(), moves) != chain_.generators.end())
      return;
    chain_.generators.push_back(std::move(moves));
    use_generator(static_cast<int>(chain_.generators.size()) - 1);
  }

  StabiliserChain& chain_;
  PointVector<std::vector<Step>> steps_;  // by point, of the generators in use
  OrbitTree tree_;                        // the latest
};

}  // namespace

void add_shortcuts(int n, StabiliserChain& chain) { ShortcutBuilder(n, chain).run(); }

}  // namespace symfold::detail
