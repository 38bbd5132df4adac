#include "detector/labelling/chosen_moves.h"

#include <algorithm>
#include <map>
#include <utility>

namespace symfold::detail {

ChosenMoves::ChosenMoves(std::vector<std::span<const ValPerms>> records_of_base, std::size_t partition_count)
    : records_of_base_(std::move(records_of_base)), partition_count_(partition_count) {
  for (const std::span<const ValPerms> records : records_of_base_) {
    first_record_of_base_.push_back(ends_.size() - 1);
    std::map<int, std::size_t> permutations_of_value;
    for (const ValPerms& record : records) permutations_of_value[record.Value] += record.Perms.size();
    for (const ValPerms& record : records) {
      if (permutations_of_value[record.Value] == 1 && record.Perms.size() == 1) add(record.Perms[0]);
      ends_.push_back(moves_.size());
    }
  }
  moves_.shrink_to_fit();
}

// Adds no moves for a permutation that moves many partitions.
void ChosenMoves::add(const Permutation& permutation) {
  if (4 * permutation.CountMoves() > partition_count_) return;
  permutation.VisitMoves([this](int c, int image) {
    moves_.push_back({static_cast<short>(c), static_cast<short>(image)});
  });
}

// Empty if the permutations themselves must be read. A chosen permutation moves something.
std::span<const ChosenMoves::Move> ChosenMoves::moves_of(std::size_t base, int record) const {
  const std::size_t i = first_record_of_base_[base] + static_cast<std::size_t>(record);
  return std::span(moves_).subspan(ends_[i], ends_[i + 1] - ends_[i]);
}

const Permutation& ChosenMoves::last_of(std::size_t base, int record) const {
  const std::span<const ValPerms> records = records_of_base_[base];
  const int value = records[static_cast<std::size_t>(record)].Value;
  const auto last = std::find_if(records.rbegin(), records.rend(), [value](const ValPerms& candidate) {
    return candidate.Value == value && !candidate.Perms.empty();
  });
  return last->Perms.back();
}

void ChosenMoves::compose_last(std::size_t base, int record, short* composed, short* scratch) const {
  const std::span<const Move> moves = moves_of(base, record);
  if (!moves.empty()) {
    for (std::size_t k = 0; k < moves.size(); ++k) scratch[k] = composed[moves[k].image];
    for (std::size_t k = 0; k < moves.size(); ++k) composed[moves[k].point] = scratch[k];
    return;
  }
  const Permutation& last = last_of(base, record);
  if (const int* const images = last.StoredImages()) {
    for (std::size_t c = 0; c < partition_count_; ++c) scratch[c] = composed[images[c]];
    std::copy_n(scratch, partition_count_, composed);
    return;
  }
  last.VisitMoves([&](int c, int image) { scratch[c] = composed[image]; });
  last.VisitMoves([&](int c, int) { composed[c] = scratch[c]; });
}

void ChosenMoves::invert_last(std::size_t base, int record, short* images) const {
  const std::span<const Move> moves = moves_of(base, record);
  for (const Move& move : moves) images[move.image] = move.point;
  if (!moves.empty()) return;
  last_of(base, record).VisitMoves([&](int c, int image) { images[image] = static_cast<short>(c); });
}

// Composes the inverses: (P after w)^-1 sends P[p] to w^-1[p], and so changes only where P moves something.
void ChosenMoves::find_witness(std::span<const int> choices, short* witness, short* inverse,
                               short* scratch) const {
  for (std::size_t c = 0; c < partition_count_; ++c) inverse[c] = static_cast<short>(c);
  for (std::size_t base = 0; base < choices.size(); ++base) {
    if (choices[base] < 0) continue;
    const std::span<const Move> moves = moves_of(base, choices[base]);
    for (std::size_t k = 0; k < moves.size(); ++k) scratch[k] = inverse[moves[k].point];
    for (std::size_t k = 0; k < moves.size(); ++k) inverse[moves[k].image] = scratch[k];
    if (!moves.empty()) continue;
    const std::span<const ValPerms> records = records_of_base_[base];
    const int value = records[static_cast<std::size_t>(choices[base])].Value;
    for (const ValPerms& record : records) {
      if (record.Value != value) continue;
      for (const Permutation& permutation : record.Perms) {
        if (const int* const images = permutation.StoredImages()) {
          for (std::size_t p = 0; p < partition_count_; ++p) scratch[images[p]] = inverse[p];
          std::copy_n(scratch, partition_count_, inverse);
          continue;
        }
        permutation.VisitMoves([&](int p, int image) { scratch[image] = inverse[p]; });
        permutation.VisitMoves([&](int, int image) { inverse[image] = scratch[image]; });
      }
    }
  }
  for (std::size_t y = 0; y < partition_count_; ++y) witness[inverse[y]] = static_cast<short>(y);
}

}  // namespace symfold::detail
