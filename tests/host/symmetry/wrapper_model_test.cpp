// Composed models beyond the examples, the records for the detector and the types file.

#include "host/symmetry/wrapper_model.h"

#include <gtest/gtest.h>

#include <sstream>

#include "host/symmetry/detection.h"
#include "tests/support/model_support.h"

namespace symfold {
namespace {

constexpr const char* kStations = R"(
const int N = 3;
type Station(int cap, real mu, bool spare) {
  private phase : {idle, serving} = idle;
  private load : [-1..cap];
  private on : bool = spare;
  shared token : {idle, here};
  shared a : [0..cap] = cap;
}
type Monitor { shared seen : [0..2] = 2; }
system S {
  st[i : 1..N] : Station(2, i == 1 ? 2.5 : 1, i == 3) { phase = i == 2 ? serving : idle; load = i - 1; };
  if (N > 5) extra : Monitor;
  m : Monitor;
  join token[i : 1..N] = i == 1 ? here : idle { st[i].token; };
  join level { m.seen; if (i != 2) st[i].a for i : 1..3; }
  join rest { st[2].a; }
}
)";

TEST(ComposedModel, TakesArgumentsInitialValuesAndConditions) {
  const ComposedModel model = read_model_text("s", kStations);
  std::ostringstream types;
  write_types(model, types);
  EXPECT_EQ(types.str(),
            "4\nst_1 Station(2,2.5,false)\nst_2 Station(2,1,false)\nst_3 Station(2,1,true)\nm Monitor\n");
  using Values = std::vector<std::int16_t>;
  EXPECT_EQ(model.submodels[0].initial, (Values{0, 0, 0}));
  EXPECT_EQ(model.submodels[1].initial, (Values{1, 1, 0}));
  EXPECT_EQ(model.submodels[2].initial, (Values{0, 2, 1}));
  EXPECT_EQ(model.submodels[3].initial, Values{});
  EXPECT_EQ(model.instances[0].byte_size(), 6);
  EXPECT_EQ(model.instances[3].byte_size(), 0);
  EXPECT_EQ(to_string(model.instances[0].private_variables[1].values), "[-1..2]");
  EXPECT_EQ(model.joins[0].initial, 1);
  EXPECT_EQ(model.joins[1].initial, 0);
  EXPECT_EQ(model.joins[3].members.size(), 3u);
  EXPECT_EQ(model.cell_count(), 9u);
}

TEST(WrapperModel, HoldsWhatTheDetectorReads) {
  const ComposedModel model = read_model_text("s", kStations);
  WrapperModel records(model);
  const Wrapper& wrapper = *records.wrapper();
  ASSERT_EQ(wrapper.NumJoins, 5);
  for (int j = 0; j < wrapper.NumJoins; ++j) {
    const JoinModel& record = *wrapper.Joins[j];
    const Join& join = model.joins[static_cast<std::size_t>(j)];
    EXPECT_EQ(record.JoinName, join.name);
    ASSERT_EQ(record.NumSharedStateVars, 1);
    const SharedVarEntry* entry = record.SharedStateVars[0];
    for (const JoinMember& member : join.members) {
      ASSERT_NE(entry, nullptr);
      EXPECT_EQ(entry->Variable->VarName, model.variable_of(member).name);
      EXPECT_EQ(entry->Model->ModelName, model.submodels[static_cast<std::size_t>(member.submodel)].name);
      entry = entry->Next;
    }
    EXPECT_EQ(entry, nullptr);
  }
  EXPECT_STREQ(wrapper.Joins[0]->SharedStateVarNames[0], "token");
  EXPECT_STREQ(wrapper.Joins[3]->SharedStateVarNames[0], "value");
  EXPECT_STREQ(wrapper.Joins[4]->SharedStateVarNames[0], "a");
}

TEST(WrapperModel, MayHaveNoJoins) {
  const ComposedModel model = read_model_text("s", "type T { } system S { a : T; b : T(); }");
  WrapperModel records(model);
  EXPECT_EQ(records.wrapper()->NumJoins, 0);
  EXPECT_EQ(model.instances.size(), 1u);
}

TEST(ModelReader, ReadsStreamsAndFiles) {
  std::istringstream in(example_text("star"));
  EXPECT_EQ(read_model(in, "standard input", {{"N", "9"}}).submodels.size(), 9u);
  EXPECT_THROW(read_model(std::string("no/such/file.sym")), ModelError);
  EXPECT_THROW(read_model(std::string(SYMFOLD_EXAMPLES_DIR)), ModelError);
}

}  // namespace
}  // namespace symfold
