#ifndef SYMFOLD_CLI_STREAMS_H
#define SYMFOLD_CLI_STREAMS_H

#include <iosfwd>

namespace symfold {

// What a command reads and writes: results on `out`, messages on `err`.
struct Streams {
  std::istream& in;
  std::ostream& out;
  std::ostream& err;
  bool err_is_terminal = false;
};

}  // namespace symfold

#endif  // SYMFOLD_CLI_STREAMS_H
