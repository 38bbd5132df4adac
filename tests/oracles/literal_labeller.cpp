#include "tests/oracles/literal_labeller.h"

#include <algorithm>
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

LiteralLabel literal_label(const LabelTables& tables, const std::string& state, bool composes,
                           LiteralBuffers& buffers) {
  const std::size_t n = tables.sizes.size();
  std::string current = state;
  std::string best = state;
  std::vector<short> no_move(n);
  std::iota(no_move.begin(), no_move.end(), short{0});
  buffers.best_perm = no_move;
  std::vector<int> witness = identity(n);
  for (const auto& [base, records] : tables.records) {
    for (std::size_t j = 0; j < records.size(); ++j) buffers.orbit[j] = records[j].Value;
    buffers.temp_best_perm = no_move;
    for (std::size_t j = 0; j < records.size(); ++j) buffers.orbit_copy[j] = buffers.orbit[j];
    std::vector<int> chosen_all = identity(n);
    for (const ValPerms& orbit_point : records) {
      buffers.scratch_a = current;
      buffers.new_perm = no_move;
      std::vector<int> all = identity(n);
      for (const ValPerms& record : records) {
        if (record.Value != orbit_point.Value) continue;
        for (const Permutation& permutation : record.Perms) {
          const std::vector<int> images = images_of(permutation);
          move_into(buffers.scratch_b, tables.sizes, images, buffers.scratch_a);
          buffers.scratch_a = buffers.scratch_b;
          for (std::size_t c = 0; c < n; ++c) {
            buffers.new_perm[static_cast<std::size_t>(images[c])] = static_cast<short>(c);
          }
          for (int& image : all) image = images[static_cast<std::size_t>(image)];
        }
      }
      buffers.new_state = buffers.scratch_a;
      if (!is_greater(buffers.new_state, best)) continue;
      best = buffers.new_state;
      if (composes) buffers.temp_best_perm = buffers.new_perm;
      chosen_all = all;
    }
    current = best;
    for (std::size_t c = 0; c < n && composes; ++c) {
      buffers.perm_scratch[static_cast<std::size_t>(buffers.temp_best_perm[c])] = buffers.best_perm[c];
    }
    if (composes) buffers.best_perm = buffers.perm_scratch;
    for (int& image : witness) image = chosen_all[static_cast<std::size_t>(image)];
  }
  return {current, buffers.best_perm, {witness.begin(), witness.end()}};
}

LiteralLabel literal_label(const LabelTables& tables, const std::string& state) {
  std::size_t longest = 0;
  for (const auto& [base, records] : tables.records) longest = std::max(longest, records.size());
  LiteralBuffers buffers;
  buffers.scratch_b.resize(state.size());
  buffers.perm_scratch.resize(tables.sizes.size());
  buffers.orbit.resize(longest);
  buffers.orbit_copy.resize(longest);
  return literal_label(tables, state, true, buffers);
}

}  // namespace symfold
