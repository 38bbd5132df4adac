#include "bench/composition_builder.h"

#include <map>
#include <tuple>

namespace symfold {

int CompositionBuilder::add_join() {
  ++cells_;
  return join_count_++;
}

void CompositionBuilder::add_part(int type, const std::vector<int>& joins, bool is_cell) {
  if (is_cell) ++cells_;
  parts_.push_back({type, is_cell, joins});
}

int CompositionBuilder::add_set(int type, const std::vector<int>& joins) {
  const int set = add_join();
  for (const int join : joins) add_part(type, {set, join}, false);
  return set;
}

ComposedModel CompositionBuilder::finish() const {
  ComposedModel model;
  model.name = "Composition";
  model.joins.resize(static_cast<std::size_t>(join_count_));
  for (std::size_t j = 0; j < model.joins.size(); ++j) model.joins[j].name = "j" + std::to_string(j);
  std::map<std::tuple<int, bool, std::size_t>, int> instances;
  for (const Part& part : parts_) {
    const auto [found, is_new] = instances.try_emplace({part.type, part.is_cell, part.joins.size()},
                                                       static_cast<int>(model.instances.size()));
    if (is_new) {
      TypeInstance& instance = model.instances.emplace_back();
      instance.token = "T" + std::to_string(found->second);
      if (part.is_cell) instance.private_variables.push_back({"own", {}});
      for (std::size_t i = 0; i < part.joins.size(); ++i)
        instance.shared_variables.push_back({"v" + std::to_string(i), {}});
    }
    const int submodel = static_cast<int>(model.submodels.size());
    for (std::size_t i = 0; i < part.joins.size(); ++i) {
      const auto join = static_cast<std::size_t>(part.joins[i]);
      model.joins[join].members.push_back({submodel, static_cast<int>(i)});
    }
    model.submodels.push_back({"p" + std::to_string(submodel), found->second, {}});
  }
  return model;
}

}  // namespace symfold
