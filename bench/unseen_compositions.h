// Random compositions from a seed, so that a search can be tried on graphs that nobody has tuned it for.

#ifndef SYMFOLD_BENCH_UNSEEN_COMPOSITIONS_H
#define SYMFOLD_BENCH_UNSEEN_COMPOSITIONS_H

#include <vector>

#include "bench/composition.h"

namespace symfold::detail {

// `count` compositions of about 100 to 20,000 vertices, subdivided ones up to 60,000. Each is a mix of one to
// three pieces - hard, random or common structures, trees of joins, nested groups, stars -, each with its own
// types and variables and possibly replicated, standing alone, on one bus, behind hubs or in a ring. The i-th
// depends on the seed and i only.
std::vector<NamedGraph> unseen_compositions(unsigned seed, int count);

}  // namespace symfold::detail

#endif  // SYMFOLD_BENCH_UNSEEN_COMPOSITIONS_H
