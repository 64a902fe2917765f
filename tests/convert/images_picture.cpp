#include "convert/images_picture.h"

#include <algorithm>
#include <sstream>

namespace qpx::testing {
namespace {

constexpr size_t kRoom = 131;

uint8_t noise(uint32_t place, uint32_t seed) {
  uint32_t h = place * 0x9E3779B1u + seed * 0x85EBCA77u;
  h ^= h >> 15;
  h *= 0xC2B2AE3Du;
  h ^= h >> 13;
  // Extremes are where clamps are.
  const uint8_t byte = static_cast<uint8_t>(h >> 11);
  return (h & 7) == 0 ? static_cast<uint8_t>(byte & 1 ? 255 : 0) : byte;
}

int32_t half(int32_t size) { return (size + 1) / 2; }

}  // namespace

PlaneSize planeSize(int32_t format, int32_t width, int32_t height, int plane) {
  if (plane == 0) {
    switch (format) {
      case MCV_BGR565:
      case MCV_RGB565:
        return {2 * width, height};
      case MCV_BGR888:
      case MCV_RGB888:
      case MCV_YUV:
        return {3 * width, height};
      case MCV_BGRA8888:
      case MCV_ARGB8888:
      case MCV_RGBA8888:
        return {4 * width, height};
      case MCV_YUYV:
      case MCV_YVYU:
      case MCV_UYVY:
      case MCV_VYUY:
        return {4 * half(width), height};
      default:
        return {width, height};
    }
  }
  const bool second = plane == 2;
  switch (format) {
    case MCV_I420:
    case MCV_YV12:
      return {half(width), half(height)};
    case MCV_I422V:
      return {width, half(height)};
    case MCV_I422H:
      return {half(width), height};
    case MCV_I444:
    case MCV_YV24:
      return {width, height};
    case MCV_NV12:
    case MCV_NV21:
      return second ? PlaneSize{0, 0} : PlaneSize{2 * half(width), half(height)};
    case MCV_LPI422H:
      return second ? PlaneSize{0, 0} : PlaneSize{2 * half(width), height};
    case MCV_NV41:
      return second ? PlaneSize{0, 0} : PlaneSize{2 * (width / 4), height / 4};
    default:
      return {0, 0};
  }
}

// Pitches are odd and starts are unaligned; the same shape gives the same pitches.
McvPicture::McvPicture(int32_t format, int32_t width, int32_t height, uint32_t seed) {
  image_.format = format;
  image_.width = width;
  image_.height = height;
  size_t size = kRoom;
  for (int p = 0; p < 3; ++p) {
    const PlaneSize plane = planeSize(format, width, height, p);
    image_.pitch[p] = plane.rowBytes + (plane.rowBytes % 2 == 0 ? 7 : 4) + 2 * p;
    starts_[static_cast<size_t>(p)] = size;
    size += static_cast<size_t>(image_.pitch[p]) * static_cast<size_t>(plane.rows) + kRoom;
  }
  bytes_.resize(size);
  for (size_t i = 0; i < size; ++i) bytes_[i] = noise(static_cast<uint32_t>(i), seed);
  place();
}

void McvPicture::place() {
  for (size_t p = 0; p < 3; ++p) {
    const bool there =
        planeSize(image_.format, image_.width, image_.height, static_cast<int>(p)).rowBytes > 0 ||
        (p == 1 && image_.format == MCV_NV41);
    image_.plane[p] = there ? bytes_.data() + starts_[p] : nullptr;
  }
}

McvPicture McvPicture::copy() const {
  McvPicture twin = *this;
  twin.place();
  return twin;
}

std::string McvPicture::differenceTo(const McvPicture& other) const {
  const auto [mine, its] = std::mismatch(bytes_.begin(), bytes_.end(), other.bytes_.begin());
  if (mine == bytes_.end()) return "";
  const size_t at = static_cast<size_t>(mine - bytes_.begin());
  std::ostringstream text;
  for (size_t p = 3; p-- > 0;) {
    if (image_.plane[p] == nullptr || at < starts_[p]) continue;
    const size_t pitch = static_cast<size_t>(image_.pitch[p]);
    text << "plane " << p << ", row " << (at - starts_[p]) / pitch << ", byte "
         << (at - starts_[p]) % pitch;
    break;
  }
  text << " (byte " << at << "): " << int{*mine} << " and " << int{*its};
  return text.str();
}

}  // namespace qpx::testing
