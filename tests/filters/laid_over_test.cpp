// A second picture and a colour wash.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "support/kernel_frame.h"

namespace qpx {
namespace {

using testing::channelOf;
using testing::describe;
using testing::FormatCase;
using testing::KernelFrame;
using testing::Picture;
using testing::pixelOf;
using testing::Placement;
using testing::scramble;
using testing::wholeOf;

constexpr uint32_t kSecondPicture = 0x1100;
constexpr uint32_t kColorWash = 0x1200;
constexpr uint32_t kColor = 0x20C0F0;

// Source, top, opacity in percent, mask: in real numbers s + (t - s) * o / 100 * m / 255, to
// nearest.
int mixed(int s, int t, int o, int m) { return (s * (25500 - o * m) + t * o * m + 12750) / 25500; }

std::vector<FormatCase> formats() {
  std::vector<FormatCase> result;
  for (const FormatCase& format : testing::formatCases()) {
    if ((format.group & (QPX_TAKES_YUYV | QPX_TAKES_UYVY)) == 0) result.push_back(format);
  }
  return result;
}

class LaidOver : public ::testing::TestWithParam<FormatCase> {
 protected:
  static constexpr int32_t kWidth = 291;
  static constexpr int32_t kHeight = 13;

  LaidOver()
      : format_(GetParam().format),
        frame_(format_),
        in_(format_, kWidth, kHeight, Placement::exact),
        second_(format_, kWidth, kHeight, Placement::exact),
        mask_(QPX_FORMAT_GREY8, kWidth, kHeight, Placement::exact) {
    scramble(in_, 1);
    scramble(second_, 2);
    mask_.paint(3);
  }

  bool packed() const { return (GetParam().group & kTakesPackedRgb) != 0; }
  int32_t across() const {
    if ((GetParam().group & kTakesSemiPlanar) != 0) return 2;
    return (GetParam().group & kTakesYuv) != 0 ? (format_ >> 4 & 15) + 1 : 1;
  }
  int32_t down() const {
    if ((GetParam().group & kTakesSemiPlanar) != 0) return 2;
    return (GetParam().group & kTakesYuv) != 0 ? (format_ & 15) + 1 : 1;
  }

  int component(const Picture& picture, int c, int32_t x, int32_t y) const {
    return packed() ? channelOf(picture, c, x, y) : picture.yuv(c, x, y);
  }

  // kColor as the format's components: 32, 192, 240 by the forward matrix, worked by hand.
  int color(int c) const {
    static constexpr int kRgb[3] = {32, 192, 240};
    static constexpr int kYuv[3] = {150, 179, 44};  // 149.63, 178.96, 44.13
    return packed() ? kRgb[c] : kYuv[c];
  }

  bool held(const MRect& rect, int c, int32_t x, int32_t y) const {
    if (x < rect.left || x >= rect.right || y < rect.top || y >= rect.bottom) return false;
    return c == 0 || (x % across() == 0 && y % down() == 0);
  }

  // Every component of the rectangle; what is laid over and how much of it come from the test.
  template <typename Top, typename Mask>
  void expectMixed(const MRect& rect, int opacity, const Top& top, const Mask& mask) {
    Picture out(format_, kWidth, kHeight, Placement::guarded);
    const Picture before(out);
    ASSERT_EQ(frame_.run(in_, out, rect), QPX_OK);
    const int components = GetParam().group == QPX_TAKES_GREY ? 1 : 3;
    for (int32_t y = rect.top; y < rect.bottom; ++y) {
      for (int32_t x = rect.left; x < rect.right; ++x) {
        for (int c = 0; c < components; ++c) {
          if (!held(rect, c, x, y)) continue;
          const int sample = mixed(component(in_, c, x, y), top(c, x, y), opacity, mask(x, y));
          ASSERT_EQ(component(out, c, x, y), stored(c, sample))
              << "component " << c << " at " << x << ", " << y;
        }
        if (packed()) {
          ASSERT_EQ(spare(out, x, y), spare(in_, x, y));
        }
      }
    }
    const auto stray = out.firstWriteOutside(before, rect);
    ASSERT_FALSE(stray) << describe(*stray);
  }

  // What is left of a sample in the bits that the format has for it.
  int stored(int c, int sample) const {
    if (!packed()) return sample;
    const uint32_t mask = testing::fieldMask(format_, c);
    const uint32_t field = static_cast<uint32_t>(sample) >> (8 - mbf_GetMaskSize(mask));
    return testing::fieldOf(field << mbf_GetMaskPos(mask), mask);
  }

  uint32_t spare(const Picture& picture, int32_t x, int32_t y) const {
    uint32_t pixel = pixelOf(picture, x, y);
    for (int c = 0; c < 3; ++c) pixel &= ~testing::fieldMask(format_, c);
    return pixel;
  }

