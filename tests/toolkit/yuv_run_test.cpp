#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <cstdlib>

#include "support/kernel_frame.h"
#include "toolkit/pixel_run.h"

namespace qpx {
namespace {

using testing::describe;
using testing::FormatCase;
using testing::KernelFrame;
using testing::Picture;
using testing::Placement;
using testing::Random;
using testing::wholeOf;

void keep(const Stage&, PixelRun&) {}

void rotateChannels(const Stage&, PixelRun& run) {
  for (int32_t i = 0; i < run.count; ++i) {
    const uint8_t r = run.r[i];
    run.r[i] = run.g[i];
    run.g[i] = run.b[i];
    run.b[i] = r;
  }
}

using Triple = std::array<int, 3>;

// The pair of full-range BT.601 once more, as numbers of 16 fractional bits, rounded half up.
int fixedRow(const double (&row)[4], const Triple& in) {
  const auto fixed = [](double c) { return static_cast<int64_t>(std::floor(c * 65536 + 0.5)); };
  const int64_t sum =
      fixed(row[0]) * in[0] + fixed(row[1]) * in[1] + fixed(row[2]) * in[2] + fixed(row[3]) + 32768;
  const int64_t whole = static_cast<int64_t>(std::floor(static_cast<double>(sum) / 65536));
  return static_cast<int>(whole < 0 ? 0 : whole > 255 ? 255 : whole);
}

Triple toRgb(const Triple& yuv) {
  return {fixedRow({1, 0, 1.4025f, -179.52f}, yuv),
          fixedRow({1, -0.34434f, -0.7144f, 135.518723f}, yuv),
          fixedRow({1, 1.77305f, 0, -226.950394f}, yuv)};
}

Triple toYuv(const Triple& rgb) {
  return {fixedRow({0.299f, 0.587f, 0.114f, 0}, rgb),
          fixedRow({-0.1686f, -0.3311f, 0.4997f, 128}, rgb),
          fixedRow({0.4998f, -0.4185f, -0.0813f, 128}, rgb)};
}

// The same in real numbers, rounded half up.
int realRow(const double (&row)[4], const Triple& in) {
  const double sum = row[0] * in[0] + row[1] * in[1] + row[2] * in[2] + row[3];
  return static_cast<int>(std::floor(std::min(std::max(sum, 0.0), 255.0) + 0.5));
}

Triple samplesOf(const Picture& picture, int32_t x, int32_t y) {
  return {picture.yuv(0, x, y), picture.yuv(1, x, y), picture.yuv(2, x, y)};
}

// One pixel through the runs of I444.
class OnePixel {
 public:
  OnePixel() : frame_(QPX_FORMAT_I444), format_(frame_.stage()) { run_.count = 1; }

  Triple load(const Triple& yuv) {
    for (int p = 0; p < 3; ++p) bytes_[p] = static_cast<uint8_t>(yuv[static_cast<size_t>(p)]);
    format_.load(tables_, run_);
    return {run_.r[0], run_.g[0], run_.b[0]};
  }

  Triple store(const Triple& rgb) {
    run_.r[0] = static_cast<uint8_t>(rgb[0]);
    run_.g[0] = static_cast<uint8_t>(rgb[1]);
    run_.b[0] = static_cast<uint8_t>(rgb[2]);
    format_.store(run_, tables_, tables_);
    return {bytes_[0], bytes_[1], bytes_[2]};
  }

