// Sweeps the stand-alone checker of certificates:
//
//     certificate_sweep CHECKER FIRST_SEED END_SEED SAMPLE [EXAMPLE:NAME=VALUE...]
//
// All examples, and those named with another constant, with about SAMPLE certified transitions each, and the
// random models of the seeds are explored with --check, by greedy and by exact labels. Every certificate must
// hold. Then every transition is corrupted in a way that is wrong by construction, and the checker must count
// each of them as failing; and the header is corrupted line by line. Exits with 1 at the first disagreement,
// and prints it.

#include <sys/wait.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <iostream>
#include <numeric>

#include "tests/support/model_support.h"
#include "tests/support/random_model.h"
#include "tests/support/run_command.h"
#include "tests/support/temp_dir.h"
#include "tests/tools/certificate_corruptions.h"

namespace symfold {
namespace {

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
    const Pieces pieces = parse_certificate(read_file("certificate"));
    const std::string count = std::to_string(pieces.transitions.size());
    const Answer whole = ask("certificate");
    if (whole.code != 0 || whole.text.find(", " + count + " transitions: all hold\n") == std::string::npos) {
      return fail(title,
                  "expected 0 and all transitions, got " + std::to_string(whole.code) + ' ' + whole.text);
    }
    ++certificates_;
    held_ += pieces.transitions.size();
    const std::vector<std::string> corrupted = corrupted_transitions(pieces, seed);
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
