// Placements of textures against their rules, pixel by pixel.
#include <gtest/gtest.h>

#include <algorithm>
#include <vector>

#include "support/kernel_frame.h"
#include "toolkit/texture_layer.h"

namespace qpx::testing {
namespace {

struct Texel {
  int64_t column, row;
  bool operator==(const Texel&) const = default;
};

struct Case {
  int64_t w, h;  // texture
  int64_t W, H;  // picture
};

constexpr Case kCases[] = {
    {256, 256, 100, 60},  {256, 256, 1, 1},   {600, 800, 300, 300},    {1, 1, 50, 40},
    {500, 667, 667, 500}, {333, 77, 77, 333}, {3, 5, 640, 480},        {2000, 3, 9, 700},
    {640, 427, 640, 427}, {360, 360, 701, 4}, {300, 400, 4, 701},      {1000, 1, 1, 1000},
    {600, 600, 4096, 16}, {7, 900, 500, 3},   {956, 2973, 146, 37281}, {7000, 6000, 6000, 6000}};

Texel stretched(const Case& c, int64_t x, int64_t y) {
  return {(x * ((c.w << 20) / c.W)) >> 20, (y * ((c.h << 20) / c.H)) >> 20};
}

Texel stretchedToEdges(const Case& c, int64_t x, int64_t y) {
  const int64_t stepX = c.W == 1 ? 0 : ((c.w - 1) << 20) / (c.W - 1);
  const int64_t stepY = c.H == 1 ? 0 : ((c.h - 1) << 20) / (c.H - 1);
  return {(x * stepX) >> 20, (y * stepY) >> 20};
}

Texel stretchedWhole(const Case& c, int64_t x, int64_t y) { return {c.w * x / c.W, c.h * y / c.H}; }

Texel centred(const Case& c, int64_t x, int64_t y) {
  int64_t width = c.w, height = c.h, xOff = 0, yOff = 0;
  if (c.h * c.W < c.w * c.H) {
    width = c.h * c.W / c.H;
    xOff = (c.w - width) / 2;
  } else {
    height = c.w * c.H / c.W;
    yOff = (c.h - height) / 2;
  }
  const float row = static_cast<float>(y) * static_cast<float>(height) / static_cast<float>(c.H) +
                    static_cast<float>(yOff);
  return {x * width / c.W + xOff, static_cast<int64_t>(row)};
}

Texel clamped(const Case& c, const Texel& t) {
  return {std::clamp<int64_t>(t.column, 0, c.w - 1), std::clamp<int64_t>(t.row, 0, c.h - 1)};
}

Texel anchored(const Case& c, int64_t x, int64_t y, bool mirror) {
  int64_t step, cut = 0;
  if (c.H * c.w <= c.W * c.h) {
    step = (c.w << 20) / c.W;
  } else {
    cut = c.w - c.h * c.W / c.H;
    step = (c.h << 20) / c.H;
  }
  const int64_t column = (x * step) >> 20;
  return {mirror ? c.w - cut - 1 - column : column, (y * step) >> 20};
}

Texel anchoredBelow(const Case& c, int64_t x, int64_t y) {
  int64_t step, cut = 0;
  if (c.W * c.h <= c.H * c.w) {
    step = (c.h << 20) / c.H;
  } else {
    cut = c.h - c.w * c.H / c.W;
    step = (c.w << 20) / c.W;
  }
  return {(x * step) >> 20, cut + ((y * step) >> 20)};
}

// A picture's size on a stage, and a texture of a size without pixels.
struct Layout {
  explicit Layout(const Case& c) {
    stage.inWidth = stage.outWidth = static_cast<int32_t>(c.W);
    stage.inHeight = stage.outHeight = static_cast<int32_t>(c.H);
    texture.format = QPX_FORMAT_RGBA32;
    texture.width = static_cast<int32_t>(c.w);
    texture.height = static_cast<int32_t>(c.h);
  }

  TextureLayer layer(qpx::Placement placement, Mirror mirror = {}) const {
    return TextureLayer(texture, stage, placement, mirror);
  }

