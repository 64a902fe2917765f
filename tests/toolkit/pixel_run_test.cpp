#include "toolkit/pixel_run.h"

#include <gtest/gtest.h>

#include <utility>

#include "support/kernel_frame.h"

namespace qpx {
namespace {

using testing::channelOf;
using testing::describe;
using testing::KernelFrame;
using testing::Picture;
using testing::pixelOf;
using testing::Placement;
using testing::Random;
using testing::scramble;
using testing::wholeOf;

void keep(const Stage&, PixelRun&) {}

void invert(const Stage&, PixelRun& run) {
  for (int32_t i = 0; i < run.count; ++i) {
    run.r[i] ^= 255;
    run.g[i] ^= 255;
    run.b[i] ^= 255;
  }
}

void markPlaces(const Stage&, PixelRun& run) {
  for (int32_t i = 0; i < run.count; ++i) {
    run.r[i] = static_cast<uint8_t>(run.x + i);
    run.g[i] = static_cast<uint8_t>((run.x + i) >> 8);
    run.b[i] = static_cast<uint8_t>(run.y);
  }
}

// Packed RGB and grey: what the fields hold is what the recipe gets, to the bit.
constexpr uint32_t kExactFormats[] = {
    QPX_FORMAT_BGR24,  QPX_FORMAT_RGB24,  QPX_FORMAT_BGRA32, QPX_FORMAT_RGBA32,
    QPX_FORMAT_BGRX32, QPX_FORMAT_RGBX32, 0x37004777,        0x37005777,
    QPX_FORMAT_BGR666, QPX_FORMAT_RGB666, QPX_FORMAT_RGB565, QPX_FORMAT_BGR565,
    QPX_FORMAT_RGB444, QPX_FORMAT_BGR444, QPX_FORMAT_RGB555, QPX_FORMAT_BGR555,
    0x17000999,  // ten bits a field
    0x37001999,
    0x15000F00,  // a field that does not fit into its pixel
    0x16000FFF,  // fields of which one is gone altogether
    0x15000000,  // one bit a field
    0x17000342,  // three fields in the low bits of four bytes
    QPX_FORMAT_GREY8,  0x64001000};

std::string formatName(const ::testing::TestParamInfo<uint32_t>& info) {
  char text[16];
  std::snprintf(text, sizeof text, "x%08X", static_cast<unsigned>(info.param));
  return text;
}

class ExactRuns : public ::testing::TestWithParam<uint32_t> {};

TEST_P(ExactRuns, IdentityLeavesEveryByte) {
  KernelFrame frame(GetParam());
  Picture in(GetParam(), 301, 7, Placement::guarded);
  scramble(in, 5);
  Picture out(in);
  scramble(out, 6);
  ASSERT_EQ(frame.run(overRuns<keep>, in, out, wholeOf(in)), QPX_OK);
  const auto difference = in.firstDifference(out);
  EXPECT_FALSE(difference) << describe(*difference);
  ASSERT_EQ(frame.run(overComponents<keep>, in, out, wholeOf(in)), QPX_OK);
  EXPECT_FALSE(in.firstDifference(out));
}

TEST_P(ExactRuns, RandomRectanglesAreWrittenAndNothingElse) {
  Random random(GetParam());
  for (int round = 0; round < 60; ++round) {
    const int32_t width = random.between(1, round % 5 == 0 ? 600 : 40);
    Picture in(GetParam(), width, random.between(1, 9), Placement::exact);
    scramble(in, static_cast<uint64_t>(round));
    Picture out(GetParam(), in.width(), in.height(), Placement::guarded);
    const Picture before(out);
    MRect rect;
    rect.left = random.between(0, in.width() - 1);
    rect.right = random.between(rect.left + 1, in.width());
    rect.top = random.between(0, in.height() - 1);
    rect.bottom = random.between(rect.top + 1, in.height());
    KernelFrame frame(GetParam());
    ASSERT_EQ(frame.run(overRuns<invert>, in, out, rect), QPX_OK);
    const auto stray = out.firstWriteOutside(before, rect);
    ASSERT_FALSE(stray) << describe(*stray);
  }
}

TEST_P(ExactRuns, OutputMayBeTheInput) {
  KernelFrame frame(GetParam());
  Picture in(GetParam(), 77, 5, Placement::exact);
  scramble(in, 3);
  Picture apart(in);
  Picture same(in);
  frame.run(overRuns<invert>, in, apart, wholeOf(in));
  frame.run(overRuns<invert>, same, same, wholeOf(in));
  EXPECT_TRUE(in.firstDifference(apart));
  EXPECT_FALSE(apart.firstDifference(same));
}

INSTANTIATE_TEST_SUITE_P(Formats, ExactRuns, ::testing::ValuesIn(kExactFormats), formatName);

class PackedRuns : public ::testing::TestWithParam<uint32_t> {};

TEST_P(PackedRuns, RecipeGetsAndGivesTheFields) {
  const uint32_t format = GetParam();
  KernelFrame frame(format);
  Picture in(format, 270, 3, Placement::exact);
  scramble(in, 9);
  Picture out(in);
  ASSERT_EQ(frame.run(overRuns<invert>, in, out, wholeOf(in)), QPX_OK);
  uint32_t fields = 0;
  for (int c = 0; c < 3; ++c) fields |= testing::fieldMask(format, c);
  for (int32_t y = 0; y < in.height(); ++y) {
    for (int32_t x = 0; x < in.width(); ++x) {
      ASSERT_EQ(pixelOf(in, x, y) & ~fields, pixelOf(out, x, y) & ~fields) << x << ", " << y;
      for (int c = 0; c < 3; ++c) {
        if (testing::fieldMask(format, c) == 0) continue;
        ASSERT_EQ(channelOf(in, c, x, y) ^ 255, channelOf(out, c, x, y)) << x << ", " << y;
      }
    }
  }
}

INSTANTIATE_TEST_SUITE_P(Formats, PackedRuns,
                         ::testing::ValuesIn(kExactFormats, std::end(kExactFormats) - 2),
                         formatName);

TEST(PixelRuns, LoadsKnownPixels) {
  struct Case {
    uint32_t format;
    uint8_t bytes[4];
    uint8_t r, g, b, a;
  };
  constexpr Case kCases[] = {
      {QPX_FORMAT_BGR24, {1, 2, 3}, 3, 2, 1, 255},
      {QPX_FORMAT_RGB24, {1, 2, 3}, 1, 2, 3, 255},
      {QPX_FORMAT_BGRA32, {1, 2, 3, 4}, 3, 2, 1, 4},
      {QPX_FORMAT_RGBA32, {1, 2, 3, 4}, 1, 2, 3, 4},
      {QPX_FORMAT_RGB565, {0b11100001, 0b10000100}, 0b10000100, 0b10011110, 0b00001000, 255},
      {QPX_FORMAT_BGR565, {0b11100001, 0b10000100}, 0b00001000, 0b10011110, 0b10000100, 255},
      {QPX_FORMAT_RGB444, {0x34, 0xF2}, 0x22, 0x33, 0x44, 255},
      {QPX_FORMAT_BGR444, {0x34, 0xF2}, 0x44, 0x33, 0x22, 255},
      {QPX_FORMAT_GREY8, {77}, 77, 77, 77, 255},
  };
  for (const Case& c : kCases) {
    KernelFrame frame(c.format);
    const RunFormat format(frame.stage());
    ASSERT_TRUE(format.known());
    uint8_t bytes[4];
    std::copy_n(c.bytes, 4, bytes);
    uint8_t* row = bytes;
    const QPXRowTable rows[3] = {&row, nullptr, nullptr};
    PixelRun run;
    run.count = 1;
    format.load(rows, run);
    EXPECT_EQ(run.r[0], c.r) << std::hex << c.format;
    EXPECT_EQ(run.g[0], c.g) << std::hex << c.format;
    EXPECT_EQ(run.b[0], c.b) << std::hex << c.format;
    EXPECT_EQ(run.a[0], c.a) << std::hex << c.format;
  }
}

TEST(PixelRuns, KnowTheirPlace) {
  KernelFrame frame(QPX_FORMAT_RGB24);
  Picture picture(QPX_FORMAT_RGB24, 700, 4, Placement::exact);
  const MRect rect = {3, 1, 700, 4};
  frame.run(overRuns<markPlaces>, picture, picture, rect);
  for (int32_t y = rect.top; y < rect.bottom; ++y) {
    for (int32_t x = rect.left; x < rect.right; ++x) {
      ASSERT_EQ(channelOf(picture, 0, x, y), x & 255);
      ASSERT_EQ(channelOf(picture, 1, x, y), x >> 8);
      ASSERT_EQ(channelOf(picture, 2, x, y), y);
    }
  }
}

TEST(PixelRuns, GreyIsStoredAsLuma) {
  KernelFrame frame(QPX_FORMAT_GREY8);
  const RunFormat format(frame.stage());
  uint8_t bytes[3] = {};
  uint8_t* row = bytes;
  const QPXRowTable rows[3] = {&row, nullptr, nullptr};
  PixelRun run;
  run.count = 3;
  const uint8_t samples[3][3] = {{255, 0, 0}, {0, 255, 0}, {0, 0, 255}};
  for (int i = 0; i < 3; ++i) {
    run.r[i] = samples[i][0];
    run.g[i] = samples[i][1];
    run.b[i] = samples[i][2];
  }
  format.store(run, rows, rows);
  EXPECT_EQ(bytes[0], 76);   // 9798 * 255 / 32768 = 76.2
  EXPECT_EQ(bytes[1], 149);  // 149.7
  EXPECT_EQ(bytes[2], 29);   // 29.1
}

TEST(PixelRuns, EmptyRectanglesTouchNothing) {
  KernelFrame frame(QPX_FORMAT_BGR24);
  Picture picture(QPX_FORMAT_BGR24, 8, 8, Placement::guarded);
  scramble(picture, 1);
  const Picture before(picture);
  for (const MRect& rect : {MRect{3, 3, 3, 5}, MRect{3, 3, 5, 3}, MRect{5, 5, 2, 2}}) {
    EXPECT_EQ(frame.run(overRuns<invert>, picture, picture, rect), QPX_OK);
  }
  EXPECT_FALSE(before.firstDifference(picture));
}

TEST(PixelRuns, PackedYuvIsRefusedUntouched) {
  for (const uint32_t code : {QPX_FORMAT_YUYV, QPX_FORMAT_UYVY}) {
    KernelFrame frame(code);
    Picture picture(code, 8, 8, Placement::guarded);
    picture.paint(1);
    const Picture before(picture);
    EXPECT_EQ(frame.run(overRuns<invert>, picture, picture, wholeOf(picture)), QPX_UNSUPPORTED);
    EXPECT_EQ(frame.run(overComponents<invert>, picture, picture, wholeOf(picture)),
              QPX_UNSUPPORTED);
    EXPECT_FALSE(before.firstDifference(picture));
  }
}

}  // namespace
}  // namespace qpx
