#include "simd/yuv_rows.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <vector>

#include "simd/row_bytes.h"
#include "simd/row_cases.h"
#include "simd/target_test.h"

namespace qpx::simd {
namespace {

class YuvRowsTest : public TargetTest {
 protected:
  const YuvRows& plainYuv() const { return plainForm<YuvRows>(); }
  const YuvRows& vectorYuv() const { return vectorForm<YuvRows>(); }
};
QPX_FOR_EACH_TARGET(YuvRowsTest);

constexpr PixelOrder kOrders[] = {PixelOrder::rgb24, PixelOrder::bgr24, PixelOrder::rgba32,
                                  PixelOrder::bgra32};
constexpr ChromaWeights kWeights[] = {{72, 91}, {64, 112}, {72, 92}};

enum class Shape { planes, uvPairs, vuPairs, everyOther, yuyv, yvyu, uyvy, vyuy, yuv };
constexpr Shape kShapes[] = {Shape::planes,     Shape::uvPairs, Shape::vuPairs,
                             Shape::everyOther, Shape::yuyv,    Shape::yvyu,
                             Shape::uyvy,       Shape::vyuy,    Shape::yuv};

bool isPacked(Shape shape) { return shape >= Shape::yuyv; }

// A row whose blocks end with its last byte, so that the address sanitizer sees what lies behind.
class Row {
 public:
  Row(Shape shape, ptrdiff_t pairs, uint32_t seed) : shape_(shape) {
    const auto size = static_cast<size_t>(pairs);
    switch (shape) {
      case Shape::planes:
        sizes_ = {2 * size, size, size};
        break;
      case Shape::uvPairs:
      case Shape::vuPairs:
        sizes_ = {2 * size, 2 * size, 0};
        break;
      case Shape::everyOther:
        sizes_ = {2 * size, 2 * size, 2 * size};
        break;
      case Shape::yuv:
        sizes_ = {6 * size, 0, 0};
        break;
      default:
        sizes_ = {4 * size, 0, 0};
        break;
    }
    for (size_t p = 0; p < 3; ++p) {
      blocks_[p].resize(kRoom + p + sizes_[p]);
      for (size_t i = 0; i < blocks_[p].size(); ++i) {
        blocks_[p][i] = noise(static_cast<uint32_t>(i), seed + static_cast<uint32_t>(p));
      }
    }
  }

  YuvTarget target() {
    uint8_t *const a = start(0), *const b = start(1), *const c = start(2);
    switch (shape_) {
      case Shape::planes:
        return {a, b, c, 1, 1};
      case Shape::uvPairs:
        return {a, b, b + 1, 1, 2};
      case Shape::vuPairs:
        return {a, b + 1, b, 1, 2};
      case Shape::everyOther:
        return {a, b, c, 1, 2};
      case Shape::yuyv:
        return {a, a + 1, a + 3, 2, 4};
      case Shape::yvyu:
        return {a, a + 3, a + 1, 2, 4};
      case Shape::uyvy:
        return {a + 1, a, a + 2, 2, 4};
      case Shape::vyuy:
        return {a + 1, a + 2, a, 2, 4};
      default:
        return {a, a + 1, a + 2, 3, 6};
    }
  }
  YuvSource source() {
    const YuvTarget t = target();
    return {t.y, t.u, t.v, t.lumaStep, t.chromaStep};
  }
  bool operator==(const Row&) const = default;

 private:
  static constexpr size_t kRoom = 5;

  uint8_t* start(size_t p) { return blocks_[p].data() + kRoom + p; }

