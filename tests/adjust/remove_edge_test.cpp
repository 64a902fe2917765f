// Fringes that fade along edges: the windows of hues, what counts as an edge, and masks.
#include "adjust/remove_edge.h"

#include <gtest/gtest.h>
#include <qpx/kernels_adjust.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <vector>

#include "adjust/packed_pictures.h"
#include "support/failing_memory.h"

namespace qpx::testing {
namespace {

constexpr int32_t kReach = 4;

QPXRemoveEdgeParam edges(int32_t left, int32_t right, int32_t top, int32_t bottom) {
  QPXRemoveEdgeParam param = {};
  param.left = left;
  param.right = right;
  param.top = top;
  param.bottom = bottom;
  param.strength = param.secondStrength = 100;
  return param;
}

Picture faded(const Picture& source, const QPXRemoveEdgeParam& param) {
  Picture result = source;
  result.fill(3);
  EXPECT_EQ(frameOf(source, kRemoveEdge, param)->run(source, result, wholeOf(source)), QPX_OK);
  return result;
}

// A colour of full saturation at a hue.
Color ofHue(int32_t degrees) {
  int32_t c[3];
  for (int i = 0; i < 3; ++i) {
    const double turn = std::fmod(degrees - 120.0 * i + 540.0, 360.0) - 180.0;
    c[i] = static_cast<int32_t>(std::clamp(2.0 - std::abs(turn) / 60.0, 0.0, 1.0) * 240 + 0.5);
  }
  return {c[0], c[1], c[2]};
}

// How much of a colour is left between black and white.
double leftOf(const QPXRemoveEdgeParam& param, int32_t degrees) {
  Picture source(QPX_FORMAT_RGB24, 3, 1, Placement::exact);
  setColor(source, 0, 0, {0, 0, 0});
  setColor(source, 1, 0, ofHue(degrees));
  setColor(source, 2, 0, {255, 255, 255});
  const Color to = colorAt(faded(source, param), 1, 0);
  return (std::max({to.r, to.g, to.b}) - std::min({to.r, to.g, to.b})) / 240.0;
}

TEST(RemoveEdge, FadesHuesOfItsWindows) {
  // 254 ... 308 and 92 ... 146 degrees.
  const QPXRemoveEdgeParam param = edges(30, 60, 40, 70);
  for (const int32_t hue : {255, 280, 307, 94, 120, 145}) EXPECT_NEAR(leftOf(param, hue), 0, 0.02);
  for (const int32_t hue : {0, 30, 60, 170, 200, 230, 330}) EXPECT_EQ(leftOf(param, hue), 1) << hue;
  EXPECT_NEAR(leftOf(param, 318), 0.5, 0.06);
  EXPECT_NEAR(leftOf(param, 244), 0.5, 0.06);
  EXPECT_NEAR(leftOf(param, 82), 0.5, 0.06);
}

TEST(RemoveEdge, WindowsAreTenPercentAtLeast) {
  // 200 ... 218 degrees, and 182 ... 200 of the other.
  const QPXRemoveEdgeParam param = edges(-5, -50, 95, 0);
  for (const int32_t hue : {201, 217, 183, 199}) EXPECT_NEAR(leftOf(param, hue), 0, 0.02) << hue;
  EXPECT_EQ(leftOf(param, 240), 1);
  EXPECT_EQ(leftOf(param, 160), 1);
}

// 380, which is 20 again, and 200, with their ramps.
TEST(RemoveEdge, WindowsEndAtTheirScales) {
  for (const int32_t most : {100, 101, 500, INT32_MAX}) {
    QPXRemoveEdgeParam first = edges(0, most, 0, 10), second = edges(0, 10, 0, most);
    first.secondStrength = 0;
    second.strength = 0;
    for (const int32_t hue : {201, 300, 0, 19}) {
      EXPECT_NEAR(leftOf(first, hue), 0, 0.02) << hue << ", " << most;
    }
    EXPECT_NEAR(leftOf(first, 30), 0.5, 0.06) << most;
    EXPECT_EQ(leftOf(first, 41), 1) << most;
    for (const int32_t hue : {21, 100, 199}) {
      EXPECT_NEAR(leftOf(second, hue), 0, 0.02) << hue << ", " << most;
    }
    EXPECT_NEAR(leftOf(second, 210), 0.5, 0.06) << most;
    EXPECT_EQ(leftOf(second, 221), 1) << most;
  }
}

TEST(RemoveEdge, OfNoStrengthIsACopy) {
  const Picture source = packedColors(QPX_FORMAT_BGR24);
  EXPECT_FALSE(source.firstDifference(faded(source, QPXRemoveEdgeParam{})));
}

TEST(RemoveEdge, OfAFlatPictureIsACopy) {
  Picture source(QPX_FORMAT_BGRA32, 13, 12, Placement::exact);
  scramble(source, 2);
  for (int32_t hue = 0; hue < 360; hue += 15) {
    for (int32_t y = 0; y < 12; ++y) {
      for (int32_t x = 0; x < 13; ++x) setColor(source, x, y, ofHue(hue));
    }
    EXPECT_FALSE(source.firstDifference(faded(source, edges(0, 100, 0, 100)))) << hue;
  }
}

// A purple fringe between a tree and the sky goes, purple surfaces stay, and grain is no edge.
TEST(RemoveEdge, FadesFringesAndLeavesSurfaces) {
  constexpr Color kSky = {235, 240, 245}, kFringe = {140, 70, 190}, kBranch = {30, 28, 25},
                  kFlower = {150, 60, 170};
  Picture source(QPX_FORMAT_RGB24, 64, 16, Placement::exact);
  Random random(1);
  for (int32_t y = 0; y < 16; ++y) {
    for (int32_t x = 0; x < 64; ++x) {
      const int32_t grain = random.between(-3, 3);
      Color c = x < 14 ? kSky : x < 17 ? kFringe : x < 30 ? kBranch : kFlower;
      c = {c.r + grain, c.g + grain, c.b + grain};
      setColor(source, x, y, c);
    }
  }
  const Picture result = faded(source, edges(30, 75, 40, 75));
  for (int32_t y = 0; y < 16; ++y) {
    for (int32_t x = 14; x < 17; ++x) {
      const Color c = colorAt(result, x, y);
      EXPECT_LE(std::max({c.r, c.g, c.b}) - std::min({c.r, c.g, c.b}), 10) << x;
    }
    for (int32_t x = 36; x < 64; ++x) ASSERT_EQ(colorAt(result, x, y), colorAt(source, x, y)) << x;
  }
  // What an edge does to the surface beside it ends within its reach, and evenly.
  int32_t before = 0;
  for (int32_t x = 30; x < 36; ++x) {
    const Color c = colorAt(result, x, 8);
    const int32_t chroma = c.b - c.g;
    EXPECT_GE(chroma, before - 8) << x;
    before = chroma;
  }
}

// The definition, pixel by pixel.
class Literal {
 public:
  Literal(const Picture& source, const QPXRemoveEdgeParam& param)
      : source_(source), param_(param) {}

