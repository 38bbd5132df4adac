#include "engines/largest_image/element_list.h"

#include <algorithm>
#include <utility>

#include "engines/base/images.h"

namespace symfold::detail {
namespace {

// Returns an element for each point of the base point's orbit under the stabiliser of the points below it,
// which carries the base point there: products of the generators that move no point below it.
std::vector<Images> transversal(const PermutationGroup& group, int base_point) {
  const auto degree = static_cast<std::size_t>(group.degree());
  std::vector<Images> generators;
  for (std::size_t g = 0; g < group.generators().size(); ++g) {
    const auto moves = group.generators()[g];
    if (moves.front().point >= base_point)
      generators.push_back(images_of({moves.begin(), moves.end()}, degree));
  }
  const auto base = static_cast<std::size_t>(base_point);
  std::vector<char> is_reached(degree, 0);
  is_reached[base] = 1;
  std::vector<Images> elements{identity_images<Images>(degree)};
  for (std::size_t i = 0; i < elements.size(); ++i) {
    for (const Images& generator : generators) {
      const std::uint32_t image = generator[elements[i][base]];
      if (std::exchange(is_reached[image], 1) == 0) elements.push_back(composed(generator, elements[i]));
    }
  }
  return elements;
}

}  // namespace

std::size_t order_of(const PermutationGroup& group, std::size_t bound) {
  std::size_t order = 1;
  for (const int length : group.orbit_lengths()) {
    if (order > bound) break;
    order *= static_cast<std::size_t>(length);
  }
  return order;
}

std::vector<Images> list_elements(const PermutationGroup& group) {
  std::vector<Images> elements{identity_images<Images>(static_cast<std::size_t>(group.degree()))};
  for (auto base_point = group.base().rbegin(); base_point != group.base().rend(); ++base_point) {
    std::vector<Images> products;
    for (const Images& first : transversal(group, *base_point)) {
      for (const Images& element : elements) products.push_back(composed(first, element));
    }
    elements = std::move(products);
  }
  std::ranges::sort(elements);
  return elements;
}

PermutationGroup stabiliser_of_first(const PermutationGroup& group) {
  PermutationList generators;
  for (std::size_t g = 0; g < group.generators().size(); ++g) {
    const auto moves = group.generators()[g];
    if (moves.front().point > group.base().front()) generators.push_back(moves);
  }
  return PermutationGroup::from_strong_generators(group.degree(), std::move(generators));
}

Images images_of(const SparsePermutation& moves, std::size_t degree) {
  Images images = identity_images<Images>(degree);
  for (const auto& [point, image] : moves) {
    images[static_cast<std::size_t>(point)] = static_cast<std::uint32_t>(image);
  }
  return images;
}

}  // namespace symfold::detail
