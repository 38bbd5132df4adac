// SymmetryDetection: finds the symmetries of a composed model from its structure and folds its states.
//
// Two phases. Detection builds the model composition graph of submodels and joins, takes generators of its
// automorphism group, a base and strong generating set, and for every base point its orbit with a permutation
// per orbit point, and rewrites these tables from graph nodes to the partitions of the state vector.
// Labeller then maps any state, TotalStateSize bytes cut into num_partitions partitions, to a representative
// of its symmetry class: base by base, it keeps the lexicographically largest image (bytes in memcmp order).
//
// The host drives the operations in this order:
//   1. SymmetryDetection detector(&wrapper);
//   2. FindMCG(), in a directory that holds the file "types"; it writes "model_comp_graph" and "mcg.viz"
//   there. Or FindMCG(types), which needs no files;
//   3. set StateSize, in bytes, of every submodel node in GraphNodes; KeepSoundGenerators() if a part of the
//      symmetries is better than none; CreatePartitionInfo();
//   4. fill SSOrder with the names in GNOrder, in the order of their stretches in the state vector;
//      ShrinkPermutations(), AdjustPermutations(), AdjustPartitionInfo(), TrimPermutations();
//      VerifySymmetries() tells whether the tables can be trusted; WritePermFile() may save them.
//      In place of 2 to 4: ReadPermFile(), then VerifySymmetries();
//   5. num_partitions = number of elements of PartitionInfo; Initialize(); ConvertSTLToStatic();
//   6. FindCanonicalLabel() once per state;
//   7. Cleanup() and CleanStaticMembers(), once.
//
// Operations append to the containers without clearing them: each detection step runs once per detector.
// Diagnostics go to standard output, or to the stream that the owner sets, each line flushed. Tables that
// cannot be right are refused with one line, on standard error or the stream that the owner sets, and
// emptied. That leaves every state its own label: sound, though nothing is folded. What detection refuses
// clears HasWholeGroup, and exact labels are then not called exact. An entry of the labelling
// tables that would lead outside a state prints one line and ends the process with status 1.
//
// Threads: a detector serves one thread at a time. Detectors share nothing, so that any number of them work
// side by side if each has a stream of its own for diagnostics and for refusals, and none of them the files
// of another one (FindMCG with a stream uses no files).

#ifndef SYMFOLD_DETECTOR_SYMMETRY_DETECTION_H
#define SYMFOLD_DETECTOR_SYMMETRY_DETECTION_H

#include <cstdio>
#include <iosfwd>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "components/host_model.h"
#include "components/model_comp_graph.h"
#include "components/permutation.h"
#include "components/saucy_obj.h"

namespace symfold {

namespace detail {
class PlannedSearch;
}  // namespace detail

// The entries of partition permutations have 16 bits.
inline constexpr int kMaxPartitions = 32767;

class SymmetryDetection {
 public:
  // A detector without a model: NumJoins is -1, the graph gets no join nodes and no edges.
  SymmetryDetection();

  // A detector of the host's model. Reads w->Joins in place until FindMCG returns; w must not be null.
  explicit SymmetryDetection(Wrapper* w);

  // Releases the containers; the raw arrays are released by Cleanup and CleanStaticMembers alone.
  ~SymmetryDetection();
  SymmetryDetection(const SymmetryDetection&) = delete;
  SymmetryDetection& operator=(const SymmetryDetection&) = delete;

  // Where diagnostics go from now on, std::cout until then; and where the lines about refused input go,
  // std::cerr until then. Null drops them. The streams must outlive the detector or the next call.
  void SetDiagnostics(std::ostream* out);
  void SetRefusals(std::ostream* out);

  // --- The model composition graph (detector/graph/) ---

  // The whole of the graph and group construction: the steps below, in this order.
  void FindMCG();
  // The same without files: reads from `types` what the file "types" would hold, hands the graph to the
  // automorphism engine in memory, and writes nothing. PrintMCG and WriteMCGViz may write the graph later.
  void FindMCG(std::istream& types);
  // The same without the tables Bases and VPerms, which take the square of an orbit's length. SGS then holds
  // no permutations for the sake of short paths, and KeepSoundGenerators makes no tables either. For hosts
  // that make exact labels from the group: near-linear in the graph and what its generators move.
  void FindMCGGroup(std::istream& types);

  void InitFindMCG();  // submodel nodes from the file "types": a count, then name and type of each
  void InitFindMCG(std::istream& types);
  void FindMCG_JoinNodes();     // one node per shared variable of each join
  void FindMCG_PrivateNodes();  // one node per submodel variable bound by a join, and all edges
  void FindMCG_Sort();          // nodes of one type together, types in the order of NodeTypes
  void PrintMCG();              // writes "model_comp_graph", the automorphism engine's input
  void PrintMCG(std::ostream& out);
  void WriteMCGViz();  // writes "mcg.viz", in the DOT language
  void WriteMCGViz(std::ostream& out);
  void PrintGraphNodes();
  void PrintGraphEdges();

