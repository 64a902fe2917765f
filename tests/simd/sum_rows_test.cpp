#include "simd/sum_rows.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <vector>

#include "simd/row_cases.h"
#include "simd/target_test.h"

namespace qpx::simd {
namespace {

class SumRowsTest : public TargetTest {
 protected:
  const SumRows& plainSums() const { return plainForm<SumRows>(); }
  const SumRows& vectorSums() const { return vectorForm<SumRows>(); }
};
QPX_FOR_EACH_TARGET(SumRowsTest);

constexpr uint32_t kBefore = 0x12345678;

// Four rows of sums with room that must stay as it is on both sides.
struct Sums {
  static constexpr size_t kGuard = 33;

  explicit Sums(ptrdiff_t pixels) {
    for (auto& plane : planes) plane.assign(static_cast<size_t>(pixels) + 2 * kGuard, kBefore);
  }
  QuadSums rows() {
    return {{planes[0].data() + kGuard, planes[1].data() + kGuard, planes[2].data() + kGuard,
             planes[3].data() + kGuard}};
  }
  bool operator==(const Sums&) const = default;

  std::array<std::vector<uint32_t>, 4> planes;
};

// Rows end with their last byte, so that the address sanitizer sees reads behind them.
std::vector<std::vector<uint8_t>> noisyRows(size_t count, ptrdiff_t pixels, bool white) {
  std::vector<std::vector<uint8_t>> rows(count);
  for (size_t k = 0; k < count; ++k) {
    rows[k].resize(4 * static_cast<size_t>(pixels) + k % 4);
    for (size_t i = 0; i < rows[k].size(); ++i) {
      rows[k][i] = white ? 255 : noise(static_cast<uint32_t>(i), static_cast<uint32_t>(k));
    }
  }
  return rows;
}

std::vector<const uint8_t*> startsOf(const std::vector<std::vector<uint8_t>>& rows) {
  std::vector<const uint8_t*> starts;
  for (size_t k = 0; k < rows.size(); ++k) starts.push_back(rows[k].data() + k % 4);
  return starts;
}

TEST_P(SumRowsTest, SumsOfEveryCountAreThePlainOnes) {
  for (ptrdiff_t pixels = 0; pixels <= 150; ++pixels) {
    for (const uint32_t weight : {1u, 2u, 0xFFFFFFFFu}) {
      const auto rows = noisyRows(static_cast<size_t>(pixels) % 7, pixels, false);
      const auto starts = startsOf(rows);
      Sums expected(pixels), actual(pixels);
      const auto count = static_cast<ptrdiff_t>(starts.size());
      plainSums().addQuads(starts.data(), count, weight, expected.rows(), pixels);
      vectorSums().addQuads(starts.data(), count, weight, actual.rows(), pixels);
      ASSERT_EQ(expected, actual) << pixels << " pixels, weight " << weight;
    }
  }
}

// White rows fill 16 bits with 257 of them.
TEST_P(SumRowsTest, SumsOfManyRowsDoNotOverflow) {
  for (const size_t count : {256u, 257u, 258u, 514u, 515u, 900u}) {
    for (const ptrdiff_t pixels : {5, 64, 133}) {
      const auto rows = noisyRows(count, pixels, true);
      const auto starts = startsOf(rows);
      Sums actual(pixels);
      vectorSums().addQuads(starts.data(), static_cast<ptrdiff_t>(count), 1, actual.rows(), pixels);
      for (int c = 0; c < 4; ++c) {
        for (ptrdiff_t i = 0; i < pixels; ++i) {
          ASSERT_EQ(kBefore + 255 * count, actual.rows().plane[c][i]) << count;
        }
      }
    }
  }
}

TEST_P(SumRowsTest, MeansAreThePlainOnes) {
  std::vector<uint32_t> reciprocals = {0};
  for (uint32_t n = 1; n < 3000; ++n) {
    reciprocals.push_back(static_cast<uint32_t>(1048576.0 / n + 0.5));
  }
  for (const bool uniform : {false, true}) {
    for (ptrdiff_t count = 0; count <= 150; ++count) {
      const auto size = static_cast<size_t>(count);
      std::vector<uint32_t> sums(size), counts(size);
      for (size_t i = 0; i < size; ++i) {
        const auto place = static_cast<uint32_t>(i);
        counts[i] = uniform ? 7 + static_cast<uint32_t>(count) : (place * 2654435761u >> 8) % 3000;
        sums[i] = counts[i] * noise(place, 3);
      }
      for (const uint32_t bias : {0u, 0x80000u}) {
        std::vector<uint8_t> expected(size + 8, 0xEE), actual(size + 8, 0xEE);
        plainSums().scaleSums(sums.data(), counts.data(), reciprocals.data(), bias, expected.data(),
                              count);
        vectorSums().scaleSums(sums.data(), counts.data(), reciprocals.data(), bias, actual.data(),
                               count);
        ASSERT_EQ(expected, actual) << count << ", bias " << bias;
      }
    }
  }
}

// A reciprocal that was rounded up makes more than white of a long white line.
TEST_P(SumRowsTest, MeansStopAtWhite) {
  const std::vector<uint32_t> reciprocals = {101};
  const std::vector<uint32_t> sums(40, 255 * 10433), counts(40, 0);
  std::vector<uint8_t> mean(40);
  for (const SumRows* rows : {&plainSums(), &vectorSums()}) {
    rows->scaleSums(sums.data(), counts.data(), reciprocals.data(), 0x80000, mean.data(), 40);
    EXPECT_EQ(std::vector<uint8_t>(40, 255), mean);
  }
}

TEST_P(SumRowsTest, MixesOfEveryPairAreThePlainOnes) {
  std::vector<uint16_t> weights;
  std::vector<uint8_t> a, b;
  for (int32_t top = 0; top < 256; top += 5) {
    for (int32_t base = 0; base < 256; base += 3) {
      for (const int32_t weight : {0, 1, 3, 511, 512, 513, 1000, 1023, 1024}) {
        a.push_back(static_cast<uint8_t>(top));
        b.push_back(static_cast<uint8_t>(base));
        weights.push_back(static_cast<uint16_t>(weight));
      }
    }
  }
  const auto count = static_cast<ptrdiff_t>(a.size());
  std::vector<uint8_t> expected(a.size()), actual(b);
  plainSums().mixByWeights(a.data(), b.data(), weights.data(), expected.data(), count);
  vectorSums().mixByWeights(a.data(), actual.data(), weights.data(), actual.data(), count);
  EXPECT_EQ(expected, actual);
  for (ptrdiff_t length = 0; length < 70; ++length) {
    std::vector<uint8_t> cut(a.size(), 0xEE);
    vectorSums().mixByWeights(a.data() + 500, b.data() + 500, weights.data() + 500, cut.data(),
                              length);
    EXPECT_TRUE(std::equal(cut.begin(), cut.begin() + length, expected.begin() + 500));
    EXPECT_EQ(0xEE, cut[static_cast<size_t>(length)]);
  }
}

// By hand: 30 * 0.25 + 200 * 0.75 = 157.5, which rounds up.
TEST(PlainSumRows, ByHand) {
  const uint8_t rows[2][8] = {{1, 2, 3, 1, 250, 0, 9, 1}, {4, 5, 6, 0, 250, 1, 1, 1}};
  const uint8_t* const starts[] = {rows[0], rows[1]};
  uint32_t planes[4][2] = {{1, 1}, {1, 1}, {1, 1}, {1, 1}};
  const QuadSums sums = {{planes[0], planes[1], planes[2], planes[3]}};
  plainForm<SumRows>().addQuads(starts, 2, 2, sums, 2);
  EXPECT_EQ(11u, planes[0][0]);
  EXPECT_EQ(1001u, planes[0][1]);
  EXPECT_EQ(3u, planes[3][0]);
  EXPECT_EQ(5u, planes[3][1]);
  const uint8_t a = 30, b = 200;
  const uint16_t weight = 256;
  uint8_t mixed = 0;
  plainForm<SumRows>().mixByWeights(&a, &b, &weight, &mixed, 1);
  EXPECT_EQ(158, mixed);
}

}  // namespace
}  // namespace qpx::simd
