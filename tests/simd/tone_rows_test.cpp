// Rows of the native looks: plain forms against the formulas as written, vector forms against plain
// ones over whole domains, and what rows leave alone.
#include "simd/tone_rows.h"

#include <algorithm>
#include <array>
#include <numeric>
#include <vector>

#include "simd/row_cases.h"
#include "simd/target_test.h"
#include "support/sweep.h"

namespace qpx::simd {
namespace {

using Ramp = std::array<uint8_t, 256>;

Ramp ramp(uint8_t first = 0) {
  Ramp values;
  std::iota(values.begin(), values.end(), first);
  return values;
}

Ramp constant(int32_t value) {
  Ramp values;
  values.fill(static_cast<uint8_t>(value));
  return values;
}

class ToneRowsTest : public TargetTest {
 protected:
  const ToneRows& plainTone() const { return plainForm<ToneRows>(); }
  const ToneRows& vectorTone() const { return vectorForm<ToneRows>(); }
};
QPX_FOR_EACH_TARGET(ToneRowsTest);

struct Colors {
  Ramp r, g, b;
  bool operator==(const Colors&) const = default;
};

// Both forms of a step on every colour.
template <typename Step>
void expectSameOnEveryColor(int32_t stride, const Step& step) {
  for (int32_t r = 0; r < 256; r += sweepStep(stride)) {
    for (int32_t g = 0; g < 256; ++g) {
      Colors plain = {constant(r), constant(g), ramp()};
      Colors vector = plain;
      step(plainForm<ToneRows>(), plain);
      step(vectorForm<ToneRows>(), vector);
      ASSERT_EQ(plain, vector) << "first " << r << ", second " << g;
    }
  }
}

// Chroma of each pair is one of 65536, luma takes all values in both places of the pair.
TEST_P(ToneRowsTest, ColorsOfEveryYuv) {
  const Ramp y = ramp();
  const Ramp turned = ramp(1);
  for (int32_t u = 0; u < 256; u += sweepStep()) {
    for (int32_t v = 0; v < 256; ++v) {
      const Ramp us = constant(u), vs = constant(v);
      Ramp pairs;
      for (size_t i = 0; i < 256; i += 2) {
        pairs[i] = static_cast<uint8_t>(v);
        pairs[i + 1] = static_cast<uint8_t>(u);
      }
      for (const Ramp* luma : {&y, &turned}) {
        Colors plain, planar, interleaved;
        plainTone().halvesToRgb(luma->data(), us.data(), vs.data(), plain.r.data(), plain.g.data(),
                                plain.b.data(), 256);
        vectorTone().halvesToRgb(luma->data(), us.data(), vs.data(), planar.r.data(),
                                 planar.g.data(), planar.b.data(), 256);
        vectorTone().pairsToRgb(luma->data(), pairs.data(), true, interleaved.r.data(),
                                interleaved.g.data(), interleaved.b.data(), 256);
        ASSERT_EQ(plain, planar) << "u " << u << ", v " << v;
        ASSERT_EQ(plain, interleaved) << "u " << u << ", v " << v;
      }
    }
  }
}

TEST_P(ToneRowsTest, YuvOfEveryColor) {
  expectSameOnEveryColor(1, [](const ToneRows& rows, Colors& c) {
    Ramp y, pairs, uv = {};
    rows.rgbToLuma(c.r.data(), c.g.data(), c.b.data(), y.data(), 256);
    rows.rgbToHalves(c.r.data(), c.g.data(), c.b.data(), uv.data(), uv.data() + 128, 256);
    rows.rgbToPairs(c.r.data(), c.g.data(), c.b.data(), pairs.data(), true, 256);
    c.b = pairs;
    c.r = y;
    c.g = uv;
  });
  // Even places above are even blues; these are the odd ones.
  expectSameOnEveryColor(1, [](const ToneRows& rows, Colors& c) {
    Ramp pairs;
    c.b = ramp(1);
    rows.rgbToPairs(c.r.data(), c.g.data(), c.b.data(), pairs.data(), false, 256);
    c.b = pairs;
  });
}

TEST_P(ToneRowsTest, SepiaAndEnrichedFormsOfEveryColor) {
  expectSameOnEveryColor(3, [](const ToneRows& rows, Colors& c) {
    rows.sortToSepia(c.r.data(), c.g.data(), c.b.data(), 256);
  });
  expectSameOnEveryColor(3, [](const ToneRows& rows, Colors& c) {
    rows.enrich(c.r.data(), c.g.data(), c.b.data(), 256);
  });
}

TEST_P(ToneRowsTest, LeaningOfEverySampleUnderEveryLight) {
  const Ramp light = ramp();
  Ramp expected, actual;
  for (int32_t weight = 0; weight < 256; weight += 3) {
    const Ramp up = constant(weight), down = constant(255 - weight);
    for (int32_t c = 0; c < 256; ++c) {
      const Ramp src = constant(c);
      plainTone().lean(src.data(), light.data(), up.data(), down.data(), expected.data(), 256);
      vectorTone().lean(src.data(), light.data(), up.data(), down.data(), actual.data(), 256);
      ASSERT_EQ(actual, expected) << "sample " << c << ", weight " << weight;
    }
  }
}

TEST_P(ToneRowsTest, OverlayOfEveryPair) {
  const Ramp tone = ramp();
  Ramp expected, actual;
  for (int32_t c = 0; c < 256; ++c) {
    const Ramp src = constant(c);
    plainTone().overlay(src.data(), tone.data(), expected.data(), 256);
    vectorTone().overlay(src.data(), tone.data(), actual.data(), 256);
    ASSERT_EQ(actual, expected) << "sample " << c;
  }
}

TEST_P(ToneRowsTest, TexelsOverEverySample) {
  const Ramp texels = ramp();
  Ramp expected, actual;
  for (const int32_t share : {0, 1, 307, 410, 1023, 1024}) {
    for (int32_t c = 0; c < 256; ++c) {
      const Ramp src = constant(c);
      for (int32_t weight = 0; weight < 256; weight += 17) {
        const Ramp darker = constant(weight), lighter = constant(255 - weight);
        plainTone().layTexels(src.data(), texels.data(), darker.data(), lighter.data(),
                              expected.data(), 256, share);
        vectorTone().layTexels(src.data(), texels.data(), darker.data(), lighter.data(),
                               actual.data(), 256, share);
        ASSERT_EQ(actual, expected) << "sample " << c << ", weight " << weight << ", " << share;
      }
    }
  }
}

// By hand: 100 under texel 0 is 255 * 200 / 1024 = 49.8 + 510 / 1024 lower, under texel 255 25.4 +
// 510 / 1024 higher; 307 of 1024 parts of the way to 50 is 15.0 short of 100, floored.
TEST_P(ToneRowsTest, TexelsDarkenBelowTheMiddleAndLightenAbove) {
  const Ramp src = constant(100), darker = constant(200), lighter = constant(102);
  Ramp texels = constant(0), laid;
  texels[1] = 255;
  texels[2] = 127;
  texels[3] = 128;
  vectorTone().layTexels(src.data(), texels.data(), darker.data(), lighter.data(), laid.data(), 256,
                         1024);
  EXPECT_EQ(laid[0], 50);
  EXPECT_EQ(laid[1], 125);
  EXPECT_EQ(laid[2], 100);
  EXPECT_EQ(laid[3], 100);
  vectorTone().layTexels(src.data(), texels.data(), darker.data(), lighter.data(), laid.data(), 256,
                         307);
  EXPECT_EQ(laid[0], 85);   // (100 * 717 + 50 * 307) >> 10 = 85.009
  EXPECT_EQ(laid[1], 107);  // (100 * 717 + 125 * 307) >> 10 = 107.49
}

TEST_P(ToneRowsTest, MixByPercentOfEveryPair) {
  const Ramp base = ramp();
  Ramp expected, actual;
  for (int32_t percent = -3; percent <= 103; ++percent) {
    for (int32_t c = 0; c < 256; ++c) {
      const Ramp top = constant(c);
      vectorTone().mixPercent(base.data(), top.data(), actual.data(), 256, percent);
      for (int32_t b = 0; b < 256; ++b) {
        const int32_t mixed = ((percent * c + (100 - percent) * b) * 327) >> 15;
        expected[static_cast<size_t>(b)] = static_cast<uint8_t>(std::clamp(mixed, 0, 255));
      }
      ASSERT_EQ(actual, expected) << "top " << c << ", percent " << percent;
    }
  }
  for (const int32_t percent : {INT32_MIN, -1000000, 1000000, INT32_MAX}) {
    const Ramp top = constant(100);
    vectorTone().mixPercent(base.data(), top.data(), actual.data(), 256, percent);
    EXPECT_EQ(actual[99], percent > 0 ? 255 : 0);
    EXPECT_EQ(actual[101], percent > 0 ? 0 : 255);
    EXPECT_EQ(actual[100], 99) << "of two equal samples, whatever the percent";
  }
}

// Every row on every count, unaligned, between bytes that must stay: up to three inputs in
// in[0..2], up to three outputs in out[0..2].
using Call = void (*)(const ToneRows& rows, uint8_t* const* in, uint8_t* const* out,
                      ptrdiff_t count);

struct Shape {
  const char* name;
  Call call;
  ptrdiff_t (*inputBytes)(ptrdiff_t count);
  ptrdiff_t (*outputBytes)(ptrdiff_t count);
  int32_t outputs;
};

ptrdiff_t each(ptrdiff_t count) { return count; }
ptrdiff_t half(ptrdiff_t count) { return (count + 1) / 2; }
ptrdiff_t pairs(ptrdiff_t count) { return (count + 1) / 2 * 2; }

void copyTo(uint8_t* const* in, uint8_t* const* out, ptrdiff_t count) {
  for (int k = 0; k < 3; ++k) std::copy_n(in[k], count, out[k]);
}

using In = uint8_t* const*;
using Out = uint8_t* const*;

constexpr Shape kShapes[] = {
    {"halvesToRgb",
     [](const ToneRows& rows, In in, Out out, ptrdiff_t n) {
       // Rows of chroma are half as long as those of luma: the ends of their blocks.
       const ptrdiff_t rest = n - (n + 1) / 2;
       rows.halvesToRgb(in[0], in[1] + rest, in[2] + rest, out[0], out[1], out[2], n);
     },
     each, each, 3},
    {"pairsToRgb, V first",
     [](const ToneRows& rows, In in, Out out, ptrdiff_t n) {
       rows.pairsToRgb(in[0], in[1], true, out[0], out[1], out[2], n);
     },
     pairs, each, 3},
    {"pairsToRgb, U first",
     [](const ToneRows& rows, In in, Out out, ptrdiff_t n) {
       rows.pairsToRgb(in[0], in[1], false, out[0], out[1], out[2], n);
     },
     pairs, each, 3},
    {"rgbToLuma",
     [](const ToneRows& rows, In in, Out out, ptrdiff_t n) {
       rows.rgbToLuma(in[0], in[1], in[2], out[0], n);
     },
     each, each, 1},
    {"rgbToHalves",
     [](const ToneRows& rows, In in, Out out, ptrdiff_t n) {
       rows.rgbToHalves(in[0], in[1], in[2], out[0], out[1], n);
     },
     each, half, 2},
    {"rgbToPairs, V first",
     [](const ToneRows& rows, In in, Out out, ptrdiff_t n) {
       rows.rgbToPairs(in[0], in[1], in[2], out[0], true, n);
     },
     each, pairs, 1},
    {"rgbToPairs, U first",
     [](const ToneRows& rows, In in, Out out, ptrdiff_t n) {
       rows.rgbToPairs(in[0], in[1], in[2], out[0], false, n);
     },
     each, pairs, 1},
    {"sortToSepia",
     [](const ToneRows& rows, In in, Out out, ptrdiff_t n) {
       copyTo(in, out, n);
       rows.sortToSepia(out[0], out[1], out[2], n);
     },
     each, each, 3},
    {"lean in place",
     [](const ToneRows& rows, In in, Out out, ptrdiff_t n) {
       copyTo(in, out, n);
       rows.lean(out[0], out[1], out[2], out[1], out[0], n);
     },
     each, each, 3},
    {"overlay in place",
     [](const ToneRows& rows, In in, Out out, ptrdiff_t n) {
       copyTo(in, out, n);
       rows.overlay(out[0], out[1], out[0], n);
     },
     each, each, 3},
    {"layTexels",
     [](const ToneRows& rows, In in, Out out, ptrdiff_t n) {
       rows.layTexels(in[0], in[1], in[2], in[0], out[0], n, 410);
     },
     each, each, 1},
    {"layTexels in place",
     [](const ToneRows& rows, In in, Out out, ptrdiff_t n) {
       copyTo(in, out, n);
       rows.layTexels(out[0], out[1], out[2], out[1], out[0], n, 307);
     },
     each, each, 3},
    {"mixPercent in place",
     [](const ToneRows& rows, In in, Out out, ptrdiff_t n) {
       copyTo(in, out, n);
       rows.mixPercent(out[0], out[1], out[0], n, 68);
     },
     each, each, 3},
    {"mixPercent beyond its range",
     [](const ToneRows& rows, In in, Out out, ptrdiff_t n) {
       rows.mixPercent(in[0], in[1], out[0], n, 268);
     },
     each, each, 1},
    {"enrich",
     [](const ToneRows& rows, In in, Out out, ptrdiff_t n) {
       copyTo(in, out, n);
       rows.enrich(out[0], out[1], out[2], n);
     },
     each, each, 3},
};

constexpr size_t kGuard = 67;

// Blocks of just the bytes that a row may read, so that the address sanitizer sees more.
struct Blocks {
  Blocks(ptrdiff_t bytes, size_t offset, uint32_t seed) {
    for (size_t k = 0; k < 3; ++k) {
      blocks[k].resize(offset + static_cast<size_t>(bytes));
      for (size_t i = 0; i < blocks[k].size(); ++i) {
        blocks[k][i] = noise(static_cast<uint32_t>(i), seed + static_cast<uint32_t>(k));
      }
      rows[k] = blocks[k].data() + offset;
    }
  }