 private:
  KernelFrame frame_;
  RunFormat format_;
  PixelRun run_;
  uint8_t bytes_[3] = {};
  uint8_t* rows_[3] = {bytes_, bytes_ + 1, bytes_ + 2};
  QPXRowTable tables_[3] = {rows_, rows_ + 1, rows_ + 2};
};

TEST(YuvRuns, GreysAreExactBothWays) {
  OnePixel pixel;
  for (int y = 0; y < 256; ++y) {
    EXPECT_EQ(pixel.load({y, 128, 128}), (Triple{y, y, y}));
    EXPECT_EQ(pixel.store({y, y, y}), (Triple{y, 128, 128}));
  }
}

TEST(YuvRuns, KnownColoursConvert) {
  OnePixel pixel;
  EXPECT_EQ(pixel.store({255, 0, 0}), (Triple{76, 85, 255}));      // 76.2, 85.0, 255.4
  EXPECT_EQ(pixel.store({0, 255, 0}), (Triple{150, 44, 21}));      // 149.7, 43.6, 21.3
  EXPECT_EQ(pixel.store({0, 0, 255}), (Triple{29, 255, 107}));     // 29.1, 255.4, 107.3
  EXPECT_EQ(pixel.load({100, 128, 228}), (Triple{240, 29, 100}));  // 240.2, 28.6, 100
  EXPECT_EQ(pixel.load({0, 0, 0}), (Triple{0, 136, 0}));           // -179, 135.5, -227
}

TEST(YuvRuns, ConversionsAreTheFixedPointOnes) {
  OnePixel pixel;
  Random random(7);
  for (int round = 0; round < 200000; ++round) {
    const Triple in = {random.byte(), random.byte(), random.byte()};
    ASSERT_EQ(pixel.load(in), toRgb(in));
    ASSERT_EQ(pixel.store(in), toYuv(in));
  }
}

TEST(YuvRuns, ConversionsAreAtMostOneFromRealNumbers) {
  OnePixel pixel;
  Random random(8);
  int apart = 0;
  for (int round = 0; round < 100000; ++round) {
    const Triple in = {random.byte(), random.byte(), random.byte()};
    const Triple rgb = pixel.load(in);
    const int difference = std::abs(rgb[0] - realRow({1, 0, 1.4025f, -179.52f}, in));
    ASSERT_LE(difference, 1);
    apart += difference;
  }
  EXPECT_LT(apart, 1000);
}

TEST(YuvRuns, RoundTripOfRealColoursIsNear) {
  OnePixel pixel;
  Random random(9);
  for (int round = 0; round < 100000; ++round) {
    const Triple rgb = {random.byte(), random.byte(), random.byte()};
    const Triple yuv = pixel.store(rgb);
    const Triple back = pixel.store(pixel.load(yuv));
    for (size_t c = 0; c < 3; ++c) ASSERT_LE(std::abs(back[c] - yuv[c]), 2);
  }
}

std::vector<FormatCase> yuvFormats() {
  std::vector<FormatCase> result;
  for (const FormatCase& format : testing::formatCases()) {
    if ((format.group & kTakesYuv) != 0) result.push_back(format);
  }
  result.push_back({0x50000833, "I833", QPX_TAKES_PLANAR});
  result.push_back({0x50000822, "I822", QPX_TAKES_PLANAR});
  result.push_back({0x500008FF, "I8FF", QPX_TAKES_PLANAR});
  return result;
}

class YuvLayouts : public ::testing::TestWithParam<FormatCase> {
 protected:
  int32_t across() const {
    return (GetParam().group & kTakesSemiPlanar) != 0 ? 2 : (GetParam().format >> 4 & 15) + 1;
  }
  int32_t down() const {
    return (GetParam().group & kTakesSemiPlanar) != 0 ? 2 : (GetParam().format & 15) + 1;
  }

  bool holds(const MRect& rect, int32_t x, int32_t y) const {
    return x >= rect.left && x < rect.right && y >= rect.top && y < rect.bottom;
  }

