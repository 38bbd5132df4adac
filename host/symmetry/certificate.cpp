#include "host/symmetry/certificate.h"

#include <limits>
#include <utility>

#include "detector/symmetry_detection.h"
#include "engines/base/mix.h"
#include "host/model/composed_model.h"
#include "host/new_file.h"
#include "host/symmetry/composition_check.h"
#include "host/symmetry/folding.h"
#include "host/symmetry/symmetry_error.h"
#include "host/symmetry/symmetry_names.h"

namespace symfold {
namespace {

constexpr std::size_t kAll = std::numeric_limits<std::size_t>::max();

const char* kind_of_labels(const Folding& folding, bool has_inexact_labels) {
  if (folding.symmetry() == Symmetry::kFast) return "greedy";
  return has_inexact_labels ? "inexact" : "exact";
}

}  // namespace

Certificate::Certificate(const ComposedModel& model, const Folding& folding, CertificateOptions options)
    : model_(model),
      folding_(folding),
      options_(std::move(options)),
      composition_(std::make_unique<CompositionCheck>(model, folding.order())) {}

Certificate::~Certificate() = default;

void Certificate::begin(std::size_t action_count, const LabelledState& initial) {
  action_count_ = action_count;
  file_ = std::make_unique<NewFile>(options_.file);
  file_->append("symfold certificate 1\nsystem ", model_.name, "\nlabels ",
                kind_of_labels(folding_, options_.has_inexact_labels), "\nsample ");
  if (options_.sample >= action_count) {
    file_->append("all\n");
  } else {
    file_->append(options_.sample, '/', action_count, '\n');
  }
  append_composition();
  append_generators();
  const std::string fault = find_fault(initial);
  if (!fault.empty()) throw UnsoundSymmetryError("error: the initial state is not certified: " + fault);
  file_->append("initial");
  append_label(initial);
}

void Certificate::append_composition() {
  file_->append("submodels ", model_.submodels.size(), '\n');
  for (const Submodel& submodel : model_.submodels) {
    const TypeInstance& instance = model_.instance_of(submodel);
    file_->append("submodel ", submodel.name, ' ', instance.token, ' ', instance.byte_size(), '\n');
  }
  file_->append("joins ", model_.joins.size(), '\n');
  for (const Join& join : model_.joins) {
    file_->append("join ", join.name, ' ', kBytesPerVariable);
    for (const JoinMember& member : join.members) {
      file_->append(' ', model_.submodels[static_cast<std::size_t>(member.submodel)].name, '.',
                    model_.variable_of(member).name);
    }
    file_->append('\n');
  }
  file_->append("order");
  for (const std::string& name : folding_.order()) file_->append(' ', name);
  file_->append('\n');
}

void Certificate::append_generators() {
  const SymmetryDetection& detector = *folding_.detector();
  std::size_t count = 0;
  for (const Permutation& generator : detector.OrigPermutations) count += generator.IsIdentity() ? 0 : 1;
  file_->append("group-order ", options_.group_order, "\ngenerators ", count, '\n');
  for (const Permutation& generator : detector.OrigPermutations) {
    if (generator.IsIdentity()) continue;
    file_->append("generator ", named_cycles(detector, generator, kAll, kAll), '\n');
  }
}

bool Certificate::is_sampled(std::span<const std::int16_t> state) const {
  if (options_.sample >= action_count_) return true;
  std::uint64_t hash = 0;
  for (const std::int16_t value : state) hash = detail::mix(hash ^ static_cast<std::uint16_t>(value));
  constexpr double kRange = 0x1p53;
  const double share = static_cast<double>(options_.sample) / static_cast<double>(action_count_);
  return static_cast<double>(hash >> 11) < share * kRange;
}

void Certificate::add(std::span<const std::int16_t> source, std::size_t submodel, std::string_view action,
                      const LabelledState& reached) {
  const std::string& name = model_.submodels[submodel].name;
  const std::string fault = find_fault(reached);
  if (!fault.empty()) {
    throw UnsoundSymmetryError("error: transition " + std::to_string(transition_count_ + 1) +
                               " of the certificate, action '" + std::string(action) + "' of " + name + ": " +
                               fault);
  }
  file_->append("transition");
  append_state(source);
  file_->append(' ', name, ' ', action);
  append_label(reached);
  ++transition_count_;
}

void Certificate::commit() {
  file_->append("end ", transition_count_, '\n');
  file_->commit();
}

// What is wrong with a label's witness. Leaves the witness in images_.
std::string Certificate::find_fault(const LabelledState& reached) {
  images_.assign(reached.witness.begin(), reached.witness.end());
  const std::string fault = composition_->find_fault(images_);
  if (!fault.empty()) return "the witness " + fault;
  if (!composition_->carries(images_, reached.state.data(), reached.label.data())) {
    return "the witness does not carry the state onto its label";
  }
  return "";
}

void Certificate::append_state(std::span<const std::int16_t> state) {
  constexpr std::string_view kDigits = "0123456789abcdef";
  file_->append(state.empty() ? " -" : " ");
  for (const std::byte byte : std::as_bytes(state)) {
    const auto value = std::to_integer<std::size_t>(byte);
    file_->append(kDigits[value >> 4], kDigits[value & 15]);
  }
}

// The state, its label and the witness, to the end of the line.
void Certificate::append_label(const LabelledState& reached) {
  append_state(reached.state);
  append_state(reached.label);
  for (const short image : reached.witness) file_->append(' ', image);
  file_->append('\n');
}

}  // namespace symfold
