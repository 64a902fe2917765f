#include "pixel_format.h"

#include <qpx/effects.h>

#include <algorithm>
#include <array>
#include <cstring>

#include "errors.h"
#include "text.h"

namespace qpx::tool {

namespace {

constexpr std::array kFormats = {
    PixelFormat{"bgr24", QPX_FORMAT_BGR24, Layout::packedRgb, QPX_TAKES_RGB24, false},
    PixelFormat{"rgb24", QPX_FORMAT_RGB24, Layout::packedRgb, QPX_TAKES_RGB24, false},
    PixelFormat{"bgra32", QPX_FORMAT_BGRA32, Layout::packedRgb, QPX_TAKES_RGB32, true},
    PixelFormat{"rgba32", QPX_FORMAT_RGBA32, Layout::packedRgb, QPX_TAKES_RGB32, true},
    PixelFormat{"bgrx32", QPX_FORMAT_BGRX32, Layout::packedRgb, QPX_TAKES_RGB_ANY, false},
    PixelFormat{"rgbx32", QPX_FORMAT_RGBX32, Layout::packedRgb, QPX_TAKES_RGB_ANY, false},
    PixelFormat{"rgb565", QPX_FORMAT_RGB565, Layout::packedRgb, QPX_TAKES_RGB565, false},
    PixelFormat{"bgr565", QPX_FORMAT_BGR565, Layout::packedRgb, QPX_TAKES_RGB_ANY, false},
    PixelFormat{"rgb666", QPX_FORMAT_RGB666, Layout::packedRgb, QPX_TAKES_RGB_ANY, false},
    PixelFormat{"bgr666", QPX_FORMAT_BGR666, Layout::packedRgb, QPX_TAKES_RGB_ANY, false},
    PixelFormat{"rgb555", QPX_FORMAT_RGB555, Layout::packedRgb, QPX_TAKES_RGB_ANY, false},
    PixelFormat{"bgr555", QPX_FORMAT_BGR555, Layout::packedRgb, QPX_TAKES_RGB_ANY, false},
    PixelFormat{"rgb444", QPX_FORMAT_RGB444, Layout::packedRgb, QPX_TAKES_RGB_ANY, false},
    PixelFormat{"bgr444", QPX_FORMAT_BGR444, Layout::packedRgb, QPX_TAKES_RGB_ANY, false},
    PixelFormat{"grey", QPX_FORMAT_GREY8, Layout::grey, QPX_TAKES_GREY, false},
    PixelFormat{"i420", QPX_FORMAT_I420, Layout::planar, QPX_TAKES_I420, false},
    PixelFormat{"i422", QPX_FORMAT_I422, Layout::planar, QPX_TAKES_PLANAR, false},
    PixelFormat{"i440", QPX_FORMAT_I440, Layout::planar, QPX_TAKES_PLANAR, false},
    PixelFormat{"i444", QPX_FORMAT_I444, Layout::planar, QPX_TAKES_PLANAR, false},
    PixelFormat{"nv21", QPX_FORMAT_NV21, Layout::semiPlanar, QPX_TAKES_NV21, false},
    PixelFormat{"nv12", QPX_FORMAT_NV12, Layout::semiPlanar, QPX_TAKES_NV12, false},
    PixelFormat{"yuyv", QPX_FORMAT_YUYV, Layout::packed422, QPX_TAKES_YUYV, false},
    PixelFormat{"yvyu", QPX_FORMAT_YVYU, Layout::packed422, 0, false},
    PixelFormat{"uyvy", QPX_FORMAT_UYVY, Layout::packed422, QPX_TAKES_UYVY, false},
    PixelFormat{"vyuy", QPX_FORMAT_VYUY, Layout::packed422, 0, false},
};

int32_t divided(int32_t size, int32_t divisor) { return (size + divisor - 1) / divisor; }

// Fields of a packed RGB pixel, which is a little-endian number of `bytes` bytes. Widths are in the
// low twelve bits of the code, red first; bit 12 puts red into the lowest bits.
struct PackedRgb {
  int bytes;
  std::array<uint32_t, 3> position;
  std::array<uint32_t, 3> maximum;

