// What the detector reads of a host's model. A host fills these records; the detector only reads them, and
// only while SymmetryDetection::FindMCG runs: until it returns, everything reached from the Wrapper must stay
// valid and unchanged. All names are NUL-terminated and owned by the host.

#ifndef SYMFOLD_COMPONENTS_HOST_MODEL_H
#define SYMFOLD_COMPONENTS_HOST_MODEL_H

namespace symfold {

// A state variable of one submodel.
struct StateVariable {
  char* VarName;
};

// A submodel, named as in the types file.
struct AtomicModel {
  char* ModelName;
};

// One submodel variable that a shared variable stands for; a list linked by Next, null after the last.
struct SharedVarEntry {
  StateVariable* Variable;
  AtomicModel* Model;
  SharedVarEntry* Next;
};

// A join: NumSharedStateVars shared variables, each with its name and a list of at least one entry.
class JoinModel {
 public:
  JoinModel() = default;
  JoinModel(const JoinModel&) = default;
  JoinModel& operator=(const JoinModel&) = default;
  virtual ~JoinModel() = default;

  char* JoinName = nullptr;
  int NumSharedStateVars = 0;
  char** SharedStateVarNames = nullptr;
  SharedVarEntry** SharedStateVars = nullptr;
};

// The composed model: NumJoins joins, none of them null; NumJoins <= 0 means no joins.
struct Wrapper {
  JoinModel** Joins;
  int NumJoins;
};

}  // namespace symfold

#endif  // SYMFOLD_COMPONENTS_HOST_MODEL_H
