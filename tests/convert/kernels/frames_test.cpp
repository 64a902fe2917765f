#include <gtest/gtest.h>

#include <map>
#include <set>
#include <string>
#include <string_view>

#include "convert/kernels/kernel_run.h"
#include "convert/kernels/members.h"

namespace qpx::testing {
namespace {

using namespace convert::fast;

struct Line {
  const char* name;
  Member member;
};

struct FrameLines {
  ConvFrameFunction frame;
  std::vector<Line> lines;
};

#define QPX_LINE(name, ...) Line{#name, Member{__VA_ARGS__}},

const std::vector<FrameLines>& frames() {
  static const std::vector<FrameLines> kFrames = {
      {ANY_ANY_C_FAST_R8G8B8, {QPX_RGB24_KERNELS(QPX_LINE)}},
      {YUV2YUV_Fast, {QPX_SUBSAMPLED_KERNELS(QPX_LINE) QPX_PAIRED_KERNELS(QPX_LINE)}},
      {ANY_ANY_C_FAST_R5G6B5, {QPX_RGB16_KERNELS(QPX_LINE)}},
      {I420_To_I422_Fast, {QPX_PLANAR_KERNELS(QPX_LINE)}},
      {YUV_YUV_C_FAST, {QPX_YUYV_KERNELS(QPX_LINE) QPX_NV_LUT_KERNELS(QPX_LINE)}},
      {YUV_YUV_C_FAST, {QPX_NV_KERNELS(QPX_LINE)}},
      {YUV_RGB32_C_FAST, {QPX_YUV_RGB32_KERNELS(QPX_LINE)}},
      {YUYV_RGB32_FAST, {QPX_YUYV_RGB32_KERNELS(QPX_LINE)}},
      {ANY_ANY_C_FAST_RGB32, {QPX_RGB32_KERNELS(QPX_LINE)}},
      {Gray2Gray_C_FAST, {QPX_GREY_KERNELS(QPX_LINE)}},
  };
  return kFrames;
}

const FrameLines* frameOf(const std::string& name) {
  for (const FrameLines& frame : frames()) {
    for (const Line& line : frame.lines) {
      if (line.name == name) return &frame;
    }
  }
  return nullptr;
}

const char* firstOf(const FrameLines& frame, const ConvRecord& record, const MRect& rect) {
  for (const Line& line : frame.lines) {
    if (takes(line.member, workOf(record)) && suits(line.member, record, rect)) return line.name;
  }
  return "";
}

bool isOutsideFrames(const std::string& name) {
  return name.starts_with("MCC_") || name.ends_with("_N_RESIZE_4x4_R90") ||
         name.ends_with("_N_RESIZE_4x4_R180") || name.ends_with("_N_RESIZE_4x4_HORIZONTAL");
}

// Each name is the first of its frame's for one conversion at least, and the frame then converts.
TEST(ConvertFrames, ServeEveryKernelOfTheirs) {
  Random random(91);
  uint64_t seed = 40;
  std::set<std::string> all, picked;
  for (const KernelRow& row : kernelRows()) {
    all.insert(row.name);
    if (isOutsideFrames(row.name)) continue;
    const FrameLines* const frame = frameOf(row.name);
    ASSERT_NE(nullptr, frame) << row.name;
    for (int32_t i = 0; i < 8 && !(i > 0 && picked.contains(row.name)); ++i) {
      Conversion c = anyConversion(row.from, row.to, row.sampling, row.orient, row.block, random);
      c.params.dither = static_cast<uint32_t>(i % 2);
      if (std::string_view(row.name).find("LookupTable") != std::string_view::npos) {
        c.params.brightness = 9;
      }
      if (i >= 4) c.dstWidth = c.dstHeight = c.srcWidth = c.srcHeight = 32;
      if (i >= 4) {
        c.params.dstX = c.params.dstY = 0;
        c.params.clipLeft = c.params.clipTop = c.params.clipRight = c.params.clipBottom = 0;
      }
      if (i >= 4 && row.sampling != 'u') c.srcWidth = 24;
      const Converter converter(c);
      ASSERT_EQ(QPX_OK, converter.result);
      picked.insert(firstOf(*frame, converter.record, c.rect()));
      const bool ditheredApart = c.params.dither != 0;
      if (!ditheredApart) {
        ASSERT_TRUE(equalsGeneral(c, c.rect(), frame->frame, ++seed))
            << row.name << ": " << describe(c, c.rect());
      }
    }
  }
  for (const std::string& name : all) {
    EXPECT_TRUE(isOutsideFrames(name) || picked.contains(name)) << name << " is never picked";
  }
}

int32_t answerOf(ConvFrameFunction frame, uint32_t from, uint32_t to, char sampling,
                 int32_t brightness = 0) {
  Random random(3);
  Conversion c = anyConversion(from, to, sampling, 0, 4, random);
  c.params.brightness = brightness;
  const Converter converter(c);
  const ConversionPicture src(from, c.params.srcX + c.srcWidth, c.params.srcY + c.srcHeight, 5);
  ConversionPicture dst(to, c.params.dstX + c.dstWidth, c.params.dstY + c.dstHeight, 6);
  return converter.run(src, c.rect(), frame, &dst);
}

TEST(ConvertFrames, DeclineWhatTheyAreNotFor) {
  constexpr uint32_t kBgr = QPX_FORMAT_BGR24, kRgba = QPX_FORMAT_RGBA32, kYuyv = QPX_FORMAT_YUYV,
                     kI420 = QPX_FORMAT_I420, kGrey = QPX_FORMAT_GREY8, kNv21 = QPX_FORMAT_NV21;
  EXPECT_EQ(3, answerOf(ANY_ANY_C_FAST_R8G8B8, kI420, kRgba, 'u'));
  EXPECT_EQ(3, answerOf(ANY_ANY_C_FAST_R8G8B8, kBgr, kYuyv, 'u'));
  EXPECT_EQ(3, answerOf(ANY_ANY_C_FAST_R8G8B8, QPX_FORMAT_RGB666, kBgr, 'u'));
  EXPECT_EQ(3, answerOf(YUV2YUV_Fast, kI420, kBgr, 'u'));
  EXPECT_EQ(0, answerOf(YUV2YUV_Fast, kI420, kNv21, 'u'));
  EXPECT_EQ(3, answerOf(YUV2YUV_Fast, kI420, kNv21, 'u', 10));
  EXPECT_EQ(3, answerOf(ANY_ANY_C_FAST_R5G6B5, kI420, kBgr, 'u'));
  EXPECT_EQ(3, answerOf(ANY_ANY_C_FAST_R5G6B5, kI420, QPX_FORMAT_RGB555, 'u'));
  EXPECT_EQ(3, answerOf(I420_To_I422_Fast, kI420, kNv21, 'u'));
  EXPECT_EQ(3, answerOf(YUV_YUV_C_FAST, kI420, kI420, 'u'));
  EXPECT_EQ(3, answerOf(YUV_YUV_C_FAST, kI420, QPX_FORMAT_UYVY, 'u'));
  EXPECT_EQ(3, answerOf(YUV_RGB32_C_FAST, kRgba, kI420, 'u'));
  EXPECT_EQ(3, answerOf(YUYV_RGB32_FAST, kYuyv, kRgba, 'n'));
  EXPECT_EQ(3, answerOf(YUYV_RGB32_FAST, kYuyv, kBgr, 'u'));
  EXPECT_EQ(3, answerOf(ANY_ANY_C_FAST_RGB32, kBgr, kI420, 'u'));
  EXPECT_EQ(3, answerOf(Gray2Gray_C_FAST, kGrey, kI420, 'u'));
}

TEST(ConvertFrames, KernelsBetweenYuvWantNoColourTableAndTheRecordsOwnLayout) {
  Random random(6);
  Conversion c = anyConversion(QPX_FORMAT_I420, QPX_FORMAT_NV21, 'u', 0, 4, random);
  c.params.blockMode = 2;
  const ConversionPicture src(c.from, c.params.srcX + c.srcWidth, c.params.srcY + c.srcHeight, 5);
  ConversionPicture dst(c.to, c.params.dstX + c.dstWidth, c.params.dstY + c.dstHeight, 6);
  EXPECT_EQ(0, Converter(c).run(src, c.rect(), YUVtoNV21Fast_NORESAMPLE_R0_1x1, &dst));
  EXPECT_EQ(3, Converter(c).run(src, c.rect(), YUVtoNV21Fast_NORESAMPLE_R0_4x4, &dst));
  const Converter plain(c);
  const MRect rect = c.rect();
  EXPECT_EQ(3, YUVtoNV21Fast_NORESAMPLE_R0_1x1(&rect, src.planes(), dst.planes(), src.pitches(),
                                               dst.pitches(), 0, &plain.record));
  const int32_t full[3] = {1, 1, 1};
  EXPECT_EQ(3,
            NV21toI420Fast_NORESAMPLE_R0_4x4(&rect, src.planes(), dst.planes(), src.pitches(),
                                             dst.pitches(), full, full, full, full, &plain.record));
  c.params.contrast = 5;
  EXPECT_EQ(3, Converter(c).run(src, c.rect(), YUVtoNV21Fast_NORESAMPLE_R0_1x1, &dst));
}

}  // namespace
}  // namespace qpx::testing
