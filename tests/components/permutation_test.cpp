// Permutations against plain vectors of images: however images are stored and shared, nobody can tell.

#include "components/permutation.h"

#include <gtest/gtest.h>

#include <numeric>
#include <random>
#include <sstream>
#include <thread>

#include "engines/base/images.h"

namespace symfold {
namespace {

using Images = std::vector<int>;

// Cycles are walked point by point. An image that is no point, or is written already, ends its cycle.
std::string plain_text(const Images& images) {
  const int n = static_cast<int>(images.size());
  std::vector<bool> is_written(images.size());
  std::string text;
  for (int start = 0; start < n; ++start) {
    if (images[static_cast<std::size_t>(start)] == start) continue;
    std::string cycle;
    for (int i = start; i >= 0 && i < n && !is_written[static_cast<std::size_t>(i)];) {
      is_written[static_cast<std::size_t>(i)] = true;
      cycle += (cycle.empty() ? "(" : " ") + std::to_string(i);
      i = images[static_cast<std::size_t>(i)];
    }
    if (!cycle.empty()) text += cycle + ")";
  }
  return text.empty() ? "()" : text;
}

void expect_images(const Permutation& permutation, const Images& images) {
  const int n = static_cast<int>(images.size());
  ASSERT_EQ(permutation.GetN(), n);
  Images got, from_moves(images.size());
  std::iota(from_moves.begin(), from_moves.end(), 0);
  for (int i = 0; i < n; ++i) got.push_back(permutation[i]);
  int latest = -1;
  permutation.VisitMoves([&](int point, int image) {
    EXPECT_TRUE(point > latest && image != point);
    from_moves[static_cast<std::size_t>(latest = point)] = image;
  });
  EXPECT_EQ(got, images);
  EXPECT_EQ(from_moves, images);
  EXPECT_TRUE(permutation.GetIth(-1) == -1 && permutation.GetIth(n) == -1);
  EXPECT_EQ(permutation.IsPermutation(), detail::is_permutation(images));
  EXPECT_EQ(permutation.IsIdentity(), detail::is_identity(images));
  std::ostringstream text;
  text << permutation;
  EXPECT_EQ(text.str(), plain_text(images));
}

TEST(Permutation, BehavesLikeAVectorOfImages) {
  for (unsigned seed = 0; seed < 3000; ++seed) {
    SCOPED_TRACE(seed);
    std::mt19937 random(seed);
    const auto below = [&random](std::size_t n) { return static_cast<std::size_t>(random() % n); };
    const std::size_t n = below(12);
    Images images(n);
    std::iota(images.begin(), images.end(), 0);
    for (std::size_t k = n == 0 ? 0 : below(n); k > 0; --k) std::swap(images[below(n)], images[below(n)]);
    if (n > 0 && seed % 4 == 0) images[below(n)] = static_cast<int>(below(n + 2)) - 1;
    SparsePermutation moves;
    for (int i = 0; i < static_cast<int>(n); ++i) {
      if (images[static_cast<std::size_t>(i)] != i) moves.push_back({i, images[static_cast<std::size_t>(i)]});
    }
    const Permutation original = seed % 2 == 0 ? Permutation(static_cast<int>(n), images.data())
                                               : Permutation(static_cast<int>(n), moves);
    expect_images(original, images);
    if (seed % 3 == 0) {
      std::thread reader([&] { EXPECT_TRUE(std::equal(images.begin(), images.end(), original.GetP())); });
      EXPECT_TRUE(std::equal(images.begin(), images.end(), original.GetP()));
      reader.join();
    }
    Permutation copy = original;
    Images written = images;
    if (n > 0) {
      const std::size_t i = below(n);
      written[i] = copy.GetP()[i] = static_cast<int>(below(n));
    }
    expect_images(copy, written);
    expect_images(original, images);
    Permutation copy_of_copy(1);
    copy_of_copy = copy;
    if (n > 0) copy.GetP()[0] = -1;
    expect_images(copy_of_copy, written);
    copy_of_copy.n = static_cast<int>(below(n + 1));
    written.resize(static_cast<std::size_t>(copy_of_copy.n));
    expect_images(copy_of_copy, written);
    const Permutation moved = std::move(copy_of_copy);
    expect_images(moved, written);
    expect_images(Permutation(moved), written);
  }
}

}  // namespace
}  // namespace symfold
