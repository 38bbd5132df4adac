#include "host/symmetry/composition_check.h"

#include <algorithm>
#include <cstring>
#include <unordered_map>

namespace symfold {

CompositionCheck::CompositionCheck(const ComposedModel& model, const std::vector<std::string>& order)
    : model_(model), cells_(order.size()) {
  std::unordered_map<std::string, std::size_t> places;
  for (const std::string& name : order) places.emplace(name, places.size());
  std::vector<int> place_of_submodel;
  for (const Submodel& submodel : model.submodels) {
    const std::size_t place = places.at(submodel.name);
    place_of_submodel.push_back(static_cast<int>(place));
    cells_[place] = {submodel.name, submodel.instance, model.instance_of(submodel).byte_size(), {}};
  }
  for (const Join& join : model.joins) {
    Cell& cell = cells_[places.at(join.name)];
    cell = {join.name, -1, kBytesPerVariable, {}};
    for (const JoinMember& member : join.members) {
      cell.members.emplace_back(place_of_submodel[static_cast<std::size_t>(member.submodel)],
                                member.variable);
    }
    std::sort(cell.members.begin(), cell.members.end());
  }
  std::size_t offset = 0;
  for (const Cell& cell : cells_) {
    offsets_.push_back(offset);
    offset += static_cast<std::size_t>(cell.size);
  }
}

std::string CompositionCheck::find_fault(std::span<const int> images) const {
  std::string no_permutation = "is no permutation of the model's " + std::to_string(cells_.size()) + " cells";
  if (images.size() != cells_.size()) return no_permutation;
  std::vector<bool> is_image(cells_.size());
  for (const int image : images) {
    const auto place = static_cast<std::size_t>(image);
    if (image < 0 || place >= cells_.size() || is_image[place]) return no_permutation;
    is_image[place] = true;
  }
  for (std::size_t c = 0; c < cells_.size(); ++c) {
    const Cell& to = cells_[static_cast<std::size_t>(images[c])];
    if (cells_[c].instance == to.instance) continue;
    const auto with_type = [&](const Cell& cell) {
      if (cell.instance < 0) return "join " + cell.name;
      return cell.name + " of type " + model_.instances[static_cast<std::size_t>(cell.instance)].token;
    };
    return "carries " + with_type(cells_[c]) + " to " + with_type(to);
  }
  for (std::size_t c = 0; c < cells_.size(); ++c) {
    std::vector<std::pair<int, int>> members = cells_[c].members;
    for (auto& [submodel, variable] : members) submodel = images[static_cast<std::size_t>(submodel)];
    std::sort(members.begin(), members.end());
    const Cell& to = cells_[static_cast<std::size_t>(images[c])];
    if (members != to.members) {
      return "carries join " + cells_[c].name + " to " + to.name +
             ", but its members not to the members there";
    }
  }
  return "";
}

bool CompositionCheck::carries(std::span<const int> images, const void* state, const void* image) const {
  for (std::size_t c = 0; c < cells_.size(); ++c) {
    const char* const from = static_cast<const char*>(state) + offsets_[c];
    const char* const to = static_cast<const char*>(image) + offsets_[static_cast<std::size_t>(images[c])];
    if (cells_[c].size > 0 && std::memcmp(from, to, static_cast<std::size_t>(cells_[c].size)) != 0)
      return false;
  }
  return true;
}

}  // namespace symfold
