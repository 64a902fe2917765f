// Tone tables applied to pictures of every format.
#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <vector>

#include "filters/point/table_kernel.h"
#include "support/kernel_frame.h"
#include "toolkit/curve.h"
#include "toolkit/pixel_run.h"

namespace qpx {
namespace {

using testing::describe;
using testing::FormatCase;
using testing::KernelFrame;
using testing::Picture;
using testing::pixelOf;
using testing::Placement;
using testing::Random;
using testing::scramble;
using testing::wholeOf;

constexpr uint32_t kOneTable = 5;
constexpr uint32_t kThreeTables = 9;

// A stage with random tables, and the tables once more for the test.
struct RandomTables {
  RandomTables(KernelFrame& frame, uint32_t flags, uint64_t seed) {
    Random random(seed);
    for (uint8_t& entry : bytes) entry = random.byte();
    frame.setUp(0x2100);
    std::memcpy(frame.stage().lut, bytes, sizeof bytes);
    frame.stage().lutFlags = flags;
    frame.stage().lutSize = flags == kThreeTables ? 768 : 256;
    step = flags == kThreeTables ? 256 : 0;
  }

  int operator()(int channel, int sample) const { return bytes[channel * step + sample]; }

  uint8_t bytes[768];
  int step;
};

std::vector<FormatCase> packedFormats() {
  std::vector<FormatCase> result;
  for (const FormatCase& format : testing::formatCases()) {
    if ((format.group & kTakesPackedRgb) != 0) result.push_back(format);
  }
  result.push_back({0x37004777, "BGRA32flagged", QPX_TAKES_RGB_ANY});
  result.push_back({0x17000999, "RGB101010", QPX_TAKES_RGB_ANY});
  result.push_back({0x17000342, "RGB453in32", QPX_TAKES_RGB_ANY});
  result.push_back({0x15000F00, "tooWide", QPX_TAKES_RGB_ANY});
  result.push_back({0x15001000, "RGB111", QPX_TAKES_RGB_ANY});
  return result;
}

std::string formatName(const ::testing::TestParamInfo<FormatCase>& tested) {
  return tested.param.name;
}

class PackedTables : public ::testing::TestWithParam<FormatCase> {
 protected:
  // Field of `mask` in a pixel that held `before`, after the sample was set to `sample`.
  static uint32_t stored(int sample, uint32_t before, uint32_t mask) {
    const int size = mbf_GetMaskSize(mask);
    const int pos = mbf_GetMaskPos(mask);
    if (size == 0) return 0;
    if (size > 8 && testing::fieldOf(before, mask) == sample) return before & mask;
    const uint32_t twice = static_cast<uint32_t>(sample * 257);
    return (twice >> (16 - size)) << pos & mask;
  }

