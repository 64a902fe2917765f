// The steps of the adjustments of hue, saturation and lightness, as a table of row functions beside
// Rows and under the same rules: no alignment needed, nothing outside [0, count) touched, plain
// form and vector form of the same bytes.
#pragma once

#include <stddef.h>
#include <stdint.h>

#include <algorithm>

#include "simd/row_forms.h"

namespace qpx::simd {

inline constexpr int32_t kDegrees = 361;  // 0 ... 360

// A word for every degree, so that a pixel looks up once; the same by bytes, for processors that
// look up bytes faster.
class DegreeWords {
 public:
  static constexpr int32_t kPlaneBytes = 512;  // two tables of 256, the second of 256 and above

  void set(int32_t degree, int32_t word) {
    words_[degree] = word;
    for (int k = 0; k < 4; ++k) {
      bytes_[k][degree] = static_cast<uint8_t>(static_cast<uint32_t>(word) >> (8 * k));
    }
  }

  int32_t at(int32_t degree) const { return words_[degree]; }
  const int32_t* words() const { return words_; }
  const uint8_t* bytes(int k) const { return bytes_[k]; }

 private:
  int32_t words_[kDegrees];
  uint8_t bytes_[4][kPlaneBytes];
};

// How the colours of every hue change.
class HueChanges {
 public:
  struct Change {
    int32_t light;   // 1024ths of the way, above 0 to the least channel, below 0 to the largest
    int32_t spread;  // 255ths that saturation gains or loses
    int32_t turn;    // degrees
  };

  // `light` and `saturation` count from -1024 to 1024 and are clamped, `turn` from -360 to 360.
  void set(int32_t degree, int32_t light, int32_t saturation, int32_t turn) {
    const int32_t spread = saturation < -1024 ? -255 : (std::min(saturation, 1024) * 255) >> 10;
    packed_.set(degree, (std::clamp(light, -1024, 1024) * (1 << 20)) | ((spread & 0x3FF) << 10) |
                            (std::clamp(turn, -360, 360) & 0x3FF));
  }

  Change at(int32_t degree) const {
    const uint32_t word = static_cast<uint32_t>(packed_.at(degree));
    return {static_cast<int32_t>(word) >> 20, static_cast<int32_t>(word << 12) >> 22,
            static_cast<int32_t>(word << 22) >> 22};
  }

  const DegreeWords& packed() const { return packed_; }

 private:
  DegreeWords packed_;
};

// How the colours of one range of hues change. Hues outside it are copied.
class RangeChanges {
 public:
  void leave(int32_t degree) { packed_.set(degree, 0); }

  // `hue` 0 ... 360 is what the degree becomes, `weight` 0 ... 1024 how much it takes part.
  void set(int32_t degree, int32_t hue, int32_t weight) {
    packed_.set(degree, kInside | (weight << 9) | hue);
  }

  bool has(int32_t degree) const { return (packed_.at(degree) & kInside) != 0; }
  int32_t hue(int32_t degree) const { return packed_.at(degree) & 0x1FF; }
  int32_t weight(int32_t degree) const { return (packed_.at(degree) >> 9) & 0x7FF; }
  const DegreeWords& packed() const { return packed_; }

  static constexpr int32_t kInside = 1 << 20;

  uint8_t saturation[256];  // what every saturation moves towards, by weight
  int32_t light;            // -256 ... 256: 64 levels up or down at mid value

 private:
  DegreeWords packed_;
};

// CIELAB there and back, in the tables that it takes.
struct LabTables {
  int32_t linear[256];   // samples to linear light, 1024 for white
  int32_t root[1025];    // linear light to the cube roots of CIELAB, both in 1024ths
  int32_t chroma[401];   // a* and b* from -200
  int32_t square[2049];  // roots from -1024 back to linear light
};

struct HueRows {
  // Lightness, saturation and hue by the hue of the pixel, in HSL, in place. Greys stay.
  void (*changeHues)(uint8_t* r, uint8_t* g, uint8_t* b, ptrdiff_t count,
                     const HueChanges& changes);

  // Hue, saturation and value of one range of hues, in HSV, in place.
  void (*changeRange)(uint8_t* r, uint8_t* g, uint8_t* b, ptrdiff_t count,
                      const RangeChanges& changes);

  // Every channel moves away from the mean m of the extremes by ((c - m) * gain) >> 10, in place.
  // An `amount` of -1024 ... 0 is the gain; above that, up to 512, the gain is that of
  // 1024 / (1024 - amount), or what brings the colour to full saturation where that is less.
  void (*saturate)(uint8_t* r, uint8_t* g, uint8_t* b, ptrdiff_t count, int32_t amount);

  // More light in HSV, in place; black stays. Value goes through `tones`, and saturation falls by
  //   ((value < 129 ? value : 255 - value) * units) >> 10
  // which leaves a grey where nothing is left of it. `units` is 0 ... 1280.
  void (*brighten)(uint8_t* r, uint8_t* g, uint8_t* b, ptrdiff_t count, const uint8_t* tones,
                   int32_t units);

  // Towards `grey` by the share of the pixel's hue, 0 ... 256, in place:
  //   c + (((grey - c) * share + 128) >> 8)
  // The hue has whole degrees, 0 ... 359: 60 * difference / chroma, cut towards 0, from 0, 120 or
  // 240. A `mask`, which may be null, lessens the share to share * mask / 255.
  void (*fadeHues)(uint8_t* r, uint8_t* g, uint8_t* b, ptrdiff_t count, const uint8_t* grey,
                   const uint8_t* mask, const DegreeWords& shares);

  // From `base` to `top` by a weight in 256ths, cut downwards:
  //   dst = base + ((weight * (top - base)) >> 8). In place on any.
  void (*mixWeighted)(const uint8_t* base, const uint8_t* top, const uint8_t* weight, uint8_t* dst,
                      ptrdiff_t count);

  // The hue and chroma of every colour at the luma of `grey`, by tintedGrey of tint_math.h,
  // clamped. In place.
  void (*tintGreys)(uint8_t* r, uint8_t* g, uint8_t* b, ptrdiff_t count, const uint8_t* grey);

  // Every channel as a weighted sum of the three, in place: of rows of eight fractional bits,
  //   c = clamp((row[0] * r + row[1] * g + row[2] * b + row[3]) >> 8)
  // Weights fit 16 bits, and no sum leaves 32.
  void (*mixColors)(uint8_t* r, uint8_t* g, uint8_t* b, ptrdiff_t count,
                    const int32_t (&rows)[3][4]);

  // a* and b* through their table, in place; results are linear light, 255 for white.
  void (*changeChroma)(uint8_t* r, uint8_t* g, uint8_t* b, ptrdiff_t count,
                       const LabTables& tables);
};

#define QPX_HUE_ROWS(ROW, Table) \
  ROW(Table, changeHues)         \
  ROW(Table, changeRange)        \
  ROW(Table, saturate)           \
  ROW(Table, brighten)           \
  ROW(Table, fadeHues)           \
  ROW(Table, mixWeighted)        \
  ROW(Table, tintGreys)          \
  ROW(Table, mixColors)          \
  ROW(Table, changeChroma)
QPX_DECLARE_ROWS(HueRows, QPX_HUE_ROWS)

inline const HueRows& hueRows() { return chosenForm<HueRows>(); }

}  // namespace qpx::simd
