#include "components/saucy_obj.h"

#include <cstddef>
#include <iostream>
#include <string>
#include <utility>

#include "engines/base/point_vector.h"
#include "engines/graph/graph_reader.h"
#include "engines/reduction/automorphism_search.h"

namespace symfold {

struct saucy_struct {
  detail::ColouredGraph graph;
  std::string file_name;
};

namespace {

constexpr std::size_t kMaxImages = std::size_t{1} << 28;

Permutation dense(const detail::SparsePermutation& moves, int n) {
  Permutation permutation(n);
  for (const auto& [point, image] : moves) permutation.GetP()[point] = image;
  return permutation;
}

}  // namespace

saucy_struct* saucy_obj::saucy_begin2(char* file_name) {
  if (file_name == nullptr) {
    std::cerr << "error: expected the name of a graph file, got none" << std::endl;
    return nullptr;
  }
  detail::GraphFileResult result = detail::read_graph_file(file_name);
  if (!result.error.empty()) {
    std::cerr << result.error << std::endl;
    return nullptr;
  }
  return new saucy_struct{std::move(result.graph), file_name};
}

void saucy_obj::saucy_init(saucy_struct*) {
  generators.clear();
  base.clear();
  orbit_lengths.clear();
  is_complete = false;
}

void saucy_obj::saucy_search(saucy_struct* state) {
  if (state == nullptr) return;
  const int n = state->graph.vertex_count();
  const std::size_t limit = n == 0 ? 0 : kMaxImages / static_cast<std::size_t>(n);
  detail::AutomorphismGroup group = detail::find_automorphisms(state->graph, {.generators = limit});
  if (!group.is_complete) {
    std::cerr << state->file_name << ": error: expected at most " << limit << " generators for " << n
              << " vertices, got more" << std::endl;
    return;
  }
  for (const detail::SparsePermutation& moves : group.generators) generators.push_back(dense(moves, n));
  base = std::move(group.base);
  orbit_lengths = std::move(group.orbit_lengths);
  is_complete = true;
}

void saucy_obj::saucy_end(saucy_struct* state) { delete state; }

}  // namespace symfold
