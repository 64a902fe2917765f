// PNG files into image records.
#include <gtest/gtest.h>
#include <kesbase.h>
#include <qpx/image.h>

#include <cstring>

#include "support/failing_memory.h"
#include "toolkit/png_files.h"

namespace {

using namespace qpx::testing;

constexpr int32_t kRefused = 34194;
constexpr uint8_t kUntouched = 0x5A;

uint32_t formatOf(const PngPicture& picture) {
  switch (picture.bits()) {
    case 8:
      return 0x64000000;
    case 24:
      return 0x16001777;
    case 32:
      return 0x37001777;
    default:
      return 0;
  }
}

int32_t decode(const std::vector<uint8_t>& file, MBitmap** bitmap) {
  return QPX_DecodePNG(file.data(), static_cast<int32_t>(file.size()), bitmap);
}

void release(MBitmap* bitmap) {
  EXPECT_EQ(MBitmapFree(bitmap), 0);
  MMemFree(nullptr, bitmap);
}

// Whole rows of a record; pixels of passes after `pass`, and padding, are to be 0.
void expectPixels(const PngPicture& picture, const MBitmap& bitmap, int pass) {
  for (int32_t y = 0; y < picture.height; ++y) {
    std::vector<uint8_t> expected(static_cast<size_t>(bitmap.pitch[0]), 0);
    for (int32_t x = 0; x < picture.width; ++x) {
      if (picture.passOf(x, y) > pass) continue;
      putPixel(expected.data(), picture.bits(), x, picture.pixel(x, y, false));
    }
    const uint8_t* const row = bitmap.plane[0] + ptrdiff_t{bitmap.pitch[0]} * y;
    ASSERT_EQ(std::vector<uint8_t>(row, row + bitmap.pitch[0]), expected)
        << picture << ", row " << y;
  }
}

// An open handle over a file.
struct Png {
  explicit Png(std::vector<uint8_t> file) : stream(std::move(file)) {
    EXPECT_EQ(QPX_png_create(stream.get(), &handle), 0);
  }
  ~Png() { EXPECT_EQ(QPX_png_destroy(handle), 0); }

