# The public headers, which alone are installed. Each compiles by itself, states its contract and includes no other
# header of this project than these.
set(symfold_public_headers
  components/host_model.h
  components/model_comp_graph.h
  components/permutation.h
  components/saucy_obj.h
  components/schreier_sims.h
  components/schreier_tree.h
  detector/exact_labeller.h
  detector/greedy_labeller.h
  detector/labeller.h
  detector/labelling_tables.h
  detector/symmetry_detection.h
  engines/base/sparse_permutation.h
  engines/group/permutation_group.h
  host/chain/exploration.h
  host/chain/markov_chain.h
  host/export/chain_export.h
  host/language/model_reader.h
  host/model/composed_model.h
  host/model/model_error.h
  host/model/value.h
  host/symmetry/certificate.h
  host/symmetry/folding.h
  host/symmetry/symmetry_error.h
  host/symmetry/symmetry_names.h)