  uint32_t format_;
  KernelFrame frame_;
  Picture in_;
  Picture second_;
  Picture mask_;
};

constexpr MRect kWhole = {0, 0, 291, 13};
constexpr MRect kInner = {5, 3, 278, 12};

TEST_P(LaidOver, SecondPictureFadesIn) {
  frame_.give(&second_, nullptr);
  ASSERT_EQ(frame_.setUp(kSecondPicture, QPXSecondPictureParam{37, kColor}), QPX_OK);
  for (const MRect& rect : {kWhole, kInner}) {
    expectMixed(
        rect, 37, [&](int c, int32_t x, int32_t y) { return component(second_, c, x, y); },
        [](int32_t, int32_t) { return 255; });
  }
}

TEST_P(LaidOver, SecondPictureFadesInThroughTheMask) {
  frame_.give(&second_, &mask_);
  ASSERT_EQ(frame_.setUp(kSecondPicture, QPXSecondPictureParam{80, kColor}), QPX_OK);
  for (const MRect& rect : {kWhole, kInner}) {
    expectMixed(
        rect, 80, [&](int c, int32_t x, int32_t y) { return component(second_, c, x, y); },
        [&](int32_t x, int32_t y) { return mask_.yuv(0, x, y); });
  }
}

TEST_P(LaidOver, ColourStandsInForAMissingPicture) {
  ASSERT_EQ(frame_.setUp(kSecondPicture, QPXSecondPictureParam{50, kColor}), QPX_OK);
  expectMixed(
      kWhole, 50, [&](int c, int32_t, int32_t) { return color(c); },
      [](int32_t, int32_t) { return 255; });
}

TEST_P(LaidOver, WashIsTheColourEvenWithASecondPicture) {
  frame_.give(&second_, &mask_);
  ASSERT_EQ(frame_.setUp(kColorWash, QPXColorWashParam{65, kColor}), QPX_OK);
  expectMixed(
      kInner, 65, [&](int c, int32_t, int32_t) { return color(c); },
      [&](int32_t x, int32_t y) { return mask_.yuv(0, x, y); });
}

TEST_P(LaidOver, OutputMayBeTheInput) {
  frame_.give(&second_, &mask_);
  ASSERT_EQ(frame_.setUp(kSecondPicture, QPXSecondPictureParam{65, 0}), QPX_OK);
  Picture apart(in_);
  Picture same(in_);
  ASSERT_EQ(frame_.run(in_, apart, kWhole), QPX_OK);
  ASSERT_EQ(frame_.run(same, same, kWhole), QPX_OK);
  EXPECT_FALSE(apart.firstDifference(same));
  EXPECT_TRUE(apart.firstDifference(in_));
}

TEST_P(LaidOver, FullOpacityIsTheSecondPicture) {
  frame_.give(&second_, nullptr);
  ASSERT_EQ(frame_.setUp(kSecondPicture, QPXSecondPictureParam{100, 0}), QPX_OK);
  expectMixed(
      kWhole, 100, [&](int c, int32_t x, int32_t y) { return component(second_, c, x, y); },
      [](int32_t, int32_t) { return 255; });
}

std::string formatName(const ::testing::TestParamInfo<FormatCase>& tested) {
  return tested.param.name;
}

INSTANTIATE_TEST_SUITE_P(Formats, LaidOver, ::testing::ValuesIn(formats()), formatName);

TEST(LaidOverSetup, OpacityIsClamped) {
  struct Case {
    int32_t given, kept;
  };
  for (const uint32_t id : {kSecondPicture, kColorWash}) {
    for (const Case& c : {Case{0, 1},
                          {-5, 1},
                          {INT32_MIN, 1},
                          {1, 1},
                          {99, 99},
                          {100, 100},
                          {101, 100},
                          {INT32_MAX, 100}}) {
      KernelFrame frame(QPX_FORMAT_BGR24);
      ASSERT_EQ(frame.setUp(id, QPXColorWashParam{c.given, kColor}), QPX_OK);
      EXPECT_EQ(record<QPXColorWashParam>(frame.stage()).opacity, c.kept);
    }
  }
}

TEST(LaidOverSetup, ColourIsKeptAsComponents) {
  for (const uint32_t id : {kSecondPicture, kColorWash}) {
    KernelFrame rgb(QPX_FORMAT_RGB565);
    ASSERT_EQ(rgb.setUp(id, QPXColorWashParam{50, 0xFF123456}), QPX_OK);
    EXPECT_EQ(rgb.stage().fillY, 0x12);
    EXPECT_EQ(rgb.stage().fillU, 0x34);
    EXPECT_EQ(rgb.stage().fillV, 0x56);
    EXPECT_EQ(rgb.stage().cropMode, 1);

    KernelFrame red(QPX_FORMAT_NV21);
    ASSERT_EQ(red.setUp(id, QPXColorWashParam{50, 0xFF0000}), QPX_OK);
    EXPECT_EQ(red.stage().fillY, 76);   // 76.2
    EXPECT_EQ(red.stage().fillU, 85);   // 85.0
    EXPECT_EQ(red.stage().fillV, 255);  // 255.4, clamped

    KernelFrame grey(QPX_FORMAT_GREY8);
    ASSERT_EQ(grey.setUp(id, QPXColorWashParam{50, 0x00FF00}), QPX_OK);
    EXPECT_EQ(grey.stage().fillY, 150);  // 149.7
  }
}

TEST(LaidOverRounding, IsToNearestHalvesUp) {
  // One grey pixel of 100 under one of 103 at 50 percent: 101.5.
  KernelFrame frame(QPX_FORMAT_GREY8);
  Picture in(QPX_FORMAT_GREY8, 1, 1, Placement::exact);
  Picture second(in);
  Picture mask(in);
  in.fill(100);
  second.fill(103);
  frame.give(&second, nullptr);
  ASSERT_EQ(frame.setUp(kSecondPicture, QPXSecondPictureParam{50, 0}), QPX_OK);
  Picture out(in);
  ASSERT_EQ(frame.run(in, out, wholeOf(in)), QPX_OK);
  EXPECT_EQ(out.yuv(0, 0, 0), 102);
  mask.fill(85);  // a third of it: 100.5
  frame.give(&second, &mask);
  ASSERT_EQ(frame.run(in, out, wholeOf(in)), QPX_OK);
  EXPECT_EQ(out.yuv(0, 0, 0), 101);
  mask.fill(0);
  ASSERT_EQ(frame.run(in, out, wholeOf(in)), QPX_OK);
  EXPECT_EQ(out.yuv(0, 0, 0), 100);
}

}  // namespace
}  // namespace qpx
