// The quick turns of I420, by their own rules: what they refuse, and where their pixels come from.
#include <gtest/gtest.h>

#include "convert/kernels/kernel_run.h"

namespace qpx::testing {
namespace {

struct QuickTurn {
  const char* name;
  ConvFrameFunction function;
  uint32_t to;
  char sampling;  // 'u'nit, 'n'earest, 'b'ilinear
  uint32_t orient;
};

constexpr QuickTurn kTurns[] = {
    {"MCC_I420_Bilinear", MCC_I420_Bilinear, QPX_FORMAT_I420, 'b', 0},
    {"MCC_I420_Bilinear_90", MCC_I420_Bilinear_90, QPX_FORMAT_I420, 'b', 3},
    {"MCC_I420_Bilinear_270", MCC_I420_Bilinear_270, QPX_FORMAT_I420, 'b', 5},
    {"MCC_I420_NV12_Resample", MCC_I420_NV12_Resample, QPX_FORMAT_NV12, 'n', 0},
    {"MCC_I420_NV12_Resample_90", MCC_I420_NV12_Resample_90, QPX_FORMAT_NV12, 'n', 3},
    {"MCC_I420_NV12_Resample_270", MCC_I420_NV12_Resample_270, QPX_FORMAT_NV12, 'n', 5},
    {"MCC_I420_NV12_NoResample", MCC_I420_NV12_NoResample, QPX_FORMAT_NV12, 'u', 0},
    {"MCC_I420_NV21_NoResampleRotate, 90", MCC_I420_NV21_NoResampleRotate, QPX_FORMAT_NV21, 'u', 3},
    {"MCC_I420_NV21_NoResampleRotate, 270", MCC_I420_NV21_NoResampleRotate, QPX_FORMAT_NV21, 'u',
     5},
};

int64_t floorOf(int64_t a, int64_t b) { return a >= 0 ? a / b : -((-a + b - 1) / b); }

// A place between two source rows or columns.
struct Place {
  int64_t first, next, fraction;
};

// One axis of a conversion. `origin` and `size` are those of the source, `low` and `high` those of
// its clip.
struct Axis {
  char sampling;
  int64_t step, origin, size, low, high;

