#include <gtest/gtest.h>

#include <utility>

#include "convert/kernels/kernel_run.h"

namespace qpx::testing {
namespace {

constexpr int32_t kWidth = 36;
constexpr int32_t kHeight = 20;

// Where a source sample of a plane of `width` by `height` goes.
std::pair<int32_t, int32_t> turned(int32_t orient, int32_t x, int32_t y, int32_t width,
                                   int32_t height) {
  switch (orient) {
    case 0:
      return {x, y};
    case 1:
      return {y, x};
    case 2:
      return {width - 1 - x, y};
    case 3:
      return {height - 1 - y, x};
    case 4:
      return {x, height - 1 - y};
    case 5:
      return {y, width - 1 - x};
    default:
      return {width - 1 - x, height - 1 - y};
  }
}

struct Shuffled {
  Shuffled(uint32_t from, uint32_t to, int32_t orient, const AnyKernel& kernel)
      : conversion{from, to, kWidth, kHeight, kWidth, kHeight, {}},
        src(from, kWidth, kHeight, 51),
        dst(to, orient % 2 == 0 ? kWidth : kHeight, orient % 2 == 0 ? kHeight : kWidth, 52) {
    conversion.dstWidth = dst.width();
    conversion.dstHeight = dst.height();
    conversion.params.orient = static_cast<uint32_t>(orient);
    conversion.params.blockMode = 3;
    const Converter converter(conversion);
    result = converter.run(src, conversion.rect(), kernel, &dst);
  }

  uint8_t from(int32_t plane, int32_t x, int32_t y) const {
    return src.planes()[plane][ptrdiff_t{src.pitches()[plane]} * y + x];
  }
  uint8_t to(int32_t plane, int32_t x, int32_t y) const {
    return dst.planes()[plane][ptrdiff_t{dst.pitches()[plane]} * y + x];
  }

