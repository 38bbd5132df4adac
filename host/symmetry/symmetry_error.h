// What can go wrong with the symmetries of a model that is itself in order.

#ifndef SYMFOLD_HOST_SYMMETRY_SYMMETRY_ERROR_H
#define SYMFOLD_HOST_SYMMETRY_SYMMETRY_ERROR_H

#include <stdexcept>
#include <string>
#include <utility>

namespace symfold {

// The symmetry group could not be listed, its tables are too large, or no way to exact labels fits in memory.
class GroupLimitError : public std::runtime_error {
 public:
  explicit GroupLimitError(const std::string& message, std::string refusals = "")
      : std::runtime_error(message), refusals_(std::move(refusals)) {}

  // What the detector has refused, a line each.
  const std::string& refusals() const { return refusals_; }

 private:
  std::string refusals_;
};

// The symmetries found cannot be trusted for folding.
class UnsoundSymmetryError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

}  // namespace symfold

#endif  // SYMFOLD_HOST_SYMMETRY_SYMMETRY_ERROR_H