  explicit PackedRgb(uint32_t code) : bytes(static_cast<int>(code >> 24 & 15) - 3) {
    const std::array<uint32_t, 3> width = {(code >> 8 & 15) + 1, (code >> 4 & 15) + 1,
                                           (code & 15) + 1};
    const bool redLowest = (code & 0x1000) != 0;
    position = redLowest ? std::array<uint32_t, 3>{0, width[0], width[0] + width[1]}
                         : std::array<uint32_t, 3>{width[1] + width[2], width[2], 0};
    for (size_t c = 0; c < 3; ++c) maximum[c] = (1U << width[c]) - 1;
  }
};

void packRow(const PackedRgb& fields, const uint8_t* in, int channels, int32_t width,
             uint8_t* out) {
  for (int32_t x = 0; x < width; ++x, in += channels) {
    uint32_t pixel = fields.bytes == 4 ? (channels == 4 ? in[3] : 255U) << 24 : 0;
    for (size_t c = 0; c < 3; ++c) {
      pixel |= (in[c] * fields.maximum[c] + 127) / 255 << fields.position[c];
    }
    for (int b = 0; b < fields.bytes; ++b) *out++ = static_cast<uint8_t>(pixel >> (8 * b));
  }
}

void unpackRow(const PackedRgb& fields, bool alpha, const uint8_t* in, int32_t width, int channels,
               uint8_t* out) {
  for (int32_t x = 0; x < width; ++x, out += channels) {
    uint32_t pixel = 0;
    for (int b = 0; b < fields.bytes; ++b) pixel |= static_cast<uint32_t>(*in++) << (8 * b);
    for (size_t c = 0; c < 3; ++c) {
      const uint32_t value = pixel >> fields.position[c] & fields.maximum[c];
      out[c] = static_cast<uint8_t>((value * 255 + fields.maximum[c] / 2) / fields.maximum[c]);
    }
    if (alpha && channels == 4) out[3] = static_cast<uint8_t>(pixel >> 24);
  }
}

// One component of a YUV or grey frame.
struct Component {
  uint8_t* first;
  ptrdiff_t pitch;
  int step;
  int32_t across, down;  // divisors

