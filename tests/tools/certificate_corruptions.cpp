#include "tests/tools/certificate_corruptions.h"

#include <algorithm>
#include <array>
#include <climits>
#include <iterator>
#include <numeric>
#include <random>
#include <set>
#include <sstream>
#include <stdexcept>

namespace symfold {
namespace {

std::string joined(const Words& words) {
  std::string line = words[0];
  for (std::size_t i = 1; i < words.size(); ++i) line += ' ' + words[i];
  return line;
}

void parse_header_line(const Words& words, Pieces& pieces, std::map<std::string, Words>& lines_of_cells) {
  if (words[0] == "labels") pieces.is_exact = words[1] == "exact";
  if (words[0] == "submodel" || words[0] == "join") lines_of_cells[words[1]] = words;
  if (words[0] == "order") {
    pieces.names.assign(words.begin() + 1, words.end());
    pieces.joins_of.resize(pieces.names.size());
    for (const std::string& name : pieces.names) {
      pieces.cells.emplace(name, static_cast<int>(pieces.cells.size()));
      const Words& line = lines_of_cells.at(name);
      pieces.types.push_back(line[0] == "join" ? "" : line[2]);
      pieces.sizes.push_back(std::stoul(line[line[0] == "join" ? 2 : 3]));
    }
    for (const auto& [name, line] : lines_of_cells) {
      for (std::size_t i = 3; line[0] == "join" && i < line.size(); ++i) {
        const std::size_t dot = line[i].find('.');
        const int submodel = pieces.cells.at(line[i].substr(0, dot));
        pieces.joins_of[static_cast<std::size_t>(submodel)][line[i].substr(dot + 1)] = pieces.cells.at(name);
      }
    }
  }
  if (words[0] == "generator") {
    std::vector<int>& images = pieces.generators.emplace_back(pieces.names.size());
    std::iota(images.begin(), images.end(), 0);
    std::string text = joined(words).substr(10);
    for (std::size_t end; (end = text.find(')')) != std::string::npos; text = text.substr(end + 1)) {
      const Words cycle = words_of(text.substr(1, end - 1));
      for (std::size_t i = 0; i < cycle.size(); ++i) {
        images[static_cast<std::size_t>(pieces.cells.at(cycle[i]))] =
            pieces.cells.at(cycle[(i + 1) % cycle.size()]);
      }
    }
  }
}

// A transition line that can be taken apart and put together.
struct Line {
  Line(const std::string& text, const Pieces& pieces) : words(words_of(text)) {
    for (std::size_t i = 6; i < words.size(); ++i) witness.push_back(std::stoi(words[i]));
    if (witness.size() != pieces.names.size())
      throw std::runtime_error("a witness of another length: " + text);
  }
  std::string text() const {
    Words result(words.begin(), words.begin() + 6);
    for (const int image : witness) result.push_back(std::to_string(image));
    return joined(result);
  }

  static constexpr std::size_t kSource = 1, kSubmodel = 2, kTarget = 4, kImage = 5;
  Words words;
  std::vector<int> witness;
};

class Corrupter {
 public:
  Corrupter(const Pieces& pieces, unsigned seed) : pieces_(pieces), random_(seed) {
    std::size_t offset = 0;
    for (const std::size_t size : pieces.sizes) {
      offsets_.push_back(offset);
      offset += size;
    }
    state_size_ = offset;
  }

  // A line that cannot hold, for the reason that stands at each of the corruptions.
  std::string corrupted(const std::string& text) {
    using Corruption = bool (Corrupter::*)(Line&);
    static constexpr std::array<Corruption, 10> kCorruptions = {
        &Corrupter::change_image,      &Corrupter::change_target,  &Corrupter::change_source,
        &Corrupter::repeat_entry,      &Corrupter::leave_range,    &Corrupter::mix_types,
        &Corrupter::swap_joins,        &Corrupter::swap_submodels, &Corrupter::let_another_act,
        &Corrupter::take_smaller_image};
    for (;;) {
      const std::size_t kind = below(kCorruptions.size() + 1);
      if (kind == kCorruptions.size()) return break_words(text);
      Line line(text, pieces_);
      if ((this->*kCorruptions[kind])(line)) return line.text();
    }
  }

 private:
  std::size_t below(std::size_t bound) { return random_() % bound; }
  std::size_t cell() { return below(pieces_.names.size()); }

  void change_byte(std::string& state, std::size_t byte) {
    char& digit = state[2 * byte + below(2)];
    const char before = digit;
    while (digit == before) digit = "0123456789abcdef"[below(16)];
  }
  bool change_state(std::string& state) {
    if (state_size_ == 0) return false;
    change_byte(state, below(state_size_));
    return true;
  }

