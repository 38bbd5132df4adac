// Sweeps the stand-alone checker of certificates:
//
//     certificate_sweep CHECKER FIRST_SEED END_SEED SAMPLE [EXAMPLE:NAME=VALUE...]
//
// All examples, and those named with another constant, with about SAMPLE certified transitions each, and the
// random models of the seeds are explored with --check, by greedy and by exact labels. Every certificate must
// hold. Then every transition is corrupted in a way that is wrong by construction, and the checker must count
// each of them as failing; and the header is corrupted line by line. Exits with 1 at the first disagreement,
// and prints it.

#include <array>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <iostream>
#include <map>
#include <numeric>
#include <optional>
#include <random>
#include <set>

#include "tests/support/model_support.h"
#include "tests/support/random_model.h"
#include "tests/support/run_command.h"
#include "tests/support/temp_dir.h"

namespace symfold {
namespace {

using Words = std::vector<std::string>;

Words words_of(const std::string& line) {
  std::istringstream in(line);
  return {std::istream_iterator<std::string>(in), {}};
}

std::string joined(const Words& words) {
  std::string line = words[0];
  for (std::size_t i = 1; i < words.size(); ++i) line += ' ' + words[i];
  return line;
}

// A certificate in pieces; cells are numbered as they lie in the state.
struct Pieces {
  std::vector<std::string> header;  // lines, up to the initial state
  std::vector<std::string> transitions;
  std::map<std::string, int> cells;
  std::vector<std::string> names, types;             // types are empty for joins
  std::vector<std::size_t> sizes;                    // bytes
  std::vector<std::map<std::string, int>> joins_of;  // by cell and variable
  std::vector<std::vector<int>> generators;          // images
  bool is_exact = false;
};

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

Pieces parse(const std::string& text) {
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

  // A generator carries the largest image to a smaller one, which its inverse makes larger. A greedy label is
  // at least not less than the state.
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
    return pieces_.is_exact ? image != before : image < line.words[Line::kTarget];
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

// Headers that cannot hold. Each entry replaces one line of the certificate.
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

struct Answer {
  int code;
  std::string text;
};

class Sweep {
 public:
  explicit Sweep(std::string checker) : checker_(std::move(checker)) {}

  // Returns false if the checker is wrong about a certificate, which then is in the working directory.
  bool check_model(const std::string& title, Words arguments, const std::string& text, unsigned seed) {
    for (const char* symmetry : {"fast", "exact"}) {
      Words all = {"explore", "--check", "--quiet", "--certificate", "certificate", "--symmetry", symmetry};
      all.insert(all.end(), arguments.begin(), arguments.end());
      const Outcome outcome = run(all, text);
      if (outcome.code == kModelError) continue;  // of a state
      if (outcome.code != kOk && outcome.code != kLimitReached) return fail(title, outcome.err);
      if (!check_certificate(title + ' ' + symmetry, seed)) return false;
    }
    return true;
  }

  void print() const {
    std::cout << certificates_ << " certificates: " << held_ << " transitions hold, " << caught_
              << " corrupted ones and " << headers_caught_ << " corrupted headers are caught\n";
  }

 private:
  Answer ask(const std::string& arguments) const {
    std::FILE* const pipe = ::popen(("exec " + checker_ + ' ' + arguments).c_str(), "r");
    std::string text;
    for (int c; (c = std::fgetc(pipe)) != EOF;) text += static_cast<char>(c);
    const int status = ::pclose(pipe);
    return {WIFEXITED(status) ? WEXITSTATUS(status) : -1, text};
  }

  static bool fail(const std::string& title, const std::string& what) {
    std::cout << title << ": " << what << "\n";
    return false;
  }

  static void write(const Pieces& pieces, const std::vector<std::string>& transitions,
                    const std::string& name) {
    std::ofstream out(name, std::ios::binary);
    for (const std::string& line : pieces.header) out << line << '\n';
    for (const std::string& line : transitions) out << line << '\n';
    out << "end " << transitions.size() << '\n';
  }

  bool check_certificate(const std::string& title, unsigned seed) {
    const Pieces pieces = parse(read_file("certificate"));
    const std::string count = std::to_string(pieces.transitions.size());
    const Answer whole = ask("certificate");
    if (whole.code != 0 || whole.text.find(", " + count + " transitions: all hold\n") == std::string::npos) {
      return fail(title,
                  "expected 0 and all transitions, got " + std::to_string(whole.code) + ' ' + whole.text);
    }
    ++certificates_;
    held_ += pieces.transitions.size();
    Corrupter corrupter(pieces, seed);
    std::vector<std::string> corrupted;
    for (const std::string& line : pieces.transitions) corrupted.push_back(corrupter.corrupted(line));
    write(pieces, corrupted, "certificate");
    const Answer counted = ask("--count certificate");
    if (counted.text != "0 transitions hold, " + count + " fail\n" ||
        counted.code != (corrupted.empty() ? 0 : 1)) {
      return fail(title, "expected " + count + " that fail, got " + counted.text);
    }
    caught_ += corrupted.size();
    return !pieces.is_exact || (check_headers(title, pieces) && check_types(title, pieces));
  }

  bool check_headers(const std::string& title, Pieces pieces) {
    const std::vector<std::string> few(
        pieces.transitions.begin(),
        pieces.transitions.begin() + std::min<std::ptrdiff_t>(3, std::ssize(pieces.transitions)));
    for (const auto& [line, text] : corrupted_headers(pieces)) {
      const std::string before = std::exchange(pieces.header[line], text);
      write(pieces, few, "certificate");
      pieces.header[line] = before;
      if (!is_refused("certificate", "certificate"))
        return fail(title, "not refused: " + text + " in place of " + before);
    }
    write(pieces, few, "certificate");
    std::string whole = read_file("certificate");
    for (const std::string& end :
         {std::string(), std::string("end 4\n"), whole.substr(whole.rfind("end")) + "\n",
          "end " + std::to_string(few.size())}) {
      write_file("certificate", whole.substr(0, whole.rfind("end")) + end);
      if (!is_refused("certificate", "certificate")) return fail(title, "not refused: the end " + end);
    }
    return true;
  }

  // The certificate beside the list of submodels that detection leaves.
  bool check_types(const std::string& title, const Pieces& pieces) {
    write(pieces, {}, "certificate");
    Words types;
    for (const std::string& line : pieces.header) {
      const Words words = words_of(line);
      if (words[0] == "submodel") types.push_back(words[1] + ' ' + words[2] + '\n');
    }
    types.insert(types.begin(), std::to_string(types.size()) + '\n');
    const auto text = [&] { return std::accumulate(types.begin(), types.end(), std::string()); };
    write_file("types", text());
    if (ask("certificate types").code != 0) return fail(title, "the types are refused");
    write_file("types", text() + "one_more Type\n");
    if (!is_refused("types", "certificate types")) return fail(title, "not refused: a submodel too many");
    for (std::string& line : types) {
      const std::string before = std::exchange(line, '1' + line);
      for (const std::string& changed : {text(), text().erase(text().find('1' + before), line.size())}) {
        write_file("types", changed);
        if (!is_refused("types", "certificate types")) return fail(title, "not refused: types " + changed);
      }
      line = before;
    }
    return true;
  }

  // With status 1 and one line that tells where.
  bool is_refused(const std::string& file, const std::string& arguments) {
    const Answer answer = ask(arguments);
    ++headers_caught_;
    return answer.code == 1 && answer.text.starts_with(file + ':') &&
           answer.text.find(": expected ") < answer.text.find(", got ") &&
           answer.text.find('\n') + 1 == answer.text.size();
  }

  std::string checker_;
  std::size_t certificates_ = 0, held_ = 0, caught_ = 0, headers_caught_ = 0;
};

int sweep(const std::string& checker, unsigned first_seed, unsigned end_seed, const std::string& sample,
          const std::vector<std::string>& more_examples) {
  const TempDir directory;
  Sweep sweep(checker);
  bool is_right = true;
  std::vector<std::string> examples = example_names();
  examples.insert(examples.end(), more_examples.begin(), more_examples.end());
  for (const std::string& example : examples) {
    const std::size_t colon = std::min(example.find(':'), example.size());
    Words arguments = {example_path(example.substr(0, colon)), "--max-states", sample, "--check-sample",
                       sample};
    if (colon < example.size()) arguments.insert(arguments.end(), {"--const", example.substr(colon + 1)});
    is_right = is_right && sweep.check_model(example, arguments, "", 0);
  }
  for (unsigned seed = first_seed; seed < end_seed && is_right; ++seed) {
    is_right =
        sweep.check_model("seed " + std::to_string(seed),
                          {"-", "--max-states", "1000", "--check-sample", "1000"}, random_model(seed), seed);
  }
  sweep.print();
  if (!is_right) std::cout << read_file("certificate").substr(0, 20000);
  return is_right ? 0 : 1;
}

}  // namespace
}  // namespace symfold

int main(int argc, char** argv) {
  if (argc < 5) {
    std::cerr << "usage: certificate_sweep CHECKER FIRST_SEED END_SEED SAMPLE [EXAMPLE:NAME=VALUE...]\n";
    return 2;
  }
  return symfold::sweep(argv[1], static_cast<unsigned>(std::stoul(argv[2])),
                        static_cast<unsigned>(std::stoul(argv[3])), argv[4], {argv + 5, argv + argc});
}
