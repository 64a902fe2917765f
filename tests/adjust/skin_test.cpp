// Complexion, skin tone and whitening against literal forms of their arithmetic.
#include "adjust/skin_effects.h"

#include <gtest/gtest.h>
#include <qpx/curves.h>
#include <qpx/kernels_adjust.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdlib>
#include <memory>
#include <vector>

#include "adjust/packed_pictures.h"
#include "adjust/selective_color.h"
#include "support/failing_memory.h"

namespace qpx::testing {
namespace {

struct Pixel {
  int32_t c[3];  // red, green, blue
};

// Skin with some noise, here and there anything else, a corner too dark to be skin.
Pixel skinAt(int32_t x, int32_t y, Random& random) {
  if (random.between(0, 9) == 0) return {{random.byte(), random.byte(), random.byte()}};
  const int32_t light = x + y < 6 ? -150 : x % 16 + y;
  const auto noisy = [&](int32_t v) {
    return std::clamp(v + light + random.between(-14, 14), 0, 255);
  };
  return {{noisy(198), noisy(148), noisy(122)}};
}

uint8_t clampByte(int32_t v) { return static_cast<uint8_t>(std::clamp(v, 0, 255)); }

int32_t lumaOf(const Pixel& p) { return (306 * p.c[0] + 601 * p.c[1] + 117 * p.c[2]) >> 10; }
int32_t cbOf(const Pixel& p) {
  return (((-173 * p.c[0] - 339 * p.c[1] + 512 * p.c[2]) >> 10) + 128) & 255;
}
int32_t crOf(const Pixel& p) {
  return (((512 * p.c[0] - 428 * p.c[1] - 83 * p.c[2]) >> 10) + 128) & 255;
}

bool isSkinChroma(int32_t cb, int32_t cr) {
  const double u = 128 + (cb - 128) * 224 / 255.0 - 109.38;
  const double v = 128 + (cr - 128) * 224 / 255.0 - 152.02;
  const double x = (std::cos(2.53) * u + std::sin(2.53) * v - 1.60) / 25.39;
  const double y = (std::cos(2.53) * v - std::sin(2.53) * u - 2.41) / 14.03;
  return x * x + y * y < 1;
}

// A picture as colours, and which of them are skin.
struct Colors {
  int32_t width = 0, height = 0;
  std::vector<Pixel> pixels;
  std::vector<bool> skin;

  const Pixel& at(int32_t x, int32_t y) const {
    return pixels[static_cast<size_t>(std::clamp(y, 0, height - 1) * width + x)];
  }
};

class Literal {
 public:
  explicit Literal(int32_t size) : reach_(size < 1 ? 1 : std::max(size >> 1, 1)) {
    const uint8_t xs[] = {0, 64, 128, 192, 255}, ys[] = {0, 68, 135, 197, 255};
    EXPECT_EQ(BuildSplineCurve(xs, ys, 5, tone_), 0);
  }

  Pixel at(const Colors& source, int32_t x, int32_t y) const {
    Pixel result = source.at(x, y);
    if (source.skin[static_cast<size_t>(y * source.width + x)]) result = meanAt(source, x, y);
    for (int32_t& c : result.c) c = tone_[c];
    return result;
  }

 private:
  Pixel meanAt(const Colors& source, int32_t x, int32_t y) const {
    const Pixel middle = source.at(x, y);
    int64_t sum[3] = {}, total = 0;
    for (int32_t v = -reach_; v <= reach_; ++v) {
      for (int32_t u = -reach_; u <= reach_; ++u) {
        if (x + u < 0 || x + u >= source.width) continue;
        const Pixel p = source.at(x + u, y + v);
        int32_t distance = 0;
        for (int i = 0; i < 3; ++i) distance += std::abs(p.c[i] - middle.c[i]);
        const int64_t weight = weightOf(distance, u, v);
        total += weight;
        for (int i = 0; i < 3; ++i) sum[i] += weight * p.c[i];
      }
    }
    Pixel mean;
    for (int i = 0; i < 3; ++i) mean.c[i] = static_cast<int32_t>(sum[i] / total);
    return mean;
  }

  int64_t weightOf(int32_t distance, int32_t u, int32_t v) const {
    if (distance > 71) return 0;
    const int64_t t = 2 * (72 * 72 - distance * distance);
    const double deviation = (reach_ + 1) / 2.0;
    const double bell = std::exp(-0.5 * (u * u + v * v) / (deviation * deviation));
    return ((t * t >> 16) * static_cast<int64_t>(65535 * bell + 0.5)) >> 16;
  }