  // The witness carries the target onto one image alone, and only the target onto this image.
  bool change_image(Line& line) { return change_state(line.words[Line::kImage]); }
  bool change_target(Line& line) { return change_state(line.words[Line::kTarget]); }

  std::set<std::size_t> writable(std::size_t submodel) const {
    std::set<std::size_t> cells = {submodel};
    for (const auto& [variable, join] : pieces_.joins_of[submodel])
      cells.insert(static_cast<std::size_t>(join));
    return cells;
  }
  std::size_t actor(const Line& line) const {
    return static_cast<std::size_t>(pieces_.cells.at(line.words[Line::kSubmodel]));
  }

  // A cell that the action cannot write differs from the target.
  bool change_source(Line& line) {
    const std::size_t c = cell();
    if (pieces_.sizes[c] == 0 || writable(actor(line)).contains(c)) return false;
    change_byte(line.words[Line::kSource], offsets_[c] + below(pieces_.sizes[c]));
    return true;
  }

  // Two cells with one image.
  bool repeat_entry(Line& line) {
    const std::size_t a = cell(), b = cell();
    line.witness[a] = line.witness[b];
    return a != b;
  }

  bool leave_range(Line& line) {
    const int n = static_cast<int>(pieces_.names.size());
    line.witness[cell()] = std::array{n, -1, INT_MAX, n + 65536}[below(4)];
    return true;
  }

  // A cell goes to one of another type, as a witness keeps types.
  bool mix_types(Line& line) {
    const std::size_t a = cell(), b = cell();
    std::swap(line.witness[a], line.witness[b]);
    return pieces_.types[a] != pieces_.types[b];
  }

  // The swap of two joins alone is no symmetry, because joins have members, and none in common. So a symmetry
  // composed with it is none.
  bool swap_joins(Line& line) {
    const std::size_t a = cell(), b = cell();
    std::swap(line.witness[a], line.witness[b]);
    return a != b && pieces_.types[a].empty() && pieces_.types[b].empty();
  }

  // The same for two submodels of a type of which one variable is bound by two joins.
  bool swap_submodels(Line& line) {
    const std::size_t a = cell(), b = cell();
    std::swap(line.witness[a], line.witness[b]);
    return !pieces_.types[a].empty() && pieces_.types[a] == pieces_.types[b] &&
           pieces_.joins_of[a] != pieces_.joins_of[b];
  }

  // A submodel that cannot write one of the cells that change, or a join.
  bool let_another_act(Line& line) {
    const std::size_t other = cell();
    const std::set<std::size_t> cells = writable(other);
    bool is_wrong = pieces_.types[other].empty();
    for (std::size_t c = 0; c < pieces_.names.size(); ++c) {
      const auto bytes = [&](std::size_t word) {
        return line.words[word].substr(2 * offsets_[c], 2 * pieces_.sizes[c]);
      };
      if (bytes(Line::kSource) != bytes(Line::kTarget) && !cells.contains(c)) is_wrong = true;
    }
    line.words[Line::kSubmodel] = pieces_.names[other];
    return is_wrong;
  }

  // A generator carries an image to another one, which a greedy label may be unless it is less than the
  // state.
  bool take_smaller_image(Line& line) {
    if (pieces_.generators.empty()) return false;
    const std::vector<int>& generator = pieces_.generators[below(pieces_.generators.size())];
    std::string& image = line.words[Line::kImage];
    const std::string before = image;
    for (std::size_t c = 0; c < pieces_.names.size(); ++c) {
      const auto to = static_cast<std::size_t>(generator[c]);
      image.replace(2 * offsets_[to], 2 * pieces_.sizes[to],
                    before.substr(2 * offsets_[c], 2 * pieces_.sizes[c]));
    }
    for (int& place : line.witness) place = generator[static_cast<std::size_t>(place)];
    return !pieces_.is_exact && image < line.words[Line::kTarget];
  }

  // A word too few or too many, two blanks, another keyword, a digit that is none.
  std::string break_words(const std::string& text) {
    Words words = words_of(text);
    switch (below(5)) {
      case 0:
        words.pop_back();
        return joined(words);
      case 1:
        return text + " 0";
      case 2:
        return text.substr(0, text.rfind(' ')) + ' ' + text.substr(text.rfind(' '));
      case 3:
        return "t" + text;
      default:
        words[below(2) == 0 ? Line::kTarget : Line::kImage][0] = 'A';
        return joined(words);
    }
  }