  ByteStream stream;
  QPXPng* handle = nullptr;
};

TEST(PngBitmap, DepthsWithAFormatDecodeToRecordsOfIt) {
  const int64_t blocks = FailingMemory::liveBlocks();
  for (const PngKind& kind : pngKinds()) {
    for (const auto& [width, height] : {std::pair{1, 1}, {3, 2}, {5, 7}, {40, 30}}) {
      const PngPicture picture(kind, width, height, false);
      if (formatOf(picture) == 0) continue;
      MBitmap* bitmap = nullptr;
      ASSERT_EQ(decode(picture.file(), &bitmap), 0);
      EXPECT_EQ(bitmap->format, formatOf(picture)) << picture;
      EXPECT_EQ(bitmap->width, width);
      EXPECT_EQ(bitmap->height, height);
      EXPECT_EQ(bitmap->pitch[0], static_cast<int32_t>((picture.rowBytes() + 3) / 4 * 4));
      expectPixels(picture, *bitmap, 1);
      release(bitmap);
    }
  }
  EXPECT_EQ(FailingMemory::liveBlocks(), blocks);
}

TEST(PngBitmap, DepthsWithoutAFormatGiveARecordWithoutPixels) {
  for (const PngKind& kind : {PngKind{4, 8}, PngKind{4, 16}, PngKind{0, 1}, PngKind{3, 4}}) {
    const PngPicture picture(kind, 5, 4, false);
    MBitmap* bitmap = nullptr;
    ASSERT_EQ(decode(picture.file(), &bitmap), 0) << picture;
    EXPECT_EQ(bitmap->format, 0u);
    EXPECT_EQ(bitmap->width, 5);
    EXPECT_EQ(bitmap->height, 4);
    EXPECT_EQ(bitmap->pitch[0], 0);
    EXPECT_EQ(bitmap->plane[0], nullptr);
    release(bitmap);
  }
}

TEST(PngBitmap, WhatIsNoPngGivesAnEmptyRecord) {
  MBitmap* bitmap = nullptr;
  const MBitmap empty = {};
  for (const std::vector<uint8_t>& bytes :
       {std::vector<uint8_t>(), std::vector<uint8_t>(100, 'x'), pngStart(0, 4, 8, 2)}) {
    ASSERT_EQ(decode(bytes, &bitmap), 0);
    EXPECT_EQ(std::memcmp(bitmap, &empty, sizeof empty), 0);
    release(bitmap);
  }
  ASSERT_EQ(QPX_DecodePNG(nullptr, 100, &bitmap), 0);
  release(bitmap);
  ASSERT_EQ(QPX_DecodePNG("x", -1, &bitmap), 0);
  release(bitmap);
}

TEST(PngBitmap, ATruncatedFileGivesItsFirstRows) {
  const PngPicture picture({6, 8}, 64, 400, false);
  std::vector<uint8_t> file = picture.file();
  file.resize(file.size() / 2);
  MBitmap* bitmap = nullptr;
  ASSERT_EQ(decode(file, &bitmap), 0);
  ASSERT_EQ(bitmap->height, 400);
  const auto row = [&](int32_t y) { return bitmap->plane[0] + ptrdiff_t{bitmap->pitch[0]} * y; };
  for (int32_t x = 0; x < 64; ++x) {
    EXPECT_EQ(pixelAt(row(0), 32, x), picture.pixel(x, 0, false));
    EXPECT_EQ(pixelAt(row(399), 32, x), 0u);
  }
  release(bitmap);
}

TEST(PngBitmap, AnInterlacedFileGivesItsFirstPass) {
  const PngPicture picture({6, 8}, 20, 20, true);
  MBitmap* bitmap = nullptr;
  ASSERT_EQ(decode(picture.file(), &bitmap), 0);
  expectPixels(picture, *bitmap, 1);
  release(bitmap);
}

TEST(PngBitmap, DecodeNeedsATarget) { EXPECT_EQ(QPX_DecodePNG("x", 1, nullptr), -1); }

TEST(PngBitmap, SevenCallsCompleteAnInterlacedFile) {
  const PngPicture picture({2, 16}, 11, 13, true);
  const Png png(picture.file());
  MBitmap* const bitmap = UTIL_MBitmapCreate(11, 13, 0x16001777);
  for (int pass = 1; pass <= 7; ++pass) {
    EXPECT_EQ(QPX_png_decode(png.handle, bitmap), 0);
    expectPixels(picture, *bitmap, pass);
  }
  EXPECT_EQ(QPX_png_decode(png.handle, bitmap), 1);
  UTIL_MBitmapFree(bitmap);
}

TEST(PngBitmap, PropertyOneIsTheInfo) {
  const PngPicture picture({2, 8}, 11, 13, false);
  const Png png(picture.file());
  PngInfo info = {9, 9, 9, 9, 9};
  EXPECT_EQ(QPX_png_get_property(png.handle, 0, &info), kRefused);
  EXPECT_EQ(QPX_png_get_property(png.handle, 2, &info), kRefused);
  EXPECT_EQ(QPX_png_get_property(nullptr, 1, &info), kRefused);
  EXPECT_EQ(QPX_png_get_property(png.handle, 1, nullptr), kRefused);
  EXPECT_EQ(info.height, 9u);
  EXPECT_EQ(QPX_png_get_property(png.handle, 1, &info), 0);
  EXPECT_EQ(info.height, 13u);
  EXPECT_EQ(info.width, 11u);
  EXPECT_EQ(info.bitsPerPixel, 24u);
  EXPECT_EQ(info.rowBytes, 33u);
  EXPECT_EQ(info.format, 0x16001777u);
}

TEST(PngBitmap, PropertyOfADepthWithoutAFormatIsRefusedButFilled) {
  const Png png(PngPicture({4, 16}, 11, 13, false).file());
  PngInfo info = {9, 9, 9, 9, 9};
  EXPECT_EQ(QPX_png_get_property(png.handle, 1, &info), kRefused);
  EXPECT_EQ(info.height, 13u);
  EXPECT_EQ(info.width, 11u);
  EXPECT_EQ(info.bitsPerPixel, 16u);
  EXPECT_EQ(info.rowBytes, 22u);
  EXPECT_EQ(info.format, 0u);
}

TEST(PngBitmap, CreateRefusesNullAndPassesOnTheDecodersCode) {
  const ByteStream noPng(std::vector<uint8_t>(100, 'x'));
  const ByteStream broken({137, 'P', 'N', 'G', 13, 10, 26, 10});
  QPXPng* handle = nullptr;
  EXPECT_EQ(QPX_png_create(nullptr, &handle), kRefused);
  EXPECT_EQ(QPX_png_create(noPng.get(), nullptr), kRefused);
  EXPECT_EQ(QPX_png_create(noPng.get(), &handle), 3);
  EXPECT_EQ(QPX_png_create(broken.get(), &handle), 1);
  EXPECT_EQ(handle, nullptr);
  EXPECT_EQ(QPX_png_destroy(nullptr), kRefused);
}

TEST(PngBitmap, DecodeRefusesNullsAndHasNoWorkWithoutRows) {
  const Png png(PngPicture({2, 8}, 4, 4, false).file());
  uint8_t pixels[64];
  std::memset(pixels, kUntouched, sizeof pixels);
  MBitmap bitmap = {0x16001777, 4, 4, {12, 0, 0}, {pixels, nullptr, nullptr}};
  EXPECT_EQ(QPX_png_decode(nullptr, &bitmap), kRefused);
  EXPECT_EQ(QPX_png_decode(png.handle, nullptr), kRefused);
  bitmap.plane[0] = nullptr;
  EXPECT_EQ(QPX_png_decode(png.handle, &bitmap), kRefused);
  bitmap.height = 0;
  EXPECT_EQ(QPX_png_decode(png.handle, &bitmap), kRefused) << "the plane is tested first";
  bitmap.plane[0] = pixels;
  EXPECT_EQ(QPX_png_decode(png.handle, &bitmap), 0);
  bitmap.height = -3;
  EXPECT_EQ(QPX_png_decode(png.handle, &bitmap), 0);
  for (const uint8_t byte : pixels) EXPECT_EQ(byte, kUntouched);
}

TEST(PngBitmap, RowsLongerThanTheBitmapsAreRefusedUnwritten) {
  const Png png(PngPicture({2, 8}, 4, 4, false).file());  // rows of 12 bytes
  uint8_t pixels[256];
  std::memset(pixels, kUntouched, sizeof pixels);
  const MBitmap narrow[] = {
      {0x16001777, 4, 4, {11, 0, 0}, {pixels, nullptr, nullptr}},
      {0x16001777, 4, 4, {-11, 0, 0}, {pixels + 128, nullptr, nullptr}},
      {0x16001777, 4, 4, {0, 0, 0}, {pixels, nullptr, nullptr}},
      {0x16001777, 3, 4, {64, 0, 0}, {pixels, nullptr, nullptr}},
      {0x16001777, -4, 4, {64, 0, 0}, {pixels, nullptr, nullptr}},
      {0x64000000, 11, 4, {64, 0, 0}, {pixels, nullptr, nullptr}},
      {0, 4, 4, {11, 0, 0}, {pixels, nullptr, nullptr}},
  };
  for (MBitmap bitmap : narrow) EXPECT_EQ(QPX_png_decode(png.handle, &bitmap), kRefused);
  for (const uint8_t byte : pixels) EXPECT_EQ(byte, kUntouched);
}

TEST(PngBitmap, WiderAndHigherBitmapsKeepTheirOtherPixels) {
  const PngPicture picture({2, 8}, 4, 4, false);
  const Png png(picture.file());
  uint8_t pixels[6 * 20];
  std::memset(pixels, kUntouched, sizeof pixels);
  MBitmap bitmap = {0x16001777, 6, 6, {20, 0, 0}, {pixels, nullptr, nullptr}};
  EXPECT_EQ(QPX_png_decode(png.handle, &bitmap), 1) << "there are no rows 4 and 5";
  for (int32_t y = 0; y < 6; ++y) {
    for (int32_t i = 0; i < 20; ++i) {
      if (y < 4 && i < 12) continue;
      ASSERT_EQ(pixels[20 * y + i], kUntouched) << i << "," << y;
    }
  }
  for (int32_t y = 0; y < 4; ++y) {
    for (int32_t x = 0; x < 4; ++x) {
      EXPECT_EQ(pixelAt(pixels + 20 * y, 24, x), picture.pixel(x, y, false));
    }
  }
}

TEST(PngBitmap, RowsGoUpwardsWithANegativePitch) {
  const PngPicture picture({0, 8}, 4, 3, false);
  const Png png(picture.file());
  uint8_t pixels[3 * 5];
  std::memset(pixels, kUntouched, sizeof pixels);
  MBitmap bitmap = {0x64000000, 4, 3, {-5, 0, 0}, {pixels + 10, nullptr, nullptr}};
  EXPECT_EQ(QPX_png_decode(png.handle, &bitmap), 0);
  for (int32_t y = 0; y < 3; ++y) {
    for (int32_t x = 0; x < 4; ++x) EXPECT_EQ(pixels[5 * (2 - y) + x], picture.pixel(x, y, false));
    EXPECT_EQ(pixels[5 * y + 4], kUntouched);
  }
}

TEST(PngBitmap, ALowerBitmapTakesTheRowsInTurn) {
  const PngPicture picture({0, 8}, 4, 6, false);
  const Png png(picture.file());
  MBitmap* const bitmap = UTIL_MBitmapCreate(4, 3, 0x64000000);
  for (int32_t top : {0, 3}) {
    EXPECT_EQ(QPX_png_decode(png.handle, bitmap), 0);
    for (int32_t i = 0; i < 12; ++i) {
      EXPECT_EQ(bitmap->plane[0][i], picture.pixel(i % 4, top + i / 4, false));
    }
  }
  UTIL_MBitmapFree(bitmap);
}

TEST(UtilBitmapOfFormatZero, HasItsSizeAndNoPixels) {
  for (const auto& [width, height] : {std::pair{0, 0}, {5, 4}, {0, 7}, {INT32_MAX, INT32_MAX}}) {
    MBitmap* const bitmap = UTIL_MBitmapCreate(width, height, 0);
    ASSERT_NE(bitmap, nullptr);
    const MBitmap expected = {0, width, height, {}, {}};
    EXPECT_EQ(std::memcmp(bitmap, &expected, sizeof expected), 0);
    UTIL_MBitmapFree(bitmap);
  }
  EXPECT_EQ(UTIL_MBitmapCreate(-1, 4, 0), nullptr);
  EXPECT_EQ(UTIL_MBitmapCreate(4, -1, 0), nullptr);
  EXPECT_EQ(UTIL_MBitmapCreate(0, 4, 0x64000000), nullptr);
  EXPECT_EQ(UTIL_MBitmapCreate(4, 4, 0x50000811), nullptr);
}

}  // namespace
