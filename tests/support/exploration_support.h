// Explorations as tests look at them: whole chains in plain vectors.

#ifndef SYMFOLD_TESTS_SUPPORT_EXPLORATION_SUPPORT_H
#define SYMFOLD_TESTS_SUPPORT_EXPLORATION_SUPPORT_H

#include <string>
#include <vector>

#include "host/chain/exploration.h"
#include "host/symmetry/folding.h"

namespace symfold {

// An example, with constants that make its full state space small.
ComposedModel small_example(const std::string& name);

// A model of n submodels of k local states each on one join; every submodel moves on, starts again, or stays.
std::string star_text(int n, int k);

struct Explored {
  std::string error;  // the text of a ModelError; then nothing else is known
  Ending ending = Ending::kUnderWay;
  ExplorationFigures figures;
  MarkovChain chain;  // of all states, if the exploration was complete; it cannot read values any more
  std::vector<std::vector<std::int16_t>> states;
};

Explored explored(const ComposedModel& model, const std::vector<std::string>& order = {},
                  Labeller* labeller = nullptr, const ExplorationLimits& limits = {});

// A model with its symmetries, to be explored in all ways.
class FoldedModel {
 public:
  explicit FoldedModel(const ComposedModel& model);

  // The chain of all states, and those of the representatives, in the order of the state vector.
  Explored full(const ExplorationLimits& limits = {}) const {
    return explored(model_, order(), nullptr, limits);
  }
  Explored folded(bool is_exact) const {
    return explored(model_, order(), (is_exact ? exact_ : greedy_).make_labeller().get());
  }

  // Returns for each state the number of its symmetry class.
  std::vector<int> classes_of(const std::vector<std::vector<std::int16_t>>& states) const;

 private:
  const std::vector<std::string>& order() const { return exact_.order(); }

  const ComposedModel& model_;
  Folding greedy_;
  Folding exact_;
};

}  // namespace symfold

#endif  // SYMFOLD_TESTS_SUPPORT_EXPLORATION_SUPPORT_H
