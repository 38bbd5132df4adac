// check_certificate re-checks what `symfold explore --check` has written.
//
//     check_certificate [--count] CERTIFICATE [TYPES]
//
// It shares no line with symfold, needs the C++ standard library alone, and is meant to be read: format and
// terms are those of docs/certificates.md. It exits with 0 if all holds, with 1 and one line
// "FILE:LINE: expected X, got Y" for the first fault, with 2 if the arguments are wrong or a file cannot be
// read. With --count it goes on after a transition that does not hold, and prints how many hold and how many
// fail.
//
// A symmetry of the composition is a permutation of the cells (submodels and joins) that carries submodels
// onto submodels of the same type and joins onto joins of the same size, so that a join with the members
// {(s, v), ...} goes to the join with the members {(image of s, v), ...}. What is checked:
//
//  1. The composition is one: names are unique, all submodels of a type have the same size and the same
//     shared variables, each of which is a member of one join; the order names every cell once.
//  2. Every generator is a symmetry of the composition. The order of the group is divisible by the lengths of
//     their cycles and of their orbits, as Lagrange's theorem demands.
//  3. For the initial state and every transition: the witness is itself a symmetry of the composition, and it
//     carries the state reached onto its image, byte for byte. No table of the group is trusted for this.
//  4. The state reached differs from the source only in the cell of the submodel that acts and in the cells
//     of the joins that it takes part in.
//  5. If labels are greedy, the image is not less than the state reached, byte by byte.
//
// What that proves. A submodel's actions depend on its type and on its own and shared variables alone. So a
// symmetry of the composition, applied to states, carries transitions to transitions of the same rate: the
// state reached and its image behave alike, and putting one in place of the other folds the chain soundly
// (ordinary lumpability). Each certified transition was therefore folded soundly.
//
// What is not checked: that the composition is that of the model (TYPES, which symfold detect leaves in its
// run directory, is compared with the submodels); that the transitions are the model's and that none is
// missing; that the generators yield all symmetries and the order is exactly theirs; that an image is the
// only one of its whole class. The last two would cost states, but never correctness.
//
// Memory: the header, and one line.

#include <algorithm>
#include <charconv>
#include <cstddef>
#include <cstring>
#include <fstream>
#include <iostream>
#include <numeric>
#include <set>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

namespace {

using Words = std::vector<std::string_view>;
using Bytes = std::vector<unsigned char>;
using Images = std::vector<std::size_t>;  // by cell, the cell to whose place its bytes go

constexpr std::size_t kMaxLine = std::size_t{1} << 29;    // three states of 64 MiB and a witness fit
constexpr std::size_t kMaxHeader = std::size_t{1} << 29;  // bytes of all lines before the transitions
constexpr std::size_t kMaxNumber = std::size_t{1} << 26;  // of cells, and of the bytes of a state
constexpr std::size_t kMaxShown = 60;

struct Fault {
  std::string expected, got;
};

// `got` is a piece of the file: it is cut, and what a terminal might obey becomes '?'.
[[noreturn]] void fail(std::string expected, std::string_view got) {
  std::string shown = "'" + std::string(got.substr(0, kMaxShown));
  for (char& c : shown) c = c < ' ' || c > '~' ? '?' : c;
  throw Fault{std::move(expected), shown + (got.size() > kMaxShown ? "...'" : "'")};
}

std::size_t number(std::string_view text, const char* what, std::size_t most = kMaxNumber) {
  std::size_t value = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
  const bool is_whole = error == std::errc() && end == text.data() + text.size();
  if (!is_whole || value > most || (text.size() > 1 && text[0] == '0')) fail(what, text);
  return value;
}

// The words between single blanks.
Words split(std::string_view text) {
  Words words;
  for (std::size_t start = 0; start <= text.size();) {
    const std::size_t end = std::min(text.find(' ', start), text.size());
    words.push_back(text.substr(start, end - start));
    start = end + 1;
  }
  return words;
}

// The lines of a file, one at a time.
class Lines {
 public:
  explicit Lines(const std::string& name) : name_(name), in_(name, std::ios::binary) { fill(); }

