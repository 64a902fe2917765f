#include "support/picture.h"

#include <qpx/effects.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>

namespace qpx::testing {
namespace {

constexpr FormatCase kFormats[] = {
    {QPX_FORMAT_BGR24, "BGR24", QPX_TAKES_RGB24},
    {QPX_FORMAT_RGB24, "RGB24", QPX_TAKES_RGB24},
    {QPX_FORMAT_BGRA32, "BGRA32", QPX_TAKES_RGB32},
    {QPX_FORMAT_RGBA32, "RGBA32", QPX_TAKES_RGB32},
    {QPX_FORMAT_RGB565, "RGB565", QPX_TAKES_RGB565},
    {QPX_FORMAT_BGR565, "BGR565", QPX_TAKES_RGB_ANY},
    {QPX_FORMAT_BGRX32, "BGRX32", QPX_TAKES_RGB_ANY},
    {QPX_FORMAT_RGBX32, "RGBX32", QPX_TAKES_RGB_ANY},
    {QPX_FORMAT_BGR666, "BGR666", QPX_TAKES_RGB_ANY},
    {QPX_FORMAT_RGB666, "RGB666", QPX_TAKES_RGB_ANY},
    {QPX_FORMAT_RGB444, "RGB444", QPX_TAKES_RGB_ANY},
    {QPX_FORMAT_BGR444, "BGR444", QPX_TAKES_RGB_ANY},
    {QPX_FORMAT_RGB555, "RGB555", QPX_TAKES_RGB_ANY},
    {QPX_FORMAT_BGR555, "BGR555", QPX_TAKES_RGB_ANY},
    {QPX_FORMAT_GREY8, "GREY8", QPX_TAKES_GREY},
    {0x64001000, "GREY8full", QPX_TAKES_GREY},
    {QPX_FORMAT_NV21, "NV21", QPX_TAKES_NV21},
    {QPX_FORMAT_NV12, "NV12", QPX_TAKES_NV12},
    {QPX_FORMAT_I420, "I420", QPX_TAKES_I420},
    {QPX_FORMAT_I422, "I422", QPX_TAKES_PLANAR},
    {QPX_FORMAT_I440, "I440", QPX_TAKES_PLANAR},
    {QPX_FORMAT_I444, "I444", QPX_TAKES_PLANAR},
    {0x50000803, "I803", QPX_TAKES_PLANAR},
    {0x50000813, "I813", QPX_TAKES_PLANAR},
    {0x50000820, "I820", QPX_TAKES_PLANAR},
    {0x50000830, "I830", QPX_TAKES_PLANAR},
    {0x50001811, "I420full601", QPX_TAKES_PLANAR},
    {0x50002811, "I420video709", QPX_TAKES_PLANAR},
    {0x50003811, "I420full709", QPX_TAKES_PLANAR},
    {0x50000A11, "I420second", QPX_TAKES_PLANAR},
    {QPX_FORMAT_YUYV, "YUYV", QPX_TAKES_YUYV},
    {QPX_FORMAT_UYVY, "UYVY", QPX_TAKES_UYVY},
};

constexpr int kFamilyRgb = 1;
constexpr int kFamilyGrey = 32;
constexpr int kFamilyPacked422 = 66;
constexpr size_t kGuardBytes = 67;

// What engines make of the public codes of the semi-planar formats.
uint32_t stageFormat(uint32_t format) {
  if (format == QPX_FORMAT_NV21) return 0x70020011;
  if (format == QPX_FORMAT_NV12) return 0x70030011;
  return format;
}

int32_t divideUp(int32_t value, int32_t divisor) { return (value + divisor - 1) / divisor; }

uint8_t guardByte(size_t i) { return static_cast<uint8_t>(0x5A + i * 37); }

// A value of a smooth gradient with noise, reaching 0 and 255 in pictures that are not tiny.
uint8_t paintedValue(uint64_t seed, int channel, int32_t x, int32_t y) {
  const uint64_t place = (static_cast<uint64_t>(x) << 32) ^ static_cast<uint32_t>(y);
  Random noise((seed * 31 + static_cast<uint64_t>(channel)) * 0x9E3779B97F4A7C15u ^
               place * 0xBF58476D1CE4E5B9u);
  noise.next();
  const int gradient = (x * (7 + channel * 5) + y * (11 - channel * 3) + channel * 85) & 511;
  const int ramp = gradient < 256 ? gradient : 511 - gradient;
  const int spread = static_cast<int>(noise.next() >> 24);
  return static_cast<uint8_t>((x ^ y) % 3 == 0 ? spread
                                               : std::clamp(ramp + spread / 4 - 32, 0, 255));
}

}  // namespace

std::span<const FormatCase> formatCases() { return kFormats; }

const FormatCase& formatCase(uint32_t format) {
  for (const FormatCase& known : kFormats) {
    if (known.format == format) return known;
  }
  std::abort();
}

uint32_t Random::next() {
  state_ = state_ * 6364136223846793005u + 1442695040888963407u;
  return static_cast<uint32_t>((state_ ^ (state_ >> 29)) >> 32);
}

int32_t Random::between(int32_t low, int32_t high) {
  const uint64_t span = static_cast<uint64_t>(int64_t{high} - low) + 1;
  return static_cast<int32_t>(low + static_cast<int64_t>(next() % span));
}

std::string describe(const Difference& difference) {
  return "plane " + std::to_string(difference.plane) + ", byte " + std::to_string(difference.x) +
         " of row " + std::to_string(difference.y) + ": expected " +
         std::to_string(difference.expected) + ", actual " + std::to_string(difference.actual);
}

Picture::Picture(uint32_t format, int32_t width, int32_t height, Placement placement)
    : format_(format), width_(width), height_(height), placement_(placement) {
  if (mbf_GetPixInfo(stageFormat(format), &pix_) != QPX_OK) std::abort();
  shapePlanes();
  for (int i = 0; i < planeCount_; ++i) allocate(planes_[static_cast<size_t>(i)], i);
}

Picture::Picture(const Picture& other)
    : Picture(other.format_, other.width_, other.height_, other.placement_) {
  for (size_t i = 0; i < planes_.size(); ++i) {
    if (planes_[i].block == nullptr) continue;
    std::memcpy(planes_[i].block.get(), other.planes_[i].block.get(), planes_[i].blockBytes);
  }
}

bool Picture::semiPlanar() const { return pix_.family == 48 || pix_.family == 49; }

void Picture::shapePlanes() {
  Plane& first = planes_[0];
  first.rows = height_;
  if (pix_.family == kFamilyPacked422) {
    first.rowBytes = divideUp(width_, 2) * 4;
  } else {
    first.rowBytes = width_ * pix_.bytesPerSample[0];
  }
  if (semiPlanar()) {
    planeCount_ = 2;
    planes_[1].rowBytes = divideUp(width_, 2) * 2;
    planes_[1].rows = divideUp(height_, 2);
  } else if (pix_.planes == 3) {
    planeCount_ = 3;
    for (size_t p = 1; p < 3; ++p) {
      planes_[p].rowBytes = divideUp(width_, pix_.xSampling[p]);
      planes_[p].rows = divideUp(height_, pix_.ySampling[p]);
    }
  }
}

// No two planes have the same padding or alignment.
void Picture::allocate(Plane& plane, int index) {
  plane.pitch = plane.rowBytes + 3 + 2 * index;
  if (plane.pitch % 2 == 0) ++plane.pitch;
  const size_t rowsBytes = static_cast<size_t>(plane.pitch) * static_cast<size_t>(plane.rows - 1) +
                           static_cast<size_t>(plane.rowBytes);
  const size_t misalignment = 1 + static_cast<size_t>(index) * 2;
  const bool guarded = placement_ == Placement::guarded;
  plane.start = misalignment + (guarded ? kGuardBytes : 0);
  plane.blockBytes =
      plane.start + rowsBytes + (guarded ? kGuardBytes + static_cast<size_t>(plane.pitch) : 0);
  plane.block.reset(new uint8_t[plane.blockBytes]);
  for (size_t i = 0; i < plane.blockBytes; ++i) plane.block[i] = guardByte(i);
}

void Picture::fill(uint8_t value) {
  for (int i = 0; i < planeCount_; ++i) {
    const Plane& plane = planes_[static_cast<size_t>(i)];
    for (int32_t y = 0; y < plane.rows; ++y) {
      std::memset(plane.row(y), value, static_cast<size_t>(plane.rowBytes));
    }
  }
}

void Picture::paint(uint64_t seed) {
  if (pix_.family == kFamilyRgb) {
    paintRgb(seed);
  } else {
    paintYuv(seed);
  }
}

void Picture::paintRgb(uint64_t seed) {
  for (int32_t y = 0; y < height_; ++y) {
    for (int32_t x = 0; x < width_; ++x) {
      putRgb(x, y,
             {paintedValue(seed, 0, x, y), paintedValue(seed, 1, x, y), paintedValue(seed, 2, x, y),
              paintedValue(seed, 3, x, y)});
    }
  }
}

void Picture::paintYuv(uint64_t seed) {
  const int components = pix_.family == kFamilyGrey ? 1 : 3;
  for (int c = 0; c < components; ++c) {
    const int32_t across = c == 0 ? 1 : semiPlanar() ? 2 : pix_.xSampling[c];
    const int32_t down = c == 0 ? 1 : std::max(pix_.ySampling[c], 1);
    for (int32_t y = 0; y < divideUp(height_, down); ++y) {
      for (int32_t x = 0; x < divideUp(width_, across); ++x) {
        *sample(c, x, y) = paintedValue(seed, c, x, y);
      }
    }
  }
}

// The byte of a component at a sample column and row of its own plane.
uint8_t* Picture::sample(int component, int32_t column, int32_t row) const {
  if (semiPlanar() && component > 0) {
    const bool first = (pix_.family == 48) == (component == 2);
    return planes_[1].row(row) + 2 * ptrdiff_t{column} + (first ? 0 : 1);
  }
  if (pix_.family == kFamilyPacked422) {
    const int lumaAt = format_ == QPX_FORMAT_YUYV ? 0 : 1;
    const int chromaAt = 1 - lumaAt + (component == 2 ? 2 : 0);
    return planes_[0].row(row) +
           (component == 0 ? 2 * ptrdiff_t{column} + lumaAt : 4 * ptrdiff_t{column} + chromaAt);
  }
  return planes_[static_cast<size_t>(component)].row(row) + column;
}

void Picture::putRgb(int32_t x, int32_t y, const Rgba& pixel) {
  const uint8_t values[3] = {pixel.r, pixel.g, pixel.b};
  uint32_t word = 0;
  for (int c = 0; c < 3; ++c) {
    // Two bytes of the value, so that fields of up to 16 bits are filled.
    const uint32_t field = (values[c] * 0x101u) >> (16 - std::min(pix_.maskSize[c], 16u));
    word |= (field << pix_.maskPos[c]) & pix_.mask[c];
  }
  if (pix_.bytesPerSample[0] == 4) word |= static_cast<uint32_t>(pixel.a) << 24;
  uint8_t* bytes = planes_[0].row(y) + ptrdiff_t{pix_.bytesPerSample[0]} * x;
  for (int i = 0; i < pix_.bytesPerSample[0]; ++i) bytes[i] = static_cast<uint8_t>(word >> (8 * i));
}

Rgba Picture::rgb(int32_t x, int32_t y) const {
  const uint8_t* bytes = planes_[0].row(y) + ptrdiff_t{pix_.bytesPerSample[0]} * x;
  uint32_t word = 0;
  for (int i = 0; i < pix_.bytesPerSample[0]; ++i) {
    word |= static_cast<uint32_t>(bytes[i]) << (8 * i);
  }
  const auto field = [&](int c) {
    return static_cast<uint8_t>((word & pix_.mask[c]) >> pix_.maskPos[c]);
  };
  const uint8_t alpha = pix_.bytesPerSample[0] == 4 ? static_cast<uint8_t>(word >> 24) : 255;
  return {field(0), field(1), field(2), alpha};
}

int Picture::yuv(int component, int32_t x, int32_t y) const {
  if (component == 0) return *sample(0, x, y);
  const int32_t across = semiPlanar() ? 2 : pix_.xSampling[component];
  return *sample(component, x / across, y / pix_.ySampling[component]);
}

MBitmap Picture::bitmap() const {
  const QPXPlaneSet planes = planesAt(0, 0);
  MBitmap result = {format_, width_, height_, {}, {}};
  for (int p = 0; p < 3; ++p) {
    result.pitch[p] = planes.pitch[p];
    result.plane[p] = planes.plane[p];
  }
  return result;
}

QPXPlaneSet Picture::planesAt(int32_t left, int32_t top) const {
  QPXPlaneSet set = {};
  for (int p = 0; p < pix_.planes; ++p) {
    const Plane& plane = planes_[semiPlanar() && p > 0 ? 1 : static_cast<size_t>(p)];
    // Interleaved chroma counts columns like luma; packed 4:2:2 has two bytes for each pixel.
    const int32_t step = pix_.family == kFamilyPacked422 ? 2 : pix_.bytesPerSample[p];
    set.pitch[p] = plane.pitch;
    set.plane[p] = plane.block.get() + plane.start +
                   ptrdiff_t{plane.pitch} * (top / pix_.ySampling[p]) +
                   ptrdiff_t{step} * (left / pix_.xSampling[p]);
  }
  if (pix_.family == 48) ++set.plane[1];
  if (pix_.family == 49) ++set.plane[2];
  return set;
}

std::optional<Difference> Picture::firstDifference(const Picture& actual) const {
  for (int i = 0; i < planeCount_; ++i) {
    const Plane& mine = planes_[static_cast<size_t>(i)];
    const Plane& other = actual.planes_[static_cast<size_t>(i)];
    for (int32_t y = 0; y < mine.rows; ++y) {
      const uint8_t* a = mine.row(y);
      const uint8_t* b = other.row(y);
      const uint8_t* end = a + mine.rowBytes;
      const auto [at, otherAt] = std::mismatch(a, end, b);
      if (at != end) return Difference{i, static_cast<int32_t>(at - a), y, *at, *otherAt};
    }
  }
  return std::nullopt;
}

// Bytes of plane i that belong to pixels of `rect`, as columns and rows of bytes.
MRect Picture::touchedBytes(int plane, const MRect& rect) const {
  if (pix_.family == kFamilyPacked422) {
    return {rect.left / 2 * 4, rect.top, divideUp(rect.right, 2) * 4, rect.bottom};
  }
  if (plane == 0) {
    const int32_t step = pix_.bytesPerSample[0];
    return {rect.left * step, rect.top, rect.right * step, rect.bottom};
  }
  if (semiPlanar()) {
    return {rect.left / 2 * 2, rect.top / 2, divideUp(rect.right, 2) * 2, divideUp(rect.bottom, 2)};
  }
  const int32_t across = pix_.xSampling[plane];
  const int32_t down = pix_.ySampling[plane];
  return {rect.left / across, rect.top / down, divideUp(rect.right, across),
          divideUp(rect.bottom, down)};
}

std::optional<Difference> Picture::firstWriteOutside(const Picture& before,
                                                     const MRect& rect) const {
  for (int i = 0; i < planeCount_; ++i) {
    const Plane& plane = planes_[static_cast<size_t>(i)];
    const Plane& old = before.planes_[static_cast<size_t>(i)];
    const MRect touched = touchedBytes(i, rect);
    const ptrdiff_t start = static_cast<ptrdiff_t>(plane.start);
    const std::span<const uint8_t> now(plane.block.get(), plane.blockBytes);
    const uint8_t* const then = old.block.get();
    for (size_t at = 0;; ++at) {
      const auto changed =
          std::mismatch(now.begin() + static_cast<ptrdiff_t>(at), now.end(), then + at);
      if (changed.first == now.end()) break;
      at = static_cast<size_t>(changed.first - now.begin());
      const ptrdiff_t offset = static_cast<ptrdiff_t>(at) - start + ptrdiff_t{plane.pitch} * 1024;
      const int32_t y = static_cast<int32_t>(offset / plane.pitch) - 1024;
      const int32_t x = static_cast<int32_t>(offset % plane.pitch);
      const bool inside =
          y >= touched.top && y < touched.bottom && x >= touched.left && x < touched.right;
      if (!inside) return Difference{i, x, y, old.block[at], plane.block[at]};
    }
  }
  return std::nullopt;
}

}  // namespace qpx::testing
