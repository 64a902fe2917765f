// Rows of neighbourhood filters: plain forms against the formulas as written, vector forms against
// plain ones over lengths, misalignments and whole domains.
#include "simd/window_rows.h"

#include <algorithm>
#include <array>
#include <random>
#include <vector>

#include "simd/row_bytes.h"
#include "simd/target_test.h"

namespace qpx::simd {
namespace {

// Weights of a window that add up to 2^15; the outermost take what is left over.
std::vector<int16_t> weightsOf(int32_t radius, uint32_t seed) {
  std::mt19937 random(seed);
  std::vector<int16_t> weights(static_cast<size_t>(radius) + 1);
  int32_t rest = (1 << kWindowWeightBits) / 2;
  for (size_t k = weights.size() - 1; k > 0; --k) {
    const int32_t share = static_cast<int32_t>(random() % static_cast<uint32_t>(rest / 2 + 1));
    weights[k] = static_cast<int16_t>(share);
    rest -= share;
  }
  weights[0] = static_cast<int16_t>(std::min(2 * rest, 32767));
  return weights;
}

class WindowRowsTest : public TargetTest {
 protected:
  const WindowRows& plainWindow() const { return plainForm<WindowRows>(); }
  const WindowRows& vectorWindow() const { return vectorForm<WindowRows>(); }
};
QPX_FOR_EACH_TARGET(WindowRowsTest);

constexpr ptrdiff_t kLengths[] = {0, 1, 2, 3, 7, 15, 16, 17, 31, 32, 33, 63, 64, 65, 127, 200};

TEST_P(WindowRowsTest, WeightedMeanIsCut) {
  const uint8_t low[] = {10}, middle[] = {101}, high[] = {30};
  const uint8_t* rows[] = {low, middle, high};
  const int16_t weights[] = {16384, 8192};
  uint8_t mean = 0;
  plainWindow().weighRows(rows, weights, 1, &mean, 1);
  EXPECT_EQ(mean, 60);  // 50.5 + 2.5 + 7.5 = 60.5
}

TEST_P(WindowRowsTest, WeightedMeansOfEveryRadiusAndLength) {
  for (int32_t radius = 1; radius <= 12; ++radius) {
    for (const ptrdiff_t length : kLengths) {
      const size_t stride = static_cast<size_t>(length) + 1;
      const Bytes samples = randomBytes(stride * static_cast<size_t>(2 * radius + 1), 1);
      std::vector<const uint8_t*> rows;
      for (int32_t k = 0; k <= 2 * radius; ++k) {
        rows.push_back(samples.data() + stride * static_cast<size_t>(k) + (k % 2));
      }
      const std::vector<int16_t> weights = weightsOf(radius, static_cast<uint32_t>(radius));
      Bytes plain(stride + 8, 7), vector(stride + 8, 7);
      plainWindow().weighRows(rows.data(), weights.data(), radius, plain.data(), length);
      vectorWindow().weighRows(rows.data(), weights.data(), radius, vector.data(), length);
      ASSERT_EQ(plain, vector) << "radius " << radius << ", length " << length;
    }
  }
}

TEST_P(WindowRowsTest, WeightedMeanOfWhiteIsWhite) {
  const Bytes white(64, 255);
  for (int32_t radius = 1; radius <= 191; radius += 19) {
    const std::vector<const uint8_t*> rows(static_cast<size_t>(2 * radius + 1), white.data());
    std::vector<int16_t> weights(static_cast<size_t>(radius) + 1, 1);
    weights[0] = static_cast<int16_t>((1 << kWindowWeightBits) - 2 * radius);
    Bytes mean(64);
    vectorWindow().weighRows(rows.data(), weights.data(), radius, mean.data(), 64);
    ASSERT_EQ(mean, white) << "radius " << radius;
  }
}

TEST_P(WindowRowsTest, DistancesOfAllPairs) {
  for (int32_t a = 0; a < 256; ++a) {
    Bytes left(256, static_cast<uint8_t>(a)), right(256), result(256);
    for (size_t i = 0; i < 256; ++i) right[i] = static_cast<uint8_t>(i);
    vectorWindow().distance(left.data(), right.data(), result.data(), 256);
    for (int32_t b = 0; b < 256; ++b) {
      ASSERT_EQ(result[static_cast<size_t>(b)], std::abs(a - b)) << a << ", " << b;
    }
    Bytes plain(256);
    plainWindow().distance(left.data(), right.data(), plain.data(), 256);
    ASSERT_EQ(plain, result);
  }
}

TEST_P(WindowRowsTest, StepsAwayOfAllPairs) {
  for (int32_t step = 0; step < 256; step += 5) {
    const Bytes steps(256, static_cast<uint8_t>(step));
    for (int32_t c = 0; c < 256; ++c) {
      Bytes src(256, static_cast<uint8_t>(c)), from(256), plain(256), vector(256);
      for (size_t i = 0; i < 256; ++i) from[i] = static_cast<uint8_t>(i);
      plainWindow().moveAway(src.data(), from.data(), steps.data(), plain.data(), 256);
      vectorWindow().moveAway(src.data(), from.data(), steps.data(), vector.data(), 256);
      ASSERT_EQ(plain, vector) << "step " << step << ", from " << c;
      ASSERT_EQ(plain[0], std::min(c + step, 255));
      if (c < 255) {
        ASSERT_EQ(plain[255], std::max(c - step, 0));
      }
    }
  }
}

TEST_P(WindowRowsTest, SlidingSums) {
  for (const ptrdiff_t length : kLengths) {
    const size_t size = static_cast<size_t>(length) + 1;
    const Bytes in = randomBytes(size, 2), out = randomBytes(size, 3);
    std::vector<int32_t> plain(size, 100000), vector(size, 100000);
    plainWindow().slideDown(plain.data(), in.data() + 1, out.data(), length);
    vectorWindow().slideDown(vector.data(), in.data() + 1, out.data(), length);
    ASSERT_EQ(plain, vector) << "length " << length;
    EXPECT_EQ(plain[size - 1], 100000);
    if (length > 0) {
      EXPECT_EQ(plain[0], 100000 + in[1] - out[0]);
    }
  }
}

TEST_P(WindowRowsTest, SumsOfWindows) {
  for (const int32_t window : {1, 2, 3, 21}) {
    for (const ptrdiff_t length : kLengths) {
      const size_t size = static_cast<size_t>(length + window);
      std::array<std::vector<int32_t>, 3> columns, plain, vector;
      std::mt19937 random(4);
      for (std::vector<int32_t>& column : columns) {
        for (size_t i = 0; i < size; ++i) column.push_back(static_cast<int32_t>(random() % 5000));
      }
      plain.fill(std::vector<int32_t>(size, -1));
      vector = plain;
      const int32_t* const from[] = {columns[0].data(), columns[1].data(), columns[2].data()};
      int32_t* const toPlain[] = {plain[0].data(), plain[1].data(), plain[2].data()};
      int32_t* const toVector[] = {vector[0].data(), vector[1].data(), vector[2].data()};
      plainWindow().windowSums(from, toPlain, window, length);
      vectorWindow().windowSums(from, toVector, window, length);
      ASSERT_EQ(plain, vector) << "window " << window << ", length " << length;
      for (size_t i = 0; i < static_cast<size_t>(length); ++i) {
        int32_t sum = 0;
        for (size_t k = 0; k < static_cast<size_t>(window); ++k) sum += columns[1][i + k];
        ASSERT_EQ(plain[1][i], sum);
      }
      ASSERT_EQ(plain[1][static_cast<size_t>(length)], -1);
    }
  }
}

TEST_P(WindowRowsTest, StepsTowardsAMean) {
  std::mt19937 random(5);
  for (const int32_t window : {1, 3, 21, 255}) {
    const int32_t q = static_cast<int32_t>(1024.0 / window + 0.5);
    for (const int32_t amount : {0, 1, 100, 256, -1, -100, -256}) {
      const Bytes src = randomBytes(131, 6);
      std::vector<int32_t> sums;
      for (size_t i = 0; i < src.size(); ++i) {
        sums.push_back(
            static_cast<int32_t>(random() % static_cast<uint32_t>(255 * window * window)));
      }
      Bytes plain(131), vector(131);
      plainWindow().moveToMean(src.data(), sums.data(), plain.data(), 131, q, amount);
      vectorWindow().moveToMean(src.data(), sums.data(), vector.data(), 131, q, amount);
      ASSERT_EQ(plain, vector) << "window " << window << ", amount " << amount;
      for (size_t i = 0; i < src.size(); ++i) {
        const int32_t mean = (q * ((sums[i] * q) >> 10)) >> 10;
        const int32_t c = src[i];
        const int32_t expected =
            amount > 0 ? c + ((amount * (mean - c)) >> 8) : c + ((-amount * (c - mean)) >> 8);
        ASSERT_EQ(plain[i], std::clamp(expected, 0, 255));
      }
    }
  }
}

}  // namespace
}  // namespace qpx::simd
