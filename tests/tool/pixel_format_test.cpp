// Names of pixel formats and frames of them.
#include "pixel_format.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <map>
#include <set>
#include <string>

#include "errors.h"
#include "run_tool.h"

namespace qpx::tool {
namespace {

// 5x3 pixels: chroma columns and rows are rounded up.
TEST(PixelFormat, FramesHaveTheBytesOfTheirLayout) {
  const std::map<std::string, size_t> expected = {
      {"bgr24", 45},  {"rgb24", 45},  {"bgra32", 60}, {"rgba32", 60}, {"bgrx32", 60},
      {"rgbx32", 60}, {"rgb565", 30}, {"bgr565", 30}, {"rgb666", 45}, {"bgr666", 45},
      {"rgb555", 30}, {"bgr555", 30}, {"rgb444", 30}, {"bgr444", 30}, {"grey", 15},
      {"i420", 27},   {"i422", 33},   {"i440", 35},   {"i444", 45},   {"i411", 27},
      {"i410", 19},   {"yv12", 27},   {"yv16", 33},   {"yv24", 45},   {"nv21", 27},
      {"nv12", 27},   {"nv61", 33},   {"nv16", 33},   {"yuyv", 36},   {"yvyu", 36},
      {"uyvy", 36},   {"vyuy", 36},   {"yuv24", 45},  {"iyu2", 45},   {"yuvx32", 60}};
  ASSERT_EQ(pixelFormats().size(), expected.size());
  for (const PixelFormat& format : pixelFormats()) {
    EXPECT_EQ(Frame(format, 5, 3).bytes(), expected.at(format.name)) << format.name;
    EXPECT_EQ(Frame::bytesOf(format, 5, 3), expected.at(format.name)) << format.name;
  }
}

TEST(PixelFormat, NamesAndCodesStandForOneFormat) {
  std::set<std::string> names;
  std::set<uint32_t> codes;
  for (const PixelFormat& format : pixelFormats()) {
    EXPECT_TRUE(names.insert(format.name).second) << format.name;
    EXPECT_TRUE(codes.insert(format.code).second) << format.name;
  }
}

TEST(PixelFormat, CodesTellHowAPixelIsMade) {
  const std::set<std::string> spare = {"bgra32", "rgba32", "bgrx32", "rgbx32", "yuvx32"};
  const std::set<std::string> chromaFirst = {"uyvy", "vyuy", "iyu2"};
  for (const PixelFormat& format : pixelFormats()) {
    EXPECT_EQ(hasSpareByte(format), spare.contains(format.name)) << format.name;
    EXPECT_EQ(beginsWithChroma(format), chromaFirst.contains(format.name)) << format.name;
  }
  using Bits = std::array<int, 3>;
  EXPECT_EQ(fieldBits(pixelFormatByName("rgb565")), (Bits{5, 6, 5}));
  EXPECT_EQ(fieldBits(pixelFormatByName("bgr444")), (Bits{4, 4, 4}));
  EXPECT_EQ(narrowestField(pixelFormatByName("rgb565")), 5);
  EXPECT_EQ(narrowestField(pixelFormatByName("rgbx32")), 8);
}

TEST(PixelFormat, PlanesAtARowAddressItsChromaBlock) {
  const Frame frame(pixelFormatByName("nv21"), 5, 6);
  const QPXPlaneSet planes = frame.planesAt(3);
  EXPECT_EQ(planes.plane[0] - frame.data(), 15);
  EXPECT_EQ(planes.plane[2] - frame.data(), 30 + 6);
  EXPECT_EQ(planes.plane[1] - planes.plane[2], 1);
  EXPECT_EQ(planes.pitch[1], 6);
}

TEST(PixelFormat, TheEngineSeesPlanesOfVBehindThoseOfU) {
  const Frame frame(pixelFormatByName("yv12"), 4, 4);
  EXPECT_EQ(frame.bitmap().plane[1] - frame.data(), 16);
  EXPECT_EQ(frame.bitmap().plane[2] - frame.data(), 20);
  const MBitmap engines = frame.engineBitmap();
  EXPECT_EQ(engines.format, uint32_t{QPX_FORMAT_I420});
  EXPECT_EQ(engines.plane[1] - frame.data(), 20);
  EXPECT_EQ(engines.plane[2] - frame.data(), 16);
  EXPECT_EQ(frame.planesAt(2).plane[1] - frame.data(), 22);
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

using Bytes = std::string;

Bytes planes(std::initializer_list<std::initializer_list<int>> samples) {
  Bytes bytes;
  for (const auto& plane : samples) {
    for (const int sample : plane) bytes += static_cast<char>(sample);
  }
  return bytes;
}

class FrameLayoutTest : public test::ToolTest {
 protected:
  Bytes convert(const Bytes& frame, const std::string& from, const std::string& size,
                const std::string& to) const {
    const test::ToolRun result =
        run({"convert", "-", "-", "--from", from, "--in-size", size, "--to", to}, frame);
    EXPECT_TRUE(test::succeeded(result)) << from << " to " << to;
    return result.out;
  }
};

struct Layouts {
  const char* format;
  const char* size;
  Bytes frame;
  const char* planar;  // the same samples in a format of planes Y, U and V
  Bytes inPlanes;
};

TEST_F(FrameLayoutTest, SamplesLieWhereTheFormatSays) {
  const std::vector<Layouts> all = {
      {"yv12", "4x2", planes({{1, 2, 3, 4, 5, 6, 7, 8}, {91, 92}, {51, 52}}), "i420",
       planes({{1, 2, 3, 4, 5, 6, 7, 8}, {51, 52}, {91, 92}})},
      {"yv16", "2x2", planes({{1, 2, 3, 4}, {91, 92}, {51, 52}}), "i422",
       planes({{1, 2, 3, 4}, {51, 52}, {91, 92}})},
      {"yv24", "2x1", planes({{1, 2}, {91, 92}, {51, 52}}), "i444",
       planes({{1, 2}, {51, 52}, {91, 92}})},
      {"nv16", "2x2", planes({{1, 2, 3, 4}, {51, 91, 52, 92}}), "i422",
       planes({{1, 2, 3, 4}, {51, 52}, {91, 92}})},
      {"nv61", "2x2", planes({{1, 2, 3, 4}, {91, 51, 92, 52}}), "i422",
       planes({{1, 2, 3, 4}, {51, 52}, {91, 92}})},
      {"i411", "5x1", planes({{1, 2, 3, 4, 5}, {51, 52}, {91, 92}}), "i444",
       planes({{1, 2, 3, 4, 5}, {51, 51, 51, 51, 52}, {91, 91, 91, 91, 92}})},
      {"i410", "5x1", planes({{1, 2, 3, 4, 5}, {51, 52}, {91, 92}}), "i444",
       planes({{1, 2, 3, 4, 5}, {51, 51, 51, 51, 52}, {91, 91, 91, 91, 92}})},
      {"i410", "1x5", planes({{1, 2, 3, 4, 5}, {51, 52}, {91, 92}}), "i444",
       planes({{1, 2, 3, 4, 5}, {51, 51, 51, 51, 52}, {91, 91, 91, 91, 92}})},
      {"yuv24", "2x1", planes({{1, 51, 91, 2, 52, 92}}), "i444",
       planes({{1, 2}, {51, 52}, {91, 92}})},
      {"iyu2", "2x1", planes({{51, 1, 91, 52, 2, 92}}), "i444",
       planes({{1, 2}, {51, 52}, {91, 92}})},
      {"yuvx32", "2x1", planes({{1, 51, 91, 255, 2, 52, 92, 255}}), "i444",
       planes({{1, 2}, {51, 52}, {91, 92}})},
  };
  for (const Layouts& layouts : all) {
    EXPECT_EQ(convert(layouts.frame, layouts.format, layouts.size, layouts.planar),
              layouts.inPlanes)
        << layouts.format;
    EXPECT_EQ(convert(layouts.inPlanes, layouts.planar, layouts.size, layouts.format),
              layouts.frame)
        << layouts.format;
  }
}

TEST_F(FrameLayoutTest, EffectsFindTheChromaOfEveryFormat) {
  // Grey takes the colour out of what lies where U and V should.
  const Bytes i420 = planes({{16, 60, 120, 200}, {30}, {220}});
  for (const PixelFormat& format : pixelFormats()) {
    if (format.layout == Layout::packedRgb) continue;
    const Bytes frame = convert(i420, "i420", "2x2", format.name);
    const test::ToolRun grey =
        run({"apply", "Fx1700", "-", "-", "--from", format.name, "--in-size", "2x2"}, frame);
    ASSERT_TRUE(test::succeeded(grey)) << format.name;
    const Bytes rgb = convert(grey.out, format.name, "2x2", "rgb24");
    for (size_t i = 0; i < rgb.size(); i += 3) {
      EXPECT_NEAR(static_cast<uint8_t>(rgb[i]), static_cast<uint8_t>(rgb[i + 2]), 2) << format.name;
    }
    EXPECT_LT(static_cast<uint8_t>(rgb[0]) + 60, static_cast<uint8_t>(rgb[9])) << format.name;
  }
}

TEST_F(FrameLayoutTest, EffectsSeePlanesOfVAsSuch) {
  const Bytes i420 = planes({{16, 60, 120, 200}, {30}, {220}});
  const Bytes yv12 = planes({{16, 60, 120, 200}, {220}, {30}});
  const auto gothic = [&](const char* format, const Bytes& frame) {
    return run({"apply", "Gothic", "-", "-", "--from", format, "--in-size", "2x2"}, frame).out;
  };
  Bytes expected = gothic("i420", i420);
  ASSERT_EQ(expected.size(), 6u);
  std::swap(expected[4], expected[5]);
  EXPECT_EQ(gothic("yv12", yv12), expected);
}

}  // namespace
}  // namespace qpx::tool
