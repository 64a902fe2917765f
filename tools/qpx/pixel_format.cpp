#include "pixel_format.h"

#include <qpx/effects.h>

#include <algorithm>
#include <array>
#include <cstring>
#include <utility>

#include "errors.h"
#include "picture.h"
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
    PixelFormat{"i411", QPX_FORMAT_I411, Layout::planar, QPX_TAKES_PLANAR, false},
    PixelFormat{"i410", QPX_FORMAT_I410, Layout::planar, QPX_TAKES_PLANAR, false},
    PixelFormat{"yv12", QPX_FORMAT_YV12, Layout::planar, QPX_TAKES_I420, false},
    PixelFormat{"yv16", QPX_FORMAT_YV16, Layout::planar, QPX_TAKES_PLANAR, false},
    PixelFormat{"yv24", QPX_FORMAT_YV24, Layout::planar, QPX_TAKES_PLANAR, false},
    PixelFormat{"nv21", QPX_FORMAT_NV21, Layout::semiPlanar, QPX_TAKES_NV21, false},
    PixelFormat{"nv12", QPX_FORMAT_NV12, Layout::semiPlanar, QPX_TAKES_NV12, false},
    PixelFormat{"nv61", QPX_FORMAT_NV61, Layout::semiPlanar, 0, false},
    PixelFormat{"nv16", QPX_FORMAT_NV16, Layout::semiPlanar, 0, false},
    PixelFormat{"yuyv", QPX_FORMAT_YUYV, Layout::packed422, QPX_TAKES_YUYV, false},
    PixelFormat{"yvyu", QPX_FORMAT_YVYU, Layout::packed422, 0, false},
    PixelFormat{"uyvy", QPX_FORMAT_UYVY, Layout::packed422, QPX_TAKES_UYVY, false},
    PixelFormat{"vyuy", QPX_FORMAT_VYUY, Layout::packed422, 0, false},
    PixelFormat{"yuv24", QPX_FORMAT_YUV24, Layout::packed444, 0, false},
    PixelFormat{"iyu2", QPX_FORMAT_UYV24, Layout::packed444, 0, false},
    PixelFormat{"yuvx32", QPX_FORMAT_YUVX32, Layout::packed444, 0, false},
};

int32_t divided(int32_t size, int32_t divisor) { return (size + divisor - 1) / divisor; }

// Flags of codes of YUV: V in front of U, and chroma in front of luma.
constexpr uint32_t kVFirst = 0x200, kChromaFirst = 0x400;

bool isVFirst(const PixelFormat& format) {
  if (format.layout == Layout::semiPlanar) {
    return format.code == QPX_FORMAT_NV21 || format.code == QPX_FORMAT_NV61;
  }
  return format.layout == Layout::planar && (format.code & kVFirst) != 0;
}

// Where the planes of a frame lie.
struct Plan {
  std::array<int32_t, 3> pitch;
  std::array<size_t, 3> start;
  size_t bytes;
};

