// Storm's explicit format (Storm's documentation, "DRN input format").

#include <numeric>

#include "host/export/formats.h"
#include "host/export/names.h"

namespace symfold {
namespace {

void write_header(const MarkovChain& chain, const std::vector<std::string>& reward_names, NewFile& out) {
  const std::size_t state_count = chain.matrix.state_count();
  out.append("@type: CTMC\n@parameters\n\n@reward_models\n");
  const char* separator = "";
  for (const std::string& name : reward_names) {
    out.append(separator, name);
    separator = " ";
  }
  out.append("\n@nr_states\n", state_count, "\n@nr_choices\n", state_count, "\n@model\n");
}

void write_state(const MarkovChain& chain, StateId state, const std::vector<std::string>& label_names,
                 NewFile& out) {
  const bool is_deadlock = chain.matrix.is_deadlock(state);
  const auto rates = chain.matrix.rates_of(state);
  out.append("state ", state, " !",
             is_deadlock ? kLoopRate : std::accumulate(rates.begin(), rates.end(), 0.0));
  for (std::size_t i = 0; i < chain.rewards.size(); ++i) {
    out.append(i == 0 ? " [" : ",", chain.rewards[i].values[state]);
  }
  if (!chain.rewards.empty()) out.append(']');
  if (state == 0) out.append(" init");
  if (is_deadlock) out.append(" deadlock");
  for (std::size_t i = 0; i < label_names.size(); ++i) {
    if (chain.observables[i].holds[state]) out.append(' ', label_names[i]);
  }
  out.append('\n');
}

}  // namespace

void write_drn(const MarkovChain& chain, NewFile& out) {
  write_header(chain, reward_identifiers(chain), out);
  const std::vector<std::string> label_names = observable_identifiers(chain);
  for (StateId state = 0; state < chain.matrix.state_count(); ++state) {
    write_state(chain, state, label_names, out);
    out.append("\taction 0\n");
    for_each_in_looped_row(chain.matrix, state, [&](StateId target, double rate) {
      out.append("\t\t", target, " : ", rate, '\n');
    });
  }
}

}  // namespace symfold
