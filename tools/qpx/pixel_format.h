// The pixel formats that an effect can be run in, and a plain conversion of pictures into them and
// back.
//
// RGB fields of fewer than 8 bits: a sample v becomes round(v * max / 255), and round(v * 255 /
// max) on the way back, so that going there and back changes it by no more than half a step (5
// bits: 4, 6 bits: 2, 4 bits: 8) and going on from there changes nothing.
//
// YUV and grey: BT.601 at full range,
//   Y = 0.299 R + 0.587 G + 0.114 B,  U = 128 + (B - Y) / 1.772,  V = 128 + (R - Y) / 1.402,
// each rounded once. A chroma sample is the average over those pixels of its block that lie in the
// picture, taken before the rounding; on the way back all pixels of the block get it. With chroma
// at full size, going there and back changes no sample by more than 1.
#pragma once

#include <qpx/types.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "picture.h"

namespace qpx::tool {

enum class Layout { packedRgb, grey, planar, semiPlanar, packed422 };

struct PixelFormat {
  const char* name;
  uint32_t code;  // QPXFormat
  Layout layout;
  uint32_t group;  // the QPX_TAKES_* bit that stands for it; 0: the engine has nothing for it
  bool keepsAlpha;
};

std::span<const PixelFormat> pixelFormats();
std::vector<std::string> pixelFormatNames();

// Case ignored. Throws UsageError, which names the formats.
const PixelFormat& pixelFormatByName(std::string_view name);

// A picture in the engine's terms, with planes of its own.
class Frame {
 public:
  // Samples are undefined. Throws RunError for a size that cannot be held.
  Frame(const PixelFormat& format, int32_t width, int32_t height);

  const PixelFormat& format() const { return *format_; }
  int32_t width() const { return bitmap_.width; }
  int32_t height() const { return bitmap_.height; }
  const MBitmap& bitmap() const { return bitmap_; }
  size_t bytes() const { return size_; }
  // All samples without gaps, plane behind plane: the bytes of a raw frame.
  const uint8_t* data() const { return block_.get(); }
  uint8_t* data() { return block_.get(); }

  // Planes whose first sample is that of the pixel at (0, row).
  QPXPlaneSet planesAt(int32_t row) const;

  // All samples of another frame of the same format and size.
  void copyFrom(const Frame& other);

 private:
  void layOut();

  const PixelFormat* format_;
  MBitmap bitmap_{};
  size_t size_ = 0;
  std::unique_ptr<uint8_t[]> block_;
};

// Sizes agree; the picture has 3 or 4 channels. Formats with a fourth byte get the picture's alpha,
// or 255.
void toFrame(const Picture& picture, Frame& frame);

// Writes the colours into the picture, and its alpha where both have one; otherwise alpha stays.
void fromFrame(const Frame& frame, Picture& picture);

}  // namespace qpx::tool
