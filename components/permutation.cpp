#include "components/permutation.h"

#include <memory>
#include <new>
#include <numeric>
#include <ostream>
#include <string>
#include <utility>

#include "engines/base/images.h"

namespace symfold {

namespace {

std::size_t index(int i) { return static_cast<std::size_t>(i); }

// Writes the cycles that start in `starts`, a range of ascending points. An image that is no point ends its
// cycle.
class CycleText {
 public:
  explicit CycleText(const Permutation& permutation) : permutation_(permutation) {}

  // Takes the points in ascending order. was_written(point) tells whether a point is in the text, and notes
  // that it is.
  template <class WasWritten>
  void add_cycle(int start, const WasWritten& was_written) {
    if (was_written(start)) return;
    char separator = '(';
    int point = start;
    do {
      text_ += separator;
      text_ += std::to_string(point);
      separator = ' ';
      point = permutation_[point];
    } while (point >= 0 && point < permutation_.n && !was_written(point));
    text_ += ')';
  }

  const std::string& text() const { return text_; }

 private:
  const Permutation& permutation_;
  std::string text_;
};

}  // namespace

Permutation::Shared* Permutation::share_moves(std::span<const PointMove> moves) {
  if (moves.empty()) return nullptr;
  void* const room = ::operator new(sizeof(Shared) + moves.size_bytes());
  auto* const shared = new (room) Shared{1, static_cast<int>(moves.size())};
  std::uninitialized_copy(moves.begin(), moves.end(), reinterpret_cast<PointMove*>(shared + 1));
  return shared;
}

// Stores the moves if they take no more room.
Permutation::Shared* Permutation::share(std::span<const int> images) {
  std::size_t move_count = 0;
  for (std::size_t i = 0; i < images.size(); ++i) move_count += images[i] == static_cast<int>(i) ? 0 : 1;
  if (move_count == 0) return nullptr;
  const bool stores_moves = move_count <= images.size() / 2;
  const std::size_t bytes = stores_moves ? move_count * sizeof(PointMove) : images.size_bytes();
  void* const room = ::operator new(sizeof(Shared) + bytes);
  auto* const shared = new (room) Shared{1, stores_moves ? static_cast<int>(move_count) : -1};
  if (!stores_moves) {
    std::uninitialized_copy(images.begin(), images.end(), reinterpret_cast<int*>(shared + 1));
    return shared;
  }
  auto* next = reinterpret_cast<PointMove*>(shared + 1);
  for (std::size_t i = 0; i < images.size(); ++i) {
    const int point = static_cast<int>(i);
    if (images[i] != point) new (next++) PointMove{point, images[i]};
  }
  return shared;
}

Permutation::Permutation(int point_count) : n(std::max(point_count, 0)), size_(n) {}

Permutation::Permutation(int point_count, const int* p)
    : n(std::max(point_count, 0)), size_(n), shared_(share({p, index(n)})) {}

Permutation::Permutation(int point_count, std::span<const PointMove> moves)
    : n(std::max(point_count, 0)), size_(n) {
  if (moves.size() <= index(n) / 2) {
    shared_ = share_moves(moves);
    return;
  }
  std::vector<int> images(index(n));
  std::iota(images.begin(), images.end(), 0);
  for (const auto& [point, image] : moves) images[index(point)] = image;
  shared_ = share(images);
}

Permutation::Permutation(const Permutation& other) : n(other.n), size_(other.size_), shared_(other.shared_) {
  if (shared_ != nullptr) {
    shared_->use_count.fetch_add(1, std::memory_order_relaxed);
  } else if (const int* const images = other.StoredImages()) {
    shared_ = share({images, index(size_)});
  }
}

Permutation::Permutation(Permutation&& other) noexcept
    : n(std::exchange(other.n, 0)),
      size_(std::exchange(other.size_, 0)),
      shared_(std::exchange(other.shared_, nullptr)),
      images_(other.images_.exchange(nullptr, std::memory_order_relaxed)) {}

Permutation& Permutation::operator=(Permutation other) noexcept {
  n = other.n;
  std::swap(size_, other.size_);
  std::swap(shared_, other.shared_);
  images_ = other.images_.exchange(images_, std::memory_order_relaxed);
  return *this;
}

Permutation::~Permutation() {
  release();
  delete[] images_.load(std::memory_order_relaxed);
}

// The last one to let go of what is shared must see all that the others have read of it as done.
void Permutation::release() noexcept {
  if (shared_ != nullptr && shared_->use_count.fetch_sub(1, std::memory_order_acq_rel) == 1) {
    ::operator delete(shared_);
  }
  shared_ = nullptr;
}

// Of several readers that make the images at a time, all but one throw theirs away.
int* Permutation::make_images() const {
  int* made = images_.load(std::memory_order_acquire);
  if (made != nullptr) return made;
  auto images = std::make_unique<int[]>(index(size_));
  std::iota(images.get(), images.get() + size_, 0);
  if (const int* const stored = StoredImages()) {
    std::copy_n(stored, size_, images.get());
  } else {
    for (const auto& [point, image] : stored_moves()) images[index(point)] = image;
  }
  if (!images_.compare_exchange_strong(made, images.get(), std::memory_order_acq_rel)) return made;
  return images.release();
}

const int* Permutation::GetP() const { return make_images(); }

int* Permutation::GetP() {
  int* const images = make_images();
  release();
  return images;
}

int Permutation::GetIth(int i) const {
  if (i < 0 || i >= n || i >= size_) return -1;
  if (const int* const images = StoredImages()) return images[i];
  const std::span<const PointMove> moves = stored_moves();
  const auto move = std::ranges::lower_bound(moves, i, {}, &PointMove::point);
  return move != moves.end() && move->point == i ? move->image : i;
}

std::size_t Permutation::CountMoves() const {
  std::size_t count = 0;
  VisitMoves([&count](int, int) { ++count; });
  return count;
}

// Moves are a permutation if their images are their points in another order.
bool Permutation::IsPermutation() const {
  if (n < 0 || n > size_) return false;
  if (const int* const images = StoredImages()) return detail::is_permutation({images, index(n)});
  std::vector<int> points, images;
  VisitMoves([&](int point, int image) {
    points.push_back(point);
    images.push_back(image);
  });
  std::sort(images.begin(), images.end());
  return points == images;
}

bool Permutation::IsIdentity() const {
  if (n > size_) return false;
  if (const int* const images = StoredImages()) {
    int i = 0;
    while (i < n && images[i] == i) ++i;
    return i >= n;
  }
  return stored_moves().empty() || stored_moves().front().point >= n;
}

// The whole text is put together before it is written, because tables of thousands of permutations are
// printed and a stream's formatted output costs more than the digits. A stream that takes nothing gets no
// text (a host may have given it no buffer). Cycles of a permutation stay among the points that it moves; of
// other maps they may reach any point.
std::ostream& operator<<(std::ostream& out, const Permutation& permutation) {
  if (!out) return out;
  CycleText cycles(permutation);
  if (permutation.IsPermutation()) {
    std::vector<int> points;
    permutation.VisitMoves([&points](int point, int) { points.push_back(point); });
    std::vector<char> is_written(points.size());
    for (const int start : points) {
      cycles.add_cycle(start, [&](int point) {
        const auto place = std::lower_bound(points.begin(), points.end(), point) - points.begin();
        return std::exchange(is_written[static_cast<std::size_t>(place)], 1) != 0;
      });
    }
  } else {
    std::vector<char> is_written(index(std::max(permutation.n, 0)));
    for (int start = 0; start < permutation.n; ++start) {
      if (permutation[start] == start) continue;
      cycles.add_cycle(start, [&](int point) { return std::exchange(is_written[index(point)], 1) != 0; });
    }
  }
  return out << (cycles.text().empty() ? "()" : cycles.text());
}

std::ostream& operator<<(std::ostream& out, const ValPerms& record) {
  out << "Value: " << std::to_string(record.Value);
  for (const Permutation& permutation : record.Perms) out << "  " << permutation;
  return out;
}

}  // namespace symfold
