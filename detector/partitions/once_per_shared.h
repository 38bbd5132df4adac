#ifndef SYMFOLD_DETECTOR_PARTITIONS_ONCE_PER_SHARED_H
#define SYMFOLD_DETECTOR_PARTITIONS_ONCE_PER_SHARED_H

#include <optional>
#include <unordered_map>
#include <utility>

#include "components/permutation.h"

namespace symfold::detail {

// Rewrites permutations, once for all copies that share their images: a table holds each generator on many
// paths. The rewritten ones share theirs, too.
class OncePerShared {
 public:
  // Replaces the permutation by rewrite(permutation), or by what that returned for an equal one. Returns
  // false, and leaves the permutation as it is, if rewrite returns nothing.
  template <class Rewrite>
  bool operator()(Permutation& permutation, const Rewrite& rewrite) {
    const void* const key = permutation.SharedImages();
    const auto found = results_.find(key);
    if (found != results_.end() && found->second.from.GetN() == permutation.GetN()) {
      permutation = found->second.to;
      return true;
    }
    std::optional<Permutation> to = rewrite(std::as_const(permutation));
    if (!to.has_value()) return false;
    if (key != nullptr) results_.insert_or_assign(key, Result{permutation, *to});
    permutation = *std::move(to);
    return true;
  }

 private:
  struct Result {
    Permutation from;  // keeps the address from being used again
    Permutation to;
  };

  std::unordered_map<const void*, Result> results_;
};

}  // namespace symfold::detail

#endif  // SYMFOLD_DETECTOR_PARTITIONS_ONCE_PER_SHARED_H
