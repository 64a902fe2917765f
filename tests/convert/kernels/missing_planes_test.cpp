// Planes that are not there: refused before anything is written.
#include <gtest/gtest.h>
#include <qpx/convert_wide.h>

#include "convert/kernels/frames.h"
#include "convert/kernels/kernel_run.h"

namespace qpx::testing {
namespace {

struct Planes {
  const uint8_t* src[3];
  uint8_t* dst[3];
};

// Calls run(planes, hole) with each plane in turn null that the formats have.
template <typename Run>
void forEachHole(const ConversionPicture& src, ConversionPicture* dst, const Run& run) {
  const auto countOf = [](const ConversionPicture& picture, bool writes) {
    const FormatLayout& layout = picture.layout();
    if (layout.kind != FormatLayout::Kind::yuv) return 1;
    return layout.plane[1] != 0 || writes ? 3 : 1;
  };
  Planes planes = {};
  for (int32_t p = 0; p < 3; ++p) {
    planes.src[p] = src.planes()[src.planes()[p] != nullptr ? p : 0];
    planes.dst[p] = dst->planes()[dst->planes()[p] != nullptr ? p : 0];
  }
  for (int32_t p = 0; p < countOf(src, false); ++p) {
    Planes holed = planes;
    holed.src[p] = nullptr;
    run(holed, p);
  }
  for (int32_t p = 0; p < countOf(*dst, true); ++p) {
    Planes holed = planes;
    holed.dst[p] = nullptr;
    run(holed, 3 + p);
  }
}

struct Answer {
  const Planes& planes;
  const ConversionPicture& src;
  const ConversionPicture& dst;
  const ConvRecord& record;
  MRect rect;