  bool is_readable() const { return !in_.bad() && (end_ > 0 || in_.eof()); }
  std::string place() const { return name_ + ":" + std::to_string(count_); }
  const std::string& name() const { return name_; }

  // Returns false at the end of the file. The line then is empty.
  bool next(std::string& line) {
    line.clear();
    for (++count_; begin_ < end_; fill()) {
      const char* const start = chunk_.data() + begin_;
      const auto* const stop = static_cast<const char*>(std::memchr(start, '\n', end_ - begin_));
      line.append(start, stop == nullptr ? chunk_.data() + end_ : stop);
      if (line.size() > kMaxLine) fail("a line of at most 512 MiB", line);
      begin_ = stop == nullptr ? end_ : static_cast<std::size_t>(stop + 1 - chunk_.data());
      if (stop == nullptr) continue;
      fill();
      return true;
    }
    if (!line.empty()) fail("a line break at the end", line);
    return false;
  }

 private:
  // Reads on if all has been taken.
  void fill() {
    if (begin_ < end_) return;
    in_.read(chunk_.data(), static_cast<std::streamsize>(chunk_.size()));
    begin_ = 0;
    end_ = static_cast<std::size_t>(in_.gcount());
  }

  std::string name_;
  std::ifstream in_;
  std::vector<char> chunk_ = std::vector<char>(std::size_t{1} << 16);
  std::size_t begin_ = 0, end_ = 0, count_ = 0;
};

struct Cell {
  std::string name;
  std::string type;  // of a submodel; empty for a join
  std::size_t size;  // bytes
  std::size_t offset = 0;
  // A submodel's shared variables with the joins that bind them, by name.
  std::vector<std::pair<std::string, std::size_t>> bound = {};

  bool has_variables_of(const Cell& other) const {
    return std::equal(bound.begin(), bound.end(), other.bound.begin(), other.bound.end(),
                      [](const auto& a, const auto& b) { return a.first == b.first; });
  }
};

class Checker {
 public:
  explicit Checker(Lines& lines) : lines_(lines) {}

  void check_header() {
    if (header_line() != "symfold certificate 1") fail("'symfold certificate 1'", line_);
    header_words("system", 2);
    kind_ = header_words("labels", 2)[1];
    if (kind_ != "exact" && kind_ != "greedy" && kind_ != "inexact") fail("a kind of labels", kind_);
    header_words("sample", 2);
    read_submodels();
    read_joins();
    require_alike_types();
    read_order();
    read_group();
    const Words initial = header_words("initial", 3 + cells_.size());
    read_state(initial[1], target_);
    check_label(initial, 2);
  }

  // Compares the submodels with the file "types" of a run directory.
  void check_types(Lines& types) const {
    std::string line;
    types.next(line);
    if (line != std::to_string(types_.size())) fail(std::to_string(types_.size()) + " submodels", line);
    for (const std::string& type : types_) {
      types.next(line);
      if (line != type) fail("'" + type + "'", line);
    }
    if (types.next(line)) fail("the end of the file", line);
  }

  // Checks the transitions to the end of the file. If `goes_on`, those that fail are counted and returned.
  std::size_t check_transitions(bool goes_on) {
    std::size_t failed = 0;
    for (; lines_.next(line_) && !line_.starts_with("end "); ++transition_count_) {
      try {
        check_transition();
      } catch (const Fault&) {
        if (!goes_on) throw;
        ++failed;
      }
    }
    const std::string end = "end " + std::to_string(transition_count_);
    if (line_ != end) fail("'" + end + "'", line_);
    if (lines_.next(line_)) fail("the end of the file", line_);
    return failed;
  }

  std::string figures() const {
    return std::to_string(types_.size()) + " submodels, " + std::to_string(cells_.size() - types_.size()) +
           " joins, " + std::to_string(generator_count_) + " generators, " +
           std::to_string(transition_count_) + " transitions";
  }
  std::size_t transition_count() const { return transition_count_; }

 private:
  const std::string& header_line() {
    if (!lines_.next(line_)) fail("more of the header", "the end of the file");
    header_size_ += line_.size();
    if (header_size_ > kMaxHeader) fail("a header of at most 512 MiB", line_);
    return line_;
  }