  uint8_t* row(int32_t y) const { return first + pitch * (y / down); }
};

struct Components {
  Component y, u, v;
};

Components planarComponents(const MBitmap& image) {
  const auto across = static_cast<int32_t>(image.format >> 4 & 15) + 1;
  const auto down = static_cast<int32_t>(image.format & 15) + 1;
  return {{image.plane[0], image.pitch[0], 1, 1, 1},
          {image.plane[1], image.pitch[1], 1, across, down},
          {image.plane[2], image.pitch[2], 1, across, down}};
}

// In NV21 and NV12 alike plane[1] addresses the first U and plane[2] the first V.
Components semiPlanarComponents(const MBitmap& image) {
  return {{image.plane[0], image.pitch[0], 1, 1, 1},
          {image.plane[1], image.pitch[1], 2, 2, 2},
          {image.plane[2], image.pitch[2], 2, 2, 2}};
}

// Bits 9 and 10 of the code: V before U, chroma before luma.
Components packedComponents(const MBitmap& image) {
  const bool vFirst = (image.format & 0x200) != 0;
  const bool chromaFirst = (image.format & 0x400) != 0;
  uint8_t* luma = image.plane[0] + (chromaFirst ? 1 : 0);
  uint8_t* chroma = image.plane[0] + (chromaFirst ? 0 : 1);
  const Component early{chroma, image.pitch[0], 4, 2, 1}, late{chroma + 2, image.pitch[0], 4, 2, 1};
  return {{luma, image.pitch[0], 2, 1, 1}, vFirst ? late : early, vFirst ? early : late};
}

Components componentsOf(const Frame& frame) {
  switch (frame.format().layout) {
    case Layout::planar:
      return planarComponents(frame.bitmap());
    case Layout::semiPlanar:
      return semiPlanarComponents(frame.bitmap());
    default:
      return packedComponents(frame.bitmap());
  }
}

struct ColorSum {
  int64_t red = 0, green = 0, blue = 0, count = 0;
};

// Coefficients with 16 fractional bits, as those of luma; they add up to 0.
uint8_t chromaOf(int64_t weighted, int64_t count) {
  const int64_t one = count << 16;
  return static_cast<uint8_t>(std::min<int64_t>((weighted + 128 * one + one / 2) / one, 255));
}

ColorSum sumOfBlock(const Picture& picture, int32_t left, int32_t top, int32_t across,
                    int32_t down) {
  ColorSum sum;
  const int channels = picture.channels();
  for (int32_t y = top; y < std::min(top + down, picture.height()); ++y) {
    for (int32_t x = left; x < std::min(left + across, picture.width()); ++x) {
      const uint8_t* in = picture.row(y) + ptrdiff_t{x} * channels;
      sum.red += in[0];
      sum.green += in[1];
      sum.blue += in[2];
      ++sum.count;
    }
  }
  return sum;
}

void lumaRow(const Picture& picture, int32_t y, uint8_t* out, int step) {
  const uint8_t* in = picture.row(y);
  for (int32_t x = 0; x < picture.width(); ++x, in += picture.channels(), out += step) {
    *out = lumaOf(in);
  }
}

void toYuv(const Picture& picture, const Frame& frame) {
  const Components to = componentsOf(frame);
  for (int32_t y = 0; y < picture.height(); ++y) {
    lumaRow(picture, y, to.y.row(y), to.y.step);
    if (frame.format().layout == Layout::packed422 && picture.width() % 2 != 0) {
      // The pair at the end of an odd row has a second luma that no pixel stands for.
      uint8_t* last = to.y.row(y) + ptrdiff_t{picture.width() - 1} * to.y.step;
      last[to.y.step] = last[0];
    }
    if (y % to.u.down != 0) continue;
    uint8_t *u = to.u.row(y), *v = to.v.row(y);
    for (int32_t x = 0; x < picture.width(); x += to.u.across, u += to.u.step, v += to.v.step) {
      const ColorSum sum = sumOfBlock(picture, x, y, to.u.across, to.u.down);
      *u = chromaOf(-11058 * sum.red - 21710 * sum.green + 32768 * sum.blue, sum.count);
      *v = chromaOf(32768 * sum.red - 27439 * sum.green - 5329 * sum.blue, sum.count);
    }
  }
}

uint8_t toByte(int32_t fixed) {
  return static_cast<uint8_t>(std::clamp((fixed + 32768) >> 16, 0, 255));
}

void fromYuv(const Frame& frame, Picture& picture) {
  const Components from = componentsOf(frame);
  for (int32_t y = 0; y < picture.height(); ++y) {
    const uint8_t *luma = from.y.row(y), *us = from.u.row(y), *vs = from.v.row(y);
    uint8_t* out = picture.row(y);
    for (int32_t x = 0; x < picture.width(); ++x, luma += from.y.step, out += picture.channels()) {
      const int32_t u = us[ptrdiff_t{x / from.u.across} * from.u.step] - 128;
      const int32_t v = vs[ptrdiff_t{x / from.v.across} * from.v.step] - 128;
      out[0] = toByte(*luma * 65536 + 91881 * v);
      out[1] = toByte(*luma * 65536 - 22553 * u - 46802 * v);
      out[2] = toByte(*luma * 65536 + 116130 * u);
    }
  }
}

}  // namespace

std::span<const PixelFormat> pixelFormats() { return kFormats; }

std::vector<std::string> pixelFormatNames() {
  std::vector<std::string> names;
  for (const PixelFormat& format : kFormats) names.emplace_back(format.name);
  return names;
}

const PixelFormat& pixelFormatByName(std::string_view name) {
  for (const PixelFormat& format : kFormats) {
    if (sameName(format.name, name)) return format;
  }
  throw UsageError("unknown pixel format '" + std::string(name) + "': choose one of " +
                   joined(pixelFormatNames(), ", "));
}

Frame::Frame(const PixelFormat& format, int32_t width, int32_t height) : format_(&format) {
  checkSize(width, height, 4);
  bitmap_.format = format.code;
  bitmap_.width = width;
  bitmap_.height = height;
  layOut();
}

// Rows stand close together, without spare bytes at the end, so that memory checkers see any step
// outside.
void Frame::layOut() {
  const int32_t width = bitmap_.width;
  std::array<size_t, 3> rows = {static_cast<size_t>(bitmap_.height), 0, 0};
  std::array<int32_t, 3> pitch = {width, 0, 0};
  if (format_->layout == Layout::packedRgb) pitch[0] = width * PackedRgb(format_->code).bytes;
  if (format_->layout == Layout::packed422) pitch[0] = divided(width, 2) * 4;
  if (format_->layout == Layout::planar) {
    pitch[1] = pitch[2] = divided(width, static_cast<int32_t>(format_->code >> 4 & 15) + 1);
    const int32_t down = static_cast<int32_t>(format_->code & 15) + 1;
    rows[1] = rows[2] = static_cast<size_t>(divided(bitmap_.height, down));
  }
  if (format_->layout == Layout::semiPlanar) {
    pitch[1] = divided(width, 2) * 2;
    rows[1] = static_cast<size_t>(divided(bitmap_.height, 2));
  }
  std::array<size_t, 3> start{};
  for (size_t p = 0; p < 3; ++p) {
    start[p] = size_;
    size_ += static_cast<size_t>(pitch[p]) * rows[p];
  }
  block_ = std::make_unique_for_overwrite<uint8_t[]>(size_);
  for (size_t p = 0; p < 3; ++p) {
    bitmap_.pitch[p] = pitch[p];
    bitmap_.plane[p] = pitch[p] > 0 ? block_.get() + start[p] : nullptr;
  }
  if (format_->layout == Layout::semiPlanar) {
    const bool vFirst = format_->code == QPX_FORMAT_NV21;
    uint8_t* chroma = block_.get() + start[1];
    bitmap_.pitch[2] = pitch[1];
    bitmap_.plane[1] = vFirst ? chroma + 1 : chroma;
    bitmap_.plane[2] = vFirst ? chroma : chroma + 1;
  }
}

QPXPlaneSet Frame::planesAt(int32_t row) const {
  const bool halved = format_->layout == Layout::semiPlanar;
  const bool planar = format_->layout == Layout::planar;
  const int32_t down = halved ? 2 : (planar ? static_cast<int32_t>(format_->code & 15) + 1 : 1);
  QPXPlaneSet planes{};
  for (int p = 0; p < 3; ++p) {
    planes.pitch[p] = bitmap_.pitch[p];
    if (!bitmap_.plane[p]) continue;
    planes.plane[p] = bitmap_.plane[p] + ptrdiff_t{bitmap_.pitch[p]} * (p == 0 ? row : row / down);
  }
  return planes;
}

void Frame::copyFrom(const Frame& other) { std::memcpy(block_.get(), other.block_.get(), size_); }

void toFrame(const Picture& picture, Frame& frame) {
  const Layout layout = frame.format().layout;
  if (layout != Layout::packedRgb && layout != Layout::grey) return toYuv(picture, frame);
  const MBitmap& image = frame.bitmap();
  for (int32_t y = 0; y < picture.height(); ++y) {
    uint8_t* out = image.plane[0] + ptrdiff_t{image.pitch[0]} * y;
    if (layout == Layout::grey) {
      lumaRow(picture, y, out, 1);
    } else {
      packRow(PackedRgb(image.format), picture.row(y), picture.channels(), picture.width(), out);
    }
  }
}

void fromFrame(const Frame& frame, Picture& picture) {
  const Layout layout = frame.format().layout;
  if (layout != Layout::packedRgb && layout != Layout::grey) return fromYuv(frame, picture);
  const MBitmap& image = frame.bitmap();
  for (int32_t y = 0; y < picture.height(); ++y) {
    const uint8_t* in = image.plane[0] + ptrdiff_t{image.pitch[0]} * y;
    uint8_t* out = picture.row(y);
    if (layout == Layout::packedRgb) {
      unpackRow(PackedRgb(image.format), frame.format().keepsAlpha, in, picture.width(),
                picture.channels(), out);
      continue;
    }
    for (int32_t x = 0; x < picture.width(); ++x, out += picture.channels()) {
      std::fill_n(out, 3, in[x]);
    }
  }
}

}  // namespace qpx::tool
