// Grey and threshold.
#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "support/kernel_frame.h"

namespace qpx {
namespace {

using testing::channelOf;
using testing::FormatCase;
using testing::KernelFrame;
using testing::Picture;
using testing::pixelOf;
using testing::Placement;
using testing::scramble;
using testing::wholeOf;

constexpr uint32_t kGrey = 0x1700;
constexpr uint32_t kThreshold = 0x1D00;

int lumaOf(const Picture& picture, int32_t x, int32_t y) {
  return (9798 * channelOf(picture, 0, x, y) + 19235 * channelOf(picture, 1, x, y) +
          3735 * channelOf(picture, 2, x, y)) >>
         15;
}

std::vector<FormatCase> formatsOf(uint32_t groups) {
  std::vector<FormatCase> result;
  for (const FormatCase& format : testing::formatCases()) {
    if ((format.group & groups) != 0) result.push_back(format);
  }
  return result;
}

std::string formatName(const ::testing::TestParamInfo<FormatCase>& tested) {
  return tested.param.name;
}

// A sample as a field of a format holds it, widened again.
int asField(int sample, uint32_t mask) {
  const int size = mbf_GetMaskSize(mask);
  return testing::fieldOf(static_cast<uint32_t>(sample >> (8 - size)) << mbf_GetMaskPos(mask),
                          mask);
}

class PackedTwoTone : public ::testing::TestWithParam<FormatCase> {
 protected:
  PackedTwoTone()
      : frame_(GetParam().format),
        in_(GetParam().format, 301, 4, Placement::exact),
        out_(GetParam().format, 301, 4, Placement::guarded) {
    scramble(in_, 4);
  }

  template <typename Expected>
  void expectChannels(const Expected& expected) {
    ASSERT_EQ(frame_.run(in_, out_, wholeOf(in_)), QPX_OK);
    uint32_t fields = 0;
    for (int c = 0; c < 3; ++c) fields |= testing::fieldMask(GetParam().format, c);
    for (int32_t y = 0; y < in_.height(); ++y) {
      for (int32_t x = 0; x < in_.width(); ++x) {
        ASSERT_EQ(pixelOf(out_, x, y) & ~fields, pixelOf(in_, x, y) & ~fields);
        for (int c = 0; c < 3; ++c) {
          const int sample = expected(lumaOf(in_, x, y), channelOf(in_, c, x, y));
          ASSERT_EQ(channelOf(out_, c, x, y),
                    asField(sample, testing::fieldMask(GetParam().format, c)))
              << "channel " << c << " at " << x << ", " << y;
        }
      }
    }
  }

  KernelFrame frame_;
  Picture in_;
  Picture out_;
};

TEST_P(PackedTwoTone, GreyIsLumaInAllChannels) {
  ASSERT_EQ(frame_.setUp(kGrey), QPX_OK);
  expectChannels([](int luma, int) { return luma; });
  EXPECT_EQ(frame_.band().planeFlags, 0u);
}

TEST_P(PackedTwoTone, ThresholdTurnsWhiteAndBlack) {
  ASSERT_EQ(frame_.setUp(kThreshold, QPXThresholdParam{100, 1}), QPX_OK);
  expectChannels([](int luma, int) { return luma >= 100 ? 255 : 0; });
}

TEST_P(PackedTwoTone, ThresholdKeepsLitColours) {
  ASSERT_EQ(frame_.setUp(kThreshold, QPXThresholdParam{100, 0}), QPX_OK);
  expectChannels([](int luma, int sample) { return luma >= 100 ? sample : 0; });
}

INSTANTIATE_TEST_SUITE_P(Formats, PackedTwoTone, ::testing::ValuesIn(formatsOf(kTakesPackedRgb)),
                         formatName);

TEST(Threshold, LevelIsClampedAndReachedFromBelow) {
  struct Case {
    int32_t level;
    int lastDark;
  };
  for (const Case& c : {Case{INT32_MIN, 0}, {0, 0}, {1, 0}, {77, 76}, {255, 254}, {999, 254}}) {
    KernelFrame frame(QPX_FORMAT_GREY8);
    ASSERT_EQ(frame.setUp(kThreshold, QPXThresholdParam{c.level, 1}), QPX_OK);
    Picture picture(QPX_FORMAT_GREY8, 256, 1, Placement::exact);
    const MBitmap bitmap = picture.bitmap();
    for (int i = 0; i < 256; ++i) bitmap.plane[0][i] = static_cast<uint8_t>(i);
    ASSERT_EQ(frame.run(picture, picture, wholeOf(picture)), QPX_OK);
    for (int i = 0; i < 256; ++i) EXPECT_EQ(picture.yuv(0, i, 0), i > c.lastDark ? 255 : 0) << i;
  }
}

TEST(Threshold, GreyKeepsItsLitPart) {
  KernelFrame frame(QPX_FORMAT_GREY8);
  ASSERT_EQ(frame.setUp(kThreshold, QPXThresholdParam{90, 0}), QPX_OK);
  Picture in(QPX_FORMAT_GREY8, 40, 9, Placement::exact);
  in.paint(6);
  Picture out(in);
  ASSERT_EQ(frame.run(in, out, wholeOf(in)), QPX_OK);
  for (int32_t y = 0; y < 9; ++y) {
    for (int32_t x = 0; x < 40; ++x) {
      const int luma = in.yuv(0, x, y);
      EXPECT_EQ(out.yuv(0, x, y), luma >= 90 ? luma : 0);
    }
  }
}

TEST(Grey, GreyPictureIsCopied) {
  KernelFrame frame(QPX_FORMAT_GREY8);
  ASSERT_EQ(frame.setUp(kGrey), QPX_OK);
  Picture in(QPX_FORMAT_GREY8, 300, 9, Placement::exact);
  in.paint(6);
  Picture out(QPX_FORMAT_GREY8, 300, 9, Placement::guarded);
  ASSERT_EQ(frame.run(in, out, wholeOf(in)), QPX_OK);
  EXPECT_FALSE(in.firstDifference(out));
}

class YuvTwoTone : public ::testing::TestWithParam<FormatCase> {
 protected:
  YuvTwoTone()
      : frame_(GetParam().format),
        in_(GetParam().format, 45, 27, Placement::exact),
        out_(GetParam().format, 45, 27, Placement::guarded) {
    in_.paint(4);
  }

