// Size and depth of a PNG file from its first bytes, without a decoder.
#include <cstring>

#include "platform/stream_record.h"
#include "toolkit/png_decoder.h"

namespace qpx {
namespace {

constexpr int32_t kLeastBytes = 26;
constexpr int32_t kSizeAt = 16;
constexpr uint8_t kSignature[kPngSignatureBytes] = {137, 'P', 'N', 'G'};

int32_t readAt(MStreamHandle* stream, int32_t position, uint8_t* bytes, int32_t count) {
  if (MStreamSeek(stream, kFromStart, position) != 0) return QPX_PNG_SEEK_FAILED;
  return MStreamRead(stream, bytes, count) == count ? QPX_OK : QPX_PNG_READ_FAILED;
}

int32_t bigEndian32(const uint8_t* bytes) {
  return static_cast<int32_t>(uint32_t{bytes[0]} << 24 | uint32_t{bytes[1]} << 16 |
                              uint32_t{bytes[2]} << 8 | uint32_t{bytes[3]});
}

int32_t channelsOf(uint8_t colorType) {
  switch (colorType) {
    case PNG_COLOR_TYPE_GRAY:
    case PNG_COLOR_TYPE_PALETTE:
      return 1;
    case PNG_COLOR_TYPE_GRAY_ALPHA:
      return 2;
    case PNG_COLOR_TYPE_RGB_ALPHA:
      return 4;
    default:
      return 3;
  }
}

}  // namespace
}  // namespace qpx

using namespace qpx;

int32_t PNG_GetInfoFromFile(MStreamHandle* stream, int32_t* widthOut, int32_t* heightOut,
                            int32_t* bitsOut) {
  if (stream == nullptr || widthOut == nullptr || heightOut == nullptr || bitsOut == nullptr) {
    return QPX_BAD_PARAM;
  }
  if (MStreamGetSize(stream) < kLeastBytes) return QPX_UNSUPPORTED;
  uint8_t signature[kPngSignatureBytes];
  int32_t result = readAt(stream, 0, signature, kPngSignatureBytes);
  if (result != QPX_OK) return result;
  if (std::memcmp(signature, kSignature, kPngSignatureBytes) != 0) return QPX_UNSUPPORTED;

  uint8_t header[10];  // width, height, bits of a sample, colour type
  result = readAt(stream, kSizeAt, header, sizeof header);
  if (result != QPX_OK) return result;
  if (MStreamSeek(stream, kFromStart, 0) != 0) return QPX_PNG_SEEK_FAILED;
  *widthOut = bigEndian32(header);
  *heightOut = bigEndian32(header + 4);
  *bitsOut = (header[8] == 16 ? 8 : header[8]) * channelsOf(header[9]);
  return QPX_OK;
}