  Shape shape_;
  std::array<size_t, 3> sizes_ = {};
  std::array<std::vector<uint8_t>, 3> blocks_;
};

// Every length up to three of the longest vectors, then some that are longer.
std::vector<ptrdiff_t> lengths() {
  std::vector<ptrdiff_t> all;
  for (ptrdiff_t pairs = 0; pairs <= 100; ++pairs) all.push_back(pairs);
  for (const ptrdiff_t pairs : {127, 128, 129, 160, 191, 192, 193, 255, 300}) all.push_back(pairs);
  return all;
}

TEST_P(YuvRowsTest, PixelsOfEveryShapeAndLengthAreThePlainOnes) {
  for (const Shape shape : kShapes) {
    for (const ptrdiff_t pairs : lengths()) {
      Row row(shape, pairs, 3);
      const PixelOrder order = kOrders[static_cast<size_t>(pairs) % 4];
      const auto before = noisyBytes(2 * pairs * bytesOf(order), 9);
      const auto alpha = static_cast<uint8_t>(pairs);
      auto expected = before, actual = before;
      plainYuv().toPixels(row.source(), order, alpha, expected.data(), pairs);
      vectorYuv().toPixels(row.source(), order, alpha, actual.data(), pairs);
      ASSERT_EQ(expected, actual) << static_cast<int>(shape) << ", " << pairs;
      plainYuv().toPixelsRounded(row.source(), order, alpha, expected.data(), pairs);
      vectorYuv().toPixelsRounded(row.source(), order, alpha, actual.data(), pairs);
      ASSERT_EQ(expected, actual) << static_cast<int>(shape) << ", " << pairs;
    }
  }
}

TEST_P(YuvRowsTest, RowsOfEveryShapeAndLengthAreThePlainOnes) {
  for (const Shape shape : kShapes) {
    for (const ptrdiff_t pairs : lengths()) {
      const PixelOrder order = kOrders[static_cast<size_t>(pairs) % 4];
      const ChromaWeights weights = kWeights[static_cast<size_t>(pairs) % 3];
      const auto src = noisyBytes(2 * pairs * bytesOf(order), 4);
      const auto quads = noisyBytes(8 * pairs, 5);
      Row expected(shape, pairs, 7), actual(shape, pairs, 7);
      plainYuv().fromPixels(src.data(), order, weights, expected.target(), pairs);
      vectorYuv().fromPixels(src.data(), order, weights, actual.target(), pairs);
      ASSERT_EQ(expected, actual) << static_cast<int>(shape) << ", " << pairs;
      plainYuv().fromPixelsFine(quads.data(), expected.target(), pairs);
      vectorYuv().fromPixelsFine(quads.data(), actual.target(), pairs);
      ASSERT_EQ(expected, actual) << static_cast<int>(shape) << ", " << pairs;
    }
  }
}

TEST_P(YuvRowsTest, LumaAndPlanesOfEveryLengthAreThePlainOnes) {
  for (ptrdiff_t pixels = 0; pixels <= 270; ++pixels) {
    for (const PixelOrder order : kOrders) {
      const auto src = noisyBytes(pixels * bytesOf(order), 4);
      const auto before = noisyBytes(4 * pixels, 6);
      const auto quads = noisyBytes(4 * pixels, 5);
      auto expected = before, actual = before;
      uint8_t* const wanted[] = {expected.data() + pixels, expected.data() + 2 * pixels,
                                 expected.data() + 3 * pixels};
      uint8_t* const made[] = {actual.data() + pixels, actual.data() + 2 * pixels,
                               actual.data() + 3 * pixels};
      plainYuv().lumaOfPixels(src.data(), order, expected.data(), pixels);
      vectorYuv().lumaOfPixels(src.data(), order, actual.data(), pixels);
      plainYuv().planesOfPixels(src.data(), order, kWeights[0], wanted, pixels);
      vectorYuv().planesOfPixels(src.data(), order, kWeights[0], made, pixels);
      ASSERT_EQ(expected, actual) << pixels;
      plainYuv().fineLumaOfPixels(quads.data(), expected.data(), pixels);
      vectorYuv().fineLumaOfPixels(quads.data(), actual.data(), pixels);
      ASSERT_EQ(expected, actual) << pixels;
    }
  }
}

TEST_P(YuvRowsTest, MovesBetweenAllShapesAreThePlainOnes) {
  for (const Shape from : kShapes) {
    for (const Shape to : kShapes) {
      for (const ptrdiff_t pairs : lengths()) {
        if (pairs > 40 && pairs % 3 != 0) continue;
        Row src(from, pairs, 1);
        Row expected(to, pairs, 2), actual(to, pairs, 2);
        plainYuv().packPairs(src.source(), expected.target(), pairs);
        if (isPacked(to)) {
          vectorYuv().packPairs(src.source(), actual.target(), pairs);
        } else {
          vectorYuv().moveRow(src.source(), actual.target(), pairs);
        }
        ASSERT_EQ(expected, actual)
            << static_cast<int>(from) << " to " << static_cast<int>(to) << ", " << pairs;
        Row chroma(to, pairs, 3), chromaMoved(to, pairs, 3);
        plainYuv().moveChroma(src.source(), chroma.target(), pairs);
        vectorYuv().moveChroma(src.source(), chromaMoved.target(), pairs);
        ASSERT_EQ(chroma, chromaMoved) << static_cast<int>(from) << " to " << static_cast<int>(to);
      }
    }
  }
}

TEST_P(YuvRowsTest, PairsAreSwappedInPlace) {
  for (const ptrdiff_t pairs : lengths()) {
    auto expected = noisyBytes(2 * pairs, 8), actual = expected;
    const auto swap = [&](const YuvRows& rows, uint8_t* bytes) {
      rows.moveChroma({nullptr, bytes, bytes + 1, 1, 2}, {nullptr, bytes + 1, bytes, 1, 2}, pairs);
    };
    swap(plainYuv(), expected.data());
    swap(vectorYuv(), actual.data());
    ASSERT_EQ(expected, actual) << pairs;
  }
}

TEST_P(YuvRowsTest, LumaOfEveryStepIsThePlainOne) {
  for (ptrdiff_t pixels = 0; pixels <= 270; pixels += pixels < 140 ? 1 : 13) {
    for (ptrdiff_t from = 1; from <= 3; ++from) {
      for (ptrdiff_t to = 1; to <= 3; ++to) {
        const auto src = noisyBytes(from * pixels, 1);
        auto expected = noisyBytes(to * pixels, 2), actual = expected;
        plainYuv().moveLuma(src.data(), from, expected.data(), to, pixels);
        vectorYuv().moveLuma(src.data(), from, actual.data(), to, pixels);
        ASSERT_EQ(expected, actual) << pixels << ", " << from << " to " << to;
      }
    }
    auto itself = noisyBytes(pixels, 3);
    const auto before = itself;
    vectorYuv().moveLuma(itself.data(), 1, itself.data(), 1, pixels);
    ASSERT_EQ(before, itself);
  }
}

TEST_P(YuvRowsTest, PackedPixelsAreThePlainOnes) {
  for (const Shape shape : kShapes) {
    for (const ptrdiff_t pairs : lengths()) {
      Row src(shape, pairs, 1);
      auto expected = noisyBytes(6 * pairs, 2), actual = expected;
      plainYuv().packPixels(src.source(), expected.data(), pairs);
      vectorYuv().packPixels(src.source(), actual.data(), pairs);
      ASSERT_EQ(expected, actual) << static_cast<int>(shape) << ", " << pairs;
    }
  }
}

// Red is of luma and V, blue of luma and U: all of both. Green is of all three: every U and V with
// lumas that reach both clamps and the middle.
TEST_P(YuvRowsTest, EveryColourIsThePlainOne) {
  const std::vector<uint8_t> some = {0, 1, 64, 127, 128, 129, 200, 255};
  std::vector<uint8_t> y, u, v;
  const auto add = [&](int luma, int cu, int cv) {
    y.push_back(static_cast<uint8_t>(luma));
    y.push_back(static_cast<uint8_t>(255 - luma));
    u.push_back(static_cast<uint8_t>(cu));
    v.push_back(static_cast<uint8_t>(cv));
  };
  for (int chroma = 0; chroma < 256; ++chroma) {
    for (int luma = 0; luma < 128; ++luma) {
      add(luma, chroma, 255 - chroma);
      add(luma, chroma, noise(static_cast<uint32_t>(luma), 1));
    }
    for (int other = 0; other < 256; ++other) {
      for (const uint8_t luma : some) add(luma, chroma, other);
    }
  }
  const auto pairs = static_cast<ptrdiff_t>(u.size());
  const YuvSource src = {y.data(), u.data(), v.data(), 1, 1};
  std::vector<uint8_t> expected(static_cast<size_t>(8 * pairs)), actual = expected;
  plainYuv().toPixels(src, PixelOrder::rgba32, 7, expected.data(), pairs);
  vectorYuv().toPixels(src, PixelOrder::rgba32, 7, actual.data(), pairs);
  EXPECT_TRUE(expected == actual);
  plainYuv().toPixelsRounded(src, PixelOrder::rgba32, 7, expected.data(), pairs);
  vectorYuv().toPixelsRounded(src, PixelOrder::rgba32, 7, actual.data(), pairs);
  EXPECT_TRUE(expected == actual);
}

// Red and blue decide about chroma's extremes; green, whose weight is the largest, moves luma.
TEST_P(YuvRowsTest, EveryRedAndBlueIsThePlainOne) {
  std::vector<uint8_t> pixels;
  for (int r = 0; r < 256; ++r) {
    for (int b = 0; b < 256; b += r % 5 == 0 ? 1 : 3) {
      for (const int g : {0, 255, (r * 7 + b * 3) & 255}) {
        // The pixel that has chroma, and one that has none.
        for (const int c : {r, g, b, 255, b, r, g, 0}) pixels.push_back(static_cast<uint8_t>(c));
      }
    }
  }
  const auto pairs = static_cast<ptrdiff_t>(pixels.size() / 8);
  Row expected(Shape::planes, pairs, 1), actual(Shape::planes, pairs, 1);
  for (const ChromaWeights weights : kWeights) {
    for (const PixelOrder order : {PixelOrder::rgba32, PixelOrder::bgra32}) {
      plainYuv().fromPixels(pixels.data(), order, weights, expected.target(), pairs);
      vectorYuv().fromPixels(pixels.data(), order, weights, actual.target(), pairs);
      EXPECT_TRUE(expected == actual);
    }
  }
  plainYuv().fromPixelsFine(pixels.data(), expected.target(), pairs);
  vectorYuv().fromPixelsFine(pixels.data(), actual.target(), pairs);
  EXPECT_TRUE(expected == actual);
}

}  // namespace
}  // namespace qpx::simd
