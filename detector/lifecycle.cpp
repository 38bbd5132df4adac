// Construction, streams, buffers and release of a detector.

#include <iostream>
#include <new>

#include "detector/labelling/planned_search.h"
#include "detector/partitions/byte_sizes.h"
#include "detector/symmetry_detection.h"

namespace symfold {
namespace {

template <class T>
T* allocate(int count) {
  if (count < 0) throw std::bad_array_new_length();
  return new T[static_cast<std::size_t>(count)];
}

}  // namespace

SymmetryDetection::SymmetryDetection()
    : orbit(new std::vector<int>),
      orbit_copy(new std::vector<int>),
      nowhere_(std::make_unique<std::ostream>(nullptr)),
      diagnostics_(&std::cout),
      refusals_(&std::cerr) {}

SymmetryDetection::SymmetryDetection(Wrapper* w) : SymmetryDetection() {
  model = w;
  Joins = w->Joins;
  NumJoins = w->NumJoins;
}

SymmetryDetection::~SymmetryDetection() {
  delete orbit;
  delete orbit_copy;
}

void SymmetryDetection::SetDiagnostics(std::ostream* out) {
  diagnostics_ = out == nullptr ? nowhere_.get() : out;
}

void SymmetryDetection::SetRefusals(std::ostream* out) { refusals_ = out == nullptr ? nowhere_.get() : out; }

void SymmetryDetection::Refuse(std::string_view message) {
  *refusals_ << "symfold: " << message << std::endl;
}

int SymmetryDetection::DetermineTotalStateSize() {
  TotalStateSize = 0;
  for (const int size : PartitionInfo) TotalStateSize = add_bytes(TotalStateSize, size);
  return TotalStateSize;
}

int SymmetryDetection::GetTotalStateSize() { return TotalStateSize; }

void SymmetryDetection::Initialize() {
  DetermineTotalStateSize();
  diagnostics() << "Initialize() TotalStateSize: " << std::to_string(TotalStateSize) << std::endl;
  for (unsigned char** state :
       {&af_new_state, &af_best_state, &af_current_state, &af_state_scratch_a, &af_state_scratch_b}) {
    *state = allocate<unsigned char>(TotalStateSize);
  }
  for (short** perm :
       {&af_identity_perm, &af_new_perm, &af_best_perm, &af_temp_best_perm, &af_perm_scratch}) {
    *perm = allocate<short>(num_partitions);
  }
  for (int i = 0; i < num_partitions; ++i) af_identity_perm[i] = static_cast<short>(i);
}

void SymmetryDetection::Cleanup() {
  for (unsigned char* state :
       {af_new_state, af_best_state, af_current_state, af_state_scratch_a, af_state_scratch_b}) {
    delete[] state;
  }
  for (short* perm : {af_identity_perm, af_best_perm, af_temp_best_perm, af_perm_scratch, af_new_perm}) {
    delete[] perm;
  }
}

}  // namespace symfold
