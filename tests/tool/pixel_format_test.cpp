#include "pixel_format.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <map>
#include <string>

#include "errors.h"
#include "image_files.h"

namespace qpx::tool {
namespace {

using Bytes = std::vector<uint8_t>;

Picture pictureOf(int32_t width, int32_t height, int channels, const Bytes& samples) {
  Picture picture(width, height, channels);
  std::copy(samples.begin(), samples.end(), picture.row(0));
  return picture;
}

Bytes frameBytes(const char* format, const Picture& picture) {
  Frame frame(pixelFormatByName(format), picture.width(), picture.height());
  toFrame(picture, frame);
  return {frame.data(), frame.data() + frame.bytes()};
}

Bytes backAgain(const char* format, const Picture& picture) {
  Frame frame(pixelFormatByName(format), picture.width(), picture.height());
  toFrame(picture, frame);
  Picture result = copyOf(picture);
  std::fill_n(result.row(0), result.pitch() * result.height(), uint8_t{77});
  fromFrame(frame, result);
  return {result.row(0), result.row(0) + result.pitch() * result.height()};
}

// One pixel, red 200, green 100, blue 50.
const Picture& orange() {
  static const Picture picture = pictureOf(1, 1, 3, {200, 100, 50});
  return picture;
}

TEST(PixelFormat, PacksEightBitFieldsInTheOrderOfTheName) {
  EXPECT_EQ(frameBytes("bgr24", orange()), (Bytes{50, 100, 200}));
  EXPECT_EQ(frameBytes("rgb24", orange()), (Bytes{200, 100, 50}));
  EXPECT_EQ(frameBytes("bgrx32", orange()), (Bytes{50, 100, 200, 255}));
  EXPECT_EQ(frameBytes("rgbx32", orange()), (Bytes{200, 100, 50, 255}));
  const Picture clear = pictureOf(1, 1, 4, {200, 100, 50, 7});
  EXPECT_EQ(frameBytes("bgra32", clear), (Bytes{50, 100, 200, 7}));
  EXPECT_EQ(frameBytes("rgba32", clear), (Bytes{200, 100, 50, 7}));
}

// 200, 100, 50 become 24, 12, 6 of 31 (24.3, 12.2, 6.1); 25 of 63 (24.7); 12, 6, 3 of 15
// (11.8, 5.9, 2.9); 49, 25, 12 of 63 (49.4, 24.7, 12.4).
TEST(PixelFormat, PacksNarrowFieldsRoundedIntoLittleEndianWords) {
  EXPECT_EQ(frameBytes("rgb565", orange()), (Bytes{0x26, 0xC3}));  // 24<<11 | 25<<5 | 6
  EXPECT_EQ(frameBytes("bgr565", orange()), (Bytes{0x38, 0x33}));  // 6<<11 | 25<<5 | 24
  EXPECT_EQ(frameBytes("rgb555", orange()), (Bytes{0x86, 0x61}));  // 24<<10 | 12<<5 | 6
  EXPECT_EQ(frameBytes("bgr555", orange()), (Bytes{0x98, 0x19}));  // 6<<10 | 12<<5 | 24
  EXPECT_EQ(frameBytes("rgb444", orange()), (Bytes{0x63, 0x0C}));
  EXPECT_EQ(frameBytes("bgr444", orange()), (Bytes{0x6C, 0x03}));
  EXPECT_EQ(frameBytes("bgr666", orange()), (Bytes{0x4C, 0x16, 0x03}));  // 49<<12 | 25<<6 | 12
  EXPECT_EQ(frameBytes("rgb666", orange()), (Bytes{0x71, 0xC6, 0x00}));  // 12<<12 | 25<<6 | 49
}

// Y = 59.8 + 58.7 + 5.7 = 124.2; U = 128 + (50 - 124.2) / 1.772 = 86.13;
// V = 128 + (200 - 124.2) / 1.402 = 182.07.
TEST(PixelFormat, ConvertsToFullRangeYuv) {
  EXPECT_EQ(frameBytes("grey", orange()), (Bytes{124}));
  EXPECT_EQ(frameBytes("i444", orange()), (Bytes{124, 86, 182}));
  EXPECT_EQ(frameBytes("i420", orange()), (Bytes{124, 86, 182}));
  EXPECT_EQ(frameBytes("nv21", orange()), (Bytes{124, 182, 86}));
  EXPECT_EQ(frameBytes("nv12", orange()), (Bytes{124, 86, 182}));
}

TEST(PixelFormat, RepeatsTheLastLumaWhereAPackedPairHasOnePixel) {
  EXPECT_EQ(frameBytes("yuyv", orange()), (Bytes{124, 86, 124, 182}));
  EXPECT_EQ(frameBytes("yvyu", orange()), (Bytes{124, 182, 124, 86}));
  EXPECT_EQ(frameBytes("uyvy", orange()), (Bytes{86, 124, 182, 124}));
  EXPECT_EQ(frameBytes("vyuy", orange()), (Bytes{182, 124, 86, 124}));
}

TEST(PixelFormat, ReachesTheEndsOfTheRange) {
  EXPECT_EQ(frameBytes("i444", pictureOf(1, 1, 3, {0, 0, 0})), (Bytes{0, 128, 128}));
  EXPECT_EQ(frameBytes("i444", pictureOf(1, 1, 3, {255, 255, 255})), (Bytes{255, 128, 128}));
  // U of pure blue is 255.5, which no byte holds.
  EXPECT_EQ(frameBytes("i444", pictureOf(1, 1, 3, {0, 0, 255})), (Bytes{29, 255, 107}));
}

// A 3x3 picture, black but for one white pixel at (2, 2) and one pure red at (0, 0).
Picture corners() {
  Bytes samples(27, 0);
  samples[0] = 255;
  std::fill_n(samples.begin() + 24, 3, uint8_t{255});
  return pictureOf(3, 3, 3, samples);
}

// Red alone: U = 128 - 0.168736 * 255 = 84.97, V = 128 + 127.5 = 255.5. The first 2x2 block holds a
// quarter of it: U = 117.24, V = 159.88; the pair of the first row a half: U = 106.49, V = 191.75.
TEST(PixelFormat, AveragesChromaOverThePixelsOfTheBlockInThePicture) {
  const Bytes luma = {76, 0, 0, 0, 0, 0, 0, 0, 255};
  const auto with = [&](Bytes chroma) {
    chroma.insert(chroma.begin(), luma.begin(), luma.end());
    return chroma;
  };
  EXPECT_EQ(frameBytes("i420", corners()), with({117, 128, 128, 128, 160, 128, 128, 128}));
  EXPECT_EQ(frameBytes("nv21", corners()), with({160, 117, 128, 128, 128, 128, 128, 128}));
  EXPECT_EQ(frameBytes("nv12", corners()), with({117, 160, 128, 128, 128, 128, 128, 128}));
  EXPECT_EQ(frameBytes("i422", corners()),
            with({106, 128, 128, 128, 128, 128, 192, 128, 128, 128, 128, 128}));
  EXPECT_EQ(frameBytes("i440", corners()),
            with({106, 128, 128, 128, 128, 128, 192, 128, 128, 128, 128, 128}));
}

TEST(PixelFormat, ComesBackWithinTheStatedError) {
  const std::map<std::string, int> limits = {
      {"bgr24", 0},  {"rgb24", 0},  {"bgra32", 0}, {"rgba32", 0}, {"bgrx32", 0},
      {"rgbx32", 0}, {"rgb565", 4}, {"bgr565", 4}, {"rgb666", 2}, {"bgr666", 2},
      {"rgb555", 4}, {"bgr555", 4}, {"rgb444", 8}, {"bgr444", 8}, {"i444", 1}};
  const test::Image image = test::randomImage(61, 47, 3, 5);
  const Picture picture = pictureOf(61, 47, 3, image.samples);
  for (const auto& [format, limit] : limits) {
    const Bytes back = backAgain(format.c_str(), picture);
    int worst = 0;
    for (size_t i = 0; i < back.size(); ++i) {
      worst = std::max(worst, std::abs(back[i] - image.samples[i]));
    }
    EXPECT_LE(worst, limit) << format;
  }
}

TEST(PixelFormat, BlocksOfOneColourLoseNothingToSubsampling) {
  const test::Image image = test::makeImage(
      8, 6, 3, [](int x, int y, int c) { return x / 2 * 40 + y / 2 * 20 + c * 15; });
  for (const PixelFormat& format : pixelFormats()) {
    if (format.layout == Layout::packedRgb || format.layout == Layout::grey) continue;
    const Bytes back = backAgain(format.name, pictureOf(8, 6, 3, image.samples));
    for (size_t i = 0; i < back.size(); ++i) {
      ASSERT_LE(std::abs(back[i] - image.samples[i]), 1) << format.name << " " << i;
    }
  }
}

TEST(PixelFormat, RgbAndGreyChangeNothingAfterTheFirstTurn) {
  const test::Image image = test::randomImage(9, 7, 3, 6);
  for (const PixelFormat& format : pixelFormats()) {
    if (format.layout != Layout::packedRgb && format.layout != Layout::grey) continue;
    const Bytes once = backAgain(format.name, pictureOf(9, 7, 3, image.samples));
    EXPECT_EQ(backAgain(format.name, pictureOf(9, 7, 3, once)), once) << format.name;
  }
}

TEST(PixelFormat, KeepsThePicturesAlphaWhereTheFormatHasNone) {
  const Picture clear = pictureOf(1, 1, 4, {10, 20, 30, 40});
  Picture result = pictureOf(1, 1, 4, {0, 0, 0, 40});
  Frame frame(pixelFormatByName("bgrx32"), 1, 1);
  toFrame(clear, frame);
  fromFrame(frame, result);
  EXPECT_EQ(Bytes(result.row(0), result.row(0) + 4), (Bytes{10, 20, 30, 40}));
}

TEST(PixelFormat, PlanesAtARowAddressItsChromaBlock) {
  const Frame frame(pixelFormatByName("nv21"), 5, 6);
  const QPXPlaneSet planes = frame.planesAt(3);
  EXPECT_EQ(planes.plane[0] - frame.data(), 15);
  EXPECT_EQ(planes.plane[2] - frame.data(), 30 + 6);
  EXPECT_EQ(planes.plane[1] - planes.plane[2], 1);
  EXPECT_EQ(planes.pitch[1], 6);
}

TEST(PixelFormat, RefusesAnUnknownNameAndSaysWhatThereIs) {
  EXPECT_STREQ(pixelFormatByName("NV21").name, "nv21");
  try {
    pixelFormatByName("nv22");
    FAIL();
  } catch (const UsageError& error) {
    EXPECT_NE(std::string(error.what()).find("nv21"), std::string::npos);
  }
}

}  // namespace
}  // namespace qpx::tool
