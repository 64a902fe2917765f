#include "geometry/turned_picture.h"

#include <cmath>
#include <cstddef>

namespace qpx::testing {
namespace {

constexpr uint8_t kGuard = 0xC3;
constexpr size_t kMargin = 37;

}  // namespace

RgbPicture::RgbPicture(uint32_t format, int32_t width, int32_t height, int32_t padding)
    : format_(format),
      width_(width),
      height_(height),
      bytes_((format & 0x0F000000) == 0x07000000 ? 4 : 3),
      pitch_(width * bytes_ + padding),
      block_(2 * kMargin + static_cast<size_t>(pitch_) * static_cast<size_t>(height), kGuard) {}

RgbPicture RgbPicture::random(uint32_t format, int32_t width, int32_t height, uint32_t seed,
                              int32_t padding) {
  RgbPicture picture(format, width, height, padding);
  uint32_t state = seed * 2654435761u + 1;
  for (int32_t y = 0; y < height; ++y) {
    for (int32_t i = 0; i < width * picture.bytes_; ++i) {
      state = state * 1664525 + 1013904223;
      picture.pixel(0, y)[i] = static_cast<uint8_t>(state >> 24);
    }
  }
  return picture;
}

RgbPicture RgbPicture::smooth(uint32_t format, int32_t width, int32_t height) {
  RgbPicture picture(format, width, height);
  for (int32_t y = 0; y < height; ++y) {
    for (int32_t x = 0; x < width; ++x) {
      const auto wave = [&](double across, double down) {
        return static_cast<int>(127.5 + 100 * std::sin(x * across + y * down));
      };
      picture.put(x, y, {wave(0.07, 0.02), wave(-0.03, 0.06), wave(0.05, 0.05), 255});
    }
  }
  return picture;
}

MBitmap RgbPicture::bitmap() const {
  MBitmap record = {format_, width_, height_, {pitch_, 0, 0}, {}};
  record.plane[0] = pixel(0, 0);
  return record;
}

uint8_t* RgbPicture::pixel(int32_t x, int32_t y) const {
  return block_.data() + kMargin + ptrdiff_t{pitch_} * y + ptrdiff_t{x} * bytes_;
}

Pixel RgbPicture::at(int32_t x, int32_t y) const {
  const uint8_t* from = pixel(x, y);
  return {from[0], from[1], from[2], bytes_ == 4 ? from[3] : 0};
}

void RgbPicture::put(int32_t x, int32_t y, const Pixel& value) {
  for (int c = 0; c < bytes_; ++c) {
    pixel(x, y)[c] = static_cast<uint8_t>(value[static_cast<size_t>(c)]);
  }
}

std::string RgbPicture::differenceTo(const RgbPicture& other) const {
  for (int32_t y = 0; y < height_; ++y) {
    for (int32_t x = 0; x < width_; ++x) {
      const Pixel here = at(x, y);
      const Pixel there = other.at(x, y);
      if (here == there) continue;
      std::string text = "at " + std::to_string(x) + ", " + std::to_string(y) + ":";
      for (size_t c = 0; c < 4; ++c) {
        text.append(" ").append(std::to_string(here[c])).append("/");
        text.append(std::to_string(there[c]));
      }
      return text;
    }
  }
  return "";
}

bool RgbPicture::guardsHold() const {
  const auto rowBytes = static_cast<size_t>(width_) * static_cast<size_t>(bytes_);
  for (size_t i = 0; i < block_.size(); ++i) {
    const bool before = i < kMargin;
    const size_t behind = before ? 0 : i - kMargin;
    const bool inside = !before &&
                        behind / static_cast<size_t>(pitch_) < static_cast<size_t>(height_) &&
                        behind % static_cast<size_t>(pitch_) < rowBytes;
    if (!inside && block_[i] != kGuard) return false;
  }
  return true;
}

}  // namespace qpx::testing
