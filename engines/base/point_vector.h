// A vector indexed by points, vertices or positions, which are ints throughout the engines.

#ifndef SYMFOLD_ENGINES_BASE_POINT_VECTOR_H
#define SYMFOLD_ENGINES_BASE_POINT_VECTOR_H

#include <cassert>
#include <cstddef>
#include <vector>

namespace symfold::detail {

// Works like std::vector, but with int for indices and sizes. Debug builds check every index.
template <typename T>
class PointVector : private std::vector<T> {
  using Base = std::vector<T>;

 public:
  PointVector() = default;
  explicit PointVector(int size, const T& value = T()) : Base(static_cast<std::size_t>(size), value) {}

  using Base::back;
  using Base::begin;
  using Base::clear;
  using Base::emplace_back;
  using Base::empty;
  using Base::end;
  using Base::pop_back;
  using Base::push_back;
  using typename Base::value_type;

  int size() const { return static_cast<int>(Base::size()); }
  T& operator[](int i) {
    assert(i >= 0 && i < size());
    return Base::operator[](static_cast<std::size_t>(i));
  }
  const T& operator[](int i) const {
    assert(i >= 0 && i < size());
    return Base::operator[](static_cast<std::size_t>(i));
  }
  void reserve(int size) { Base::reserve(static_cast<std::size_t>(size)); }
  void assign(int count, const T& value) { Base::assign(static_cast<std::size_t>(count), value); }
};

}  // namespace symfold::detail

#endif  // SYMFOLD_ENGINES_BASE_POINT_VECTOR_H
