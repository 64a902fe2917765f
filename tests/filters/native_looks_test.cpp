// Every named kernel of the looks that exist natively in YUV, against their rules.
#include <gtest/gtest.h>
#include <qpx/kernels_curves.h>

#include <cstring>
#include <string>
#include <vector>

#include "filters/look_rules.h"
#include "support/kernel_frame.h"
#include "support/sweep.h"

namespace qpx {
namespace {

using testing::describe;
using testing::FormatCase;
using testing::KernelFrame;
using testing::Picture;
using testing::Placement;
using testing::Random;
using testing::Rgb;
using testing::Rule;
using testing::scramble;
using testing::wholeOf;
using testing::Yuv;

using NamedKernel = int32_t (*)(QPXStage*, const MRect*, QPXRowTable*, QPXRowTable*);

template <NamedKernel kernel>
int32_t byName(const Frame& frame) {
  return kernel(&frame.stage, &frame.rect, frame.out, frame.in);
}

// A kernel, the formats it takes and the rule of its look. Bytes of the working block that are
// tables, from the first to behind the last, hold anything in these tests.
struct KernelCase {
  const char* name;
  Kernel run;
  uint32_t formats;
  uint32_t id;
  Rule rule;
  size_t tablesFrom;
  size_t tablesTo;
};

#define KERNEL(name, formats, id, rule, from, to) \
  { #name, byName < name>, formats, id, testing::rule, from, to }
#define RGB24_AND_YUV(effect, rgb24, id, rule, from, to)         \
  KERNEL(effect##rgb24, QPX_TAKES_RGB24, id, rule, from, to),    \
      KERNEL(effect##_NV21, QPX_TAKES_NV21, id, rule, from, to), \
      KERNEL(effect##_I420, QPX_TAKES_I420, id, rule, from, to)
#define RGB24_AND_PAIRS(effect, id, rule, from, to)              \
  KERNEL(effect##_RGB24, QPX_TAKES_RGB24, id, rule, from, to),   \
      KERNEL(effect##_NV21, QPX_TAKES_NV21, id, rule, from, to), \
      KERNEL(effect##_YUYV, QPX_TAKES_YUYV, id, rule, from, to)

const KernelCase kKernels[] = {
    RGB24_AND_YUV(Sepia, _RGB24, 0x1900, sepiaRule, 0, 0),
    RGB24_AND_YUV(SingleColor, _RGB24, 0x5800, singleColorRule, 0, 768),
    KERNEL(SingleColor_RGB565, QPX_TAKES_RGB565, 0x5800, singleColorRule, 0, 768),
    RGB24_AND_YUV(Polaroid, _RGB24, 0x5B00, polaroidRule, 0, 1536),
    KERNEL(Polaroid_RGB565, QPX_TAKES_RGB565, 0x5B00, polaroidRule, 0, 1536),
    RGB24_AND_YUV(Nostalgic, _RGB24, 0x5E00, duotoneCornersRule, 4, 772),
    RGB24_AND_YUV(Vintage, _RGB24, 0x5F00, vintageRule, 4, 772),
    KERNEL(Vintage_RGB24, QPX_TAKES_RGB32, 0x5F00, vintageRule, 4, 772),
    KERNEL(Vintage_RGB, kTakesRgb, 0x5F00, vintageRule, 4, 772),
    RGB24_AND_YUV(DeepQuite, _RGB24, 0x6000, deepQuiteRule, 4, 772),
    RGB24_AND_YUV(ColdBlue, _RGB24, 0x6100, tonedCornersRule, 4, 772),
    RGB24_AND_YUV(Gothic, _RGB24, 0x6200, gothicRule, 4, 772),
    RGB24_AND_YUV(Purple, _rgb24, 0x6300, tonedCornersRule, 4, 772),
    RGB24_AND_YUV(VintageBlackWhite, _rgb24, 0x6400, duotoneCornersRule, 4, 772),
    RGB24_AND_YUV(ColorGradient, _RGB24, 0x6700, gradientRule, 0, 1024),
    RGB24_AND_YUV(Sunny, _RGB24, 0x6900, sunnyRule, 0, 2048),
    KERNEL(CurveBrightness_RGB24, QPX_TAKES_RGB24, 0x6A00, threeTablesRule, 0, 768),
    KERNEL(CurveBrightness_NV21, QPX_TAKES_NV21, 0x6A00, threeTablesRule, 0, 768),
    KERNEL(ReversalFilm_RGB, kTakesRgb, 0x6E00, reversalFilmRule, 0, 1024),
    RGB24_AND_PAIRS(BLACKWHITE2, 0xBF00, blackWhiteRule, 0, 256),
    RGB24_AND_PAIRS(FINEFOOD, 0xC000, fineFoodRule, 0, 768),
};

void PrintTo(const KernelCase& kernel, std::ostream* stream) { *stream << kernel.name; }

std::string nameOf(const ::testing::TestParamInfo<KernelCase>& tested) {
  const bool deep = tested.param.formats == QPX_TAKES_RGB32;
  return std::string(tested.param.name) + (deep ? "_on32Bits" : "");
}

// Parameters that bring out every branch of a rule; effects without a record ignore them.
struct Anything {
  int32_t words[6];
};

// A stage of a size with the kernel's effect on it, any bytes in its tables.
class LookFrame : public KernelFrame {
 public:
  LookFrame(const KernelCase& kernel, const Picture& picture, const Anything& param, uint64_t seed)
      : KernelFrame(picture.format()) {
    stage().inWidth = stage().outWidth = picture.width();
    stage().inHeight = stage().outHeight = picture.height();
    EXPECT_EQ(setUp(kernel.id, param), QPX_OK);
    Random random(seed);
    for (size_t i = kernel.tablesFrom; i < kernel.tablesTo; ++i) stage().lut[i] = random.byte();
  }
};

bool holds(const MRect& rect, int32_t x, int32_t y) {
  return x >= rect.left && x < rect.right && y >= rect.top && y < rect.bottom;
}

// One pixel of packed RGB, as samples of 8 bits.
Rgb packedAt(const Picture& picture, int32_t x, int32_t y) {
  return {testing::channelOf(picture, 0, x, y), testing::channelOf(picture, 1, x, y),
          testing::channelOf(picture, 2, x, y)};
}

uint32_t packedWith(const Picture& picture, int32_t x, int32_t y, Rgb made) {
  uint32_t pixel = testing::pixelOf(picture, x, y);
  const int samples[3] = {made.r, made.g, made.b};
  for (int c = 0; c < 3; ++c) {
    const uint32_t mask = testing::fieldMask(picture.format(), c);
    const int size = mbf_GetMaskSize(mask), pos = mbf_GetMaskPos(mask);
    pixel = (pixel & ~mask) | static_cast<uint32_t>(samples[c]) >> (8 - size) << pos;
  }
  return pixel;
}

void expectPacked(const KernelCase& kernel, const Stage& stage, const MRect& rect,
                  const Picture& in, const Picture& before, const Picture& out) {
  for (int32_t y = 0; y < in.height(); ++y) {
    for (int32_t x = 0; x < in.width(); ++x) {
      const uint32_t expected =
          holds(rect, x, y) ? packedWith(in, x, y, kernel.rule(stage, x, y, packedAt(in, x, y)))
                            : testing::pixelOf(before, x, y);
      ASSERT_EQ(testing::pixelOf(out, x, y), expected) << "at " << x << ", " << y;
    }
  }
}

void expectYuv(const KernelCase& kernel, const Stage& stage, const MRect& rect, const Picture& in,
               const Picture& before, const Picture& out, int32_t across, int32_t down) {
  for (int32_t y = 0; y < in.height(); ++y) {
    for (int32_t x = 0; x < in.width(); ++x) {
      const Yuv source = {in.yuv(0, x, y), in.yuv(1, x, y), in.yuv(2, x, y)};
      const Yuv made = testing::yuvFromRgb(kernel.rule(stage, x, y, testing::rgbFromYuv(source)));
      const bool inside = holds(rect, x, y);
      ASSERT_EQ(out.yuv(0, x, y), inside ? made.y : before.yuv(0, x, y))
          << "luma at " << x << ", " << y;
      if (x % across != 0 || y % down != 0) continue;
      ASSERT_EQ(out.yuv(1, x, y), inside ? made.u : before.yuv(1, x, y))
          << "U at " << x << ", " << y;
      ASSERT_EQ(out.yuv(2, x, y), inside ? made.v : before.yuv(2, x, y))
          << "V at " << x << ", " << y;
    }
  }
}

MRect someRect(Random& random, const Picture& picture) {
  MRect rect;
  rect.left = random.between(0, picture.width() - 1);
  rect.top = random.between(0, picture.height() - 1);
  rect.right = random.between(rect.left + 1, picture.width());
  rect.bottom = random.between(rect.top + 1, picture.height());
  return rect;
}

Anything someParam(Random& random) {
  Anything param;
  for (int32_t& word : param.words) word = random.between(-130, 130);
  param.words[0] = random.between(0, 1);
  return param;
}

class NativeLook : public ::testing::TestWithParam<KernelCase> {
 protected:
  static bool taken(const FormatCase& format) { return (format.group & GetParam().formats) != 0; }
  static bool packed() { return (GetParam().formats & kTakesPackedRgb) != 0; }

  static void expectRule(const FormatCase& format, int32_t width, int32_t height, uint64_t seed) {
    Random random(seed);
    Picture in(format.format, width, height, Placement::exact);
    scramble(in, seed);
    LookFrame frame(GetParam(), in, someParam(random), seed);
    const MRect rect = seed % 3 == 0 ? wholeOf(in) : someRect(random, in);
    Picture out(format.format, width, height, Placement::guarded);
    const Picture before(out);
    ASSERT_EQ(frame.run(GetParam().run, in, out, rect), QPX_OK);
    const int32_t down = format.group == QPX_TAKES_YUYV ? 1 : 2;
    if (packed()) {
      expectPacked(GetParam(), frame.stage(), rect, in, before, out);
    } else {
      expectYuv(GetParam(), frame.stage(), rect, in, before, out, 2, down);
    }
    const auto stray = out.firstWriteOutside(before, rect);
    ASSERT_FALSE(stray) << describe(*stray);
  }
};

TEST_P(NativeLook, FollowsItsRuleInEveryRectangle) {
  for (const FormatCase& format : testing::formatCases()) {
    if (!taken(format)) continue;
    Random random(GetParam().id);
    const auto pictures = static_cast<uint64_t>(sweepCount(40));
    for (uint64_t seed = 0; seed < pictures; ++seed) {
      const int32_t width = random.between(1, seed % 8 == 0 ? 700 : 90);
      const int32_t height = random.between(1, seed % 8 == 0 ? 9 : 70);
      SCOPED_TRACE(std::string(format.name) + " " + std::to_string(width) + "x" +
                   std::to_string(height) + ", seed " + std::to_string(seed));
      expectRule(format, width, height, seed);
      if (HasFatalFailure()) return;
    }
  }
}

TEST_P(NativeLook, BandsOfEvenRowsGiveTheBytesOfOneCall) {
  for (const FormatCase& format : testing::formatCases()) {
    if (!taken(format)) continue;
    Picture in(format.format, 77, 41, Placement::exact);
    scramble(in, 6);
    LookFrame frame(GetParam(), in, {{1, 20, 10, -30, 40}}, 3);
    Picture whole(format.format, 77, 41, Placement::guarded);
    Picture banded(whole);
    ASSERT_EQ(frame.run(GetParam().run, in, whole, wholeOf(in)), QPX_OK);
    for (int32_t top = 0; top < 41; top += 6) {
      ASSERT_EQ(frame.run(GetParam().run, in, banded, {0, top, 77, std::min(top + 6, 41)}), QPX_OK);
    }
    const auto difference = whole.firstDifference(banded);
    ASSERT_FALSE(difference) << format.name << " " << describe(*difference);
  }
}

TEST_P(NativeLook, MayWorkInPlace) {
  for (const FormatCase& format : testing::formatCases()) {
    if (!taken(format)) continue;
    Picture picture(format.format, 613, 5, Placement::guarded);
    scramble(picture, 6);
    LookFrame frame(GetParam(), picture, {{1, 0, 0, 0, 0}}, 3);
    for (const MRect& rect : {wholeOf(picture), MRect{1, 1, 612, 4}}) {
      Picture inPlace(picture);
      Picture apart(picture);
      ASSERT_EQ(frame.run(GetParam().run, picture, apart, rect), QPX_OK);
      ASSERT_EQ(frame.run(GetParam().run, inPlace, inPlace, rect), QPX_OK);
      const auto difference = apart.firstDifference(inPlace);
      ASSERT_FALSE(difference) << format.name << " " << describe(*difference);
    }
  }
}

TEST_P(NativeLook, WritesNothingInOtherFormats) {
  uint32_t takenByName = 0;
  for (const KernelCase& kernel : kKernels) {
    if (std::strcmp(kernel.name, GetParam().name) == 0) takenByName |= kernel.formats;
  }
  for (const FormatCase& format : testing::formatCases()) {
    if ((format.group & takenByName) != 0) continue;
    Picture in(format.format, 20, 10, Placement::exact);
    LookFrame frame(GetParam(), in, {}, 1);
    Picture out(format.format, 20, 10, Placement::guarded);
    const Picture before(out);
    EXPECT_EQ(frame.run(GetParam().run, in, out, wholeOf(in)), QPX_OK) << format.name;
    EXPECT_FALSE(before.firstDifference(out)) << format.name;
  }
}

TEST_P(NativeLook, CutsRectanglesToThePicture) {
  for (const FormatCase& format : testing::formatCases()) {
    if (!taken(format)) continue;
    Picture in(format.format, 30, 14, Placement::exact);
    scramble(in, 2);
    LookFrame frame(GetParam(), in, {}, 1);
    Picture whole(format.format, 30, 14, Placement::guarded);
    Picture cut(whole);
    ASSERT_EQ(frame.run(GetParam().run, in, whole, wholeOf(in)), QPX_OK);
    ASSERT_EQ(frame.run(GetParam().run, in, cut, {-5, -7, 400, INT32_MAX}), QPX_OK);
    EXPECT_FALSE(whole.firstDifference(cut)) << format.name;
    for (const MRect& none : {MRect{9, 3, 9, 8}, MRect{9, 8, 4, 3}, MRect{30, 0, 40, 14}}) {
      Picture untouched(whole);
      ASSERT_EQ(frame.run(GetParam().run, in, untouched, none), QPX_OK);
      EXPECT_FALSE(whole.firstWriteOutside(untouched, {})) << format.name;
    }
  }
}

TEST_P(NativeLook, RefusesNullsAndStagesWithoutItsTables) {
  const uint32_t format = packed() ? uint32_t{QPX_FORMAT_BGR24} : uint32_t{QPX_FORMAT_NV21};
  for (const FormatCase& known : testing::formatCases()) {
    if (!taken(known) || known.format != format) continue;
    Picture in(format, 20, 10, Placement::exact);
    LookFrame frame(GetParam(), in, {}, 1);
    Picture out(format, 20, 10, Placement::guarded);
    const Picture before(out);
    const bool needsTables = GetParam().tablesTo > 0;
    if (needsTables) {
      frame.stage().lutSize -= 1;
      EXPECT_EQ(frame.run(GetParam().run, in, out, wholeOf(in)), QPX_BAD_PARAM);
      frame.stage().lutSize += 1;
      frame.stage().lutFlags = 9;
      EXPECT_EQ(frame.run(GetParam().run, in, out, wholeOf(in)), QPX_BAD_PARAM);
      KernelFrame empty(format);
      empty.stage().inWidth = empty.stage().outWidth = 20;
      empty.stage().inHeight = empty.stage().outHeight = 10;
      EXPECT_EQ(empty.run(GetParam().run, in, out, wholeOf(in)), QPX_BAD_PARAM);
    }
    EXPECT_FALSE(before.firstDifference(out));
  }
}

INSTANTIATE_TEST_SUITE_P(Kernels, NativeLook, ::testing::ValuesIn(kKernels), nameOf);

TEST(NativeLooks, StagesOfOtherLooksAreRefused) {
  Picture in(QPX_FORMAT_BGR24, 20, 10, Placement::exact);
  Picture out(in);
  for (const KernelCase& kernel : kKernels) {
    const bool sunny = kernel.id == 0x6900;
    if (kernel.tablesTo == 0 || kernel.formats != QPX_TAKES_RGB24 || sunny) continue;
    KernelFrame frame(QPX_FORMAT_BGR24);
    frame.stage().inWidth = frame.stage().outWidth = 20;
    frame.stage().inHeight = frame.stage().outHeight = 10;
    ASSERT_EQ(frame.setUp(0x6900), QPX_OK);
    EXPECT_EQ(frame.run(kernel.run, in, out, wholeOf(in)), QPX_BAD_PARAM) << kernel.name;
  }
}

// The form for every format, which no name reaches.
TEST(NativeLooks, SepiaFollowsItsRuleInEveryFormat) {
  const KernelCase& sepia = kKernels[0];
  const Kernel generic = findEffect(0x1900)->generic;
  for (const FormatCase& format : testing::formatCases()) {
    if ((format.group & (QPX_TAKES_YUYV | QPX_TAKES_UYVY | QPX_TAKES_GREY)) != 0) continue;
    SCOPED_TRACE(format.name);
    Picture in(format.format, 83, 29, Placement::exact);
    scramble(in, 5);
    LookFrame frame(sepia, in, {}, 1);
    const PixInfo& pix = frame.stage().pix;
    const bool packed = (format.group & kTakesPackedRgb) != 0;
    const int32_t across = isSemiPlanar(pix) ? 2 : pix.xSampling[1];
    for (const MRect& rect : {wholeOf(in), MRect{3, 5, 71, 28}}) {
      Picture out(format.format, 83, 29, Placement::guarded);
      const Picture before(out);
      ASSERT_EQ(frame.run(generic, in, out, rect), QPX_OK);
      if (packed) {
        expectPacked(sepia, frame.stage(), rect, in, before, out);
      } else {
        expectYuv(sepia, frame.stage(), rect, in, before, out, across, pix.ySampling[1]);
      }
      ASSERT_FALSE(::testing::Test::HasFatalFailure());
    }
  }
}

TEST(NativeLooks, NullArgumentsAnswerTwo) {
  KernelFrame frame(QPX_FORMAT_BGR24);
  const MRect rect = {0, 0, 1, 1};
  QPXRowTable rows[3] = {};
  EXPECT_EQ(Sepia_RGB24(nullptr, &rect, rows, rows), QPX_BAD_PARAM);
  EXPECT_EQ(Sepia_RGB24(&frame.stage(), nullptr, rows, rows), QPX_BAD_PARAM);
  EXPECT_EQ(Sepia_RGB24(&frame.stage(), &rect, nullptr, rows), QPX_BAD_PARAM);
  EXPECT_EQ(Sepia_RGB24(&frame.stage(), &rect, rows, nullptr), QPX_BAD_PARAM);
}

}  // namespace
}  // namespace qpx
