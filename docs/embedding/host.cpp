#include <algorithm>
#include <iostream>
#include <sstream>
#include <string>

#include "detector/exact_labeller.h"
#include "detector/greedy_labeller.h"
#include "detector/symmetry_detection.h"

// Three submodels a, b, c of one type; their variables x are shared by the join `bus` as its variable v.
int main() {
  char names[3][2] = {"a", "b", "c"};
  char x[] = "x", v[] = "v", bus[] = "bus";
  symfold::StateVariable variable{x};
  symfold::AtomicModel models[3] = {{names[0]}, {names[1]}, {names[2]}};
  symfold::SharedVarEntry c{&variable, &models[2], nullptr}, b{&variable, &models[1], &c};
  symfold::SharedVarEntry a{&variable, &models[0], &b};
  char* variable_names[] = {v};
  symfold::SharedVarEntry* entries[] = {&a};
  symfold::JoinModel join;
  join.JoinName = bus;
  join.NumSharedStateVars = 1;
  join.SharedStateVarNames = variable_names;
  join.SharedStateVars = entries;
  symfold::JoinModel* joins[] = {&join};
  symfold::Wrapper model{joins, 1};
  std::istringstream types("3\na Client\nb Client\nc Client\n");

  symfold::SymmetryDetection detector(&model);
  detector.SetDiagnostics(nullptr);
  detector.FindMCG(types);
  for (auto& node : detector.GraphNodes) {
    if (node.Type == "Client") node.StateSize = 1;  // bytes of each submodel's stretch of the state
  }
  detector.KeepSoundGenerators();
  detector.CreatePartitionInfo();
  detector.SSOrder = detector.GNOrder;  // this host lays its states out in graph-node order
  detector.ShrinkPermutations();
  detector.AdjustPermutations();
  detector.AdjustPartitionInfo();
  detector.TrimPermutations();
  std::string report;
  if (!detector.VerifySymmetries(report)) return std::cerr << report << "\n", 1;

  const symfold::GreedyGroup greedy_group(detector);
  const symfold::ExactGroup exact_group(detector);
  symfold::GreedyLabeller greedy(greedy_group);
  symfold::ExactLabeller exact(exact_group);
  const unsigned char state[] = {1, 3, 2, 9, 9};  // a, b, c, and two bytes of the join
  const unsigned char expected[] = {3, 2, 1, 9, 9};
  for (symfold::Labeller* labeller :
       {static_cast<symfold::Labeller*>(&greedy), static_cast<symfold::Labeller*>(&exact)}) {
    unsigned char label[5];
    if (!labeller->find(state, label) || !std::equal(label, label + 5, expected)) return 1;
  }

  // The same greedy label from the detector itself.
  detector.num_partitions = static_cast<int>(detector.PartitionInfo.size());
  detector.Initialize();
  detector.ConvertSTLToStatic();
  unsigned char copy[5], label[5];
  std::copy(state, state + 5, copy);
  detector.FindCanonicalLabel(copy, label, nullptr);
  detector.Cleanup();
  detector.CleanStaticMembers();
  return std::equal(label, label + 5, expected) ? 0 : 1;
}
