// Pictures in every pixel format and back. What is expected is worked out by hand from the matrix
// of full-range BT.601 and the widths of fields: results are truncated, and a chroma sample is that
// of the last pixel of its block.
#include "picture_frame.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <map>
#include <string>
#include <vector>

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
  const Frame frame = frameOf(picture, pixelFormatByName(format), 1);
  return {frame.data(), frame.data() + frame.bytes()};
}

Bytes backAgain(const char* format, const Picture& picture) {
  const Frame frame = frameOf(picture, pixelFormatByName(format), 1);
  Picture result = copyOf(picture);
  std::fill_n(result.row(0), result.pitch() * result.height(), uint8_t{77});
  takeColors(frame, result, 1);
  return {result.row(0), result.row(0) + result.pitch() * result.height()};
}

int farthest(const Bytes& a, const Bytes& b) {
  int worst = a.size() == b.size() ? 0 : 999;
  for (size_t i = 0; worst < 999 && i < a.size(); ++i)
    worst = std::max(worst, std::abs(a[i] - b[i]));
  return worst;
}

// One pixel, red 200, green 100, blue 50.
const Picture& orange() {
  static const Picture picture = pictureOf(1, 1, 3, {200, 100, 50});
  return picture;
}

TEST(PictureFrame, EightBitFieldsStandInTheOrderOfTheName) {
  EXPECT_EQ(frameBytes("bgr24", orange()), (Bytes{50, 100, 200}));
  EXPECT_EQ(frameBytes("rgb24", orange()), (Bytes{200, 100, 50}));
  EXPECT_EQ(frameBytes("bgra32", orange()), (Bytes{50, 100, 200, 255}));
  EXPECT_EQ(frameBytes("bgrx32", orange()), (Bytes{50, 100, 200, 255}));
  EXPECT_EQ(frameBytes("rgbx32", orange()), (Bytes{200, 100, 50, 255}));
  const Picture clear = pictureOf(1, 1, 4, {200, 100, 50, 7});
  EXPECT_EQ(frameBytes("bgra32", clear), (Bytes{50, 100, 200, 7}));
  EXPECT_EQ(frameBytes("rgba32", clear), (Bytes{200, 100, 50, 7}));
  EXPECT_EQ(frameBytes("rgb24", clear), (Bytes{200, 100, 50}));
}

// The top bits of 200, 100, 50: 25, 12, 6 of five; 50, 25, 12 of six; 12, 6, 3 of four.
TEST(PictureFrame, NarrowFieldsKeepTheTopBits) {
  EXPECT_EQ(frameBytes("rgb565", orange()), (Bytes{0x26, 0xCB}));  // 25<<11 | 25<<5 | 6
  EXPECT_EQ(frameBytes("bgr565", orange()), (Bytes{0x39, 0x33}));  // 6<<11 | 25<<5 | 25
  EXPECT_EQ(frameBytes("rgb555", orange()), (Bytes{0x86, 0x65}));  // 25<<10 | 12<<5 | 6
  EXPECT_EQ(frameBytes("bgr555", orange()), (Bytes{0x99, 0x19}));  // 6<<10 | 12<<5 | 25
  EXPECT_EQ(frameBytes("rgb444", orange()), (Bytes{0x63, 0x0C}));
  EXPECT_EQ(frameBytes("bgr444", orange()), (Bytes{0x6C, 0x03}));
  EXPECT_EQ(frameBytes("bgr666", orange()), (Bytes{0x4C, 0x26, 0x03}));  // 50<<12 | 25<<6 | 12
  EXPECT_EQ(frameBytes("rgb666", orange()), (Bytes{0x72, 0xC6, 0x00}));  // 12<<12 | 25<<6 | 50
}

