// The kernels that undo looks: against their rules, and behind the looks themselves.
#include <gtest/gtest.h>
#include <qpx/assets.h>
#include <qpx/kernels_inverse.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

#include "filters/curves/inverse_lomo.h"
#include "filters/look_rules.h"
#include "support/failing_memory.h"
#include "support/kernel_frame.h"
#include "toolkit/textures.h"

namespace qpx {
namespace {

using testing::describe;
using testing::FailingMemory;
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

constexpr LomoTables kOwnTables = {reversal_data, fleet_data3, lomo_mask2};

// What rules of the search read.
LomoTables lomoTables = kOwnTables;

// The texel of a channel at a pixel, as the looks lay their textures.
int texelAt(const Stage& stage, size_t layer, int channel, int32_t x, int32_t y) {
  const auto place = [](int32_t at, int32_t pixels) {
    return pixels == 1 ? 0 : (at * (0xFF00000 / (pixels - 1))) >> 20;
  };
  const int32_t column = place(x, stage.inWidth), row = place(y, stage.inHeight);
  return texture(stage, layer).plane[0][row * 768 + column * 3 + channel];
}

Rgb undoFilmRule(const Stage&, int32_t, int32_t, Rgb c) {
  const int red = (59 * c.r * c.r + 5266 * c.r + 1974940) >> 15;
  const int green = (102 * c.g * c.g + 6947 * c.g + 814583) >> 15;
  const int blue = c.b <= 53 ? 0 : (144 * c.b * c.b + 13235 * c.b - 1127059) >> 15;
  return {red, std::min(green, 255), std::min(blue, 255)};
}

Rgb undoRixiRule(const Stage&, int32_t, int32_t, Rgb c) {
  return {rixi_r[c.r], rixi_g[c.g], rixi_b[c.b]};
}

Rgb undoFleetingRule(const Stage& stage, int32_t x, int32_t y, Rgb c) {
  return {fleet_r[(c.r << 8) + texelAt(stage, 0, 0, x, y)],
          fleet_g[(c.g << 8) + texelAt(stage, 0, 1, x, y)],
          fleet_b[(c.b << 8) + texelAt(stage, 0, 2, x, y)]};
}

Rgb undoPinkRule(const Stage& stage, int32_t x, int32_t y, Rgb c) {
  return {softpink_r[(c.r << 8) + texelAt(stage, 0, 0, x, y)],
          softpink_g[(c.g << 8) + texelAt(stage, 0, 1, x, y)],
          softpink_b[(c.b << 8) + texelAt(stage, 0, 2, x, y)]};
}

int candidateLook(int curved, int first, int second) {
  const int m = lomoTables.softLight[(curved << 8) + first];
  const int c2 = (307 * m + 717 * curved) >> 10;
  const int n = lomoTables.softLight[(c2 << 8) + second];
  const int c3 = (614 * c2 + 410 * n) >> 10;
  return ((32 * curved + 68 * lomoTables.mask[4 * c3]) * 327) >> 15;
}

int searched(int channel, int first, int second, int observed) {
  int best = 1000, answer = 0;
  for (int i = 0; i < 256; ++i) {
    const int look = candidateLook(lomoTables.curves[3 * i + 2 - channel], first, second);
    const int distance = std::abs(look - observed);
    if (distance < best) {
      best = distance;
      answer = i;
    }
  }
  return answer;
}

Rgb undoLomoRule(const Stage& stage, int32_t x, int32_t y, Rgb c) {
  const auto channel = [&](int k, int observed) {
    return searched(k, texelAt(stage, 0, k, x, y), texelAt(stage, 1, k, x, y), observed);
  };
  return {channel(0, c.r), channel(1, c.g), channel(2, c.b)};
}

using NamedKernel = int32_t (*)(QPXStage*, const MRect*, QPXRowTable*, QPXRowTable*);

template <NamedKernel kernel>
int32_t byName(const Frame& frame) {
  return kernel(&frame.stage, &frame.rect, frame.out, frame.in);
}

struct KernelCase {
  const char* name;
  Kernel run;
  uint32_t formats;
  uint32_t id;
  Rule rule;
  size_t textures;
};

#define UNDO_KERNELS(effect, id, rule, textures)                                     \
  {#effect "_RGB24", byName<effect##_RGB24>, QPX_TAKES_RGB24, id, rule, textures}, { \
#effect "_NV21", byName < effect##_NV21>, QPX_TAKES_NV21, id, rule, textures     \
  }

const KernelCase kKernels[] = {
    UNDO_KERNELS(RE_NEWREVERSAL, 0xB900, undoFilmRule, 0),
    UNDO_KERNELS(RE_FleetingTime, 0xBA00, undoFleetingRule, 1),
    UNDO_KERNELS(RE_WarmLomo, 0xBC00, undoLomoRule, 2),
    UNDO_KERNELS(RE_SoftPink, 0xBD00, undoPinkRule, 1),
    UNDO_KERNELS(RE_RIXI, 0xBE00, undoRixiRule, 0),
};

void PrintTo(const KernelCase& kernel, std::ostream* stream) { *stream << kernel.name; }

std::string nameOf(const ::testing::TestParamInfo<KernelCase>& tested) { return tested.param.name; }

// A stage of a size with a kernel's effect on it.
class UndoFrame : public KernelFrame {
 public:
  UndoFrame(uint32_t format, int32_t width, int32_t height) : KernelFrame(format) {
    stage().inWidth = stage().outWidth = width;
    stage().inHeight = stage().outHeight = height;
  }