Plan planOf(const PixelFormat& format, int32_t width, int32_t height) {
  checkSize(width, height, 4);
  const int32_t chromaWidth = divided(width, chromaAcross(format));
  std::array<int32_t, 3> pitch = {width, 0, 0};
  if (format.layout == Layout::packedRgb || format.layout == Layout::packed444) {
    pitch[0] = width * bytesPerPixel(format);
  }
  if (format.layout == Layout::packed422) pitch[0] = chromaWidth * 4;
  if (format.layout == Layout::planar) pitch[1] = pitch[2] = chromaWidth;
  if (format.layout == Layout::semiPlanar) pitch[1] = chromaWidth * 2;
  const auto chromaRows = static_cast<size_t>(divided(height, chromaDown(format)));
  const size_t u = static_cast<size_t>(pitch[0]) * static_cast<size_t>(height);
  const size_t v = u + static_cast<size_t>(pitch[1]) * chromaRows;
  return {pitch, {0, u, v}, v + static_cast<size_t>(pitch[2]) * chromaRows};
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

int32_t chromaAcross(const PixelFormat& format) {
  if (format.layout == Layout::semiPlanar || format.layout == Layout::packed422) return 2;
  return format.layout == Layout::planar ? static_cast<int32_t>(format.code >> 4 & 15) + 1 : 1;
}

int32_t chromaDown(const PixelFormat& format) {
  if (format.layout == Layout::semiPlanar) {
    return format.code == QPX_FORMAT_NV21 || format.code == QPX_FORMAT_NV12 ? 2 : 1;
  }
  return format.layout == Layout::planar ? static_cast<int32_t>(format.code & 15) + 1 : 1;
}

int32_t bytesPerPixel(const PixelFormat& format) {
  if (format.layout == Layout::packedRgb) return static_cast<int32_t>(format.code >> 24 & 15) - 3;
  return format.code == QPX_FORMAT_YUVX32 ? 4 : 3;
}

bool hasSpareByte(const PixelFormat& format) {
  const bool wholePixels = format.layout == Layout::packedRgb || format.layout == Layout::packed444;
  return wholePixels && bytesPerPixel(format) == 4;
}

bool beginsWithChroma(const PixelFormat& format) {
  const bool packedYuv = format.layout == Layout::packed422 || format.layout == Layout::packed444;
  return packedYuv && (format.code & kChromaFirst) != 0;
}

std::array<int, 3> fieldBits(const PixelFormat& format) {
  const auto bitsAt = [&](int position) {
    return static_cast<int>(format.code >> position & 15) + 1;
  };
  return {bitsAt(8), bitsAt(4), bitsAt(0)};
}

int narrowestField(const PixelFormat& format) {
  const std::array<int, 3> bits = fieldBits(format);
  return *std::min_element(bits.begin(), bits.end());
}

// Rows stand close together, without spare bytes at the end, so that memory checkers see any step
// outside.
Frame::Frame(const PixelFormat& format, int32_t width, int32_t height) : format_(&format) {
  const Plan plan = planOf(format, width, height);
  size_ = plan.bytes;
  block_ = std::make_unique_for_overwrite<uint8_t[]>(size_);
  bitmap_ = {format.code, width, height, {}, {}};
  for (size_t p = 0; p < 3; ++p) {
    bitmap_.pitch[p] = plan.pitch[p];
    bitmap_.plane[p] = plan.pitch[p] > 0 ? block_.get() + plan.start[p] : nullptr;
  }
  if (format.layout == Layout::semiPlanar) {
    const bool vFirst = isVFirst(format);
    bitmap_.pitch[2] = plan.pitch[1];
    bitmap_.plane[1] = block_.get() + plan.start[1] + (vFirst ? 1 : 0);
    bitmap_.plane[2] = block_.get() + plan.start[1] + (vFirst ? 0 : 1);
  }
}

size_t Frame::bytesOf(const PixelFormat& format, int32_t width, int32_t height) {
  return planOf(format, width, height).bytes;
}

MBitmap Frame::engineBitmap() const {
  MBitmap image = bitmap_;
  if (format_->layout == Layout::planar && isVFirst(*format_)) {
    image.format &= ~kVFirst;
    std::swap(image.plane[1], image.plane[2]);
  }
  return image;
}

QPXPlaneSet Frame::planesAt(int32_t row) const {
  const MBitmap image = engineBitmap();
  const int32_t down = chromaDown(*format_);
  QPXPlaneSet planes{};
  for (int p = 0; p < 3; ++p) {
    planes.pitch[p] = image.pitch[p];
    if (!image.plane[p]) continue;
    planes.plane[p] = image.plane[p] + ptrdiff_t{image.pitch[p]} * (p == 0 ? row : row / down);
  }
  return planes;
}

void Frame::copyFrom(const Frame& other) { std::memcpy(block_.get(), other.block_.get(), size_); }

}  // namespace qpx::tool
