#include "filters/look_rules.h"

#include <algorithm>
#include <cstring>

namespace qpx::testing {
namespace {

constexpr int kCornerTables = 4;  // behind the mode
constexpr int kCornerTerms = 4 + 3 * 256;
constexpr int kGradientTerms = 4 * 256;
constexpr int kPolaroidWindow = 6 * 256;
constexpr int kPolaroidTerms = kPolaroidWindow + 4 * 4 + 2 * 4;

int clip(int value) { return std::min(std::max(value, 0), 255); }

int largest(Rgb c) { return std::max(c.r, std::max(c.g, c.b)); }
int smallest(Rgb c) { return std::min(c.r, std::min(c.g, c.b)); }
int lightness(Rgb c) { return (largest(c) + smallest(c)) >> 1; }

// Entry i of table t, tables beginning at a byte of the block.
int entry(const Stage& stage, int start, int t, int i) { return stage.lut[start + 256 * t + i]; }

Rgb throughTables(const Stage& stage, int start, Rgb c) {
  return {entry(stage, start, 0, c.r), entry(stage, start, 1, c.g), entry(stage, start, 2, c.b)};
}

Rgb greyThroughTables(const Stage& stage, int start, int grey) {
  return throughTables(stage, start, {grey, grey, grey});
}

int mode(const Stage& stage) {
  int32_t value;
  std::memcpy(&value, stage.lut, 4);
  return value;
}

Rgb darkenedBy(int s, Rgb c) {
  if (s < 129) return c;
  const int w = std::max(512 - (((s - 128) * (s - 128)) >> 10), 0);
  return {c.r * w >> 9, c.g * w >> 9, c.b * w >> 9};
}

Rgb darkened(const Stage& stage, int32_t x, int32_t y, Rgb c) {
  return darkenedBy(rowTerm(stage, y) + columnTerm(stage, x), c);
}

Rgb saturated(Rgb c, int amount) {
  const int l = lightness(c);
  return {clip(c.r + (((c.r - l) * amount) >> 7)), clip(c.g + (((c.g - l) * amount) >> 7)),
          clip(c.b + (((c.b - l) * amount) >> 7))};
}

int leant(int c, int a, int up, int down) {
  return clip(a >= 129 ? c + ((up * (a - 128)) >> 7) : c + ((-down * (128 - a)) >> 7));
}

int overlaid(int c, int t) {
  if (c < 129) return (c * 52 + ((c * t) >> 7) * 204) >> 8;
  return (c * 256 + (((255 - c) * (t - 128)) >> 7) * 204) >> 8;
}

}  // namespace

int rowTerm(const Stage& stage, int32_t y) {
  int32_t term;
  std::memcpy(&term, stage.lut + kCornerTerms + 4 * ptrdiff_t{y}, 4);
  return term;
}

int columnTerm(const Stage& stage, int32_t x) { return rowTerm(stage, stage.inHeight + x); }

int polaroidRowTerm(const Stage& stage, int32_t y) {
  int32_t term;
  std::memcpy(&term, stage.lut + kPolaroidTerms + 4 * ptrdiff_t{y}, 4);
  return term;
}

int polaroidColumnTerm(const Stage& stage, int32_t x) {
  return polaroidRowTerm(stage, stage.inHeight + x);
}

MRect polaroidWindow(const Stage& stage) {
  MRect window;
  std::memcpy(&window, stage.lut + kPolaroidWindow, sizeof window);
  return window;
}

int diagonalPlace(const Stage& stage, int32_t x, int32_t y) {
  int32_t row, column;
  std::memcpy(&row, stage.lut + kGradientTerms + 4 * ptrdiff_t{y}, 4);
  std::memcpy(&column, stage.lut + kGradientTerms + 4 * (ptrdiff_t{stage.inHeight} + x), 4);
  return (row + column) >> 10;
}

Rgb sepiaRule(const Stage&, int32_t, int32_t, Rgb c) {
  return {largest(c), (197 * smallest(c) + 59 * largest(c)) >> 8, smallest(c)};
}

Rgb singleColorRule(const Stage& stage, int32_t, int32_t, Rgb c) {
  return greyThroughTables(stage, 0, (77 * c.r + 150 * c.g + 29 * c.b + 128) >> 8);
}

Rgb duotoneCornersRule(const Stage& stage, int32_t x, int32_t y, Rgb c) {
  const Rgb toned = greyThroughTables(stage, kCornerTables, lightness(c));
  return mode(stage) == 1 ? darkened(stage, x, y, toned) : toned;
}

Rgb vintageRule(const Stage& stage, int32_t x, int32_t y, Rgb c) {
  const Rgb faded = saturated(throughTables(stage, kCornerTables, c), -38);
  return mode(stage) == 1 ? darkened(stage, x, y, faded) : faded;
}

Rgb deepQuiteRule(const Stage& stage, int32_t x, int32_t y, Rgb c) {
  const Rgb toned = throughTables(stage, kCornerTables, c);
  return mode(stage) == 1 ? darkened(stage, x, y, toned) : toned;
}

Rgb tonedCornersRule(const Stage& stage, int32_t x, int32_t y, Rgb c) {
  return darkened(stage, x, y, throughTables(stage, kCornerTables, c));
}

Rgb gothicRule(const Stage& stage, int32_t x, int32_t y, Rgb c) {
  return darkened(stage, x, y, saturated(throughTables(stage, kCornerTables, c), 55));
}

Rgb gradientRule(const Stage& stage, int32_t x, int32_t y, Rgb c) {
  const int place = diagonalPlace(stage, x, y);
  const auto shifted = [&](int channel, int sample) {
    const int response = entry(stage, 0, 3, sample);
    return leant(sample, entry(stage, 0, channel, place), response, response);
  };
  return {shifted(0, c.r), shifted(1, c.g), shifted(2, c.b)};
}

Rgb sunnyRule(const Stage& stage, int32_t, int32_t, Rgb c) {
  const Rgb toned = throughTables(stage, 0, c);
  const int l = (64 * toned.r + 160 * toned.g + 32 * toned.b + 128) >> 8;
  const auto lit = [&](int channel, int sample) {
    return leant(sample, entry(stage, 0, 3 + channel, l), entry(stage, 0, 6, sample),
                 entry(stage, 0, 7, sample));
  };
  return {lit(0, toned.r), lit(1, toned.g), lit(2, toned.b)};
}

Rgb threeTablesRule(const Stage& stage, int32_t, int32_t, Rgb c) {
  return throughTables(stage, 0, c);
}

// Gains of green and blue are those of the record.
Rgb reversalFilmRule(const Stage& stage, int32_t, int32_t, Rgb c) {
  const auto& param = record<QPXReversalFilmParam>(stage);
  const int r = entry(stage, 0, 0, c.r), g = entry(stage, 0, 0, c.g), b = entry(stage, 0, 0, c.b);
  const Rgb dyed = {clip((311 * r - 56 * g + 10 * b + 2550) >> 8),
                    clip((param.greenGain * g + 45 * r - 71 * b + 3825) >> 8),
                    clip((-15 * r + 10 * g + param.blueGain * b + 2550) >> 8)};
  const int l = (160 * dyed.g + 64 * dyed.r + 32 * dyed.b + 128) >> 8;
  return {overlaid(dyed.r, entry(stage, 0, 1, l)), overlaid(dyed.g, entry(stage, 0, 2, l)),
          overlaid(dyed.b, entry(stage, 0, 3, l))};
}

// Whatever the record says, the gains of green and blue are 234.
Rgb polaroidRule(const Stage& stage, int32_t x, int32_t y, Rgb c) {
  const auto& param = record<QPXPolaroidParam>(stage);
  const MRect window = polaroidWindow(stage);
  if (x < window.left || x >= window.right || y < window.top || y >= window.bottom) {
    return {244, 241, 233};
  }
  const Rgb toned = throughTables(stage, 0, c);
  const int r = toned.r, g = toned.g, b = toned.b;
  const Rgb dyed = {clip((311 * r - 56 * g + 10 * b + 2550) >> 8),
                    clip((45 * r + 234 * g - 71 * b + 3825) >> 8),
                    clip((-15 * r + 10 * g + 234 * b + 2550) >> 8)};
  const int l = (160 * dyed.g + 64 * dyed.r + 32 * dyed.b + 128) >> 8;
  const Rgb lit = {overlaid(dyed.r, entry(stage, 0, 3, l)), overlaid(dyed.g, entry(stage, 0, 4, l)),
                   overlaid(dyed.b, entry(stage, 0, 5, l))};
  if (param.vignetteMode != 1) return lit;
  return darkenedBy(polaroidRowTerm(stage, y) + polaroidColumnTerm(stage, x), lit);
}

Rgb blackWhiteRule(const Stage& stage, int32_t, int32_t, Rgb c) {
  const int grey = entry(stage, 0, 0, (77 * c.r + 150 * c.g + 29 * c.b + 128) >> 8);
  return {grey, grey, grey};
}

Rgb fineFoodRule(const Stage& stage, int32_t, int32_t, Rgb c) {
  const Rgb toned = throughTables(stage, 0, c);
  const int sum = largest(toned) + smallest(toned), l = sum >> 1;
  const int span = (largest(toned) - smallest(toned)) * 1024;
  const int s = l < 128 ? span / (sum + 1) : span / (512 - sum - 1);
  const int gain = s < 820 ? 253 : 0x100000 / (s + 1) - 1024;
  const auto enriched = [&](int v) { return clip(v + (((v - l) * gain) >> 10)); };
  return {enriched(toned.r), enriched(toned.g), enriched(toned.b)};
}

Rgb rgbFromYuv(Yuv c) {
  return {clip((c.y * 1024 + 1436 * (c.v - 128) + 512) >> 10),
          clip((c.y * 1024 - 352 * (c.u - 128) - 731 * (c.v - 128) + 512) >> 10),
          clip((c.y * 1024 + 1815 * (c.u - 128) + 512) >> 10)};
}

Yuv yuvFromRgb(Rgb c) {
  return {(306 * c.r + 601 * c.g + 117 * c.b) >> 10,
          (((-173 * c.r - 339 * c.g + 512 * c.b) >> 10) + 128) & 255,
          (((512 * c.r - 428 * c.g - 83 * c.b) >> 10) + 128) & 255};
}

}  // namespace qpx::testing
