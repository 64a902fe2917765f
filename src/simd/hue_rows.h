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

// How the colours of every hue change, packed into a word for each degree so that a pixel looks up
// once.
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
    words_[degree] = (std::clamp(light, -1024, 1024) * (1 << 20)) | ((spread & 0x3FF) << 10) |
                     (std::clamp(turn, -360, 360) & 0x3FF);
  }

  Change at(int32_t degree) const {
    const uint32_t word = static_cast<uint32_t>(words_[degree]);
    return {static_cast<int32_t>(word) >> 20, static_cast<int32_t>(word << 12) >> 22,
            static_cast<int32_t>(word << 22) >> 22};
  }

  const int32_t* words() const { return words_; }

 private:
  int32_t words_[kDegrees];
};

// How the colours of one range of hues change. Hues outside it are copied.
class RangeChanges {
 public:
  void leave(int32_t degree) { words_[degree] = 0; }

  // `hue` 0 ... 360 is what the degree becomes, `weight` 0 ... 1024 how much it takes part.
  void set(int32_t degree, int32_t hue, int32_t weight) {
    words_[degree] = kInside | (weight << 9) | hue;
  }

  bool has(int32_t degree) const { return (words_[degree] & kInside) != 0; }
  int32_t hue(int32_t degree) const { return words_[degree] & 0x1FF; }
  int32_t weight(int32_t degree) const { return (words_[degree] >> 9) & 0x7FF; }
  const int32_t* words() const { return words_; }

  static constexpr int32_t kInside = 1 << 20;

  int32_t saturation[256];  // what every saturation moves towards, by weight
  int32_t light;            // -256 ... 256: 64 levels up or down at mid value

 private:
  int32_t words_[kDegrees];
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

  // a* and b* through their table, in place; results are linear light, 255 for white.
  void (*changeChroma)(uint8_t* r, uint8_t* g, uint8_t* b, ptrdiff_t count,
                       const LabTables& tables);
};

#define QPX_HUE_ROWS(ROW, Table) \
  ROW(Table, changeHues)         \
  ROW(Table, changeRange)        \
  ROW(Table, saturate)           \
  ROW(Table, changeChroma)
QPX_DECLARE_ROWS(HueRows, QPX_HUE_ROWS)

inline const HueRows& hueRows() { return chosenForm<HueRows>(); }

}  // namespace qpx::simd
