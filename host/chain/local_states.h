// The local states of submodels, numbered: what a submodel does and what a quantifier says of it depend on
// its own variables alone, so both are computed once for each local state and looked up from then on.

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
  // Instances of more local states are not numbered, nor those whose tables would be beyond the total.
  static constexpr std::size_t kMaxOfOneInstance = std::size_t{1} << 16;
  static constexpr std::size_t kMaxOfAll = std::size_t{1} << 22;
  static constexpr std::uint32_t kNone = UINT32_MAX;

  // Keeps a reference to the layout. No instance of more than `max_of_one` local states is numbered.
  LocalStates(const ComposedModel& model, const StateLayout& layout,
              std::size_t max_of_one = kMaxOfOneInstance);

  // The numbers of all local states together: tables have as many entries.
  std::size_t total() const { return total_; }

  // Writes for each submodel the number of its local state, below total() and different for each instance, or
  // kNone. Cost: the number of variables of all submodels.
  void locate(const std::int16_t* state, std::uint32_t* numbers) const;

 private:
  struct Digit {
    std::uint32_t slot;
    std::uint32_t radix_power;
  };
  struct Place {
    std::uint32_t digits_end;  // into digits_; the beginning is the end of the submodel before
    std::uint32_t start;       // the first number less the digits' lowest values, modulo 2^32
    bool is_numbered;
  };

  std::vector<Digit> digits_;
  std::vector<Place> places_;  // by submodel
  std::size_t total_ = 0;
};

}  // namespace symfold

#endif  // SYMFOLD_HOST_CHAIN_LOCAL_STATES_H