  UndoFrame(uint32_t id, uint32_t format, int32_t width, int32_t height)
      : UndoFrame(format, width, height) {
    result_ = setUp(id);
  }

  ~UndoFrame() {
    for (void** slot = stage().resources; slot != nullptr && *slot != nullptr; ++slot) {
      UTIL_MBitmapFree(static_cast<MBitmap*>(*slot));
    }
    MMemFree(nullptr, stage().resources);
    stage().resources = nullptr;
  }

  int32_t result() const { return result_; }

  // Any texels, of which few are equal.
  void scrambleTextures(size_t count, uint64_t seed) {
    Random random(seed);
    for (size_t i = 0; i < count; ++i) {
      const MBitmap& bitmap = texture(stage(), i);
      for (int32_t at = 0; at < 256 * 768; ++at) bitmap.plane[0][at] = random.byte();
    }
  }

 private:
  int32_t result_ = QPX_OK;
};

std::vector<uint8_t> anyBytes(Random& random, size_t count) {
  std::vector<uint8_t> bytes(count);
  for (uint8_t& byte : bytes) byte = random.byte();
  return bytes;
}

// Tables whose looks rise, fall and repeat.
class AnyLomoTables {
 public:
  explicit AnyLomoTables(uint64_t seed)
      : random_(seed),
        curves_(anyBytes(random_, 768)),
        softLight_(anyBytes(random_, 65536)),
        mask_(anyBytes(random_, 1024)) {
    lomoTables = {curves_.data(), softLight_.data(), mask_.data()};
  }
  ~AnyLomoTables() { lomoTables = kOwnTables; }
  AnyLomoTables(const AnyLomoTables&) = delete;
  AnyLomoTables& operator=(const AnyLomoTables&) = delete;

