#include "host/chain/explorer.h"

#include <algorithm>
#include <new>

#include "host/symmetry/symmetry_error.h"

namespace symfold {
namespace {

constexpr std::size_t kSuccessorsBetweenChecks = 64;
constexpr double kProgressInterval = 0.1;  // seconds
constexpr std::size_t kEntryBytes = sizeof(StateId) + sizeof(double);
constexpr std::size_t kBatchBytes = std::size_t{1} << 16;  // of packed successors
constexpr std::size_t kFirstRow = 64;                      // entries

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
      batch_words_(packing_.word_count() *
                   std::max<std::size_t>(kBatchBytes / (8 * packing_.word_count()), 1)),
      image_(layout_.slot_count()),
      witness_(model.cell_count()) {
  row_.reserve(kFirstRow);
  figures_.observable_counts.resize(observables_.observable_names().size());
  figures_.state_bytes = packing_.byte_count();
}

Ending Explorer::run(const ExplorationLimits& limits, const Exploration::Progress& progress) {
  limits_ = limits;
  progress_ = &progress;
  side_memory_at_start_ = side_memory();
  recount_memory();
  start_ = std::chrono::steady_clock::now();
  try {
    explore();
  } catch (const std::bad_alloc&) {
    stop(Ending::kMemoryLimit);
  }
  if (ending_ == Ending::kUnderWay) stop(Ending::kComplete);
  update_figures();
  progress(figures_);
  return ending_;
}

void Explorer::explore() {
  insert_initial_state();
  for (StateId id = 0; ending_ == Ending::kUnderWay && id < store_.size(); ++id) {
    expand(id);
    if (figures_.successors >= next_check_) check_in();
  }
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
  source_ = id;
  successors_.clear();
  successor_words_.clear();
  row_.clear();
  successor_count_ = 0;
  has_self_loop_ = has_folded_self_loop_ = false;
  system_.for_each_action(values_.data(), local_.data(),
                          [this](double rate, std::span<const Write> writes, const std::uint32_t* slots) {
                            add_successor(rate, writes, slots);
                          });
  if (side_memory() != side_memory_at_start_ + counted_side_memory_) recount_memory();
  if (!insert_successors() || (keeps_matrix_ && !make_room())) return;
  merge_row();
  if (keeps_matrix_) append_row();
  count();
}

std::uint64_t* Explorer::new_successor_words() {
  successor_words_.resize(successor_words_.size() + packing_.word_count());
  return successor_words_.data() + successor_words_.size() - packing_.word_count();
}

void Explorer::add_successor(double rate, std::span<const Write> writes, const std::uint32_t* slots) {
  if (successor_words_.size() == batch_words_ && !insert_full_batch()) [[unlikely]]
    return;
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

// An expansion that has ended keeps its full batch: what follows in it is not looked at any more. A single
// expansion can take long, so that time and Ctrl-C are looked at in between.
bool Explorer::insert_full_batch() {
  if (ending_ != Ending::kUnderWay || !insert_successors()) return false;
  check_in();
  if (ending_ != Ending::kUnderWay) return false;
  successors_.clear();
  successor_words_.clear();
  return true;
}

// Adds an entry for each successor to row_. Returns false if a limit is reached.
bool Explorer::insert_successors() {
  if (ending_ != Ending::kUnderWay) return false;
  for (const Successor& successor : successors_) store_.prefetch_state(successor.hash);
  for (std::size_t i = 0; i < successors_.size(); ++i) {
    const auto [id, outcome] =
        store_.insert(successor_words_.data() + i * packing_.word_count(), successors_[i].hash);
    if (outcome == StateStore::Outcome::kTooManyStates) return stop(Ending::kStateLimit);
    if (outcome == StateStore::Outcome::kOutOfMemory) return stop(Ending::kMemoryLimit);
    if (row_.size() == row_.capacity() && !grow_row()) [[unlikely]]
      return false;
    row_.push_back({id, successor_count_ + static_cast<std::uint32_t>(i), successors_[i].rate});
    if (id == source_) [[unlikely]] {
      has_self_loop_ = true;
      has_folded_self_loop_ |= successors_[i].is_changed;
    }
  }
  successor_count_ += static_cast<std::uint32_t>(successors_.size());
  return true;
}

// A row that is merged before it is complete comes out the same: the rates to a target that are there already
// are summed first, in their order, and the sum keeps their place before those that follow.
bool Explorer::grow_row() {
  merge_row();
  if (row_.size() <= row_.capacity() / 2) return true;
  if (!has_room_for(2 * row_.capacity() * sizeof(Entry))) return stop(Ending::kMemoryLimit);
  row_.reserve(2 * row_.capacity());
  recount_memory();
  return true;
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

// What grows besides the store and the matrix.
std::size_t Explorer::side_memory() const {
  return row_.capacity() * sizeof(Entry) + successors_.capacity() * sizeof(Successor) +
         successor_words_.capacity() * sizeof successor_words_[0] + system_.memory();
}

// Leaves to the store what the others do not take.
void Explorer::recount_memory() {
  counted_side_memory_ = side_memory() - side_memory_at_start_;
  const std::size_t others = matrix_memory() + counted_side_memory_;
  store_.set_limits(limits_.states, limits_.bytes - std::min(limits_.bytes, others));
}

bool Explorer::has_room_for(std::size_t bytes) const {
  return store_.memory() + matrix_memory() + counted_side_memory_ + bytes <= limits_.bytes;
}

// Makes room in the matrix for the row. Returns false if the limit of memory is reached.
bool Explorer::make_room() {
  const std::size_t entries = grown_capacity(matrix_.targets, row_.size());
  const std::size_t rows = grown_capacity(matrix_.row_starts, 1);
  const std::size_t added = (entries > matrix_.targets.capacity() ? entries * kEntryBytes : 0) +
                            (rows > matrix_.row_starts.capacity() ? rows * sizeof matrix_.row_starts[0] : 0);
  if (added == 0) return true;
  if (!has_room_for(added)) return stop(Ending::kMemoryLimit);
  matrix_.targets.reserve(entries);
  matrix_.rates.reserve(entries);
  matrix_.row_starts.reserve(rows);
  recount_memory();
  return true;
}

void Explorer::append_row() {
  for (const Entry& entry : row_) {
    matrix_.targets.push_back(entry.target);
    matrix_.rates.push_back(entry.rate);
  }
  matrix_.row_starts.push_back(matrix_.targets.size());
}

void Explorer::count() {
  figures_.expanded = std::size_t{source_} + 1;
  figures_.successors += successor_count_;
  if (has_self_loop_) ++figures_.self_loops;
  if (has_folded_self_loop_) ++figures_.folded_self_loops;
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

void Explorer::check_in() {
  next_check_ = figures_.successors + kSuccessorsBetweenChecks;
  update_figures();
  if (figures_.seconds >= limits_.seconds) {
    stop(Ending::kTimeLimit);
  } else if (figures_.seconds >= next_progress_) {
    next_progress_ = figures_.seconds + kProgressInterval;
    if (!(*progress_)(figures_)) stop(Ending::kInterrupted);
  }
}

// Every successor of an expanded state has a number, so the store is only asked from here on.
bool Explorer::certify(Certificate& certificate, const std::function<bool()>& goes_on) {
  store_.set_limits(0, 0);
  certificate.begin(figures_.successors, label_again(layout_.initial_state()));
  for (StateId id = 0; id < figures_.expanded; ++id) {
    if (!goes_on()) return false;
    load(id);
    if (certificate.is_sampled(values_)) certify_state(certificate);
  }
  certificate.commit();
  return true;
}

void Explorer::certify_state(Certificate& certificate) {
  const std::vector<TransitionSystem::EnabledAction> actions = system_.enabled_actions(values_.data());
  std::vector<std::int16_t> reached;
  std::size_t position = 0;
  system_.for_each_action(
      values_.data(), local_.data(), [&](double, std::span<const Write> writes, const std::uint32_t* slots) {
        const TransitionSystem::EnabledAction& action = actions.at(position++);
        reached = values_;
        for (const Write& write : writes) reached[slots[write.variable]] = write.value;
        if (reached == values_) return;
        certificate.add(values_, action.submodel, action.declaration->name.text, label_again(reached));
      });
}

LabelledState Explorer::label_again(std::span<const std::int16_t> state) {
  labeller_->find(state.data(), image_.data());
  labeller_->find_witness(witness_.data());
  packing_.pack(image_.data(), words_.data());
  if (store_.insert(words_.data(), store_.hash(words_.data())).outcome != StateStore::Outcome::kKnown) {
    throw UnsoundSymmetryError("error: a label is not among the states of the exploration: " +
                               state_text(layout_, image_.data()));
  }
  return {state, image_, witness_};
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
