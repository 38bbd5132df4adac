// The formats of exported chains, one function each; docs/file-formats.md describes them.

#ifndef SYMFOLD_HOST_EXPORT_FORMATS_H
#define SYMFOLD_HOST_EXPORT_FORMATS_H

#include "host/chain/markov_chain.h"
#include "host/new_file.h"

namespace symfold {

// PRISM's explicit files: transitions, values of the variables, labels.
void write_tra(const MarkovChain& chain, NewFile& out);
void write_sta(const MarkovChain& chain, NewFile& out);
void write_lab(const MarkovChain& chain, NewFile& out);

// PRISM's file of one state reward, the chain's reward `index`.
void write_srew(const MarkovChain& chain, std::size_t index, NewFile& out);

// Storm's explicit format DRN.
void write_drn(const MarkovChain& chain, NewFile& out);

// The rate matrix for numerical programs, Matrix Market.
void write_mtx(const MarkovChain& chain, NewFile& out);

// The chain as a labelled transition system, AUT, with the rates as CADP's tools read them.
void write_aut(const MarkovChain& chain, NewFile& out);

// A drawing of the chain in the DOT language.
void write_dot(const MarkovChain& chain, NewFile& out);

}  // namespace symfold

#endif  // SYMFOLD_HOST_EXPORT_FORMATS_H
