// PKM files: 16 bytes of header and the blocks of one ETC1 texture.
#pragma once

#include <qpx/etc.h>

#include <cstdint>
#include <string>
#include <vector>

namespace qpx::tool {

// The sides that a header of 16-bit numbers can hold, in whole blocks.
constexpr int32_t kMaxPkmSide = 65532;

class PkmTexture {
 public:
  // All blocks are zero. Sides are 1 ... kMaxPkmSide.
  PkmTexture(int32_t width, int32_t height);

  // As the picture is meant to be seen.
  int32_t width() const { return width_; }
  int32_t height() const { return height_; }
  // In whole blocks.
  int32_t paddedWidth() const { return (width_ + 3) / 4 * 4; }
  int32_t paddedHeight() const { return (height_ + 3) / 4 * 4; }

  std::vector<uint8_t>& blocks() { return blocks_; }
  const std::vector<uint8_t>& blocks() const { return blocks_; }
  // Of padded size, for calls that read and calls that write.
  MBitmap record() const;

 private:
  int32_t width_;
  int32_t height_;
  std::vector<uint8_t> blocks_;
};

// "-" is standard input or output. Throw RunError, which names the file and says what to do.
PkmTexture readPkm(const std::string& path);
void writePkm(const PkmTexture& texture, const std::string& path);

}  // namespace qpx::tool
