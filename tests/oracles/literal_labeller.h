// The greedy label search step by step on fresh vectors: the slow, obvious twin of FindCanonicalLabel.

#ifndef SYMFOLD_TESTS_ORACLES_LITERAL_LABELLER_H
#define SYMFOLD_TESTS_ORACLES_LITERAL_LABELLER_H

#include <string>
#include <utility>
#include <vector>

#include "components/permutation.h"

namespace symfold {

struct LabelTables {
  std::vector<int> sizes;                                      // bytes of each partition
  std::vector<std::pair<int, std::vector<ValPerms>>> records;  // per base point, in order
};

struct LiteralLabel {
  std::string state;
  std::vector<short> perm;     // the chosen steps P1 P2 ... Pk, composed so that Pk is applied first
  std::vector<short> witness;  // the permutation that carries the state onto its label
};

// What the members of a detector hold after a search; before it, what they held then.
struct LiteralBuffers {
  std::string new_state, scratch_a, scratch_b;
  std::vector<short> new_perm, best_perm, temp_best_perm, perm_scratch;
  std::vector<int> orbit, orbit_copy;  // as long as the longest list of records, if not longer
};

// Composes only if asked to; `perm` is the identity otherwise. Bytes that no move of a pass writes are those
// of the passes before.
LiteralLabel literal_label(const LabelTables& tables, const std::string& state, bool composes,
                           LiteralBuffers& buffers);

// Composes. Bytes that no pass has written are zero.
LiteralLabel literal_label(const LabelTables& tables, const std::string& state);

// The state whose partition permutation[c] is partition c of this one.
std::string moved(const std::vector<int>& sizes, const std::vector<int>& permutation,
                  const std::string& state);

}  // namespace symfold

#endif  // SYMFOLD_TESTS_ORACLES_LITERAL_LABELLER_H