  int32_t reach_;
  uint8_t tone_[256];
};

std::unique_ptr<KernelFrame> complexionOf(const Picture& picture, int32_t size) {
  return frameOf(picture, kComplexion, QPXComplexionParam{size, {}});
}

struct Shape {
  int32_t width, height;
};
constexpr Shape kShapes[] = {{1, 1}, {2, 3}, {9, 4}, {40, 17}, {67, 6}};
constexpr int32_t kSizes[] = {-3, 0, 3, 5, 9, 12};

Picture skinPicture(uint32_t format, const Shape& shape, Colors& colors) {
  Picture picture(format, shape.width, shape.height, Placement::exact);
  scramble(picture, 1);
  Random random(8);
  colors = {shape.width, shape.height, {}, {}};
  for (int32_t y = 0; y < shape.height; ++y) {
    for (int32_t x = 0; x < shape.width; ++x) {
      const Pixel p = skinAt(x, y, random);
      setColor(picture, x, y, {p.c[0], p.c[1], p.c[2]});
      colors.pixels.push_back(p);
      colors.skin.push_back(lumaOf(p) >= 61 && isSkinChroma(cbOf(p), crOf(p)));
    }
  }
  return picture;
}

TEST(Complexion, OfRgbIsTheMeanOfNearSkin) {
  for (const uint32_t format : kPackedFormats) {
    for (const Shape& shape : kShapes) {
      Colors colors;
      const Picture source = skinPicture(format, shape, colors);
      for (const int32_t size : kSizes) {
        Picture result = source;
        ASSERT_EQ(complexionOf(source, size)->run(source, result, wholeOf(source)), QPX_OK);
        const Literal literal(size);
        for (int32_t y = 0; y < shape.height; ++y) {
          for (int32_t x = 0; x < shape.width; ++x) {
            const Pixel expected = literal.at(colors, x, y);
            ASSERT_EQ(colorAt(result, x, y), (Color{expected.c[0], expected.c[1], expected.c[2]}))
                << x << ", " << y << ", size " << size;
            if (pixelBytes(source) == 4) {
              ASSERT_EQ(*sampleAt(result, x, y, 3), *sampleAt(source, x, y, 3));
            }
          }
        }
      }
    }
  }
}

TEST(Complexion, SkinIsInTheTest) {
  Colors colors;
  skinPicture(QPX_FORMAT_BGR24, {40, 17}, colors);
  const auto skin = std::count(colors.skin.begin(), colors.skin.end(), true);
  EXPECT_GT(skin, 40 * 17 / 2);
  EXPECT_LT(skin, 40 * 17);
}

// How a picture's luma and chroma are addressed.
struct YuvPixels {
  Picture& picture;
  bool packed;

