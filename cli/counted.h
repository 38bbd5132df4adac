#ifndef SYMFOLD_CLI_COUNTED_H
#define SYMFOLD_CLI_COUNTED_H

#include <cstddef>
#include <string>

namespace symfold {

// "1 join", "2 joins".
inline std::string counted(std::size_t count, const std::string& noun) {
  return std::to_string(count) + " " + noun + (count == 1 ? "" : "s");
}

}  // namespace symfold

#endif  // SYMFOLD_CLI_COUNTED_H
