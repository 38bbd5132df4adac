// The rate matrix alone: Matrix Market (R. F. Boisvert, R. Pozo, K. A. Remington: The Matrix Market exchange
// formats, NISTIR 5935, 1996), and AUT (CADP manual, "aut") with rates as its stochastic tools read them
// ("bcg_min": a transition `rate R`).

#include "host/export/formats.h"
#include "host/export/matrix_rows.h"

namespace symfold {

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

}  // namespace symfold
