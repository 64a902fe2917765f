// Second exposures: small landscapes made to lie over a portrait.
#include "kit/noise.h"
#include "kit/shapes.h"
#include "textures/families.h"

namespace qpx::drawing {
namespace {

// The outline of a hill at u, as a place 0..1 down the picture.
float hillLine(float u, float base, float height, float rough, uint32_t seed) {
  return base - height * (0.5f + 0.5f * fbm(u * rough, 0.3f, 5, seed)) +
         0.25f * height * wander(u * rough * 0.5f, seed + 9);
}

// Fog between the layers of a landscape, densest low down.
void drawFogMask(Canvas& canvas) {
  canvas.each([](const Spot& s, Color& c) {
    const Point q = bent(s.p, 0.25f, 0.9f, 1501);
    const float bank = fbm(q.x * 0.8f, q.y * 2.2f, 5, 1502);
    c = grey(clamp01(smooth(-0.1f, 1.0f, s.v + 0.35f * bank)));
  });
}

// One row of firs: distance into the nearest tree, in units of the picture's width; negative
// outside.
float firDepth(float u, float v, float ground, float pitch, float tall, uint32_t seed) {
  float deepest = -1;
  const int middle = static_cast<int>(std::floor(u / pitch));
  for (int i = middle - 3; i <= middle + 3; ++i) {
    const float stem = (static_cast<float>(i) + 0.2f + 0.6f * unitHash(i, 0, seed)) * pitch;
    const float height = tall * (0.5f + 0.5f * unitHash(i, 1, seed));
    const float down = (v - (ground - height)) / height;
    if (down < 0) {
      continue;
    }
    // Boughs: the outline steps out towards each tier's lower edge.
    const float tier =
        fract(down * 9 + 0.35f * wander(down * 7, seed + static_cast<uint32_t>(i & 255)));
    const float half = height * (0.003f + 0.21f * down * (0.55f + 0.45f * tier)) *
                       (1 + 0.35f * perlin(u * 160, v * 110, seed + 5));
    const float trunk = down > 0.85f ? 0.012f * height : 0.004f * height;
    deepest = std::max(deepest, std::max(half, trunk) - std::abs(u - stem));
  }
  return deepest;
}

void drawForest(Canvas& canvas) {
  canvas.each([&](const Spot& s, Color& c) {
    const float cloud = fbm(s.p.x * 0.9f, s.p.y * 2.0f, 5, 1511);
    c = mix(rgb(0xE8ECEC), rgb(0xB8C8D0), clamp01(0.4f - 0.4f * s.v + 0.35f * cloud));
    for (int row = 0; row < 4; ++row) {
      const float t = static_cast<float>(row) / 3;
      const auto seed = static_cast<uint32_t>(1520 + 10 * row);
      const float ground =
          mix(0.62f, 1.10f, t) - 0.10f * wander(s.u * mix(3.0f, 1.2f, t), seed + 7);
      const float tall = mix(0.16f, 0.62f, t * t);
      const float depth =
          firDepth(s.u, s.v * 1.333f, ground * 1.333f, mix(0.035f, 0.11f, t), tall, seed);
      const float soft = 1.6f / static_cast<float>(canvas.width());
      const float cover = std::max(coverage(-depth, soft), smooth(0.0f, 0.02f, s.v - ground));
      c = mix(c, mix(rgb(0x9CB0B4), rgb(0x0E1A1C), t * (0.75f + 0.25f * t)), cover);
      // Mist rises between this row and the next.
      const float mist =
          smooth(ground - 0.22f, ground + 0.05f, s.v + 0.05f * cloud) * (0.62f * (1 - t));
      c = mix(c, rgb(0xDCE4E4), mist);
    }
    // A white sky would screen the portrait away.
    c = c * mix(0.62f, 0.85f, s.v);
  });
}

void drawMountains(Canvas& canvas) {
  constexpr Color kSky[] = {rgb(0x38507C), rgb(0x8C8CA8), rgb(0xE8B48C), rgb(0xFCE0A8)};
  canvas.each([&](const Spot& s, Color& c) {
    c = ramp(kSky, s.v * 1.5f + 0.05f * fbm(s.p.x, s.p.y * 4, 4, 1551));
    c = c + Color{0.5f, 0.36f, 0.18f} * bell(length(Point{s.u - 0.66f, (s.v - 0.50f) * 0.8f}) * 5);
    for (int row = 0; row < 6; ++row) {
      const float t = static_cast<float>(row) / 5;
      const auto seed = static_cast<uint32_t>(1560 + 20 * row);
      const float line = hillLine(s.u + 0.37f * static_cast<float>(row), mix(0.58f, 1.02f, t),
                                  mix(0.30f, 0.22f, t), mix(2.2f, 3.4f, t), seed);
      const float cover = clamp01((s.v - line) * static_cast<float>(canvas.height()) * 0.7f + 0.5f);
      const Color near = mix(rgb(0xC89C98), rgb(0x101826), power(t, 0.65f));
      const Color haze =
          mix(near, rgb(0xF0C8A0), 0.55f * (1 - t) * smooth(0.0f, 0.25f, s.v - line));
      c = mix(c, haze, cover);
    }
    c.a = 1;
  });
}

// Towers before the last light, their windows coming on.
void drawCity(Canvas& canvas) {
  constexpr Color kSky[] = {rgb(0x141C40), rgb(0x44386C), rgb(0xB8607C), rgb(0xF8A070)};
  canvas.each([&](const Spot& s, Color& c) {
    c = ramp(kSky, s.v * 1.25f + 0.04f * fbm(s.p.x, s.p.y * 5, 4, 1601));
  });
  for (int row = 0; row < 3; ++row) {
    const auto seed = static_cast<uint32_t>(1610 + row);
    const int pitch = 30 - 4 * row + 10 * row * row;
    const Color wall = mix(rgb(0x6C4870), rgb(0x0A0C1A), static_cast<float>(row) / 2);
    canvas.each([&](const Spot& s, Color& c) {
      const int x = static_cast<int>(s.x);
      const int block = x / pitch;
      const float tall =
          mix(0.30f, 0.68f, unitHash(block, 0, seed)) - 0.13f * static_cast<float>(row);
      const int inset = static_cast<int>(6 * unitHash(block, 1, seed));
      const float step = unitHash(block, 2, seed) > 0.5f && x % pitch < pitch / 3 ? 0.05f : 0.0f;
      const float mast = unitHash(block, 3, seed) > 0.7f && x % pitch == pitch / 2 ? 0.10f : 0.0f;
      const float top = 1 - tall + step - mast;
      if (s.v < top || x % pitch < inset) {
        return;
      }
      c = mix(wall, wall + rgb(0x503848) * 0.6f,
              smooth(0.3f, 1.0f, s.v) * (row == 0 ? 1.0f : 0.4f));
      const int y = static_cast<int>(s.y);
      const bool window = mast == 0 && x % 5 < 2 && y % 6 < 3 && s.v > top + 0.02f;
      if (window && unitHash(x / 5, y / 6, seed + 50) > 0.62f) {
        c = mix(c, mix(rgb(0xFFD890), rgb(0xFFB060), unitHash(x / 5, y / 6, seed + 51)),
                row == 0 ? 0.35f : 0.8f);
      }
    });
  }
}

// Sea under a broken sky: crests get closer together towards the horizon.
void drawSea(Canvas& canvas) {
  constexpr float kHorizon = 0.46f;
  constexpr Color kSky[] = {rgb(0x5C7C9C), rgb(0x9CB4C4), rgb(0xE8DCCC)};
  canvas.each([&](const Spot& s, Color& c) {
    const float light = bell((s.u - 0.4f) * 2.4f);
    if (s.v < kHorizon) {
      const float far = 1 / (kHorizon + 0.06f - s.v);
      const Point q{(s.u - 0.5f) * far * 0.55f, far * 0.6f};
      const float cloud = smooth(-0.10f, 0.5f, fbm(q.x, q.y, 6, 1651));
      c = mix(ramp(kSky, s.v / kHorizon), rgb(0xFCF8F0), 0.85f * cloud);
      c = c *
          (1 - 0.22f * cloud * smooth(0.1f, 0.9f, fbm(q.x + 0.1f, q.y + 0.25f, 4, 1651) + 0.4f));
    } else {
      const float far = 1 / (s.v - kHorizon + 0.025f);
      const Point q{(s.u - 0.5f) * far * 0.9f, far * 1.5f};
      const float wave = fbm(q.x, q.y * 2.2f, 5, 1661);
      const float calm = smooth(0.0f, 0.06f, s.v - kHorizon);
      const float glint = smooth(0.28f, 0.62f, wave) * light * calm;
      c = mix(rgb(0x9CB0B8), rgb(0x1C3848), smooth(kHorizon, 1.0f, s.v)) *
          (1 + 0.45f * calm * wave);
      c = mix(c, rgb(0xFFF4E0), 0.9f * glint);
    }
    c = (c + rgb(0xFFE8C8) * (0.18f * light * bell((s.v - kHorizon) * 7))) * 0.74f;
    c.a = 1;
  });
}

constexpr Texture kTextures[] = {
    {"MultiExposure62Data1", 500, 333, Channels::grey, drawFogMask, "mask of the second exposure"},
    {"MultiExposure62Data2", 600, 800, Channels::rgba, drawForest, "second exposure: screen"},
    {"MultiExposure62Data3", 444, 333, Channels::rgba, drawMountains, "second exposure: screen"},
    {"MultiExposure62Data4", 500, 333, Channels::rgba, drawCity, "second exposure: screen"},
    {"MultiExposure62Data5", 500, 333, Channels::rgba, drawSea, "second exposure: screen"},
};

}  // namespace

std::span<const Texture> exposureTextures() { return kTextures; }

}  // namespace qpx::drawing
