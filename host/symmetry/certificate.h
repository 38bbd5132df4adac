// Certificates of foldings: files from which a program that knows nothing of this one can check that states
// were folded soundly (docs/certificates.md, tools/check_certificate.cpp).
//
//     Certificate certificate(model, folding, {"philosophers.certificate", "5"});
//     exploration.certify(certificate, [] { return true; });

#ifndef SYMFOLD_HOST_SYMMETRY_CERTIFICATE_H
#define SYMFOLD_HOST_SYMMETRY_CERTIFICATE_H

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace symfold {

class CompositionCheck;
struct ComposedModel;
class Folding;
class NewFile;

struct CertificateOptions {
  std::string file;
  std::string group_order;          // in decimal
  std::size_t sample = 100'000;     // about so many transitions are certified, all if there are no more
  bool has_inexact_labels = false;  // Labeller::inexact_count() > 0
};

// A state that was reached, its label, and the permutation of the cells that carries it there
// (Labeller::find_witness). States are values by slot, in the order of the state vector.
struct LabelledState {
  std::span<const std::int16_t> state;
  std::span<const std::int16_t> label;
  std::span<const short> witness;
};

// Checks every witness before it is written, by code that did not make it: the witness must carry the model's
// composition onto itself, and the state onto its label. The same exploration makes the same bytes.
//
// The functions are called in the order of the file: begin, any number of times add, commit. They throw
// UnsoundSymmetryError if a witness does not hold, and std::runtime_error if the file cannot be written.
// Unless commit returns, no file is left.
class Certificate {
 public:
  // Model and folding must outlive the certificate. Requires: the folding's symmetries are sound, and it
  // folds.
  Certificate(const ComposedModel& model, const Folding& folding, CertificateOptions options);
  ~Certificate();

  // Begins the file with the composition, the group and the initial state. `action_count` is the number of
  // transitions of which the sample is one.
  void begin(std::size_t action_count, const LabelledState& initial);

  // True if the transitions of this state belong to the sample. That depends on the state's values and on the
  // size of the sample alone. So samples spread over the whole exploration, and the next run takes the same.
  bool is_sampled(std::span<const std::int16_t> state) const;

  // A transition from a state to the one that an action of this submodel (of the model's list) reaches.
  void add(std::span<const std::int16_t> source, std::size_t submodel, std::string_view action,
           const LabelledState& reached);

  void commit();

  std::size_t transition_count() const { return transition_count_; }

 private:
  void append_composition();
  void append_generators();
  void append_state(std::span<const std::int16_t> state);
  void append_label(const LabelledState& reached);
  std::string find_fault(const LabelledState& reached);

  const ComposedModel& model_;
  const Folding& folding_;
  CertificateOptions options_;
  std::unique_ptr<const CompositionCheck> composition_;
  std::unique_ptr<NewFile> file_;
  std::size_t action_count_ = 0;
  std::size_t transition_count_ = 0;
  std::vector<int> images_;
};

}  // namespace symfold

#endif  // SYMFOLD_HOST_SYMMETRY_CERTIFICATE_H
