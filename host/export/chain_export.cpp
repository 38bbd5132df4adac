#include "host/export/chain_export.h"

#include <algorithm>
#include <cstring>
#include <limits>
#include <stdexcept>
#include <string_view>

#include "host/export/formats.h"

namespace symfold {
namespace {

using WriteFormat = void (*)(const MarkovChain&, NewFile&);

struct Format {
  const char* ending;
  WriteFormat write = nullptr;  // null if the number of files depends on the chain
  std::size_t max_states = std::numeric_limits<std::size_t>::max();
};

// For a drawing of more states layout programs need minutes, and nobody sees anything in it.
constexpr std::size_t kMaxDrawnStates = 5000;

constexpr Format kFormats[] = {
    {".all"},
    {".tra", write_tra},
    {".sta", write_sta},
    {".lab", write_lab},
    {".srew"},
    {".drn", write_drn},
    {".mtx", write_mtx},
    {".aut", write_aut},
    {".dot", write_dot, kMaxDrawnStates},
};

std::string ending_of(const std::string& path) {
  const std::size_t dot = path.find_last_of("./");
  return dot == std::string::npos || path[dot] == '/' ? "" : path.substr(dot);
}

const Format* find_format(const std::string& path) {
  const std::string ending = ending_of(path);
  const auto* const found = std::find_if(std::begin(kFormats), std::end(kFormats),
                                         [&](const Format& format) { return format.ending == ending; });
  return found == std::end(kFormats) ? nullptr : found;
}

class ChainFiles {
 public:
  explicit ChainFiles(const MarkovChain& chain) : chain_(chain) {}

  template <class WriteTo>
  void add(const std::string& path, WriteTo write_to) {
    NewFile out(path);
    write_to(out);
    out.commit();
    names_.push_back(path);
  }

  void add(const std::string& path, WriteFormat write) {
    add(path, [&](NewFile& out) { write(chain_, out); });
  }

  void add_rewards(const std::string& stem) {
    const std::size_t count = chain_.rewards.size();
    for (std::size_t i = 0; i < count; ++i) {
      const std::string number = count == 1 ? "" : std::to_string(i + 1);
      add(stem + number + ".srew", [&](NewFile& out) { write_srew(chain_, i, out); });
    }
  }

  const std::vector<std::string>& names() const { return names_; }

 private:
  const MarkovChain& chain_;
  std::vector<std::string> names_;
};

[[noreturn]] void refuse(const std::string& path, const std::string& message) {
  throw std::runtime_error(path + ": error: " + message);
}

const Format& require_format(const MarkovChain& chain, const std::string& path) {
  const Format* const format = find_format(path);
  if (format == nullptr) refuse(path, "expected a name that ends in one of " + export_endings());
  if (chain.matrix.state_count() > format->max_states) {
    refuse(path, "expected a chain of at most " + std::to_string(format->max_states) +
                     " states for this format, got " + std::to_string(chain.matrix.state_count()));
  }
  return *format;
}

}  // namespace

std::string export_endings() {
  std::string endings;
  for (const Format& format : kFormats) endings += (endings.empty() ? "" : ", ") + std::string(format.ending);
  return endings;
}

bool is_export_format(const std::string& path) { return find_format(path) != nullptr; }

std::vector<std::string> write_chain(const MarkovChain& chain, const std::string& path) {
  const Format& format = require_format(chain, path);
  const std::string stem = path.substr(0, path.size() - std::strlen(format.ending));
  ChainFiles files(chain);
  if (format.write != nullptr) {
    files.add(path, format.write);
    return files.names();
  }
  if (format.ending == std::string_view(".all")) {
    files.add(stem + ".tra", write_tra);
    files.add(stem + ".sta", write_sta);
    files.add(stem + ".lab", write_lab);
  } else if (chain.rewards.empty()) {
    refuse(path, "expected a model with rewards for this format, got none");
  }
  files.add_rewards(stem);
  return files.names();
}

// PRISM looks at the first five or six transitions, depending on its version.
bool needs_ctmc_switch(const MarkovChain& chain) {
  constexpr int kTransitionsLookedAt = 5;
  int count = 0;
  bool has_rate_above_one = false;
  for (StateId state = 0; state < chain.matrix.state_count() && count < kTransitionsLookedAt; ++state) {
    for_each_in_looped_row(chain.matrix, state, [&](StateId, double rate) {
      has_rate_above_one = has_rate_above_one || (count < kTransitionsLookedAt && rate > 1);
      ++count;
    });
  }
  return !has_rate_above_one;
}

}  // namespace symfold