  int64_t positionOf(int64_t at) const {
    if (sampling != 'b') return origin * 65536 + step * at;
    return origin * 65536 - 32768 + step * (at + 1) - step / 2;
  }
  Place between(int64_t position) const {
    const int64_t whole = floorOf(position, 65536);
    const int64_t fraction = sampling == 'b' ? position - whole * 65536 : 0;
    return {whole, fraction != 0 ? whole + 1 : whole, fraction};
  }
  Place column(int64_t x) const {
    const auto behind = [this](int64_t at) {
      return floorOf(step / 2 + 32768 + (at - origin) * 65536, step);
    };
    if (x < behind(low)) return {low, low, 0};
    if (x >= behind(high - 1)) return {high - 1, high - 1, 0};
    return between(positionOf(x));
  }
  Place row(int64_t y) const {
    const int64_t position = positionOf(y);
    if (sampling == 'b') {
      const int64_t row = floorOf(position, 65536) - origin;
      if (row < 0) return {origin, origin, 0};
      if (row >= size - 1) return {origin + size - 1, origin + size - 1, 0};
      return between(position);
    }
    if (position < low) return {low, low, 0};
    if (position / 65536 >= high - 1) return {high - 1, high - 1, 0};
    return between(position);
  }
};

Axis axisOf(char sampling, int32_t from, int32_t to, int32_t origin, int32_t low, int32_t high) {
  const int64_t step =
      sampling == 'u' ? 65536 : static_cast<int64_t>(static_cast<double>(from) / to * 65536);
  const bool clipped = high != 0;
  return {sampling, step, origin, from, clipped ? low : origin, clipped ? high : origin + from};
}

uint8_t sampleAt(const ConversionPicture& picture, int32_t plane, int64_t x, int64_t y) {
  return picture.planes()[plane][picture.pitches()[plane] * y + x];
}

int64_t mixed(int64_t a, int64_t b, int64_t fraction) {
  return floorOf(a * 65536 + fraction * (b - a), 65536);
}

// As the source lies, the last pixel of a cell of chroma winning.
void turnByHand(const QuickTurn& turn, const Conversion& c, const ConversionPicture& src,
                ConversionPicture* dst) {
  const ConvParams& p = c.params;
  const bool turns = turn.orient != 0;
  const int32_t width = turns ? c.dstHeight : c.dstWidth;
  const int32_t height = turns ? c.dstWidth : c.dstHeight;
  const Axis across = axisOf(turn.sampling, c.srcWidth, width, p.srcX, p.clipLeft, p.clipRight);
  const Axis down = axisOf(turn.sampling, c.srcHeight, height, p.srcY, p.clipTop, p.clipBottom);
  const int32_t step = turn.to == QPX_FORMAT_I420 ? 1 : 2;
  for (int32_t y = 0; y < height; ++y) {
    for (int32_t x = 0; x < width; ++x) {
      const Place column = across.column(x), row = down.row(y);
      const int64_t top = mixed(sampleAt(src, 0, column.first, row.first),
                                sampleAt(src, 0, column.next, row.first), column.fraction);
      const int64_t bottom = mixed(sampleAt(src, 0, column.first, row.next),
                                   sampleAt(src, 0, column.next, row.next), column.fraction);
      int32_t toX = p.dstX + x, toY = p.dstY + y;
      if (turn.orient == 3) toX = p.dstX + height - 1 - y, toY = p.dstY + x;
      if (turn.orient == 5) toX = p.dstX + y, toY = p.dstY + width - 1 - x;
      dst->planes()[0][ptrdiff_t{dst->pitches()[0]} * toY + toX] =
          static_cast<uint8_t>(mixed(top, bottom, row.fraction));
      for (int32_t plane = 1; plane < 3; ++plane) {
        dst->planes()[plane][ptrdiff_t{dst->pitches()[plane]} * (toY / 2) + toX / 2 * step] =
            sampleAt(src, plane, column.first / 2, row.first / 2);
      }
    }
  }
}

Conversion anyTurn(const QuickTurn& turn, Random& random) {
  Conversion c = {QPX_FORMAT_I420, turn.to, 0, 0, 0, 0, {}};
  c.srcWidth = random.between(2, 70);
  c.srcHeight = random.between(2, 70);
  c.dstWidth = 4 * random.between(1, 18);
  c.dstHeight = 4 * random.between(1, 18);
  c.params.orient = turn.orient;
  c.params.blockMode = 3;
  // What is asked for does not matter.
  c.params.interp = static_cast<uint32_t>(random.between(1, 2));
  for (int32_t* origin : {&c.params.srcX, &c.params.srcY}) *origin = random.between(0, 9);
  for (int32_t* origin : {&c.params.dstX, &c.params.dstY}) *origin = 2 * random.between(0, 3);
  return c;
}

void clipInside(Conversion* c, Random& random) {
  const MRect clip = partOf(
      {c->params.srcX, c->params.srcY, c->params.srcX + c->srcWidth, c->params.srcY + c->srcHeight},
      1, random);
  c->params.clipLeft = clip.left;
  c->params.clipTop = clip.top;
  c->params.clipRight = clip.right;
  c->params.clipBottom = clip.bottom;
}

void expectByHand(const QuickTurn& turn, const Conversion& c, uint64_t seed) {
  const Converter converter(c);
  ASSERT_EQ(QPX_OK, converter.result);
  const ConversionPicture src(c.from, c.params.srcX + c.srcWidth, c.params.srcY + c.srcHeight,
                              seed);
  ConversionPicture dst(c.to, c.params.dstX + c.dstWidth, c.params.dstY + c.dstHeight, seed + 1);
  ConversionPicture expected = dst;
  turnByHand(turn, c, src, &expected);
  ASSERT_EQ(QPX_OK, converter.runAtOnce(src, c.rect(), turn.function, &dst));
  ASSERT_TRUE(dst.sameBytes(expected)) << turn.name << ": " << describe(c, c.rect());
}

TEST(QuickTurns, ResampleByTheirNamesAndHoldTheirRowsToTheSource) {
  Random random(21);
  uint64_t seed = 1;
  for (const QuickTurn& turn : kTurns) {
    for (int32_t i = 0; i < 40; ++i) {
      Conversion c = anyTurn(turn, random);
      if (i % 2 != 0) clipInside(&c, random);
      expectByHand(turn, c, seed += 2);
      if (::testing::Test::HasFatalFailure()) return;
    }
  }
}

// Twice as high: rows lie a quarter before and behind those of the source.
TEST(QuickTurns, BilinearRowsByHand) {
  Conversion c = {QPX_FORMAT_I420, QPX_FORMAT_I420, 4, 4, 4, 8, {}};
  c.params.interp = 2;
  c.params.blockMode = 3;
  c.params.srcY = 2;
  c.params.clipTop = 4;
  c.params.clipRight = 4;
  c.params.clipBottom = 5;
  ConversionPicture src(c.from, 4, 6, 1);
  for (int32_t y = 0; y < 6; ++y) {
    for (int32_t x = 0; x < 4; ++x) {
      src.planes()[0][ptrdiff_t{src.pitches()[0]} * y + x] = static_cast<uint8_t>(40 * y);
    }
  }
  ConversionPicture dst(c.to, 4, 8, 2);
  ASSERT_EQ(QPX_OK, Converter(c).run(src, c.rect(), MCC_I420_Bilinear, &dst));
  constexpr uint8_t kRows[8] = {80, 90, 110, 130, 150, 170, 190, 200};
  for (int32_t y = 0; y < 8; ++y) {
    EXPECT_EQ(kRows[y], dst.planes()[0][ptrdiff_t{dst.pitches()[0]} * y + 1]) << y;
  }
}

// The four things that they look at, and no others.
TEST(QuickTurns, Refuse) {
  Random random(22);
  const auto refuses = [](const QuickTurn& turn, const Conversion& c) {
    const Converter converter(c);
    const ConversionPicture src(c.from, c.params.srcX + c.srcWidth, c.params.srcY + c.srcHeight, 5);
    ConversionPicture dst(c.to, c.params.dstX + c.dstWidth, c.params.dstY + c.dstHeight, 6);
    const ConversionPicture before = dst;
    EXPECT_EQ(QPX_UNSUPPORTED, converter.runAtOnce(src, c.rect(), turn.function, &dst))
        << turn.name << ": " << describe(c, c.rect());
    EXPECT_TRUE(dst.sameBytes(before)) << turn.name;
  };
  for (const QuickTurn& turn : kTurns) {
    const Conversion good = anyTurn(turn, random);
    const bool eitherWay = turn.function == MCC_I420_NV21_NoResampleRotate;
    for (uint32_t orient = 0; orient < 8; ++orient) {
      Conversion c = good;
      c.params.orient = orient;
      if (orient != turn.orient && !(eitherWay && (orient == 3 || orient == 5))) refuses(turn, c);
    }
    for (const uint32_t mode : {0u, 1u, 2u}) {
      Conversion c = good;
      c.params.blockMode = mode;
      refuses(turn, c);
    }
    for (const uint32_t from : {0x50000A11u, uint32_t{QPX_FORMAT_NV12}, 0x50000810u}) {
      Conversion c = good;
      c.from = from;
      refuses(turn, c);
    }
    for (const uint32_t to : {uint32_t{QPX_FORMAT_I420}, uint32_t{QPX_FORMAT_NV12},
                              uint32_t{QPX_FORMAT_NV21}, 0x50000A11u}) {
      Conversion c = good;
      c.to = to;
      if (to != turn.to) refuses(turn, c);
    }
  }
}

TEST(QuickTurns, ConvertThroughColourTablesWhereTheyResample) {
  Random random(23);
  Conversion c = anyTurn(kTurns[3], random);
  c.params.brightness = 10;
  if (c.srcWidth == c.dstWidth) ++c.srcWidth;
  const ConversionPicture src(c.from, c.params.srcX + c.srcWidth, c.params.srcY + c.srcHeight, 5);
  ConversionPicture dst(c.to, c.params.dstX + c.dstWidth, c.params.dstY + c.dstHeight, 6);
  ConversionPicture expected = dst;
  c.params.interp = 1;
  ASSERT_EQ(QPX_OK, Converter(c).run(src, c.rect(), MCC_I420_NV12_Resample, &dst));
  ASSERT_EQ(QPX_OK, Converter(c).run(src, c.rect(), ANY_ANY_C_SLOW, &expected));
  EXPECT_TRUE(dst.sameBytes(expected));
}

}  // namespace
}  // namespace qpx::testing
