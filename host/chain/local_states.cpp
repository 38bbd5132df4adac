#include "host/chain/local_states.h"

#include <algorithm>

#include "host/language/model_description.h"

namespace symfold {

LocalStates::LocalStates(const ComposedModel& model, const StateLayout& layout) {
  std::vector<std::uint32_t> first_number(model.instances.size(), kNone);
  for (std::size_t i = 0; i < model.instances.size(); ++i) {
    const TypeInstance& instance = model.instances[i];
    std::size_t count = 1;
    for (const VariableDecl& variable : model.description->type(instance.type).variables) {
      count = std::min(count * values_of(instance, variable).size(), kMaxOfOneInstance + 1);
    }
    if (count > kMaxOfOneInstance || total_ + count > kMaxOfAll) continue;
    first_number[i] = static_cast<std::uint32_t>(total_);
    total_ += count;
  }
  for (std::size_t s = 0; s < model.submodels.size(); ++s) {
    const TypeInstance& instance = model.instance_of(model.submodels[s]);
    const std::uint32_t first = first_number[static_cast<std::size_t>(model.submodels[s].instance)];
    std::uint32_t start = first;
    std::uint32_t power = 1;
    const std::uint32_t* slot = layout.slots_of(s);
    if (first != kNone) {
      for (const VariableDecl& variable : model.description->type(instance.type).variables) {
        const ValueSet& values = values_of(instance, variable);
        digits_.push_back({*slot++, power});
        start -= static_cast<std::uint32_t>(values.low) * power;
        power *= static_cast<std::uint32_t>(values.size());
      }
    }
    places_.push_back({static_cast<std::uint32_t>(digits_.size()), start, first != kNone});
  }
}

void LocalStates::locate(const std::int16_t* state, std::uint32_t* numbers) const {
  const Digit* digit = digits_.data();
  for (const Place& place : places_) {
    std::uint32_t number = place.start;
    for (const Digit* const end = digits_.data() + place.digits_end; digit != end; ++digit) {
      number += static_cast<std::uint32_t>(state[digit->slot]) * digit->radix_power;
    }
    *numbers++ = place.is_numbered ? number : kNone;
  }
}

}  // namespace symfold
