#include "tests/support/detector_support.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <iostream>
#include <sstream>

namespace symfold {
namespace {

std::string captured_stream(std::ostream& stream, const std::function<void()>& action) {
  std::ostringstream text;
  std::streambuf* before = stream.rdbuf(text.rdbuf());
  action();
  stream.rdbuf(before);
  return text.str();
}

}  // namespace

std::string captured(const std::function<void()>& action) { return captured_stream(std::cout, action); }

std::string captured_errors(const std::function<void()>& action) {
  std::string errors;
  captured([&] { errors = captured_stream(std::cerr, action); });
  return errors;
}

TestModel::TestModel(const std::vector<TestJoin>& joins) {
  for (const TestJoin& join : joins) {
    auto& names = names_.emplace_back();
    auto& heads = heads_.emplace_back();
    for (const SharedVariable& variable : join.variables) {
      names.push_back(text(variable.name));
      SharedVarEntry* next = nullptr;
      for (auto member = variable.members.rbegin(); member != variable.members.rend(); ++member) {
        variables_.push_back(std::make_unique<StateVariable>(StateVariable{text(member->second)}));
        models_.push_back(std::make_unique<AtomicModel>(AtomicModel{text(member->first)}));
        entries_.push_back(std::make_unique<SharedVarEntry>(
            SharedVarEntry{variables_.back().get(), models_.back().get(), next}));
        next = entries_.back().get();
      }
      heads.push_back(next);
    }
    joins_.push_back(std::make_unique<JoinModel>());
    joins_.back()->JoinName = text(join.name);
    joins_.back()->NumSharedStateVars = static_cast<int>(names.size());
  }
  for (std::size_t j = 0; j < joins_.size(); ++j) {
    joins_[j]->SharedStateVarNames = names_[j].data();
    joins_[j]->SharedStateVars = heads_[j].data();
    pointers_.push_back(joins_[j].get());
  }
  wrapper_ = {pointers_.data(), static_cast<int>(pointers_.size())};
}

char* TestModel::text(const std::string& name) {
  texts_.push_back(std::make_unique<std::string>(name));
  return texts_.back()->data();
}

void make_tables(SymmetryDetection& detector) {
  detector.CreatePartitionInfo();
  detector.SSOrder = detector.GNOrder;
  detector.ShrinkPermutations();
  detector.AdjustPermutations();
  detector.AdjustPartitionInfo();
  detector.TrimPermutations();
}

void detect(SymmetryDetection& detector, const std::string& types, int submodel_bytes) {
  write_file("types", types);
  captured([&] {
    detector.FindMCG();
    for (ModelCompGraphNode& node : detector.GraphNodes) {
      if (node.PrivateOrJoin && node.Type != "join") node.StateSize = submodel_bytes;
    }
    make_tables(detector);
  });
}

void start_labelling(SymmetryDetection& detector) {
  captured([&] {
    detector.num_partitions = static_cast<int>(detector.PartitionInfo.size());
    detector.Initialize();
    detector.ConvertSTLToStatic();
  });
}

void stop_labelling(SymmetryDetection& detector) {
  detector.Cleanup();
  detector.CleanStaticMembers();
}

std::string label_of(SymmetryDetection& detector, std::string state, std::vector<short>* perm) {
  std::string label(state.size(), '\0');
  if (perm != nullptr) perm->resize(static_cast<std::size_t>(detector.num_partitions));
  detector.FindCanonicalLabel(state.data(), label.data(), perm == nullptr ? nullptr : perm->data());
  return label;
}

namespace {

template <class T, class Content>
bool holds(const T* array, const Content& content) {
  return std::equal(content.begin(), content.end(), array,
                    [](auto expected, T actual) { return static_cast<T>(expected) == actual; });
}

// Fills the buffers that a search need not touch, and says so in the answer.
LiteralBuffers filled_buffers(SymmetryDetection& detector) {
  const auto states = static_cast<std::size_t>(detector.TotalStateSize);
  const auto perms = static_cast<std::size_t>(detector.num_partitions);
  std::size_t orbits = perms;
  for (int i = 0; i < detector.num_bases; ++i) {
    orbits = std::max(orbits, static_cast<std::size_t>(detector.static_num_vperms[i]));
  }
  const std::string text(states, '\x5a');
  const std::vector<short> perm(perms, -77);
  const std::vector<int> orbit(orbits, -777);
  for (auto* buffer : {detector.af_new_state, detector.af_best_state, detector.af_current_state,
                       detector.af_state_scratch_a, detector.af_state_scratch_b}) {
    std::copy(text.begin(), text.end(), buffer);
  }
  for (auto* buffer :
       {detector.af_new_perm, detector.af_best_perm, detector.af_temp_best_perm, detector.af_perm_scratch}) {
    std::copy(perm.begin(), perm.end(), buffer);
  }
  for (auto* buffer : {detector.af_orbit, detector.af_orbit_copy}) {
    std::copy(orbit.begin(), orbit.end(), buffer);
  }
  return {text, text, text, perm, perm, perm, perm, orbit, orbit};
}

}  // namespace

void expect_literal_label(SymmetryDetection& detector, const LabelTables& tables, const std::string& state,
                          bool wild) {
  for (const bool composes : {false, true}) {
    SCOPED_TRACE(composes ? "with a permutation" : "without a permutation");
    LiteralBuffers buffers = filled_buffers(detector);
    const LiteralLabel expected = literal_label(tables, state, composes, buffers);
    std::vector<short> perm;
    ASSERT_EQ(label_of(detector, state, composes ? &perm : nullptr), expected.state);
    ASSERT_EQ(perm, composes ? expected.perm : std::vector<short>());
    ASSERT_TRUE(holds(detector.af_current_state, expected.state));
    ASSERT_TRUE(holds(detector.af_best_state, expected.state));
    ASSERT_TRUE(holds(detector.af_new_state, buffers.new_state));
    ASSERT_TRUE(holds(detector.af_state_scratch_a, buffers.scratch_a));
    ASSERT_TRUE(holds(detector.af_state_scratch_b, buffers.scratch_b));
    ASSERT_TRUE(holds(detector.af_new_perm, buffers.new_perm));
    ASSERT_TRUE(holds(detector.af_best_perm, buffers.best_perm));
    ASSERT_TRUE(holds(detector.af_temp_best_perm, buffers.temp_best_perm));
    ASSERT_TRUE(holds(detector.af_perm_scratch, buffers.perm_scratch));
    ASSERT_TRUE(holds(detector.af_orbit, buffers.orbit));
    ASSERT_TRUE(holds(detector.af_orbit_copy, buffers.orbit_copy));
    if (wild) continue;
    std::vector<short> witness(tables.sizes.size());
    detector.FindWitness(witness.data());
    ASSERT_EQ(witness, expected.witness);
    ASSERT_EQ(moved(tables.sizes, {witness.begin(), witness.end()}, state), expected.state);
  }
}

}  // namespace symfold