  // The part of a node's name before the first "->"; empty when there is none.
  std::string GetJoinName(std::string name);
  // The type of the first node of this name, or "unknown". Linear in the number of nodes.
  std::string FindType(std::string name);
  // The index of the first node of this name, or -1. Linear in the number of nodes.
  int FindIndex(std::string name);
  // Exchanges name and type of two nodes. Both must be indices of GraphNodes.
  void SwapNodes(int a, int b);

  // --- The symmetry group (detector/group/) ---

  void FindMCG_FindAut();     // OrigPermutations: the identity and generators of the automorphism group
  void FindMCG_FindSS();      // SGS and SGSBase: strong generating set and base of the same group
  void FindMCG_FindST();      // Bases and VPerms: orbit points of each base point with their tree paths
  void FindGraphNodeOrder();  // GNOrder
  void FindSSOrder();         // nothing: SSOrder is the host's to fill
  void PrintPermutations();
  int FindIndexSSOrder(std::string name);  // position of the first such name in SSOrder, or -1
  int FindIndexGNOrder(std::string name);  // position of the first such name in GNOrder, or -1

  // --- From graph nodes to partitions (detector/partitions/) ---

  // Leaves those generators out that are no symmetries of the composition (types, bytes, edges, the variables
  // of each join together and in order), each with one refused line, and makes SGS, SGSBase, SGSOrbitLengths,
  // Bases and VPerms anew of the others. Does nothing if all are sound, and for a graph that VerifySymmetries
  // refuses. To be called after StateSize is set, before CreatePartitionInfo and ShrinkPermutations. Linear
  // in the graph for each generator; if any is left out, besides, a Schreier-Sims run.
  void KeepSoundGenerators();
  void CreatePartitionInfo();  // sizes and offsets in bytes, partitions in graph-node order
  void ShrinkPermutations();   // the table's points become positions in GNOrder
  void AdjustPermutations();   // ... and then positions in SSOrder
  void AdjustPartitionInfo();  // sizes and offsets in state-vector order; exits on a name not in GNOrder
  void TrimPermutations();     // one combined permutation per record, identities dropped
  void PrintPartitionInfo();

  // Returns true if the tables can be trusted, and clears `report`. Otherwise `report` says in names what is
  // the first thing wrong, and HasWholeGroup becomes false. Checked are: every permutation is a bijection of
  // the partitions between partitions of equal size. While the graph is at hand, besides: it is that of a
  // composition (every edge has its nodes; no name is there twice; no submodel has the type "join"), the
  // generators and the permutations of the tables are symmetries of it, SSOrder is an arrangement of its
  // partitions, and PartitionInfo has their bytes. To be called after TrimPermutations or ReadPermFile. Cost:
  // linear in the tables, and in the graph for each generator.
  bool VerifySymmetries(std::string& report);

  // --- Labeller (detector/labelling/) ---

  // Allocates the search buffers for states of the sum of PartitionInfo and for num_partitions partitions.
  void Initialize();
  int DetermineTotalStateSize();
  int GetTotalStateSize();
  void Cleanup();

  // Copies Bases, VPerms and the partition table, num_partitions of each, to plain arrays.
  void ConvertSTLToStatic();
  void PrintStaticMembers();
  void CleanStaticMembers();

  // Writes the canonical label of `state` to `out` (TotalStateSize bytes each, may be the same) and, unless
  // perm is null, the num_partitions entries of P1 P2 ... Pk (entry y is P1[P2[...Pk[y]...]]), Pi being the
  // permutation chosen at base i. Afterwards af_current_state and af_best_state hold the label too,
  // af_best_perm these entries (the identity if perm is null), and the other work buffers what a search that
  // makes every image leaves there. Allocates nothing. Cost: a few nanoseconds per record; tables with
  // permutations that are no bijections between partitions of equal size, and static arrays that have been
  // changed since ConvertSTLToStatic, cost a pass over the state per record. The records in static_vperms
  // must not be changed in place: to change them, make the static tables again.
  void FindCanonicalLabel(void* state, void* out, short* perm);

  // Writes to `witness` the permutation of the num_partitions partitions that carries the state of the last
  // FindCanonicalLabel call onto its label: the bytes of partition c go to the place of partition witness[c].
  // Unlike `perm` above it composes the chosen moves in the order in which they were applied.
  void FindWitness(short* witness);

  int FindOrbit_static(int base, int* values);
  int FindNewState_static(void* state, int base, int value, void* out);

  // True when no single stored permutation makes the bytes up to the end of partition k larger.
  bool IsPartiallyCanonical(int k, void* state);
  void FindOrbit(int base, std::vector<int>* values);
  int FindNewState(void* state, int base, int value, void* out);

