// Vector rows against plain rows over their whole domains.
#include <algorithm>
#include <array>
#include <cstring>
#include <numeric>

#include "simd/row_cases.h"
#include "simd/target_test.h"
#include "support/sweep.h"

namespace qpx::simd {
namespace {

using Ramp = std::array<uint8_t, 256>;

Ramp ramp() {
  Ramp values;
  std::iota(values.begin(), values.end(), uint8_t{0});
  return values;
}

Ramp constant(int32_t value) {
  Ramp values;
  values.fill(static_cast<uint8_t>(value));
  return values;
}

class RowValues : public TargetTest {};
QPX_FOR_EACH_TARGET(RowValues);

TEST_P(RowValues, LookupFindsEveryEntryFromEveryLane) {
  std::array<uint8_t, 512> src, expected, actual;
  for (const auto& table : testTables()) {
    for (uint32_t turn = 0; turn < 256; ++turn) {
      for (uint32_t i = 0; i < src.size(); ++i) src[i] = static_cast<uint8_t>(i + turn);
      plain().lookup(src.data(), expected.data(), 512, table.data());
      vector().lookup(src.data(), actual.data(), 512, table.data());
      ASSERT_EQ(actual, expected) << "turn " << turn;
    }
  }
}

TEST_P(RowValues, LumaOfEveryColor) {
  const Ramp blue = ramp();
  Ramp expected, actual;
  for (int32_t r = 0; r < 256; r += sweepStep()) {
    const Ramp red = constant(r);
    for (int32_t g = 0; g < 256; ++g) {
      const Ramp green = constant(g);
      plain().luma(red.data(), green.data(), blue.data(), expected.data(), 256);
      vector().luma(red.data(), green.data(), blue.data(), actual.data(), 256);
      ASSERT_EQ(actual, expected) << "red " << r << ", green " << g;
    }
  }
}

TEST_P(RowValues, WeightedSumOfEveryColor) {
  // Red of Y, U and V, and the largest weights that leave 32 bits alone.
  constexpr int32_t kWeights[2][4] = {{65536, 0, 91914, -11732255},
                                      {-2800000, 2700000, 2900000, INT32_MIN / 4}};
  const Ramp c = ramp();
  Ramp expected, actual;
  for (const auto& weights : kWeights) {
    for (int32_t a = 0; a < 256; ++a) {
      for (int32_t b = 0; b < 256; b += 5) {
        const Ramp first = constant(a), second = constant(b);
        plain().weightedSum(first.data(), second.data(), c.data(), expected.data(), 256, weights);
        vector().weightedSum(first.data(), second.data(), c.data(), actual.data(), 256, weights);
        ASSERT_EQ(actual, expected) << "first " << a << ", second " << b;
      }
    }
  }
}

TEST_P(RowValues, MixesOfEveryPairAtEveryOpacity) {
  const Ramp top = ramp();
  Ramp expected, opaque, color;
  for (int32_t opacity = 0; opacity <= 100; ++opacity) {
    for (int32_t b = 0; b < 256; ++b) {
      const Ramp base = constant(b);
      plain().mixOpaque(base.data(), top.data(), expected.data(), 256, opacity);
      vector().mixOpaque(base.data(), top.data(), opaque.data(), 256, opacity);
      ASSERT_EQ(opaque, expected) << "base " << b << ", opacity " << opacity;
      // The ramp is now below: b is the colour on top.
      plain().mixOpaque(top.data(), base.data(), expected.data(), 256, opacity);
      vector().mixColor(top.data(), static_cast<uint8_t>(b), color.data(), 256, opacity);
      ASSERT_EQ(color, expected) << "color " << b << ", opacity " << opacity;
    }
  }
}

// The result is the base and a step that depends on opacity, mask, distance and direction alone:
// all of these are tried, which is every numerator there is up to multiples of 25500.
TEST_P(RowValues, MaskedMixOfEveryDistanceAtEveryOpacityAndMask) {
  const Ramp top = ramp();
  Ramp expected, actual;
  for (int32_t opacity = 0; opacity <= 100; ++opacity) {
    for (int32_t m = 0; m < 256; ++m) {
      const Ramp mask = constant(m);
      for (const int32_t b : {0, 255}) {
        const Ramp base = constant(b);
        plain().mixMasked(base.data(), top.data(), mask.data(), expected.data(), 256, opacity);
        vector().mixMasked(base.data(), top.data(), mask.data(), actual.data(), 256, opacity);
        ASSERT_EQ(actual, expected) << "base " << b << ", mask " << m << ", opacity " << opacity;
      }
    }
  }
}

TEST_P(RowValues, MaskedMixOfEveryPair) {
  const Ramp top = ramp();
  Ramp expected, actual;
  for (const int32_t opacity : {0, 1, 33, 50, 51, 99, 100}) {
    for (const int32_t m : {0, 1, 85, 127, 128, 170, 254, 255}) {
      const Ramp mask = constant(m);
      for (int32_t b = 0; b < 256; ++b) {
        const Ramp base = constant(b);
        plain().mixMasked(base.data(), top.data(), mask.data(), expected.data(), 256, opacity);
        vector().mixMasked(base.data(), top.data(), mask.data(), actual.data(), 256, opacity);
        ASSERT_EQ(actual, expected) << "base " << b << ", mask " << m << ", opacity " << opacity;
      }
    }
  }
}

TEST_P(RowValues, ComplementOfEveryByte) {
  const Ramp src = ramp();
  Ramp expected, actual;
  plain().complement256(src.data(), expected.data(), 256);
  vector().complement256(src.data(), actual.data(), 256);
  EXPECT_EQ(actual, expected);
}

TEST_P(RowValues, InterleavingBringsPlanesBack) {
  std::array<Ramp, 4> planes, back;
  for (uint32_t k = 0; k < 4; ++k) {
    for (uint32_t i = 0; i < 256; ++i) planes[k][i] = noise(i, k);
  }
  std::array<uint8_t, 1024> packed;
  vector().interleave4(planes[0].data(), planes[1].data(), planes[2].data(), planes[3].data(), 256,
                       packed.data());
  for (size_t i = 0; i < packed.size(); ++i) ASSERT_EQ(packed[i], planes[i % 4][i / 4]);
  vector().deinterleave4(packed.data(), 256, back[0].data(), back[1].data(), back[2].data(),
                         back[3].data());
  EXPECT_EQ(back, planes);
  vector().interleave3(planes[0].data(), planes[1].data(), planes[2].data(), 256, packed.data());
  for (size_t i = 0; i < 768; ++i) ASSERT_EQ(packed[i], planes[i % 3][i / 3]);
  vector().deinterleave3(packed.data(), 256, back[1].data(), back[2].data(), back[3].data());
  for (size_t k = 0; k < 3; ++k) EXPECT_EQ(back[k + 1], planes[k]);
}

}  // namespace
}  // namespace qpx::simd
