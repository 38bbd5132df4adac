// The example models: what they compose to, and that the group order in their first comment is the one found.

#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <numeric>
#include <string>
#include <vector>

#include "engines/automorphism_search.h"
#include "tests/host/model_support.h"

namespace symfold {
namespace {

using Overrides = std::vector<ConstOverride>;

// Vertices: submodels coloured by instance, their shared variables by instance and variable, joins.
ColouredGraph composition_graph(const ComposedModel& model) {
  std::map<std::pair<int, int>, std::vector<int>> variables;  // of a colour: numbers of members
  std::vector<std::pair<int, int>> member_places;             // submodel and join of each member
  for (std::size_t j = 0; j < model.joins.size(); ++j) {
    for (const JoinMember& member : model.joins[j].members) {
      const int instance = model.submodels[static_cast<std::size_t>(member.submodel)].instance;
      variables[{instance, member.variable}].push_back(static_cast<int>(member_places.size()));
      member_places.emplace_back(member.submodel, static_cast<int>(j));
    }
  }
  std::vector<int> boundaries;
  int next = 0;
  const auto close_colour = [&] { boundaries.push_back(next); };
  std::vector<int> submodel_vertex(model.submodels.size());
  for (int instance = 0; instance < static_cast<int>(model.instances.size()); ++instance) {
    for (std::size_t i = 0; i < model.submodels.size(); ++i) {
      if (model.submodels[i].instance == instance) submodel_vertex[i] = next++;
    }
    close_colour();
  }
  const int first_join = next;
  next += static_cast<int>(model.joins.size());
  close_colour();
  std::vector<Edge> edges;
  for (const auto& [colour, members] : variables) {
    for (const int member : members) {
      const auto [submodel, join] = member_places[static_cast<std::size_t>(member)];
      edges.push_back({submodel_vertex[static_cast<std::size_t>(submodel)], next});
      edges.push_back({next++, first_join + join});
    }
    close_colour();
  }
  boundaries.pop_back();
  return {next, boundaries, edges};
}

double group_order(const ComposedModel& model) {
  const AutomorphismGroup group = find_automorphisms(composition_graph(model));
  return std::accumulate(group.orbit_lengths.begin(), group.orbit_lengths.end(), 1.0, std::multiplies<>());
}

double factorial(int n) { return n <= 1 ? 1 : n * factorial(n - 1); }

struct Composition {
  std::string example;
  Overrides overrides;
  std::size_t submodels;
  std::size_t joins;
  double order;
};

class Examples : public testing::TestWithParam<Composition> {};

TEST_P(Examples, ComposeAsDeclared) {
  const ComposedModel model = read_model(example_path(GetParam().example), GetParam().overrides);
  EXPECT_EQ(model.submodels.size(), GetParam().submodels);
  EXPECT_EQ(model.joins.size(), GetParam().joins);
  EXPECT_DOUBLE_EQ(group_order(model), GetParam().order);
}

std::vector<Composition> compositions() {
  std::vector<Composition> all = {
      {"arms", {}, 12, 8, 8},
      {"arms", {{"N", "7"}}, 21, 14, 14},
      {"clients_servers", {}, 11, 5, 12},
      {"clients_servers", {{"K", "4"}, {"M", "5"}}, 29, 9, factorial(4) * factorial(5)},
      {"complete", {}, 9, 6, 6},
      {"complete", {{"K", "6"}}, 36, 12, 720},
      {"philosophers", {}, 5, 5, 5},
      {"philosophers", {{"N", "200"}}, 200, 200, 200},
      {"star", {}, 4, 1, 24},
      {"star", {{"N", "12"}, {"think", "0.5"}}, 12, 1, factorial(12)},
      {"tandem", {}, 6, 5, 1},
      {"tandem", {{"N", "20"}}, 22, 21, 1},
      {"torus", {}, 9, 18, 9},
      {"torus", {{"W", "5"}, {"H", "4"}}, 20, 40, 20},
      {"two_speeds", {}, 7, 1, 36},
      {"two_speeds", {{"N", "7"}}, 8, 1, factorial(3) * factorial(4)},
      {"wreath", {}, 8, 3, 72},
      {"wreath", {{"M", "3"}, {"K", "4"}}, 15, 4, 24.0 * 24 * 24 * 6},
  };
  for (int d = 1; d <= 8; ++d) {
    const std::size_t nodes = std::size_t{1} << d;
    const auto dimensions = static_cast<std::size_t>(d);
    all.push_back({"hypercube",
                   {{"d", std::to_string(d)}},
                   nodes,
                   dimensions * nodes / 2 + (8 - dimensions) * nodes,
                   static_cast<double>(nodes)});
  }
  return all;
}

INSTANTIATE_TEST_SUITE_P(All, Examples, testing::ValuesIn(compositions()), [](const auto& given) {
  std::string name = given.param.example;
  for (const ConstOverride& entry : given.param.overrides) {
    name += '_' + entry.name + (entry.value.find('.') == std::string::npos ? entry.value : "");
  }
  return name;
});

TEST(ExampleFiles, HaveLabelsRewardsAndDynamics) {
  for (const std::string& name : example_names()) {
    const ComposedModel model = read_model(example_path(name));
    const ModelDescription& description = *model.description;
    EXPECT_EQ(example_text(name).rfind("// " + name + ".sym", 0), 0u) << name;
    EXPECT_GE(description.observables.size(), 2u) << name;
    for (const TypeDecl& type : description.types) EXPECT_FALSE(type.actions.empty()) << name;
  }
}

TEST(Philosophers, AreComposedInOrderOfDeclaration) {
  const ComposedModel model = read_model(example_path("philosophers"));
  EXPECT_EQ(model.name, "Ring");
  ASSERT_EQ(model.instances.size(), 1u);
  const TypeInstance& type = model.instances[0];
  EXPECT_EQ(type.token, "Philosopher");
  EXPECT_EQ(type.byte_size(), 2);
  ASSERT_EQ(type.private_variables.size(), 1u);
  EXPECT_EQ(type.private_variables[0].name, "phase");
  EXPECT_EQ(to_string(type.private_variables[0].values), "{thinking, hungry, left, eating}");
  EXPECT_EQ(value_text(type.private_variables[0].values, 2), "left");
  EXPECT_EQ(type.shared_variables[1].name, "rfork");
  EXPECT_EQ(model.submodels[4].name, "phil_4");
  EXPECT_EQ(model.submodels[4].initial, std::vector<std::int16_t>{0});
  const Join& last = model.joins[4];
  EXPECT_EQ(last.name, "fork_4");
  EXPECT_EQ(last.initial, 1);
  ASSERT_EQ(last.members.size(), 2u);
  EXPECT_EQ(last.members[0].submodel, 4);
  EXPECT_EQ(last.members[0].variable, 0);
  EXPECT_EQ(last.members[1].submodel, 0);
  EXPECT_EQ(last.members[1].variable, 1);
}

}  // namespace
}  // namespace symfold
