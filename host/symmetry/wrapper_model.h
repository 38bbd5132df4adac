// The records that the detector reads of a composed model.

#ifndef SYMFOLD_HOST_SYMMETRY_WRAPPER_MODEL_H
#define SYMFOLD_HOST_SYMMETRY_WRAPPER_MODEL_H

#include <deque>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "components/host_model.h"
#include "host/model/composed_model.h"

namespace symfold {

// Owns the records; they stay where they are for the object's lifetime. Each join shares one variable, named
// as all its members name it, or "value" if they differ.
class WrapperModel {
 public:
  // Keeps no reference to the model.
  explicit WrapperModel(const ComposedModel& model);
  WrapperModel(const WrapperModel&) = delete;
  WrapperModel& operator=(const WrapperModel&) = delete;

  Wrapper* wrapper() { return &wrapper_; }

 private:
  // A join with room for its one variable.
  class OneVariableJoin : public JoinModel {
   public:
    OneVariableJoin(char* name, char* variable, SharedVarEntry* first);
    OneVariableJoin(const OneVariableJoin&) = delete;
    OneVariableJoin& operator=(const OneVariableJoin&) = delete;

   private:
    char* variable_;
    SharedVarEntry* first_;
  };

  char* text(const std::string& content);
  SharedVarEntry* add_entries(const ComposedModel& model, const Join& join);

  std::deque<std::string> texts_;
  std::map<std::string, StateVariable> variables_;  // one of each name
  std::deque<AtomicModel> submodels_;
  std::deque<SharedVarEntry> entries_;
  std::deque<OneVariableJoin> joins_;
  std::vector<JoinModel*> join_pointers_;
  Wrapper wrapper_{};
};

}  // namespace symfold

#endif  // SYMFOLD_HOST_SYMMETRY_WRAPPER_MODEL_H