  // Appends to `result` the position in `partitions` of the first partition whose first n bytes are the
  // largest; -1 when there is none, or when an entry names no n bytes inside the state.
  void FindK(void* state, std::vector<int>& partitions, std::vector<int>& result, int n);

  // Every second byte, in decimal among the diagnostics or in hexadecimal to `file`, "|" at partition starts.
  void PrintState(void* state, int n);
  void WriteState(void* state, int n, FILE* file);

  // --- The permutation file (detector/permfile/) ---

  // Writes the tables beside `name` and renames. A failure, and tables that ReadPermFile would not take, are
  // refused with one line, also in PermFileError; what stands at `name` then stays.
  void WritePermFile(std::string& name);
  // The same text to a stream, unchecked: FindTableFault returns what ReadPermFile would say is wrong with
  // it, or an empty text. Precondition of writing: every permutation has an image for each partition.
  void WriteTables(std::ostream& out);
  std::string FindTableFault();
  // Reads a whole file and checks it before any member changes. A failure changes nothing, and is refused
  // with one line, also in PermFileError, that says what is wrong and where.
  void ReadPermFile(std::string& name);

  // --- Data ---

  std::vector<int>* orbit;
  std::vector<int>* orbit_copy;
  short* af_identity_perm = nullptr;
  short* af_new_perm = nullptr;
  short* af_best_perm = nullptr;
  short* af_temp_best_perm = nullptr;
  short* af_perm_scratch = nullptr;
  std::vector<ModelCompGraphNode> GraphNodes;
  std::vector<std::string> GNOrder;
  std::vector<std::string> SSOrder;
  std::vector<int> SGSBase;
  std::vector<int> PartitionInfo;
  std::vector<int> CumPartitionInfo;
  std::vector<int> StaticCumPartitionInfo;
  unsigned char* af_new_state = nullptr;
  unsigned char* af_best_state = nullptr;
  unsigned char* af_current_state = nullptr;
  unsigned char* af_state_scratch_a = nullptr;
  unsigned char* af_state_scratch_b = nullptr;
  std::vector<int> Bases;
  std::map<int, std::vector<ValPerms>> VPerms;
  int num_bases = 0;
  int* static_bases = nullptr;
  int* static_partition_offsets = nullptr;
  int* static_partition_sizes = nullptr;
  ValPerms** static_vperms = nullptr;
  int* static_num_vperms = nullptr;
  int* af_orbit = nullptr;
  int* af_orbit_copy = nullptr;
  int num_partitions = 0;
  Wrapper* model = nullptr;
  JoinModel** Joins = nullptr;
  int NumJoins = -1;
  std::vector<ModelCompGraphEdge> GraphEdges;
  int TotalStateSize = 0;
  saucy_obj* SaucyObj = nullptr;
  std::vector<std::string> NodeTypes;
  std::vector<Permutation> SGS;
  std::vector<Permutation> OrigPermutations;

  // Orbit length of each point of SGSBase under the stabiliser of the points before it: their product is the
  // order of the automorphism group.
  std::vector<int> SGSOrbitLengths;
  // True if the tables are those of the whole automorphism group. False before detection, and as soon as any
  // of its steps refuses something: the graph could not be searched to the end, the tables are too large, a
  // generator or the tables are unsound.
  bool HasWholeGroup = false;
  // Why the latest FindMCG_FindST made no tables; empty if it made them.
  std::string TableLimit;
  // What the last WritePermFile or ReadPermFile reported; empty after a success.
  std::string PermFileError;
  // For each base slot, the index of the record that the last FindCanonicalLabel chose, -1 if it kept its
  // state.
  int* af_choice = nullptr;

 private:
  struct PartitionLayout {
    const int* sizes;
    const int* offsets;
    int count;
  };

  std::ostream& diagnostics() const { return *diagnostics_; }
  void Refuse(std::string_view message);
  void MakeGraph();
  void MakeGroup();
  void MakeTables();
  void FindAutInMemory();
  void BeginSearch();
  void FinishSearch(saucy_struct* search);
  int FindBaseSlot(int base) const;
  void MovePartitions(const Permutation& permutation, const PartitionLayout& layout);
  void ApplyRecords(const void* state, const ValPerms* records, int record_count, int value,
                    const PartitionLayout& layout, void* out);
  void SearchStepByStep(const void* state, bool composes);
  void ComposeBestPerm();
  void DropTables();

  bool has_tables_ = true;   // false: only the group is wanted
  std::string input_fault_;  // what was wrong with the list of submodels, or with the graph file
  std::unique_ptr<std::ostream> nowhere_;  // a stream without a buffer
  std::ostream* diagnostics_;
  std::ostream* refusals_;
  // Made by ConvertSTLToStatic if it can express the static tables.
  std::unique_ptr<detail::PlannedSearch> planned_;
};

}  // namespace symfold

#endif  // SYMFOLD_DETECTOR_SYMMETRY_DETECTION_H
