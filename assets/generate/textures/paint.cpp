// Watercolour, brush strokes, and the brushes of the local paint.
#include "kit/paint.h"

#include "kit/shapes.h"
#include "kit/surface.h"
#include "textures/families.h"

namespace qpx::drawing {
namespace {

constexpr Color kPigments[] = {rgb(0x2E6E9E), rgb(0xC8503C), rgb(0xE0A030), rgb(0x4A8C5A),
                               rgb(0x8C4A8C), rgb(0x38949C), rgb(0xD06C8C), rgb(0x6A5A3C)};

struct Wash {
  Point centre;
  float radius;
  Color pigment;
  float strength;
  uint32_t seed;
};

// Pigment runs out to the edge while the wash dries, and granulates in the tooth of the paper.
void layWash(Canvas& canvas, const Wash& wash) {
  canvas.eachNear(wash.centre, wash.radius * 1.6f, [&](const Spot& s, Color& c) {
    const float depth = blotDepth(s.p, wash.centre, wash.radius, 0.45f, wash.seed);
    if (depth < -0.03f) {
      return;
    }
    const Point q = s.p * (1 / wash.radius);
    const float flow = 0.55f + 0.75f * fbm(q.x * 1.1f, q.y * 1.1f, 5, wash.seed + 20);
    const float bloom = ridged(q.x * 0.8f + 0.3f * flow, q.y * 0.8f, 3, wash.seed + 30);
    const float tooth = paperTooth(s.x, s.y, 3.0f, 1409);
    const float amount =
        washPigment(depth, 0.030f, tooth) * clamp01(flow + 0.25f * bloom) * wash.strength;
    c = glazed(c, wash.pigment, clamp01(amount));
  });
}

void layWashes(Canvas& canvas, int count, float smallest, float largest, float strength,
               uint32_t seed) {
  Random random(seed);
  const Point reach = canvas.reach();
  for (int i = 0; i < count; ++i) {
    // An additive sequence spreads the washes and their pigments evenly: chance heaps them up to
    // mud.
    const auto turn = static_cast<float>(i);
    const Point even{2 * fract(0.3f + 0.75488f * turn) - 1, 2 * fract(0.3f + 0.56984f * turn) - 1};
    const Color pigment = kPigments[(3 * i + static_cast<int>(seed % 8)) % 8];
    layWash(canvas, {.centre = {even.x * reach.x, even.y * reach.y},
                     .radius = random.between(smallest, largest),
                     .pigment = mix(pigment, {1, 1, 1}, random.between(0.0f, 0.25f)),
                     .strength = strength * random.between(0.6f, 1.0f),
                     .seed = random.bits() % 100000});
  }
}

// The grey of the picture is screened over this, so that colour lives in the shadows and white
// paper stays at the margin.
void drawWaterColor(Canvas& canvas) {
  canvas.each([](const Spot&, Color& c) { c = rgb(0xC8BEB4); });
  layWashes(canvas, 18, 0.35f, 0.75f, 0.62f, 1401);
  canvas.each([&](const Spot& s, Color& c) {
    const float edge = raggedFrame(canvas, s, 0.17f, 0.45f, 1402);
    const float brush = 0.06f * fbm(s.p.x * 1.5f, s.p.y * 22, 3, 1403);
    const float paint = smooth(0.10f, 0.16f, edge + brush);
    const float rim = bell((edge + brush - 0.17f) / 0.035f);
    c = mix({1, 1, 1}, c * (1 - 0.18f * rim), paint);
    c.a = 1;
  });
  canvas.coarsen(3);
}

void drawWaterColorBase(Canvas& canvas) {
  canvas.each([](const Spot& s, Color& c) {
    const float slope =
        paperTooth(s.x, s.y, 3.4f, 1411) - paperTooth(s.x - 1.3f, s.y - 1.3f, 3.4f, 1411);
    c = rgb(0xFBF7EC) * (0.975f + 0.045f * slope);
  });
  Random random(1412);
  for (int i = 0; i < 20; ++i) {
    // Washes lie round the margin and leave the middle to the picture.
    const float turn = 2 * kPi * (static_cast<float>(i) + random.unit()) / 20;
    layWash(canvas, {.centre = direction(turn) * random.between(0.75f, 1.25f),
                     .radius = random.between(0.16f, 0.42f),
                     .pigment = mix(kPigments[random.below(8)], {1, 1, 1}, 0.35f),
                     .strength = random.between(0.35f, 0.7f),
                     .seed = random.bits() % 100000});
  }
  canvas.coarsen(3);
}

// A splash: where it is not exactly 0 the picture shows.
void drawWaterColorMask(Canvas& canvas) {
  Random random(1421);
  canvas.each([](const Spot& s, Color& c) {
    const float brush = 0.10f * fbm(s.p.x * 2, s.p.y * 14, 4, 1422);
    const float body = blotDepth({s.p.x, s.p.y * 0.74f}, {0, 0}, 0.86f, 0.34f, 1423) + brush;
    c = grey(smooth(0.0f, 0.02f, body), 1);
  });
  for (int i = 0; i < 70; ++i) {
    const Point at = Point{random.around(), 1.4f * random.around()} * 1.1f;
    const float radius = mix(0.010f, 0.07f, square(square(random.unit())));
    canvas.eachNear(at, radius * 1.5f, [&](const Spot& s, Color& c) {
      c.r = std::max(c.r,
                     crisp(canvas, length(bent(s.p, 0.2f * radius, radius, 1424) - at) - radius));
    });
  }
  canvas.each([](const Spot&, Color& c) { c = grey(c.r, c.r); });
}

struct StrokeField {
  int count;
  float angle, spread;
  float shortest, longest;
  float thinnest, widest;
  float dryness;
  uint32_t seed;
};

// Strokes laid side by side across their own direction, jittered, so that they cover as a painter
// does.
void drawStrokes(Canvas& canvas, const StrokeField& field, const Color* colors, int colorCount) {
  Random random(field.seed);
  const Point reach = canvas.reach();
  const Point along = direction(field.angle);
  const Point across{-along.y, along.x};
  const float extent = reach.x * std::abs(across.x) + reach.y * std::abs(across.y);
  const float room =
      reach.x * std::abs(along.x) + reach.y * std::abs(along.y) - 0.4f * field.shortest;
  for (int i = 0; i < field.count; ++i) {
    const float row = (static_cast<float>(i) + random.unit()) / static_cast<float>(field.count);
    const Point middle = across * mix(-0.95f * extent, 0.95f * extent, row) +
                         along * (std::max(room, 0.25f) * random.between(-1, 1));
    const float angle = field.angle + field.spread * random.around();
    const Point half = direction(angle) * (random.between(field.shortest, field.longest) / 2);
    drawStroke(canvas, {.from = middle - half,
                        .to = middle + half,
                        .width = random.between(field.thinnest, field.widest),
                        .color = colors[random.below(colorCount)],
                        .seed = random.bits(),
                        .bend = 0.10f * random.around(),
                        .dryness = field.dryness * random.between(0.5f, 1.2f),
                        .opacity = random.between(0.82f, 1.0f)});
  }
  canvas.coarsen(3);
}

// An empty canvas of strokes keeps a colour under its clear parts, so that no dark fringe appears
// between texels.
void startClear(Canvas& canvas, Color under) {
  under.a = 0;
  canvas.each([under](const Spot&, Color& c) { c = under; });
}

void drawPaintStrokes(Canvas& canvas) {
  constexpr Color kTints[] = {rgb(0xE8A860), rgb(0xD87060), rgb(0x80B0C0), rgb(0xE8CC88),
                              rgb(0xB890B8)};
  startClear(canvas, kTints[0]);
  drawStrokes(canvas, {17, -0.18f, 0.14f, 1.5f, 2.1f, 0.08f, 0.17f, 0.45f, 1431}, kTints, 5);
}

void drawStrokesA(Canvas& canvas) {
  constexpr Color kTints[] = {rgb(0xE89878), rgb(0xF0C080), rgb(0xD87888)};
  startClear(canvas, kTints[0]);
  drawStrokes(canvas, {9, 0.04f, 0.10f, 1.5f, 2.1f, 0.13f, 0.24f, 0.40f, 1441}, kTints, 3);
}

void drawStrokesB(Canvas& canvas) {
  constexpr Color kTints[] = {rgb(0x78A8C8), rgb(0x98C8C0), rgb(0x8890C8)};
  startClear(canvas, kTints[0]);
  drawStrokes(canvas, {12, -0.85f, 0.18f, 1.2f, 2.0f, 0.09f, 0.18f, 0.50f, 1451}, kTints, 3);
}

void drawStrokesC(Canvas& canvas) {
  constexpr Color kTints[] = {rgb(0xE8C060), rgb(0x98C078), rgb(0xF0A068), rgb(0xB8C890)};
  startClear(canvas, kTints[0]);
  drawStrokes(canvas, {44, 1.1f, 0.8f, 0.35f, 0.7f, 0.06f, 0.12f, 0.35f, 1461}, kTints, 4);
}

void drawStrokesD(Canvas& canvas) {
  constexpr Color kTints[] = {rgb(0xB080B0), rgb(0xE08098), rgb(0x9088C0)};
  startClear(canvas, kTints[0]);
  drawStrokes(canvas, {10, 1.50f, 0.12f, 1.3f, 2.3f, 0.10f, 0.22f, 0.55f, 1471}, kTints, 3);
}

// A primed canvas covered edge to edge: nine tenths of it show until the brush wipes them away.
void drawPaintedCanvas(Canvas& canvas) {
  constexpr Color kTints[] = {rgb(0xD8C8B0), rgb(0xC8B8A8), rgb(0xE8DCC8),
                              rgb(0xB8B8B0), rgb(0xD8B898), rgb(0xC0C8C0)};
  canvas.each([](const Spot& s, Color& c) {
    c = rgb(0xD0C4B0) * (0.86f + 0.16f * weave(s.x, s.y, 4, 1481));
  });
  drawStrokes(canvas, {80, -0.3f, 0.7f, 0.7f, 1.6f, 0.08f, 0.19f, 0.55f, 1482}, kTints, 6);
}

// The dab of the local paint. It paints wherever alpha is not 0, so the hairs at its rim have hard
// ends.
void drawBrush(Canvas& canvas) {
  canvas.each([&](const Spot& s, Color& c) {
    const float turn = angleOf(s.p) / (2 * kPi) + 0.5f;
    const float hairs = 0.04f * wander(turn * 150, 1491, 150) + 0.05f * wander(turn * 37, 1492, 37);
    const float inside = crisp(canvas, length(s.p) - 0.86f - hairs);
    const float streak = 0.5f + 0.5f * fbm(s.p.x * 3, s.p.y * 16, 3, 1493);
    c = grey(0.55f + 0.4f * streak,
             inside * mix(0.75f, 1.0f, streak) * mix(0.6f, 1.0f, smooth(0.95f, 0.4f, length(s.p))));
  });
  canvas.coarsen(3);
}

// White where the colours of the picture come back, in strokes.
void drawRevealStrokes(Canvas& canvas) {
  constexpr Color kWhite[] = {{1, 1, 1}};
  Canvas strokes(canvas.width(), canvas.height(), {1, 1, 1, 0});
  drawStrokes(strokes, {7, -0.25f, 0.12f, 1.5f, 1.9f, 0.15f, 0.24f, 0.35f, 1496}, kWhite, 1);
  canvas.each([&](const Spot& s, Color& c) {
    c = grey(strokes.at(static_cast<int>(s.x), static_cast<int>(s.y)).a);
  });
}

constexpr Texture kTextures[] = {
    {"WaterColor_PortraitData", 500, 667, Channels::rgba, drawWaterColor,
     "screened with the grey picture"},
    {"WaterColor01MasterSqaureTexture", 512, 512, Channels::rgba, drawWaterColorBase,
     "base of the local paint"},
    {"WaterColor01MasterMaskTexture", 512, 683, Channels::rgba, drawWaterColorMask,
     "mask; not 0 is painted"},
    {"PaintStrokesMask", 360, 480, Channels::rgba, drawPaintStrokes, "multiply by alpha"},
    {"PaintStrokes02TextureA", 256, 341, Channels::rgba, drawStrokesA, "multiply by alpha"},
    {"PaintStrokes02TextureB", 256, 341, Channels::rgba, drawStrokesB, "multiply by alpha"},
    {"PaintStrokes02TextureC", 256, 341, Channels::rgba, drawStrokesC, "multiply by alpha"},
    {"PaintStrokes02TextureD", 256, 341, Channels::rgba, drawStrokesD, "multiply by alpha"},
    {"F91_PaintStrokes02MaskTexture", 512, 683, Channels::rgba, drawPaintedCanvas,
     "base of the local paint"},
    {"ColorRevealBrushTexture", 310, 297, Channels::rgba, drawBrush, "dab; alpha not 0 paints"},
    {"ColorRevealBrushTexture2", 256, 256, Channels::rgb, drawRevealStrokes, "mask; white reveals"},
};

}  // namespace

std::span<const Texture> paintTextures() { return kTextures; }

}  // namespace qpx::drawing
