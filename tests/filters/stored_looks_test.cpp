// The looks made of carried tables: every named kernel against its rule, a pixel at a time and as
// slow as it is simple.
#include <gtest/gtest.h>
#include <qpx/assets.h>
#include <qpx/kernels_curves.h>
#include <qpx/log.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <string>
#include <vector>

#include "filters/curves/texel_weights.h"
#include "filters/look_rules.h"
#include "simd/tone_rows.h"
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
using testing::scramble;
using testing::wholeOf;
using testing::Yuv;

struct Strengths {
  int32_t curve, mask;
};

// The texels of the picture's layers at a pixel, red, green and blue.
struct Texels {
  int first[3], second[3];
};

// What a look makes of one channel: 0 red, 1 green, 2 blue.
using ChannelRule = int (*)(int channel, int value, const Strengths& s, const Texels& texels);

int cut(int value) { return std::clamp(value, 0, 255); }

int mix(int s, int a, int b) { return cut(((s * a + (100 - s) * b) * 327) >> 15); }

int lomo(const uint8_t* curve, int k, int c, const Strengths& s, const Texels& texels) {
  const int c1 = mix(s.curve, curve[3 * c + 2 - k], c);
  const int m = fleet_data3[(c1 << 8) + texels.first[k]];
  const int c2 = cut((307 * m + 717 * c1) >> 10);
  const int n = fleet_data3[(c2 << 8) + texels.second[k]];
  const int c3 = cut((614 * c2 + 410 * n) >> 10);
  return mix(s.mask, lomo_mask2[4 * c3], c1);
}

int warmLomoRule(int k, int c, const Strengths& s, const Texels& texels) {
  return lomo(reversal_data, k, c, s, texels);
}

int coldLomoRule(int k, int c, const Strengths& s, const Texels& texels) {
  return lomo(village_data, k, c, s, texels);
}

int softPinkRule(int k, int c, const Strengths& s, const Texels& texels) {
  const int c1 = mix(s.curve, softlight_data[3 * c + 2 - k], c);
  return mix(s.mask, pink_mask3[pink_mask2[(c1 << 8) + texels.first[k]] * 4 + k], c1);
}

int rixiRule(int k, int c, const Strengths& s, const Texels&) {
  return mix(s.curve, rixi_data[3 * c + 2 - k], c);
}

int newReversalRule(int k, int c, const Strengths& s, const Texels&) {
  return mix(s.curve, reversal_data[3 * c + 2 - k], c);
}

int fleetingTimeRule(int k, int c, const Strengths&, const Texels& texels) {
  return fleet_data2[768 * k + 3 * fleet_data3[(c << 8) + texels.first[k]] + 2 - k];
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
  ChannelRule rule;
};

