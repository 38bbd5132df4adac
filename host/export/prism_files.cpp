// PRISM's explicit files (PRISM manual, appendix "Explicit Model Files").

#include <algorithm>

#include "host/export/formats.h"
#include "host/export/names.h"

namespace symfold {
namespace {

// The values of the variables of one state, separated by commas.
void write_values(const MarkovChain& chain, std::span<const std::int16_t> values, NewFile& out) {
  for (std::size_t i = 0; i < values.size(); ++i) {
    if (i > 0) out.append(',');
    if (chain.variables[i].values.kind == ValueSet::Kind::kBool) {
      out.append(values[i] != 0 ? "true" : "false");
    } else {
      out.append(values[i]);
    }
  }
}

}  // namespace

void write_tra(const MarkovChain& chain, NewFile& out) {
  const RateMatrix& matrix = chain.matrix;
  out.append(matrix.state_count(), ' ', looped_entry_count(matrix), '\n');
  for (StateId state = 0; state < matrix.state_count(); ++state) {
    for_each_in_looped_row(
        matrix, state, [&](StateId target, double rate) { out.append(state, ' ', target, ' ', rate, '\n'); });
  }
}

void write_sta(const MarkovChain& chain, NewFile& out) {
  out.append('(');
  const char* separator = "";
  for (const std::string& name : variable_identifiers(chain)) {
    out.append(separator, name);
    separator = ",";
  }
  out.append(")\n");
  std::vector<std::int16_t> values(chain.variables.size());
  for (StateId state = 0; state < chain.matrix.state_count(); ++state) {
    chain.read_values(state, values);
    out.append(state, ":(");
    write_values(chain, values, out);
    out.append(")\n");
  }
}

// One line per state that has a label.
void write_lab(const MarkovChain& chain, NewFile& out) {
  constexpr std::size_t kFirstLabel = 2;
  out.append("0=\"init\" 1=\"deadlock\"");
  const std::vector<std::string> names = observable_identifiers(chain);
  for (std::size_t i = 0; i < names.size(); ++i) out.append(' ', kFirstLabel + i, "=\"", names[i], '"');
  out.append('\n');
  for (StateId state = 0; state < chain.matrix.state_count(); ++state) {
    bool is_first = true;
    const auto write_index = [&](std::size_t index) {
      if (is_first) out.append(state, ':');
      is_first = false;
      out.append(' ', index);
    };
    if (state == 0) write_index(0);
    if (chain.matrix.is_deadlock(state)) write_index(1);
    for (std::size_t i = 0; i < chain.observables.size(); ++i) {
      if (chain.observables[i].holds[state]) write_index(kFirstLabel + i);
    }
    if (!is_first) out.append('\n');
  }
}

void write_srew(const MarkovChain& chain, std::size_t index, NewFile& out) {
  const std::vector<double>& values = chain.rewards[index].values;
  out.append("# Reward structure \"", reward_identifiers(chain)[index], "\"\n# State rewards\n");
  const auto zeros = std::count(values.begin(), values.end(), 0.0);
  out.append(values.size(), ' ', values.size() - static_cast<std::size_t>(zeros), '\n');
  for (std::size_t state = 0; state < values.size(); ++state) {
    if (values[state] != 0) out.append(state, ' ', values[state], '\n');
  }
}

}  // namespace symfold
