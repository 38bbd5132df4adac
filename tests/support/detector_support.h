// What the detector's tests share: a model written down in place, captured output, labels as text.

#ifndef SYMFOLD_TESTS_SUPPORT_DETECTOR_SUPPORT_H
#define SYMFOLD_TESTS_SUPPORT_DETECTOR_SUPPORT_H

#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "detector/symmetry_detection.h"
#include "tests/oracles/literal_labeller.h"
#include "tests/support/temp_dir.h"

namespace symfold {

// What the action prints on standard output, and on standard error.
std::string captured(const std::function<void()>& action);
std::string captured_errors(const std::function<void()>& action);

struct SharedVariable {
  std::string name;
  std::vector<std::pair<std::string, std::string>> members;  // submodel and its variable
};

struct TestJoin {
  std::string name;
  std::vector<SharedVariable> variables;
};

// Owns the host records of some joins.
class TestModel {
 public:
  explicit TestModel(const std::vector<TestJoin>& joins);
  Wrapper* wrapper() { return &wrapper_; }

 private:
  char* text(const std::string& name);

  std::vector<std::unique_ptr<std::string>> texts_;
  std::vector<std::unique_ptr<StateVariable>> variables_;
  std::vector<std::unique_ptr<AtomicModel>> models_;
  std::vector<std::unique_ptr<SharedVarEntry>> entries_;
  std::vector<std::unique_ptr<JoinModel>> joins_;
  std::vector<std::vector<char*>> names_;
  std::vector<std::vector<SharedVarEntry*>> heads_;
  std::vector<JoinModel*> pointers_;
  Wrapper wrapper_{};
};

// From the group to the tables of partitions, in graph-node order; the submodels' sizes must be set.
void make_tables(SymmetryDetection& detector);

// Runs the whole detection of a model whose submodels hold `submodel_bytes` each, state vector in graph-node
// order, up to TrimPermutations; the detector must be new. Works in the current directory.
void detect(SymmetryDetection& detector, const std::string& types, int submodel_bytes);

// Makes a detector with tables ready for the search.
void start_labelling(SymmetryDetection& detector);
void stop_labelling(SymmetryDetection& detector);

// The label of a state, bytes as text; optionally the composed permutation.
std::string label_of(SymmetryDetection& detector, std::string state, std::vector<short>* perm = nullptr);

// Expects the label of a state, its permutation and the contents of all member arrays, with and without the
// permutation, to be those of the literal search on the same tables; for tables of bijections (not wild ones)
// its witness, too.
void expect_literal_label(SymmetryDetection& detector, const LabelTables& tables, const std::string& state,
                          bool wild = false);

}  // namespace symfold

#endif  // SYMFOLD_TESTS_SUPPORT_DETECTOR_SUPPORT_H