 private:
  Random random_;
  std::vector<uint8_t> curves_, softLight_, mask_;
};

bool holds(const MRect& rect, int32_t x, int32_t y) {
  return x >= rect.left && x < rect.right && y >= rect.top && y < rect.bottom;
}

void expectPacked(Rule rule, const Stage& stage, const MRect& rect, const Picture& in,
                  const Picture& before, const Picture& out) {
  for (int32_t y = 0; y < in.height(); ++y) {
    for (int32_t x = 0; x < in.width(); ++x) {
      const auto source = in.rgb(x, y), kept = before.rgb(x, y), made = out.rgb(x, y);
      const Rgb expected = holds(rect, x, y) ? rule(stage, x, y, {source.r, source.g, source.b})
                                             : Rgb{kept.r, kept.g, kept.b};
      ASSERT_TRUE(made.r == expected.r && made.g == expected.g && made.b == expected.b)
          << "at " << x << ", " << y << ": " << int{made.r} << ' ' << int{made.g} << ' '
          << int{made.b} << " for " << expected.r << ' ' << expected.g << ' ' << expected.b;
    }
  }
}

void expectYuv(Rule rule, const Stage& stage, const MRect& rect, const Picture& in,
               const Picture& before, const Picture& out) {
  for (int32_t y = 0; y < in.height(); ++y) {
    for (int32_t x = 0; x < in.width(); ++x) {
      const Yuv source = {in.yuv(0, x, y), in.yuv(1, x, y), in.yuv(2, x, y)};
      const bool inside = holds(rect, x, y);
      const Yuv made = inside ? testing::yuvFromRgb(rule(stage, x, y, testing::rgbFromYuv(source)))
                              : Yuv{before.yuv(0, x, y), before.yuv(1, x, y), before.yuv(2, x, y)};
      ASSERT_EQ(out.yuv(0, x, y), made.y) << "luma at " << x << ", " << y;
      if (x % 2 != 0 || y % 2 != 0) continue;
      ASSERT_EQ(out.yuv(1, x, y), made.u) << "U at " << x << ", " << y;
      ASSERT_EQ(out.yuv(2, x, y), made.v) << "V at " << x << ", " << y;
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

class UndoKernel : public ::testing::TestWithParam<KernelCase> {
 protected:
  static bool taken(const FormatCase& format) { return (format.group & GetParam().formats) != 0; }
  static bool packed() { return GetParam().formats == QPX_TAKES_RGB24; }
  static bool searches() { return GetParam().id == 0xBC00; }

  static void expectRule(UndoFrame& frame, const Picture& in, const MRect& rect) {
    Picture out(in.format(), in.width(), in.height(), Placement::guarded);
    const Picture before(out);
    ASSERT_EQ(frame.run(GetParam().run, in, out, rect), QPX_OK);
    const auto expect = packed() ? expectPacked : expectYuv;
    expect(GetParam().rule, frame.stage(), rect, in, before, out);
    const auto stray = out.firstWriteOutside(before, rect);
    ASSERT_FALSE(stray) << describe(*stray);
  }
};

TEST_P(UndoKernel, FollowsItsRuleInEveryRectangle) {
  constexpr struct {
    int32_t width, height;
  } kSizes[] = {{1, 1}, {2, 1}, {1, 5}, {7, 9}, {64, 2}, {33, 31}, {256, 3}, {611, 5}, {3, 300}};
  for (const FormatCase& format : testing::formatCases()) {
    if (!taken(format)) continue;
    uint64_t seed = format.format % 97;
    for (const auto& [width, height] : kSizes) {
      ++seed;
      SCOPED_TRACE(std::string(format.name) + " " + std::to_string(width) + "x" +
                   std::to_string(height) + ", seed " + std::to_string(seed));
      Random random(seed);
      Picture in(format.format, width, height, Placement::exact);
      scramble(in, seed);
      UndoFrame frame(GetParam().id, format.format, width, height);
      ASSERT_EQ(frame.result(), QPX_OK);
      expectRule(frame, in, wholeOf(in));
      if (!searches()) frame.scrambleTextures(GetParam().textures, seed);
      expectRule(frame, in, someRect(random, in));
      if (HasFatalFailure()) return;
    }
  }
}

TEST_P(UndoKernel, BlackAndWhitePicturesFollowItsRule) {
  for (const FormatCase& format : testing::formatCases()) {
    if (!taken(format)) continue;
    for (const uint8_t value : {0, 1, 254, 255}) {
      Picture in(format.format, 37, 23, Placement::exact);
      in.fill(value);
      UndoFrame frame(GetParam().id, format.format, 37, 23);
      SCOPED_TRACE(std::string(format.name) + " of " + std::to_string(value));
      expectRule(frame, in, wholeOf(in));
    }
  }
}

TEST_P(UndoKernel, BandsGiveTheBytesOfOneCall) {
  for (const FormatCase& format : testing::formatCases()) {
    if (!taken(format)) continue;
    Picture in(format.format, 517, 41, Placement::exact);
    scramble(in, 6);
    UndoFrame frame(GetParam().id, format.format, 517, 41);
    Picture whole(format.format, 517, 41, Placement::guarded);
    Picture banded(whole);
    ASSERT_EQ(frame.run(GetParam().run, in, whole, wholeOf(in)), QPX_OK);
    for (int32_t top = 0; top < 41; top += 6) {
      for (const MRect& part : {MRect{0, top, 130, top + 6}, MRect{130, top, 517, top + 6}}) {
        ASSERT_EQ(frame.run(GetParam().run, in, banded, part), QPX_OK);
      }
    }
    const auto difference = whole.firstDifference(banded);
    ASSERT_FALSE(difference) << format.name << " " << describe(*difference);
  }
}

TEST_P(UndoKernel, MayWorkInPlace) {
  for (const FormatCase& format : testing::formatCases()) {
    if (!taken(format)) continue;
    Picture picture(format.format, 303, 9, Placement::guarded);
    scramble(picture, 8);
    UndoFrame frame(GetParam().id, format.format, 303, 9);
    Picture inPlace(picture);
    Picture apart(picture);
    ASSERT_EQ(frame.run(GetParam().run, picture, apart, wholeOf(picture)), QPX_OK);
    ASSERT_EQ(frame.run(GetParam().run, inPlace, inPlace, wholeOf(picture)), QPX_OK);
    const auto difference = apart.firstDifference(inPlace);
    ASSERT_FALSE(difference) << format.name << " " << describe(*difference);
  }
}

TEST_P(UndoKernel, WritesNothingInOtherFormats) {
  for (const FormatCase& format : testing::formatCases()) {
    if (taken(format)) continue;
    Picture in(format.format, 20, 10, Placement::exact);
    in.fill(90);
    UndoFrame frame(GetParam().id, format.format, 20, 10);
    Picture out(format.format, 20, 10, Placement::guarded);
    const Picture before(out);
    EXPECT_EQ(frame.run(GetParam().run, in, out, wholeOf(in)), QPX_OK) << format.name;
    EXPECT_FALSE(before.firstDifference(out)) << format.name;
  }
}

TEST_P(UndoKernel, RefusesStagesWithoutItsTexturesAndTables) {
  const uint32_t format = packed() ? uint32_t{QPX_FORMAT_RGB24} : uint32_t{QPX_FORMAT_NV21};
  Picture in(format, 20, 10, Placement::exact);
  in.fill(90);
  Picture out(format, 20, 10, Placement::guarded);
  const Picture before(out);
  const int32_t refusal = GetParam().textures > 0 ? QPX_BAD_PARAM : QPX_OK;
  UndoFrame bare(0xB900, format, 20, 10);
  EXPECT_EQ(bare.run(GetParam().run, in, out, wholeOf(in)), refusal);
  UndoFrame toned(0xBF00, format, 20, 10);
  EXPECT_EQ(toned.run(GetParam().run, in, out, wholeOf(in)), refusal);
  if (refusal == QPX_OK) return;
  if (searches()) {
    UndoFrame frame(GetParam().id, format, 20, 10);
    frame.stage().lutSize -= 1;
    EXPECT_EQ(frame.run(GetParam().run, in, out, wholeOf(in)), QPX_BAD_PARAM);
    frame.stage().lutSize += 1;
    frame.stage().lutFlags = 9;
    EXPECT_EQ(frame.run(GetParam().run, in, out, wholeOf(in)), QPX_BAD_PARAM);
  }
  EXPECT_FALSE(before.firstDifference(out));
}

INSTANTIATE_TEST_SUITE_P(Kernels, UndoKernel, ::testing::ValuesIn(kKernels), nameOf);

// Columns of all observed samples under a texture row of their own, all channels alike.
Picture ramp(uint32_t format) {
  Picture picture(format, 256, 24, Placement::exact);
  const MBitmap bitmap = picture.bitmap();
  for (int32_t y = 0; y < 24; ++y) {
    for (int i = 0; i < 256; ++i) std::memset(bitmap.plane[0] + y * bitmap.pitch[0] + 3 * i, i, 3);
  }
  return picture;
}

TEST(UndoLomo, SearchesTablesOfAnyShapeUnderAnyTexels) {
  for (uint64_t seed = 1; seed <= 3; ++seed) {
    const AnyLomoTables tables(seed);
    const Picture in = ramp(QPX_FORMAT_RGB24);
    UndoFrame frame(0xBC00, QPX_FORMAT_RGB24, 256, 24);
    frame.scrambleTextures(2, seed);
    ASSERT_EQ(prepareUndoLomo(frame.stage(), lomoTables), QPX_OK);
    Picture out(in);
    ASSERT_EQ(frame.run(in, out, wholeOf(in)), QPX_OK);
    expectPacked(undoLomoRule, frame.stage(), wholeOf(in), in, in, out);
    if (HasFatalFailure()) return;
  }
}

// Where every candidate looks alike, none is nearer than the first.
TEST(UndoLomo, TiesKeepTheSmallestCandidate) {
  const std::vector<uint8_t> flat(65536, 77);
  const Picture in = ramp(QPX_FORMAT_RGB24);
  UndoFrame frame(0xBC00, QPX_FORMAT_RGB24, 256, 24);
  ASSERT_EQ(prepareUndoLomo(frame.stage(), {flat.data(), flat.data(), flat.data()}), QPX_OK);
  Picture out(in);
  ASSERT_EQ(frame.run(in, out, wholeOf(in)), QPX_OK);
  for (int32_t x = 0; x < 256; ++x) ASSERT_EQ(out.rgb(x, 11), (testing::Rgba{0, 0, 0, 255}));

  // 10 and 14 are equally far from 12, whichever candidate comes first.
  for (const bool rising : {true, false}) {
    std::vector<uint8_t> curve(768), same(65536), grey(1024);
    for (size_t i = 0; i < 768; ++i) curve[i] = (i / 3 < 100) == rising ? 11 : 15;
    for (size_t i = 0; i < 65536; ++i) same[i] = static_cast<uint8_t>(i >> 8);
    for (size_t i = 0; i < 1024; ++i) grey[i] = static_cast<uint8_t>(i / 4);
    ASSERT_EQ(prepareUndoLomo(frame.stage(), {curve.data(), same.data(), grey.data()}), QPX_OK);
    ASSERT_EQ(frame.run(in, out, wholeOf(in)), QPX_OK);
    EXPECT_EQ(out.rgb(10, 0).r, rising ? 0 : 100);
    EXPECT_EQ(out.rgb(11, 0).r, rising ? 0 : 100);
    EXPECT_EQ(out.rgb(12, 0).r, 0);
    EXPECT_EQ(out.rgb(13, 0).r, rising ? 100 : 0);
  }
}

TEST(UndoLomo, TexturesOfOtherShapesAreRefused) {
  for (const size_t layer : {0u, 1u}) {
    UndoFrame frame(0xBC00, QPX_FORMAT_RGB24, 31, 17);
    auto* bitmap = static_cast<MBitmap*>(frame.stage().resources[layer]);
    bitmap->width = 255;
    EXPECT_EQ(prepareUndoLomo(frame.stage(), kOwnTables), QPX_BAD_PARAM);
    bitmap->width = 256;
    bitmap->format = QPX_FORMAT_BGR24;
    EXPECT_EQ(prepareUndoLomo(frame.stage(), kOwnTables), QPX_BAD_PARAM);
  }
}

TEST(UndoLomo, BlackTakesTheSmallestCandidateNearestToBlack) {
  Picture in(QPX_FORMAT_RGB24, 31, 17, Placement::exact);
  in.fill(0);
  Picture out(in);
  UndoFrame frame(0xBC00, QPX_FORMAT_RGB24, 31, 17);
  ASSERT_EQ(frame.run(in, out, wholeOf(in)), QPX_OK);
  for (int32_t y = 0; y < 17; ++y) {
    for (int32_t x = 0; x < 31; ++x) {
      const int first = texelAt(frame.stage(), 0, 0, x, y);
      const int second = texelAt(frame.stage(), 1, 0, x, y);
      const auto look = [&](int i) {
        return candidateLook(reversal_data[3 * i + 2], first, second);
      };
      const int made = out.rgb(x, y).r;
      for (int i = 0; i < made; ++i) ASSERT_GT(look(i), look(made));
      for (int i = made; i < 256; ++i) ASSERT_GE(look(i), look(made));
    }
  }
}

// Evening over hills: a sky with a glow, darker ground, two balls, and the grain of a sensor.
Rgb sceneAt(int32_t x, int32_t y, Random& random) {
  const double u = x / 320.0, v = y / 240.0;
  const double horizon = 0.62 + 0.06 * std::sin(7 * u) + 0.02 * std::sin(23 * u);
  const double ground = 1 / (1 + std::exp((horizon - v) * 60));
  const double glow = std::exp(-8 * ((u - 0.7) * (u - 0.7) + (v - 0.45) * (v - 0.45)));
  double color[3] = {70 + 90 * v + 100 * glow, 110 + 70 * v + 60 * glow, 190 - 30 * v};
  const double earth[3] = {88 - 40 * v, 96 - 30 * u, 52 + 20 * u};
  const double balls[2][6] = {{0.25, 0.72, 0.13, 205, 60, 50}, {0.55, 0.85, 0.09, 60, 120, 200}};
  for (int c = 0; c < 3; ++c) color[c] += (earth[c] - color[c]) * ground;
  for (const auto& ball : balls) {
    const double far = std::hypot((u - ball[0]) * 4 / 3, v - ball[1]) / ball[2];
    const double inside = 1 / (1 + std::exp((far - 1) * 30));
    for (int c = 0; c < 3; ++c) color[c] += (ball[3 + c] * (1.1 - 0.6 * far) - color[c]) * inside;
  }
  const auto sample = [&](double value) {
    return std::clamp(static_cast<int>(value) + random.between(-3, 3), 0, 255);
  };
  return {sample(color[0]), sample(color[1]), sample(color[2])};
}

constexpr int32_t kSceneWidth = 320, kSceneHeight = 240;

void put(const Picture& picture, int32_t x, int32_t y, Rgb c) {
  const MBitmap bitmap = picture.bitmap();
  if (picture.format() == QPX_FORMAT_RGB24) {
    uint8_t* pixel = bitmap.plane[0] + ptrdiff_t{y} * bitmap.pitch[0] + ptrdiff_t{x} * 3;
    pixel[0] = static_cast<uint8_t>(c.r);
    pixel[1] = static_cast<uint8_t>(c.g);
    pixel[2] = static_cast<uint8_t>(c.b);
    return;
  }
  const Yuv yuv = testing::yuvFromRgb(c);
  bitmap.plane[0][ptrdiff_t{y} * bitmap.pitch[0] + x] = static_cast<uint8_t>(yuv.y);
  if (x % 2 != 0 || y % 2 != 0) return;
  const ptrdiff_t at = ptrdiff_t{y} / 2 * bitmap.pitch[2] + x;
  bitmap.plane[1][at] = static_cast<uint8_t>(yuv.u);
  bitmap.plane[2][at] = static_cast<uint8_t>(yuv.v);
}

Rgb colorOf(const Picture& picture, int32_t x, int32_t y) {
  if (picture.format() == QPX_FORMAT_RGB24) {
    const auto pixel = picture.rgb(x, y);
    return {pixel.r, pixel.g, pixel.b};
  }
  return testing::rgbFromYuv({picture.yuv(0, x, y), picture.yuv(1, x, y), picture.yuv(2, x, y)});
}

// A look at the strength that is undone.
struct Trip {
  const char* name;
  uint32_t look;
  uint32_t undo;
  int32_t strengths[2];
};

constexpr Trip kTrips[] = {
    {"NewReversal", 0xA800, 0xB900, {100, 0}}, {"FleetingTime", 0xA500, 0xBA00, {0, 0}},
    {"WarmLomo", 0xA900, 0xBC00, {100, 68}},   {"SoftPink", 0xAB00, 0xBD00, {100, 100}},
    {"RIXI", 0xAC00, 0xBE00, {100, 0}},
};

class RoundTrip : public ::testing::TestWithParam<Trip> {
 protected:
  explicit RoundTrip(uint32_t format = QPX_FORMAT_RGB24)
      : scene_(format, kSceneWidth, kSceneHeight, Placement::exact),
        black_(scene_),
        white_(scene_),
        back_(scene_) {
    Random random(7);
    for (int32_t y = 0; y < kSceneHeight; ++y) {
      for (int32_t x = 0; x < kSceneWidth; ++x) {
        put(scene_, x, y, sceneAt(x, y, random));
        put(black_, x, y, {0, 0, 0});
        put(white_, x, y, {255, 255, 255});
      }
    }
  }

  // There and back. What comes out black or white cannot come back.
  void travel() {
    const Picture look = filtered(scene_), black = filtered(black_), white = filtered(white_);
    UndoFrame frame(GetParam().undo, scene_.format(), kSceneWidth, kSceneHeight);
    ASSERT_EQ(frame.run(look, back_, wholeOf(look)), QPX_OK);
    for (int32_t y = 0; y < kSceneHeight; ++y) {
      for (int32_t x = 0; x < kSceneWidth; ++x) {
        const Rgb seen = colorOf(look, x, y);
        const Rgb low = colorOf(black, x, y), high = colorOf(white, x, y);
        const bool clipped = seen.r <= low.r || seen.g <= low.g || seen.b <= low.b ||
                             seen.r >= high.r || seen.g >= high.g || seen.b >= high.b;
        if (!clipped) kept_.push_back({x, y});
      }
    }
    EXPECT_GT(kept_.size(), size_t{kSceneWidth} * kSceneHeight * 85 / 100);
  }

  // The mean of distance(x, y) over the pixels that nothing clipped.
  template <typename Distance>
  double mean(const Distance& distance) const {
    double sum = 0;
    for (const auto& [x, y] : kept_) sum += distance(x, y);
    return sum / static_cast<double>(kept_.size());
  }

  const Picture& scene() const { return scene_; }
  const Picture& back() const { return back_; }

 private:
  struct Place {
    int32_t x, y;
  };

  static Picture filtered(const Picture& in) {
    UndoFrame frame(in.format(), kSceneWidth, kSceneHeight);
    EXPECT_EQ(frame.setUp(GetParam().look, GetParam().strengths), QPX_OK);
    Picture out(in);
    EXPECT_EQ(frame.run(in, out, wholeOf(in)), QPX_OK);
    return out;
  }

  Picture scene_, black_, white_, back_;
  std::vector<Place> kept_;
};

TEST_P(RoundTrip, GivesBackColors) {
  travel();
  const double error = mean([&](int32_t x, int32_t y) {
    const Rgb was = colorOf(scene(), x, y), is = colorOf(back(), x, y);
    return (std::abs(was.r - is.r) + std::abs(was.g - is.g) + std::abs(was.b - is.b)) / 3.0;
  });
  EXPECT_LT(error, 2.5);
}

// Chroma of three pixels in four is lost on each way, and every conversion cuts.
class PreviewRoundTrip : public RoundTrip {
 protected:
  PreviewRoundTrip() : RoundTrip(QPX_FORMAT_NV21) {}
};

TEST_P(PreviewRoundTrip, GivesBackLuma) {
  travel();
  const double error = mean(
      [&](int32_t x, int32_t y) { return std::abs(scene().yuv(0, x, y) - back().yuv(0, x, y)); });
  EXPECT_LT(error, 3);
}

std::string tripName(const ::testing::TestParamInfo<Trip>& tested) { return tested.param.name; }

INSTANTIATE_TEST_SUITE_P(Looks, RoundTrip, ::testing::ValuesIn(kTrips), tripName);
INSTANTIATE_TEST_SUITE_P(Looks, PreviewRoundTrip, ::testing::ValuesIn(kTrips), tripName);

TEST(UndoLooks, FailingAllocationsAnswerFourAndLeaveNothing) {
  MBitmap picture = {};
  picture.format = QPX_FORMAT_BGR24;
  picture.width = 40;
  picture.height = 30;
  for (const uint32_t id : {0xBA00u, 0xBC00u, 0xBD00u}) {
    QPXEffectItem item = {};
    item.effectId = id;
    QPXEffectList list = {};
    list.items = &item;
    list.count = 1;
    const int64_t before = FailingMemory::liveBlocks();
    const int64_t failed = FailingMemory::forEachFailure(true, [&] {
      QPXEngine* engine = nullptr;
      const int32_t result = QPXCreate(&picture, &picture, &list, &engine);
      EXPECT_EQ(result, FailingMemory::failures() > 0 ? QPX_NO_MEMORY : QPX_OK) << std::hex << id;
      QPXDestroy(engine);
      EXPECT_EQ(FailingMemory::liveBlocks(), before);
    });
    EXPECT_GT(failed, 4) << std::hex << id;
  }
  FailingMemory::reset();
}

}  // namespace
}  // namespace qpx
