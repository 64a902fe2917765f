// The allocators of image records. The layouts are written down once more, by hand, for a width of
// 37 and a height of 19 (padded: 48 and 32).
#include <gtest/gtest.h>
#include <kesbase.h>
#include <qpx/image.h>

#include <climits>
#include <set>
#include <vector>

#include "support/failing_memory.h"

namespace {

using qpx::testing::FailingMemory;

constexpr int32_t kWidth = 37;
constexpr int32_t kHeight = 19;

enum : unsigned { kBasic = 1, kExtended = 2, kQuarter = 4, kAll = 7, kNotBasic = 6 };

struct Row {
  uint32_t format;
  unsigned allocators;
  int32_t pitch[3];
  int32_t bytes;
  int32_t offset[3];  // -1 for no plane
};

constexpr int32_t kLuma = 48 * 32;

constexpr Row kRows[] = {
    {0x15000454, kAll, {76}, 76 * 19, {0, -1, -1}},
    {0x15001454, kAll, {76}, 76 * 19, {0, -1, -1}},
    {0x50000410, kAll, {76}, 76 * 19, {0, -1, -1}},
    {0x50000610, kAll, {76}, 76 * 19, {0, -1, -1}},
    {0x50001010, kNotBasic, {76}, 76 * 19, {0, -1, -1}},
    {0x16000555, kAll, {112}, 112 * 19, {0, -1, -1}},
    {0x16000777, kAll, {112}, 112 * 19, {0, -1, -1}},
    {0x16001555, kAll, {112}, 112 * 19, {0, -1, -1}},
    {0x16001777, kAll, {112}, 112 * 19, {0, -1, -1}},
    {0x50001000, kNotBasic, {112}, 112 * 19, {0, -1, -1}},
    {0x17000777, kAll, {148}, 148 * 19, {0, -1, -1}},
    {0x17001777, kAll, {148}, 148 * 19, {0, -1, -1}},
    {0x37000777, kAll, {148}, 148 * 19, {0, -1, -1}},
    {0x37001777, kAll, {148}, 148 * 19, {0, -1, -1}},
    {0x37004777, kNotBasic, {148}, 148 * 19, {0, -1, -1}},
    {0x37005777, kNotBasic, {148}, 148 * 19, {0, -1, -1}},
    {0x44000000, kAll, {40}, 40 * 19, {0, -1, -1}},
    {0x64000000, kAll, {48}, kLuma, {0, -1, -1}},
    {0x64001000, kAll, {48}, kLuma, {0, -1, -1}},
    {0x50000800, kAll, {48, 48, 48}, 3 * kLuma, {0, kLuma, 2 * kLuma}},
    {0x50001800, kAll, {48, 48, 48}, 3 * kLuma, {0, kLuma, 2 * kLuma}},
    {0x50000810, kAll, {48, 24, 24}, 2 * kLuma, {0, kLuma, kLuma + 24 * 32}},
    {0x50001810, kAll, {48, 24, 24}, 2 * kLuma, {0, kLuma, kLuma + 24 * 32}},
    {0x50000811, kAll, {48, 24, 24}, kLuma + 2 * 24 * 16, {0, kLuma, kLuma + 24 * 16}},
    {0x50000A11, kAll, {48, 24, 24}, kLuma + 2 * 24 * 16, {0, kLuma, kLuma + 24 * 16}},
    {0x50001811, kAll, {48, 24, 24}, kLuma + 2 * 24 * 16, {0, kLuma, kLuma + 24 * 16}},
    {0x50001A11, kAll, {48, 24, 24}, kLuma + 2 * 24 * 16, {0, kLuma, kLuma + 24 * 16}},
    {0x50000801, kAll, {48, 48, 48}, 2 * kLuma, {0, kLuma, kLuma + 48 * 16}},
    {0x50001801, kAll, {48, 48, 48}, 2 * kLuma, {0, kLuma, kLuma + 48 * 16}},
    {0x50000803, kQuarter, {48, 48, 48}, kLuma + 2 * 48 * 8, {0, kLuma, kLuma + 48 * 8}},
    {0x50000813, kQuarter, {48, 24, 24}, kLuma + 2 * 24 * 8, {0, kLuma, kLuma + 24 * 8}},
    {0x70000002, kAll, {48, 48, 48}, kLuma + 48 * 16, {0, kLuma + 1, kLuma}},
    {0x70001002, kNotBasic, {48, 48, 48}, kLuma + 48 * 16, {0, kLuma + 1, kLuma}},
    {0x70000003, kNotBasic, {48, 48, 48}, kLuma + 48 * 16, {0, kLuma, kLuma + 1}},
    {0x70001003, kNotBasic, {48, 48, 48}, kLuma + 48 * 16, {0, kLuma, kLuma + 1}},
};

struct Allocator {
  const char* name;
  unsigned bit;
  int32_t (*run)(MBitmap*);
  int32_t spare;
  uint8_t fill;
};

int32_t allocateExtended(MBitmap* bitmap) { return MBitmapAllocEx(bitmap, nullptr); }

constexpr Allocator kAllocators[] = {{"MBitmapAlloc", kBasic, MBitmapAlloc, 0, 0},
                                     {"MBitmapAllocEx", kExtended, allocateExtended, 16, 0x77},
                                     {"MBitmapAlloc2", kExtended, MBitmapAlloc2, 16, 0},
                                     {"UTILS_MdBitmapAlloc", kQuarter, UTILS_MdBitmapAlloc, 0, 0}};

MBitmap bitmapOf(uint32_t format, int32_t width, int32_t height) {
  MBitmap bitmap = {};
  bitmap.format = format;
  bitmap.width = width;
  bitmap.height = height;
  return bitmap;
}

void expectLayout(const Row& row, const Allocator& allocator) {
  MBitmap bitmap = bitmapOf(row.format, kWidth, kHeight);
  const int64_t before = FailingMemory::liveBytes();
  ASSERT_EQ(allocator.run(&bitmap), 0);
  EXPECT_EQ(FailingMemory::liveBytes() - before, row.bytes + allocator.spare);
  EXPECT_EQ(bitmap.width, kWidth);
  EXPECT_EQ(bitmap.height, kHeight);
  for (int p = 0; p < 3; ++p) {
    EXPECT_EQ(bitmap.pitch[p], row.pitch[p]) << p;
    if (row.offset[p] < 0) {
      EXPECT_EQ(bitmap.plane[p], nullptr) << p;
    } else {
      EXPECT_EQ(bitmap.plane[p] - bitmap.plane[0], row.offset[p]) << p;
    }
  }
  bool filled = true;
  for (int32_t i = 0; i < row.bytes + allocator.spare; ++i) {
    filled &= bitmap.plane[0][i] == allocator.fill;
  }
  EXPECT_TRUE(filled);
  EXPECT_EQ(MBitmapFree(&bitmap), 0);
  EXPECT_EQ(FailingMemory::liveBytes(), before);
}

TEST(Allocators, LayOutEveryCodeTheyKnowAndRefuseTheOthers) {
  for (const Row& row : kRows) {
    for (const Allocator& allocator : kAllocators) {
      SCOPED_TRACE(::testing::Message() << allocator.name << " " << std::hex << row.format);
      if ((row.allocators & allocator.bit) != 0) {
        expectLayout(row, allocator);
      } else {
        MBitmap bitmap = bitmapOf(row.format, kWidth, kHeight);
        EXPECT_EQ(allocator.run(&bitmap), 3);
        EXPECT_EQ(bitmap.plane[0], nullptr);
      }
    }
  }
}

TEST(Allocators, RefuseUnknownCodes) {
  std::set<uint32_t> known;
  for (const Row& row : kRows) known.insert(row.format);
  for (const uint32_t format :
       {0u,          0x15000333u, 0x15000444u, 0x25000444u, 0x65000000u, 0x41000000u, 0x43000000u,
        0x50000010u, 0x50000210u, 0x50000000u, 0x50000820u, 0x50000830u, 0x50000A10u, 0x50002811u,
        0x50003800u, 0x64002000u, 0x70000004u, 0x70000009u, 0x70010000u, 0x70020011u}) {
    ASSERT_EQ(known.count(format), 0u);
    for (const Allocator& allocator : kAllocators) {
      MBitmap bitmap = bitmapOf(format, 16, 16);
      EXPECT_EQ(allocator.run(&bitmap), 3) << allocator.name << " " << std::hex << format;
    }
  }
}

TEST(Allocators, RefuseSizesBelowOne) {
  for (const Allocator& allocator : kAllocators) {
    for (const auto& [width, height] :
         {std::pair{0, 5}, {5, 0}, {-1, 5}, {5, -1}, {0, 0}, {INT_MIN, 5}, {5, INT_MIN}}) {
      MBitmap bitmap = bitmapOf(0x16000777, width, height);
      EXPECT_EQ(allocator.run(&bitmap), 3) << allocator.name << width << "x" << height;
    }
    EXPECT_EQ(allocator.run(nullptr), 2);
  }
}

TEST(Allocators, OnePixelOfBgr24HasAPitchOfFour) {
  MBitmap bitmap = bitmapOf(0x16000777, 1, 1);
  ASSERT_EQ(MBitmapAlloc(&bitmap), 0);
  EXPECT_EQ(bitmap.pitch[0], 4);
  MBitmapFree(&bitmap);
}

TEST(Allocators, Nv21OfHundredByHundred) {
  MBitmap bitmap = bitmapOf(0x70000002, 100, 100);
  int32_t size = 0;
  ASSERT_EQ(MBitmapAllocEx(&bitmap, &size), 0);
  EXPECT_EQ(bitmap.pitch[0], 112);
  EXPECT_EQ(bitmap.pitch[1], 112);
  EXPECT_EQ(bitmap.pitch[2], 112);
  EXPECT_EQ(bitmap.plane[2] - bitmap.plane[0], 112 * 112);
  EXPECT_EQ(bitmap.plane[1], bitmap.plane[2] + 1);
  EXPECT_EQ(size, 112 * 112 + 112 * 56);
  MBitmapFree(&bitmap);
}

TEST(Allocators, ExtendedOneReportsTheSizeWithoutTheSpareBytes) {
  for (const Row& row : kRows) {
    if ((row.allocators & kExtended) == 0) continue;
    MBitmap bitmap = bitmapOf(row.format, kWidth, kHeight);
    int32_t size = -1;
    ASSERT_EQ(MBitmapAllocEx(&bitmap, &size), 0);
    EXPECT_EQ(size, row.bytes) << std::hex << row.format;
    MBitmapFree(&bitmap);
  }
}

TEST(Allocators, CallersPitchOfPackedFormatsIsKept) {
  for (const Allocator& allocator : kAllocators) {
    MBitmap bitmap = bitmapOf(0x16000777, 10, 6);
    bitmap.pitch[0] = 31;  // no multiple of anything
    const int64_t before = FailingMemory::liveBytes();
    ASSERT_EQ(allocator.run(&bitmap), 0) << allocator.name;
    EXPECT_EQ(bitmap.pitch[0], 31);
    EXPECT_EQ(FailingMemory::liveBytes() - before, 31 * 6 + allocator.spare);
    MBitmapFree(&bitmap);
  }
}

TEST(Allocators, CallersPitchesOfPlanarFormatsCountOnlyTogether) {
  for (const Allocator& allocator : kAllocators) {
    SCOPED_TRACE(allocator.name);
    MBitmap own = bitmapOf(0x50000811, 10, 6);
    own.pitch[0] = 20;
    own.pitch[1] = 11;
    own.pitch[2] = 7;
    ASSERT_EQ(allocator.run(&own), 0);
    EXPECT_EQ(own.plane[1] - own.plane[0], 20 * 16);
    EXPECT_EQ(own.plane[2] - own.plane[1], 11 * 8);
    EXPECT_EQ(own.pitch[2], 7);
    MBitmapFree(&own);

    for (int missing = 0; missing < 3; ++missing) {
      MBitmap partly = bitmapOf(0x50000811, 10, 6);
      for (int p = 0; p < 3; ++p) partly.pitch[p] = p == missing ? 0 : 100;
      ASSERT_EQ(allocator.run(&partly), 0);
      EXPECT_EQ(partly.pitch[0], 16);
      EXPECT_EQ(partly.pitch[1], 8);
      EXPECT_EQ(partly.pitch[2], 8);
      MBitmapFree(&partly);
    }
  }
}

TEST(Allocators, SemiPlanarBlockHoldsTheChromaRowsOfEitherPitch) {
  for (const auto& [second, third] : {std::pair{24, 64}, {64, 24}}) {
    MBitmap bitmap = bitmapOf(0x70000002, 10, 16);
    bitmap.pitch[0] = 32;
    bitmap.pitch[1] = second;
    bitmap.pitch[2] = third;
    const int64_t before = FailingMemory::liveBytes();
    ASSERT_EQ(UTILS_MdBitmapAlloc(&bitmap), 0);
    const int64_t bytes = FailingMemory::liveBytes() - before;
    EXPECT_EQ(bitmap.pitch[1], second);
    EXPECT_EQ(bitmap.pitch[2], third);
    EXPECT_GE(bytes, bitmap.plane[2] + 7 * bitmap.pitch[2] + 10 - bitmap.plane[0]);
    EXPECT_GE(bytes, bitmap.plane[1] + 7 * bitmap.pitch[1] + 9 - bitmap.plane[0]);
    MBitmapFree(&bitmap);
  }
}

TEST(Allocators, RefusePitchesThatAreTooSmall) {
  for (const Allocator& allocator : kAllocators) {
    SCOPED_TRACE(allocator.name);
    MBitmap packed = bitmapOf(0x16000777, 10, 6);
    packed.pitch[0] = 29;
    EXPECT_EQ(allocator.run(&packed), 2);
    packed.pitch[0] = -32;
    EXPECT_EQ(allocator.run(&packed), 2);
    MBitmap planar = bitmapOf(0x50000811, 11, 6);
    planar.pitch[0] = 16;
    planar.pitch[1] = planar.pitch[2] = 5;
    EXPECT_EQ(allocator.run(&planar), 2);
    planar.pitch[0] = INT_MIN;
    planar.pitch[1] = planar.pitch[2] = 8;
    EXPECT_EQ(allocator.run(&planar), 2);
  }
}

TEST(Allocators, OnlyTheBasicOneClearsThePitchesOfAbsentPlanes) {
  for (const Allocator& allocator : kAllocators) {
    MBitmap bitmap = bitmapOf(0x16000777, 10, 6);
    bitmap.pitch[1] = 77;
    bitmap.pitch[2] = 78;
    ASSERT_EQ(allocator.run(&bitmap), 0);
    EXPECT_EQ(bitmap.pitch[1], allocator.bit == kBasic ? 0 : 77) << allocator.name;
    EXPECT_EQ(bitmap.pitch[2], allocator.bit == kBasic ? 0 : 78) << allocator.name;
    MBitmapFree(&bitmap);
  }
}

TEST(Allocators, ReplaceAndFreeTheOldBlock) {
  for (const Allocator& allocator : kAllocators) {
    MBitmap bitmap = bitmapOf(0x16000777, 10, 6);
    const int64_t before = FailingMemory::liveBlocks();
    ASSERT_EQ(allocator.run(&bitmap), 0);
    bitmap.format = 0x37000777;
    bitmap.pitch[0] = 0;
    ASSERT_EQ(allocator.run(&bitmap), 0);
    EXPECT_EQ(FailingMemory::liveBlocks(), before + 1);
    EXPECT_EQ(bitmap.pitch[0], 40);
    MBitmapFree(&bitmap);
    EXPECT_EQ(FailingMemory::liveBlocks(), before);
  }
}

TEST(Allocators, AFailureLeavesTheOldBlock) {
  for (const Allocator& allocator : kAllocators) {
    SCOPED_TRACE(allocator.name);
    MBitmap bitmap = bitmapOf(0x16000777, 10, 6);
    ASSERT_EQ(allocator.run(&bitmap), 0);
    uint8_t* const block = bitmap.plane[0];
    block[5] = 99;
    FailingMemory::failFrom(1);
    EXPECT_EQ(allocator.run(&bitmap), 4);
    FailingMemory::reset();
    EXPECT_EQ(bitmap.plane[0], block);
    EXPECT_EQ(block[5], 99);
    bitmap.format = 0x12345678;
    EXPECT_EQ(allocator.run(&bitmap), 3);
    EXPECT_EQ(bitmap.plane[0], block);
    bitmap.format = 0x16000777;
    bitmap.pitch[0] = 3;
    EXPECT_EQ(allocator.run(&bitmap), 2);
    EXPECT_EQ(bitmap.plane[0], block);
    EXPECT_EQ(MBitmapFree(&bitmap), 0);
    EXPECT_EQ(FailingMemory::foreignFrees() + FailingMemory::doubleFrees(), 0);
  }
}

TEST(Allocators, HugeSizesAndPitchesNeverOverflow) {
  constexpr int32_t kSizes[] = {1, 15, 65536, 1 << 30, INT_MAX - 15, INT_MAX - 1, INT_MAX};
  constexpr int32_t kPitches[] = {0, 1 << 30, INT_MAX};
  for (const Row& row : kRows) {
    for (const int32_t width : kSizes) {
      for (const int32_t height : kSizes) {
        for (const int32_t pitch : kPitches) {
          // Pictures of some MiB are for the other tests.
          if (int64_t{width} * height < (1 << 27) && pitch == 0) continue;
          if (int64_t{pitch} * height < (1 << 30) && pitch != 0) continue;
          MBitmap bitmap = bitmapOf(row.format, width, height);
          for (int32_t& p : bitmap.pitch) p = pitch;
          FailingMemory::failFrom(1);
          for (const Allocator& allocator : kAllocators) {
            const int32_t result = allocator.run(&bitmap);
            EXPECT_TRUE(result == 4 || result == 2 || result == 3) << result;
            EXPECT_EQ(bitmap.plane[0], nullptr);
          }
          FailingMemory::reset();
        }
      }
    }
  }
}

TEST(Allocators, PlanesOfTwoGibibytesAndMoreAreNoMemory) {
  for (const uint32_t format : {0x16000777u, 0x37000777u, 0x64000000u, 0x50000811u, 0x70000002u}) {
    MBitmap bitmap = bitmapOf(format, 50000, 50000);
    FailingMemory::reset();
    EXPECT_EQ(MBitmapAlloc(&bitmap), 4);
    EXPECT_EQ(FailingMemory::allocations(), 0) << "asked for a block of a size cut to 32 bits";
  }
}

TEST(BitmapFree, FreesTheBlockAndClearsTheRecord) {
  for (int32_t (*release)(MBitmap*) : {MBitmapFree, MBitmapFree2}) {
    const int64_t before = FailingMemory::liveBlocks();
    MBitmap bitmap = bitmapOf(0x50000811, 20, 20);
    ASSERT_EQ(MBitmapAlloc(&bitmap), 0);
    EXPECT_EQ(release(&bitmap), 0);
    EXPECT_EQ(FailingMemory::liveBlocks(), before);
    EXPECT_EQ(bitmap.format, 0u);
    EXPECT_EQ(bitmap.width, 0);
    EXPECT_EQ(bitmap.height, 0);
    for (int p = 0; p < 3; ++p) {
      EXPECT_EQ(bitmap.pitch[p], 0);
      EXPECT_EQ(bitmap.plane[p], nullptr);
    }
    EXPECT_EQ(release(&bitmap), 0);
    EXPECT_EQ(release(nullptr), 2);
  }
}

}  // namespace
