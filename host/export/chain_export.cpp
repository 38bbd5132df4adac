#include "host/export/chain_export.h"

#include <algorithm>
#include <stdexcept>

#include "host/export/formats.h"
#include "host/export/looped_rows.h"

namespace symfold {
namespace {

using Write = void (*)(const MarkovChain&, NewFile&);

struct SingleFileFormat {
  const char* ending;
  Write write;
};

// The formats with one file for every chain.
constexpr SingleFileFormat kSingleFileFormats[] = {
    {".tra", write_tra},
    {".sta", write_sta},
    {".lab", write_lab},
};

std::string ending_of(const std::string& path) {
  const std::size_t dot = path.find_last_of("./");
  return dot == std::string::npos || path[dot] == '/' ? "" : path.substr(dot);
}

Write writer_for(const std::string& ending) {
  for (const SingleFileFormat& format : kSingleFileFormats) {
    if (format.ending == ending) return format.write;
  }
  return nullptr;
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

  void add(const std::string& path, Write write) {
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

}  // namespace

const std::vector<std::string>& export_endings() {
  static const std::vector<std::string> endings = {".all", ".tra", ".sta", ".lab", ".srew"};
  return endings;
}

bool is_export_format(const std::string& path) {
  const std::vector<std::string>& endings = export_endings();
  return std::find(endings.begin(), endings.end(), ending_of(path)) != endings.end();
}

std::vector<std::string> write_chain(const MarkovChain& chain, const std::string& path) {
  const std::string ending = ending_of(path);
  const std::string stem = path.substr(0, path.size() - ending.size());
  ChainFiles files(chain);
  if (const Write write = writer_for(ending); write != nullptr) {
    files.add(path, write);
  } else if (ending == ".all") {
    for (const char* part : {".tra", ".sta", ".lab"}) files.add(stem + part, writer_for(part));
    files.add_rewards(stem);
  } else if (ending == ".srew" && chain.rewards.empty()) {
    refuse(path, "expected a model with rewards for this format, got none");
  } else if (ending == ".srew") {
    files.add_rewards(stem);
  } else {
    std::string endings;
    for (const std::string& known : export_endings()) endings += (endings.empty() ? "" : ", ") + known;
    refuse(path, "expected a name that ends in one of " + endings);
  }
  return files.names();
}

// PRISM looks at the first five or six transitions, by version.
bool needs_ctmc_switch(const MarkovChain& chain) {
  constexpr int kTransitionsLookedAt = 5;
  int count = 0;
  bool has_rate_above_one = false;
  for (StateId state = 0; state < chain.matrix.state_count() && count < kTransitionsLookedAt; ++state) {
    for_each_looped_entry(chain.matrix, state, [&](StateId, double rate) {
      has_rate_above_one = has_rate_above_one || (count < kTransitionsLookedAt && rate > 1);
      ++count;
    });
  }
  return !has_rate_above_one;
}

}  // namespace symfold
