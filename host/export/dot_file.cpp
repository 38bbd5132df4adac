// A drawing in the DOT language (Graphviz documentation, "DOT Language"): a node per state with its number
// and labels, the values of the variables as its tooltip, an edge per entry of the rate matrix.

#include "host/export/formats.h"
#include "host/export/matrix_rows.h"

namespace symfold {
namespace {

// Text inside quotes.
std::string escaped(const std::string& text) {
  std::string result;
  for (const char c : text) {
    if (c == '"' || c == '\\') result += '\\';
    result += c;
  }
  return result;
}

void write_state(const MarkovChain& chain, StateId state, std::span<const std::int16_t> values,
                 NewFile& out) {
  out.append("  ", state, " [label=\"", state);
  for (const ChainObservable& label : chain.observables) {
    if (label.holds[state]) out.append("\\n", escaped(label.name));
  }
  out.append("\", tooltip=\"");
  for (std::size_t i = 0; i < values.size(); ++i) {
    const ChainVariable& variable = chain.variables[i];
    out.append(i == 0 ? "" : "\\n", variable.name, " = ", value_text(variable.values, values[i]));
  }
  out.append('"');
  if (chain.matrix.is_deadlock(state)) out.append(", peripheries=2");
  if (state == 0) out.append(", penwidth=2");
  out.append("];\n");
}

}  // namespace

void write_dot(const MarkovChain& chain, NewFile& out) {
  out.append(
      "digraph chain {\n  node [shape=box, style=rounded, fontname=Helvetica];\n"
      "  edge [fontname=Helvetica, fontsize=11];\n");
  std::vector<std::int16_t> values(chain.variables.size());
  for (StateId state = 0; state < chain.matrix.state_count(); ++state) {
    chain.read_values(state, values);
    write_state(chain, state, values, out);
  }
  for_each_entry(chain.matrix, [&](StateId source, StateId target, double rate) {
    out.append("  ", source, " -> ", target, " [label=\"", rate, "\"];\n");
  });
  out.append("}\n");
}

}  // namespace symfold