// 25 of 31 is 206, 12 is 99, 6 is 49; 25 of 63 is 101; 12, 6, 3 of 15 are 204, 102, 51.
TEST(PictureFrame, NarrowFieldsComeBackAsSharesOfTheWholeRange) {
  EXPECT_EQ(backAgain("rgb565", orange()), (Bytes{206, 101, 49}));
  EXPECT_EQ(backAgain("bgr555", orange()), (Bytes{206, 99, 49}));
  EXPECT_EQ(backAgain("rgb444", orange()), (Bytes{204, 102, 51}));
  const Bytes ends = {0, 255, 255, 255, 0, 0};
  for (const PixelFormat& format : pixelFormats()) {
    if (format.layout != Layout::packedRgb) continue;
    EXPECT_EQ(backAgain(format.name, pictureOf(2, 1, 3, ends)), ends) << format.name;
  }
}

// Y = 59.8 + 58.7 + 5.7 = 124.2; U = 128 - 33.7 - 33.1 + 25 = 86.13; V = 128 + 100 - 41.9 - 4.1 =
// 182.07.
TEST(PictureFrame, YuvHasTheFullRange) {
  EXPECT_EQ(frameBytes("grey", orange()), (Bytes{124}));
  EXPECT_EQ(frameBytes("i444", orange()), (Bytes{124, 86, 182}));
  EXPECT_EQ(frameBytes("i420", orange()), (Bytes{124, 86, 182}));
  EXPECT_EQ(frameBytes("yv12", orange()), (Bytes{124, 182, 86}));
  EXPECT_EQ(frameBytes("nv21", orange()), (Bytes{124, 182, 86}));
  EXPECT_EQ(frameBytes("nv12", orange()), (Bytes{124, 86, 182}));
  EXPECT_EQ(frameBytes("nv16", orange()), (Bytes{124, 86, 182}));
  EXPECT_EQ(frameBytes("nv61", orange()), (Bytes{124, 182, 86}));
  EXPECT_EQ(frameBytes("iyu2", orange()), (Bytes{86, 124, 182}));
}

TEST(PictureFrame, TheLastLumaIsRepeatedWhereAPackedPairHasOnePixel) {
  EXPECT_EQ(frameBytes("yuyv", orange()), (Bytes{124, 86, 124, 182}));
  EXPECT_EQ(frameBytes("yvyu", orange()), (Bytes{124, 182, 124, 86}));
  EXPECT_EQ(frameBytes("uyvy", orange()), (Bytes{86, 124, 182, 124}));
  EXPECT_EQ(frameBytes("vyuy", orange()), (Bytes{182, 124, 86, 124}));
}

TEST(PictureFrame, YuvReachesTheEndsOfTheRange) {
  EXPECT_EQ(frameBytes("i444", pictureOf(1, 1, 3, {0, 0, 0})), (Bytes{0, 128, 128}));
  EXPECT_EQ(frameBytes("i444", pictureOf(1, 1, 3, {255, 255, 255})), (Bytes{255, 128, 128}));
  // U of pure blue is 255.5.
  EXPECT_EQ(frameBytes("i444", pictureOf(1, 1, 3, {0, 0, 255})), (Bytes{29, 255, 107}));
}

// 3x3 pixels, black but for blue at (0, 0), red at (1, 1) and green at (2, 1).
Picture marks() {
  Bytes samples(27, 0);
  samples[2] = samples[(3 + 1) * 3] = samples[(3 + 2) * 3 + 1] = 255;
  return pictureOf(3, 3, 3, samples);
}

// Blue: Y 29.07, U 255.5, V 107.3. Red: Y 76.2, U 84.97, V 255.5. Green: Y 149.7, U 43.5, V 21.2.
TEST(PictureFrame, ABlockHasTheChromaOfItsLastPixel) {
  const auto with = [](Bytes chroma) {
    const Bytes luma = {29, 0, 0, 0, 76, 149, 0, 0, 0};
    chroma.insert(chroma.begin(), luma.begin(), luma.end());
    return chroma;
  };
  EXPECT_EQ(frameBytes("i420", marks()), with({84, 43, 128, 128, 255, 21, 128, 128}));
  EXPECT_EQ(frameBytes("nv21", marks()), with({255, 84, 21, 43, 128, 128, 128, 128}));
  EXPECT_EQ(frameBytes("nv12", marks()), with({84, 255, 43, 21, 128, 128, 128, 128}));
  EXPECT_EQ(frameBytes("i422", marks()),
            with({128, 128, 84, 43, 128, 128, 128, 128, 255, 21, 128, 128}));
  EXPECT_EQ(frameBytes("i440", marks()),
            with({128, 84, 43, 128, 128, 128, 128, 255, 21, 128, 128, 128}));
  EXPECT_EQ(frameBytes("i410", marks()), with({128, 128}));
}

