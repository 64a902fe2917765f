// A decoded picture and what can be done to one without the engine.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace qpx::tool {

// Pictures beyond this are refused before anything is allocated for them.
constexpr int64_t kMaxPixels = int64_t{512} << 20;

enum class FileKind { jpeg, png };

// Pixels for each unit of length, as files state it. Where the unit is unknown only the ratio of
// the two counts.
struct Density {
  enum class Unit { unknown, inch, centimetre, metre };
  Unit unit = Unit::unknown;
  uint32_t across = 0;  // 0: nothing is stated
  uint32_t down = 0;
};

// In another unit, rounded. A density of unknown unit stays as it is.
Density inUnit(const Density& density, Density::Unit unit);

// Interleaved samples of 8 bits: 1 (grey), 3 (R, G, B) or 4 (R, G, B, A, not multiplied) a pixel.
class Picture {
 public:
  Picture() = default;
  // The samples are undefined: a file that lies about its size must not cost the memory it claims.
  // Throws RunError for a size below 1 or above the limits.
  Picture(int32_t width, int32_t height, int channels);

  int32_t width() const { return width_; }
  int32_t height() const { return height_; }
  int channels() const { return channels_; }
  bool hasAlpha() const { return channels_ == 4; }
  ptrdiff_t pitch() const { return static_cast<ptrdiff_t>(width_) * channels_; }
  uint8_t* row(int32_t y) { return samples_.get() + pitch() * y; }
  const uint8_t* row(int32_t y) const { return samples_.get() + pitch() * y; }

  FileKind kind = FileKind::png;  // of the file it came from
  std::vector<uint8_t> exif;      // TIFF data, as behind the prefix of a JPEG segment
  std::vector<uint8_t> icc;       // colour profile, for RGB only
  Density density;

 private:
  int32_t width_ = 0;
  int32_t height_ = 0;
  int channels_ = 0;
  std::unique_ptr<uint8_t[]> samples_;
};

// Throws RunError when a picture of this size cannot be held. Sizes are as files claim them.
void checkSize(int64_t width, int64_t height, int channels);

// Samples and metadata. A picture is large, so that copies are asked for by name.
Picture copyOf(const Picture& picture);

// A picture of another size with the metadata of this one, whose Exif data then states that size.
// Colours are undefined; alpha, where there is any, is 255.
Picture emptyLike(const Picture& picture, int32_t width, int32_t height);

// The picture as it is meant to be seen, from one stored in an Exif orientation of 1 ... 8. Exif
// and profile come along unchanged.
Picture turned(Picture picture, int orientation);

// RGB over white from a row of RGBA.
void layOnWhite(const uint8_t* rgba, int32_t width, uint8_t* rgb);

// Without transparency, and with the metadata. A picture that has no alpha stays as it is.
Picture onWhite(Picture picture);

// Scaled to another size with a triangle filter that widens when it shrinks.
Picture scaled(const Picture& picture, int32_t width, int32_t height);

// Luma of BT.601 with 16 fractional bits; the coefficients add up to 65536.
inline uint8_t lumaOf(const uint8_t* rgb) {
  return static_cast<uint8_t>((rgb[0] * 19595 + rgb[1] * 38470 + rgb[2] * 7471 + 32768) >> 16);
}

// One channel that says how much of an effect shows: the alpha where the picture has any
// transparency, else its luma.
Picture maskOf(const Picture& picture);

// Fades `result` back to `source` in place: `strength` percent of the effect, and of that the share
// in `mask` (one channel of the same size, or null). Channels of both must agree.
void mixWithSource(Picture& result, const Picture& source, int strength, const Picture* mask);

}  // namespace qpx::tool
