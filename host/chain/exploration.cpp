#include "host/chain/exploration.h"

#include "host/chain/explorer.h"

namespace symfold {

const char* to_string(Ending ending) {
  switch (ending) {
    case Ending::kUnderWay:
      return "under way";
    case Ending::kComplete:
      return "complete";
    case Ending::kStateLimit:
      return "state limit";
    case Ending::kMemoryLimit:
      return "memory limit";
    case Ending::kTimeLimit:
      return "time limit";
    case Ending::kInterrupted:
      return "interrupted";
  }
  return "";
}

Exploration::Exploration(const ComposedModel& model, const std::vector<std::string>& order,
                         Labeller* labeller, bool keeps_chain)
    : explorer_(std::make_unique<Explorer>(model, order, labeller, keeps_chain)) {}

Exploration::~Exploration() = default;

Ending Exploration::run(const ExplorationLimits& limits, const Progress& progress) {
  return explorer_->run(limits, progress);
}

const ExplorationFigures& Exploration::figures() const { return explorer_->figures(); }

const std::vector<std::string>& Exploration::observable_names() const {
  return explorer_->observable_names();
}

bool Exploration::certify(Certificate& certificate, const std::function<bool()>& goes_on) {
  return explorer_->certify(certificate, goes_on);
}

MarkovChain Exploration::take_chain() { return explorer_->take_chain(); }

}  // namespace symfold
