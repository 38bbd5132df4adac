// Explores five philosophers as they are and folded by their symmetries, and writes the folded chain:
//
//     host_library examples/philosophers.sym
//
// Returns 1 if the numbers of states are not the known ones, 573 and 117.

#include <cstddef>
#include <exception>
#include <iostream>
#include <memory>
#include <stdexcept>
#include <string>

#include "host/chain/exploration.h"
#include "host/export/chain_export.h"
#include "host/language/model_reader.h"
#include "host/symmetry/folding.h"
#include "host/symmetry/symmetry_names.h"

namespace {

// Returns the number of states. Writes the chain, unless the name of its file is empty.
std::size_t explore(const symfold::ComposedModel& model, const symfold::Folding& folding,
                    const std::string& file) {
  const std::unique_ptr<symfold::Labeller> labeller = folding.make_labeller();
  symfold::Exploration exploration(model, folding.order(), labeller.get(), !file.empty());
  const symfold::ExplorationLimits limits{.states = 1'000'000, .seconds = 60};
  const auto show = [](const symfold::ExplorationFigures& figures) {
    std::cerr << figures.states << " states, " << figures.frontier() << " of them not expanded\n";
    return true;  // false interrupts the exploration
  };
  const symfold::Ending ending = exploration.run(limits, show);
  if (ending != symfold::Ending::kComplete) {
    throw std::runtime_error(std::string("not complete: ") + symfold::to_string(ending));
  }
  if (labeller && labeller->inexact_count() > 0) throw std::runtime_error("some labels are not exact");
  if (!file.empty()) {
    const symfold::MarkovChain chain = exploration.take_chain();
    for (const std::string& name : symfold::write_chain(chain, file)) std::cout << "file  " << name << "\n";
  }
  return exploration.figures().states;
}

void print_symmetries(const symfold::SymmetryDetection& detector) {
  for (const symfold::Permutation& generator : detector.OrigPermutations) {
    if (!generator.IsIdentity()) std::cout << symfold::named_cycles(detector, generator, 8, 8) << "\n";
  }
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 2) return std::cerr << "usage: host_library MODEL\n", 2;
  try {
    const symfold::ComposedModel model = symfold::read_model(argv[1], {{"N", "5"}});
    const symfold::Folding unfolded(model, symfold::Symmetry::kOff);
    const symfold::Folding folded(model, symfold::Symmetry::kExact);
    print_symmetries(*folded.detector());
    const std::size_t states = explore(model, unfolded, "");
    const std::size_t classes = explore(model, folded, "chain.drn");
    std::cout << classes << " classes of " << states << " states\n";
    return states == 573 && classes == 117 ? 0 : 1;
  } catch (const std::exception& error) {  // ModelError, GroupLimitError and UnsoundSymmetryError among them
    std::cerr << error.what() << "\n";
    return 1;
  }
}
