// Pictures for the tests of rotation: guarded on all sides, read by pixel.
#pragma once

#include <qpx/qpx.h>

#include <array>
#include <cstdint>
#include <string>
#include <vector>

namespace qpx::testing {

using Pixel = std::array<int, 4>;  // bytes in memory order; the fourth is 0 in 24 bits

class RgbPicture {
 public:
  // Rows are `padding` bytes apart more than needed, and known bytes lie all around.
  RgbPicture(uint32_t format, int32_t width, int32_t height, int32_t padding = 5);

  static RgbPicture random(uint32_t format, int32_t width, int32_t height, uint32_t seed,
                           int32_t padding = 5);
  // Gentle waves without noise, for turns there and back.
  static RgbPicture smooth(uint32_t format, int32_t width, int32_t height);

  int32_t width() const { return width_; }
  int32_t height() const { return height_; }
  int bytes() const { return bytes_; }
  uint32_t format() const { return format_; }
  MBitmap bitmap() const;

  Pixel at(int32_t x, int32_t y) const;
  void put(int32_t x, int32_t y, const Pixel& pixel);

  // Empty where all pixels are equal, otherwise where they differ first.
  std::string differenceTo(const RgbPicture& other) const;
  // Bytes around the pixels are as they were made.
  bool guardsHold() const;

 private:
  uint8_t* pixel(int32_t x, int32_t y) const;

  uint32_t format_;
  int32_t width_;
  int32_t height_;
  int bytes_;
  int32_t pitch_;
  mutable std::vector<uint8_t> block_;
};

inline constexpr uint32_t kBothBgr[] = {QPX_FORMAT_BGR24, QPX_FORMAT_BGRA32};
inline constexpr uint32_t kAllRgb[] = {QPX_FORMAT_BGR24, QPX_FORMAT_RGB24, QPX_FORMAT_BGRA32,
                                       QPX_FORMAT_RGBA32};

// Runs body with vector forms and with plain ones.
template <typename Body>
void inBothForms(const Body& body) {
  for (const int32_t plain : {0, 1}) {
    QPX_UsePlainForms(plain);
    body();
  }
  QPX_UsePlainForms(0);
}

inline double radians(double degrees) { return degrees * 3.1415926535 / 180.0; }

}  // namespace qpx::testing
