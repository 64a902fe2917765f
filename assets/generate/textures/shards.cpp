// A broken mirror in layers: each texture holds some of its pieces, and together they never
// overlap. Alpha is the piece; colour is how the light falls on it.
#include "kit/facets.h"

#include "kit/shapes.h"
#include "textures/families.h"

namespace qpx::drawing {
namespace {

// Light across a piece of mirror: a gradient in a direction of its own, a bright bevel on the lit
// side.
Color mirrorLight(const Spot& s, const Quad& piece, float depth, uint32_t seed) {
  const Point facing = direction(2 * kPi * unitHash(1, 0, seed));
  const float across = dot(s.p - middleOf(piece), facing);
  const float tone = mix(0.45f, 0.75f, unitHash(2, 0, seed)) + 0.5f * across;
  const float bevel = bell((depth - 0.006f) / 0.008f);
  return grey(clamp01(tone + 0.45f * bevel));
}

struct Mirror {
  Point impact;
  int sectors, rings;
  float kept;   ///< share of the pieces that any layer holds
  float scale;  ///< of the pieces, leaving gaps
  uint32_t seed;
};

void drawShards(Canvas& canvas, const Mirror& mirror, int layer, int layers) {
  canvas.each([](const Spot&, Color& c) { c = grey(0.7f, 0); });
  const std::vector<Quad> pieces =
      fracture(canvas, mirror.impact, mirror.sectors, mirror.rings, mirror.seed);
  for (size_t i = 0; i < pieces.size(); ++i) {
    const int index = static_cast<int>(i);
    const bool here =
        static_cast<int>(hashOf(index, 5, mirror.seed) % static_cast<uint32_t>(layers)) == layer;
    if (!here || unitHash(index, 6, mirror.seed) > mirror.kept) {
      continue;
    }
    const auto seed = mirror.seed + 100 + static_cast<uint32_t>(index);
    const Quad piece = moved(pieces[i], mirror.scale, 0.05f * (unitHash(3, 0, seed) - 0.5f), {});
    const float strength = mix(0.70f, 1.0f, unitHash(4, 0, seed));
    fillPolygon(canvas, piece, [&](const Spot& s, float depth) {
      Color light = mirrorLight(s, piece, depth, seed);
      light.a = strength;
      return light;
    });
  }
}

constexpr Mirror kInvert{{0.15f, -0.10f}, 13, 4, 0.9f, 0.96f, 1701};
constexpr Mirror kGrey{{-0.25f, 0.20f}, 17, 4, 0.95f, 0.97f, 1801};

template <int kLayer>
void drawInvert(Canvas& canvas) {
  drawShards(canvas, kInvert, kLayer - 1, 6);
}

template <int kLayer>
void drawBW(Canvas& canvas) {
  drawShards(canvas, kGrey, kLayer - 1, 9);
}

// The cracks themselves, with the light they catch.
void drawInvertCracks(Canvas& canvas) {
  canvas.each([](const Spot&, Color& c) { c = grey(1, 0); });
  for (const Quad& piece :
       fracture(canvas, kInvert.impact, kInvert.sectors, kInvert.rings, kInvert.seed)) {
    const auto seed = static_cast<uint32_t>(piece[1].x * 4000 + 20000);
    for (size_t i = 0; i < 2; ++i) {
      const Point a = piece[i];
      const Point b = piece[i + 1];
      // Unlike a spider's web, glass does not break all the way round.
      if (i == 1 && unitHash(0, 0, seed) > 0.4f) {
        continue;
      }
      const float width = mix(0.0015f, 0.006f, unitHash(static_cast<int>(i), 1, seed));
      canvas.eachNear((a + b) * 0.5f, length(b - a) / 2 + 0.03f, [&](const Spot& s, Color& c) {
        const float distance = distanceToSegment(s.p, a, b);
        c.a =
            std::max(c.a, 0.9f * crisp(canvas, distance - width) + 0.16f * bell(distance / 0.014f));
      });
    }
  }
}

constexpr Texture kTextures[] = {
    {"ShardsInvertTextureLayer1", 341, 256, Channels::rgba, drawInvert<1>, "pieces by alpha"},
    {"ShardsInvertTextureLayer2", 341, 256, Channels::rgba, drawInvert<2>, "pieces by alpha"},
    {"ShardsInvertTextureLayer3", 341, 256, Channels::rgba, drawInvert<3>, "pieces by alpha"},
    {"ShardsInvertTextureLayer4", 341, 256, Channels::rgba, drawInvert<4>, "pieces by alpha"},
    {"ShardsInvertTextureLayer5", 341, 256, Channels::rgba, drawInvert<5>, "pieces by alpha"},
    {"ShardsInvertTextureLayer6", 341, 256, Channels::rgba, drawInvert<6>, "pieces by alpha"},
    {"ShardsInvertTextureLayer7", 256, 256, Channels::rgba, drawInvertCracks, "cracks by alpha"},
    {"ShardsBWCopy2Texture", 512, 512, Channels::rgba, drawBW<1>, "pieces by alpha"},
    {"ShardsBWLayer2Texture", 512, 512, Channels::rgba, drawBW<2>, "pieces by alpha"},
    {"ShardsBWLayer3Texture", 512, 512, Channels::rgba, drawBW<3>, "pieces by alpha"},
    {"ShardsBWLayer4Texture", 512, 512, Channels::rgba, drawBW<4>, "pieces by alpha"},
    {"ShardsBWLayer5Texture", 512, 512, Channels::rgba, drawBW<5>, "pieces by alpha"},
    {"ShardsBWLayer6Texture", 512, 512, Channels::rgba, drawBW<6>, "pieces by alpha"},
    {"ShardsBWLayer7Texture", 512, 512, Channels::rgba, drawBW<7>, "pieces by alpha"},
    {"ShardsBWLayer8Texture", 512, 512, Channels::rgba, drawBW<8>, "pieces by alpha"},
    {"ShardsBWLayer9Texture", 512, 512, Channels::rgba, drawBW<9>, "pieces by alpha"},
};

}  // namespace

std::span<const Texture> shardTextures() { return kTextures; }

}  // namespace qpx::drawing
