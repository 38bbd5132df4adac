// Detected permutations against the composed model itself, by code that knows nothing of graphs.

#include "host/symmetry/detection.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <map>
#include <set>
#include <sstream>

#include "components/schreier_sims.h"
#include "engines/base/base_points.h"
#include "host/chain/state_layout.h"
#include "tests/support/model_support.h"
#include "tests/support/temp_dir.h"

namespace symfold {
namespace {

// Per join, its members as (partition of the submodel, variable); partitions in the detector's order.
using Memberships = std::map<int, std::set<std::pair<int, std::string>>>;

void expect_symmetry(const Memberships& joins, const std::map<int, std::string>& types,
                     const Permutation& p) {
  for (const auto& [partition, type] : types) EXPECT_EQ(types.at(p[partition]), type);
  for (const auto& [join, members] : joins) {
    std::set<std::pair<int, std::string>> moved;
    for (const auto& [submodel, variable] : members) moved.emplace(p[submodel], variable);
    EXPECT_EQ(joins.at(p[join]), moved);
  }
}

// Every record moves its value onto its base, and submodels onto submodels of their type, joins onto the
// joins of the moved members.
TEST(Detection, StoresSymmetriesOfTheModelForEveryExample) {
  for (const std::string& name : example_names()) {
    SCOPED_TRACE(name);
    const ComposedModel model = read_model(example_path(name));
    const Detection run(model, nullptr, false);
    EXPECT_TRUE(run.is_sound()) << run.unsound_reason();
    const SymmetryDetection& detector = run.detector();
    std::map<std::string, int> position;
    for (const std::string& partition : detector.SSOrder) position.emplace(partition, position.size());
    std::map<int, std::string> types;
    for (const Submodel& submodel : model.submodels) {
      types[position.at(submodel.name)] = model.instance_of(submodel).token;
    }
    Memberships joins;
    for (const Join& join : model.joins) {
      for (const JoinMember& member : join.members) {
        const Submodel& submodel = model.submodels[static_cast<std::size_t>(member.submodel)];
        joins[position.at(join.name)].emplace(position.at(submodel.name), model.variable_of(member).name);
      }
    }
    for (const auto& [base, records] : detector.VPerms) {
      for (const ValPerms& record : records) {
        ASSERT_EQ(record.Perms.size(), 1U);
        EXPECT_EQ(record.Perms[0][record.Value], base);
        expect_symmetry(joins, types, record.Perms[0]);
      }
    }
    EXPECT_EQ(static_cast<int>(2 * StateLayout(model, detector.SSOrder).slot_count()),
              detector.CumPartitionInfo.back() + detector.PartitionInfo.back());
  }
}

// Two submodels of one type that differ in size: their exchange is left out, the user reads it whatever comes
// after, and labels are not called exact.
TEST(Detection, TellsWhatIsRefusedEvenIfItFailsLater) {
  ComposedModel model = read_model_text(
      "m.sym", "type T { private x : bool; [a] x -> 1.0 : x = false; }\nsystem S { t[i : 0..2] : T; }\n");
  model.instances.push_back(model.instances[0]);
  model.instances[1].private_variables.push_back(model.instances[1].private_variables[0]);
  model.submodels[0].instance = 1;
  const std::string refused =
      "symfold: the generator (t_0 t_2) is left out: it carries t_0 (4 bytes) to t_2 (2 bytes)\n";
  std::ostringstream told;
  const Folding folding(model, Symmetry::kExact, {}, &told);
  EXPECT_EQ(told.str(), refused);
  EXPECT_EQ(folding.refusals(), refused);
  EXPECT_TRUE(folding.is_sound()) << folding.unsound_reason();
  EXPECT_EQ(folding.orbit_lengths(), std::vector<int>{2});
  const std::unique_ptr<Labeller> labeller = folding.make_labeller();
  std::vector<std::int16_t> state(folding.state_size() / 2, 1);
  EXPECT_FALSE(labeller->find(state.data(), state.data()));

  const TempDir dir;
  std::filesystem::create_directories("run/permutations/in_the_way");
  std::ostringstream told_before;
  EXPECT_THROW(Folding(model, Symmetry::kExact, {"run"}, &told_before), std::runtime_error);
  EXPECT_EQ(told_before.str(), refused);
}

// The cells' generators are strong as they stand, for the group of the tables.
TEST(Detection, FindsTheGroupOnCellsWithoutTables) {
  for (const std::string& name : example_names()) {
    SCOPED_TRACE(name);
    const ComposedModel model = read_model(example_path(name));
    const Detection group(model, nullptr, false, nullptr, DetectionGoal::kGroup);
    const Detection tables(model, nullptr, false);
    EXPECT_TRUE(group.is_sound() && group.detector().VPerms.empty() && group.detector().Bases.empty());
    EXPECT_EQ(group.detector().SSOrder, tables.detector().SSOrder);
    EXPECT_EQ(group.detector().PartitionInfo, tables.detector().PartitionInfo);
    EXPECT_EQ(group.detector().CumPartitionInfo, tables.detector().CumPartitionInfo);
    EXPECT_EQ(group.detector().SGSOrbitLengths, tables.detector().SGSOrbitLengths);
    const int cells = static_cast<int>(tables.detector().SSOrder.size());
    std::vector<Permutation> generators;
    for (const auto& [base, records] : tables.detector().VPerms) {
      for (const ValPerms& record : records) generators.push_back(record.Perms[0]);
    }
    SchreierSims whole(cells, 0);
    std::vector<int> base, base_as_it_stands, lengths_as_they_stand;
    whole.Go(generators, base);
    detail::read_base(cells, group.cell_generators(), base_as_it_stands, lengths_as_they_stand);
    EXPECT_EQ(base_as_it_stands, base);
    EXPECT_EQ(lengths_as_they_stand, whole.OrbitLengths());
  }
}

}  // namespace
}  // namespace symfold
