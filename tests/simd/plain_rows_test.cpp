// The definitions against values worked by hand, and the switch between the forms.
#include <gtest/gtest.h>
#include <qpx/engine.h>

#include <array>

#include "simd/row_cases.h"
#include "simd/rows.h"

namespace qpx::simd {
namespace {

uint8_t luma(uint8_t r, uint8_t g, uint8_t b) {
  uint8_t y = 0;
  plainForm<Rows>().luma(&r, &g, &b, &y, 1);
  return y;
}

uint8_t mix(uint8_t base, uint8_t top, int32_t opacity) {
  uint8_t out = 0;
  plainForm<Rows>().mixOpaque(&base, &top, &out, 1, opacity);
  return out;
}

uint8_t mixMasked(uint8_t base, uint8_t top, uint8_t mask, int32_t opacity) {
  uint8_t out = 0;
  plainForm<Rows>().mixMasked(&base, &top, &mask, &out, 1, opacity);
  return out;
}

TEST(PlainRows, LookupTakesEachByteThroughItsOwnTable) {
  std::array<uint8_t, 256> plusOne, doubled, inverse;
  for (uint32_t i = 0; i < 256; ++i) {
    plusOne[i] = static_cast<uint8_t>(i + 1);
    doubled[i] = static_cast<uint8_t>(2 * i);
    inverse[i] = static_cast<uint8_t>(255 - i);
  }
  const std::array<uint8_t, 8> src = {0, 1, 2, 3, 255, 100, 10, 77};
  std::array<uint8_t, 8> out = {};
  plainForm<Rows>().lookup(src.data(), out.data(), 8, inverse.data());
  EXPECT_EQ(out, (std::array<uint8_t, 8>{255, 254, 253, 252, 0, 155, 245, 178}));
  plainForm<Rows>().lookup3(src.data(), out.data(), 2, plusOne.data(), doubled.data(),
                            inverse.data());
  EXPECT_EQ(out, (std::array<uint8_t, 8>{1, 2, 253, 4, 254, 155, 245, 178}));
  plainForm<Rows>().lookup4(src.data(), out.data(), 2, plusOne.data(), doubled.data(),
                            inverse.data());
  EXPECT_EQ(out, (std::array<uint8_t, 8>{1, 2, 253, 3, 0, 200, 245, 77}));
}

TEST(PlainRows, InterleavingKeepsTheOrderOfBytesInMemory) {
  const std::array<uint8_t, 12> packed = {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12};
  std::array<std::array<uint8_t, 6>, 2> halves = {};
  plainForm<Rows>().deinterleave2(packed.data(), 6, halves[0].data(), halves[1].data());
  EXPECT_EQ(halves[0], (std::array<uint8_t, 6>{1, 3, 5, 7, 9, 11}));
  EXPECT_EQ(halves[1], (std::array<uint8_t, 6>{2, 4, 6, 8, 10, 12}));
  std::array<uint8_t, 12> whole = {};
  plainForm<Rows>().interleave2(halves[0].data(), halves[1].data(), 6, whole.data());
  EXPECT_EQ(whole, packed);
  std::array<std::array<uint8_t, 4>, 4> p = {};
  plainForm<Rows>().deinterleave3(packed.data(), 4, p[0].data(), p[1].data(), p[2].data());
  EXPECT_EQ(p[0], (std::array<uint8_t, 4>{1, 4, 7, 10}));
  EXPECT_EQ(p[2], (std::array<uint8_t, 4>{3, 6, 9, 12}));
  std::array<uint8_t, 12> back = {};
  plainForm<Rows>().interleave3(p[0].data(), p[1].data(), p[2].data(), 4, back.data());
  EXPECT_EQ(back, packed);
  plainForm<Rows>().deinterleave4(packed.data(), 3, p[0].data(), p[1].data(), p[2].data(),
                                  p[3].data());
  EXPECT_EQ(p[0], (std::array<uint8_t, 4>{1, 5, 9, 10}));
  EXPECT_EQ(p[3], (std::array<uint8_t, 4>{4, 8, 12, 0}));
  back = {};
  plainForm<Rows>().interleave4(p[0].data(), p[1].data(), p[2].data(), p[3].data(), 3, back.data());
  EXPECT_EQ(back, packed);
}

TEST(PlainRows, LumaKeepsGreyAndCuts) {
  for (int32_t v = 0; v < 256; ++v) {
    const uint8_t grey = static_cast<uint8_t>(v);
    EXPECT_EQ(luma(grey, grey, grey), grey);
  }
  EXPECT_EQ(luma(255, 0, 0), 76);   // 2498490 / 32768 = 76.2
  EXPECT_EQ(luma(0, 255, 0), 149);  // 4904925 / 32768 = 149.7
  EXPECT_EQ(luma(0, 0, 255), 29);   // 952425 / 32768 = 29.1
  EXPECT_EQ(luma(0, 1, 0), 0);      // 0.59, cut
}

TEST(PlainRows, WeightedSumCutsAndClamps) {
  const std::array<uint8_t, 4> a = {0, 255, 100, 1}, b = {0, 0, 10, 1}, c = {0, 0, 200, 0};
  std::array<uint8_t, 4> out = {};
  const std::array<int32_t, 4> half = {32768, 0, 0, 0};
  plainForm<Rows>().weightedSum(a.data(), b.data(), c.data(), out.data(), 4, half.data());
  EXPECT_EQ(out, (std::array<uint8_t, 4>{0, 127, 50, 0}));
  // a - b - 2 * c + 300.5: 300.5, 555.5, -9.5, 300.5.
  const std::array<int32_t, 4> weights = {65536, -65536, -131072, 300 * 65536 + 32768};
  plainForm<Rows>().weightedSum(a.data(), b.data(), c.data(), out.data(), 4, weights.data());
  EXPECT_EQ(out, (std::array<uint8_t, 4>{255, 255, 0, 255}));
  const std::array<int32_t, 4> down = {65536, 0, 0, -65537};  // a little less than a - 1
  plainForm<Rows>().weightedSum(a.data(), b.data(), c.data(), out.data(), 4, down.data());
  EXPECT_EQ(out, (std::array<uint8_t, 4>{0, 253, 98, 0}));
}

TEST(PlainRows, MixRoundsToNearestHalvesUp) {
  EXPECT_EQ(mix(10, 200, 0), 10);
  EXPECT_EQ(mix(10, 200, 100), 200);
  EXPECT_EQ(mix(0, 1, 49), 0);
  EXPECT_EQ(mix(0, 1, 50), 1);
  EXPECT_EQ(mix(1, 0, 50), 1);
  EXPECT_EQ(mix(255, 0, 1), 252);  // 252.45
  EXPECT_EQ(mix(3, 250, 37), 94);  // 94.39
  for (int32_t opacity = 0; opacity <= 100; ++opacity) EXPECT_EQ(mix(255, 255, opacity), 255);
  uint8_t base = 3, out = 0;
  plainForm<Rows>().mixColor(&base, 250, &out, 1, 37);
  EXPECT_EQ(out, 94);
}

TEST(PlainRows, MaskedMixRoundsToNearestHalvesUp) {
  EXPECT_EQ(mixMasked(10, 200, 0, 100), 10);
  EXPECT_EQ(mixMasked(10, 200, 255, 100), 200);
  EXPECT_EQ(mixMasked(10, 200, 255, 0), 10);
  EXPECT_EQ(mixMasked(0, 255, 128, 100), 128);
  EXPECT_EQ(mixMasked(0, 255, 1, 50), 1);      // 0.5
  EXPECT_EQ(mixMasked(255, 0, 1, 50), 255);    // 254.5
  EXPECT_EQ(mixMasked(255, 0, 1, 51), 254);    // 254.49
  EXPECT_EQ(mixMasked(7, 240, 200, 33), 67);   // 7 + 233 * 6600 / 25500 = 67.3
  EXPECT_EQ(mixMasked(240, 7, 200, 33), 180);  // 179.7
}

TEST(PlainRows, MaskedMixUnderFullMaskIsTheOpaqueMix) {
  for (int32_t opacity = 0; opacity <= 100; ++opacity) {
    for (int32_t v = 0; v < 256; ++v) {
      const uint8_t top = static_cast<uint8_t>(v);
      EXPECT_EQ(mixMasked(91, top, 255, opacity), mix(91, top, opacity));
    }
  }
}

TEST(PlainRows, ComplementMirrorsAbout128) {
  const std::array<uint8_t, 6> src = {0, 1, 2, 127, 128, 255};
  std::array<uint8_t, 6> out = {};
  plainForm<Rows>().complement256(src.data(), out.data(), 6);
  EXPECT_EQ(out, (std::array<uint8_t, 6>{255, 255, 254, 129, 128, 1}));
}

TEST(PlainForms, SwitchServesTheWholeProcess) {
  ASSERT_FALSE(plainForms());
  EXPECT_EQ(&rows(), &vectorForm<Rows>());
  QPX_UsePlainForms(1);
  EXPECT_TRUE(plainForms());
  EXPECT_EQ(&rows(), &plainForm<Rows>());
  QPX_UsePlainForms(-5);
  EXPECT_TRUE(plainForms());
  QPX_UsePlainForms(0);
  EXPECT_FALSE(plainForms());
  EXPECT_EQ(&rows(), &vectorForm<Rows>());
}

TEST(PlainForms, VectorFormsAreNotThePlainOnes) {
  EXPECT_NE(vectorForm<Rows>().mixMasked, plainForm<Rows>().mixMasked);
  EXPECT_NE(vectorForm<Rows>().deinterleave3, plainForm<Rows>().deinterleave3);
}

}  // namespace
}  // namespace qpx::simd
