// Bilinear kernels over parts of pictures that begin anywhere, clipped and in strips.
#include "convert/wide/wide_conversion.h"
#include "support/picture.h"

namespace qpx::testing {
namespace {

struct Pair {
  uint32_t from, to, orient;
};

constexpr Pair kPairs[] = {{kNv21, kI420, 0},   {kI420, kNv21, 0},  {kI422H, kNv21, 0},
                           {kI422V, kNv21, 0},  {kI444, kNv21, 0},  {kBgra32, kI420, 0},
                           {kBgra32, kNv21, 0}, {kNv21, kBgra32, 3}};

struct Case {
  Pair pair;
  Size src, dst;
  ConvParams params;
  MRect rect;
};

// A whole number of blocks, from any.
void cutBlocks(int32_t blocks, Random& random, int32_t origin, int32_t* low, int32_t* high) {
  const int32_t begin = random.between(0, blocks - 1);
  *low = origin + 4 * begin;
  *high = origin + 4 * random.between(begin + 1, blocks);
}

Case anyCase(const Pair& pair, Random& random) {
  Case c = {pair, {}, {}, blocksOf4(2, pair.orient), {}};
  c.src = {random.between(2, 90), random.between(2, 90)};
  c.dst = {4 * random.between(1, 30), 4 * random.between(1, 30)};
  if (c.src.width == c.dst.width) ++c.src.width;
  if (c.src.width == c.dst.height) ++c.src.height;
  ConvParams& params = c.params;
  params.srcX = random.between(0, 7);
  params.srcY = random.between(0, 7);
  params.dstX = 4 * random.between(0, 3);
  params.dstY = 4 * random.between(0, 3);
  if (random.between(0, 1) == 0) {
    params.clipLeft = params.srcX + random.between(0, c.src.width - 1);
    params.clipTop = params.srcY + random.between(0, c.src.height - 1);
    params.clipRight = random.between(params.clipLeft + 1, params.srcX + c.src.width);
    params.clipBottom = random.between(params.clipTop + 1, params.srcY + c.src.height);
  }
  cutBlocks(c.dst.width / 4, random, params.dstX, &c.rect.left, &c.rect.right);
  cutBlocks(c.dst.height / 4, random, params.dstY, &c.rect.top, &c.rect.bottom);
  return c;
}

void storeYuv(const Yuv& yuv, int32_t x, int32_t y, ConversionPicture* picture) {
  sample(picture, 0, x, y) = static_cast<uint8_t>(yuv.y);
  if ((x | y) % 2 != 0) return;
  sample(picture, 1, x, y) = static_cast<uint8_t>(yuv.u);
  sample(picture, 2, x, y) = static_cast<uint8_t>(yuv.v);
}

void storeByFormulas(const Case& c, const Resampled& r, int32_t x, int32_t y,
                     ConversionPicture* expected) {
  if (c.pair.orient == 3) {
    // Turned clockwise: columns of the frame run down, rows from right to left.
    const int32_t row = c.params.dstX + (c.dst.width - 1 - (x - c.params.dstX));
    const Yuv yuv = {r.luma(y, row), r.chroma(1, y, row), r.chroma(2, y, row)};
    storeRgb(sixBits(yuv), 77, pixelAt(expected, x, y), kBgra32);
  } else if (c.pair.from == kBgra32) {
    storeYuv(yuvOf(r.channel(0, x, y), r.channel(1, x, y), r.channel(2, x, y)), x, y, expected);
  } else {
    storeYuv({r.luma(x, y), r.chroma(1, x, y), r.chroma(2, x, y)}, x, y, expected);
  }
}

void expectByFormulas(const Case& c) {
  Resampled r = {{c.pair.from, c.src, c.pair.to, c.dst, c.params}};
  ASSERT_EQ(QPX_OK, r.conversion.built());
  ConversionPicture expected = *r.conversion.dst();
  for (int32_t y = c.rect.top; y < c.rect.bottom; ++y) {
    for (int32_t x = c.rect.left; x < c.rect.right; ++x) storeByFormulas(c, r, x, y, &expected);
  }
  ASSERT_EQ(QPX_OK, r.conversion.run(PUZUMPE_ALL, c.rect));
  ASSERT_TRUE(expected.sameBytes(*r.conversion.dst()))
      << std::hex << c.pair.from << " to " << c.pair.to << std::dec << ", " << c.src.width << "x"
      << c.src.height << " at " << c.params.srcX << " " << c.params.srcY << " to " << c.dst.width
      << "x" << c.dst.height << " at " << c.params.dstX << " " << c.params.dstY << ", clip "
      << c.params.clipLeft << " " << c.params.clipTop << " " << c.params.clipRight << " "
      << c.params.clipBottom << ", rectangle " << c.rect.left << " " << c.rect.top << " "
      << c.rect.right << " " << c.rect.bottom;
}

TEST(WideParts, OfAnyClipOriginAndSizeByTheirFormulas) {
  Random random(57);
  for (const Pair& pair : kPairs) {
    for (int32_t i = 0; i < 40; ++i) {
      expectByFormulas(anyCase(pair, random));
      if (::testing::Test::HasFatalFailure()) return;
    }
  }
}

// Higher than a strip of a turned picture, and wider than a run.
TEST(WideParts, OfManyStripsAndRunsByTheirFormulas) {
  for (const Pair& pair : kPairs) {
    Case c = {pair, {70, 50}, {600, 8}, blocksOf4(2, pair.orient), {8, 4, 596, 8}};
    if (pair.orient == 3) c.dst = {8, 300}, c.rect = {4, 8, 8, 296};
    expectByFormulas(c);
  }
}

}  // namespace
}  // namespace qpx::testing
