#include "convert/conversion_picture.h"

#include <array>
#include <cstdlib>

#include "support/picture.h"

namespace qpx::testing {
namespace {

constexpr FormatLayout rgb(uint32_t format, int32_t bits, int32_t r, int32_t g, int32_t b,
                           int32_t lowR, int32_t lowG, int32_t lowB) {
  return {format,
          FormatLayout::Kind::rgb,
          bits,
          {r, g, b},
          {lowR, lowG, lowB},
          {},
          {},
          {},
          1,
          1,
          false,
          false,
          256};
}

constexpr FormatLayout palette(uint32_t format, int32_t bits) {
  return {format,     FormatLayout::Kind::palette,
          bits,       {8, 8, 8},
          {16, 8, 0}, {},
          {},         {},
          1,          1,
          false,      false,
          256};
}

constexpr FormatLayout packed(uint32_t format, uint32_t klass, int32_t y, int32_t u, int32_t v,
                              bool exchanged = false) {
  return {format,    FormatLayout::Kind::yuv,
          16,        {},
          {},        {2, 4},
          {y, u, v}, {0, 0, 0},
          2,         1,
          exchanged, false,
          klass};
}

constexpr FormatLayout packed444(uint32_t format, uint32_t klass, int32_t y, int32_t u, int32_t v,
                                 int32_t bytes = 3) {
  return {format,    FormatLayout::Kind::yuv,
          24,        {},
          {},        {bytes, bytes},
          {y, u, v}, {0, 0, 0},
          1,         1,
          false,     false,
          klass};
}

constexpr FormatLayout planar(uint32_t format, uint32_t klass, int32_t subX, int32_t subY) {
  const bool vFirst = klass < 1024;
  return {format, FormatLayout::Kind::yuv,
          8,      {},
          {},     {1, 1},
          {},     {0, vFirst ? 2 : 1, vFirst ? 1 : 2},
          subX,   subY,
          false,  false,
          klass};
}

constexpr FormatLayout pairs(uint32_t format, int32_t subY) {
  return {format, FormatLayout::Kind::yuv, 8, {}, {}, {1, 2}, {}, {0, 1, 2}, 2, subY, false, true,
          format};
}

constexpr FormatLayout kLayouts[] = {
    rgb(0x16000777, 24, 8, 8, 8, 16, 8, 0),
    rgb(0x16001777, 24, 8, 8, 8, 0, 8, 16),
    rgb(0x37000777, 32, 8, 8, 8, 16, 8, 0),
    rgb(0x37001777, 32, 8, 8, 8, 0, 8, 16),
    rgb(0x17000777, 32, 8, 8, 8, 16, 8, 0),
    rgb(0x17001777, 32, 8, 8, 8, 0, 8, 16),
    rgb(0x37004777, 32, 8, 8, 8, 24, 16, 8),
    rgb(0x37005777, 32, 8, 8, 8, 8, 16, 24),
    rgb(0x16000555, 24, 6, 6, 6, 12, 6, 0),
    rgb(0x16001555, 24, 6, 6, 6, 0, 6, 12),
    rgb(0x15000454, 16, 5, 6, 5, 11, 5, 0),
    rgb(0x15001454, 16, 5, 6, 5, 0, 5, 11),
    rgb(0x15000333, 16, 4, 4, 4, 8, 4, 0),
    rgb(0x15001333, 16, 4, 4, 4, 0, 4, 8),
    rgb(0x15000444, 16, 5, 5, 5, 10, 5, 0),
    rgb(0x15001444, 16, 5, 5, 5, 0, 5, 10),
    rgb(0x17000555, 32, 6, 6, 6, 12, 6, 0),
    palette(0x41000000, 1),
    palette(0x43000000, 4),
    palette(0x44000000, 8),
    {0x64000000,
     FormatLayout::Kind::grey,
     8,
     {},
     {},
     {1, 1},
     {},
     {0, 0, 0},
     1,
     1,
     false,
     false,
     640},
    packed(0x50000010, 513, 0, 1, 3),
    packed(0x50000210, 512, 0, 3, 1),
    packed(0x50000410, 514, 1, 0, 2),
    packed(0x50000610, 515, 1, 2, 0),
    packed(0x50000110, 529, 0, 1, 3, true),
    packed(0x50000310, 528, 0, 3, 1, true),
    packed(0x50000510, 530, 1, 0, 2, true),
    packed(0x50000710, 531, 1, 2, 0, true),
    packed444(0x50000000, 576, 0, 1, 2),
    packed444(0x50000200, 577, 0, 2, 1),
    packed444(0x50000400, 578, 2, 0, 1),
    packed444(0x50000600, 579, 2, 1, 0),
    packed444(0x50000500, 580, 1, 0, 2),
    packed444(0x50000700, 581, 1, 2, 0),
    planar(0x50000811, 1025, 2, 2),
    planar(0x50000801, 1026, 1, 2),
    planar(0x50000810, 1027, 2, 1),
    planar(0x50000800, 1028, 1, 1),
    planar(0x50000803, 1024, 1, 4),
    planar(0x50000813, 1024, 2, 4),
    planar(0x50000820, 1024, 3, 1),
    planar(0x50000830, 1024, 4, 1),
    planar(0x50000A11, 769, 2, 2),
    planar(0x50000A01, 770, 1, 2),
    planar(0x50000A10, 771, 2, 1),
    planar(0x50000A00, 772, 1, 1),
    planar(0x50000A13, 768, 2, 4),
    pairs(0x70000002, 2),
    pairs(0x70000003, 2),
    pairs(0x70000004, 1),
    pairs(0x70000005, 1),
    packed(0x70000008, 0x70000008, 0, 2, 3),
    packed444(0x70000009, 0x70000009, 0, 1, 2, 4),
};

constexpr int32_t ceilDivide(int32_t a, int32_t b) { return (a + b - 1) / b; }

// NV21 and its like begin their pairs with V.
bool vFirst(uint32_t format) { return (format & 1) == 0; }

}  // namespace

std::span<const FormatLayout> formatLayouts() { return kLayouts; }

const FormatLayout& layoutOf(uint32_t format) {
  const uint32_t word = format >> 28 >= 5 ? format & ~0x3000u : format;
  for (const FormatLayout& layout : kLayouts) {
    if (layout.format == word) return layout;
  }
  std::abort();
}

ConversionPicture::ConversionPicture(uint32_t format, int32_t width, int32_t height, uint64_t seed)
    : format_(format), width_(width), height_(height), layout_(&layoutOf(format)) {
  const FormatLayout& l = *layout_;
  Random random(seed);
  const bool planar = l.kind == FormatLayout::Kind::yuv && l.plane[1] != 0;
  const bool groups = !planar && l.kind == FormatLayout::Kind::yuv;
  for (int32_t p = 0; p < (planar ? (l.interleaved ? 2 : 3) : 1); ++p) {
    int32_t row = ceilDivide(width * l.bits, 8), rows = height;
    if (groups) row = l.step[1] * ceilDivide(width, l.subX);
    if (planar) row = p == 0 ? width : l.step[1] * ceilDivide(width, l.subX);
    if (p > 0) rows = ceilDivide(height, l.subY);
    pitch_[p] = row + random.between(0, 5);
    block_[p].resize(static_cast<size_t>(pitch_[p]) * static_cast<size_t>(rows - 1) +
                     static_cast<size_t>(row));
    for (uint8_t& byte : block_[p]) byte = random.byte();
  }
  if (l.interleaved) pitch_[2] = pitch_[1];
  pointAtPlanes();
}

void ConversionPicture::pointAtPlanes() {
  for (int32_t p = 0; p < 3; ++p) plane_[p] = block_[p].empty() ? nullptr : block_[p].data();
  if (layout_->interleaved) {
    plane_[1] = block_[1].data() + (vFirst(format_) ? 1 : 0);
    plane_[2] = block_[1].data() + (vFirst(format_) ? 0 : 1);
  }
  if (!upsideDown_) return;
  for (int32_t p = 0; p < 3; ++p) {
    if (plane_[p] == nullptr) continue;
    const int32_t rows = p == 0 ? height_ : ceilDivide(height_, layout_->subY);
    plane_[p] -= ptrdiff_t{pitch_[p]} * (rows - 1);
  }
}

void ConversionPicture::turnOver() {
  upsideDown_ = !upsideDown_;
  for (int32_t& pitch : pitch_) pitch = -pitch;
  pointAtPlanes();
}

ConversionPicture& ConversionPicture::operator=(const ConversionPicture& other) {
  if (this == &other) return *this;
  format_ = other.format_;
  width_ = other.width_;
  height_ = other.height_;
  layout_ = other.layout_;
  upsideDown_ = other.upsideDown_;
  for (int32_t p = 0; p < 3; ++p) {
    block_[p] = other.block_[p];
    pitch_[p] = other.pitch_[p];
  }
  pointAtPlanes();
  return *this;
}

const uint8_t* noisePalette() {
  static const auto entries = [] {
    std::array<uint8_t, 1024> bytes = {};
    Random random(99);
    for (uint8_t& byte : bytes) byte = random.byte();
    return bytes;
  }();
  return entries.data();
}

}  // namespace qpx::testing
