#include "host/chain/explorer.h"

#include <algorithm>

namespace symfold {
namespace {

constexpr std::size_t kSuccessorsBetweenChecks = 64;
constexpr double kProgressInterval = 0.1;  // seconds
constexpr std::size_t kEntryBytes = sizeof(StateId) + sizeof(double);

// A capacity with room for `count` more elements: the present one, or at least half as much again.
template <class Element>
std::size_t grown_capacity(const std::vector<Element>& elements, std::size_t count) {
  if (elements.size() + count <= elements.capacity()) return elements.capacity();
  return std::max(elements.size() + count, elements.capacity() + elements.capacity() / 2);
}

// A packed state is often a single word, for which a loop is faster than a call of memcmp.
bool differ(const std::vector<std::uint64_t>& a, const std::uint64_t* b) {
  for (const std::uint64_t word : a) {
    if (word != *b++) return true;
  }
  return false;
}

}  // namespace

Explorer::Explorer(const ComposedModel& model, const std::vector<std::string>& order, Labeller* labeller,
                   bool keeps_chain)
    : layout_(model, order),
      labeller_(labeller),
      keeps_matrix_(keeps_chain),
      local_states_(model, layout_),
      system_(model, layout_, local_states_),
      observables_(model, layout_, local_states_),
      packing_(layout_.variables()),
      store_(packing_),
      words_(packing_.word_count()),
      values_(layout_.slot_count()),
      local_(model.submodels.size()),
      image_(layout_.slot_count()) {
  figures_.observable_counts.resize(observables_.observable_names().size());
  figures_.state_bytes = packing_.byte_count();
}

Ending Explorer::run(const ExplorationLimits& limits, const Exploration::Progress& progress) {
  limits_ = limits;
  store_.set_limits(limits.states, limits.bytes - std::min(limits.bytes, matrix_memory()));
  start_ = std::chrono::steady_clock::now();
  insert_initial_state();
  for (StateId id = 0; ending_ == Ending::kUnderWay && id < store_.size(); ++id) {
    expand(id);
    if (figures_.successors >= next_check_) check_in(progress);
  }
  if (ending_ == Ending::kUnderWay) stop(Ending::kComplete);
  update_figures();
  progress(figures_);
  return ending_;
}

void Explorer::insert_initial_state() {
  values_ = layout_.initial_state();
  if (labeller_ != nullptr) labeller_->find(values_.data(), values_.data());
  packing_.pack(values_.data(), new_successor_words());
  successors_.push_back({0, store_.hash(successor_words_.data()), false});
  insert_successors();
}

void Explorer::load(StateId id) {
  store_.read(id, words_.data());
  packing_.unpack(words_.data(), values_.data());
  local_states_.locate(values_.data(), local_.data());
}

void Explorer::expand(StateId id) {
  load(id);
  successors_.clear();
  successor_words_.clear();
  system_.for_each_action(values_.data(), local_.data(),
                          [this](double rate, std::span<const Write> writes, const std::uint32_t* slots) {
                            add_successor(rate, writes, slots);
                          });
  if (!insert_successors() || (keeps_matrix_ && !make_room())) return;
  count_loops(id);
  merge_row();
  if (keeps_matrix_) append_row();
  count(id);
}

std::uint64_t* Explorer::new_successor_words() {
  successor_words_.resize(successor_words_.size() + packing_.word_count());
  return successor_words_.data() + successor_words_.size() - packing_.word_count();
}

void Explorer::add_successor(double rate, std::span<const Write> writes, const std::uint32_t* slots) {
  std::uint64_t* const words = new_successor_words();
  std::copy(words_.begin(), words_.end(), words);
  for (const Write& write : writes) packing_.set(words, slots[write.variable], write.value);
  const bool is_changed = differ(words_, words);
  if (labeller_ != nullptr && is_changed) {
    std::copy(values_.begin(), values_.end(), image_.begin());
    for (const Write& write : writes) image_[slots[write.variable]] = write.value;
    labeller_->find(image_.data(), image_.data());
    packing_.pack(image_.data(), words);
  }
  const std::uint64_t hash = store_.hash(words);
  store_.prefetch(hash);
  successors_.push_back({rate, hash, is_changed});
}

// Leaves in row_ an entry for each successor. Returns false if a limit is reached.
bool Explorer::insert_successors() {
  row_.clear();
  for (const Successor& successor : successors_) store_.prefetch_state(successor.hash);
  for (std::size_t i = 0; i < successors_.size(); ++i) {
    const auto [id, outcome] =
        store_.insert(successor_words_.data() + i * packing_.word_count(), successors_[i].hash);
    if (outcome == StateStore::Outcome::kTooManyStates) return stop(Ending::kStateLimit);
    if (outcome == StateStore::Outcome::kOutOfMemory) return stop(Ending::kMemoryLimit);
    row_.push_back({id, static_cast<std::uint32_t>(i), successors_[i].rate});
  }
  return true;
}

void Explorer::count_loops(StateId source) {
  const auto leads_back = [&](const Entry& entry) { return entry.target == source; };
  const auto is_folded = [&](const Entry& entry) {
    return leads_back(entry) && successors_[entry.position].is_changed;
  };
  if (std::any_of(row_.begin(), row_.end(), leads_back)) ++figures_.self_loops;
  if (std::any_of(row_.begin(), row_.end(), is_folded)) ++figures_.folded_self_loops;
}

// Sums the rates to one target in the order of the actions, so that the sum is the same in every run.
void Explorer::merge_row() {
  std::sort(row_.begin(), row_.end(), [](const Entry& a, const Entry& b) {
    return a.target != b.target ? a.target < b.target : a.position < b.position;
  });
  std::size_t end = 0;
  for (const Entry& entry : row_) {
    if (end > 0 && row_[end - 1].target == entry.target) {
      row_[end - 1].rate += entry.rate;
    } else {
      row_[end++] = entry;
    }
  }
  row_.resize(end);
}

std::size_t Explorer::matrix_memory() const {
  return matrix_.row_starts.capacity() * sizeof matrix_.row_starts[0] +
         matrix_.targets.capacity() * kEntryBytes;
}

// Makes room in the matrix for the row. Returns false if the limit of memory is reached.
bool Explorer::make_room() {
  const std::size_t entries = grown_capacity(matrix_.targets, row_.size());
  const std::size_t rows = grown_capacity(matrix_.row_starts, 1);
  const std::size_t added = (entries > matrix_.targets.capacity() ? entries * kEntryBytes : 0) +
                            (rows > matrix_.row_starts.capacity() ? rows * sizeof matrix_.row_starts[0] : 0);
  if (added == 0) return true;
  if (store_.memory() + matrix_memory() + added > limits_.bytes) return stop(Ending::kMemoryLimit);
  matrix_.targets.reserve(entries);
  matrix_.rates.reserve(entries);
  matrix_.row_starts.reserve(rows);
  store_.set_limits(limits_.states, limits_.bytes - matrix_memory());
  return true;
}

void Explorer::append_row() {
  for (const Entry& entry : row_) {
    matrix_.targets.push_back(entry.target);
    matrix_.rates.push_back(entry.rate);
  }
  matrix_.row_starts.push_back(matrix_.targets.size());
}

void Explorer::count(StateId source) {
  figures_.expanded = std::size_t{source} + 1;
  figures_.successors += successors_.size();
  figures_.transitions += std::max<std::size_t>(row_.size(), 1);
  if (row_.empty()) ++figures_.deadlocks;
  for (std::size_t i = 0; i < figures_.observable_counts.size(); ++i) {
    if (observables_.holds(i, values_.data(), local_.data())) ++figures_.observable_counts[i];
  }
  if (figures_.expanded == level_end_ && store_.size() > level_end_) {
    ++figures_.depth;
    level_end_ = store_.size();
  }
}

void Explorer::update_figures() {
  figures_.states = store_.size();
  figures_.memory = store_.memory() + matrix_memory();
  figures_.seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - start_).count();
}

