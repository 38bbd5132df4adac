#include "tests/support/chain_readers.h"

#include <charconv>
#include <filesystem>
#include <map>
#include <stdexcept>
#include <string_view>

#include "host/checksum.h"
#include "tests/support/model_support.h"

namespace symfold {
namespace {

void require(bool holds, const std::string& expected) {
  if (!holds) throw std::runtime_error("expected " + expected);
}

struct Identifier {
  std::string& text;
};

class Scanner {
 public:
  explicit Scanner(std::string_view text) : rest_(text) {}

  bool is_done() const { return rest_.empty(); }

  bool skip(std::string_view literal) {
    if (!rest_.starts_with(literal)) return false;
    rest_.remove_prefix(literal.size());
    return true;
  }

  // Scans literals as they are, and numbers and identifiers into the given variables.
  template <class... Parts>
  void scan(Parts&&... parts) {
    (get(parts), ...);
  }

  std::string take(std::size_t count) {
    require(count <= rest_.size(), "more text");
    std::string text(rest_.substr(0, count));
    rest_.remove_prefix(count);
    return text;
  }

  std::string until(char end) { return take(std::min(rest_.find(end), rest_.size())); }

 private:
  void get(std::string_view literal) {
    require(skip(literal), "'" + std::string(literal) + "' at '" + std::string(rest_.substr(0, 40)) + "'");
  }

  void get(std::uint64_t& value) {
    const std::size_t before = rest_.size();
    parse(value);
    require(before - rest_.size() == std::to_string(value).size(), "no leading zeros");
  }

  void get(double& value) { parse(value); }

  void get(const Identifier& identifier) {
    constexpr std::string_view kStart = "_abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ";
    require(!is_done() && kStart.find(rest_.front()) != std::string_view::npos, "an identifier");
    const std::size_t end = rest_.find_first_not_of(std::string(kStart) + "0123456789");
    identifier.text = take(std::min(end, rest_.size()));
  }

  template <class Number>
  void parse(Number& value) {
    const auto [end, error] = std::from_chars(rest_.data(), rest_.data() + rest_.size(), value);
    require(error == std::errc(), "a number");
    rest_.remove_prefix(static_cast<std::size_t>(end - rest_.data()));
  }

