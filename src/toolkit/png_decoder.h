// The decoder's record, and libpng behind calls that return.
//
// libpng reports an error by a long jump. Each function below is one libpng operation with its own
// landing place, holds nothing that a jump could skip, and answers a code; no other code of the
// library calls into libpng where it may fail.
#pragma once

#include <png.h>
#include <qpx/png.h>

#include <cstdint>

struct PngHandle {
  png_structp png;
  png_infop info;
  MStreamHandle* stream;
  uint32_t xResolution;  // from the file's pHYs chunk
  uint32_t yResolution;
  uint16_t* rowIndex;     // source row of each row; null until a size is asked for
  double scale;           // 1.0 at full size
  uint16_t* columnIndex;  // source column of each column
  uint8_t* row;           // one source row
  uint32_t fileWidth;
  uint32_t fileHeight;
  uint32_t bitsPerPixel;
  uint32_t width;  // as delivered
  uint32_t height;
  uint32_t line;        // rows delivered in the current pass
  uint32_t sourceLine;  // source rows read in the current pass
  uint8_t passes;       // 7 for an interlaced file, else 1
  uint8_t passesFinished;
  bool rgbInvert;
  bool started;    // rows have been read
  bool broken;     // libpng gave up: its structures serve only to be destroyed
  bool exhausted;  // memory was refused to libpng in the current operation
};

static_assert(sizeof(void*) != 4 || sizeof(PngHandle) == 80);

namespace qpx {

// The row and column tables have 16 bits.
inline constexpr uint32_t kMaxPngSide = 65535;
// A header of a few bytes must not make a host allocate more than 1 GiB.
inline constexpr uint64_t kMaxPngPixels = uint64_t{1} << 28;

inline constexpr int kPngSignatureBytes = 4;  // tested before libpng is started

inline uint32_t pngRowBytes(uint32_t width, uint32_t bitsPerPixel) {
  return static_cast<uint32_t>((uint64_t{width} * bitsPerPixel + 7) / 8);
}

// Makes the libpng structures. Returns 0 or 4.
int32_t createPng(PngHandle& decoder);

// Reads up to the picture's data and fills the record. Returns 0, 1 or 4.
int32_t readPngHeader(PngHandle& decoder);

// Has samples swapped to B, G, R. Before the first row.
void swapPngToBgr(PngHandle& decoder);

// Reads the next source row into `row`, which may be null. Returns 0, 1 or 4.
int32_t readPngRow(PngHandle& decoder, uint8_t* row);

void destroyPng(PngHandle& decoder);

// Copies the columns that the column table names out of decoder.row.
void copyScaledRow(const PngHandle& decoder, uint8_t* to);

}  // namespace qpx