  // The words of the next line, which begins with `key`; so many, or any number for 0.
  Words header_words(const std::string& key, std::size_t count) {
    Words words = split(header_line());
    const bool has_count = count == 0 || words.size() == count;
    if (words[0] != key || !has_count || std::find(words.begin(), words.end(), "") != words.end()) {
      fail("'" + key + "'" + (count == 0 ? "" : " and " + std::to_string(count - 1) + " words"), line_);
    }
    return words;
  }

  void add_cell(Cell cell) {
    if (cell.name.find_first_of(".()") != std::string::npos) fail("a name without . ( )", cell.name);
    if (!index_.emplace(cell.name, cells_.size()).second) fail("a new name", cell.name);
    state_size_ += cell.size;
    if (state_size_ > kMaxNumber) fail("a state of at most 64 MiB", line_);
    cells_.push_back(std::move(cell));
  }

  std::size_t cell_named(std::string_view name) const {
    const auto found = index_.find(std::string(name));
    if (found == index_.end()) fail("the name of a submodel or join", name);
    return found->second;
  }

  void read_submodels() {
    for (std::size_t left = number(header_words("submodels", 2)[1], "a number"); left > 0; --left) {
      const Words words = header_words("submodel", 4);
      types_.push_back(std::string(words[1]) + ' ' + std::string(words[2]));
      add_cell({std::string(words[1]), std::string(words[2]), number(words[3], "a size in bytes")});
    }
  }

  void read_joins() {
    for (std::size_t left = number(header_words("joins", 2)[1], "a number"); left > 0; --left) {
      const Words words = header_words("join", 0);
      if (words.size() < 4) fail("a join with name, size and members", line_);
      for (std::size_t i = 3; i < words.size(); ++i) {
        const std::size_t dot = std::min(words[i].find('.'), words[i].size());
        const std::size_t submodel = cell_named(words[i].substr(0, dot));
        if (submodel >= types_.size() || dot + 1 >= words[i].size()) fail("SUBMODEL.VARIABLE", words[i]);
        cells_[submodel].bound.emplace_back(words[i].substr(dot + 1), cells_.size());
      }
      add_cell({std::string(words[1]), "", number(words[2], "a size in bytes")});
    }
  }

  void require_alike_types() {
    std::unordered_map<std::string, std::size_t> first_of_type;
    for (std::size_t s = 0; s < types_.size(); ++s) {
      Cell& cell = cells_[s];
      std::sort(cell.bound.begin(), cell.bound.end());
      for (std::size_t v = 1; v < cell.bound.size(); ++v) {
        if (cell.bound[v].first != cell.bound[v - 1].first) continue;
        fail("a variable that is a member once", cell.name + "." + cell.bound[v].first);
      }
      const Cell& first = cells_[first_of_type.emplace(cell.type, s).first->second];
      if (cell.size == first.size && cell.has_variables_of(first)) continue;
      fail("size and shared variables as of " + first.name + ", of the same type", cell.name);
    }
  }

  // From here on cells are numbered as they lie in the state.
  void read_order() {
    const Words words = header_words("order", 1 + cells_.size());
    Images place(cells_.size(), cells_.size());
    std::vector<Cell> ordered;
    for (std::size_t i = 1; i < words.size(); ++i) {
      const std::size_t cell = cell_named(words[i]);
      if (place[cell] != cells_.size()) fail("each name once", words[i]);
      place[cell] = i - 1;
      cells_[cell].offset = i == 1 ? 0 : ordered.back().offset + ordered.back().size;
      ordered.push_back(std::move(cells_[cell]));
    }
    cells_ = std::move(ordered);
    for (Cell& cell : cells_) {
      for (auto& [variable, join] : cell.bound) join = place[join];
    }
    for (auto& [name, cell] : index_) cell = place[cell];
  }