  // `shown` is what the mask says.
  Color at(int32_t x, int32_t y, int32_t shown) const {
    const Color c = colorAt(source_, x, y);
    int32_t sum = 0;
    for (int32_t reach = 2; reach <= kReach; ++reach) sum += edgeAt(x, y, reach);
    const int32_t edge = ((sum + 1) / 3 * shown + 127) / 255;
    const int32_t share = shareOf(hueOf(c)) * edge / 255, grey = lumaOf(c);
    const auto moved = [&](int32_t v) {
      return v + static_cast<int32_t>(std::floor(((grey - v) * share + 128) / 256.0));
    };
    return {moved(c.r), moved(c.g), moved(c.b)};
  }

 private:
  static int32_t lumaOf(const Color& c) { return (306 * c.r + 601 * c.g + 117 * c.b) >> 10; }

  int32_t edgeAt(int32_t x, int32_t y, int32_t reach) const {
    int32_t least = 255, most = 0;
    for (int32_t v = -reach; v <= reach; ++v) {
      for (int32_t u = -reach; u <= reach; ++u) {
        const int32_t luma = lumaOf(colorAt(source_, x + u, y + v));
        least = std::min(least, luma);
        most = std::max(most, luma);
      }
    }
    const double t = std::clamp((most - least - 16) / 80.0, 0.0, 1.0);
    return static_cast<int32_t>(255 * t * t * (3 - 2 * t) + 0.5);
  }

  static int32_t hueOf(const Color& c) {
    const int32_t most = std::max({c.r, c.g, c.b}), d = most - std::min({c.r, c.g, c.b});
    if (d == 0) return 0;
    if (most == c.r) return (60 * (c.g - c.b) / d + 360) % 360;
    return most == c.g ? 120 + 60 * (c.b - c.r) / d : 240 + 60 * (c.r - c.g) / d;
  }

