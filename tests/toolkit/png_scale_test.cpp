// Decoding at a lower size against the rule written out pixel by pixel.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

#include "toolkit/png_files.h"

namespace {

using namespace qpx::testing;

struct Size {
  int32_t width;
  int32_t height;
};

// The rule: one scale for both sides, the sizes rounded, the sources of row and column i at i /
// scale.
struct Grant {
  Grant(const PngPicture& picture, Size wanted) {
    const double across = std::min(wanted.width, picture.width) / double(picture.width);
    const double down = std::min(wanted.height, picture.height) / double(picture.height);
    scale = std::min(across, down);
    size.width = std::max(1, int32_t(std::floor(scale * picture.width + 0.5)));
    size.height = std::max(1, int32_t(std::floor(scale * picture.height + 0.5)));
  }
  int32_t source(int32_t i) const { return uint16_t(std::floor(i / scale)); }

  double scale;
  Size size;
};

std::vector<uint8_t> expectedRow(const PngPicture& picture, const Grant& grant, int32_t y, int pass,
                                 uint8_t before) {
  const uint32_t bits = picture.bits();
  std::vector<uint8_t> row((static_cast<size_t>(grant.size.width) * bits + 7) / 8, before);
  for (int32_t x = 0; x < grant.size.width; ++x) {
    const int32_t fromX = grant.source(x), fromY = grant.source(y);
    if (picture.passOf(fromX, fromY) > pass) continue;
    const uint32_t pixel = picture.pixel(fromX, fromY, false);
    if (bits < 8) {
      putPixel(row.data(), bits, x, pixelAt(row.data(), bits, x) | pixel);
    } else if (bits == 16) {
      putPixel(row.data(), bits, x, pixel);
    } else {
      for (uint32_t i = 0; i < bits / 8; ++i) {
        const uint8_t byte = static_cast<uint8_t>(pixel >> (bits - 8 - 8 * i));
        if (byte != 0) row[static_cast<size_t>(x) * (bits / 8) + i] = byte;
      }
    }
  }
  return row;
}

void expectScaled(const PngPicture& picture, Size wanted, uint8_t before) {
  const Grant grant(picture, wanted);
  const ByteStream stream(picture.file());
  PngHandle* handle = nullptr;
  ASSERT_EQ(PNG_DecodeInit(stream.get(), &handle), 0);
  PNG_DecodeSetRGBInvert(handle);
  Size granted = wanted;
  ASSERT_EQ(PNG_DecodeSetDimension(handle, &granted.width, &granted.height), 0);
  ASSERT_EQ(granted.width, grant.size.width) << picture << " as " << wanted.width;
  ASSERT_EQ(granted.height, grant.size.height) << picture << " as " << wanted.height;
  PngInfo info = {};
  PNG_DecodeGetPngInfo(handle, &info);
  PngInfoHeader header = {};
  PNG_DecodeGetInfoHeader(handle, &header);
  EXPECT_EQ(info.width, static_cast<uint32_t>(granted.width));
  EXPECT_EQ(info.rowBytes, (static_cast<uint32_t>(granted.width) * picture.bits() + 7) / 8);
  EXPECT_EQ(header.height, granted.height);

  std::vector<std::vector<uint8_t>> rows(static_cast<size_t>(granted.height),
                                         std::vector<uint8_t>(info.rowBytes, before));
  const bool plain = grant.scale == 1.0;  // there is no OR and no rule for 0 at full size
  for (int pass = 1; pass <= (picture.interlaced ? 7 : 1); ++pass) {
    for (int32_t y = 0; y < granted.height; ++y) {
      uint8_t* const row = rows[static_cast<size_t>(y)].data();
      int32_t line = 0, done = 0;
      ASSERT_EQ(PNG_DecodeScanLines(handle, &row, 1, &line, &done), 0);
      ASSERT_EQ(line, y + 1);
      ASSERT_EQ(done, 1);
      if (plain) continue;
      ASSERT_EQ(rows[static_cast<size_t>(y)], expectedRow(picture, grant, y, pass, before))
          << picture << " as " << wanted.width << "x" << wanted.height << ", pass " << pass
          << ", row " << y;
    }
  }
  uint8_t spare[4096];
  uint8_t* const row = spare;
  int32_t line = 0, done = 0;
  EXPECT_EQ(PNG_DecodeScanLines(handle, &row, 1, &line, &done), 1) << "behind the last pass";
  EXPECT_EQ(PNG_DecodeUninit(handle), 0);
}

TEST(PngScale, FollowsTheIndexTablesInEveryDepthAndPass) {
  constexpr Size kWanted[] = {{1, 1},  {5, 5},   {16, 9},   {17, 30}, {32, 17}, {33, 16},
                              {33, 1}, {11, 17}, {29, 100}, {1, 100}, {33, 17}, {1000, 1000}};
  for (const PngKind& kind : pngKinds()) {
    for (const bool interlaced : {false, true}) {
      const PngPicture picture(kind, 33, 17, interlaced, 5);
      for (const Size& wanted : kWanted) {
        for (const uint8_t before : {0x00, 0x5A}) expectScaled(picture, wanted, before);
      }
    }
  }
}

TEST(PngScale, GrantsAtLeastOnePixel) {
  expectScaled(PngPicture({6, 8}, 200, 1, false), {3, 1}, 0);
  expectScaled(PngPicture({6, 8}, 1, 200, true), {1, 3}, 0);
}

TEST(PngScale, HasNoWorkWhereASizeIsZero) {
  const PngPicture picture({2, 8}, 10, 8, false);
  const ByteStream stream(picture.file());
  PngHandle* handle = nullptr;
  PNG_DecodeInit(stream.get(), &handle);
  for (const Size& wanted : {Size{0, 5}, Size{5, 0}, Size{0, 0}}) {
    Size granted = wanted;
    EXPECT_EQ(PNG_DecodeSetDimension(handle, &granted.width, &granted.height), 0);
    EXPECT_EQ(granted.width, wanted.width);
    EXPECT_EQ(granted.height, wanted.height);
  }
  PngInfo info = {};
  PNG_DecodeGetPngInfo(handle, &info);
  EXPECT_EQ(info.width, 10u);
  PNG_DecodeUninit(handle);
}

TEST(PngScale, TheLastRequestCounts) {
  const PngPicture picture({2, 8}, 10, 8, false);
  const ByteStream stream(picture.file());
  PngHandle* handle = nullptr;
  PNG_DecodeInit(stream.get(), &handle);
  Size granted = {3, 3};
  EXPECT_EQ(PNG_DecodeSetDimension(handle, &granted.width, &granted.height), 0);
  granted = {5, 8};
  EXPECT_EQ(PNG_DecodeSetDimension(handle, &granted.width, &granted.height), 0);
  EXPECT_EQ(granted.width, 5);
  EXPECT_EQ(granted.height, 4);
  PNG_DecodeUninit(handle);
}

TEST(PngScale, RefusesNegativeSizesAndALateRequest) {
  const PngPicture picture({0, 8}, 10, 8, false);
  const ByteStream stream(picture.file());
  PngHandle* handle = nullptr;
  PNG_DecodeInit(stream.get(), &handle);
  int32_t width = -1, height = 4;
  EXPECT_EQ(PNG_DecodeSetDimension(handle, &width, &height), 2);
  width = 4, height = -1;
  EXPECT_EQ(PNG_DecodeSetDimension(handle, &width, &height), 2);
  uint8_t bytes[10];
  uint8_t* const row = bytes;
  int32_t line = 0, done = 0;
  EXPECT_EQ(PNG_DecodeScanLines(handle, &row, 1, &line, &done), 0);
  width = height = 4;
  EXPECT_EQ(PNG_DecodeSetDimension(handle, &width, &height), 2);
  EXPECT_EQ(width, 4);
  PNG_DecodeUninit(handle);
}

}  // namespace