  void read_group() {
    const std::string order(header_words("group-order", 2)[1]);
    if (order.find_first_not_of("0123456789") != std::string::npos || order[0] == '0')
      fail("a number", order);
    const std::size_t count = number(header_words("generators", 2)[1], "a number");
    if (count == 0 && order != "1") fail("order 1 of a group without generators", order);
    Images orbits(cells_.size());  // disjoint sets: a cell's parent
    std::iota(orbits.begin(), orbits.end(), std::size_t{0});
    std::set<std::size_t> divisors;
    for (std::size_t i = 0; i < count; ++i) read_generator(orbits, divisors);
    Images lengths(cells_.size(), 0);
    for (std::size_t c = 0; c < cells_.size(); ++c) ++lengths[root_of(orbits, c)];
    divisors.insert(lengths.begin(), lengths.end());
    divisors.erase(0);
    for (const std::size_t divisor : divisors) {
      std::size_t rest = 0;
      for (const char digit : order) rest = (rest * 10 + static_cast<std::size_t>(digit - '0')) % divisor;
      if (rest != 0) fail("a group order that " + std::to_string(divisor) + " divides", order);
    }
  }

  // "generator (a b c)(d e)": a goes to the place of b, b to that of c, c to that of a.
  void read_generator(Images& orbits, std::set<std::size_t>& divisors) {
    std::string_view rest = header_line();
    if (!rest.starts_with("generator (")) fail("'generator (...)'", rest);
    Images images(cells_.size());
    std::iota(images.begin(), images.end(), std::size_t{0});
    for (rest.remove_prefix(10); !rest.empty();) {
      const std::size_t end = rest.find(')');
      const Words names = split(rest.substr(1, end - 1));
      if (rest[0] != '(' || end == std::string_view::npos || names.size() < 2)
        fail("'(NAME NAME ...)'", rest);
      for (std::size_t i = 0; i < names.size(); ++i) {
        const std::size_t from = cell_named(names[i]);
        const std::size_t to = cell_named(names[(i + 1) % names.size()]);
        if (images[from] != from || from == to) fail("each name once", names[i]);
        images[from] = to;
        orbits[root_of(orbits, from)] = root_of(orbits, to);
      }
      divisors.insert(names.size());
      rest.remove_prefix(end + 1);
    }
    check_symmetry(images);
    ++generator_count_;
  }

  static std::size_t root_of(Images& parents, std::size_t cell) {
    for (; parents[cell] != cell; cell = parents[cell]) parents[cell] = parents[parents[cell]];
    return cell;
  }

  // Looking at members from the submodels' side is enough. Each member of a join goes to a member of its
  // image, so the image has no fewer members; and all joins together have as many as all images.
  void check_symmetry(const Images& images) {
    flags_.assign(cells_.size(), false);
    for (std::size_t c = 0; c < cells_.size(); ++c) {
      const Cell& from = cells_[c];
      const Cell& to = cells_[images[c]];
      if (flags_[images[c]]) fail("a permutation", to.name + " as image of two");
      flags_[images[c]] = true;
      if (from.type != to.type || from.size != to.size) fail("an image of " + from.name + "'s type", to.name);
    }
    for (std::size_t c = 0; c < cells_.size(); ++c) {
      for (std::size_t v = 0; v < cells_[c].bound.size(); ++v) {
        const auto& [variable, join] = cells_[c].bound[v];
        const Cell& to = cells_[images[c]];
        if (images[join] == to.bound[v].second) continue;
        fail(cells_[join].name + " carried onto the join that has " + to.name + "." + variable,
             cells_[images[join]].name);
      }
    }
  }

  void read_state(std::string_view text, Bytes& state) const {
    if (state_size_ == 0 && text == "-") text = "";
    if (text.size() != 2 * state_size_) fail(std::to_string(2 * state_size_) + " hexadecimal digits", text);
    state.resize(state_size_);
    const auto digit = [&](char c) {
      if (c >= '0' && c <= '9') return c - '0';
      if (c < 'a' || c > 'f') fail("a hexadecimal digit", std::string_view(&c, 1));
      return c - 'a' + 10;
    };
    for (std::size_t i = 0; i < state_size_; ++i) {
      state[i] = static_cast<unsigned char>(digit(text[2 * i]) * 16 + digit(text[2 * i + 1]));
    }
  }

