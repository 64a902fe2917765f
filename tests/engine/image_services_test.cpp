// Pixel sizes, records in one call, alpha, off-screen records and rectangles.
#include <gtest/gtest.h>
#include <kesbase.h>
#include <qpx/image.h>

#include <climits>
#include <cstring>
#include <map>
#include <vector>

#include "support/failing_memory.h"

namespace {

using qpx::testing::FailingMemory;

const std::map<uint32_t, int32_t> kPixelBytes = {
    {0x15000333, 2}, {0x15000444, 2}, {0x15000454, 2}, {0x15001333, 2}, {0x15001444, 2},
    {0x15001454, 2}, {0x25000444, 2}, {0x65000000, 2}, {0x16000555, 3}, {0x16000777, 3},
    {0x16001555, 3}, {0x16001777, 3}, {0x26000444, 3}, {0x17000777, 4}, {0x17001777, 4},
    {0x37000777, 4}, {0x37001777, 4}, {0x37005777, 4}, {0x64000000, 1}};

TEST(PixelBytes, AreThoseOfTheListAndZeroForAllOthers) {
  for (const auto& [format, bytes] : kPixelBytes) {
    EXPECT_EQ(UTIL_GetPixelBytesEX(format), bytes) << std::hex << format;
  }
  for (const uint32_t format : {0u, 0x37004777u, 0x64001000u, 0x44000000u, 0x50000010u, 0x50000410u,
                                0x50000811u, 0x50000000u, 0x70000002u, 0x70000009u, 0xFFFFFFFFu}) {
    EXPECT_EQ(UTIL_GetPixelBytesEX(format), 0) << std::hex << format;
  }
}

TEST(UtilBitmap, PadsRowsToFourBytesAndZeroesThePixels) {
  for (const auto& [format, bytes] : kPixelBytes) {
    for (const int32_t width : {1, 2, 3, 4, 5, 33}) {
      MBitmap* bitmap = UTIL_MBitmapCreate(width, 3, format);
      ASSERT_NE(bitmap, nullptr);
      EXPECT_EQ(bitmap->format, format);
      EXPECT_EQ(bitmap->width, width);
      EXPECT_EQ(bitmap->height, 3);
      EXPECT_EQ(bitmap->pitch[0], (width * bytes + 3) / 4 * 4);
      EXPECT_EQ(bitmap->pitch[1], 0);
      EXPECT_EQ(bitmap->pitch[2], 0);
      EXPECT_EQ(bitmap->plane[1], nullptr);
      EXPECT_EQ(bitmap->plane[2], nullptr);
      for (int32_t i = 0; i < bitmap->pitch[0] * 3; ++i) ASSERT_EQ(bitmap->plane[0][i], 0);
      UTIL_MBitmapFree(bitmap);
    }
  }
}

TEST(UtilBitmap, AnswersNullAndLeaksNothingWhenMemoryFails) {
  const int64_t before = FailingMemory::liveBlocks();
  const int64_t failed = FailingMemory::forEachFailure(true, [] {
    MBitmap* bitmap = UTIL_MBitmapCreate(8, 8, 0x16000777);
    if (FailingMemory::failures() > 0) {
      EXPECT_EQ(bitmap, nullptr);
    } else {
      EXPECT_NE(bitmap, nullptr);
    }
    UTIL_MBitmapFree(bitmap);
  });
  EXPECT_EQ(failed, 2);
  EXPECT_EQ(FailingMemory::liveBlocks(), before);
}

TEST(UtilBitmap, RefusesSenselessSizesAndFormats) {
  EXPECT_EQ(UTIL_MBitmapCreate(0, 8, 0x16000777), nullptr);
  EXPECT_EQ(UTIL_MBitmapCreate(8, 0, 0x16000777), nullptr);
  EXPECT_EQ(UTIL_MBitmapCreate(-8, 8, 0x16000777), nullptr);
  EXPECT_EQ(UTIL_MBitmapCreate(8, INT_MIN, 0x16000777), nullptr);
  EXPECT_EQ(UTIL_MBitmapCreate(8, 8, 0x50000811), nullptr);
  EXPECT_EQ(UTIL_MBitmapCreate(INT_MAX, INT_MAX, 0x37000777), nullptr);
  EXPECT_EQ(UTIL_MBitmapCreate(1 << 29, 8, 0x37000777), nullptr);
  EXPECT_EQ(UTIL_MBitmapCreate(1 << 16, 1 << 15, 0x37000777), nullptr);
  UTIL_MBitmapFree(nullptr);
}

TEST(SetAlpha, WritesTheFourthByteOfEveryPixelAndNothingElse) {
  for (const uint32_t format :
       {0x17000777u, 0x17001777u, 0x37000777u, 0x37001777u, 0x37005777u, 0x37004777u}) {
    constexpr int32_t kPitch = 17;  // three pixels and padding that stays
    std::vector<uint8_t> bytes(kPitch * 4, 7);
    MBitmap bitmap = {format, 3, 4, {kPitch, 0, 0}, {bytes.data(), nullptr, nullptr}};
    EXPECT_EQ(MBitmapSetAlpha(&bitmap, 200), 0);
    for (int32_t i = 0; i < kPitch * 4; ++i) {
      const int32_t x = i % kPitch;
      const bool alpha = x < 12 && x % 4 == 3;
      EXPECT_EQ(bytes[static_cast<size_t>(i)], alpha ? 200 : 7) << i;
    }
  }
}

TEST(SetAlpha, RefusesOtherFormats) {
  std::vector<uint8_t> bytes(64, 7);
  for (const uint32_t format : {0x16000777u, 0x15000454u, 0x64000000u, 0x50000811u, 0u}) {
    MBitmap bitmap = {format, 4, 4, {16, 0, 0}, {bytes.data(), nullptr, nullptr}};
    EXPECT_EQ(MBitmapSetAlpha(&bitmap, 1), 3);
  }
  EXPECT_EQ(bytes, std::vector<uint8_t>(64, 7));
  MBitmap empty = {0x37000777, 4, 4, {16, 0, 0}, {nullptr, nullptr, nullptr}};
  EXPECT_EQ(MBitmapSetAlpha(&empty, 1), 2);
  EXPECT_EQ(MBitmapSetAlpha(nullptr, 1), 2);
  MBitmap negative = {0x37000777, -4, -4, {16, 0, 0}, {bytes.data(), nullptr, nullptr}};
  EXPECT_EQ(MBitmapSetAlpha(&negative, 1), 0);
  EXPECT_EQ(bytes, std::vector<uint8_t>(64, 7));
}

struct Offscreen {
  uint32_t format;
  uint32_t number;
  int source[3];  // -1 for null
};

constexpr Offscreen kOffscreen[] = {
    {0x15000454, 261, {0, 1, 2}},  {0x16000777, 513, {0, 1, 2}},   {0x16001777, 516, {0, 1, 2}},
    {0x37001777, 770, {0, 1, 2}},  {0x37000777, 772, {0, 1, 2}},   {0x50000010, 1281, {0, -1, -1}},
    {0x50000811, 1537, {0, 1, 2}}, {0x70000002, 2050, {0, 2, -1}}, {0x70001002, 2050, {0, 2, -1}}};

TEST(OffscreenRecord, TakesNumberPlanesSizeAndPitches) {
  uint8_t bytes[3];
  for (const Offscreen& row : kOffscreen) {
    SCOPED_TRACE(::testing::Message() << std::hex << row.format);
    const MBitmap bitmap = {row.format, 11, 12, {13, 14, 15}, {bytes, bytes + 1, bytes + 2}};
    QEMOOFFSCREEN offscreen;
    std::memset(&offscreen, 0xEE, sizeof offscreen);
    ASSERT_EQ(BuildQEMOOFFSCREEN(&bitmap, &offscreen), 0);
    EXPECT_EQ(offscreen.format, row.number);
    EXPECT_EQ(offscreen.width, 11);
    EXPECT_EQ(offscreen.height, 12);
    for (int p = 0; p < 3; ++p) {
      EXPECT_EQ(offscreen.pitch[p], 13 + p);
      EXPECT_EQ(offscreen.plane[p], row.source[p] < 0 ? nullptr : bytes + row.source[p]) << p;
    }
  }
}

TEST(OffscreenRecord, RefusesOtherFormatsAndNull) {
  MBitmap bitmap = {0x70000003, 1, 1, {}, {}};
  QEMOOFFSCREEN offscreen = {};
  for (const uint32_t format :
       {0x70000003u, 0x15001454u, 0x50000410u, 0x50001811u, 0x64000000u, 0u, 0x70020011u}) {
    bitmap.format = format;
    EXPECT_EQ(BuildQEMOOFFSCREEN(&bitmap, &offscreen), 3) << std::hex << format;
  }
  EXPECT_EQ(BuildQEMOOFFSCREEN(nullptr, &offscreen), 2);
  bitmap.format = 0x16000777;
  EXPECT_EQ(BuildQEMOOFFSCREEN(&bitmap, nullptr), 2);
}

void expectRect(const MRect& rect, int32_t left, int32_t top, int32_t right, int32_t bottom) {
  EXPECT_EQ(rect.left, left);
  EXPECT_EQ(rect.top, top);
  EXPECT_EQ(rect.right, right);
  EXPECT_EQ(rect.bottom, bottom);
}

TEST(Rectangles, SwapTransposes) {
  MRect rect = {1, 2, 3, 4};
  MSwapRect(&rect);
  expectRect(rect, 2, 1, 4, 3);
  MSwapRect(nullptr);
}

TEST(Rectangles, CopyTakesAllFields) {
  const MRect from = {1, -2, 3, 4};
  MRect to = {};
  RectCopy(&to, &from);
  expectRect(to, 1, -2, 3, 4);
  RectCopy(nullptr, &from);
  RectCopy(&to, nullptr);
  expectRect(to, 1, -2, 3, 4);
}

TEST(Rectangles, FlipsMirrorInsideTheOuterOne) {
  const MRect outer = {10, 20, 110, 220};
  MRect rect = {15, 30, 40, 70};
  FlipUpDownRect(&outer, &rect);
  expectRect(rect, 15, 170, 40, 210);
  MFlipLeftRightRect(&outer, &rect);
  expectRect(rect, 80, 170, 105, 210);
  FlipUpDownRect(&outer, &rect);
  MFlipLeftRightRect(&outer, &rect);
  expectRect(rect, 15, 30, 40, 70);
  FlipUpDownRect(nullptr, &rect);
  FlipUpDownRect(&outer, nullptr);
  MFlipLeftRightRect(nullptr, &rect);
  MFlipLeftRightRect(&outer, nullptr);
  expectRect(rect, 15, 30, 40, 70);
}

TEST(Rectangles, FarCoordinatesDoNotTrap) {
  const MRect outer = {INT_MIN, INT_MIN, INT_MAX, INT_MAX};
  MRect rect = {INT_MAX, INT_MAX, INT_MIN, INT_MIN};
  FlipUpDownRect(&outer, &rect);
  MFlipLeftRightRect(&outer, &rect);
  MRect whole = outer;
  FlipUpDownRect(&outer, &whole);
  MFlipLeftRightRect(&outer, &whole);
  expectRect(whole, INT_MIN, INT_MIN, INT_MAX, INT_MAX);
}

}  // namespace