#define LOOK(effect, id, rule)                                              \
  {#effect "_RGB", byName<effect##_RGB>, kTakesRgb, id, rule},              \
      {#effect "_NV21", byName<effect##_NV21>, QPX_TAKES_NV21, id, rule}, { \
#effect "_YUYV", byName < effect##_YUYV>, QPX_TAKES_YUYV, id, rule      \
  }

const KernelCase kKernels[] = {
    LOOK(FleetingTime, 0xA500, fleetingTimeRule), LOOK(NewReversal, 0xA800, newReversalRule),
    LOOK(WarmLomo, 0xA900, warmLomoRule),         LOOK(ColdLomo, 0xAA00, coldLomoRule),
    LOOK(SoftPink, 0xAB00, softPinkRule),         LOOK(RIXI, 0xAC00, rixiRule)};

#undef LOOK

void PrintTo(const KernelCase& kernel, std::ostream* stream) { *stream << kernel.name; }

std::string nameOf(const ::testing::TestParamInfo<KernelCase>& tested) { return tested.param.name; }

struct FreeBitmap {
  void operator()(MBitmap* bitmap) const { UTIL_MBitmapFree(bitmap); }
};
using Layer = std::unique_ptr<MBitmap, FreeBitmap>;

Layer layerOf(const Asset& asset) { return Layer(decodeTexture(asset)); }

// The carried textures, decoded apart from any stage.
struct Layers {
  Layer falloff = layerOf({"lomo_mask0", lomo_mask0, sizeof lomo_mask0});
  Layer cast = layerOf({"lomo_mask1", lomo_mask1, sizeof lomo_mask1});
  Layer fleeting = layerOf({"fleet_data1", fleet_data1, sizeof fleet_data1});
};

Texels texelsAt(const Layers& layers, uint32_t id, const Stage& stage, int32_t x, int32_t y) {
  const int32_t column = stage.inWidth == 1 ? 0 : (x * (0xFF00000 / (stage.inWidth - 1))) >> 20;
  const int32_t row = stage.inHeight == 1 ? 0 : (y * (0xFF00000 / (stage.inHeight - 1))) >> 20;
  const MBitmap& first = id == 0xA500 ? *layers.fleeting : *layers.falloff;
  Texels texels;
  for (int k = 0; k < 3; ++k) {
    const int32_t at = (row * 256 + column) * 3 + k;
    texels.first[k] = first.plane[0][at];
    texels.second[k] = layers.cast->plane[0][at];
  }
  return texels;
}

// A stage of a size with a look on it.
class LookFrame : public KernelFrame {
 public:
  LookFrame(uint32_t format, int32_t width, int32_t height, uint32_t id, const Strengths& strengths)
      : KernelFrame(format) {
    stage().inWidth = stage().outWidth = width;
    stage().inHeight = stage().outHeight = height;
    result_ = setUp(id, strengths);
  }
  LookFrame(const Picture& picture, uint32_t id, const Strengths& strengths)
      : LookFrame(picture.format(), picture.width(), picture.height(), id, strengths) {}

  ~LookFrame() {
    for (void** slot = stage().resources; slot != nullptr && *slot != nullptr; ++slot) {
      UTIL_MBitmapFree(static_cast<MBitmap*>(*slot));
    }
    MMemFree(nullptr, stage().resources);
    stage().resources = nullptr;
  }

  int32_t result() const { return result_; }

 private:
  int32_t result_;
};

bool holds(const MRect& rect, int32_t x, int32_t y) {
  return x >= rect.left && x < rect.right && y >= rect.top && y < rect.bottom;
}

MRect someRect(Random& random, const Picture& picture) {
  MRect rect;
  rect.left = random.between(0, picture.width() - 1);
  rect.top = random.between(0, picture.height() - 1);
  rect.right = random.between(rect.left + 1, picture.width());
  rect.bottom = random.between(rect.top + 1, picture.height());
  return rect;
}

class StoredLook : public ::testing::TestWithParam<KernelCase> {
 protected:
  static bool taken(const FormatCase& format) { return (format.group & GetParam().formats) != 0; }

  static Rgb made(const Stage& stage, const Strengths& s, int32_t x, int32_t y, Rgb c) {
    static const Layers layers;
    const Texels texels = texelsAt(layers, GetParam().id, stage, x, y);
    const ChannelRule rule = GetParam().rule;
    return {rule(0, c.r, s, texels), rule(1, c.g, s, texels), rule(2, c.b, s, texels)};
  }

  static void expectPacked(const Stage& stage, const Strengths& s, const MRect& rect,
                           const Picture& in, const Picture& before, const Picture& out) {
    const Strengths clamped = {std::clamp(s.curve, 0, 100), std::clamp(s.mask, 0, 100)};
    for (int32_t y = 0; y < in.height(); ++y) {
      for (int32_t x = 0; x < in.width(); ++x) {
        const auto source = in.rgb(x, y);
        const auto result = out.rgb(x, y);
        if (!holds(rect, x, y)) {
          ASSERT_TRUE(result == before.rgb(x, y)) << "at " << x << ", " << y;
          continue;
        }
        const Rgb c = made(stage, clamped, x, y, {source.r, source.g, source.b});
        ASSERT_EQ(result.r, c.r) << "red at " << x << ", " << y;
        ASSERT_EQ(result.g, c.g) << "green at " << x << ", " << y;
        ASSERT_EQ(result.b, c.b) << "blue at " << x << ", " << y;
        ASSERT_EQ(result.a, source.a) << "alpha at " << x << ", " << y;
      }
    }
  }

  // Blocks of 2 x 2 pixels in NV21, of 2 x 1 in YUYV, whose two pixels lie under one texel.
  static void expectYuv(const Stage& stage, const Strengths& s, const MRect& rect,
                        const Picture& in, const Picture& before, const Picture& out) {
    const bool packed = GetParam().formats == QPX_TAKES_YUYV;
    const int32_t down = packed ? 1 : 2;
    for (int32_t y = 0; y < in.height(); ++y) {
      for (int32_t x = 0; x < in.width(); ++x) {
        const Yuv source = {in.yuv(0, x, y), in.yuv(1, x, y), in.yuv(2, x, y)};
        const int32_t under = packed ? x & ~1 : x;
        const Yuv c = testing::yuvFromRgb(made(stage, s, under, y, testing::rgbFromYuv(source)));
        const bool inside = holds(rect, x, y);
        ASSERT_EQ(out.yuv(0, x, y), inside ? c.y : before.yuv(0, x, y))
            << "luma at " << x << ", " << y;
        if (x % 2 != 0 || y % down != 0) continue;
        ASSERT_EQ(out.yuv(1, x, y), inside ? c.u : before.yuv(1, x, y))
            << "U at " << x << ", " << y;
        ASSERT_EQ(out.yuv(2, x, y), inside ? c.v : before.yuv(2, x, y))
            << "V at " << x << ", " << y;
      }
    }
  }

  static void expectRule(const FormatCase& format, int32_t width, int32_t height, uint64_t seed,
                         const Strengths& strengths) {
    Random random(seed);
    Picture in(format.format, width, height, Placement::exact);
    scramble(in, seed);
    LookFrame frame(in, GetParam().id, strengths);
    ASSERT_EQ(frame.result(), QPX_OK);
    const MRect rect = seed % 3 == 0 ? wholeOf(in) : someRect(random, in);
    Picture out(format.format, width, height, Placement::guarded);
    const Picture before(out);
    ASSERT_EQ(frame.run(GetParam().run, in, out, rect), QPX_OK);
    if (GetParam().formats == kTakesRgb) {
      expectPacked(frame.stage(), strengths, rect, in, before, out);
    } else {
      expectYuv(frame.stage(), strengths, rect, in, before, out);
    }
    const auto stray = out.firstWriteOutside(before, rect);
    ASSERT_FALSE(stray) << describe(*stray);
  }
};

TEST_P(StoredLook, FollowsItsRuleInEveryRectangle) {
  for (const FormatCase& format : testing::formatCases()) {
    if (!taken(format)) continue;
    Random random(GetParam().id);
    for (uint64_t seed = 0; seed < 30; ++seed) {
      const int32_t width = random.between(1, seed % 8 == 0 ? 700 : 90);
      const int32_t height = random.between(1, seed % 8 == 0 ? 9 : 70);
      const Strengths strengths = {random.between(0, 100), random.between(0, 100)};
      SCOPED_TRACE(std::string(format.name) + " " + std::to_string(width) + "x" +
                   std::to_string(height) + ", seed " + std::to_string(seed));
      expectRule(format, width, height, seed, strengths);
      if (HasFatalFailure()) return;
    }
  }
}

TEST_P(StoredLook, ClampsStrengthsInPackedRgbAlone) {
  for (const FormatCase& format : testing::formatCases()) {
    if (!taken(format)) continue;
    for (const Strengths& s : {Strengths{150, 100},
                               {100, 170},
                               {-40, 50},
                               {60, -80},
                               {101, -1},
                               {4000, -4000},
                               {0, 0},
                               {100, 100},
                               {100, 0},
                               {0, 100}}) {
      SCOPED_TRACE(std::string(format.name) + " at " + std::to_string(s.curve) + ", " +
                   std::to_string(s.mask));
      expectRule(format, 61, 17, 3, s);
      if (HasFatalFailure()) return;
    }
  }
}

TEST_P(StoredLook, PicturesOfOneColumnOrRowLieUnderTheFirst) {
  for (const FormatCase& format : testing::formatCases()) {
    if (!taken(format)) continue;
    for (const auto& [width, height] : {std::pair{1, 1}, {1, 40}, {40, 1}, {2, 2}, {3000, 1}}) {
      expectRule(format, width, height, 9, {70, 80});
      if (HasFatalFailure()) return;
    }
  }
}

TEST_P(StoredLook, SurvivesAnyStrength) {
  for (const FormatCase& format : testing::formatCases()) {
    if (!taken(format)) continue;
    for (const Strengths& s :
         {Strengths{INT32_MIN, INT32_MAX}, {INT32_MAX, INT32_MIN}, {1 << 24, -(1 << 24)}}) {
      Picture in(format.format, 77, 9, Placement::exact);
      scramble(in, 4);
      LookFrame frame(in, GetParam().id, s);
      Picture out(in);
      EXPECT_EQ(frame.run(GetParam().run, in, out, wholeOf(in)), QPX_OK);
    }
  }
}

TEST_P(StoredLook, ReadsStrengthsAtEachCall) {
  if (GetParam().id == 0xA500) return;
  for (const FormatCase& format : testing::formatCases()) {
    if (!taken(format)) continue;
    Picture in(format.format, 50, 20, Placement::exact);
    scramble(in, 4);
    LookFrame changed(in, GetParam().id, {20, 30});
    LookFrame other(in, GetParam().id, {90, 70});
    const Strengths strengths = {90, 70};
    std::memcpy(changed.stage().record, &strengths, sizeof strengths);
    Picture expected(in), actual(in);
    ASSERT_EQ(other.run(GetParam().run, in, expected, wholeOf(in)), QPX_OK);
    ASSERT_EQ(changed.run(GetParam().run, in, actual, wholeOf(in)), QPX_OK);
    EXPECT_FALSE(expected.firstDifference(actual)) << format.name;
  }
}

TEST_P(StoredLook, BandsOfEvenRowsGiveTheBytesOfOneCall) {
  for (const FormatCase& format : testing::formatCases()) {
    if (!taken(format)) continue;
    Picture in(format.format, 77, 41, Placement::exact);
    scramble(in, 6);
    LookFrame frame(in, GetParam().id, {80, 90});
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

TEST_P(StoredLook, MayWorkInPlace) {
  for (const FormatCase& format : testing::formatCases()) {
    if (!taken(format)) continue;
    Picture picture(format.format, 613, 5, Placement::guarded);
    scramble(picture, 6);
    LookFrame frame(picture, GetParam().id, {80, 90});
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

TEST_P(StoredLook, WritesNothingInOtherFormats) {
  for (const FormatCase& format : testing::formatCases()) {
    if (taken(format)) continue;
    Picture in(format.format, 20, 10, Placement::exact);
    LookFrame frame(in, GetParam().id, {80, 90});
    Picture out(format.format, 20, 10, Placement::guarded);
    const Picture before(out);
    EXPECT_EQ(frame.run(GetParam().run, in, out, wholeOf(in)), QPX_OK) << format.name;
    EXPECT_FALSE(before.firstDifference(out)) << format.name;
  }
}

bool needsTextures(uint32_t id) { return id != 0xA800 && id != 0xAC00; }

TEST_P(StoredLook, RefusesStagesOfOtherEffects) {
  const KernelCase& kernel = GetParam();
  const uint32_t format = kernel.formats == kTakesRgb        ? uint32_t{QPX_FORMAT_BGR24}
                          : kernel.formats == QPX_TAKES_NV21 ? uint32_t{QPX_FORMAT_NV21}
                                                             : uint32_t{QPX_FORMAT_YUYV};
  Picture in(format, 20, 10, Placement::exact);
  Picture out(format, 20, 10, Placement::guarded);
  const Picture before(out);
  KernelFrame empty(format);
  empty.stage().inWidth = empty.stage().outWidth = 20;
  empty.stage().inHeight = empty.stage().outHeight = 10;
  EXPECT_EQ(empty.run(kernel.run, in, out, wholeOf(in)), QPX_BAD_PARAM);
  empty.stage().record = nullptr;
  EXPECT_EQ(empty.run(kernel.run, in, out, wholeOf(in)), QPX_BAD_PARAM);
  if (needsTextures(kernel.id)) {
    LookFrame frame(in, kernel.id, {80, 90});
    auto& bitmap = *static_cast<MBitmap*>(frame.stage().resources[0]);
    bitmap.height = 255;
    EXPECT_EQ(frame.run(kernel.run, in, out, wholeOf(in)), QPX_BAD_PARAM);
    bitmap.height = 256;
    bitmap.format = QPX_FORMAT_RGBA32;
    EXPECT_EQ(frame.run(kernel.run, in, out, wholeOf(in)), QPX_BAD_PARAM);
  }
  EXPECT_FALSE(before.firstDifference(out));
}

struct Line {
  int32_t priority;
  std::string tag, message;
};

TEST_P(StoredLook, PreviewsLogOneLine) {
  std::vector<Line> lines;
  QPX_SetLogSink(
      [](void* user, int32_t priority, const char* tag, const char* message) {
        static_cast<std::vector<Line>*>(user)->push_back({priority, tag, message});
      },
      &lines);
  for (const FormatCase& format : testing::formatCases()) {
    if (!taken(format)) continue;
    Picture picture(format.format, 64, 48, Placement::exact);
    LookFrame frame(picture, GetParam().id, {80, 90});
    frame.stage().pitch[0] = 80;
    frame.stage().pitch[1] = 96;
    EXPECT_EQ(frame.run(GetParam().run, picture, picture, {0, 4, 64, 30}), QPX_OK);
  }
  QPX_SetLogSink(nullptr, nullptr);
  if (GetParam().formats != QPX_TAKES_NV21) {
    EXPECT_TRUE(lines.empty());
    return;
  }
  ASSERT_EQ(lines.size(), 1u);
  EXPECT_EQ(lines[0].priority, 3);
  EXPECT_EQ(lines[0].tag, "IP");
  EXPECT_EQ(lines[0].message, std::string("[vloLog] ") + GetParam().name +
                                  "() inresolution (64 x 48), pitch(80, 96), heightPitch0:48");
}

INSTANTIATE_TEST_SUITE_P(Kernels, StoredLook, ::testing::ValuesIn(kKernels), nameOf);

// The mix cuts: a level goes with each of the two, and black stays.
TEST(StoredLooks, StrengthsOfZeroTakeTwoLevelsOff) {
  Picture in(QPX_FORMAT_RGBA32, 256, 3, Placement::exact);
  const MBitmap bitmap = in.bitmap();
  for (int i = 0; i < 256 * 3; ++i) {
    std::memset(bitmap.plane[0] + bitmap.pitch[0] * (i / 256) + 4 * (i % 256), i % 256, 4);
  }
  for (const uint32_t id : {0xA900u, 0xAA00u, 0xAB00u, 0xA800u, 0xAC00u}) {
    const int lost = id == 0xA800 || id == 0xAC00 ? 1 : 2;
    LookFrame frame(in, id, {0, 0});
    Picture out(in);
    ASSERT_EQ(frame.KernelFrame::run(in, out, wholeOf(in)), QPX_OK);
    for (int i = 0; i < 256; ++i) {
      ASSERT_EQ(out.rgb(i, 1).r, std::max(i - lost, 0)) << std::hex << id;
      ASSERT_EQ(out.rgb(i, 1).a, i);
    }
  }
}

// By hand: (100 * 255 * 327) >> 15 = 254.
TEST(StoredLooks, FullStrengthOfWhiteIsALevelShort) {
  Picture in(QPX_FORMAT_BGR24, 4, 4, Placement::exact);
  in.fill(255);
  LookFrame frame(in, 0xA800, {100, 0});
  Picture out(in);
  ASSERT_EQ(frame.KernelFrame::run(in, out, wholeOf(in)), QPX_OK);
  EXPECT_EQ(reversal_data[3 * 255 + 2], 255);
  EXPECT_EQ(out.rgb(1, 1).r, 254);
}

TEST(StoredLooks, OddRowsOfNv21GiveLumaOnly) {
  Picture in(QPX_FORMAT_NV21, 40, 8, Placement::exact);
  in.paint(3);
  LookFrame frame(in, 0xA900, {80, 90});
  Picture out(QPX_FORMAT_NV21, 40, 8, Placement::guarded);
  const Picture before(out);
  for (int32_t y = 1; y < 8; y += 2) {
    ASSERT_EQ(frame.KernelFrame::run(in, out, {0, y, 40, y + 1}), QPX_OK);
  }
  for (int32_t x = 0; x < 40; ++x) {
    for (int32_t y = 0; y < 8; ++y) {
      ASSERT_EQ(out.yuv(1, x, y), before.yuv(1, x, y));
      ASSERT_EQ(out.yuv(2, x, y), before.yuv(2, x, y));
    }
  }
}

// What rows compute is what the carried tables hold.
TEST(StoredLooks, TexelWeightsGiveTheTablesToTheByte) {
  const std::pair<const TexelWeights*, const uint8_t*> pairs[] = {{&kSoftLight, fleet_data3},
                                                                  {&kPinkLight, pink_mask2}};
  uint8_t texels[256], laid[256];
  for (int i = 0; i < 256; ++i) texels[i] = static_cast<uint8_t>(i);
  for (const auto& [weights, table] : pairs) {
    for (size_t c = 0; c < 256; ++c) {
      uint8_t samples[256], darker[256], lighter[256];
      std::memset(samples, static_cast<int>(c), 256);
      std::memset(darker, weights->darker[c], 256);
      std::memset(lighter, weights->lighter[c], 256);
      for (const simd::ToneRows* rows :
           {&simd::plainForm<simd::ToneRows>(), &simd::vectorForm<simd::ToneRows>()}) {
        rows->layTexels(samples, texels, darker, lighter, laid, 256, 1024);
        ASSERT_EQ(std::memcmp(laid, table + 256 * c, 256), 0) << "sample " << c;
      }
    }
  }
}

// A ramp of greys in the middle of a picture, of which the textures' middles lie on it.
std::vector<Rgb> rampThrough(uint32_t id) {
  Picture in(QPX_FORMAT_RGB24, 256, 3, Placement::exact);
  const MBitmap bitmap = in.bitmap();
  for (int i = 0; i < 256 * 3; ++i) {
    std::memset(bitmap.plane[0] + bitmap.pitch[0] * (i / 256) + 3 * (i % 256), i % 256, 3);
  }
  Picture out(in);
  LookFrame frame(in, id, {100, 100});
  EXPECT_EQ(frame.KernelFrame::run(in, out, wholeOf(in)), QPX_OK);
  std::vector<Rgb> ramp;
  for (int i = 0; i < 256; ++i) ramp.push_back({out.rgb(i, 1).r, out.rgb(i, 1).g, out.rgb(i, 1).b});
  return ramp;
}

TEST(StoredLooks, AreDistinctFromOneAnotherAndFromTheirKin) {
  std::vector<std::vector<Rgb>> ramps;
  for (const uint32_t id : {0xA500u, 0xA800u, 0xA900u, 0xAA00u, 0xAB00u, 0xAC00u, 0x5E00u, 0x5F00u,
                            0x6100u, 0x6300u, 0x6900u, 0x6E00u, 0xC000u}) {
    ramps.push_back(rampThrough(id));
  }
  for (size_t a = 0; a < 6; ++a) {
    for (size_t b = a + 1; b < ramps.size(); ++b) {
      int distance = 0;
      for (size_t i = 0; i < 256; ++i) {
        distance += std::abs(ramps[a][i].r - ramps[b][i].r) +
                    std::abs(ramps[a][i].g - ramps[b][i].g) +
                    std::abs(ramps[a][i].b - ramps[b][i].b);
      }
      EXPECT_GT(distance / 256, 15) << "looks " << a << " and " << b;
    }
  }
}

TEST(StoredLooks, FailingAllocationsAnswerFour) {
  for (const uint32_t id : {0xA500u, 0xA900u, 0xAA00u, 0xAB00u}) {
    const int64_t live = FailingMemory::liveBlocks();
    const int64_t failed = FailingMemory::forEachFailure(false, [&] {
      const LookFrame frame(QPX_FORMAT_BGR24, 20, 10, id, {});
      EXPECT_EQ(frame.result(), FailingMemory::failures() > 0 ? QPX_NO_MEMORY : QPX_OK);
    });
    EXPECT_GT(failed, 0) << std::hex << id;
    EXPECT_EQ(FailingMemory::liveBlocks(), live) << std::hex << id;
  }
  FailingMemory::reset();
}

}  // namespace
}  // namespace qpx
