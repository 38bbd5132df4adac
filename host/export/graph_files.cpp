// The chain as a graph, an edge per entry of the rate matrix: Matrix Market (R. F. Boisvert, R. Pozo, K. A.
// Remington: The Matrix Market exchange formats, NISTIR 5935, 1996), AUT (CADP manual, "aut") with rates as
// its stochastic tools read them ("bcg_min": a transition `rate R`), and DOT (Graphviz documentation, "DOT
// Language").

#include "host/export/formats.h"
#include "host/export/names.h"

namespace symfold {
namespace {

// A node with its number and labels; the values of the variables are its tooltip.
void write_state(const MarkovChain& chain, StateId state, std::span<const std::int16_t> values,
                 NewFile& out) {
  out.append("  ", state, " [label=\"", state);
  for (const ChainObservable& observable : chain.observables) {
    if (observable.holds[state]) out.append("\\n", dot_escaped(observable.name));
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

void write_mtx(const MarkovChain& chain, NewFile& out) {
  const RateMatrix& matrix = chain.matrix;
  out.append("%%MatrixMarket matrix coordinate real general\n");
  out.append(matrix.state_count(), ' ', matrix.state_count(), ' ', matrix.entry_count(), '\n');
  for_each_entry(matrix, [&](std::uint64_t source, std::uint64_t target, double rate) {
    out.append(source + 1, ' ', target + 1, ' ', rate, '\n');
  });
}

void write_aut(const MarkovChain& chain, NewFile& out) {
  const RateMatrix& matrix = chain.matrix;
  out.append("des (0, ", matrix.entry_count(), ", ", matrix.state_count(), ")\n");
  for_each_entry(matrix, [&](StateId source, StateId target, double rate) {
    out.append('(', source, ", \"rate ", rate, "\", ", target, ")\n");
  });
}

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
