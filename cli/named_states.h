// The states of a model as people write them: phil_1.phase=left fork_1=true.

#ifndef SYMFOLD_CLI_NAMED_STATES_H
#define SYMFOLD_CLI_NAMED_STATES_H

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "host/chain/state_layout.h"

namespace symfold {

// A variable is named SUBMODEL.VARIABLE; one that a join binds, by the name of the join too.
class NamedStates {
 public:
  // Cells in the order of these names (StateLayout).
  NamedStates(const ComposedModel& model, const std::vector<std::string>& order);

  // No line that is right is longer, but for blanks.
  std::size_t max_line() const { return max_line_; }

  // Reads NAME=VALUE pairs between blanks. Variables without one get the model's initial values. Returns what
  // is wrong with the line, or an empty text. `state` has the bytes of all variables, as before if something
  // is wrong.
  std::string read(std::string_view line, unsigned char* state);

  // Says which variable has a value outside its set; empty if none has.
  std::string value_error(const unsigned char* state) const;

  // All variables as such pairs, in the order of the state vector. Requires: value_error finds nothing.
  void append_text(const unsigned char* state, std::string& text) const;

 private:
  struct Given {
    std::string_view name, value;  // in the line
  };

  std::string take_pair(std::string_view pair);
  int value_at(const unsigned char* state, std::size_t slot) const;

  StateLayout layout_;
  std::string model_name_;
  std::unordered_map<std::string, std::uint32_t> slots_;  // by name
  std::size_t max_line_ = 0;
  std::vector<std::int16_t> values_;        // of the line being read, by slot
  std::vector<std::vector<Given>> given_;   // likewise
  std::vector<std::uint32_t> given_slots_;  // whose list is not empty
};

}  // namespace symfold

#endif  // SYMFOLD_CLI_NAMED_STATES_H