void Explorer::check_in(const Exploration::Progress& progress) {
  next_check_ = figures_.successors + kSuccessorsBetweenChecks;
  update_figures();
  if (figures_.seconds >= limits_.seconds) {
    stop(Ending::kTimeLimit);
  } else if (figures_.seconds >= next_progress_) {
    next_progress_ = figures_.seconds + kProgressInterval;
    if (!progress(figures_)) stop(Ending::kInterrupted);
  }
}

MarkovChain Explorer::take_chain() {
  MarkovChain chain;
  for (const std::string& name : observables_.observable_names()) {
    chain.observables.push_back({name, std::vector<bool>(store_.size())});
  }
  for (const std::string& name : observables_.reward_names()) {
    chain.rewards.push_back({name, std::vector<double>(store_.size())});
  }
  for (StateId id = 0; id < store_.size(); ++id) {
    load(id);
    for (std::size_t i = 0; i < chain.observables.size(); ++i) {
      chain.observables[i].holds[id] = observables_.holds(i, values_.data(), local_.data());
    }
    for (std::size_t i = 0; i < chain.rewards.size(); ++i) {
      chain.rewards[i].values[id] = observables_.reward(i, values_.data(), local_.data());
    }
  }
  chain.matrix = std::move(matrix_);
  chain.variables = layout_.variables();
  chain.read_values = [this](StateId id, std::span<std::int16_t> values) {
    store_.read(id, words_.data());
    packing_.unpack(words_.data(), values.data());
  };
  return chain;
}

}  // namespace symfold
