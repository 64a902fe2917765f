// Panes through which a second, enlarged picture is seen, and the light on them.
#include "kit/facets.h"
#include "kit/light.h"
#include "kit/shapes.h"
#include "textures/families.h"

namespace qpx::drawing {
namespace {

void startClear(Canvas& canvas) {
  canvas.each([](const Spot&, Color& c) { c = grey(1, 0); });
}

// Triangles that hang from one another, some glassy, some solid.
void drawTriangles(Canvas& canvas) {
  constexpr struct {
    Triangle shape;
    float from, to;
  } kPanes[] = {
      {{{-0.85f, -1.0f}, {0.55f, -1.15f}, {-0.10f, 0.10f}}, 1.0f, 0.75f},
      {{{0.62f, -1.05f}, {0.95f, 0.15f}, {0.02f, 0.10f}}, 0.65f, 0.9f},
      {{{-0.92f, -0.80f}, {-0.22f, 0.20f}, {-0.95f, 0.45f}}, 0.55f, 0.85f},
      {{{-0.10f, 0.22f}, {0.85f, 0.30f}, {0.30f, 1.15f}}, 1.0f, 0.7f},
      {{{-0.80f, 0.52f}, {-0.20f, 0.32f}, {0.18f, 1.12f}}, 0.7f, 0.95f},
      {{{0.92f, 0.42f}, {0.95f, 1.20f}, {0.45f, 1.15f}}, 0.5f, 0.6f},
  };
  startClear(canvas);
  for (const auto& pane : kPanes) {
    const Point corners[] = {pane.shape.a, pane.shape.b, pane.shape.c};
    fillPolygon(canvas, corners, [&](const Spot& s, float) {
      const Weights w = weightsIn(pane.shape, s.p);
      return grey(1, mix(pane.from, pane.to, clamp01(w.c)));
    });
  }
}

// Axial place of the hexagon that p lies in, and how deep.
struct Hex {
  int q, r;
  float depth;
};

Hex hexAt(Point p, float size) {
  const float fq = (0.57735f * p.x - 0.33333f * p.y) / size;
  const float fr = 0.66667f * p.y / size;
  const float fs = -fq - fr;
  float q = std::floor(fq + 0.5f);
  float r = std::floor(fr + 0.5f);
  const float s = std::floor(fs + 0.5f);
  const float dq = std::abs(q - fq);
  const float dr = std::abs(r - fr);
  const float ds = std::abs(s - fs);
  if (dq > dr && dq > ds) {
    q = -r - s;
  } else if (dr > ds) {
    r = -q - s;
  }
  const Point centre{size * 1.73205f * (q + r / 2), size * 1.5f * r};
  return {static_cast<int>(q), static_cast<int>(r),
          -distanceToPolygon(p - centre, 6, size * 0.866f, 0)};
}

void drawHexagons(Canvas& canvas) {
  canvas.each([&](const Spot& s, Color& c) {
    const Hex hex = hexAt(s.p, 0.27f);
    const float kept = unitHash(hex.q, hex.r, 2101);
    const float inside = crisp(canvas, 0.018f - hex.depth);
    const bool open =
        kept < 0.55f || (std::abs(hex.q) + std::abs(hex.r) + std::abs(hex.q + hex.r)) / 2 == 1;
    c = grey(1, open ? inside * mix(0.55f, 1.0f, unitHash(hex.q, hex.r, 2102)) : 0);
  });
}

void drawHexagonGradient(Canvas& canvas) {
  constexpr Color kStops[] = {rgb(0x48608C), rgb(0x747C90), rgb(0x98848C), rgb(0xD0907C)};
  canvas.each([&](const Spot& s, Color& c) {
    const Hex hex = hexAt(s.p, 0.27f);
    const float tone = 0.10f * (unitHash(hex.q, hex.r, 2103) - 0.5f);
    c = ramp(kStops, 0.5f + 0.34f * s.p.y - 0.2f * s.p.x + tone * crisp(canvas, -hex.depth));
  });
}

void drawVerticalPanes(Canvas& canvas) {
  constexpr struct {
    float left, right, lean, alpha;
  } kPanes[] = {{0.06f, 0.19f, 0.05f, 0.85f},
                {0.22f, 0.28f, 0.05f, 0.55f},
                {0.36f, 0.58f, -0.06f, 1.0f},
                {0.61f, 0.66f, -0.06f, 0.6f},
                {0.74f, 0.93f, 0.03f, 0.8f}};
  startClear(canvas);
  canvas.each([&](const Spot& s, Color& c) {
    for (const auto& pane : kPanes) {
      const float u = s.u - pane.lean * (s.v - 0.5f);
      const float inside =
          std::min(u - pane.left, pane.right - u) * static_cast<float>(canvas.width());
      c.a = std::max(c.a, pane.alpha * clamp01(inside + 0.5f) * mix(1.0f, 0.75f, s.v));
    }
  });
}

void drawHorizontalBands(Canvas& canvas) {
  canvas.each([&](const Spot& s, Color& c) {
    constexpr float kEdges[] = {0, 0.12f, 0.30f, 0.37f, 0.58f, 0.66f, 0.86f, 1.1f};
    constexpr float kTones[] = {0.42f, 0.66f, 0.50f, 0.36f, 0.60f, 0.46f, 0.30f};
    const float v = s.v + 0.10f * (s.u - 0.5f);
    c = grey(kTones[0]);
    for (size_t i = 0; i < std::size(kTones); ++i) {
      const float inside = clamp01((v - kEdges[i]) * static_cast<float>(canvas.height()) + 0.5f);
      // Each band fades downwards, like a sheet that stands off the next one.
      const float t = (v - kEdges[i]) / (kEdges[i + 1] - kEdges[i]);
      c = mix(c, grey(kTones[i] + 0.07f * (0.5f - t)), inside);
    }
    c.a = 1;
  });
}

// Sheets of coloured light, screened: black is clear.
void addSheet(Canvas& canvas, std::span<const Point> corners, Color tint, float fade, float edge) {
  const Point middle = middleOf(corners);
  fillPolygon(canvas, corners, [&](const Spot& s, float depth) {
    const float t = clamp01(0.5f + dot(s.p - middle, direction(fade)) * 0.6f);
    const float light = mix(0.10f, 0.55f, t) + edge * bell((depth - 0.006f) / 0.006f);
    Color c = canvas.at(static_cast<int>(s.x), static_cast<int>(s.y));
    c = {1 - (1 - c.r) * (1 - clamp01(tint.r * light)),
         1 - (1 - c.g) * (1 - clamp01(tint.g * light)),
         1 - (1 - c.b) * (1 - clamp01(tint.b * light)), 1};
    return c;
  });
}

void drawSheetsTall(Canvas& canvas) {
  addSheet(canvas, Quad{{{-1.0f, -1.33f}, {0.25f, -1.33f}, {-0.35f, 0.15f}, {-1.0f, -0.25f}}},
           rgb(0xFF8C6C), -2.2f, 0.3f);
  addSheet(canvas, Quad{{{0.05f, -0.95f}, {1.0f, -1.33f}, {1.0f, 0.05f}, {0.45f, 0.30f}}},
           rgb(0x8C7CFF), -0.6f, 0.3f);
  addSheet(canvas, Quad{{{-0.65f, 0.05f}, {0.40f, -0.15f}, {0.70f, 0.95f}, {-0.30f, 1.20f}}},
           rgb(0x5CC8D8), 1.9f, 0.3f);
}

void drawSheetsLines(Canvas& canvas) {
  const Point corners[] = {{0, -0.80f}, {0.69f, -0.40f}, {0.69f, 0.40f},
                           {0, 0.80f},  {-0.69f, 0.40f}, {-0.69f, -0.40f}};
  for (size_t i = 0; i < 6; ++i) {
    const Point triangle[] = {corners[i], corners[(i + 1) % 6], {0, 0}};
    addSheet(canvas, triangle, mix(rgb(0xFFA488), rgb(0x88B8FF), static_cast<float>(i) / 5),
             1.05f * static_cast<float>(i), 0.35f);
  }
  canvas.each([&](const Spot& s, Color& c) {
    const float ring = distanceToPolygon(s.p, 6, 0.80f, 0);
    c = c + grey(0.75f) * crisp(canvas, std::abs(ring) - 0.004f);
    c.a = 1;
  });
}

void drawSheetsWide(Canvas& canvas) {
  addSheet(canvas, Quad{{{-1.33f, -1.0f}, {-0.15f, -1.0f}, {-0.55f, 0.35f}, {-1.33f, 0.10f}}},
           rgb(0xFF8C6C), -2.4f, 0.3f);
  addSheet(canvas, Quad{{{0.15f, -0.75f}, {1.33f, -1.0f}, {1.33f, 0.25f}, {0.35f, 0.40f}}},
           rgb(0x8C7CFF), -0.4f, 0.3f);
  addSheet(canvas, Quad{{{-0.75f, 0.15f}, {0.50f, -0.05f}, {0.80f, 1.0f}, {-0.45f, 1.0f}}},
           rgb(0x5CC8D8), 1.8f, 0.3f);
}

constexpr Texture kTextures[] = {
    {"Geometric75Data1", 300, 400, Channels::rgba, drawSheetsTall, "screen; black is clear"},
    {"Geometric75Data2", 300, 400, Channels::rgba, drawSheetsLines, "screen; black is clear"},
    {"Geometric75Data3", 400, 300, Channels::rgba, drawSheetsWide, "screen; black is clear"},
    {"GeometricHorizontalData", 300, 400, Channels::rgba, drawHorizontalBands,
     "soft light; mid grey is clear"},
    {"GeometricTrianglesMask", 450, 600, Channels::rgba, drawTriangles, "panes by alpha"},
    {"GeometricVerticalLayer5Texture", 256, 185, Channels::rgba, drawVerticalPanes,
     "panes by alpha"},
    {"GeometricHexagonMaskTexture", 256, 256, Channels::rgba, drawHexagons, "panes by alpha"},
    {"GeometricHexagonGradientTexture", 256, 256, Channels::rgba, drawHexagonGradient,
     "soft light; mid grey is clear"},
};

}  // namespace

std::span<const Texture> geometricTextures() { return kTextures; }

}  // namespace qpx::drawing
