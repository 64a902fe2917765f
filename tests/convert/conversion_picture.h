#pragma once

#include <qpx/types.h>

#include <cstdint>
#include <span>
#include <vector>

namespace qpx::testing {

// How the bytes of a format lie, written down from what the formats are and not from their codes.
struct FormatLayout {
  enum class Kind { rgb, palette, grey, yuv };

  uint32_t format;
  Kind kind;
  int32_t bits;         // of a pixel, of RGB and palette formats
  int32_t width[3];     // bits of R, G, B
  int32_t lowest[3];    // bit of R, G, B
  int32_t step[2];      // bytes from luma to luma, from chroma to chroma
  int32_t offset[3];    // of Y, U, V in their plane
  int32_t plane[3];     // of Y, U, V
  int32_t subX, subY;   // of chroma
  bool lumasExchanged;  // the two lumas of a group
  bool interleaved;     // the chroma planes are one
  uint32_t klass;
};

std::span<const FormatLayout> formatLayouts();
const FormatLayout& layoutOf(uint32_t format);  // colour bits of YUV codes do not matter

// A picture of noise whose planes end with the last byte that may be touched.
class ConversionPicture {
 public:
  ConversionPicture(uint32_t format, int32_t width, int32_t height, uint64_t seed);

  uint8_t* const* planes() { return plane_; }
  const uint8_t* const* planes() const { return plane_; }
  const int32_t* pitches() const { return pitch_; }
  const FormatLayout& layout() const { return *layout_; }
  uint32_t format() const { return format_; }
  int32_t width() const { return width_; }
  int32_t height() const { return height_; }

  // Turns the picture upside down in memory: pitches become negative.
  void turnOver();

  ConversionPicture(const ConversionPicture& other) { *this = other; }
  ConversionPicture& operator=(const ConversionPicture& other);
  bool sameBytes(const ConversionPicture& other) const {
    return block_[0] == other.block_[0] && block_[1] == other.block_[1] &&
           block_[2] == other.block_[2];
  }

 private:
  void pointAtPlanes();

  uint32_t format_ = 0;
  int32_t width_ = 0, height_ = 0;
  const FormatLayout* layout_ = nullptr;
  std::vector<uint8_t> block_[3];
  uint8_t* plane_[3] = {};
  int32_t pitch_[3] = {};
  bool upsideDown_ = false;
};

// 256 entries of four bytes.
const uint8_t* noisePalette();

}  // namespace qpx::testing