  // "transition SOURCE SUBMODEL ACTION TARGET IMAGE WITNESS..."
  void check_transition() {
    const Words words = split(line_);
    if (words[0] != "transition" || words.size() != 6 + cells_.size() || words[3].empty()) {
      fail("'transition' and " + std::to_string(5 + cells_.size()) + " words, or 'end'", line_);
    }
    read_state(words[1], source_);
    read_state(words[4], target_);
    const Cell& submodel = cells_[cell_named(words[2])];
    if (submodel.type.empty()) fail("a submodel that acts", words[2]);
    flags_.assign(cells_.size(), false);
    flags_[cell_named(words[2])] = true;
    for (const auto& [variable, join] : submodel.bound) flags_[join] = true;
    for (std::size_t c = 0; c < cells_.size(); ++c) {
      if (flags_[c] || compare(source_, cells_[c], target_, cells_[c]) == 0) continue;
      fail("a change of " + submodel.name + " and its joins alone", cells_[c].name);
    }
    check_label(words, 5);
  }

  // The image of target_ stands in words[first], the witness behind it.
  void check_label(const Words& words, std::size_t first) {
    read_state(words[first], image_);
    witness_.clear();
    for (std::size_t i = first + 1; i < words.size(); ++i) {
      witness_.push_back(number(words[i], "the number of a cell", cells_.size() - 1));
    }
    check_symmetry(witness_);
    for (std::size_t c = 0; c < cells_.size(); ++c) {
      const Cell& to = cells_[witness_[c]];
      if (compare(target_, cells_[c], image_, to) != 0)
        fail(cells_[c].name + " carried to " + to.name, "other bytes");
    }
    if (kind_ == "greedy" && image_ < target_) fail("an image not less than the state", words[first]);
  }

  // Of two cells of the same size.
  static int compare(const Bytes& a, const Cell& cell_of_a, const Bytes& b, const Cell& cell_of_b) {
    if (cell_of_a.size == 0) return 0;
    return std::memcmp(a.data() + cell_of_a.offset, b.data() + cell_of_b.offset, cell_of_a.size);
  }

  Lines& lines_;
  std::string line_;
  std::string kind_;                // of the labels
  std::vector<std::string> types_;  // "NAME TYPE" of each submodel
  std::vector<Cell> cells_;
  std::unordered_map<std::string, std::size_t> index_;  // by name, into cells_
  std::size_t generator_count_ = 0;
  std::size_t header_size_ = 0, state_size_ = 0, transition_count_ = 0;
  // What belongs to the line under check.
  Bytes source_, target_, image_;
  Images witness_;
  std::vector<bool> flags_;
};

int check_files(Lines& certificate, Lines* types, bool counts) {
  const Lines* current = &certificate;
  try {
    Checker checker(certificate);
    checker.check_header();
    if (types != nullptr) {
      current = types;
      checker.check_types(*types);
      current = &certificate;
    }
    const std::size_t failed = checker.check_transitions(counts);
    if (counts) {
      std::cout << checker.transition_count() - failed << " transitions hold, " << failed << " fail\n";
    } else {
      std::cout << certificate.name() << ": " << checker.figures() << ": all hold\n";
    }
    return failed == 0 ? 0 : 1;
  } catch (const Fault& fault) {
    std::cout << current->place() << ": expected " << fault.expected << ", got " << fault.got << "\n";
    return 1;
  }
}

int run(std::vector<std::string> names) {
  const bool counts = !names.empty() && names[0] == "--count";
  if (counts) names.erase(names.begin());
  if (names.empty() || names.size() > 2 || names[0].starts_with("-")) {
    std::cerr << "usage: check_certificate [--count] CERTIFICATE [TYPES]\n";
    return 2;
  }
  Lines certificate(names[0]);
  Lines types(names.back());
  for (const Lines* input : {&certificate, &types}) {
    if (input->is_readable()) continue;
    std::cerr << input->name() << ": cannot be read\n";
    return 2;
  }
  return check_files(certificate, names.size() == 2 ? &types : nullptr, counts);
}

}  // namespace

int main(int argc, char** argv) {
  try {
    return run(std::vector<std::string>(argv + std::min(argc, 1), argv + argc));
  } catch (const std::exception& error) {  // no memory
    std::cerr << "check_certificate: " << error.what() << "\n";
    return 2;
  }
}
