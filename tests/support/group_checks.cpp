#include "tests/support/group_checks.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <sstream>

#include "components/schreier_sims.h"
#include "components/schreier_tree.h"
#include "engines/graph/graph_reader.h"
#include "engines/search/path_search.h"

namespace symfold::detail {
namespace {

bool fixes_below(const oracle::Images& images, int point) {
  for (int i = 0; i < point; ++i) {
    if (images[static_cast<std::size_t>(i)] != i) return false;
  }
  return true;
}

std::vector<oracle::Images> images_of(const std::vector<Permutation>& permutations) {
  std::vector<oracle::Images> images;
  for (const Permutation& p : permutations) images.emplace_back(p.GetP(), p.GetP() + p.GetN());
  return images;
}

void expect_tree(const oracle::Group& group, int n, SchreierTree& tree, int root) {
  tree.SetRootValue(root);
  tree.CreateTree(root);
  oracle::Group fixing = group;
  for (int point = 0; point < root; ++point) fixing = oracle::stabiliser(fixing, point);
  const std::set<int> near = oracle::orbit(fixing, root);
  std::set<int> reached{root};
  for (const ValPerms& record : tree.GetAllPermutationsToRoot()) {
    int point = root;
    bool is_fixing = true;
    for (const Permutation& permutation : record.Perms) {
      point = permutation[point];
      is_fixing = is_fixing && fixes_below({permutation.GetP(), permutation.GetP() + n}, root);
    }
    EXPECT_EQ(point, record.Value);
    EXPECT_EQ(is_fixing, near.contains(point)) << "root " << root << ", point " << point;
    EXPECT_TRUE(reached.insert(point).second) << "point " << point << " twice";
  }
  EXPECT_EQ(reached, oracle::orbit(group, root));
}

}  // namespace

ColouredGraph graph_of(const oracle::Graph& graph) {
  std::istringstream text(graph.file_text());
  GraphFileResult result = read_graph(text, "text");
  EXPECT_EQ(result.error, "");
  return std::move(result.graph);
}

std::vector<oracle::Images> images_of(int n, const PermutationList& generators) {
  std::vector<oracle::Images> dense;
  for (const SparsePermutation& moves : generators) {
    oracle::Images& images = dense.emplace_back();
    for (int i = 0; i < n; ++i) images.push_back(i);
    for (const auto& [point, image] : moves) images[static_cast<std::size_t>(point)] = image;
  }
  return dense;
}

std::vector<Permutation> permutations_of(const std::vector<oracle::Images>& generators) {
  std::vector<Permutation> permutations;
  for (const oracle::Images& images : generators) {
    permutations.emplace_back(static_cast<int>(images.size()), images.data());
  }
  return permutations;
}

void expect_strong(const oracle::Group& group, int n, const std::vector<oracle::Images>& generators,
                   const std::vector<int>& base, const std::vector<int>& orbit_lengths) {
  ASSERT_EQ(base.size(), orbit_lengths.size());
  oracle::Group rest = group;
  for (std::size_t i = 0; i < base.size(); ++i) {
    EXPECT_EQ(base[i], oracle::smallest_moved(n, rest));
    EXPECT_EQ(orbit_lengths[i], static_cast<int>(oracle::orbit(rest, base[i]).size()))
        << "base point " << base[i];
    std::vector<oracle::Images> fixing;
    for (const oracle::Images& images : generators) {
      EXPECT_FALSE(fixes_below(images, n)) << "the identity";
      if (fixes_below(images, base[i])) fixing.push_back(images);
    }
    EXPECT_EQ(oracle::closure(n, fixing), rest) << "base point " << base[i];
    rest = oracle::stabiliser(rest, base[i]);
  }
  EXPECT_EQ(rest.size(), 1U) << "the base is too short";
}

void expect_stabiliser_chain_and_trees(const oracle::Group& group, int n,
                                       const std::vector<oracle::Images>& generators) {
  std::vector<int> lengths;
  // It is told nothing, the true lengths, too large ones and too small ones.
  for (int known = 0; known < 4; ++known) {
    SCOPED_TRACE("known order " + std::to_string(known));
    SchreierSims stabiliser_chain(n, static_cast<int>(generators.size()));
    if (known == 1) stabiliser_chain.SetKnownOrder(lengths);
    if (known == 2) stabiliser_chain.SetKnownOrder({n, n, n, n, n, n, n, n, n});
    if (known == 3) stabiliser_chain.SetKnownOrder({1});
    std::vector<int> base{-7};
    const std::vector<Permutation> strong = stabiliser_chain.Go(permutations_of(generators), base);
    lengths = stabiliser_chain.OrbitLengths();
    expect_strong(group, n, images_of(strong), base, lengths);
    SchreierTree tree;
    tree.n = n;
    tree.SetPerms(strong);
    for (int root = 0; root < n; ++root) expect_tree(group, n, tree, root);
  }
}

void expect_automorphisms(const oracle::Graph& graph) {
  SCOPED_TRACE(graph.file_text());
  const AutomorphismGroup found = find_automorphisms(graph_of(graph));
  const oracle::Group group = oracle::all_automorphisms(graph);
  const std::vector<oracle::Images> generators = images_of(graph.n, found.generators);
  EXPECT_EQ(oracle::closure(graph.n, generators), group);
  expect_strong(group, graph.n, generators, found.base, found.orbit_lengths);
  for (const int failures : {0, 10'000}) {
    const AutomorphismGroup searched = search_paths(graph_of(graph), {.max_descent_failures = failures});
    expect_strong(group, graph.n, images_of(graph.n, searched.generators), searched.base,
                  searched.orbit_lengths);
  }
  expect_stabiliser_chain_and_trees(group, graph.n, generators);
}

}  // namespace symfold::detail