  KernelFrame frame_;
  Picture in_;
  Picture out_;
};

TEST_P(YuvTwoTone, GreyIsLeftToThePlaneFlags) {
  ASSERT_EQ(frame_.setUp(kGrey), QPX_OK);
  const bool semiPlanar = (GetParam().group & kTakesSemiPlanar) != 0;
  EXPECT_EQ(frame_.band().planeFlags, semiPlanar ? 12u : 14u);
  EXPECT_EQ(frame_.band().fill[1], 128);
  EXPECT_EQ(frame_.band().fill[2], 128);
  const Picture before(out_);
  EXPECT_EQ(frame_.run(in_, out_, wholeOf(in_)), QPX_OK);
  EXPECT_FALSE(before.firstDifference(out_));
}

TEST_P(YuvTwoTone, TwoTonesWriteLumaAndLeaveChromaToThePlaneFlags) {
  ASSERT_EQ(frame_.setUp(kThreshold, QPXThresholdParam{120, 7}), QPX_OK);
  EXPECT_EQ(frame_.band().planeFlags, GetParam().group == QPX_TAKES_NV21 ? 4u : 6u);
  EXPECT_EQ(frame_.band().fill[1], 128);
  EXPECT_EQ(frame_.band().fill[2], 128);
  const Picture before(out_);
  const MRect rect = {3, 5, 44, 27};
  ASSERT_EQ(frame_.run(in_, out_, rect), QPX_OK);
  EXPECT_FALSE(out_.firstWriteOutside(before, rect));
  for (int32_t y = rect.top; y < rect.bottom; ++y) {
    for (int32_t x = rect.left; x < rect.right; ++x) {
      ASSERT_EQ(out_.yuv(0, x, y), in_.yuv(0, x, y) >= 120 ? 255 : 0);
      ASSERT_EQ(out_.yuv(1, x, y), before.yuv(1, x, y));
      ASSERT_EQ(out_.yuv(2, x, y), before.yuv(2, x, y));
    }
  }
}

TEST_P(YuvTwoTone, DarkPartsLoseTheirColourByTheTopLeftPixel) {
  ASSERT_EQ(frame_.setUp(kThreshold, QPXThresholdParam{120, 0}), QPX_OK);
  EXPECT_EQ(frame_.band().planeFlags, 0u);
  ASSERT_EQ(frame_.run(in_, out_, wholeOf(in_)), QPX_OK);
  const bool semiPlanar = (GetParam().group & kTakesSemiPlanar) != 0;
  const int32_t across = semiPlanar ? 2 : (GetParam().format >> 4 & 15) + 1;
  const int32_t down = semiPlanar ? 2 : (GetParam().format & 15) + 1;
  for (int32_t y = 0; y < in_.height(); ++y) {
    for (int32_t x = 0; x < in_.width(); ++x) {
      const int luma = in_.yuv(0, x, y);
      ASSERT_EQ(out_.yuv(0, x, y), luma >= 120 ? luma : 0);
      const bool lit = in_.yuv(0, x / across * across, y / down * down) >= 120;
      for (int c = 1; c < 3; ++c) {
        ASSERT_EQ(out_.yuv(c, x, y), lit ? in_.yuv(c, x, y) : 128) << x << ", " << y;
      }
    }
  }
}

INSTANTIATE_TEST_SUITE_P(Formats, YuvTwoTone, ::testing::ValuesIn(formatsOf(kTakesYuv)),
                         formatName);

}  // namespace
}  // namespace qpx
