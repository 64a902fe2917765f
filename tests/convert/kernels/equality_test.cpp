#include <gtest/gtest.h>

#include <set>
#include <string>
#include <string_view>

#include "convert/kernels/frames.h"
#include "convert/kernels/kernel_run.h"

namespace qpx::testing {
namespace {

constexpr uint32_t kFormats[] = {
    QPX_FORMAT_BGR24,  QPX_FORMAT_RGB24, QPX_FORMAT_BGRA32, QPX_FORMAT_RGBA32, QPX_FORMAT_RGB565,
    QPX_FORMAT_BGR565, QPX_FORMAT_GREY8, QPX_FORMAT_I420,   QPX_FORMAT_I422,   QPX_FORMAT_I440,
    QPX_FORMAT_I444,   0x50000A11,       0x50000A10,        0x50000A01,        0x50000A00,
    QPX_FORMAT_NV21,   QPX_FORMAT_NV12,  0x70000004,        0x70000005,        QPX_FORMAT_YUYV,
    QPX_FORMAT_YVYU,   QPX_FORMAT_UYVY,  QPX_FORMAT_VYUY,
};

bool isYuv(uint32_t format) { return format >> 28 >= 5; }

uint32_t anyColour(uint32_t format, Random& random) {
  return format | (isYuv(format) ? static_cast<uint32_t>(random.between(0, 3)) << 12 : 0);
}

void adjust(Random& random, ConvParams* params) {
  params->brightness = random.between(-128, 128);
  params->contrast = random.between(-128, 128);
  params->saturation = random.between(-128, 128);
}

// The row engine against the general path: every pair of formats that it knows.
TEST(ConvertKernels, RowsEqualTheGeneralPathForEveryPairOfFormats) {
  Random random(71);
  uint64_t seed = 0;
  for (const uint32_t from : kFormats) {
    for (const uint32_t to : kFormats) {
      for (const char sampling : {'u', 'n', 'b'}) {
        const int32_t block = random.between(0, 1) == 0 ? 1 : 2;
        Conversion c = anyConversion(anyColour(from, random), anyColour(to, random), sampling, -1,
                                     block, random);
        c.params.dither = static_cast<uint32_t>(random.between(0, 1));
        if (random.between(0, 2) == 0) adjust(random, &c.params);
        const MRect rect = random.between(0, 1) == 0 ? c.rect() : partOf(c.rect(), block, random);
        ASSERT_TRUE(equalsGeneral(c, rect, convert::convertByRows, ++seed)) << describe(c, rect);
      }
    }
  }
}

// Have rules of their own for rows and resampling, which quick_turns_test.cpp holds them to.
bool isQuickTurn(const KernelRow& row) { return std::string_view(row.name).starts_with("MCC_"); }

// Every kernel by its name: every pair of its formats, in whole pictures and parts.
TEST(ConvertKernels, EveryKernelEqualsTheGeneralPath) {
  Random random(72);
  uint64_t seed = 5000;
  for (const KernelRow& row : kernelRows()) {
    if (!row.equalsGeneral || isQuickTurn(row)) continue;
    for (int32_t i = 0; i < 3; ++i) {
      Conversion c = anyConversion(row.from, row.to, row.sampling, row.orient, row.block, random);
      const MRect rect = i == 0 ? c.rect() : partOf(c.rect(), row.block, random);
      ASSERT_TRUE(equalsGeneral(c, rect, row.kernel, ++seed))
          << row.name << ": " << describe(c, rect);
    }
  }
}

bool writesNothing(const Conversion& c, const AnyKernel& kernel, uint64_t seed) {
  const Converter converter(c);
  const ConversionPicture src(c.from, c.params.srcX + c.srcWidth, c.params.srcY + c.srcHeight,
                              seed);
  ConversionPicture dst(c.to, c.params.dstX + c.dstWidth, c.params.dstY + c.dstHeight, seed + 1);
  const ConversionPicture before = dst;
  converter.run(src, c.rect(), kernel, &dst);
  return dst.sameBytes(before);
}

// Another orientation, another kind of resampling, a format of the other side.
TEST(ConvertKernels, KernelsLeaveAloneWhatIsNotTheirs) {
  Random random(73);
  std::string last;
  for (const KernelRow& row : kernelRows()) {
    if (row.name == last) continue;
    last = row.name;
    if (row.orient >= 0) {
      const int32_t other = row.orient == 4 ? 2 : 4;
      const Conversion c = anyConversion(row.from, row.to, row.sampling, other, row.block, random);
      const bool takesBoth = last == "NV21_To_RGB565_NoResample_1x1_R90AndVertical";
      EXPECT_EQ(!takesBoth, writesNothing(c, row.kernel, 1))
          << row.name << ": " << describe(c, c.rect());
    }
    if (row.onlyUnit && !isQuickTurn(row)) {
      const Conversion c = anyConversion(row.from, row.to, 'n', row.orient, row.block, random);
      EXPECT_TRUE(writesNothing(c, row.kernel, 2)) << row.name << ": " << describe(c, c.rect());
    }
    const Conversion c =
        anyConversion(QPX_FORMAT_RGB555, row.to, row.sampling, row.orient, row.block, random);
    EXPECT_TRUE(writesNothing(c, row.kernel, 3)) << row.name << ": " << describe(c, c.rect());
  }
}

TEST(ConvertKernels, AllNamesAreInTheTable) {
  std::set<std::string> names;
  for (const KernelRow& row : kernelRows()) names.insert(row.name);
  EXPECT_EQ(284u, names.size());
}

}  // namespace
}  // namespace qpx::testing
