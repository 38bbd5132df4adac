// The local states of submodels, numbered. What a submodel does and what a quantifier says of it depend on
// its own variables alone: both are computed once for each local state, and looked up from then on.

#ifndef SYMFOLD_HOST_CHAIN_LOCAL_STATES_H
#define SYMFOLD_HOST_CHAIN_LOCAL_STATES_H

#include <cstdint>
#include <vector>

#include "host/chain/state_layout.h"
#include "host/model/composed_model.h"

namespace symfold {

// Numbers the local states of each type instance in mixed radix, one digit for each variable.
class LocalStates {
 public:
  // Bounds for the local states that are numbered. An instance that would go beyond one of them has none.
  static constexpr std::size_t kMaxOfOneInstance = std::size_t{1} << 16;
  static constexpr std::size_t kMaxOfAll = std::size_t{1} << 22;
  static constexpr std::uint32_t kNone = UINT32_MAX;

  LocalStates(const ComposedModel& model, const StateLayout& layout);

  // The number of local states of all instances together: tables have as many entries.
  std::size_t total() const { return total_; }

  // Writes the number of each submodel's local state. It is less than total() and is not used by another
  // instance; it is kNone if the instance is not numbered. Cost: in the number of variables of all submodels.
  void locate(const std::int16_t* state, std::uint32_t* numbers) const;

 private:
  struct Digit {
    std::uint32_t slot;
    std::uint32_t radix_power;
  };
  struct Place {
    std::uint32_t digits_end;  // into digits_, where those of the next submodel begin
    std::uint32_t start;       // the first number minus the lowest values of the digits, modulo 2^32
    bool is_numbered;
  };

  std::vector<Digit> digits_;
  std::vector<Place> places_;  // by submodel
  std::size_t total_ = 0;
};

}  // namespace symfold

#endif  // SYMFOLD_HOST_CHAIN_LOCAL_STATES_H
