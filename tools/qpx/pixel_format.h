// The pixel formats that the tool has names for, and frames of them.
#pragma once

#include <qpx/types.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace qpx::tool {

enum class Layout { packedRgb, grey, planar, semiPlanar, packed422, packed444 };

struct PixelFormat {
  const char* name;
  uint32_t code;  // of the library
  Layout layout;
  uint32_t group;  // the QPX_TAKES_* bit that stands for it; 0: the engine has nothing for it
  bool keepsAlpha;
};

std::span<const PixelFormat> pixelFormats();
std::vector<std::string> pixelFormatNames();

// Case ignored. Throws UsageError, which names the formats.
const PixelFormat& pixelFormatByName(std::string_view name);

// Divisors of the chroma of a YUV format.
int32_t chromaAcross(const PixelFormat& format);
int32_t chromaDown(const PixelFormat& format);

// Of packed RGB and packed 4:4:4.
int32_t bytesPerPixel(const PixelFormat& format);

// Pixels of four bytes, of which the last is no colour.
bool hasSpareByte(const PixelFormat& format);

// Packed YUV whose pixels, or pairs, begin with a chroma sample.
bool beginsWithChroma(const PixelFormat& format);

// Bits of the red, green and blue samples of packed RGB.
std::array<int, 3> fieldBits(const PixelFormat& format);

// Samples of packed RGB have so many bits at least: fewer than 8 in narrow formats.
int narrowestField(const PixelFormat& format);

// A picture in one of the formats, with planes of its own.
class Frame {
 public:
  // Samples are undefined. Throws RunError for a size that cannot be held.
  Frame(const PixelFormat& format, int32_t width, int32_t height);

  // Of a frame of this size. Throws RunError for one that cannot be held.
  static size_t bytesOf(const PixelFormat& format, int32_t width, int32_t height);

  const PixelFormat& format() const { return *format_; }
  int32_t width() const { return bitmap_.width; }
  int32_t height() const { return bitmap_.height; }
  size_t bytes() const { return size_; }
  // All samples without gaps, plane behind plane: the bytes of a raw frame.
  const uint8_t* data() const { return block_.get(); }
  uint8_t* data() { return block_.get(); }

  // As the post process takes it: planes in the order of the format.
  const MBitmap& bitmap() const { return bitmap_; }

  // As the engine takes it. The engine knows no planes of V in front of those of U: such a frame is
  // one of its kind with two planes exchanged.
  MBitmap engineBitmap() const;

  // Planes for the engine whose first sample is that of the pixel at (0, row).
  QPXPlaneSet planesAt(int32_t row) const;

  // All samples of another frame of the same format and size.
  void copyFrom(const Frame& other);

 private:
  const PixelFormat* format_;
  MBitmap bitmap_{};
  size_t size_ = 0;
  std::unique_ptr<uint8_t[]> block_;
};

}  // namespace qpx::tool
