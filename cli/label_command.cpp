#include "cli/commands.h"

#include <algorithm>
#include <cerrno>
#include <fstream>
#include <iostream>
#include <memory>
#include <new>
#include <numeric>
#include <optional>
#include <stdexcept>
#include <string_view>
#include <vector>

#include "cli/advice.h"
#include "cli/figures.h"
#include "cli/named_states.h"
#include "components/permutation.h"
#include "host/symmetry/folding.h"

namespace symfold {
namespace {

using Bytes = std::vector<unsigned char>;

// The value of a hexadecimal digit, or -1.
int digit_value(char c) {
  if (c >= '0' && c <= '9') return c - '0';
  if (c >= 'a' && c <= 'f') return c - 'a' + 10;
  if (c >= 'A' && c <= 'F') return c - 'A' + 10;
  return -1;
}

// Reads a state. Returns what is wrong with the line, or an empty text. `otherwise` says what else a line may
// hold.
std::string parse_state(std::string_view line, const std::string& otherwise, Bytes& state) {
  if (line.size() != 2 * state.size()) {
    return "expected " + otherwise + std::to_string(2 * state.size()) + " hexadecimal digits, got " +
           (line.size() > 2 * state.size() ? "more" : std::to_string(line.size()));
  }
  for (std::size_t i = 0; i < line.size(); ++i) {
    const int digit = digit_value(line[i]);
    if (digit < 0) return "column " + std::to_string(i + 1) + ": expected a hexadecimal digit";
    unsigned char& byte = state[i / 2];
    byte = static_cast<unsigned char>(i % 2 == 0 ? digit << 4 : byte | digit);
  }
  return "";
}

void append_hexadecimal(const Bytes& bytes, std::string& text) {
  constexpr std::string_view kDigits = "0123456789abcdef";
  for (const unsigned char byte : bytes) {
    text += kDigits[byte >> 4];
    text += kDigits[byte & 15];
  }
}

// Reads a line without its end, of which at most `longest` characters are kept. A carriage return before the
// end belongs to it. Returns false at the end of the input.
bool read_line(std::istream& in, std::size_t longest, std::string& line) {
  line.clear();
  std::streambuf& buffer = *in.rdbuf();
  int c = buffer.sbumpc();
  if (c == std::char_traits<char>::eof()) return false;
  for (; c != '\n' && c != std::char_traits<char>::eof(); c = buffer.sbumpc()) {
    if (line.size() < longest) line += static_cast<char>(c);
  }
  if (!line.empty() && line.back() == '\r') line.pop_back();
  return true;
}

class LabelRun {
 public:
  LabelRun(const LabelOptions& options, const Streams& streams, const std::string& source)
      : options_(options),
        streams_(streams),
        source_(source),
        perm_file_(perm_file_at(options.perm_file, "label")),
        folding_(perm_file_, options.exact ? Symmetry::kExact : Symmetry::kFast),
        labeller_(folding_.make_labeller()),
        state_(folding_.state_size()),
        label_(state_.size()),
        moved_(state_.size()),
        witness_(folding_.cell_sizes().size()),
        offsets_(witness_.size()) {
    std::exclusive_scan(folding_.cell_sizes().begin(), folding_.cell_sizes().end(), offsets_.begin(), 0);
    if (!options.input.model.empty()) read_names();
  }

  int label_lines(std::istream& in) {
    int code = kOk;
    std::string line;
    const std::size_t longest = std::max(2 * state_.size(), names_ ? names_->max_line() : 0);
    for (long number = 1; streams_.out && read_line(in, longest + 2, line); ++number) {
      const std::string fault = read_state(line);
      if (fault.empty()) {
        label_state();
        continue;
      }
      streams_.err << source_ << ":" << number << ": error: " << fault << "\n";
      code = kCheckFailed;
    }
    return code;
  }

  int label_records(std::istream& in) {
    const auto size = static_cast<std::streamsize>(state_.size());
    if (size == 0) {
      streams_.err << perm_file_ << ": error: states of no bytes have no records\n";
      return kBadFile;
    }
    for (long number = 1;
         streams_.out && (in.read(reinterpret_cast<char*>(state_.data()), size) || in.gcount() != 0);
         ++number) {
      if (in.gcount() != size) {
        streams_.err << source_ << ": error: record " << number << ": expected " << size << " bytes, got "
                     << in.gcount() << "\n";
        return kCheckFailed;
      }
      labeller_->find(state_.data(), label_.data());
      streams_.out.write(reinterpret_cast<const char*>(label_.data()), size);
    }
    if (in.bad()) throw std::runtime_error(source_ + ": error: cannot be read");
    return kOk;
  }