  std::array<std::vector<uint8_t>, 3> blocks;
  uint8_t* rows[3];
};

TEST_P(ToneRowsTest, EveryCountAndAlignmentGivesThePlainBytesAndNoOthers) {
  for (const Shape& shape : kShapes) {
    for (ptrdiff_t count = 0; count <= 200; ++count) {
      const size_t offset = static_cast<size_t>(count) % 5;
      Blocks in(shape.inputBytes(count), offset, 7);
      const ptrdiff_t outBytes = shape.outputBytes(count) + ptrdiff_t{kGuard};
      Blocks expected(outBytes, offset + kGuard, 90);
      Blocks actual(outBytes, offset + kGuard, 90);
      shape.call(plainTone(), in.rows, expected.rows, count);
      shape.call(vectorTone(), in.rows, actual.rows, count);
      for (size_t k = 0; k < 3; ++k) {
        ASSERT_EQ(actual.blocks[k], expected.blocks[k])
            << shape.name << ", count " << count << ", output " << k;
      }
      const Blocks untouched(outBytes, offset + kGuard, 90);
      for (size_t k = 0; k < 3; ++k) {
        const ptrdiff_t made =
            static_cast<int32_t>(k) < shape.outputs ? shape.outputBytes(count) : 0;
        const size_t start = offset + kGuard;
        const size_t end = start + static_cast<size_t>(made);
        const auto& now = actual.blocks[k];
        const auto& then = untouched.blocks[k];
        ASSERT_TRUE(
            std::equal(now.begin(), now.begin() + static_cast<ptrdiff_t>(start), then.begin()))
            << shape.name << " writes before its row";
        ASSERT_TRUE(std::equal(now.begin() + static_cast<ptrdiff_t>(end), now.end(),
                               then.begin() + static_cast<ptrdiff_t>(end)))
            << shape.name << " writes behind its row, count " << count;
      }
    }
  }
}

// By hand: y 100, u 90, v 180 is 100 + 72.92, 100 + 13.06 - 37.12, 100 - 67.35.
TEST(PlainToneRows, ConversionRoundsInAndCutsBack) {
  const uint8_t y[] = {100, 101, 100}, u[] = {90, 128}, v[] = {180, 128};
  uint8_t r[3], g[3], b[3], back[3], us[2], vs[2];
  plainForm<ToneRows>().halvesToRgb(y, u, v, r, g, b, 3);
  EXPECT_EQ(std::vector<uint8_t>(r, r + 3), (std::vector<uint8_t>{173, 174, 100}));
  EXPECT_EQ(std::vector<uint8_t>(g, g + 3), (std::vector<uint8_t>{76, 77, 100}));
  EXPECT_EQ(std::vector<uint8_t>(b, b + 3), (std::vector<uint8_t>{33, 34, 100}));
  plainForm<ToneRows>().rgbToLuma(r, g, b, back, 3);
  EXPECT_EQ(back[0], 100);  // 51.70 + 44.60 + 3.77 = 100.07
  plainForm<ToneRows>().rgbToHalves(r, g, b, us, vs, 3);
  EXPECT_EQ(us[0], 90);   // -29.23 - 25.16 + 16.5 = -37.89, cut to -38
  EXPECT_EQ(vs[0], 180);  // 86.5 - 31.77 - 2.67 = 52.06, cut to 52
  EXPECT_EQ(us[1], 128);
  EXPECT_EQ(vs[1], 128);
}

TEST(PlainToneRows, PairsComeAndGoInBothOrders) {
  const uint8_t y[] = {100, 101}, vu[] = {180, 90}, uv[] = {90, 180};
  for (const bool vFirst : {true, false}) {
    uint8_t r[2], g[2], b[2], pairs[2];
    plainForm<ToneRows>().pairsToRgb(y, vFirst ? vu : uv, vFirst, r, g, b, 2);
    EXPECT_EQ(r[0], 173);
    EXPECT_EQ(b[1], 34);
    plainForm<ToneRows>().rgbToPairs(r, g, b, pairs, vFirst, 2);
    EXPECT_EQ(pairs[0], vFirst ? 180 : 90);
    EXPECT_EQ(pairs[1], vFirst ? 90 : 180);
  }
}

}  // namespace
}  // namespace qpx::simd