  Conversion conversion;
  ConversionPicture src;
  ConversionPicture dst;
  int32_t result = 0;
};

void expectLuma(const Shuffled& s, int32_t orient) {
  for (int32_t y = 0; y < kHeight; ++y) {
    for (int32_t x = 0; x < kWidth; ++x) {
      const auto [toX, toY] = turned(orient, x, y, kWidth, kHeight);
      ASSERT_EQ(s.from(0, x, y), s.to(0, toX, toY)) << x << ", " << y << ", " << orient;
    }
  }
}

// Chroma of 4:2:0 on both sides, `stepFrom` and `stepTo` bytes from sample to sample.
void expectChroma(const Shuffled& s, int32_t orient, int32_t stepFrom, int32_t stepTo) {
  for (int32_t plane = 1; plane < 3; ++plane) {
    for (int32_t y = 0; y < kHeight / 2; ++y) {
      for (int32_t x = 0; x < kWidth / 2; ++x) {
        const auto [toX, toY] = turned(orient, x, y, kWidth / 2, kHeight / 2);
        ASSERT_EQ(s.from(plane, x * stepFrom, y), s.to(plane, toX * stepTo, toY))
            << x << ", " << y << ", plane " << plane << ", " << orient;
      }
    }
  }
}

void expectShuffle(uint32_t from, uint32_t to, int32_t orient, const AnyKernel& kernel) {
  const Shuffled s(from, to, orient, kernel);
  ASSERT_EQ(QPX_OK, s.result);
  expectLuma(s, orient);
  const auto step = [](uint32_t format) { return format >> 28 == 7 ? 2 : 1; };
  expectChroma(s, orient, step(from), step(to));
}

TEST(ConvertShuffles, TurnPairs) {
  for (const uint32_t from : {uint32_t{QPX_FORMAT_NV21}, uint32_t{QPX_FORMAT_NV12}}) {
    for (const uint32_t to : {uint32_t{QPX_FORMAT_NV21}, uint32_t{QPX_FORMAT_NV12}}) {
      expectShuffle(from, to, 0, NV21toNV21Fast_NORESAMPLE_R0_1x1);
      expectShuffle(from, to, 3, NV21toNV21Fast_NORESAMPLE_R90_4x4);
      expectShuffle(from, to, 6, NV21toNV21Fast_NORESAMPLE_R180_4x4);
      expectShuffle(from, to, 5, NV21toNV21Fast_NORESAMPLE_R270_4x4);
      expectShuffle(from, to, 2, NV21toNV21Fast_NORESAMPLE_H_Flip_4x4);
      expectShuffle(from, to, 4, NV21toNV21Fast_NORESAMPLE_V_Flip_4x4);
    }
  }
}

TEST(ConvertShuffles, BetweenPlanesAndPairs) {
  for (const uint32_t to : {uint32_t{QPX_FORMAT_NV21}, uint32_t{QPX_FORMAT_NV12}}) {
    expectShuffle(QPX_FORMAT_I420, to, 0, YUVtoNV21Fast_NORESAMPLE_R0_4x4);
    expectShuffle(QPX_FORMAT_I420, to, 1, YUVtoNV21Fast_NORESAMPLE_SwapXY_4x4);
    expectShuffle(QPX_FORMAT_I420, to, 3, YUVtoNV21Fast_NORESAMPLE_R90_4x4);
    expectShuffle(QPX_FORMAT_I420, to, 5, YUVtoNV21Fast_NORESAMPLE_R270_4x4);
    expectShuffle(to, QPX_FORMAT_I420, 0, NV21toI420Fast_NORESAMPLE_R0_4x4);
    expectShuffle(to, QPX_FORMAT_I420, 5, NV21VtoI420Fast_NORESAMPLE_R270_4x4);
  }
  expectShuffle(QPX_FORMAT_I420, QPX_FORMAT_I420, 3, I420_NORESAMPLE_4x4_R90);
}

TEST(ConvertShuffles, GreyHasChroma128) {
  const Shuffled s(QPX_FORMAT_GREY8, QPX_FORMAT_NV21, 3, YUVtoNV21Fast_NORESAMPLE_R90_4x4);
  ASSERT_EQ(QPX_OK, s.result);
  expectLuma(s, 3);
  for (int32_t y = 0; y < kWidth / 2; ++y) {
    for (int32_t x = 0; x < kHeight; ++x) ASSERT_EQ(128, s.to(2, x, y));
  }
}

// The chroma of a cell is that of its last pixel: of the lower row.
TEST(ConvertShuffles, GroupsToPlanes) {
  const Shuffled s(QPX_FORMAT_YUYV, QPX_FORMAT_I420, 0, YUYVtoI420Fast_NORESAMPLE_R0_4x4);
  ASSERT_EQ(QPX_OK, s.result);
  for (int32_t y = 0; y < kHeight; ++y) {
    for (int32_t x = 0; x < kWidth; ++x) {
      ASSERT_EQ(s.from(0, 2 * x, y), s.to(0, x, y));
      ASSERT_EQ(s.from(0, x / 2 * 4 + 1, y | 1), s.to(1, x / 2, y / 2));
      ASSERT_EQ(s.from(0, x / 2 * 4 + 3, y | 1), s.to(2, x / 2, y / 2));
    }
  }
}

// Turned groups take their two lumas from two rows.
TEST(ConvertShuffles, PlanesToTurnedGroups) {
  const Shuffled s(QPX_FORMAT_I420, QPX_FORMAT_YUYV, 3, I420_To_YUYV_Fast_NORESAMPLE_2x2_R90);
  for (int32_t y = 0; y < kHeight; ++y) {
    for (int32_t x = 0; x < kWidth; ++x) {
      const auto [toX, toY] = turned(3, x, y, kWidth, kHeight);
      ASSERT_EQ(s.from(0, x, y), s.to(0, 2 * toX, toY));
      ASSERT_EQ(s.from(1, x / 2, y / 2), s.to(0, toX / 2 * 4 + 1, toY));
      ASSERT_EQ(s.from(2, x / 2, y / 2), s.to(0, toX / 2 * 4 + 3, toY));
    }
  }
}

}  // namespace
}  // namespace qpx::testing
