#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <vector>

#include "convert/images_reference.h"

namespace qpx::testing {
namespace {

using HslConverter = int32_t (*)(const uint8_t*, uint8_t*, int32_t, int32_t, int32_t, int32_t);

Hsl at(const std::vector<uint8_t>& pixels, size_t place) {
  return {pixels[3 * place], pixels[3 * place + 1], pixels[3 * place + 2]};
}

// Colours on a grid that has both ends, and all greys.
TEST(Hsl, OfBgrIsExact) {
  std::vector<uint8_t> colours;
  for (int r = 0; r < 256; r += 5) {
    for (int g = 0; g < 256; g += 3) {
      for (int b = 0; b < 256; b += 5) {
        for (const int c : {b, g, r}) colours.push_back(static_cast<uint8_t>(c));
      }
    }
  }
  for (int grey = 0; grey < 256; ++grey) {
    colours.insert(colours.end(), 3, static_cast<uint8_t>(grey));
  }
  const auto count = static_cast<int32_t>(colours.size() / 3);
  const int32_t width = 256, height = count / width;
  std::vector<uint8_t> hsl(colours.size());
  ASSERT_EQ(
      0, mcvColorBGR888toHSL888u8(colours.data(), hsl.data(), height, width, 3 * width, 3 * width));
  for (size_t i = 0; i < static_cast<size_t>(width * height); ++i) {
    const uint8_t* c = &colours[3 * i];
    ASSERT_EQ(referenceHsl(c[2], c[1], c[0]), at(hsl, i))
        << int{c[2]} << ' ' << int{c[1]} << ' ' << int{c[0]};
  }
}

TEST(Hsl, OfHandWorkedColours) {
  // Grey; red; green; blue; a red with green in it: 255 * 42 / 127.5 = ...
  const uint8_t bgr[] = {90, 90, 90, 0, 0, 255, 0, 255, 0, 255, 0, 0, 0, 0, 0, 255, 255, 255};
  uint8_t hsl[18] = {};
  uint8_t twice[3 * 18], out[3 * 18];
  for (int row = 0; row < 3; ++row) std::copy(bgr, bgr + 18, twice + 18 * row);
  ASSERT_EQ(0, mcvColorBGR888toHSL888u8(twice, out, 3, 6, 18, 18));
  std::copy(out + 36, out + 54, hsl);
  const auto expect = [&](int place, int h, int s, int l) {
    EXPECT_EQ(h, hsl[3 * place]) << place;
    EXPECT_EQ(s, hsl[3 * place + 1]) << place;
    EXPECT_EQ(l, hsl[3 * place + 2]) << place;
  };
  expect(0, 170, 0, 90);
  // delta 255, reciprocal 257: 257 * 127 >> 16 = 0; saturation 257 * (65025 + 127) >> 16 = 255
  expect(1, 0, 255, 128);
  expect(2, 85, 255, 128);
  expect(3, 170, 255, 128);
  expect(4, 170, 0, 0);
  expect(5, 170, 0, 255);
}

TEST(Hsl, Of565WidensItsFields) {
  constexpr int32_t kWidth = 256, kHeight = 256;
  std::vector<uint8_t> words(2 * kWidth * kHeight), hsl(3 * kWidth * kHeight);
  for (size_t i = 0; i < kWidth * kHeight; ++i) {
    words[2 * i] = static_cast<uint8_t>(i);
    words[2 * i + 1] = static_cast<uint8_t>(i >> 8);
  }
  for (const bool blueOnTop : {false, true}) {
    const HslConverter convert = blueOnTop ? mcvColorBGR565toHSL888u8 : mcvColorRGB565toHSL888u8;
    ASSERT_EQ(0, convert(words.data(), hsl.data(), kHeight, kWidth, 2 * kWidth, 3 * kWidth));
    for (int i = 0; i < kWidth * kHeight; ++i) {
      const int top = i / 2048, middle = i / 32 % 64, low = i % 32;
      const int a = top * 8 + top / 4, g = middle * 4 + middle / 16, b = low * 8 + low / 4;
      ASSERT_EQ(blueOnTop ? referenceHsl(b, g, a) : referenceHsl(a, g, b),
                at(hsl, static_cast<size_t>(i)))
          << i;
    }
  }
}

uint8_t channel(int y, int64_t scaled) {
  // Nearest, with halves up, without leaning on shifts of negative numbers.
  int64_t rounded = (scaled + 8192 + (int64_t{1} << 40)) / 16384 - (int64_t{1} << 40) / 16384;
  rounded += y;
  return static_cast<uint8_t>(std::clamp<int64_t>(rounded, 0, 255));
}

TEST(Hsl, OfI420TakesTwoRowsAndColumnsAtATime) {
  for (const int32_t width : {3, 4, 7, 66}) {
    for (const int32_t height : {3, 4, 9}) {
      const int32_t pitch = width + 3 + width % 2, outPitch = 3 * width + 5;
      std::vector<uint8_t> src(static_cast<size_t>(pitch * height + pitch / 2 * (height / 2) * 2));
      uint32_t state = 7;
      for (uint8_t& byte : src) byte = static_cast<uint8_t>((state = state * 1664525 + 9) >> 24);
      std::vector<uint8_t> hsl(static_cast<size_t>(outPitch * height), 0xEE), expected = hsl;
      ASSERT_EQ(0, mcvColorI420toHSL888u8(src.data(), hsl.data(), height, width, pitch, outPitch));
      const uint8_t* u = src.data() + pitch * height;
      const uint8_t* v = u + pitch / 2 * (height / 2);
      for (int32_t y = 0; y < height / 2 * 2; ++y) {
        for (int32_t x = 0; x < width / 2 * 2; ++x) {
          const int luma = src[static_cast<size_t>(pitch * y + x)];
          const int64_t cu = u[pitch / 2 * (y / 2) + x / 2] - 128;
          const int64_t cv = v[pitch / 2 * (y / 2) + x / 2] - 128;
          const Hsl colour =
              referenceHsl(channel(luma, 22987 * cv), channel(luma, -11698 * cv - 5636 * cu),
                           channel(luma, 29049 * cu));
          const size_t place = static_cast<size_t>(outPitch * y + 3 * x);
          expected[place] = colour.h;
          expected[place + 1] = colour.s;
          expected[place + 2] = colour.l;
        }
      }
      ASSERT_EQ(expected, hsl) << width << " x " << height;
    }
  }
}

TEST(Hsl, RefusesNullAndSmallPictures) {
  uint8_t src[64] = {}, dst[64] = {};
  for (const HslConverter convert : {mcvColorBGR888toHSL888u8, mcvColorBGR565toHSL888u8,
                                     mcvColorRGB565toHSL888u8, mcvColorI420toHSL888u8}) {
    EXPECT_EQ(-1, convert(nullptr, dst, 3, 3, 9, 9));
    EXPECT_EQ(-1, convert(src, nullptr, 3, 3, 9, 9));
    for (const int32_t side : {2, 1, 0, -1, INT32_MIN}) {
      EXPECT_EQ(-2, convert(src, dst, side, 3, 9, 9));
      EXPECT_EQ(-2, convert(src, dst, 3, side, 9, 9));
    }
  }
  EXPECT_EQ(64, std::count(dst, dst + 64, 0));
}

}  // namespace
}  // namespace qpx::testing
