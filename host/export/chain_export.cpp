#include "host/export/chain_export.h"

#include <algorithm>
#include <cstring>
#include <functional>
#include <limits>
#include <stdexcept>
#include <string_view>
#include <utility>

#include "host/export/file_set.h"
#include "host/export/formats.h"

namespace symfold {
namespace {

using WriteFormat = void (*)(const MarkovChain&, NewFile&);

struct Format {
  const char* ending;
  const char* content;
  WriteFormat write = nullptr;  // null if the number of files depends on the chain
  std::size_t max_states = std::numeric_limits<std::size_t>::max();
};

// For a drawing of more states layout programs need minutes, and nobody sees anything in it.
constexpr std::size_t kMaxDrawnStates = 5000;

constexpr Format kFormats[] = {
    {".all", "all of PRISM's files"},
    {".tra", "transitions", write_tra},
    {".sta", "states", write_sta},
    {".lab", "labels", write_lab},
    {".srew", "rewards"},
    {".drn", "Storm", write_drn},
    {".mtx", "Matrix Market", write_mtx},
    {".aut", "CADP", write_aut},
    {".dot", "Graphviz", write_dot, kMaxDrawnStates},
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

// A file to be written, with the name without its ending, of which there may be several for a path.
struct PlannedFile {
  std::string path;
  std::string stem;
  std::function<void(NewFile&)> fill;
};

// The files of all paths, each once, and why there are none for a path.
class Plan {
 public:
  explicit Plan(const MarkovChain& chain) : chain_(chain) {}

  void add(const std::string& path);

  const std::vector<PlannedFile>& files() const { return files_; }
  const std::vector<std::string>& refusals() const { return refusals_; }

 private:
  void add_file(const std::string& path, const std::string& stem, std::function<void(NewFile&)> fill) {
    const bool is_planned =
        std::any_of(files_.begin(), files_.end(), [&](const PlannedFile& file) { return file.path == path; });
    if (!is_planned) files_.push_back({path, stem, std::move(fill)});
  }

  void add_file(const std::string& path, const std::string& stem, WriteFormat write) {
    add_file(path, stem, [this, write](NewFile& out) { write(chain_, out); });
  }

  void add_rewards(const std::string& stem) {
    const std::size_t count = chain_.rewards.size();
    for (std::size_t i = 0; i < count; ++i) {
      const std::string number = count == 1 ? "" : std::to_string(i + 1);
      add_file(stem + number + ".srew", stem, [this, i](NewFile& out) { write_srew(chain_, i, out); });
    }
  }

  void refuse(const std::string& path, const std::string& message) {
    refusals_.push_back(path + ": error: " + message);
  }

  const MarkovChain& chain_;
  std::vector<PlannedFile> files_;
  std::vector<std::string> refusals_;
};

void Plan::add(const std::string& path) {
  const Format* const format = find_format(path);
  if (format == nullptr) {
    throw std::runtime_error(path + ": error: expected a name that ends in one of " + export_endings());
  }
  const std::string stem = path.substr(0, path.size() - std::strlen(format->ending));
  if (chain_.matrix.state_count() > format->max_states) {
    refuse(path, "expected a chain of at most " + std::to_string(format->max_states) +
                     " states for this format, got " + std::to_string(chain_.matrix.state_count()));
  } else if (format->write != nullptr) {
    add_file(path, stem, format->write);
  } else if (format->ending == std::string_view(".all")) {
    add_file(stem + ".tra", stem, write_tra);
    add_file(stem + ".sta", stem, write_sta);
    add_file(stem + ".lab", stem, write_lab);
    add_rewards(stem);
  } else if (chain_.rewards.empty()) {
    refuse(path, "expected a model with rewards for this format, got none");
  } else {
    add_rewards(stem);
  }
}

}  // namespace

std::string export_endings() {
  std::string endings;
  for (const Format& format : kFormats) endings += (endings.empty() ? "" : ", ") + std::string(format.ending);
  return endings;
}

std::string export_formats() {
  std::string formats;
  for (const Format& format : kFormats) {
    formats += (formats.empty() ? "" : ", ") + std::string(format.ending) + " (" + format.content + ")";
  }
  return formats;
}

bool is_export_format(const std::string& path) { return find_format(path) != nullptr; }

std::vector<std::string> write_chain(const MarkovChain& chain, const std::string& path) {
  return write_chain_set(chain, {path}).files;
}

WrittenChain write_chain_set(const MarkovChain& chain, const std::vector<std::string>& paths) {
  Plan plan(chain);
  for (const std::string& path : paths) plan.add(path);
  if (plan.files().empty() && !plan.refusals().empty()) throw std::runtime_error(plan.refusals().front());
  WrittenChain written{{}, plan.refusals()};
  for (const PlannedFile& file : plan.files()) written.files.push_back(file.path);
  if (plan.files().size() == 1) {
    NewFile out(plan.files()[0].path);
    plan.files()[0].fill(out);
    out.commit();
    return written;
  }
  FileSet set;
  for (const PlannedFile& file : plan.files()) set.add(file.path, file.stem, file.fill);
  for (std::string& list : set.publish()) written.files.push_back(std::move(list));
  return written;
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