  // Every sample of `out` after rotateChannels over `rect`: luma of the rectangle's pixels and the
  // chroma of the blocks whose top-left pixel it holds are new, all else is as before.
  void expectRotated(const Picture& in, const Picture& before, const Picture& out,
                     const MRect& rect) const {
    for (int32_t y = 0; y < in.height(); ++y) {
      for (int32_t x = 0; x < in.width(); ++x) {
        const Triple rgb = toRgb(samplesOf(in, x, y));
        const Triple converted = toYuv({rgb[1], rgb[2], rgb[0]});
        ASSERT_EQ(out.yuv(0, x, y), holds(rect, x, y) ? converted[0] : before.yuv(0, x, y))
            << "luma at " << x << ", " << y;
        if (x % across() != 0 || y % down() != 0) continue;
        for (int c = 1; c < 3; ++c) {
          ASSERT_EQ(out.yuv(c, x, y),
                    holds(rect, x, y) ? converted[static_cast<size_t>(c)] : before.yuv(c, x, y))
              << "component " << c << " at " << x << ", " << y;
        }
      }
    }
  }
};

TEST_P(YuvLayouts, RandomRectanglesConvertByTheTopLeftPixel) {
  Random random(GetParam().format);
  for (int round = 0; round < 25; ++round) {
    const int32_t width = random.between(1, round % 6 == 0 ? 560 : 37);
    Picture in(GetParam().format, width, random.between(1, 23), Placement::exact);
    in.paint(static_cast<uint64_t>(round));
    Picture out(GetParam().format, in.width(), in.height(), Placement::guarded);
    const Picture before(out);
    MRect rect;
    rect.left = random.between(0, in.width() - 1);
    rect.right = random.between(rect.left + 1, in.width());
    rect.top = random.between(0, in.height() - 1);
    rect.bottom = random.between(rect.top + 1, in.height());
    KernelFrame frame(GetParam().format);
    ASSERT_EQ(frame.run(overRuns<rotateChannels>, in, out, rect), QPX_OK);
    expectRotated(in, before, out, rect);
    const auto stray = out.firstWriteOutside(before, rect);
    ASSERT_FALSE(stray) << describe(*stray);
  }
}

TEST_P(YuvLayouts, OutputMayBeTheInput) {
  KernelFrame frame(GetParam().format);
  Picture in(GetParam().format, 300, 21, Placement::exact);
  in.paint(4);
  Picture same(in);
  ASSERT_EQ(frame.run(overRuns<rotateChannels>, same, same, wholeOf(in)), QPX_OK);
  expectRotated(in, in, same, wholeOf(in));
}

TEST_P(YuvLayouts, UntouchedComponentsKeepEveryByte) {
  KernelFrame frame(GetParam().format);
  Picture in(GetParam().format, 277, 19, Placement::exact);
  in.paint(4);
  Picture out(GetParam().format, 277, 19, Placement::guarded);
  ASSERT_EQ(frame.run(overComponents<keep>, in, out, wholeOf(in)), QPX_OK);
  const auto difference = in.firstDifference(out);
  EXPECT_FALSE(difference) << describe(*difference);
}

TEST_P(YuvLayouts, CoveredLoadReadsOwnBlocksOnly) {
  KernelFrame frame(GetParam().format);
  Picture in(GetParam().format, 40, 20, Placement::exact);
  in.paint(2);
  const Stage& stage = frame.stage();
  const RunFormat format(stage);
  Random random(3);
  for (int round = 0; round < 200; ++round) {
    PixelRun run;
    run.x = random.between(0, 39);
    run.y = random.between(0, 19);
    run.count = random.between(1, 40 - run.x);
    // Rows as of a picture that begins at the run: what lies before is not to be followed.
    std::vector<uint8_t*> tables[3];
    QPXRowTable rows[3];
    const MBitmap bitmap = in.bitmap();
    for (int p = 0; p < 3; ++p) {
      tables[p].assign(20, nullptr);
      const int32_t step = p == 0 ? 1 : down();
      for (int32_t y = 0; y < 20; ++y) {
        if (y != run.y || y % step != 0) continue;
        tables[p][static_cast<size_t>(step == 2 ? y : y / step)] =
            bitmap.plane[p] + ptrdiff_t{bitmap.pitch[p]} * (y / step);
      }
      rows[p] = tables[p].data();
    }
    format.loadCovered(rows, run);
    for (int32_t i = 0; i < run.count; ++i) {
      const int32_t x = run.x + i;
      ASSERT_EQ(run.r[i], in.yuv(0, x, run.y));
      const bool own = run.y % down() == 0 && x / across() * across() >= run.x;
      ASSERT_EQ(run.g[i], own ? in.yuv(1, x, run.y) : 128);
      ASSERT_EQ(run.b[i], own ? in.yuv(2, x, run.y) : 128);
    }
  }
}

std::string formatName(const ::testing::TestParamInfo<FormatCase>& tested) {
  return tested.param.name;
}

INSTANTIATE_TEST_SUITE_P(Formats, YuvLayouts, ::testing::ValuesIn(yuvFormats()), formatName);

}  // namespace
}  // namespace qpx