  uint8_t* byteAt(int32_t index, int32_t y) const {
    const MBitmap bitmap = picture.bitmap();
    return bitmap.plane[0] + ptrdiff_t{y} * bitmap.pitch[0] + index;
  }
  uint8_t* luma(int32_t x, int32_t y) const { return byteAt(packed ? 2 * x : x, y); }
  uint8_t* pair(int32_t x, int32_t y) const {
    if (packed) return byteAt(2 * (x & ~1) + 1, y);
    const MBitmap bitmap = picture.bitmap();
    return bitmap.plane[2] + ptrdiff_t{y / 2} * bitmap.pitch[2] + (x & ~1);
  }
  uint8_t* u(int32_t x, int32_t y) const { return packed ? pair(x, y) : pair(x, y) + 1; }
  uint8_t* v(int32_t x, int32_t y) const { return packed ? pair(x, y) + 2 : pair(x, y); }
};

void paintSkin(const YuvPixels& to) {
  Random random(5);
  for (int32_t y = 0; y < to.picture.height(); ++y) {
    for (int32_t x = 0; x < to.picture.width(); ++x) {
      const Pixel p = skinAt(x, y, random);
      *to.luma(x, y) = static_cast<uint8_t>(lumaOf(p));
      *to.u(x, y) = static_cast<uint8_t>(cbOf(p));
      *to.v(x, y) = static_cast<uint8_t>(crOf(p));
    }
  }
}

Colors colorsOf(const YuvPixels& from) {
  Colors colors = {from.picture.width(), from.picture.height(), {}, {}};
  for (int32_t row = 0; row < colors.height; ++row) {
    for (int32_t x = 0; x < colors.width; ++x) {
      const int32_t y = *from.luma(x, row), u = *from.u(x, row), v = *from.v(x, row);
      colors.pixels.push_back(
          {{clampByte((y * 1024 + 1436 * (v - 128) + 512) >> 10),
            clampByte((y * 1024 - 352 * (u - 128) - 731 * (v - 128) + 512) >> 10),
            clampByte((y * 1024 + 1815 * (u - 128) + 512) >> 10)}});
      colors.skin.push_back(y >= 61 && isSkinChroma(u, v));
    }
  }
  return colors;
}

void expectYuv(const YuvPixels& source, const YuvPixels& result, int32_t size, const MRect& rect) {
  const Colors colors = colorsOf(source);
  const Literal literal(size);
  for (int32_t y = rect.top; y < rect.bottom; ++y) {
    for (int32_t x = rect.left; x < rect.right; ++x) {
      const Pixel expected = literal.at(colors, x, y);
      ASSERT_EQ(*result.luma(x, y), lumaOf(expected)) << x << ", " << y << ", size " << size;
      if (x % 2 != 0 || (!source.packed && y % 2 != 0)) continue;
      ASSERT_EQ(*result.u(x, y), cbOf(expected)) << x << ", " << y;
      ASSERT_EQ(*result.v(x, y), crOf(expected)) << x << ", " << y;
    }
  }
}

TEST(Complexion, OfYuvIsTheSameOnItsColors) {
  for (const uint32_t format : {QPX_FORMAT_NV21, QPX_FORMAT_YUYV}) {
    for (const Shape& shape : kShapes) {
      for (const int32_t size : kSizes) {
        Picture source(format, shape.width, shape.height, Placement::exact);
        const bool packed = format == QPX_FORMAT_YUYV;
        paintSkin({source, packed});
        Picture result = source;
        ASSERT_EQ(complexionOf(source, size)->run(source, result, wholeOf(source)), QPX_OK);
        expectYuv({source, packed}, {result, packed}, size, wholeOf(source));
        if (HasFatalFailure()) return;
      }
    }
  }
}

TEST(Complexion, OfAPartOfYuvWritesThatPartAlone) {
  for (const uint32_t format : {QPX_FORMAT_NV21, QPX_FORMAT_YUYV}) {
    for (const MRect& rect : {MRect{3, 1, 20, 8}, MRect{4, 2, 19, 7}, MRect{7, 3, 8, 4}}) {
      Picture source(format, 41, 11, Placement::exact);
      const bool packed = format == QPX_FORMAT_YUYV;
      paintSkin({source, packed});
      Picture result = source;
      result.fill(77);
      const Picture before = result;
      ASSERT_EQ(complexionOf(source, 7)->run(source, result, rect), QPX_OK);
      expectYuv({source, packed}, {result, packed}, 7, rect);
      EXPECT_FALSE(result.firstWriteOutside(before, rect));
      if (HasFatalFailure()) return;
    }
  }
}

TEST(Complexion, InPlaceGivesTheSameBytes) {
  for (const uint32_t format : {QPX_FORMAT_RGBA32, QPX_FORMAT_NV21, QPX_FORMAT_YUYV}) {
    Picture source(format, 37, 22, Placement::exact);
    if (format == QPX_FORMAT_RGBA32) {
      source.paint(2);
    } else {
      paintSkin({source, format == QPX_FORMAT_YUYV});
    }
    Picture expected = source, inPlace = source;
    ASSERT_EQ(complexionOf(source, 9)->run(source, expected, wholeOf(source)), QPX_OK);
    ASSERT_EQ(complexionOf(source, 9)->run(inPlace, inPlace, wholeOf(source)), QPX_OK);
    EXPECT_FALSE(expected.firstDifference(inPlace)) << format;
  }
}

// Two greyish skins in turn, whose mean is neither: only from luma 61 on they are smoothed.
TEST(Complexion, BeginsAtLuma61) {
  for (const int32_t luma : {60, 61}) {
    Picture source(QPX_FORMAT_NV21, 8, 8, Placement::exact);
    const YuvPixels pixels = {source, false};
    for (int32_t y = 0; y < 8; ++y) {
      for (int32_t x = 0; x < 8; ++x) {
        *pixels.luma(x, y) = static_cast<uint8_t>((x + y) % 2 == 0 ? luma : luma - 12);
        *pixels.u(x, y) = 112;
        *pixels.v(x, y) = 148;
      }
    }
    Picture result = source;
    ASSERT_EQ(complexionOf(source, 5)->run(source, result, wholeOf(source)), QPX_OK);
    const YuvPixels smoothed = {result, false};
    const bool differs = *smoothed.luma(4, 4) - *smoothed.luma(5, 4) < 11;
    EXPECT_EQ(differs, luma == 61);
  }
}

// Windows have 63 rows at most, whatever is asked for.
TEST(Complexion, HasAWidestWindow) {
  Colors colors;
  const Picture source = skinPicture(QPX_FORMAT_BGR24, {75, 70}, colors);
  const auto smoothed = [&](int32_t size) {
    const auto frame = complexionOf(source, size);
    EXPECT_EQ(record<QPXComplexionParam>(frame->stage()).radiusSize, std::clamp(size, 0, 63));
    Picture result = source;
    EXPECT_EQ(frame->run(source, result, wholeOf(source)), QPX_OK);
    return result;
  };
  const Picture widest = smoothed(63);
  EXPECT_FALSE(widest.firstDifference(smoothed(64)));
  EXPECT_FALSE(widest.firstDifference(smoothed(INT32_MAX)));
  EXPECT_TRUE(widest.firstDifference(smoothed(61)));
}

TEST(Complexion, KernelsByNameTakeTheirStagesAndFormatsAlone) {
  struct Named {
    Kernel kernel;
    uint32_t format;
  };
  constexpr Named kNamed[] = {{byName<ComplexionOptimizing_RGB>, QPX_FORMAT_BGR24},
                              {byName<ComplexionOptimizing_NV21>, QPX_FORMAT_NV21},
                              {byName<ComplexionOptimizing_YUYV>, QPX_FORMAT_YUYV}};
  for (const Named& own : kNamed) {
    Picture source(own.format, 30, 12, Placement::exact);
    source.paint(4);
    const auto frame = complexionOf(source, 7);
    Picture expected = source;
    ASSERT_EQ(frame->run(source, expected, wholeOf(source)), QPX_OK);
    for (const Named& named : kNamed) {
      Picture result = source;
      EXPECT_EQ(frame->run(named.kernel, source, result, wholeOf(source)), QPX_OK);
      const Picture& same = named.format == own.format ? expected : source;
      EXPECT_FALSE(same.firstDifference(result)) << own.format << " by " << named.format;
    }
    FailingMemory::failFrom(1);
    Picture result = source;
    EXPECT_EQ(frame->run(own.kernel, source, result, wholeOf(source)), QPX_NO_MEMORY);
    // What the engine calls has its memory from setup.
    EXPECT_EQ(frame->run(source, result, wholeOf(source)), QPX_OK);
    FailingMemory::reset();
    frame->stage().effectId = kSkinTone;
    EXPECT_EQ(frame->run(own.kernel, source, result, wholeOf(source)), QPX_BAD_PARAM);
    frame->stage().effectId = kComplexion;
  }
}

TEST(Complexion, WithoutMemoryIsRefusedAtSetup) {
  const int64_t before = FailingMemory::liveBlocks();
  for (int64_t n = 1; n <= 3; ++n) {
    FailingMemory::failOnly(n);
    {
      KernelFrame frame(QPX_FORMAT_BGR24);
      frame.stage().inWidth = frame.stage().inHeight = 16;
      EXPECT_EQ(frame.setUp(kComplexion), QPX_NO_MEMORY) << n;
    }
    FailingMemory::reset();
    EXPECT_EQ(FailingMemory::liveBlocks(), before) << n;
  }
}

// The look of a picture, at full intensity: the inks, then 14 percent of each curve.
Picture literalSkinTone(const Picture& source) {
  constexpr uint8_t kXs[] = {0, 96, 190, 255};
  constexpr uint8_t kYs[3][4] = {{4, 124, 218, 255}, {2, 112, 208, 253}, {2, 106, 200, 248}};
  uint8_t curve[3][256];
  for (int c = 0; c < 3; ++c) EXPECT_EQ(BuildSplineCurve(kXs, kYs[c], 4, curve[c]), 0);
  QPXSelectiveColorParam param = {};
  param.amounts[0][0] = -16, param.amounts[0][1] = -14;
  param.amounts[1][0] = -20, param.amounts[1][1] = 3;
  param.amounts[2][0] = -10, param.amounts[2][1] = -18;
  param.amounts[3][0] = -6, param.amounts[3][1] = -4;
  Picture look = source;
  EXPECT_EQ(frameOf(source, kSelectiveColor, param)->run(source, look, wholeOf(source)), QPX_OK);
  for (int32_t y = 0; y < look.height(); ++y) {
    for (int32_t x = 0; x < look.width(); ++x) {
      const Color c = colorAt(look, x, y);
      const auto toned = [&](int channel, int32_t v) {
        return (86 * v + 14 * curve[channel][v]) / 100;
      };
      setColor(look, x, y, {toned(0, c.r), toned(1, c.g), toned(2, c.b)});
    }
  }
  return look;
}

// Less than nothing moves away from the look.
constexpr int32_t kIntensities[] = {0, 40, 100, 150, -1, -80, -100000, INT32_MIN};

TEST(SkinTone, IsItsInksAndCurvesAtItsIntensity) {
  for (const uint32_t format : {QPX_FORMAT_RGB24, QPX_FORMAT_BGRA32}) {
    Colors colors;
    const Picture source = skinPicture(format, {60, 20}, colors);
    const Picture look = literalSkinTone(source);
    for (const int32_t intensity : kIntensities) {
      QPXFilterRecord record = {};
      record.intensity = intensity;
      const auto frame = frameOf(source, kSkinTone, record);
      Picture result = source, named = source;
      ASSERT_EQ(frame->run(source, result, wholeOf(source)), QPX_OK);
      ASSERT_EQ(frame->run(byName<SkinTone_RGB>, source, named, wholeOf(source)), QPX_OK);
      EXPECT_FALSE(result.firstDifference(named)) << intensity;
      const int64_t k = std::min(intensity, 100);
      const auto mixed = [&](int32_t of, int32_t with) {
        if (k == 100) return of;
        return static_cast<int32_t>(
            std::clamp<int64_t>(((k * of + (100 - k) * with) * 10486 + 0x80000) >> 20, 0, 255));
      };
      for (int32_t y = 0; y < 20; ++y) {
        for (int32_t x = 0; x < 60; ++x) {
          const Color of = colorAt(look, x, y), with = colorAt(source, x, y);
          ASSERT_EQ(colorAt(result, x, y),
                    (Color{mixed(of.r, with.r), mixed(of.g, with.g), mixed(of.b, with.b)}))
              << x << ", " << y << " at " << intensity;
        }
      }
    }
  }
}

TEST(SkinTone, ByNameTakesItsStagesAndFormatsAlone) {
  QPXFilterRecord record = {};
  record.intensity = 70;
  Colors colors;
  const Picture source = skinPicture(QPX_FORMAT_BGR24, {30, 10}, colors);
  const auto frame = frameOf(source, kSkinTone, record);
  Picture result = source;
  frame->stage().effectId = kComplexion;
  EXPECT_EQ(frame->run(byName<SkinTone_RGB>, source, result, wholeOf(source)), QPX_BAD_PARAM);
  EXPECT_FALSE(source.firstDifference(result));
  frame->stage().effectId = kSkinTone;
  expectOtherFormatsLeft(byName<SkinTone_RGB>, kSkinTone, record);
}

using Whiten = int32_t (*)(const MBitmap*, const uint8_t*, int32_t, const uint8_t*, int32_t);
constexpr Whiten kWhitens[] = {_SkinWhitenByMask_YUV420_VUVU, _SkinWhitenByMask_YUV420_VUVU_neon,
                               _SkinWhitenByMask_YUV420_VUVU_ARMv7};

struct Preview {
  Picture picture;
  std::vector<uint8_t> mask, target;