  void expectTables(const Picture& in, const Picture& out, const RandomTables& tables) {
    const uint32_t format = GetParam().format;
    for (int32_t y = 0; y < in.height(); ++y) {
      for (int32_t x = 0; x < in.width(); ++x) {
        const uint32_t before = pixelOf(in, x, y);
        uint32_t expected = before;
        for (int c = 0; c < 3; ++c) {
          const uint32_t mask = testing::fieldMask(format, c);
          const int sample = tables(c, testing::fieldOf(before, mask));
          expected = (expected & ~mask) | stored(sample, before, mask);
        }
        ASSERT_EQ(pixelOf(out, x, y), expected) << x << ", " << y;
      }
    }
  }
};

TEST_P(PackedTables, EveryFieldGoesThroughItsTable) {
  for (const uint32_t flags : {kOneTable, kThreeTables}) {
    KernelFrame frame(GetParam().format);
    const RandomTables tables(frame, flags, 11);
    Picture in(GetParam().format, 331, 5, Placement::exact);
    scramble(in, 2);
    Picture out(GetParam().format, 331, 5, Placement::guarded);
    ASSERT_EQ(frame.run(in, out, wholeOf(in)), QPX_OK);
    expectTables(in, out, tables);
    ASSERT_EQ(frame.run(in, in, wholeOf(in)), QPX_OK);
    EXPECT_FALSE(in.firstDifference(out));
  }
}

TEST_P(PackedTables, OnlyTheRectangleIsWritten) {
  Random random(GetParam().format);
  for (int round = 0; round < 50; ++round) {
    KernelFrame frame(GetParam().format);
    const RandomTables tables(frame, kThreeTables, 12);
    Picture in(GetParam().format, random.between(1, 50), random.between(1, 6), Placement::exact);
    scramble(in, 3);
    Picture out(in);
    Picture guarded(GetParam().format, in.width(), in.height(), Placement::guarded);
    const Picture before(guarded);
    MRect rect;
    rect.left = random.between(0, in.width() - 1);
    rect.right = random.between(rect.left + 1, in.width());
    rect.top = random.between(0, in.height() - 1);
    rect.bottom = random.between(rect.top + 1, in.height());
    ASSERT_EQ(frame.run(in, guarded, rect), QPX_OK);
    const auto stray = guarded.firstWriteOutside(before, rect);
    ASSERT_FALSE(stray) << describe(*stray);
    ASSERT_EQ(frame.run(in, out, wholeOf(in)), QPX_OK);
    for (int32_t y = rect.top; y < rect.bottom; ++y) {
      for (int32_t x = rect.left; x < rect.right; ++x) {
        ASSERT_EQ(pixelOf(guarded, x, y), pixelOf(out, x, y));
      }
    }
  }
}

INSTANTIATE_TEST_SUITE_P(Formats, PackedTables, ::testing::ValuesIn(packedFormats()), formatName);

TEST(GreyTables, OneTableAsItIs) {
  KernelFrame frame(QPX_FORMAT_GREY8);
  const RandomTables tables(frame, kOneTable, 5);
  Picture in(QPX_FORMAT_GREY8, 99, 9, Placement::exact);
  in.paint(1);
  Picture out(in);
  ASSERT_EQ(frame.run(in, out, wholeOf(in)), QPX_OK);
  for (int32_t y = 0; y < 9; ++y) {
    for (int32_t x = 0; x < 99; ++x) {
      ASSERT_EQ(out.yuv(0, x, y), tables(0, in.yuv(0, x, y)));
    }
  }
}

TEST(GreyTables, ThreeTablesByTheirLuma) {
  KernelFrame frame(QPX_FORMAT_GREY8);
  const RandomTables tables(frame, kThreeTables, 6);
  Picture in(QPX_FORMAT_GREY8, 99, 9, Placement::exact);
  in.paint(1);
  Picture out(in);
  ASSERT_EQ(frame.run(in, out, wholeOf(in)), QPX_OK);
  for (int32_t y = 0; y < 9; ++y) {
    for (int32_t x = 0; x < 99; ++x) {
      const int s = in.yuv(0, x, y);
      const int luma = (9798 * tables(0, s) + 19235 * tables(1, s) + 3735 * tables(2, s)) / 32768;
      ASSERT_EQ(out.yuv(0, x, y), luma);
    }
  }
}

std::vector<FormatCase> yuvFormats() {
  std::vector<FormatCase> result;
  for (const FormatCase& format : testing::formatCases()) {
    if ((format.group & kTakesYuv) != 0) result.push_back(format);
  }
  return result;
}

class YuvTables : public ::testing::TestWithParam<FormatCase> {
 protected:
  YuvTables() : frame_(GetParam().format), in_(GetParam().format, 61, 35, Placement::exact) {
    in_.paint(8);
  }

  // Runs over `rect` and compares every sample: luma through `luma`, chroma through `chroma`, where
  // the top-left pixel of its block lies in the rectangle.
  template <typename Luma, typename Chroma>
  void expectComponents(const MRect& rect, const Luma& luma, const Chroma& chroma) {
    Picture out(GetParam().format, in_.width(), in_.height(), Placement::guarded);
    const Picture before(out);
    ASSERT_EQ(frame_.run(in_, out, rect), QPX_OK);
    const bool semiPlanar = (GetParam().group & kTakesSemiPlanar) != 0;
    const int32_t across = semiPlanar ? 2 : (GetParam().format >> 4 & 15) + 1;
    const int32_t down = semiPlanar ? 2 : (GetParam().format & 15) + 1;
    for (int32_t y = 0; y < in_.height(); ++y) {
      for (int32_t x = 0; x < in_.width(); ++x) {
        const bool held = x >= rect.left && x < rect.right && y >= rect.top && y < rect.bottom;
        const int old = before.yuv(0, x, y);
        ASSERT_EQ(out.yuv(0, x, y), held ? luma(in_.yuv(0, x, y)) : old) << x << ", " << y;
        if (x % across != 0 || y % down != 0) continue;
        for (int c = 1; c < 3; ++c) {
          ASSERT_EQ(out.yuv(c, x, y), held ? chroma(in_.yuv(c, x, y)) : before.yuv(c, x, y))
              << "component " << c << " at " << x << ", " << y;
        }
      }
    }
    const auto stray = out.firstWriteOutside(before, rect);
    ASSERT_FALSE(stray) << describe(*stray);
  }

