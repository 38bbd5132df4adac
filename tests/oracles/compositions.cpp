#include "tests/oracles/compositions.h"

#include <algorithm>
#include <numeric>

namespace symfold::oracle {
namespace {

bool is_symmetry(const Composition& composition, const Images& submodels, const Images& joins) {
  const auto image = [](const Images& images, int i) { return images[static_cast<std::size_t>(i)]; };
  for (int s = 0; s < static_cast<int>(submodels.size()); ++s) {
    const int t = image(submodels, s);
    if (image(composition.types, s) != image(composition.types, t)) return false;
    if (image(composition.bytes, s) != image(composition.bytes, t)) return false;
  }
  for (int j = 0; j < static_cast<int>(joins.size()); ++j) {
    if (image(composition.variables, j) != image(composition.variables, image(joins, j))) return false;
  }
  std::vector<Binding> bindings = composition.bindings;
  std::vector<Binding> images = bindings;
  for (Binding& b : images) {
    b.join = image(joins, b.join);
    b.submodel = image(submodels, b.submodel);
  }
  std::sort(bindings.begin(), bindings.end());
  std::sort(images.begin(), images.end());
  return bindings == images;
}

}  // namespace

Group all_symmetries(const Composition& composition) {
  Group group;
  Images submodels(composition.types.size());
  Images joins(composition.variables.size());
  std::iota(submodels.begin(), submodels.end(), 0);
  do {
    std::iota(joins.begin(), joins.end(), 0);
    do {
      if (!is_symmetry(composition, submodels, joins)) continue;
      Images images = submodels;
      for (const int join : joins) images.push_back(static_cast<int>(submodels.size()) + join);
      group.insert(images);
    } while (std::next_permutation(joins.begin(), joins.end()));
  } while (std::next_permutation(submodels.begin(), submodels.end()));
  return group;
}

}  // namespace symfold::oracle
