// Pictures of several planes, each plane in a block of exactly its size.
#pragma once

#include <qpx/engine.h>

#include <cstddef>
#include <cstdint>
#include <random>
#include <vector>

#include "engine/address.h"

namespace qpx::testing {

struct PlanarFormat {
  const char* name;
  uint32_t format;
  int32_t across;  // chroma divisors, 0 for a format without chroma
  int32_t down;
  int first;  // of the interleaved planes the one that comes first; 0 where they are apart
};

constexpr PlanarFormat kPlanarFormats[] = {
    {"NV21", 0x70000002, 2, 2, 2}, {"NV12", 0x70000003, 2, 2, 1}, {"I420", 0x50000811, 2, 2, 0},
    {"I422", 0x50000810, 2, 1, 0}, {"I444", 0x50000800, 1, 1, 0}, {"I440", 0x50000801, 1, 2, 0},
    {"V410", 0x50000813, 2, 4, 0}, {"I411", 0x50000830, 4, 1, 0}, {"Grey", 0x64000000, 0, 0, 0}};

class PlanarPicture {
 public:
  PlanarPicture(const PlanarFormat& format, int32_t width, int32_t height, uint8_t fill)
      : format_(format), width_(width), height_(height) {
    luma_.assign(static_cast<size_t>(width) * static_cast<size_t>(height), fill);
    if (format.across == 0) return;
    const size_t columns = static_cast<size_t>((width + format.across - 1) / format.across);
    const size_t rows = static_cast<size_t>((height + format.down - 1) / format.down);
    chromaPitch_ = static_cast<ptrdiff_t>(interleaved() ? 2 * columns : columns);
    for (int i = 0; i < (interleaved() ? 1 : 2); ++i) {
      chroma_[i].assign(static_cast<size_t>(chromaPitch_) * rows, fill);
    }
  }

  static PlanarPicture random(const PlanarFormat& format, int32_t width, int32_t height,
                              uint32_t seed) {
    PlanarPicture picture(format, width, height, 0);
    std::mt19937 random(seed);
    for (auto* plane : {&picture.luma_, &picture.chroma_[0], &picture.chroma_[1]}) {
      for (uint8_t& byte : *plane) byte = static_cast<uint8_t>(random());
    }
    return picture;
  }

  bool interleaved() const { return format_.first != 0; }
  int32_t width() const { return width_; }
  int32_t height() const { return height_; }

  // The sample of plane p for pixel (x, y).
  uint8_t& sample(int p, int32_t x, int32_t y) {
    if (p == 0) return luma_[static_cast<size_t>(y) * static_cast<size_t>(width_) + size_t(x)];
    const ptrdiff_t row = (y / format_.down) * chromaPitch_;
    const ptrdiff_t column = x / format_.across;
    if (!interleaved()) return chroma_[p - 1][static_cast<size_t>(row + column)];
    return chroma_[0][static_cast<size_t>(row + 2 * column + (p == format_.first ? 0 : 1))];
  }

  // Planes that address the pixel (x, y), which may lie outside.
  QPXPlaneSet planes(int32_t x, int32_t y) {
    QPXPlaneSet set = {};
    set.pitch[0] = width_;
    set.plane[0] = address(luma_, ptrdiff_t{y} * width_ + x);
    for (int p = 1; p < 3 && format_.across != 0; ++p) {
      set.pitch[p] = static_cast<int32_t>(chromaPitch_);
      const ptrdiff_t row = (y / format_.down) * chromaPitch_;
      set.plane[p] = interleaved() ? address(chroma_[0], row + x + (p == format_.first ? 0 : 1))
                                   : address(chroma_[p - 1], row + x / format_.across);
    }
    return set;
  }

  bool operator==(const PlanarPicture& other) const {
    return luma_ == other.luma_ && chroma_[0] == other.chroma_[0] && chroma_[1] == other.chroma_[1];
  }

 private:
  static uint8_t* address(std::vector<uint8_t>& plane, ptrdiff_t offset) {
    return advance(plane.data(), 1, offset);
  }

  PlanarFormat format_;
  int32_t width_;
  int32_t height_;
  ptrdiff_t chromaPitch_ = 0;
  std::vector<uint8_t> luma_;
  std::vector<uint8_t> chroma_[2];
};

}  // namespace qpx::testing
