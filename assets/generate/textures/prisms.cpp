// Light split by glass: floating panes with spectral edges, and the red prism's beams.
#include "kit/facets.h"
#include "kit/light.h"
#include "kit/shapes.h"
#include "textures/families.h"

namespace qpx::drawing {
namespace {

// The colours of a prism, t from red to violet, dark outside 0..1.
Color spectrum(float t) {
  return {bell((t - 0.16f) / 0.24f) + 0.35f * bell((t - 0.98f) / 0.12f), bell((t - 0.46f) / 0.22f),
          bell((t - 0.80f) / 0.22f), 1};
}

// A pane of clear glass: faint in the middle, its rims split the light.
Color glassPane(const Spot& s, std::span<const Point> corners, float depth, uint32_t seed) {
  const Point facing = direction(2 * kPi * unitHash(1, 0, seed));
  const float across = dot(s.p - middleOf(corners), facing);
  const float sheen = smooth(-0.35f, 0.45f, across);
  // Only the edges that face the light flash; the far ones are hardly there.
  const Color rim = edgeSpectrum(depth, 0.012f, 0.008f, 0.007f) * (0.18f + 0.82f * square(sheen));
  const Color inner = edgeSpectrum(depth, 0.05f + 0.16f * sheen, 0.030f, 0.028f) *
                      (0.40f * sheen * (1 - sheen) * 4);
  Color c = mix(rgb(0x6C88B0), rgb(0xE8DCF0), sheen) * 0.6f + rim + inner;
  const float light =
      clamp01(0.08f + 0.34f * square(sheen) + 0.75f * brightest(rim) + 0.35f * brightest(inner));
  const float most = std::max(brightest(c), 1.0f);
  c = c * (1 / most);
  c.a = light;
  return c;
}

struct PaneField {
  int count;
  float smallest, largest;
  int sides;  ///< 3 or 4
  uint32_t seed;
};

void drawPanes(Canvas& canvas, const PaneField& field) {
  canvas.each([](const Spot&, Color& c) { c = rgb(0xC0C0D0, 0); });
  Random random(field.seed);
  for (int i = 0; i < field.count; ++i) {
    const Point middle{random.between(-0.95f, 0.95f), random.between(-0.95f, 0.95f)};
    const float size = mix(field.smallest, field.largest, random.unit());
    const float turn = random.between(0, 2 * kPi);
    std::vector<Point> corners;
    for (int k = 0; k < field.sides; ++k) {
      const float angle = turn + 2 * kPi * (static_cast<float>(k) + 0.35f * random.around()) /
                                     static_cast<float>(field.sides);
      corners.push_back(middle + direction(angle) * (size * random.between(0.75f, 1.25f)));
    }
    const uint32_t seed = random.bits();
    fillPolygon(canvas, corners,
                [&](const Spot& s, float depth) { return glassPane(s, corners, depth, seed); });
  }
}

void drawSquare01(Canvas& canvas) { drawPanes(canvas, {5, 0.35f, 0.65f, 4, 1901}); }
void drawSquare02(Canvas& canvas) { drawPanes(canvas, {9, 0.18f, 0.40f, 4, 1912}); }
void drawSquare03(Canvas& canvas) { drawPanes(canvas, {6, 0.35f, 0.70f, 3, 1923}); }
void drawSquare04(Canvas& canvas) { drawPanes(canvas, {14, 0.10f, 0.30f, 3, 1934}); }
void drawSquare05(Canvas& canvas) { drawPanes(canvas, {3, 0.60f, 0.90f, 4, 1945}); }
void drawSquare06(Canvas& canvas) { drawPanes(canvas, {22, 0.06f, 0.20f, 4, 1956}); }

// The prism itself, white light entering on its left, a spectrum leaving on its right.
void drawPrism(Canvas& canvas) {
  const Point corners[] = {{0, -0.62f}, {0.62f, 0.46f}, {-0.62f, 0.46f}};
  canvas.each([&](const Spot& s, Color& c) {
    const Point in = alongAxis(s.p - Point{-0.28f, -0.10f}, direction(-0.32f));
    const float beam = in.x < 0 ? bell(in.y / 0.016f) + 0.10f * bell(in.y / 0.06f) : 0;
    const Point out = s.p - Point{0.24f, -0.16f};
    const float t = (angleOf(out) - 0.10f) / 0.38f;
    const float fan = out.x > 0 ? smooth(0.0f, 0.15f, out.x) / (1 + 0.5f * length(out)) : 0;
    c = grey(beam) + spectrum(t) * fan;
  });
  canvas.develop(1.5f, 0.9f);
  canvas.moveLightToAlpha(1);
  fillPolygon(canvas, corners,
              [&](const Spot& s, float depth) { return glassPane(s, corners, depth, 1967); });
}

void drawSpectralGradient(Canvas& canvas) {
  canvas.each([](const Spot& s, Color& c) {
    const Point q = bent(s.p, 0.2f, 1.3f, 1971);
    const Color colors = hue(0.78f - 0.62f * (0.5f + 0.34f * q.x + 0.28f * q.y));
    c = mix(grey(0.5f), colors, 0.5f);
    c.a = 1;
  });
}

void drawMask01(Canvas& canvas) {
  const Point panes[][3] = {{{-0.9f, -0.95f}, {0.35f, -0.35f}, {-0.55f, 0.45f}},
                            {{0.9f, -0.5f}, {0.75f, 0.95f}, {-0.1f, 0.3f}}};
  canvas.each([](const Spot&, Color& c) { c = grey(1, 0); });
  for (const auto& pane : panes) {
    fillPolygon(canvas, pane, [](const Spot& s, float) { return grey(1, mix(1.0f, 0.65f, s.v)); });
  }
}

void drawMask02(Canvas& canvas) {
  canvas.each([](const Spot&, Color& c) { c = grey(1, 0); });
  const std::vector<Quad> pieces = fracture(canvas, {0.05f, 0.1f}, 9, 3, 1981);
  for (size_t i = 0; i < pieces.size(); ++i) {
    if (hashOf(static_cast<int>(i), 1, 1982) % 5 < 2) {
      fillPolygon(canvas, moved(pieces[i], 0.95f, 0, {}),
                  [](const Spot&, float) { return grey(1, 0.95f); });
    }
  }
}

// A bar of dispersed light as it falls on a wall: curved, soft at one side, red at the other.
void addCaustic(Canvas& canvas, Point middle, float angle, float half, float width, float light,
                uint32_t seed) {
  const Point axis = direction(angle);
  canvas.each([&](const Spot& s, Color& c) {
    const Point d = alongAxis(s.p - middle, axis);
    const float along = d.x / half;
    if (std::abs(along) > 1.3f) {
      return;
    }
    const float bend = 0.12f * half * along * along + 0.02f * wander(d.x * 3, seed);
    const float spread = width * (0.7f + 0.5f * wander(d.x * 1.3f, seed + 1) + 0.4f * along);
    const float t = (d.y - bend) / std::max(spread, 0.2f * width) + 0.5f;
    const float ends = smooth(1.15f, 0.5f, std::abs(along));
    c = c + spectrum(t) * Color{1.25f, 0.75f, 0.85f} *
                (light * ends * (0.6f + 0.4f * wander(d.x * 2.1f, seed + 2)));
  });
}

void drawRedBeams(Canvas& canvas) {
  addCaustic(canvas, {-0.75f, -0.35f}, 0.75f, 1.1f, 0.30f, 1.9f, 2001);
  addCaustic(canvas, {0.95f, 0.45f}, 0.95f, 0.9f, 0.22f, 1.4f, 2011);
  addCaustic(canvas, {0.25f, -0.75f}, 0.35f, 0.7f, 0.14f, 0.9f, 2021);
  addCaustic(canvas, {-0.2f, 0.75f}, 0.55f, 0.8f, 0.16f, 0.8f, 2023);
  addGlow(canvas, {-1.3f, -0.9f}, 0.6f, Color{1.1f, 0.20f, 0.14f}, 1.6f);
  canvas.develop(1, 0.95f);
}

void drawRedFacets(Canvas& canvas) {
  const std::vector<Quad> pieces = fracture(canvas, {0.9f, -0.5f}, 11, 3, 2031);
  for (size_t i = 0; i < pieces.size(); ++i) {
    const auto seed = static_cast<uint32_t>(2040 + i);
    if (unitHash(0, 0, seed) > 0.6f) {
      continue;
    }
    const Quad piece = moved(pieces[i], 0.94f, 0, {});
    const Color tint = mix(rgb(0xC01030), rgb(0xFF6A40), unitHash(1, 0, seed));
    const Point facing = direction(2 * kPi * unitHash(2, 0, seed));
    fillPolygon(canvas, piece, [&](const Spot& s, float depth) {
      const float shade = smooth(-0.5f, 0.5f, dot(s.p - middleOf(piece), facing));
      Color c = tint * (0.12f + 0.60f * square(shade)) +
                edgeSpectrum(depth, 0.012f, 0.008f, 0.007f) * (0.15f + 0.6f * shade);
      c.a = 1;
      return c;
    });
  }
}

void drawRedShade(Canvas& canvas) {
  constexpr Color kStops[] = {rgb(0xE8404C), rgb(0xA46468), rgb(0x807C80), rgb(0x5C587C)};
  canvas.each([&](const Spot& s, Color& c) {
    const Point q = bent(s.p, 0.15f, 1.5f, 2061);
    c = ramp(kStops, 0.5f + 0.28f * q.x + 0.25f * q.y);
  });
  for (const Quad& piece : fracture(canvas, {0.9f, -0.5f}, 11, 3, 2031)) {
    const float tone =
        unitHash(static_cast<int>(piece[1].x * 1000), static_cast<int>(piece[1].y * 1000), 2062);
    fillPolygon(canvas, piece, [tone](const Spot&, float) {
      return tone > 0.5f ? grey(1, 0.10f * tone) : grey(0, 0.14f * (1 - tone));
    });
  }
}

constexpr Texture kTextures[] = {
    {"ShardPrismGradientTexture", 256, 256, Channels::rgba, drawSpectralGradient,
     "soft light; mid grey is clear"},
    {"ShardPrismMask01Texture", 256, 256, Channels::rgba, drawMask01, "panes by alpha"},
    {"ShardPrismMask02Texture", 256, 256, Channels::rgba, drawMask02, "panes by alpha"},
    {"ShardPrismPrismTexture", 512, 512, Channels::rgba, drawPrism, "screen or normal by alpha"},
    {"ShardPrismSquare01Texture", 512, 512, Channels::rgba, drawSquare01, "panes by alpha, screen"},
    {"ShardPrismSquare02Texture", 512, 512, Channels::rgba, drawSquare02, "panes by alpha, screen"},
    {"ShardPrismSquare03Texture", 512, 512, Channels::rgba, drawSquare03, "panes by alpha, screen"},
    {"ShardPrismSquare04Texture", 512, 512, Channels::rgba, drawSquare04, "panes by alpha, screen"},
    {"ShardPrismSquare05Texture", 512, 512, Channels::rgba, drawSquare05, "panes by alpha, screen"},
    {"ShardPrismSquare06Texture", 512, 512, Channels::rgba, drawSquare06, "panes by alpha, screen"},
    {"RedPrismMasksTexture", 1076, 737, Channels::rgba, drawRedBeams, "screen; black is clear"},
    {"RedPrismMasksTexture1", 1076, 737, Channels::rgba, drawRedFacets, "screen; black is clear"},
    {"RedPrismMasksTexture2", 1076, 737, Channels::rgba, drawRedShade,
     "soft light; mid grey is clear"},
};

}  // namespace

std::span<const Texture> prismTextures() { return kTextures; }

}  // namespace qpx::drawing