  int32_t operator()(ConvFrameFunction frame) const {
    return frame(&rect, dst.pitches(), src.pitches(), planes.dst, planes.src, &record);
  }
  int32_t operator()(SubsampledKernel kernel) const {
    return kernel(&rect, planes.src, planes.dst, src.pitches(), dst.pitches(), record.srcSubX,
                  record.srcSubY, record.dstSubX, record.dstSubY, &record);
  }
  int32_t operator()(PairedKernel kernel) const {
    const bool vFirst = record.dst.klass == 0x70000002 || record.dst.klass == 0x70000004;
    return kernel(&rect, planes.src, planes.dst, src.pitches(), dst.pitches(), vFirst ? 1 : 0,
                  &record);
  }
  // Has no answer.
  int32_t operator()(RectKernel kernel) const {
    kernel(&rect, planes.src, planes.dst, src.pitches(), dst.pitches(),
           -static_cast<int32_t>(record.stepY), record.stepX, record.stepY, 0, 0, &record);
    return QPX_BAD_PARAM;
  }
};

Conversion conversionOf(const KernelRow& row) {
  Conversion c = {row.from, row.to, 8, 8, 8, 8, {}};
  if (row.sampling != 'u') c.srcWidth = 12;
  c.params.interp = row.sampling == 'b' ? 2 : 1;
  c.params.orient = static_cast<uint32_t>(row.orient < 0 ? 0 : row.orient);
  c.params.blockMode = row.block == 1 ? 1 : row.block == 2 ? 2 : 3;
  return c;
}

TEST(MissingPlanes, AreRefusedByEveryKernel) {
  std::string last;
  for (const KernelRow& row : kernelRows()) {
    if (row.name == last) continue;
    last = row.name;
    const Conversion c = conversionOf(row);
    const Converter converter(c);
    const ConversionPicture src(c.from, c.srcWidth, 8, 1);
    ConversionPicture dst(c.to, 8, 8, 2);
    const ConversionPicture before = dst;
    forEachHole(src, &dst, [&](const Planes& planes, int32_t hole) {
      const Answer answer = {planes, src, dst, converter.record, c.rect()};
      EXPECT_EQ(QPX_BAD_PARAM, std::visit(answer, row.kernel)) << row.name << ", plane " << hole;
    });
    EXPECT_TRUE(dst.sameBytes(before)) << row.name;
  }
}

TEST(MissingPlanes, AreRefusedByEveryFrame) {
  constexpr ConvFrameFunction kFrames[] = {ANY_ANY_Bilinear_No_Table,
                                           PUZUMPE_ALL,
                                           ANY_ANY_C_FAST_R8G8B8,
                                           YUV2YUV_Fast,
                                           ANY_ANY_C_FAST_R5G6B5,
                                           I420_To_I422_Fast,
                                           YUV_YUV_C_FAST,
                                           YUV_RGB32_C_FAST,
                                           YUYV_RGB32_FAST,
                                           ANY_ANY_C_FAST_RGB32,
                                           Gray2Gray_C_FAST,
                                           convert::convertByRows,
                                           ANY_ANY_C_SLOW};
  constexpr uint32_t kPairs[][2] = {
      {QPX_FORMAT_I420, QPX_FORMAT_BGR24},           {QPX_FORMAT_NV21, QPX_FORMAT_I420},
      {QPX_FORMAT_NV21 | 0x1000, QPX_FORMAT_BGRA32}, {QPX_FORMAT_BGR24, QPX_FORMAT_YUYV},
      {QPX_FORMAT_YUYV, QPX_FORMAT_RGB565},          {QPX_FORMAT_GREY8, QPX_FORMAT_GREY8},
      {QPX_FORMAT_RGBA32, QPX_FORMAT_NV12}};
  for (const auto& [from, to] : kPairs) {
    Conversion c = {from, to, 8, 8, 8, 8, {}};
    c.params.blockMode = 3;
    const Converter converter(c);
    const ConversionPicture src(from, 8, 8, 1);
    ConversionPicture dst(to, 8, 8, 2);
    const ConversionPicture before = dst;
    forEachHole(src, &dst, [&](const Planes& planes, int32_t hole) {
      const Answer answer = {planes, src, dst, converter.record, c.rect()};
      for (const ConvFrameFunction frame : kFrames) {
        EXPECT_EQ(QPX_BAD_PARAM, answer(frame)) << std::hex << from << " to " << to << ", plane "
                                                << hole << ", frame " << &frame - kFrames;
      }
    });
    EXPECT_TRUE(dst.sameBytes(before));
  }
}

using WideKernel = void (*)(const MRect*, const int32_t*, const int32_t*, uint8_t* const*,
                            const uint8_t* const*, const ConvRecord*);

TEST(MissingPlanes, StopTheWidestKernels) {
  struct Case {
    WideKernel kernel;
    uint32_t from, to;
    bool resamples;
  };
  constexpr uint32_t kFull = 0x1000;
  constexpr Case kCases[] = {
      {PUZUMPE_NV21YCbCr601toBGR32_NoResize, QPX_FORMAT_NV21, QPX_FORMAT_BGRA32, false},
      {PUZUMPE_I420toBGR32_NoResize, QPX_FORMAT_I420, QPX_FORMAT_BGRA32, false},
      {PUZUMPE_YUYVtoBGR32_NoResize, QPX_FORMAT_YUYV, QPX_FORMAT_BGRA32, false},
      {PUZUMPE_NV21toI420_Fast_BilNear, QPX_FORMAT_NV21, QPX_FORMAT_I420, true},
      {PUZUMPE_BGR32toNV21_Fast_BilNear, QPX_FORMAT_BGRA32, QPX_FORMAT_NV21, true},
  };
  for (const Case& k : kCases) {
    const auto full = [](uint32_t format) { return format >> 28 >= 5 ? format | kFull : format; };
    Conversion c = {full(k.from), full(k.to), k.resamples ? 12 : 8, 8, 8, 8, {}};
    c.params.interp = 2;
    c.params.blockMode = 3;
    const Converter converter(c);
    const ConversionPicture src(c.from, c.srcWidth, 8, 1);
    ConversionPicture dst(c.to, 8, 8, 2);
    const ConversionPicture before = dst;
    forEachHole(src, &dst, [&](const Planes& planes, int32_t) {
      const MRect rect = c.rect();
      k.kernel(&rect, dst.pitches(), src.pitches(), planes.dst, planes.src, &converter.record);
    });
    EXPECT_TRUE(dst.sameBytes(before));
  }
}

}  // namespace
}  // namespace qpx::testing
