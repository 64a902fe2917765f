#include <algorithm>
#include <array>

#include "simd/clamp_byte.h"
#include "simd/hsv_math.h"
#include "simd/hue_rows.h"
#include "simd/tint_math.h"

namespace qpx::simd {
namespace plain {
namespace {

constexpr int32_t kAll = 256;

struct Color {
  int32_t r, g, b;

  int32_t most() const { return std::max({r, g, b}); }
  int32_t least() const { return std::min({r, g, b}); }
};

template <typename Change>
void forColors(uint8_t* r, uint8_t* g, uint8_t* b, ptrdiff_t count, const Change& change) {
  for (ptrdiff_t i = 0; i < count; ++i) {
    const Color color = change(Color{r[i], g[i], b[i]});
    r[i] = clampByte(color.r);
    g[i] = clampByte(color.g);
    b[i] = clampByte(color.b);
  }
}

template <typename Change>
Color eachChannel(const Color& color, const Change& change) {
  return {change(color.r), change(color.g), change(color.b)};
}

// 60 degrees with ten fractional bits, divided by a chroma.
constexpr std::array<int32_t, 256> kSixtyBy = [] {
  std::array<int32_t, 256> table = {};
  for (int32_t d = 1; d < 256; ++d) table[static_cast<size_t>(d)] = (60 << 10) / d;
  return table;
}();

// 0 ... 359; greys have 0.
int32_t hueOf(const Color& c) {
  const int32_t most = c.most(), chroma = most - c.least();
  if (chroma == 0) return 0;
  const int32_t sixty = kSixtyBy[static_cast<size_t>(chroma)];
  int32_t turn;
  if (most == c.r) {
    turn = sixty * (c.g - c.b);
  } else if (most == c.g) {
    turn = sixty * (c.b - c.r) + (120 << 10);
  } else {
    turn = sixty * (c.r - c.g) + (240 << 10);
  }
  const int32_t hue = turn >> 10;
  return hue < 0 ? hue + 360 : hue;
}

Color lightened(const Color& color, int32_t light) {
  const int32_t least = color.least(), most = color.most();
  return eachChannel(color, [=](int32_t c) {
    const int32_t step = light > 0 ? light * (least - c) : light * (c - most);
    return std::clamp((step + (c << 10) + 512) >> 10, 0, 255);
  });
}

// Of HSL, 0 ... 255. A mean of 128 and more is a sum of 256 and more.
int32_t hslSaturation(int32_t most, int32_t least) {
  if (most == least) return 0;
  const int32_t sum = most + least;
  return std::min((((most - least) << 18) / (sum < 256 ? sum : 511 - sum)) >> 10, 255);
}

// What chroma is multiplied by, less one, in 256ths: a gain stops where saturation is full, and
// full saturation stays.
int32_t spreadGain(int32_t spread, int32_t saturation) {
  if (spread <= 0) return spread;
  const int32_t base = saturation + spread < 255 ? 255 - spread : saturation;
  const int32_t gain = 65025 / (base + 1);
  return gain == 254 ? 0 : gain - 255;
}

Color spreadOut(const Color& color, int32_t spread) {
  const int32_t most = color.most(), least = color.least(), mean = (most + least) >> 1;
  const int32_t gain = spreadGain(spread, hslSaturation(most, least));
  if (gain == 0) return color;
  return eachChannel(color, [=](int32_t c) {
    return std::clamp((gain * (c - mean) + c * 256 + 128) >> 8, 0, 255);
  });
}

int32_t wrapped(int32_t hue) { return hue < 0 ? hue + 360 : hue > 360 ? hue - 360 : hue; }

// By the six sectors of the hue circle: shifts that take the largest, the middle and the least
// sample out of a word, for each channel. 273 / 2^14 falls a little short of 1/60.
Color ofHue(int32_t hue, int32_t most, int32_t least) {
  static constexpr uint8_t kShifts[6][3] = {{16, 8, 0}, {8, 16, 0}, {0, 16, 8},
                                            {0, 8, 16}, {8, 0, 16}, {16, 0, 8}};
  const int32_t sector = (hue * 273) >> 14;
  const int32_t past = hue - 60 * sector;
  const int32_t part = sector % 2 != 0 ? 60 - past : past;
  const int32_t middle = ((most - least) * part * 273 + (least << 14)) >> 14;
  const int32_t word = most << 16 | middle << 8 | least;
  const uint8_t* shifts = kShifts[sector];
  return {(word >> shifts[0]) & 255, (word >> shifts[1]) & 255, (word >> shifts[2]) & 255};
}

Color changed(const Color& color, const HueChanges& changes) {
  const HueChanges::Change change = changes.at(hueOf(color));
  const Color spread = spreadOut(lightened(color, change.light), change.spread);
  return ofHue(wrapped(hueOf(spread) + change.turn), spread.most(), spread.least());
}

// 64 at mid value, 0 at both ends.
int32_t midBump(int32_t value) { return (16384 + (value - 128) * (128 - value)) >> 8; }

// Greys belong to no range of hues, whatever number their hue has.
int32_t changedValue(const Hsv& hsv, int32_t weight, int32_t light) {
  const int32_t share = (weight * std::min(4 * hsv.saturation, 256)) >> 8;
  return std::clamp(hsv.value + ((light * midBump(hsv.value) * share) >> 18), 0, 255);
}

Color changed(const Color& color, const RangeChanges& changes) {
  const Hsv hsv = hsvOf(color.r, color.g, color.b);
  if (!changes.has(hsv.hue)) return color;
  const int32_t weight = changes.weight(hsv.hue), s = hsv.saturation;
  const int32_t step = (weight * (changes.saturation[s] - s)) >> 10;
  const HsvColor made = rgbOf({changes.hue(hsv.hue), std::clamp(s + step, 0, 255),
                               changedValue(hsv, weight, changes.light)});
  return {made.r, made.g, made.b};
}

int32_t chromaGain(int32_t most, int32_t least, int32_t amount) {
  if (amount <= 0) return amount;
  const int32_t sum = most + least;
  const int32_t whole = (1 << 20) / ((sum < 256 ? sum : 512 - sum) + 1);
  const int32_t saturation = (whole * (most - least)) >> 10;
  const int32_t base = amount + saturation < 1024 ? 1024 - amount : saturation;
  return (1 << 20) / (base + 1) - 1024;
}

Color saturated(const Color& color, int32_t amount) {
  const int32_t most = color.most(), least = color.least(), mean = (most + least) >> 1;
  const int32_t gain = chromaGain(most, least, amount);
  return eachChannel(color, [=](int32_t c) { return c + ((gain * (c - mean)) >> 10); });
}

// Colours fade towards both ends of the tones, the more the more light there is.
Color brightened(const Color& color, const uint8_t* tones, int32_t units) {
  if (color.most() == 0) return color;
  const Hsv hsv = hsvOf(color.r, color.g, color.b);
  const int32_t fade = ((hsv.value < 129 ? hsv.value : 255 - hsv.value) * units) >> 10;
  const int32_t saturation = hsv.saturation - fade, value = tones[hsv.value];
  if (saturation < 0) return {value, value, value};
  const HsvColor made = rgbOf({hsv.hue, saturation, value});
  return {made.r, made.g, made.b};
}

// In whole degrees, 0 ... 359; greys have 0.
int32_t wholeHueOf(const Color& c) {
  const int32_t most = c.most(), chroma = most - c.least();
  if (chroma == 0) return 0;
  if (most == c.r) return (60 * (c.g - c.b) / chroma + 360) % 360;
  return most == c.g ? 120 + 60 * (c.b - c.r) / chroma : 240 + 60 * (c.r - c.g) / chroma;
}

// The primaries of sRGB under D50 (IEC 61966-2-1, adapted by Bradford), white being 1 in Y, and
// back. X and Z come divided by those of the white, and leave multiplied by them.
Color chromaChanged(const Color& color, const LabTables& tables) {
  const int32_t r = tables.linear[color.r], g = tables.linear[color.g], b = tables.linear[color.b];
  const int32_t x = (14289 * r + 12618 * g + 4689 * b) >> 15;
  const int32_t y = (7291 * r + 23491 * g + 1986 * b) >> 15;
  const int32_t z = (456 * r + 3182 * g + 23402 * b) >> 15;
  const int32_t fx = tables.root[(x * 1062) >> 10];
  const int32_t fy = tables.root[y];
  const int32_t fz = tables.root[(z * 1241) >> 10];
  const auto chroma = [&](int32_t index) {
    return tables.chroma[std::clamp(index, -200, 200) + 200];
  };
  const int32_t lightness = (116 * fy) >> 10;
  const int32_t a = chroma(((fx - fy) * 500) >> 10), bb = chroma(((fy - fz) * 200) >> 10);
  const auto squared = [&](int32_t root) { return tables.square[std::min(root, 1024) + 1024]; };
  const int32_t root = 9 * lightness;
  const int32_t x2 = (squared(root + 2 * a) * 987) >> 10;
  const int32_t y2 = squared(root);
  const int32_t z2 = (squared(root - 5 * bb) * 845) >> 10;
  return {(102698 * x2 - 52986 * y2 - 16079 * z2) >> 17,
          (-32073 * x2 + 62787 * y2 + 1094 * z2) >> 17, (2356 * x2 - 7504 * y2 + 46046 * z2) >> 17};
}

}  // namespace

void changeHues(uint8_t* r, uint8_t* g, uint8_t* b, ptrdiff_t count, const HueChanges& changes) {
  forColors(r, g, b, count, [&](const Color& color) { return changed(color, changes); });
}

void changeRange(uint8_t* r, uint8_t* g, uint8_t* b, ptrdiff_t count, const RangeChanges& changes) {
  forColors(r, g, b, count, [&](const Color& color) { return changed(color, changes); });
}

void saturate(uint8_t* r, uint8_t* g, uint8_t* b, ptrdiff_t count, int32_t amount) {
  forColors(r, g, b, count, [=](const Color& color) { return saturated(color, amount); });
}

void brighten(uint8_t* r, uint8_t* g, uint8_t* b, ptrdiff_t count, const uint8_t* tones,
              int32_t units) {
  forColors(r, g, b, count, [=](const Color& color) { return brightened(color, tones, units); });
}

void fadeHues(uint8_t* r, uint8_t* g, uint8_t* b, ptrdiff_t count, const uint8_t* grey,
              const uint8_t* mask, const DegreeWords& shares) {
  for (ptrdiff_t i = 0; i < count; ++i) {
    int32_t share = shares.at(wholeHueOf({r[i], g[i], b[i]}));
    if (mask != nullptr) share = share * mask[i] / 255;
    for (uint8_t* c : {r + i, g + i, b + i}) {
      *c = static_cast<uint8_t>(*c + (((grey[i] - *c) * share + kAll / 2) >> 8));
    }
  }
}

void mixWeighted(const uint8_t* base, const uint8_t* top, const uint8_t* weight, uint8_t* dst,
                 ptrdiff_t count) {
  for (ptrdiff_t i = 0; i < count; ++i) {
    dst[i] = static_cast<uint8_t>(base[i] + ((weight[i] * (top[i] - base[i])) >> 8));
  }
}

void tintGreys(uint8_t* r, uint8_t* g, uint8_t* b, ptrdiff_t count, const uint8_t* grey) {
  for (ptrdiff_t i = 0; i < count; ++i) {
    const TintedColor color = tintedGrey(grey[i], {r[i], g[i], b[i]});
    r[i] = static_cast<uint8_t>(std::clamp(color.red, 0, 255));
    g[i] = static_cast<uint8_t>(std::clamp(color.green, 0, 255));
    b[i] = static_cast<uint8_t>(std::clamp(color.blue, 0, 255));
  }
}

void mixColors(uint8_t* r, uint8_t* g, uint8_t* b, ptrdiff_t count, const int32_t (&rows)[3][4]) {
  forColors(r, g, b, count, [&](const Color& c) {
    const auto sum = [&](const int32_t(&w)[4]) {
      return (w[0] * c.r + w[1] * c.g + w[2] * c.b + w[3]) >> 8;
    };
    return Color{sum(rows[0]), sum(rows[1]), sum(rows[2])};
  });
}

void changeChroma(uint8_t* r, uint8_t* g, uint8_t* b, ptrdiff_t count, const LabTables& tables) {
  forColors(r, g, b, count, [&](const Color& color) { return chromaChanged(color, tables); });
}

}  // namespace plain

QPX_DEFINE_PLAIN_FORM(HueRows, QPX_HUE_ROWS)

}  // namespace qpx::simd