  // Returns kCheckFailed if some labels may not be exact.
  int report_inexact() const {
    const std::size_t count = labeller_->inexact_count();
    if (count == 0) return kOk;
    streams_.err << perm_file_ << ": error: " << counted(count, "label")
                 << " may not be exact: too many images tie\n";
    return kCheckFailed;
  }

 private:
  // Detects the model's symmetries only to know how it lays out its states.
  void read_names() {
    const ComposedModel model = read_input(options_.input, streams_);
    const Folding folding(model, Symmetry::kFast);
    if (folding.cell_sizes() != folding_.cell_sizes()) {
      const auto size_text = [](const Folding& sized) {
        return counted(sized.state_size(), "byte") + " in " + counted(sized.cell_sizes().size(), "partition");
      };
      throw std::runtime_error(perm_file_ + ": error: expected the states of " + options_.input.model + ", " +
                               size_text(folding) + ", got " + size_text(folding_) +
                               (size_text(folding) == size_text(folding_) ? " of other sizes" : ""));
    }
    names_.emplace(model, folding.order());
  }

  // Returns what is wrong with the line, or an empty text.
  std::string read_state(const std::string& line) {
    if (!names_) return parse_state(line, "", state_);
    if (line.find('=') != std::string::npos) return names_->read(line, state_.data());
    const std::string fault = parse_state(line, "NAME=VALUE pairs or ", state_);
    return fault.empty() ? names_->value_error(state_.data()) : fault;
  }

  // Symmetries of another model can bring a value to a variable that does not have it.
  void append_names() {
    const std::string fault = names_->value_error(label_.data());
    if (!fault.empty()) {
      throw std::runtime_error(perm_file_ + ": error: expected symmetries of " + options_.input.model +
                               ", got a label with " + fault);
    }
    names_->append_text(label_.data(), text_);
  }

  void label_state() {
    labeller_->find(state_.data(), label_.data());
    text_.clear();
    if (options_.names) {
      append_names();
    } else {
      append_hexadecimal(label_, text_);
    }
    streams_.out << text_;
    if (options_.perm) {
      find_checked_witness();
      const std::vector<int> images(witness_.begin(), witness_.end());
      streams_.out << "\t" << Permutation(static_cast<int>(images.size()), images.data());
    }
    streams_.out << "\n";
  }

  // The permutation that carries the state onto its label, applied and compared before anyone is told.
  void find_checked_witness() {
    labeller_->find_witness(witness_.data());
    for (std::size_t c = 0; c < witness_.size(); ++c) {
      const auto d = static_cast<std::size_t>(witness_[c]);
      std::copy_n(state_.begin() + offsets_[c], folding_.cell_sizes()[c], moved_.begin() + offsets_[d]);
    }
    if (moved_ != label_) {
      throw std::logic_error("the permutation found does not carry the state onto its label");
    }
  }

  const LabelOptions& options_;
  const Streams& streams_;
  std::string source_;
  std::string perm_file_;
  Folding folding_;
  std::unique_ptr<Labeller> labeller_;
  Bytes state_;
  Bytes label_;
  Bytes moved_;
  std::vector<short> witness_;  // by cell
  std::vector<int> offsets_;    // by cell, in bytes
  std::string text_;
  std::optional<NamedStates> names_;
};

}  // namespace

std::string option_error(const LabelOptions& options) {
  const bool has_model = !options.input.model.empty();
  if (!has_model && options.names) return "--names needs a model: --model MODEL";
  if (!has_model && !options.input.constants.empty()) return "--const needs a model: --model MODEL";
  if (has_model && options.raw) return "--raw takes bytes, no names of a model";
  if (options.input.model == "-" && options.states == "-") {
    return "expected a file for the model or the states, got standard input for both";
  }
  return "";
}

int run_label(const LabelOptions& options, const Streams& streams) {
  const bool is_standard_input = options.states == "-";
  LabelRun run(options, streams, is_standard_input ? "standard input" : options.states);
  std::ifstream file;
  if (!is_standard_input) {
    errno = 0;
    file.open(options.states, std::ios::binary);
    if (!file && errno == ENOMEM) throw std::bad_alloc();
    if (!file || (file.peek() == std::ifstream::traits_type::eof() && !file.eof())) {
      streams.err << options.states << ": error: cannot be read\n";
      return kBadFile;
    }
    file.clear();
  }
  std::istream& in = is_standard_input ? streams.in : file;
  const int code = options.raw ? run.label_records(in) : run.label_lines(in);
  return code == kOk ? run.report_inexact() : code;
}

}  // namespace symfold
