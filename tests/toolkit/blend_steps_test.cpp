// Steps on pixel runs against the exported functions, sample by sample.
#include <gtest/gtest.h>
#include <qpx/blend.h>

#include <algorithm>

#include "support/picture.h"
#include "toolkit/steps.h"

namespace qpx {
namespace {

using testing::Random;

constexpr float kOpacities[] = {0.0f, 0.3f, 0.5f, 0.8f, 1.0f};

PixelRun noiseRun(uint64_t seed, int32_t count) {
  Random random(seed);
  PixelRun run;
  run.x = 3;
  run.y = 2;
  run.count = count;
  for (int32_t i = 0; i < kRunLength; ++i) {
    run.r[i] = random.byte();
    run.g[i] = random.byte();
    run.b[i] = random.byte();
    run.a[i] = random.byte();
  }
  return run;
}

TextureRun noiseTexels(uint64_t seed) {
  Random random(seed);
  TextureRun texels;
  for (uint8_t* plane : {texels.r, texels.g, texels.b, texels.a}) {
    for (int32_t i = 0; i < kRunLength; ++i) plane[i] = random.byte();
  }
  return texels;
}

uint32_t reference(Blend blend, uint32_t top, uint32_t base, uint32_t mask, float opacity) {
  switch (blend) {
    case Blend::screen:
      return screenPixel4(top, base, mask, opacity);
    case Blend::overlay:
      return overlayPixel4(top, base, mask, opacity);
    case Blend::soft:
      return softPixel4(top, base, mask, opacity);
    case Blend::multiply:
      return multiplyPixel(top, base, mask, opacity);
    default:
      return normalPixel(top, base, mask, opacity);
  }
}

constexpr Blend kBlends[] = {Blend::normal, Blend::screen, Blend::overlay, Blend::soft,
                             Blend::multiply};

template <typename Expected>
void expectRun(const PixelRun& before, const PixelRun& after, const Expected& expected) {
  for (int32_t i = 0; i < kRunLength; ++i) {
    const bool inRun = i < before.count;
    const Rgb color = {before.r[i], before.g[i], before.b[i]};
    const Rgb made = inRun ? expected(i, color) : color;
    ASSERT_EQ(after.r[i], made.red) << "red " << i;
    ASSERT_EQ(after.g[i], made.green) << "green " << i;
    ASSERT_EQ(after.b[i], made.blue) << "blue " << i;
    ASSERT_EQ(after.a[i], before.a[i]) << "alpha " << i;
  }
}

Rgb rgb(uint32_t r, uint32_t g, uint32_t b) {
  return {static_cast<uint8_t>(r), static_cast<uint8_t>(g), static_cast<uint8_t>(b)};
}

TEST(Steps, LayersAreTheExportedBlends) {
  for (const Blend blend : kBlends) {
    for (const float opacity : kOpacities) {
      for (const Coverage coverage : {kOpaque, kByAlpha}) {
        for (const int32_t count : {1, 63, 64, 100, 256}) {
          const TextureRun t = noiseTexels(static_cast<uint64_t>(count));
          const PixelRun before = noiseRun(7, count);
          PixelRun run = before;
          layTexels(run, blend, t, coverage, opacity);
          expectRun(before, run, [&](int32_t i, const Rgb& c) {
            const uint32_t mask = coverage == kByAlpha ? t.a[i] : 255;
            return rgb(reference(blend, t.r[i], c.red, mask, opacity),
                       reference(blend, t.g[i], c.green, mask, opacity),
                       reference(blend, t.b[i], c.blue, mask, opacity));
          });
          if (HasFatalFailure()) return;
        }
      }
    }
  }
}

// A texture of noise with a texel for every pixel, on a stage of its size.
struct Layered {
  Layered() : texture(QPX_FORMAT_RGBA32, 260, 4, testing::Placement::exact) {
    texture.paint(6);
    bitmap = texture.bitmap();
    stage.inWidth = 260;
    stage.inHeight = 4;
  }

  TextureLayer layer() const { return TextureLayer(bitmap, stage, Placement::stretch); }

