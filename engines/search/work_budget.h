// The work that a search may still do, in edges examined by refinement or steps that cost about as much.

#ifndef SYMFOLD_ENGINES_SEARCH_WORK_BUDGET_H
#define SYMFOLD_ENGINES_SEARCH_WORK_BUDGET_H

#include <algorithm>
#include <cstddef>

namespace symfold::detail {

class WorkBudget {
 public:
  explicit WorkBudget(std::size_t max_work) : left_(max_work) {}

  void spend(std::size_t work) { left_ -= std::min(left_, work); }
  bool is_spent() const { return left_ == 0; }

 private:
  std::size_t left_;
};

}  // namespace symfold::detail

#endif  // SYMFOLD_ENGINES_SEARCH_WORK_BUDGET_H
