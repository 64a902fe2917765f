// Roads for whole rows and rows of several runs: pictures that are moved, halved or wider than a
// run.
#include <gtest/gtest.h>

#include <utility>

#include "convert/kernels/frames.h"
#include "convert/kernels/kernel_run.h"
#include "support/failing_memory.h"

namespace qpx::testing {
namespace {

constexpr uint32_t kYuv[] = {
    QPX_FORMAT_GREY8, QPX_FORMAT_I420, QPX_FORMAT_I422, QPX_FORMAT_I440, QPX_FORMAT_I444,
    0x50000A11,       QPX_FORMAT_NV21, QPX_FORMAT_NV12, 0x70000004,      QPX_FORMAT_YUYV,
    QPX_FORMAT_YVYU,  QPX_FORMAT_UYVY, QPX_FORMAT_VYUY,
};

// Any origins and, now and then, a clip.
void place(Random& random, Conversion* c) {
  for (int32_t* origin : {&c->params.srcX, &c->params.srcY, &c->params.dstX, &c->params.dstY}) {
    *origin = random.between(0, 2) == 0 ? random.between(1, 5) : 0;
  }
  if (random.between(0, 4) != 0) return;
  const MRect source = {c->params.srcX, c->params.srcY, c->params.srcX + c->srcWidth,
                        c->params.srcY + c->srcHeight};
  const MRect clip = partOf(source, 1, random);
  c->params.clipLeft = clip.left;
  c->params.clipTop = clip.top;
  c->params.clipRight = clip.right;
  c->params.clipBottom = clip.bottom;
}

void expectGeneral(const Conversion& c, Random& random, uint64_t seed) {
  const MRect rect = random.between(0, 1) == 0 ? c.rect() : partOf(c.rect(), 1, random);
  ASSERT_TRUE(equalsGeneral(c, rect, convert::convertByRows, seed)) << describe(c, rect);
}

TEST(ConvertWholeRows, MovesEqualTheGeneralPath) {
  Random random(81);
  uint64_t seed = 0;
  for (const uint32_t from : kYuv) {
    for (const uint32_t to : kYuv) {
      for (int32_t i = 0; i < 6; ++i) {
        const int32_t width = random.between(1, 330), height = random.between(1, 6);
        Conversion c = {from, to, width, height, width, height, {}};
        c.params.orient = random.between(0, 3) == 0 ? 4 : 0;
        if (i > 1) place(random, &c);
        ASSERT_NO_FATAL_FAILURE(expectGeneral(c, random, ++seed));
      }
    }
  }
}

TEST(ConvertWholeRows, HalvesEqualTheGeneralPath) {
  Random random(82);
  uint64_t seed = 500;
  for (const uint32_t from :
       {uint32_t{QPX_FORMAT_RGBA32}, uint32_t{QPX_FORMAT_BGRA32}, uint32_t{QPX_FORMAT_BGR24},
        uint32_t{QPX_FORMAT_GREY8}, uint32_t{QPX_FORMAT_I420}, uint32_t{QPX_FORMAT_I422},
        uint32_t{QPX_FORMAT_I440}, uint32_t{QPX_FORMAT_I444}, uint32_t{QPX_FORMAT_NV21},
        uint32_t{QPX_FORMAT_YUYV}}) {
    const uint32_t other = from == QPX_FORMAT_I420 ? 0x50000A11 : uint32_t{QPX_FORMAT_GREY8};
    for (int32_t i = 0; i < 20; ++i) {
      const int32_t width = random.between(1, 330), height = random.between(1, 6);
      Conversion c = {from, i % 4 == 0 ? other : from, 2 * width, 2 * height, width, height, {}};
      c.params.interp = i % 5 == 4 ? 1 : 2;
      c.params.orient = i % 3 == 0 ? static_cast<uint32_t>(random.between(0, 7)) : 0;
      if (c.turns()) std::swap(c.dstWidth, c.dstHeight);
      if (i > 3) place(random, &c);
      ASSERT_NO_FATAL_FAILURE(expectGeneral(c, random, ++seed));
    }
  }
}

// Chroma of half the columns has a sample for each pixel of half the size.
TEST(ConvertWholeRows, HalvesToRgbEqualTheGeneralPath) {
  Random random(85);
  uint64_t seed = 1200;
  for (const uint32_t from :
       {uint32_t{QPX_FORMAT_NV21}, uint32_t{QPX_FORMAT_NV12}, uint32_t{QPX_FORMAT_I420},
        uint32_t{0x70000004}, uint32_t{QPX_FORMAT_I422}, uint32_t{QPX_FORMAT_I440},
        uint32_t{QPX_FORMAT_I444}, uint32_t{QPX_FORMAT_YUYV}, uint32_t{QPX_FORMAT_GREY8}}) {
    for (const uint32_t to :
         {uint32_t{QPX_FORMAT_BGR24}, uint32_t{QPX_FORMAT_RGBA32}, uint32_t{QPX_FORMAT_RGB565}}) {
      for (int32_t i = 0; i < 8; ++i) {
        const int32_t width = random.between(1, i == 0 ? 4500 : 330), height = random.between(1, 6);
        Conversion c = {from, to, 2 * width, 2 * height, width, height, {}};
        c.params.interp = i % 5 == 4 ? 1 : 2;
        c.params.orient = i % 3 == 2 ? static_cast<uint32_t>(random.between(0, 7)) : 0;
        if (c.turns()) std::swap(c.dstWidth, c.dstHeight);
        if (i > 3) place(random, &c);
        ASSERT_NO_FATAL_FAILURE(expectGeneral(c, random, ++seed));
      }
    }
  }
}

Conversion wideConversion(uint32_t from, uint32_t to, Random& random) {
  Conversion c = {from,
                  to,
                  random.between(200, 4000),
                  random.between(1, 9),
                  random.between(500, 1700),
                  random.between(1, 9),
                  {}};
  c.params.interp = random.between(0, 3) == 0 ? 1 : 2;
  c.params.orient = random.between(0, 2) == 0 ? 6 : 0;
  return c;
}

// The slowest of the tests here: pictures of several runs.
TEST(ConvertWholeRows, RowsOfSeveralRunsEqualTheGeneralPath) {
  Random random(83);
  uint64_t seed = 900;
  for (const uint32_t from :
       {uint32_t{QPX_FORMAT_RGBA32}, uint32_t{QPX_FORMAT_RGB24}, uint32_t{QPX_FORMAT_RGB565},
        uint32_t{QPX_FORMAT_I420}, uint32_t{QPX_FORMAT_NV21}, uint32_t{QPX_FORMAT_UYVY}}) {
    for (const uint32_t to :
         {uint32_t{QPX_FORMAT_RGBA32}, uint32_t{QPX_FORMAT_BGR24}, uint32_t{QPX_FORMAT_I420},
          uint32_t{QPX_FORMAT_NV12}, uint32_t{QPX_FORMAT_YUYV}}) {
      for (int32_t i = 0; i < 3; ++i) {
        Conversion c = wideConversion(from, to, random);
        if (i > 0) place(random, &c);
        ASSERT_NO_FATAL_FAILURE(expectGeneral(c, random, ++seed));
      }
    }
  }
}

TEST(ConvertWholeRows, RowsOfSeveralRunsAllocateNothing) {
  Random random(84);
  const Conversion c = wideConversion(QPX_FORMAT_RGBA32, QPX_FORMAT_NV21, random);
  const Converter converter(c);
  const ConversionPicture src(c.from, c.srcWidth, c.srcHeight, 1);
  ConversionPicture made(c.to, c.dstWidth, c.dstHeight, 2);
  FailingMemory::failFrom(1);
  EXPECT_EQ(QPX_OK, converter.run(src, c.rect(), convert::convertByRows, &made));
  EXPECT_EQ(0, FailingMemory::failures());
  FailingMemory::reset();
}

}  // namespace
}  // namespace qpx::testing
