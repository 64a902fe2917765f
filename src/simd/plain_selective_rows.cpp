#include <cstdlib>

#include "simd/selective_math.h"

namespace qpx::simd {
namespace plain {
namespace {

enum ColorClass { reds, yellows, greens, cyans, blues, magentas, whites, neutrals, blacks };

// The changes of one colour's three channels.
class InkChange {
 public:
  InkChange(const Inks& inks, uint8_t r, uint8_t g, uint8_t b) : inks_(inks), channel_{r, g, b} {
    const auto [least, most] = std::minmax({r, g, b});
    least_ = least;
    most_ = most;
    mid_ = r + g + b - least - most;
  }

  void addClasses() {
    const auto& [r, g, b] = channel_;
    if (r == most_) addHue(reds, most_ - mid_);
    if (b == least_) addHue(yellows, mid_ - least_);
    if (g == most_) addHue(greens, most_ - mid_);
    if (r == least_) addHue(cyans, mid_ - least_);
    if (b == most_) addHue(blues, most_ - mid_);
    if (g == least_) addHue(magentas, mid_ - least_);
    if (least_ > 127) addTone(whites, 2 * least_ - 255, whiteGain);
    addTone(neutrals, neutralWeight(mid_, most_), neutralGain);
    if (most_ <= 127) addTone(blacks, 255 - 2 * most_, blackGain);
  }

  uint8_t result(int ink) const {
    return static_cast<uint8_t>(std::clamp(channel_[ink] + delta_[ink], 0, 255));
  }

 private:
  // What a channel gains from a share of ink taken away.
  using Gain = int32_t (*)(const InkChange& color, int32_t v, int32_t share, int32_t weight);

  static int32_t whiteGain(const InkChange& color, int32_t v, int32_t share, int32_t) {
    return (share * whiteRoom(v, color.least_)) >> 10;
  }

  static int32_t neutralGain(const InkChange& color, int32_t v, int32_t share, int32_t weight) {
    return (((share * weight) >> 8) * neutralRoom(v, color.most_)) >> 10;
  }

  static int32_t blackGain(const InkChange& color, int32_t v, int32_t share, int32_t) {
    return (share * blackRoom(v, color.most_)) >> 10;
  }

  static int32_t hueGain(const InkChange&, int32_t v, int32_t share, int32_t weight) {
    return inkGain(v, share, weight);
  }

  void addHue(ColorClass colorClass, int32_t weight) { addTone(colorClass, weight, hueGain); }

  void addTone(ColorClass colorClass, int32_t weight, Gain gain) {
    for (int ink = 0; ink < kInks; ++ink) {
      const int32_t amount = inks_.amount[ink][colorClass];
      const int32_t v = channel_[ink];
      if (amount > 0) delta_[ink] -= inkLoss(v, amount, weight);
      if (amount < 0) delta_[ink] += gain(*this, v, percentShare(-amount), weight);
    }
  }

  const Inks& inks_;
  int32_t channel_[kInks];
  int32_t delta_[kInks] = {};
  int32_t least_, mid_, most_;
};

class AbsoluteColor {
 public:
  AbsoluteColor(const Inks& inks, uint8_t r, uint8_t g, uint8_t b)
      : inks_(inks), channel_{r, g, b} {
    const auto [least, most] = std::minmax({r, g, b});
    const int32_t mid = r + g + b - least - most;
    const int32_t top = most - mid, bottom = mid - least;
    if (r == most) add(reds, top);
    if (b == least) add(yellows, bottom);
    if (g == most) add(greens, top);
    if (r == least) add(cyans, bottom);
    if (b == most) add(blues, top);
    if (g == least) add(magentas, bottom);
    if (least > 127) add(whites, 2 * least - 255);
    add(neutrals, 255 - (std::abs(least - 127) + std::abs(most - 127)));
    if (most <= 127) add(blacks, 255 - 2 * most);
  }

  uint8_t result(int ink) const {
    return static_cast<uint8_t>(std::clamp(channel_[ink] - loss_[ink], 0, 255));
  }

 private:
  void add(ColorClass colorClass, int32_t weight) {
    for (int ink = 0; ink < kInks; ++ink) {
      const int32_t levels = absoluteLevels(inks_.amount[ink][colorClass]);
      loss_[ink] += absoluteLoss(channel_[ink], levels, weight);
    }
  }

  const Inks& inks_;
  int32_t channel_[kInks];
  int32_t loss_[kInks] = {};
};

}  // namespace

void selectAbsoluteInks(uint8_t* r, uint8_t* g, uint8_t* b, ptrdiff_t count, const Inks& inks) {
  for (ptrdiff_t i = 0; i < count; ++i) {
    const AbsoluteColor color(inks, r[i], g[i], b[i]);
    r[i] = color.result(0);
    g[i] = color.result(1);
    b[i] = color.result(2);
  }
}

void selectInks(uint8_t* r, uint8_t* g, uint8_t* b, ptrdiff_t count, const Inks& inks) {
  for (ptrdiff_t i = 0; i < count; ++i) {
    InkChange change(inks, r[i], g[i], b[i]);
    change.addClasses();
    r[i] = change.result(0);
    g[i] = change.result(1);
    b[i] = change.result(2);
  }
}

}  // namespace plain

QPX_DEFINE_PLAIN_FORM(SelectiveRows, QPX_SELECTIVE_ROWS)

}  // namespace qpx::simd
