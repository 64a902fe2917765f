#ifndef QPX_TESTS_TOOLKIT_PNG_FILES_H_
#define QPX_TESTS_TOOLKIT_PNG_FILES_H_

#include <qpx/png.h>

#include <cstdint>
#include <ostream>
#include <string>
#include <vector>

namespace qpx::testing {

struct PngKind {
  int colorType;  // as PNG numbers them: 0 grey, 2 RGB, 3 palette, 4 grey and alpha, 6 RGB and
                  // alpha
  int depth;
};

// All fifteen pairs that the format allows.
const std::vector<PngKind>& pngKinds();

// A picture with random samples, many of them 0, and what its file is to hold besides.
struct PngPicture {
  PngPicture(PngKind kind, int32_t width, int32_t height, bool interlaced, uint64_t seed = 1);

  PngKind kind;
  int32_t width;
  int32_t height;
  bool interlaced;
  int paletteSize = 0;           // of a palette picture: all its indices
  std::vector<uint8_t> palette;  // R, G, B
  std::vector<uint8_t> alphas;   // of the first entries
  uint32_t xResolution = 0;      // no pHYs chunk without one
  uint32_t yResolution = 0;
  int sRgbIntent = -1;            // no sRGB chunk
  std::vector<uint16_t> samples;  // all channels of a pixel together

  int channels() const;
  uint16_t sample(int32_t x, int32_t y, int channel) const;

  // The file, written by libpng.
  std::vector<uint8_t> file() const;

  // What a decoder is to deliver, worked out from the samples alone.
  uint32_t bits() const;  // a pixel
  uint32_t rowBytes() const { return (static_cast<uint32_t>(width) * bits() + 7) / 8; }
  // A pixel as a number of bits() bits, of which the first in memory are the highest.
  uint32_t pixel(int32_t x, int32_t y, bool bgr) const;
  // Passes of an interlaced file that have a part in (x, y) are those from this one on.
  int passOf(int32_t x, int32_t y) const;
};

std::ostream& operator<<(std::ostream& out, const PngPicture& picture);

// Pixels of 1 to 32 bits in a row of bytes, the first in the highest bits.
uint32_t pixelAt(const uint8_t* row, uint32_t bits, int32_t x);
void putPixel(uint8_t* row, uint32_t bits, int32_t x, uint32_t value);

// A stream over the bytes of a file.
class ByteStream {
 public:
  explicit ByteStream(std::vector<uint8_t> bytes);
  ~ByteStream();
  ByteStream(const ByteStream&) = delete;
  ByteStream& operator=(const ByteStream&) = delete;
  MStreamHandle* get() const { return stream_; }

 private:
  std::vector<uint8_t> bytes_;
  MStreamHandle* stream_;
};

std::vector<uint8_t> joined(const std::vector<uint8_t>& a, const std::vector<uint8_t>& b);

// A chunk with its length and check sum, for files that libpng would not write.
std::vector<uint8_t> chunk(const std::string& type, const std::vector<uint8_t>& data);
// Signature and IHDR.
std::vector<uint8_t> pngStart(uint32_t width, uint32_t height, uint8_t depth, uint8_t colorType);

}  // namespace qpx::testing

#endif  // QPX_TESTS_TOOLKIT_PNG_FILES_H_