  Stage stage = {};
  MBitmap texture = {};
};

template <typename Rule>
void expectRule(qpx::Placement placement, Mirror mirror, const Rule& rule) {
  for (const Case& c : kCases) {
    const Layout layout(c);
    const TextureLayer layer = layout.layer(placement, mirror);
    for (int64_t y = 0; y<c.H; y += c.H> 50 ? 7 : 1) {
      for (int64_t x = 0; x<c.W; x += c.W> 50 ? 5 : 1) {
        const Texel actual = {layer.columnAt(static_cast<int32_t>(x)),
                              layer.rowAt(static_cast<int32_t>(y))};
        ASSERT_EQ(clamped(c, rule(c, x, y)), actual)
            << "texture " << c.w << " x " << c.h << ", picture " << c.W << " x " << c.H << ", at "
            << x << ", " << y << ": " << actual.column << ", " << actual.row;
      }
    }
  }
}

TEST(TextureLayer, StretchesToThePicture) {
  expectRule(qpx::Placement::stretch, {}, stretched);
  expectRule(qpx::Placement::stretchEdges, {}, stretchedToEdges);
  expectRule(qpx::Placement::stretchWhole, {}, stretchedWhole);
}

TEST(TextureLayer, CoversFromTheMiddle) { expectRule(qpx::Placement::coverCentred, {}, centred); }

TEST(TextureLayer, CoversFromACorner) {
  expectRule(qpx::Placement::coverAnchored, {},
             [](const Case& c, int64_t x, int64_t y) { return anchored(c, x, y, false); });
  expectRule(qpx::Placement::coverAnchored, {.across = true},
             [](const Case& c, int64_t x, int64_t y) { return anchored(c, x, y, true); });
  expectRule(qpx::Placement::coverBottom, {}, anchoredBelow);
}

TEST(TextureLayer, MirroredStretchTurnsTheTexture) {
  for (const auto placement :
       {qpx::Placement::stretch, qpx::Placement::stretchEdges, qpx::Placement::stretchWhole}) {
    expectRule(placement, {.across = true, .down = true},
               [placement](const Case& c, int64_t x, int64_t y) {
                 const Texel t = placement == qpx::Placement::stretch ? stretched(c, x, y)
                                 : placement == qpx::Placement::stretchEdges
                                     ? stretchedToEdges(c, x, y)
                                     : stretchedWhole(c, x, y);
                 return Texel{c.w - 1 - t.column, c.h - 1 - t.row};
               });
  }
}

// What shows of a cut texture is the same part either way round.
TEST(TextureLayer, MirroredCoverShowsTheSamePart) {
  for (const Case& c : {Case{600, 300, 100, 100}, Case{300, 600, 100, 100}}) {
    const Layout layout(c);
    for (const auto placement : {qpx::Placement::coverCentred, qpx::Placement::coverAnchored,
                                 qpx::Placement::coverBottom}) {
      const TextureLayer as = layout.layer(placement);
      const TextureLayer turned = layout.layer(placement, {.across = true, .down = true});
      for (int32_t at = 0; at < 100; ++at) {
        EXPECT_NEAR(as.columnAt(at), turned.columnAt(99 - at), 3);
        EXPECT_NEAR(as.rowAt(at), turned.rowAt(99 - at), 3);
      }
    }
  }
}

TEST(TextureLayer, CutsEquallyOrOnOneSide) {
  const Layout layout({600, 300, 100, 100});
  const TextureLayer centre = layout.layer(qpx::Placement::coverCentred);
  EXPECT_EQ(centre.columnAt(0), 150);
  EXPECT_EQ(centre.columnAt(99), 447);
  const TextureLayer anchor = layout.layer(qpx::Placement::coverAnchored);
  EXPECT_EQ(anchor.columnAt(0), 0);
  EXPECT_EQ(anchor.columnAt(99), 297);
  const Layout upright({300, 600, 100, 100});
  const TextureLayer below = upright.layer(qpx::Placement::coverBottom);
  EXPECT_EQ(below.rowAt(0), 300);
  EXPECT_EQ(below.rowAt(99), 597);
}

TEST(TextureLayer, FlagsOfTheRecordTurnIt) {
  KernelFrame frame(QPX_FORMAT_BGR24);
  QPXFilterRecord record = {};
  record.flipY = 3;
  std::memcpy(frame.stage().record, &record, sizeof record);
  EXPECT_FALSE(mirrorOf(frame.stage()).across);
  EXPECT_TRUE(mirrorOf(frame.stage()).down);
}

// Texels of runs, from textures of every kind that effects decode.
TEST(TextureLayer, LoadsTexelsOfEveryFormat) {
  for (const uint32_t format : {QPX_FORMAT_RGBA32, QPX_FORMAT_BGRA32, QPX_FORMAT_RGB24,
                                QPX_FORMAT_BGR24, QPX_FORMAT_GREY8}) {
    Picture texture(format, 41, 23, Placement::exact);
    scramble(texture, 5);
    const MBitmap bitmap = texture.bitmap();
    Stage stage = {};
    stage.inWidth = 700;
    stage.inHeight = 9;
    for (const auto placement :
         {qpx::Placement::stretch, qpx::Placement::stretchWhole, qpx::Placement::coverAnchored}) {
      for (const Mirror mirror : {Mirror{}, Mirror{true, true}}) {
        const TextureLayer layer(bitmap, stage, placement, mirror);
        TextureRun texels;
        for (const int32_t x : {0, 3, 444}) {
          for (int32_t y = 0; y < 9; ++y) {
            layer.load(x, y, 256, texels);
            for (int32_t i = 0; i < 256; ++i) {
              const int32_t u = layer.columnAt(x + i), v = layer.rowAt(y);
              Rgba expected;
              if (format == QPX_FORMAT_GREY8) {
                const auto grey = static_cast<uint8_t>(texture.yuv(0, u, v));
                expected = {grey, grey, grey, 255};
              } else {
                expected = texture.rgb(u, v);
                if (bytesOf(format) == 3) expected.a = 255;
              }
              ASSERT_EQ(expected, (Rgba{texels.r[i], texels.g[i], texels.b[i], texels.a[i]}))
                  << formatCase(format).name << " at " << x + i << ", " << y;
            }
          }
        }
      }
    }
  }
}

// A row of texels that say their own column, enlarged and reduced: runs are worked out in steps,
// single columns on their own.
TEST(TextureLayer, LoadsTheColumnsThatItNames) {
  for (const int32_t texels : {1, 3, 15, 16, 17, 63, 341, 1076}) {
    std::vector<uint8_t> row(static_cast<size_t>(texels) * 4);
    for (int32_t u = 0; u < texels; ++u) {
      row[static_cast<size_t>(u) * 4] = static_cast<uint8_t>(u);
      row[static_cast<size_t>(u) * 4 + 1] = static_cast<uint8_t>(u >> 8);
    }
    const MBitmap texture = {QPX_FORMAT_RGBA32, texels, 1, {4 * texels}, {row.data()}};
    for (const int32_t width : {1, 2, 7, 100, 255, 256, 720, 1077, 4000, 65537, 5000011}) {
      Stage stage = {};
      stage.inWidth = width;
      stage.inHeight = 2;
      for (const auto placement :
           {qpx::Placement::stretch, qpx::Placement::stretchEdges, qpx::Placement::stretchWhole,
            qpx::Placement::coverCentred, qpx::Placement::coverAnchored}) {
        for (const bool across : {false, true}) {
          const TextureLayer layer(texture, stage, placement, {.across = across});
          for (const int32_t x : {0, 5, 256, width / 2, width - 256}) {
            const int32_t count = std::min(width - x, 256);
            if (x < 0 || count < 1) continue;
            TextureRun run;
            layer.load(x, 0, count, run);
            for (int32_t i = 0; i < count; ++i) {
              ASSERT_EQ(run.r[i] + 256 * run.g[i], layer.columnAt(x + i))
                  << texels << " texels, " << width << " pixels, at " << x << " + " << i;
            }
          }
        }
      }
    }
  }
}

TEST(TextureLayer, WritesNoTexelBehindTheRun) {
  Picture texture(QPX_FORMAT_RGBA32, 4, 4, Placement::exact);
  texture.paint(1);
  const MBitmap bitmap = texture.bitmap();
  Stage stage = {};
  stage.inWidth = stage.inHeight = 64;
  TextureRun texels;
  std::memset(&texels, 0x5A, sizeof texels);
  TextureLayer(bitmap, stage, qpx::Placement::stretch).load(0, 0, 5, texels);
  for (const uint8_t* plane : {texels.r, texels.g, texels.b, texels.a}) EXPECT_EQ(plane[5], 0x5A);
}

TEST(TextureLayer, WithoutPixelsIsTransparentBlack) {
  Stage stage = {};
  stage.inWidth = stage.inHeight = 8;
  for (const MBitmap& broken : {MBitmap{}, MBitmap{QPX_FORMAT_RGBA32, 4, 4, {16, 0, 0}, {}}}) {
    TextureRun texels;
    std::memset(&texels, 0x5A, sizeof texels);
    TextureLayer(broken, stage, qpx::Placement::coverCentred).load(0, 0, 8, texels);
    for (const uint8_t* plane : {texels.r, texels.g, texels.b, texels.a}) EXPECT_EQ(plane[7], 0);
  }
}

}  // namespace
}  // namespace qpx::testing