  int32_t shareOf(int32_t hue) const {
    const auto weight = [](int32_t h, int32_t low, int32_t high) {
      if (h >= low && h <= high) return 256;
      int32_t nearest = 360;
      for (const int32_t end : {low, high}) {
        for (const int32_t turn : {-720, -360, 0, 360, 720}) {
          nearest = std::min(nearest, std::abs(h + turn - end));
        }
      }
      return std::max(256 - nearest * 256 / 20, 0);
    };
    const int32_t h = hue < 20 ? hue + 360 : hue;
    const int32_t first =
        weight(h, 200 + param_.left * 3 * 60 / 100, 200 + param_.right * 180 / 100);
    const int32_t second =
        weight(h, 20 + param_.top * 3 * 60 / 100, 20 + param_.bottom * 180 / 100);
    return std::max(first * param_.strength / 100, second * param_.secondStrength / 100);
  }

  const Picture& source_;
  QPXRemoveEdgeParam param_;
};

// Surfaces with edges and noise of many contrasts.
Picture scene(uint32_t format, int32_t width, int32_t height) {
  Picture picture(format, width, height, Placement::exact);
  scramble(picture, 4);
  Random random(6);
  for (int32_t y = 0; y < height; ++y) {
    for (int32_t x = 0; x < width; ++x) {
      const int32_t part = x / 9 + 3 * (y / 7), noise = random.between(0, 2 + x / 4);
      const Color c = ofHue((part * 67 + x * 3) % 360);
      const auto sample = [&](int32_t v) {
        return std::clamp(v * (part % 4 + 1) / 4 + noise, 0, 255);
      };
      setColor(picture, x, y, {sample(c.r), sample(c.g), sample(c.b)});
    }
  }
  return picture;
}

QPXRemoveEdgeParam someWindows() {
  QPXRemoveEdgeParam param = edges(20, 80, 30, 60);
  param.strength = 90;
  param.secondStrength = 45;
  return param;
}

TEST(RemoveEdge, IsItsDefinitionUnderAMask) {
  for (const uint32_t format : kPackedFormats) {
    const Picture source = scene(format, 61, 27);
    const MRect rect = {7, 5, 52, 25};
    Picture mask(QPX_FORMAT_GREY8, 45, 20, Placement::guarded);
    mask.paint(7);
    MBitmap record = mask.bitmap();
    QPXRemoveEdgeParam param = someWindows();
    param.selection.mask = &record;
    Picture result = source;
    result.fill(9);
    const Picture before = result;
    ASSERT_EQ(frameOf(source, kRemoveEdge, param)->run(source, result, rect), QPX_OK);
    EXPECT_FALSE(result.firstWriteOutside(before, rect));
    const Literal literal(source, param);
    int32_t changed = 0;
    for (int32_t y = rect.top; y < rect.bottom; ++y) {
      for (int32_t x = rect.left; x < rect.right; ++x) {
        const int32_t shown = mask.yuv(0, x - rect.left, y - rect.top);
        ASSERT_EQ(colorAt(result, x, y), literal.at(x, y, shown)) << x << ", " << y;
        if (!(colorAt(result, x, y) == colorAt(source, x, y))) ++changed;
        if (pixelBytes(source) == 4) {
          ASSERT_EQ(*sampleAt(result, x, y, 3), *sampleAt(source, x, y, 3));
        }
      }
    }
    EXPECT_GT(changed, 200);
  }
}

TEST(RemoveEdge, OfSmallPicturesRepeatsTheirEdges) {
  for (const auto& [width, height] : {std::pair{1, 1}, {2, 3}, {5, 1}, {1, 9}, {20, 14}}) {
    const Picture source = scene(QPX_FORMAT_BGR24, width, height);
    const Picture result = faded(source, someWindows());
    const Literal literal(source, someWindows());
    for (int32_t y = 0; y < height; ++y) {
      for (int32_t x = 0; x < width; ++x) {
        ASSERT_EQ(colorAt(result, x, y), literal.at(x, y, 255)) << x << ", " << y;
      }
    }
  }
}

TEST(RemoveEdge, InBandsAndInPlaceGivesTheSameBytes) {
  const Picture source = scene(QPX_FORMAT_RGBA32, 47, 53);
  const Picture expected = faded(source, someWindows());
  Picture inPlace = source, banded = source;
  ASSERT_EQ(frameOf(source, kRemoveEdge, someWindows())->run(inPlace, inPlace, wholeOf(source)),
            QPX_OK);
  EXPECT_FALSE(expected.firstDifference(inPlace));
  const auto frame = frameOf(source, kRemoveEdge, someWindows());
  for (int32_t top = 0, rows = 1; top < 53; top += rows, rows = rows % 5 + 3) {
    ASSERT_EQ(frame->run(source, banded, {0, top, 47, std::min(top + rows, 53)}), QPX_OK);
  }
  EXPECT_FALSE(expected.firstDifference(banded));
  Picture named = source;
  ASSERT_EQ(frame->run(byName<RemoveEdge_RGB>, source, named, wholeOf(source)), QPX_OK);
  EXPECT_FALSE(expected.firstDifference(named));
}

TEST(RemoveEdge, TakesAMaskOfTheRectanglesSizeAlone) {
  const Picture source = packedColors(QPX_FORMAT_RGBA32);
  Picture mask(QPX_FORMAT_GREY8, 20, 10, Placement::exact);
  mask.fill(0);
  MBitmap record = mask.bitmap();
  QPXRemoveEdgeParam param = edges(0, 100, 0, 100);
  param.selection.mask = &record;
  const auto frame = frameOf(source, kRemoveEdge, param);
  const MRect rect = {100, 5, 120, 15};
  Picture result = source;
  EXPECT_EQ(frame->run(source, result, rect), QPX_OK);
  EXPECT_FALSE(source.firstDifference(result)) << "a black mask";

  mask.fill(255);
  EXPECT_EQ(frame->run(byName<RemoveEdge_RGB>, source, result, rect), QPX_OK);
  Picture unmasked = source;
  ASSERT_EQ(frameOf(source, kRemoveEdge, edges(0, 100, 0, 100))->run(source, unmasked, rect),
            QPX_OK);
  EXPECT_FALSE(unmasked.firstDifference(result)) << "a white mask";
  EXPECT_TRUE(unmasked.firstDifference(source));

  const Picture before = result;
  EXPECT_EQ(frame->run(source, result, {100, 5, 121, 15}), QPX_BAD_PARAM);
  EXPECT_EQ(frame->run(source, result, {100, 5, 120, 14}), QPX_BAD_PARAM);
  record.format = QPX_FORMAT_BGR24;
  EXPECT_EQ(frame->run(source, result, rect), QPX_BAD_PARAM);
  record = mask.bitmap();
  record.plane[0] = nullptr;
  EXPECT_EQ(frame->run(byName<RemoveEdge_RGB>, source, result, rect), QPX_BAD_PARAM);
  EXPECT_FALSE(before.firstDifference(result));
}

TEST(RemoveEdge, ByNameTakesItsStagesAndFormatsAlone) {
  const Picture source = scene(QPX_FORMAT_BGR24, 20, 10);
  const auto frame = frameOf(source, kRemoveEdge, someWindows());
  Picture result = source;
  frame->stage().effectId = kRemoveEdge + 0x100;
  EXPECT_EQ(frame->run(byName<RemoveEdge_RGB>, source, result, wholeOf(source)), QPX_BAD_PARAM);
  frame->stage().effectId = kRemoveEdge;
  FailingMemory::failFrom(1);
  EXPECT_EQ(frame->run(byName<RemoveEdge_RGB>, source, result, wholeOf(source)), QPX_NO_MEMORY);
  EXPECT_FALSE(source.firstDifference(result));
  // What the engine calls has its memory from setup.
  EXPECT_EQ(frame->run(source, result, wholeOf(source)), QPX_OK);
  FailingMemory::reset();
  expectOtherFormatsLeft(byName<RemoveEdge_RGB>, kRemoveEdge, someWindows());
}

TEST(RemoveEdge, WithoutMemoryIsRefusedAtSetup) {
  const int64_t before = FailingMemory::liveBlocks();
  for (int64_t n = 1; n <= 2; ++n) {
    FailingMemory::failOnly(n);
    {
      KernelFrame frame(QPX_FORMAT_BGR24);
      frame.stage().inWidth = frame.stage().inHeight = 16;
      EXPECT_EQ(frame.setUp(kRemoveEdge), QPX_NO_MEMORY) << n;
    }
    FailingMemory::reset();
    EXPECT_EQ(FailingMemory::liveBlocks(), before) << n;
  }
}

}  // namespace
}  // namespace qpx::testing