  KernelFrame frame_;
  Picture in_;
};

const MRect kRects[] = {{0, 0, 61, 35}, {1, 1, 60, 34}, {3, 2, 4, 3}, {4, 4, 5, 5}, {7, 9, 32, 28}};

TEST_P(YuvTables, BrightnessWorksOnLumaAlone) {
  ASSERT_EQ(frame_.setUp(0x1300, QPXBrightnessContrastParam{33, 0}), QPX_OK);
  for (const MRect& rect : kRects) {
    expectComponents(
        rect, [](int y) { return std::min(y + 33, 255); }, [](int c) { return c; });
  }
}

TEST_P(YuvTables, NegativeTurnsColoursToo) {
  ASSERT_EQ(frame_.setUp(0x1800), QPX_OK);
  for (const MRect& rect : kRects) {
    expectComponents(
        rect, [](int y) { return 255 - y; }, [](int c) { return std::min(255, 256 - c); });
  }
}

TEST_P(YuvTables, NegativeThenBrightnessIsStillANegative) {
  ASSERT_EQ(frame_.setUp(0x1800), QPX_OK);
  ASSERT_EQ(frame_.setUp(0x1300, QPXBrightnessContrastParam{20, 0}), QPX_OK);
  expectComponents(
      kRects[0], [](int y) { return std::min(255 - y + 20, 255); },
      [](int c) { return std::min(255, 256 - c); });
}

TEST_P(YuvTables, TwoNegativesKeepColours) {
  ASSERT_EQ(frame_.setUp(0x1800), QPX_OK);
  ASSERT_EQ(frame_.setUp(0x1800), QPX_OK);
  expectComponents(
      kRects[0], [](int y) { return y; }, [](int c) { return c; });
}

// A table that other effects share changes hues, whichever effect came last: it is near to what the
// same table makes of the picture as RGB.
TEST_P(YuvTables, SharedTableGoesThroughRgbWhateverCameLast) {
  ASSERT_EQ(frame_.setUp(0x2100), QPX_OK);
  ASSERT_EQ(frame_.setUp(0x1800), QPX_OK);
  KernelFrame other(GetParam().format);
  ASSERT_EQ(other.setUp(0x1800), QPX_OK);
  ASSERT_EQ(other.setUp(0x1800), QPX_OK);
  ASSERT_EQ(other.setUp(0x2100), QPX_OK);
  ASSERT_EQ(other.setUp(0x1F00, QPXChannelOffsetsParam{0, 0, 0}), QPX_OK);
  Picture solarised(in_);
  ASSERT_EQ(other.run(in_, solarised, wholeOf(in_)), QPX_OK);
  Picture merged(in_);
  ASSERT_EQ(frame_.run(in_, merged, wholeOf(in_)), QPX_OK);
  // A negative of the solarised picture: every component mirrored, but for rounding and clamping.
  for (int32_t y = 0; y < in_.height(); ++y) {
    for (int32_t x = 0; x < in_.width(); ++x) {
      ASSERT_NEAR(merged.yuv(0, x, y), 255 - solarised.yuv(0, x, y), 2) << x << ", " << y;
    }
  }
}

TEST_P(YuvTables, FlatContrastOfANegativeIsStillANegative) {
  ASSERT_EQ(frame_.setUp(0x1800), QPX_OK);
  ASSERT_EQ(frame_.setUp(0x1300, QPXBrightnessContrastParam{0, -128}), QPX_OK);
  expectComponents(
      kRects[0], [](int) { return 128; }, [](int c) { return std::min(255, 256 - c); });
}

TEST_P(YuvTables, LumaTablesMayWorkInPlace) {
  ASSERT_EQ(frame_.setUp(0x1800), QPX_OK);
  Picture apart(in_);
  Picture same(in_);
  ASSERT_EQ(frame_.run(in_, apart, wholeOf(in_)), QPX_OK);
  ASSERT_EQ(frame_.run(same, same, wholeOf(in_)), QPX_OK);
  EXPECT_FALSE(apart.firstDifference(same));
}

// The test's own recipe says what the tables do to a run.
void throughOffsets(const Stage&, PixelRun& run) {
  for (int32_t i = 0; i < run.count; ++i) {
    run.r[i] = static_cast<uint8_t>(std::min(run.r[i] + 50, 255));
    run.b[i] = static_cast<uint8_t>(std::max(run.b[i] - 70, 0));
  }
}

TEST_P(YuvTables, ThreeTablesGoThroughRgb) {
  for (const bool brightnessLast : {false, true}) {
    KernelFrame frame(GetParam().format);
    ASSERT_EQ(frame.setUp(0x1F00, QPXChannelOffsetsParam{50, 0, -70}), QPX_OK);
    if (brightnessLast) {
      ASSERT_EQ(frame.setUp(0x1300, QPXBrightnessContrastParam{0, 0}), QPX_OK);
    }
    Picture expected(in_);
    Picture out(in_);
    ASSERT_EQ(frame.run(overRuns<throughOffsets>, in_, expected, wholeOf(in_)), QPX_OK);
    ASSERT_EQ(frame.run(in_, out, wholeOf(in_)), QPX_OK);
    const auto difference = expected.firstDifference(out);
    EXPECT_FALSE(difference) << describe(*difference);
    EXPECT_TRUE(in_.firstDifference(out));
  }
}

TEST_P(YuvTables, SingleTablesOfOtherEffectsGoThroughRgb) {
  ASSERT_EQ(frame_.setUp(0x2D00, QPXGammaParam{220}), QPX_OK);
  Picture out(in_);
  ASSERT_EQ(frame_.run(in_, out, wholeOf(in_)), QPX_OK);
  bool chromaChanged = false;
  for (int32_t y = 0; y < in_.height(); ++y) {
    for (int32_t x = 0; x < in_.width(); ++x) {
      chromaChanged |= in_.yuv(1, x, y) != out.yuv(1, x, y);
    }
  }
  EXPECT_TRUE(chromaChanged);
}

INSTANTIATE_TEST_SUITE_P(Formats, YuvTables, ::testing::ValuesIn(yuvFormats()), formatName);

// Every table effect, with parameters that do something.
constexpr uint32_t kTableIds[] = {0x1300, 0x1600, 0x1800, 0x1F00, 0x2100, 0x2D00,
                                  0x3000, 0x4500, 0x4600, 0x4700, 0x4800, 0x4900};

class TableEffects : public ::testing::TestWithParam<uint32_t> {
 protected:
  // The picture that the effect makes in a format from the samples of seed 3.
  static Picture made(uint32_t format) {
    const QPXLevelsParam param = {{300, 40, 30, -900, 0, 280, 0, 700, 0, 0, 240, 900}};
    KernelFrame frame(format);
    EXPECT_EQ(frame.setUp(GetParam(), param), QPX_OK);
    Picture in(format, 83, 31, Placement::exact);
    in.paint(3);
    Picture out(in);
    EXPECT_EQ(frame.run(in, out, wholeOf(in)), QPX_OK);
    EXPECT_TRUE(in.firstDifference(out)) << std::hex << format;
    return out;
  }
};

TEST_P(TableEffects, ChangeEveryFormat) {
  for (const FormatCase& format : testing::formatCases()) {
    if ((format.group & (QPX_TAKES_YUYV | QPX_TAKES_UYVY)) == 0) made(format.format);
  }
}

TEST_P(TableEffects, SemiPlanarAgreesWithPlanar) {
  const Picture planar = made(QPX_FORMAT_I420);
  for (const uint32_t format : {QPX_FORMAT_NV21, QPX_FORMAT_NV12}) {
    const Picture semiPlanar = made(format);
    for (int32_t y = 0; y < planar.height(); ++y) {
      for (int32_t x = 0; x < planar.width(); ++x) {
        for (int c = 0; c < 3; ++c) {
          ASSERT_EQ(planar.yuv(c, x, y), semiPlanar.yuv(c, x, y))
              << "component " << c << " at " << x << ", " << y;
        }
      }
    }
  }
}

TEST_P(TableEffects, ByteOrdersAndDepthsAgree) {
  const Picture rgb = made(QPX_FORMAT_RGB24);
  for (const uint32_t format : {QPX_FORMAT_BGR24, QPX_FORMAT_BGRA32, QPX_FORMAT_RGBA32,
                                QPX_FORMAT_BGRX32, QPX_FORMAT_RGBX32}) {
    const Picture other = made(format);
    for (int32_t y = 0; y < rgb.height(); ++y) {
      for (int32_t x = 0; x < rgb.width(); ++x) {
        for (int c = 0; c < 3; ++c) {
          ASSERT_EQ(testing::channelOf(rgb, c, x, y), testing::channelOf(other, c, x, y));
        }
      }
    }
  }
}

INSTANTIATE_TEST_SUITE_P(Ids, TableEffects, ::testing::ValuesIn(kTableIds),
                         ::testing::PrintToStringParamName());

TEST(TableKernels, StageWithoutATableIsRefused) {
  for (const uint32_t format : {QPX_FORMAT_BGR24, QPX_FORMAT_NV21}) {
    KernelFrame frame(format);
    Picture picture(format, 4, 4, Placement::exact);
    EXPECT_EQ(frame.run(applyStageTables, picture, picture, wholeOf(picture)), QPX_BAD_PARAM);
    EXPECT_EQ(frame.run(applyStageTableToLuma, picture, picture, wholeOf(picture)), QPX_BAD_PARAM);
  }
}

}  // namespace
}  // namespace qpx
