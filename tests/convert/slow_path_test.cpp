#include <gtest/gtest.h>
#include <qpx/convert.h>

#include <memory>
#include <tuple>
#include <vector>

#include "convert/conversion_model.h"
#include "convert/record.h"
#include "convert/strip_walk.h"
#include "support/picture.h"

namespace qpx::testing {
namespace {

using Kind = FormatLayout::Kind;

convert::Planes planesOf(const ConversionPicture& src, ConversionPicture* dst) {
  convert::Planes planes;
  for (int32_t p = 0; p < 3; ++p) {
    planes.src[p] = src.planes()[p];
    planes.srcPitch[p] = src.pitches()[p];
    planes.dst[p] = dst->planes()[p];
    planes.dstPitch[p] = dst->pitches()[p];
  }
  return planes;
}

// Everything about one conversion; the pictures begin at 0, the rectangles where `params` says.
struct Conversion {
  uint32_t from, to;
  int32_t srcWidth, srcHeight, dstWidth, dstHeight;
  ConvParams params = {};

  convert::Side src() const {
    const bool palette = layoutOf(from).kind == Kind::palette;
    return {from, static_cast<uint32_t>(srcWidth), static_cast<uint32_t>(srcHeight),
            palette ? noisePalette() : nullptr};
  }
  convert::Side dst() const {
    return {to, static_cast<uint32_t>(dstWidth), static_cast<uint32_t>(dstHeight)};
  }
  MRect rect() const {
    return {params.dstX, params.dstY, params.dstX + dstWidth, params.dstY + dstHeight};
  }
};

class Converter {
 public:
  explicit Converter(const Conversion& c) {
    result = convert::buildRecord(c.dst(), c.src(), c.params, &record);
  }
  Converter(const Converter&) = delete;
  Converter& operator=(const Converter&) = delete;
  ~Converter() { convert::freeTables(&record); }

  int32_t run(const ConversionPicture& src, const MRect& rect, ConversionPicture* dst) const {
    return convert::convertRect(record, planesOf(src, dst), rect, ANY_ANY_C_SLOW);
  }

