#include "tests/oracles/literal_labeller.h"

#include <cstring>
#include <numeric>

namespace symfold {
namespace {

std::vector<int> images_of(const Permutation& permutation) {
  return {permutation.GetP(), permutation.GetP() + permutation.GetN()};
}

std::vector<int> identity(std::size_t n) {
  std::vector<int> images(n);
  std::iota(images.begin(), images.end(), 0);
  return images;
}

bool is_greater(const std::string& a, const std::string& b) {
  return std::memcmp(a.data(), b.data(), a.size()) > 0;
}

// Where the sizes differ, later moves overwrite what earlier ones wrote, and what none writes stays in `out`.
void move_into(std::string& out, const std::vector<int>& sizes, const std::vector<int>& permutation,
               const std::string& state) {
  std::vector<std::size_t> offsets(sizes.size() + 1, 0);
  for (std::size_t c = 0; c < sizes.size(); ++c) {
    offsets[c + 1] = offsets[c] + static_cast<std::size_t>(sizes[c]);
  }
  for (std::size_t c = 0; c < sizes.size(); ++c) {
    const auto size = static_cast<std::size_t>(sizes[c]);
    out.replace(offsets[static_cast<std::size_t>(permutation[c])], size, state.substr(offsets[c], size));
  }
}

}  // namespace

std::string moved(const std::vector<int>& sizes, const std::vector<int>& permutation,
                  const std::string& state) {
  std::string result = state;
  move_into(result, sizes, permutation, state);
  return result;
}

LiteralLabel literal_label(const LabelTables& tables, const std::string& state) {
  const std::size_t n = tables.sizes.size();
  std::string current = state;
  std::string best = state;
  std::string buffer(state.size(), '\0');
  std::vector<int> composed = identity(n);
  std::vector<int> witness = identity(n);
  for (const auto& [base, records] : tables.records) {
    std::vector<int> chosen_last = identity(n);
    std::vector<int> chosen_all = identity(n);
    for (const ValPerms& orbit_point : records) {
      std::string candidate = current;
      std::vector<int> last = identity(n);
      std::vector<int> all = identity(n);
      for (const ValPerms& record : records) {
        if (record.Value != orbit_point.Value) continue;
        for (const Permutation& permutation : record.Perms) {
          last = images_of(permutation);
          move_into(buffer, tables.sizes, last, candidate);
          candidate = buffer;
          for (int& image : all) image = last[static_cast<std::size_t>(image)];
        }
      }
      if (!is_greater(candidate, best)) continue;
      best = candidate;
      chosen_last = last;
      chosen_all = all;
    }
    current = best;
    std::vector<int> next(n);
    for (std::size_t y = 0; y < n; ++y) next[y] = composed[static_cast<std::size_t>(chosen_last[y])];
    composed = next;
    for (int& image : witness) image = chosen_all[static_cast<std::size_t>(image)];
  }
  return {current, {composed.begin(), composed.end()}, {witness.begin(), witness.end()}};
}

}  // namespace symfold