  std::string_view rest_;
};

std::vector<std::string> identifiers(Scanner& in, std::string_view separator) {
  std::vector<std::string> names;
  do {
    in.scan(Identifier{names.emplace_back()});
  } while (in.skip(separator));
  return names;
}

// Reads the rest of the file, a transition per line; `base` is the number of the first state.
void read_lines(Scanner& in, std::uint64_t base, std::uint64_t count, ReadChain& chain) {
  while (!in.is_done()) {
    auto& [source, target, rate] = chain.transitions.emplace_back();
    in.scan(source, " ", target, " ", rate, "\n");
    source -= base;
    target -= base;
  }
  require(chain.transitions.size() == count, "as many transitions as announced");
}

void read_tra(Scanner& in, std::uint64_t states, ReadChain& chain) {
  std::uint64_t count = 0;
  in.scan(std::to_string(states), " ", count, "\n");
  read_lines(in, 0, count, chain);
}

void read_mtx(Scanner& in, std::uint64_t states, ReadChain& chain) {
  const std::string side = std::to_string(states);
  std::uint64_t count = 0;
  in.scan("%%MatrixMarket matrix coordinate real general\n", side, " ", side, " ", count, "\n");
  read_lines(in, 1, count, chain);
}

void read_aut(Scanner& in, std::uint64_t states, ReadChain& chain) {
  std::uint64_t count = 0;
  in.scan("des (0, ", count, ", ", std::to_string(states), ")\n");
  while (!in.is_done()) {
    auto& [source, target, rate] = chain.transitions.emplace_back();
    in.scan("(", source, ", \"rate ", rate, "\", ", target, ")\n");
  }
  require(chain.transitions.size() == count, "as many transitions as announced");
}

void read_sta(Scanner& in, std::uint64_t states, ReadChain& chain) {
  in.scan("(");
  chain.names = identifiers(in, ",");
  in.scan(")\n");
  for (std::uint64_t state = 0; state < states; ++state) {
    in.scan(std::to_string(state), ":(");
    const std::string line = in.until(')');
    Scanner values(line);
    std::vector<std::string>& row = chain.values.emplace_back();
    do {
      row.push_back(values.until(','));
    } while (values.skip(","));
    in.scan(")\n");
  }
}

void read_lab(Scanner& in, std::uint64_t states, ReadChain& chain) {
  do {
    const std::string index = std::to_string(chain.names.size());
    in.scan(index, "=\"", Identifier{chain.names.emplace_back()}, "\"");
  } while (in.skip(" "));
  in.scan("\n");
  chain.labels.resize(states);
  while (!in.is_done()) {
    std::uint64_t state = 0;
    in.scan(state, ":");
    do {
      std::uint64_t index = 0;
      in.scan(" ", index);
      chain.labels.at(state).push_back(chain.names.at(index));
    } while (!in.skip("\n"));
  }
}

void read_srew(Scanner& in, std::uint64_t states, ReadChain& chain) {
  std::uint64_t count = 0;
  in.scan("# Reward structure \"", Identifier{chain.names.emplace_back()}, "\"\n# State rewards\n",
          std::to_string(states), " ", count, "\n");
  chain.rewards.resize(states, {0});
  for (; count > 0; --count) {
    std::uint64_t state = 0;
    double value = 0;
    in.scan(state, " ", value, "\n");
    require(value != 0, "a reward");
    chain.rewards.at(state) = {value};
  }
}

void read_drn(Scanner& in, std::uint64_t states, ReadChain& chain) {
  in.scan("@type: CTMC\n@parameters\n\n@reward_models\n");
  if (!in.skip("\n")) {
    chain.names = identifiers(in, " ");
    in.scan("\n");
  }
  in.scan("@nr_states\n", std::to_string(states), "\n@nr_choices\n", std::to_string(states), "\n@model\n");
  for (std::uint64_t state = 0; state < states; ++state) {
    in.scan("state ", std::to_string(state), " !", chain.exit_rates.emplace_back());
    std::vector<double>& rewards = chain.rewards.emplace_back();
    for (std::size_t i = 0; i < chain.names.size(); ++i) in.scan(i == 0 ? " [" : ",", rewards.emplace_back());
    if (!rewards.empty()) in.scan("]");
    chain.labels.emplace_back();
    if (in.skip(" ")) chain.labels.back() = identifiers(in, " ");
    in.scan("\n\taction 0\n");
    while (in.skip("\t\t")) {
      auto& [source, target, rate] = chain.transitions.emplace_back(state, 0, 0);
      in.scan(target, " : ", rate, "\n");
    }
  }
}

// Returns the lines of a text in quotes, without escapes.
std::vector<std::string> quoted_lines(Scanner& in) {
  in.scan("\"");
  std::vector<std::string> lines(1);
  while (!in.skip("\"")) {
    if (in.skip("\\n")) {
      lines.emplace_back();
    } else {
      in.skip("\\");
      lines.back() += in.take(1);
    }
  }
  return lines;
}

// The drawing of the initial state and of deadlocks is read as their labels.
void read_dot(Scanner& in, std::uint64_t states, ReadChain& chain) {
  in.scan(
      "digraph chain {\n  node [shape=box, style=rounded, fontname=Helvetica];\n"
      "  edge [fontname=Helvetica, fontsize=11];\n");
  for (std::uint64_t state = 0; state < states; ++state) {
    in.scan("  ", std::to_string(state), " [label=");
    std::vector<std::string>& labels = chain.labels.emplace_back(quoted_lines(in));
    require(labels.front() == std::to_string(state), "the state's number first");
    labels.erase(labels.begin());
    in.scan(", tooltip=");
    chain.values.push_back(quoted_lines(in));
    if (in.skip(", peripheries=2")) labels.insert(labels.begin(), "deadlock");
    if (in.skip(", penwidth=2")) labels.insert(labels.begin(), "init");
    in.scan("];\n");
  }
  while (!in.skip("}\n")) {
    auto& [source, target, rate] = chain.transitions.emplace_back();
    in.scan("  ", source, " -> ", target, " [label=\"", rate, "\"];\n");
  }
}

}  // namespace

ReadChain read_chain_file(const std::string& path, std::uint64_t state_count) {
  static const std::map<std::string, void (*)(Scanner&, std::uint64_t, ReadChain&)> readers = {
      {".tra", read_tra}, {".sta", read_sta}, {".lab", read_lab}, {".srew", read_srew},
      {".drn", read_drn}, {".mtx", read_mtx}, {".aut", read_aut}, {".dot", read_dot}};
  const std::string text = file_text(path);
  Scanner in(text);
  ReadChain chain;
  readers.at(path.substr(path.rfind('.')))(in, state_count, chain);
  require(in.is_done(), "the end of the file");
  return chain;
}

ReadSet read_file_set(const std::string& list) {
  require(std::filesystem::exists(list), "a list");
  const std::string text = file_text(list);
  Scanner in(text);
  in.scan("symfold chain files\nset ");
  ReadSet set{in.take(16), {}};
  in.scan("\n");
  do {
    const std::string checksum = in.take(16);
    std::uint64_t size = 0;
    in.scan(" ", size, " ");
    set.files.push_back(list.substr(0, list.rfind('/') + 1) + in.until('\n'));
    in.scan("\n");
    const std::string contents = file_text(set.files.back());
    Checksum actual;
    actual.add(contents);
    require(contents.size() == size && hexadecimal(actual.value()) == checksum, "the listed contents");
  } while (!in.is_done());
  return set;
}

}  // namespace symfold