  Preview(int32_t width, int32_t height)
      : picture(QPX_FORMAT_NV21, width, height, Placement::guarded),
        mask(static_cast<size_t>(width * height)),
        target(256) {
    Random random(3);
    picture.paint(6);
    for (uint8_t& m : mask) m = random.between(0, 3) == 0 ? 255 : random.byte();
    for (size_t i = 0; i < 256; ++i) target[i] = static_cast<uint8_t>(255 - (255 - i) * 3 / 4);
    const YuvPixels pixels = {picture, false};
    for (int32_t x = 0; x < width; ++x) *pixels.u(x, 0) = random.byte();
    for (int32_t x = 0; x < width; ++x) *pixels.v(x, 0) = random.byte();
  }

  int32_t run(Whiten whiten, int32_t strength) {
    const MBitmap bitmap = picture.bitmap();
    return whiten(&bitmap, mask.data(), picture.width(), target.data(), strength);
  }
};

TEST(SkinWhitening, IsTheFormula) {
  for (const Whiten whiten : kWhitens) {
    for (const Shape& shape : {Shape{64, 34}, Shape{7, 5}, Shape{2, 2}}) {
      for (const int32_t strength : {0, 90, 256, 1000, -256, INT32_MAX, INT32_MIN}) {
        Preview preview(shape.width, shape.height);
        Picture source = preview.picture;
        ASSERT_EQ(preview.run(whiten, strength), QPX_OK);
        const YuvPixels from = {source, false}, to = {preview.picture, false};
        for (int32_t y = 0; y < shape.height; ++y) {
          for (int32_t x = 0; x < shape.width; ++x) {
            const bool whole = x / 2 < shape.width / 2 && y / 2 < shape.height / 2;
            int32_t s = 0;
            const auto at = static_cast<size_t>((y & ~1) * shape.width + (x & ~1));
            if (whole) {
              const auto below = at + static_cast<size_t>(shape.width);
              s = preview.mask[at] + preview.mask[at + 1] + preview.mask[below] +
                  preview.mask[below + 1];
            }
            const int32_t t = s >> 2, luma = *from.luma(x, y);
            const int64_t g = (int64_t{strength} * s) >> 10;
            ASSERT_EQ(*to.luma(x, y),
                      (luma * (256 - t) + preview.target[static_cast<size_t>(luma)] * t) >> 8);
            const int32_t u = *from.u(x, y), v = *from.v(x, y);
            const int64_t du = std::max<int64_t>(g * (((u - 128) * 51 >> 7) - u + 128) >> 8, 0);
            const int64_t dv = std::max<int64_t>(g * ((332 * (v - 128) >> 8) - v + 128) >> 8, 0);
            ASSERT_EQ(*to.u(x, y), u < 128 ? u + std::min<int64_t>(du, 9) : u);
            ASSERT_EQ(*to.v(x, y),
                      std::min<int64_t>(v >= 129 ? v + std::min<int64_t>(dv, 4) : v, 255));
          }
        }
      }
    }
  }
}

TEST(SkinWhitening, OfABlackMaskOrNoBlockChangesNothing) {
  for (const Whiten whiten : kWhitens) {
    Preview preview(31, 9);
    std::fill(preview.mask.begin(), preview.mask.end(), uint8_t{0});
    const Picture before = preview.picture;
    ASSERT_EQ(preview.run(whiten, 256), QPX_OK);
    EXPECT_FALSE(before.firstDifference(preview.picture));
    MBitmap none = {};
    EXPECT_EQ(whiten(&none, preview.mask.data(), 0, preview.target.data(), 256), QPX_OK);
    EXPECT_EQ(whiten(&none, nullptr, 0, nullptr, 256), QPX_OK) << "nothing to look at";
    EXPECT_EQ(whiten(nullptr, preview.mask.data(), 0, preview.target.data(), 256), QPX_BAD_PARAM);
    none.width = none.height = 8;
    EXPECT_EQ(whiten(&none, preview.mask.data(), 8, preview.target.data(), 256), QPX_BAD_PARAM);
    const MBitmap bitmap = before.bitmap();
    EXPECT_EQ(whiten(&bitmap, nullptr, 31, preview.target.data(), 256), QPX_BAD_PARAM);
    EXPECT_EQ(whiten(&bitmap, preview.mask.data(), 31, nullptr, 256), QPX_BAD_PARAM);
  }
}

TEST(SkinWhitening, KeepsNeutralChromaAndItsCaps) {
  Preview preview(4, 2);
  std::fill(preview.mask.begin(), preview.mask.end(), uint8_t{255});
  const YuvPixels pixels = {preview.picture, false};
  *pixels.u(0, 0) = 128, *pixels.v(0, 0) = 128;
  *pixels.u(2, 0) = 60, *pixels.v(2, 0) = 200;
  ASSERT_EQ(preview.run(_SkinWhitenByMask_YUV420_VUVU, 256), QPX_OK);
  EXPECT_EQ(*pixels.u(0, 0), 128);
  EXPECT_EQ(*pixels.v(0, 0), 128);
  EXPECT_EQ(*pixels.u(2, 0), 69);
  EXPECT_EQ(*pixels.v(2, 0), 204);
}

}  // namespace
}  // namespace qpx::testing
