#include "host/composed_model.h"

#include <algorithm>
#include <ostream>

#include "host/model_error.h"

namespace symfold {

namespace {
constexpr std::size_t kLiteralsShown = 6;
}  // namespace

std::string to_string(const ValueSet& set) {
  if (set.kind == ValueSet::Kind::kBool) return "bool";
  if (set.kind == ValueSet::Kind::kRange)
    return "[" + std::to_string(set.low) + ".." + std::to_string(set.high) + "]";
  std::string text;
  for (std::size_t i = 0; i < std::min(set.literals->size(), kLiteralsShown); ++i) {
    text += (i == 0 ? "{" : ", ") + (*set.literals)[i];
  }
  return text + (set.literals->size() > kLiteralsShown ? ", ...}" : "}");
}

std::string value_text(const ValueSet& set, int value) {
  if (set.kind == ValueSet::Kind::kBool) return value != 0 ? "true" : "false";
  if (set.kind == ValueSet::Kind::kRange) return std::to_string(value);
  return (*set.literals)[static_cast<std::size_t>(value)];
}

void require_countable_partitions(const ComposedModel& model) {
  if (model.partition_count() <= kMostPartitions) return;
  throw ModelError(model.description->source->name(),
                   "expected at most " + std::to_string(kMostPartitions) +
                       " submodels and joins together, got " + std::to_string(model.submodels.size()) +
                       " submodels and " + std::to_string(model.joins.size()) + " joins");
}

void write_types(const ComposedModel& model, std::ostream& out) {
  out << model.submodels.size() << '\n';
  for (const Submodel& submodel : model.submodels) {
    out << submodel.name << ' ' << model.instance_of(submodel).token << '\n';
  }
}

}  // namespace symfold
