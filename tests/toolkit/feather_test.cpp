// Feathering of masks against a literal, sample by sample form of its recursion.
#include <gtest/gtest.h>
#include <qpx/kernels.h>

#include <cmath>
#include <vector>

#include "support/failing_memory.h"
#include "support/kernel_frame.h"
#include "toolkit/feather.h"

namespace qpx::testing {
namespace {

struct Coefficients {
  float b0, b1, b2, b3, gain;
};

Coefficients coefficients(int32_t radius) {
  const float sigma = static_cast<float>(radius) * 50.0f / 100.0f + 1.5f;
  float q = 0;
  if (sigma >= 2.5f) {
    q = 0.98711f * sigma - 0.9633f;
  } else if (sigma >= 0.5f) {
    q = 3.97156f - 4.14554f * std::sqrt(1.0f - 0.26891f * sigma);
  } else {
    return {1.8782136f, 0.32005137f, -0.020726161f, 0.0006382844f, 0.8402932f};
  }
  const float qq = q * q, qqq = qq * q;
  Coefficients c;
  c.b0 = 1.57825f + 2.44413f * q + 1.4281f * qq + 0.422205f * qqq;
  c.b1 = 2.44413f * q + 2.85619f * qq + 1.26661f * qqq;
  c.b2 = -(1.4281f * qq + 1.26661f * qqq);
  c.b3 = 0.422205f * qqq;
  c.gain = 1.0f - (c.b1 + c.b2 + c.b3) / c.b0;
  return c;
}

std::vector<float> chain(const Coefficients& c, const std::vector<float>& x) {
  const size_t n = x.size();
  std::vector<float> there(n + 3, x[0]);
  for (size_t i = 0; i < n; ++i) {
    there[i + 3] =
        c.gain * x[i] + (c.b1 * there[i + 2] + c.b2 * there[i + 1] + c.b3 * there[i]) / c.b0;
  }
  std::vector<float> back(n + 3, there[n + 2]);
  for (size_t i = n; i-- > 0;) {
    back[i] =
        c.gain * there[i] + (c.b1 * back[i + 1] + c.b2 * back[i + 2] + c.b3 * back[i + 3]) / c.b0;
  }
  back.resize(n);
  return back;
}

std::vector<float> smooth(const Coefficients& c, const std::vector<float>& line) {
  std::vector<float> one = chain(c, line);
  const std::vector<float> two = chain(c, {line.rbegin(), line.rend()});
  for (size_t i = 0; i < one.size(); ++i) one[i] = 0.5f * (one[i] + two[one.size() - 1 - i]);
  return one;
}

// Feathers `rect` of a picture given as rows of bytes.
std::vector<std::vector<int>> feathered(const Picture& in, const MRect& rect, int32_t radius) {
  const Coefficients c = coefficients(radius);
  const size_t width = static_cast<size_t>(rect.right - rect.left);
  const size_t height = static_cast<size_t>(rect.bottom - rect.top);
  std::vector<std::vector<float>> plane;
  for (int32_t y = rect.top; y < rect.bottom; ++y) {
    std::vector<float> line;
    for (int32_t x = rect.left; x < rect.right; ++x) {
      line.push_back(static_cast<float>(in.yuv(0, x, y)));
    }
    plane.push_back(smooth(c, line));
  }
  std::vector<std::vector<int>> out(height, std::vector<int>(width));
  for (size_t x = 0; x < width; ++x) {
    std::vector<float> column;
    for (size_t y = 0; y < height; ++y) column.push_back(plane[y][x]);
    column = smooth(c, column);
    for (size_t y = 0; y < height; ++y) {
      const float v = column[y];
      out[y][x] = !(v > 0.0f) ? 0 : v > 255.0f ? 255 : static_cast<int>(v);
    }
  }
  return out;
}

Picture blank(int32_t width, int32_t height) {
  Picture picture(QPX_FORMAT_GREY8, width, height, Placement::guarded);
  picture.fill(0xB7);
  return picture;
}

Picture painted(int32_t width, int32_t height, uint64_t seed) {
  Picture picture(QPX_FORMAT_GREY8, width, height, Placement::exact);
  picture.paint(seed);
  return picture;
}

int32_t featherRect(KernelFrame& frame, const Picture& in, Picture& out, const MRect& rect,
                    int32_t radius) {
  frame.stage().pix.format = QPX_FORMAT_GREY8;
  static int32_t usedRadius;
  usedRadius = radius;
  return frame.run([](const Frame& f) { return featherMask(f, usedRadius); }, in, out, rect);
}

void expectFeathered(const Picture& in, const Picture& out, const MRect& rect, int32_t radius) {
  const auto expected = feathered(in, rect, radius);
  for (int32_t y = rect.top; y < rect.bottom; ++y) {
    for (int32_t x = rect.left; x < rect.right; ++x) {
      ASSERT_EQ(out.yuv(0, x, y),
                expected[static_cast<size_t>(y - rect.top)][static_cast<size_t>(x - rect.left)])
          << "at " << x << ", " << y << ", radius " << radius;
    }
  }
}

constexpr struct {
  int32_t width, height;
} kSizes[] = {{1, 1}, {2, 1}, {1, 2}, {3, 2}, {16, 16}, {17, 5}, {5, 33}, {40, 31}};

TEST(Feather, IsTheRecursionSampleBySample) {
  for (const auto& size : kSizes) {
    const Picture in = painted(size.width, size.height, 3);
    KernelFrame frame(QPX_FORMAT_GREY8);
    for (const int32_t radius : {1, 2, 3, 8, 40, 100, 5000, -1, -2, -3, -100}) {
      const Picture before = blank(size.width, size.height);
      Picture out = before;
      ASSERT_EQ(featherRect(frame, in, out, wholeOf(in), radius), QPX_OK);
      expectFeathered(in, out, wholeOf(in), radius);
      ASSERT_FALSE(out.firstWriteOutside(before, wholeOf(in)));
      if (HasFatalFailure()) return;
    }
    MMemFree(nullptr, frame.stage().scratch2);
    frame.stage().scratch2 = nullptr;
  }
}

TEST(Feather, OfARectangleKnowsNothingOutsideIt) {
  const Picture in = painted(37, 29, 4);
  KernelFrame frame(QPX_FORMAT_GREY8);
  Random random(9);
  for (int i = 0; i < 60; ++i) {
    MRect rect;
    rect.left = random.between(0, 36);
    rect.top = random.between(0, 28);
    rect.right = random.between(rect.left + 1, 37);
    rect.bottom = random.between(rect.top + 1, 29);
    const Picture before = blank(37, 29);
    Picture out = before;
    ASSERT_EQ(featherRect(frame, in, out, rect, 4), QPX_OK);
    expectFeathered(in, out, rect, 4);
    ASSERT_FALSE(out.firstWriteOutside(before, rect));
    if (HasFatalFailure()) return;
  }
  MMemFree(nullptr, frame.stage().scratch2);
}

TEST(Feather, OfRadiusZeroIsACopy) {
  const Picture in = painted(21, 7, 5);
  KernelFrame frame(QPX_FORMAT_GREY8);
  Picture out = blank(21, 7);
  ASSERT_EQ(featherRect(frame, in, out, wholeOf(in), 0), QPX_OK);
  EXPECT_FALSE(in.firstDifference(out));
  EXPECT_EQ(frame.stage().scratch2, nullptr);
}

TEST(Feather, OfAnyRadiusStaysWhereItIs) {
  const Picture in = painted(9, 6, 6);
  KernelFrame frame(QPX_FORMAT_GREY8);
  for (const int32_t radius : {INT32_MIN, INT32_MAX, -4, 1 << 20}) {
    const Picture before = blank(9, 6);
    Picture out = before;
    EXPECT_EQ(featherRect(frame, in, out, wholeOf(in), radius), QPX_OK);
    EXPECT_FALSE(out.firstWriteOutside(before, wholeOf(in)));
  }
  MMemFree(nullptr, frame.stage().scratch2);
}

TEST(Feather, SpreadsABorderSymmetrically) {
  Picture in(QPX_FORMAT_GREY8, 40, 3, Placement::exact);
  in.fill(0);
  const MBitmap bits = in.bitmap();
  for (int32_t y = 0; y < 3; ++y) {
    for (int32_t x = 20; x < 40; ++x) bits.plane[0][y * bits.pitch[0] + x] = 255;
  }
  KernelFrame frame(QPX_FORMAT_GREY8);
  Picture out = blank(40, 3);
  ASSERT_EQ(featherRect(frame, in, out, wholeOf(in), 5), QPX_OK);
  for (int32_t x = 1; x < 40; ++x) EXPECT_GE(out.yuv(0, x, 1) + 1, out.yuv(0, x - 1, 1));
  for (int32_t x = 5; x < 20; ++x) {
    EXPECT_NEAR(out.yuv(0, x, 1), 255 - out.yuv(0, 39 - x, 1), 2) << x;
  }
  MMemFree(nullptr, frame.stage().scratch2);
}

TEST(Feather, ReportsAnEmptyMaskAsNoChange) {
  Picture in(QPX_FORMAT_GREY8, 8, 8, Placement::exact);
  KernelFrame frame(QPX_FORMAT_GREY8);
  Stage& stage = frame.stage();
  const auto report = [&](uint8_t value, const MRect& rect) {
    in.fill(value);
    stage.lastOutLeft = stage.lastOutTop = 1;
    stage.lastOutRight = stage.lastOutBottom = 8;
    Picture out = blank(8, 8);
    EXPECT_EQ(featherRect(frame, in, out, rect, 3), QPX_OK);
    return stage.lastOutLeft + stage.lastOutTop + stage.lastOutRight + stage.lastOutBottom;
  };
  EXPECT_EQ(report(0, {0, 0, 8, 8}), 0);
  EXPECT_EQ(report(200, {0, 0, 8, 8}), 18);
  EXPECT_EQ(report(0, {0, 1, 8, 8}), 18);
  EXPECT_EQ(report(0, {0, 0, 1, 1}), 18);
  MMemFree(nullptr, stage.scratch2);
}

TEST(Feather, TakesMasksOnly) {
  const Picture in(QPX_FORMAT_BGR24, 4, 4, Placement::exact);
  Picture out(QPX_FORMAT_BGR24, 4, 4, Placement::guarded);
  out.fill(1);
  const Picture before = out;
  KernelFrame frame(QPX_FORMAT_BGR24);
  EXPECT_EQ(frame.run([](const Frame& f) { return featherMask(f, 3); }, in, out, wholeOf(in)),
            QPX_BAD_PARAM);
  EXPECT_FALSE(before.firstDifference(out));
}

TEST(Feather, WithoutMemoryWritesNothing) {
  const Picture in = painted(12, 9, 7);
  const Picture before = blank(12, 9);
  const int64_t live = FailingMemory::liveBlocks();
  const int64_t failures = FailingMemory::forEachFailure(false, [&] {
    KernelFrame frame(QPX_FORMAT_GREY8);
    Picture out = before;
    const int32_t result = featherRect(frame, in, out, wholeOf(in), 3);
    if (result != QPX_OK) {
      EXPECT_EQ(result, QPX_NO_MEMORY);
      EXPECT_FALSE(before.firstDifference(out));
    }
    MMemFree(nullptr, frame.stage().scratch2);
  });
  EXPECT_EQ(failures, 2);
  EXPECT_EQ(FailingMemory::liveBlocks(), live);
}

TEST(Feather, ExportedKernelCutsTheRectangleToThePicture) {
  const Picture in = painted(10, 8, 8);
  const Picture before = blank(10, 8);
  Picture out = before;
  KernelFrame frame(QPX_FORMAT_GREY8);
  Stage& stage = frame.stage();
  stage.inWidth = stage.outWidth = 10;
  stage.inHeight = stage.outHeight = 8;
  const QPXFeatherParam param = {2, 0};
  std::memcpy(stage.record, &param, sizeof param);
  ASSERT_EQ(frame.run(
                [](const Frame& f) {
                  const MRect wide = {-5, -2000000000, 2000000000, 9};
                  return Feather(&f.stage, &wide, f.out, f.in);
                },
                in, out, wholeOf(in)),
            QPX_OK);
  expectFeathered(in, out, wholeOf(in), 2);
  ASSERT_EQ(frame.run(
                [](const Frame& f) {
                  const MRect nothing = {10, 0, 20, 8};
                  const MRect inverted = {5, 5, 2, 7};
                  return Feather(&f.stage, &nothing, f.out, f.in) +
                         Feather(&f.stage, &inverted, f.out, f.in);
                },
                in, out, wholeOf(in)),
            QPX_OK);
  EXPECT_EQ(Feather(&stage, nullptr, nullptr, nullptr), QPX_BAD_PARAM);
  EXPECT_EQ(Feather(nullptr, nullptr, nullptr, nullptr), QPX_BAD_PARAM);
  MMemFree(nullptr, stage.scratch2);
}

}  // namespace
}  // namespace qpx::testing
