// Hue, saturation and value in integers: degrees 0 ... 360 and samples, by reciprocals with fifteen
// fractional bits. The way back does not lead quite to where the way there began.
#pragma once

#include <algorithm>
#include <array>
#include <cstdint>

namespace qpx {

// 2^15 / i; 0 for 0.
constexpr std::array<int32_t, 256> kReciprocal15 = [] {
  std::array<int32_t, 256> table = {};
  for (int32_t i = 1; i < 256; ++i) table[static_cast<size_t>(i)] = (1 << 15) / i;
  return table;
}();

struct Hsv {
  int32_t hue;
  int32_t saturation;
  int32_t value;
};

struct HsvColor {
  uint8_t r, g, b;
};

// Greys have hue 0.
inline int32_t hsvHue(int32_t r, int32_t g, int32_t b, int32_t most, int32_t least) {
  if (most == least) return 0;
  const int32_t reciprocal = kReciprocal15[static_cast<size_t>(most - least)];
  int32_t turn;  // 1024 for 60 degrees
  if (most == r) {
    turn = (reciprocal * (g - b)) >> 5;
  } else if (most == g) {
    turn = ((reciprocal * (b - r)) >> 5) + 2048;
  } else {
    turn = ((reciprocal * (r - g)) >> 5) + 4096;
  }
  const int32_t hue = (turn * 60) >> 10;
  return hue < 0 ? hue + 360 : hue;
}

// 256 of a pure colour are one too many.
inline int32_t hsvSaturation(int32_t most, int32_t least) {
  return std::min((kReciprocal15[static_cast<size_t>(most)] * (most - least)) >> 7, 255);
}

inline Hsv hsvOf(int32_t r, int32_t g, int32_t b) {
  const int32_t most = std::max({r, g, b}), least = std::min({r, g, b});
  return {hsvHue(r, g, b, most, least), hsvSaturation(most, least), most};
}

// By the six sectors of the hue circle; hue 360 is the value with two channels held down. 546 /
// 2^15 falls a little short of 1/60, so that a sector ends with the hue that would begin the next.
inline HsvColor rgbOf(const Hsv& hsv) {
  const int32_t s = hsv.saturation, v = hsv.value;
  const int32_t sector = hsv.hue == 360 ? 6 : (hsv.hue * 546) >> 15;
  const int32_t part = (s * (hsv.hue - 60 * sector) * 546) >> 15;
  const auto sample = [v](int32_t share) {
    return static_cast<uint8_t>(std::clamp((share * v) >> 8, 0, 255));
  };
  const uint8_t top = static_cast<uint8_t>(v);
  const uint8_t hold = sample(255 - s);
  switch (sector) {
    case 0:
      return {top, sample(255 - s + part), hold};
    case 1:
      return {sample(255 - part), top, hold};
    case 2:
      return {hold, top, sample(255 - s + part)};
    case 3:
      return {hold, sample(255 - part), top};
    case 4:
      return {sample(255 - s + part), hold, top};
    case 5:
      return {top, hold, sample(255 - part)};
    default:
      return {top, hold, hold};
  }
}

}  // namespace qpx
