#include <algorithm>

#include "simd/clamp_byte.h"
#include "simd/tone_rows.h"

namespace qpx::simd {
namespace plain {
namespace {

struct Color {
  uint8_t r, g, b;
};

Color colorOf(int32_t y, int32_t u, int32_t v) {
  const int32_t light = y * 1024 + 512;
  const int32_t du = u - 128, dv = v - 128;
  return {clampByte((light + 1436 * dv) >> 10), clampByte((light - 352 * du - 731 * dv) >> 10),
          clampByte((light + 1815 * du) >> 10)};
}

uint8_t uOf(int32_t r, int32_t g, int32_t b) {
  return static_cast<uint8_t>(((-173 * r - 339 * g + 512 * b) >> 10) + 128);
}

uint8_t vOf(int32_t r, int32_t g, int32_t b) {
  return static_cast<uint8_t>(((512 * r - 428 * g - 83 * b) >> 10) + 128);
}

int32_t enrichGain(int32_t least, int32_t most) {
  const int32_t sum = least + most;
  const int32_t saturation = (most - least) * 1024 / (sum < 256 ? sum + 1 : 511 - sum);
  return saturation < 820 ? 253 : 0x100000 / (saturation + 1) - 1024;
}

}  // namespace

void halvesToRgb(const uint8_t* y, const uint8_t* u, const uint8_t* v, uint8_t* r, uint8_t* g,
                 uint8_t* b, ptrdiff_t count) {
  for (ptrdiff_t i = 0; i < count; ++i) {
    const Color color = colorOf(y[i], u[i / 2], v[i / 2]);
    r[i] = color.r;
    g[i] = color.g;
    b[i] = color.b;
  }
}

void pairsToRgb(const uint8_t* y, const uint8_t* pairs, bool vFirst, uint8_t* r, uint8_t* g,
                uint8_t* b, ptrdiff_t count) {
  for (ptrdiff_t i = 0; i < count; ++i) {
    const uint8_t* pair = pairs + i / 2 * 2;
    const Color color = colorOf(y[i], pair[vFirst ? 1 : 0], pair[vFirst ? 0 : 1]);
    r[i] = color.r;
    g[i] = color.g;
    b[i] = color.b;
  }
}

void rgbToLuma(const uint8_t* r, const uint8_t* g, const uint8_t* b, uint8_t* y, ptrdiff_t count) {
  for (ptrdiff_t i = 0; i < count; ++i) {
    y[i] = static_cast<uint8_t>((306 * r[i] + 601 * g[i] + 117 * b[i]) >> 10);
  }
}

void rgbToHalves(const uint8_t* r, const uint8_t* g, const uint8_t* b, uint8_t* u, uint8_t* v,
                 ptrdiff_t count) {
  for (ptrdiff_t i = 0; i < count; i += 2) {
    u[i / 2] = uOf(r[i], g[i], b[i]);
    v[i / 2] = vOf(r[i], g[i], b[i]);
  }
}

void rgbToPairs(const uint8_t* r, const uint8_t* g, const uint8_t* b, uint8_t* pairs, bool vFirst,
                ptrdiff_t count) {
  for (ptrdiff_t i = 0; i < count; i += 2) {
    pairs[i + (vFirst ? 1 : 0)] = uOf(r[i], g[i], b[i]);
    pairs[i + (vFirst ? 0 : 1)] = vOf(r[i], g[i], b[i]);
  }
}

void sortToSepia(uint8_t* r, uint8_t* g, uint8_t* b, ptrdiff_t count) {
  for (ptrdiff_t i = 0; i < count; ++i) {
    const auto [least, most] = std::minmax({r[i], g[i], b[i]});
    r[i] = most;
    g[i] = static_cast<uint8_t>((197 * least + 59 * most) >> 8);
    b[i] = least;
  }
}

void lean(const uint8_t* src, const uint8_t* light, const uint8_t* up, const uint8_t* down,
          uint8_t* dst, ptrdiff_t count) {
  for (ptrdiff_t i = 0; i < count; ++i) {
    const int32_t weight = light[i] > 128 ? up[i] : down[i];
    dst[i] = clampByte(src[i] + ((weight * (light[i] - 128)) >> 7));
  }
}

void overlay(const uint8_t* src, const uint8_t* tone, uint8_t* dst, ptrdiff_t count) {
  for (ptrdiff_t i = 0; i < count; ++i) {
    const int32_t c = src[i], t = tone[i];
    const int32_t mixed =
        c < 129 ? c * 52 + ((c * t) >> 7) * 204 : c * 256 + (((255 - c) * (t - 128)) >> 7) * 204;
    dst[i] = static_cast<uint8_t>(mixed >> 8);
  }
}

void layTexels(const uint8_t* src, const uint8_t* texels, const uint8_t* darker,
               const uint8_t* lighter, uint8_t* dst, ptrdiff_t count, int32_t share) {
  for (ptrdiff_t i = 0; i < count; ++i) {
    const int32_t distance = 2 * texels[i] - 255;
    const int32_t step =
        distance < 0 ? -((-distance * darker[i] + 510) >> 10) : (distance * lighter[i] + 510) >> 10;
    const int32_t laid = clampByte(src[i] + step);
    dst[i] = static_cast<uint8_t>((src[i] * (1024 - share) + laid * share) >> 10);
  }
}

void mixPercent(const uint8_t* base, const uint8_t* top, uint8_t* dst, ptrdiff_t count,
                int32_t percent) {
  const int64_t share = percent;
  for (ptrdiff_t i = 0; i < count; ++i) {
    const int64_t sum = share * top[i] + (100 - share) * base[i];
    dst[i] = static_cast<uint8_t>(std::clamp<int64_t>((sum * 327) >> 15, 0, 255));
  }
}

void enrich(uint8_t* r, uint8_t* g, uint8_t* b, ptrdiff_t count) {
  for (ptrdiff_t i = 0; i < count; ++i) {
    const auto [least, most] = std::minmax({r[i], g[i], b[i]});
    const int32_t mean = (least + most) >> 1;
    const int32_t gain = enrichGain(least, most);
    for (uint8_t* c : {r + i, g + i, b + i}) *c = clampByte(*c + (((*c - mean) * gain) >> 10));
  }
}

}  // namespace plain

QPX_DEFINE_PLAIN_FORM(ToneRows, QPX_TONE_ROWS)

}  // namespace qpx::simd