// Truncation takes less than a step of a field, and what is put in its place adds less than that.
// Less than 1 of Y and of chroma is less than 2.8 of blue.
TEST(PictureFrame, ComesBackWithinTheErrorOfTheFormat) {
  const std::map<std::string, int> limits = {
      {"bgr24", 0},   {"rgb24", 0},   {"bgra32", 0}, {"rgba32", 0}, {"bgrx32", 0}, {"rgbx32", 0},
      {"rgb565", 7},  {"bgr565", 7},  {"rgb666", 3}, {"bgr666", 3}, {"rgb555", 7}, {"bgr555", 7},
      {"rgb444", 15}, {"bgr444", 15}, {"i444", 3},   {"yv24", 3},   {"yuv24", 3},  {"yuvx32", 3}};
  const test::Image image = test::randomImage(61, 47, 3, 5);
  const Picture picture = pictureOf(61, 47, 3, image.samples);
  for (const auto& [format, limit] : limits) {
    EXPECT_LE(farthest(backAgain(format.c_str(), picture), image.samples), limit) << format;
  }
}

// The fastest kernels, which the middle of a large frame takes, are less exact.
TEST(PictureFrame, BlocksOfOneColourLoseNothingToSubsampling) {
  const test::Image image = test::makeImage(
      64, 48, 3, [](int x, int y, int c) { return 40 + x / 4 * 7 + y / 4 * 5 + c * 15; });
  const Picture picture = pictureOf(64, 48, 3, image.samples);
  for (const PixelFormat& format : pixelFormats()) {
    if (format.layout == Layout::packedRgb || format.layout == Layout::grey) continue;
    EXPECT_LE(farthest(backAgain(format.name, picture), image.samples), 4) << format.name;
  }
}

TEST(PictureFrame, RgbChangesNothingAfterTheFirstTurn) {
  const test::Image image = test::randomImage(9, 7, 3, 6);
  for (const PixelFormat& format : pixelFormats()) {
    if (format.layout != Layout::packedRgb) continue;
    const Bytes once = backAgain(format.name, pictureOf(9, 7, 3, image.samples));
    EXPECT_EQ(backAgain(format.name, pictureOf(9, 7, 3, once)), once) << format.name;
  }
}

TEST(PictureFrame, ThreadsChangeNothing) {
  const test::Image image = test::randomImage(70, 67, 3, 8);
  const Picture picture = pictureOf(70, 67, 3, image.samples);
  for (const char* name : {"nv21", "rgb565", "yuyv"}) {
    const PixelFormat& format = pixelFormatByName(name);
    const Frame one = frameOf(picture, format, 1), three = frameOf(picture, format, 3);
    EXPECT_TRUE(std::equal(one.data(), one.data() + one.bytes(), three.data())) << name;
  }
}

TEST(PictureFrame, ThePicturesAlphaStaysWhereTheFormatHasNone) {
  const Picture clear = pictureOf(1, 1, 4, {10, 20, 30, 40});
  for (const char* format : {"bgrx32", "bgr24", "i444"}) {
    Picture result = pictureOf(1, 1, 4, {0, 0, 0, 90});
    takeColors(frameOf(clear, pixelFormatByName(format), 1), result, 1);
    EXPECT_NEAR(result.row(0)[2], 30, 3) << format;
    EXPECT_EQ(result.row(0)[3], 90) << format;
  }
  Picture result = pictureOf(1, 1, 4, {0, 0, 0, 90});
  takeColors(frameOf(clear, pixelFormatByName("bgra32"), 1), result, 1);
  EXPECT_EQ(Bytes(result.row(0), result.row(0) + 4), (Bytes{10, 20, 30, 40}));
}

}  // namespace
}  // namespace qpx::tool