  ConvRecord record = {};
  int32_t result;
};

// All bytes of the destination, those of the rectangle and the others.
void expectAsModel(const Conversion& c, const MRect& rect, uint64_t seed) {
  const int32_t right = c.params.dstX + c.dstWidth, bottom = c.params.dstY + c.dstHeight;
  ConversionPicture src(c.from, c.params.srcX + c.srcWidth, c.params.srcY + c.srcHeight, seed);
  ConversionPicture dst(c.to, right, bottom, seed + 1);
  if (seed % 3 == 0) src.turnOver();
  if (seed % 5 == 0) dst.turnOver();
  ConversionPicture expected = dst;
  convertByModel(src, c.params, c.srcWidth, c.srcHeight, c.dstWidth, c.dstHeight, rect, &expected);
  const Converter converter(c);
  ASSERT_EQ(QPX_OK, converter.result);
  ASSERT_EQ(QPX_OK, converter.run(src, rect, &dst));
  EXPECT_TRUE(dst.sameBytes(expected))
      << std::hex << c.from << " to " << c.to << std::dec << ", orientation " << c.params.orient
      << ", " << c.srcWidth << "x" << c.srcHeight << " to " << c.dstWidth << "x" << c.dstHeight
      << ", rectangle " << rect.left << " " << rect.top << " " << rect.right << " " << rect.bottom
      << ", interp " << c.params.interp;
}

uint32_t anyColour(const FormatLayout& layout, Random& random) {
  const bool yuv = layout.kind == Kind::yuv || layout.kind == Kind::grey;
  return layout.format | (yuv ? static_cast<uint32_t>(random.between(0, 3)) << 12 : 0);
}

ConvParams anyParams(Random& random) {
  ConvParams params = {};
  params.interp = static_cast<uint32_t>(random.between(1, 2));
  params.orient = static_cast<uint32_t>(random.between(0, 7));
  params.dither = static_cast<uint32_t>(random.between(0, 1));
  params.alpha = random.byte();
  params.blockHint = static_cast<uint32_t>(random.between(3, 4));
  if (random.between(0, 1) == 0) {
    params.brightness = random.between(-40, 40);
    params.contrast = random.between(-128, 20);
    params.saturation = random.between(-128, 20);
  }
  for (int32_t* origin : {&params.srcX, &params.srcY, &params.dstX, &params.dstY}) {
    if (random.between(0, 2) == 0) *origin = random.between(1, 6);
  }
  return params;
}

MRect partOf(const MRect& all, Random& random) {
  MRect part;
  part.left = random.between(all.left, all.right - 1);
  part.top = random.between(all.top, all.bottom - 1);
  part.right = random.between(part.left + 1, all.right);
  part.bottom = random.between(part.top + 1, all.bottom);
  return part;
}

TEST(SlowPath, EqualsTheModelForEveryPairOfFormats) {
  Random random(2026);
  uint64_t seed = 0;
  for (const FormatLayout& from : formatLayouts()) {
    for (const FormatLayout& to : formatLayouts()) {
      if (to.kind == Kind::palette) continue;
      Conversion c = {anyColour(from, random), anyColour(to, random), random.between(1, 13),
                      random.between(1, 11),   random.between(1, 15), random.between(1, 12),
                      anyParams(random)};
      const bool swap = (c.params.orient & 1) != 0;
      if (random.between(0, 3) == 0) {
        c.dstWidth = swap ? c.srcHeight : c.srcWidth;
        c.dstHeight = swap ? c.srcWidth : c.srcHeight;
      }
      const MRect rect = random.between(0, 1) == 0 ? c.rect() : partOf(c.rect(), random);
      expectAsModel(c, rect, ++seed);
      if (HasFailure()) return;
    }
  }
}

TEST(SlowPath, EqualsTheModelInLongRunsAndManyStrips) {
  Random random(5);
  uint64_t seed = 100;
  for (const uint32_t to : {0x15000454u, 0x50000811u, 0x50000010u, 0x50000110u, 0x17000777u}) {
    for (uint32_t orient = 0; orient < 8; ++orient) {
      Conversion c = {0x70001002, to, 290, 5, 301, 7, anyParams(random)};
      c.params.orient = orient;
      if ((orient & 1) != 0) std::swap(c.dstWidth, c.dstHeight);
      expectAsModel(c, c.rect(), ++seed);
      if (HasFailure()) return;
    }
  }
}

TEST(SlowPath, EqualsTheModelWithAClip) {
  Random random(8);
  uint64_t seed = 300;
  for (int32_t i = 0; i < 200; ++i) {
    Conversion c = {i % 2 == 0 ? 0x50000811u : 0x16000777u,
                    i % 3 == 0 ? 0x70000002u : 0x37001777u,
                    random.between(4, 16),
                    random.between(4, 16),
                    random.between(1, 24),
                    random.between(1, 24),
                    anyParams(random)};
    const MRect source = {c.params.srcX, c.params.srcY, c.params.srcX + c.srcWidth,
                          c.params.srcY + c.srcHeight};
    const MRect clip = partOf(source, random);
    c.params.clipLeft = clip.left;
    c.params.clipTop = clip.top;
    c.params.clipRight = clip.right;
    c.params.clipBottom = clip.bottom;
    expectAsModel(c, c.rect(), ++seed);
    if (HasFailure()) return;
  }
}

TEST(SlowPath, AnyCutWritesTheSameBytes) {
  Random random(12);
  for (const uint32_t to : {0x50000811u, 0x70000002u, 0x50000410u, 0x50000A13u, 0x15000454u}) {
    for (uint32_t orient = 0; orient < 8; ++orient) {
      Conversion c = {0x50000811, to, 21, 17, 23, 39, {}};
      c.params.orient = orient;
      c.params.interp = 2;
      const Converter converter(c);
      const ConversionPicture src(c.from, c.srcWidth, c.srcHeight, 3);
      ConversionPicture whole(to, c.dstWidth, c.dstHeight, 4), cut = whole;
      ASSERT_EQ(QPX_OK, converter.run(src, c.rect(), &whole));
      const int32_t x = 2 * random.between(1, 10), y = 4 * random.between(1, 8);
      for (const MRect& part :
           {MRect{0, 0, x, y}, MRect{x, 0, 23, y}, MRect{0, y, x, 39}, MRect{x, y, 23, 39}}) {
        ASSERT_EQ(QPX_OK, converter.run(src, part, &cut));
      }
      EXPECT_TRUE(whole.sameBytes(cut)) << std::hex << to << ", orientation " << orient;
    }
  }
}

// One pixel of a colour that no rounding blurs: white of full range is white.
TEST(SlowPath, WhiteIsWhite) {
  const Conversion c = {0x50001811, QPX_FORMAT_BGR24, 1, 1, 1, 1, {}};
  const Converter converter(c);
  const uint8_t y = 255, u = 128, v = 128;
  uint8_t pixel[3] = {};
  convert::Planes planes = {{&y, &u, &v}, {1, 1, 1}, {pixel}, {3}};
  ASSERT_EQ(QPX_OK, convert::convertRect(converter.record, planes, c.rect(), ANY_ANY_C_SLOW));
  EXPECT_EQ(255, pixel[0]);
  EXPECT_EQ(255, pixel[1]);
  EXPECT_EQ(255, pixel[2]);
}

// BT.601 video range by the textbook: Y 81, U 90, V 240 is red.
TEST(SlowPath, RedIsRed) {
  const Conversion c = {QPX_FORMAT_YUYV, QPX_FORMAT_RGB24, 2, 1, 2, 1, {}};
  const Converter converter(c);
  const uint8_t group[4] = {81, 90, 81, 240};
  uint8_t pixels[6] = {};
  convert::Planes planes = {{group}, {4}, {pixels}, {6}};
  ASSERT_EQ(QPX_OK, convert::convertRect(converter.record, planes, c.rect(), ANY_ANY_C_SLOW));
  for (int32_t x = 0; x < 2; ++x) {
    EXPECT_NEAR(254, pixels[3 * x], 2);
    EXPECT_NEAR(0, pixels[3 * x + 1], 1);
    EXPECT_NEAR(0, pixels[3 * x + 2], 1);
  }
}

// 255 * 19595 / 65536 = 76.2; U: 128 - 43.03 = 84.97, truncated; V: 128 + 127.5 = 255.
TEST(SlowPath, RedBecomesYuvByHand) {
  const Conversion c = {QPX_FORMAT_BGR24, 0x50001800, 1, 1, 1, 1, {}};
  const Converter converter(c);
  const uint8_t red[3] = {0, 0, 255};
  uint8_t y = 0, u = 0, v = 0;
  convert::Planes planes = {{red}, {3}, {&y, &u, &v}, {1, 1, 1}};
  ASSERT_EQ(QPX_OK, convert::convertRect(converter.record, planes, c.rect(), ANY_ANY_C_SLOW));
  EXPECT_EQ(76, y);
  EXPECT_EQ(84, u);
  EXPECT_EQ(255, v);
}

// A clockwise quarter turn.
TEST(SlowPath, TurnsByHand) {
  Conversion c = {QPX_FORMAT_GREY8, QPX_FORMAT_GREY8, 3, 2, 2, 3, {}};
  c.params.orient = 3;
  const Converter converter(c);
  const uint8_t src[6] = {1, 2, 3, 4, 5, 6};
  uint8_t dst[6] = {};
  convert::Planes planes = {{src}, {3}, {dst}, {2}};
  ASSERT_EQ(QPX_OK, convert::convertRect(converter.record, planes, c.rect(), ANY_ANY_C_SLOW));
  const uint8_t expected[6] = {4, 1, 5, 2, 6, 3};
  for (int32_t i = 0; i < 6; ++i) EXPECT_EQ(expected[i], dst[i]) << i;
}

// Full-range grey 3 becomes 3 / 8 of a step of five bits: carries 3, 6 + 3, ... make every third or
// so pixel a step lighter. Sums 6, 9, 4, 7, 10, 5, 8, 3: ones at 9, 10 and 8.
TEST(SlowPath, DithersByHand) {
  Conversion c = {0x64001000, QPX_FORMAT_RGB565, 8, 1, 8, 1, {}};
  c.params.dither = 1;
  const Converter converter(c);
  const uint8_t src[8] = {3, 3, 3, 3, 3, 3, 3, 3};
  uint8_t dst[16] = {};
  convert::Planes planes = {{src}, {8}, {dst}, {16}};
  ASSERT_EQ(QPX_OK, convert::convertRect(converter.record, planes, c.rect(), ANY_ANY_C_SLOW));
  const int32_t steps[8] = {0, 1, 0, 0, 1, 0, 1, 0};
  for (int32_t x = 0; x < 8; ++x) {
    EXPECT_EQ(steps[x], dst[2 * x] & 31) << x;
    EXPECT_EQ(steps[x], dst[2 * x + 1] >> 3) << x;
  }
}

// The same eight pixels, four in a row: the second row goes on with what the first left.
TEST(SlowPath, DithersOverRowEndsByHand) {
  Conversion c = {0x64001000, QPX_FORMAT_RGB565, 4, 2, 4, 2, {}};
  c.params.dither = 1;
  for (const uint32_t orient : {0u, 1u}) {
    c.params.orient = orient;
    std::tie(c.dstWidth, c.dstHeight) = orient == 0 ? std::tuple(4, 2) : std::tuple(2, 4);
    const Converter converter(c);
    const uint8_t src[8] = {3, 3, 3, 3, 3, 3, 3, 3};
    constexpr int32_t kSteps[2][4] = {{0, 1, 0, 0}, {1, 0, 1, 0}};
    for (const ConvFrameFunction frame : {ANY_ANY_C_SLOW, ANY_ANY_Bilinear_No_Table}) {
      uint8_t dst[16] = {};
      const int32_t pitch = 2 * c.dstWidth;
      convert::Planes planes = {{src}, {4}, {dst}, {pitch}};
      ASSERT_EQ(QPX_OK, convert::convertRect(converter.record, planes, c.rect(), frame));
      for (int32_t y = 0; y < 2; ++y) {
        for (int32_t x = 0; x < 4; ++x) {
          const int32_t at = orient == 0 ? pitch * y + 2 * x : pitch * x + 2 * y;
          EXPECT_EQ(kSteps[y][x], dst[at] & 31) << x << ", " << y << ", " << orient;
          EXPECT_EQ(kSteps[y][x], dst[at + 1] >> 3) << x << ", " << y << ", " << orient;
        }
      }
    }
  }
}

TEST(SlowPath, FourthByte) {
  const auto fourth = [](uint32_t from, uint32_t to) {
    Conversion c = {from, to, 2, 2, 2, 2, {}};
    c.params.alpha = 0x77;
    const Converter converter(c);
    std::vector<uint8_t> src(64);
    for (size_t i = 0; i < src.size(); ++i) src[i] = static_cast<uint8_t>(0xA0 + i);
    std::vector<uint8_t> dst(16, 0x11);
    convert::Planes planes = {{src.data(), src.data(), src.data()}, {8, 8, 8}, {dst.data()}, {8}};
    EXPECT_EQ(QPX_OK, convert::convertRect(converter.record, planes, c.rect(), ANY_ANY_C_SLOW));
    return std::pair{dst[0], dst[3]};
  };
  EXPECT_EQ(0x77, fourth(QPX_FORMAT_I420, QPX_FORMAT_BGRA32).second);
  EXPECT_EQ(0x77, fourth(QPX_FORMAT_GREY8, QPX_FORMAT_RGBX32).second);
  EXPECT_EQ(0xA3, fourth(QPX_FORMAT_BGRA32, QPX_FORMAT_RGBA32).second);
  EXPECT_EQ(0x11, fourth(QPX_FORMAT_BGR24, QPX_FORMAT_BGRA32).second);
  EXPECT_EQ(0x11, fourth(QPX_FORMAT_RGB565, QPX_FORMAT_BGRA32).second);
  EXPECT_EQ(0x77, fourth(QPX_FORMAT_I420, 0x37004777).first);
  EXPECT_EQ(0xA3, fourth(QPX_FORMAT_BGRA32, 0x37004777).first);
  EXPECT_EQ(0xA0, fourth(0x37004777, QPX_FORMAT_BGRA32).second);
}

// Far more contrast and saturation than the clamp tables reach.
TEST(SlowPath, ClampsWildColours) {
  Conversion c = {0x50000800, QPX_FORMAT_BGR24, 2, 1, 2, 1, {}};
  c.params.contrast = 60;
  c.params.saturation = 128;
  const Converter converter(c);
  const uint8_t y[2] = {128, 128}, u[2] = {20, 240}, v[2] = {240, 20};
  uint8_t pixels[6] = {};
  convert::Planes planes = {{y, u, v}, {2, 2, 2}, {pixels}, {6}};
  ASSERT_EQ(QPX_OK, convert::convertRect(converter.record, planes, c.rect(), ANY_ANY_C_SLOW));
  EXPECT_EQ(0, pixels[0]);
  EXPECT_EQ(255, pixels[2]);
  EXPECT_EQ(255, pixels[3]);
  EXPECT_EQ(0, pixels[5]);
}

TEST(SlowPath, RefusesWhatItCannotReach) {
  const Conversion c = {QPX_FORMAT_I420, QPX_FORMAT_I420, 8, 8, 8, 8, {}};
  const Converter converter(c);
  const ConversionPicture src(c.from, 8, 8, 1);
  ConversionPicture dst(c.to, 8, 8, 2), before = dst;
  const auto call = [&](const MRect& rect, uint8_t* const* planes) {
    return ANY_ANY_C_SLOW(&rect, dst.pitches(), src.pitches(), planes, src.planes(),
                          &converter.record);
  };
  EXPECT_EQ(QPX_BAD_PARAM, call({0, 0, 9, 8}, dst.planes()));
  EXPECT_EQ(QPX_BAD_PARAM, call({-1, 0, 8, 8}, dst.planes()));
  EXPECT_EQ(QPX_OK, call({4, 4, 4, 8}, dst.planes()));
  EXPECT_EQ(QPX_OK, call({INT32_MAX, INT32_MAX, INT32_MIN, INT32_MIN}, dst.planes()));
  uint8_t* const holes[3] = {dst.planes()[0], nullptr, dst.planes()[2]};
  EXPECT_EQ(QPX_BAD_PARAM, call({0, 0, 8, 8}, holes));
  EXPECT_TRUE(dst.sameBytes(before));
}

TEST(Chain, EndsInTheGeneralFrame) {
  const Conversion c = {QPX_FORMAT_I420, 0x50000820, 9, 8, 7, 6, {}};
  const Converter converter(c);
  const ConversionPicture src(c.from, 9, 8, 1);
  ConversionPicture chained(c.to, 7, 6, 2), general = chained;
  EXPECT_EQ(QPX_OK, convert::convertRect(converter.record, planesOf(src, &chained), c.rect(),
                                         ANY_ANY_Bilinear_No_Table));
  EXPECT_EQ(QPX_OK, converter.run(src, c.rect(), &general));
  EXPECT_TRUE(chained.sameBytes(general));
}

}  // namespace
}  // namespace qpx::testing