  const Pieces& pieces_;
  std::mt19937 random_;
  std::vector<std::size_t> offsets_;
  std::size_t state_size_ = 0;
};

}  // namespace

Words words_of(const std::string& line) {
  std::istringstream in(line);
  return {std::istream_iterator<std::string>(in), {}};
}

Pieces parse_certificate(const std::string& text) {
  Pieces pieces;
  std::map<std::string, Words> lines_of_cells;
  std::istringstream in(text);
  for (std::string line; std::getline(in, line);) {
    if (line.starts_with("end")) break;
    if (line.starts_with("transition")) {
      pieces.transitions.push_back(line);
    } else {
      pieces.header.push_back(line);
      parse_header_line(words_of(line), pieces, lines_of_cells);
    }
  }
  return pieces;
}

std::vector<std::string> corrupted_transitions(const Pieces& pieces, unsigned seed) {
  Corrupter corrupter(pieces, seed);
  std::vector<std::string> corrupted;
  for (const std::string& line : pieces.transitions) corrupted.push_back(corrupter.corrupted(line));
  return corrupted;
}

std::vector<std::pair<std::size_t, std::string>> corrupted_headers(const Pieces& pieces) {
  std::vector<std::pair<std::size_t, std::string>> result;
  std::string first_submodel, first_join;
  std::map<std::string, int> seen;
  std::set<std::string> moved;  // by the first generator
  for (std::size_t c = 0; !pieces.generators.empty() && c < pieces.names.size(); ++c) {
    if (pieces.generators[0][c] != static_cast<int>(c)) moved.insert(pieces.names[c]);
  }
  for (std::size_t i = 0; i < pieces.header.size(); ++i) {
    const std::string& line = pieces.header[i];
    const Words words = words_of(line);
    const auto add = [&](const std::string& text) { result.emplace_back(i, text); };
    const auto with = [&](std::size_t word, const std::string& text) {
      Words changed = words;
      changed[word] = text;
      return joined(changed);
    };
    // Of long lists the first lines and a few others.
    const bool is_first = ++seen[words[0]] == 1;
    if (seen[words[0]] > 2 && seen[words[0]] % 64 != 0) continue;
    if (is_first) add("x" + line);
    if (is_first) add("");
    if (words[0] == "symfold") add(with(2, "2"));
    if (words[0] == "labels") add(with(1, "best"));
    if (words[0] == "submodels" || words[0] == "joins" || words[0] == "generators") {
      add(with(1, std::to_string(std::stoul(words[1]) + 1)));
      if (words[1] != "0") add(with(1, std::to_string(std::stoul(words[1]) - 1)));
      add(with(1, "99999999999999999999"));
    }
    if (words[0] == "submodel") {
      add(with(3, std::to_string(std::stoul(words[3]) + 2)));  // states are shorter
      if (!is_first) add(with(1, first_submodel));
      if (is_first) first_submodel = words[1];
      if (moved.contains(words[1])) add(with(2, "Other"));  // the others of its cycle have the old type
    }
    if (words[0] == "join") {
      add(line + ' ' + words[3]);  // a member twice
      const std::string member = words[3].substr(0, words[3].find('.'));
      const std::string& type = pieces.types[static_cast<std::size_t>(pieces.cells.at(member))];
      if (std::count(pieces.types.begin(), pieces.types.end(), type) > 1) add(with(3, member + ".other"));
      add(with(3, words[3].substr(0, words[3].find('.'))));
      add(with(1, first_submodel));
      if (!is_first) add(line + ' ' + first_join + ".x");  // a join as member
      if (!is_first) add("join " + words[1] + ' ' + words[2]);
      if (is_first) first_join = words[1];
    }
    if (words[0] == "order") {
      add(line + ' ' + words[1]);
      add("order");
      if (words.size() > 2) add(with(1, words[2]));
      add(with(1, "nobody"));
    }
    if (words[0] == "group-order") {
      // The neighbour of a multiple is none, as cycles are longer than 1.
      Words changed = words;
      changed[1].back() = changed[1].back() == '9' ? '8' : static_cast<char>(changed[1].back() + 1);
      add(joined(changed));
      add(with(1, "0"));
      add(with(1, "-" + words[1]));
    }
    if (words[0] == "generator") {
      const std::string& text = line;
      add(text + text.substr(10));  // every name twice
      add("generator (" + first_submodel + ")");
      add(text.substr(0, text.size() - 1));
      if (!first_join.empty()) add("generator (" + first_submodel + ' ' + first_join + ")");
    }
    if (words[0] == "initial") {
      for (const std::size_t word : {std::size_t{1}, std::size_t{2}}) {
        if (words[word] == "-") continue;
        add(with(word, (words[word][0] == '0' ? '1' : '0') + words[word].substr(1)));
      }
      if (words.size() > 4) add(with(3, words[4]));
    }
  }
  return result;
}

}  // namespace symfold