  testing::Picture texture;
  MBitmap bitmap;
  Stage stage = {};
};

TEST(Steps, LayersOfTexturesTakeTheTexelsUnderTheRun) {
  const Layered layered;
  using Step = void (*)(PixelRun&, const TextureLayer&, Coverage, float);
  const Step steps[] = {normalLayer, screenLayer, overlayLayer, softLayer, multiplyLayer};
  for (size_t k = 0; k < std::size(steps); ++k) {
    const PixelRun before = noiseRun(8, 250);
    PixelRun run = before;
    steps[k](run, layered.layer(), kByAlpha, 0.8f);
    expectRun(before, run, [&](int32_t i, const Rgb& c) {
      const testing::Rgba t = layered.texture.rgb(3 + i, 2);
      return rgb(reference(kBlends[k], t.r, c.red, t.a, 0.8f),
                 reference(kBlends[k], t.g, c.green, t.a, 0.8f),
                 reference(kBlends[k], t.b, c.blue, t.a, 0.8f));
    });
    if (HasFatalFailure()) return;
  }
}

TEST(Steps, PairsOfTexturesAndRuns) {
  const Layered layered;
  using Step = void (*)(PixelRun&, const TextureLayer&);
  using Pixel = uint32_t (*)(uint32_t, uint32_t);
  const struct {
    Step step;
    Pixel pixel;
  } pairs[] = {{multiplyShiftLayer, Multiply}, {lightenLayer, lighten}, {darkenLayer, darken}};
  for (const auto& pair : pairs) {
    const PixelRun before = noiseRun(9, 130);
    PixelRun run = before;
    pair.step(run, layered.layer());
    expectRun(before, run, [&](int32_t i, const Rgb& c) {
      const testing::Rgba t = layered.texture.rgb(3 + i, 2);
      return rgb(pair.pixel(t.r, c.red), pair.pixel(t.g, c.green), pair.pixel(t.b, c.blue));
    });
    if (HasFatalFailure()) return;
  }
}

TEST(SolidTables, AreTheExportedBlendsOfOneColor) {
  for (const Blend blend : kBlends) {
    for (const float opacity : kOpacities) {
      for (uint32_t top = 0; top < 256; top += 17) {
        const ToneTable table = solidTable(blend, static_cast<uint8_t>(top), opacity);
        for (uint32_t base = 0; base < 256; ++base) {
          ASSERT_EQ(table[base], reference(blend, top, base, 255, opacity));
        }
      }
    }
  }
}

TEST(SolidTables, OfChainsAreTheirStepsInOrder) {
  const ToneTable curve = tabulate([](int32_t i) { return i * i / 255; });
  const ColorTables chained = chain(
      chain(solidTables(Blend::multiply, {255, 240, 179}, 0.3f), forAll(mixTable(curve, 0.5f))),
      forAll(selfTable(Blend::soft, curve, 0.7f)));
  const PixelRun before = noiseRun(3, 256);
  PixelRun run = before;
  applyTables(run, chained);
  const auto sample = [&](uint32_t top, uint32_t c) {
    c = multiplyPixel(top, c, 255, 0.3f);
    c = normalPixel(c * c / 255, c, 255, 0.5f);
    return softPixel4(c * c / 255, c, 255, 0.7f);
  };
  expectRun(before, run, [&](int32_t, const Rgb& c) {
    return rgb(sample(255, c.red), sample(240, c.green), sample(179, c.blue));
  });
  PixelRun same = before;
  applyTable(same, curve);
  expectRun(before, same, [&](int32_t, const Rgb& c) {
    return rgb(c.red * c.red / 255u, c.green * c.green / 255u, c.blue * c.blue / 255u);
  });
}

TEST(Steps, TintsAreTheExportedOnes) {
  constexpr HueWeights<double> kWeights = {0.4, 0.6, 0.4, 0.6, 0.2, 0.8};
  for (const Rgb tint : {Rgb{143, 130, 121}, Rgb{20, 200, 250}, Rgb{255, 0, 0}}) {
    const PixelRun before = noiseRun(4, 200);
    PixelRun run = before;
    tintByHues(run, kWeights, keptTintTables(tint));
    expectRun(before, run, [&](int32_t, Rgb c) {
      ApplyBlackAndWhiteWithTint(0.4, 0.6, 0.4, 0.6, 0.2, 0.8, &c.red, &c.green, &c.blue, tint.red,
                                 tint.green, tint.blue);
      return c;
    });
    run = before;
    tintByLuma(run, clampedTintTables(tint));
    expectRun(before, run, [&](int32_t, Rgb c) {
      ApplyLumaTint(&c.red, &c.green, &c.blue, tint.red, tint.green, tint.blue);
      return c;
    });
  }
}

TEST(Steps, GreysAreWhatTheySay) {
  const PixelRun before = noiseRun(5, 256);
  uint8_t grey[kRunLength];
  PixelRun run = before;
  hueGrey(run, {0.5, 0.7, -0.4, 0.6, 1.2, 0.8}, grey);
  setGrey(run, grey);
  expectRun(before, run, [&](int32_t, const Rgb& c) {
    const uint32_t v = ApplyBlackAndWhite(0.5, 0.7, -0.4, 0.6, 1.2, 0.8, c.red, c.green, c.blue);
    return rgb(v, v, v);
  });
  chalkBoardGrey(before, grey);
  for (int32_t i = 0; i < 256; ++i) {
    ASSERT_EQ(grey[i], ApplyBlackAndWhiteForChalkBoard(before.r[i], before.g[i], before.b[i]));
  }
  lumaGrey(before, kLooksLuma, grey);
  for (int32_t i = 0; i < 256; ++i) {
    ASSERT_EQ(grey[i], (77 * before.r[i] + 150 * before.g[i] + 29 * before.b[i] + 128) >> 8);
  }
}

int shiftDown(int v) { return v >= 0 ? v / 1024 : -((-v + 1023) / 1024); }

TEST(Steps, SaturationMovesAboutLightness) {
  for (const int32_t amount : {-307, -296, 440, 0, 511, -600}) {
    const PixelRun before = noiseRun(6, 256);
    PixelRun apart = before, together = before;
    saturate(apart, amount);
    desaturate(together, amount);
    const auto moved = [&](const Rgb& c, int sign) {
      const int most = std::max({c.red, c.green, c.blue});
      const int least = std::min({c.red, c.green, c.blue});
      const int l = (most + least) / 2;
      const auto channel = [&](int v) {
        return static_cast<uint8_t>(std::clamp(v + sign * shiftDown(amount * (v - l)), 0, 255));
      };
      return Rgb{channel(c.red), channel(c.green), channel(c.blue)};
    };
    expectRun(before, apart, [&](int32_t, const Rgb& c) { return moved(c, 1); });
    expectRun(before, together, [&](int32_t, const Rgb& c) { return moved(c, -1); });
  }
}

TEST(Steps, FalloffDarkensFromASumOf129On) {
  int32_t rows[8] = {}, columns[300] = {};
  for (int32_t i = 0; i < 300; ++i) columns[i] = 4 * i;
  rows[2] = 20;
  const PixelRun before = noiseRun(6, 256);
  PixelRun run = before;
  radialFalloff(run, {rows, columns});
  expectRun(before, run, [&](int32_t i, const Rgb& c) {
    const int s = 20 + 4 * (3 + i);
    if (s < 129) return c;
    const uint32_t w = static_cast<uint32_t>(std::max(512 - (((s - 128) * (s - 128)) >> 10), 0));
    return rgb(c.red * w >> 9, c.green * w >> 9, c.blue * w >> 9);
  });
  EXPECT_EQ(scaleByFalloff(200, falloffWeight(100, 28)), 200);
  EXPECT_EQ(falloffWeight(400, 400), 512 - 441);  // 672 * 672 / 1024 = 441
  EXPECT_EQ(falloffWeight(2000, 0), 0);
}

TEST(Steps, OpacityIsTheIntensityOfTheRecord) {
  Stage stage = {};
  stage.record = stage.param.bytes;
  auto& record = editRecord<QPXFilterRecord>(stage);
  for (const auto& [intensity, opacity] :
       {std::pair{0, 0.0f}, {30, 0.3f}, {100, 1.0f}, {150, 1.0f}, {-5, 0.0f}}) {
    record.intensity = intensity;
    EXPECT_EQ(opacityOf(stage), opacity);
  }
}

}  // namespace
}  // namespace qpx
